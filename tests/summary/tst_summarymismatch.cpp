#include "DebugLines.h"
#include "Latin1.h"
#include "OpenedDocument.h"
#include "SummaryText.h"
#include "SummaryXml.h"

#include <QLoggingCategory>
#include <QTest>

using tresk::FileTag;
using tresk::Summary;
using tresktest::DocumentWriter;
using tresktest::element;
using tresktest::FileElement;
using tresktest::fileNamed;
using tresktest::FileSpec;
using tresktest::latin1;
using tresktest::latin1List;
using tresktest::MessageCapture;
using tresktest::newDocument;
using tresktest::OpenedDocument;
using tresktest::SectionSpec;
using tresktest::stepWith;
using tresktest::summaryFile;
using tresktest::summaryXml;
using tresktest::textOf;

namespace {

/// A summary document in which there is no step.
FileSpec summaryWithoutStep()
{
    return summaryFile("<trxchange/>");
}

QStringList names(const Summary& summary)
{
    QStringList result;
    for (const tresk::FileSummary& file : summary.files)
        result += file.filename;
    return result;
}

/// The summaries of a document; what is reported about it is not looked at.
QList<Summary> summariesOf(const DocumentWriter& document)
{
    const MessageCapture quiet;
    return OpenedDocument(document).summaries();
}

/// The lines about a file that a summary does not name.
QStringList mismatchLines(const FileTag& file)
{
    const MessageCapture capture;
    tresk::printFileSummary(tresk::makeFileSummaryFromFileTag(file));
    return QStringList{latin1("foundMismatch")} + tresktest::debugLines(capture);
}

} // namespace

/// Files that a summary does not name are added to it if they lie in the section whose id was
/// read with it. None is ever read: it is -1 with a step element, and without one 0, which
/// means the newest section, whatever section the summary itself is in.
class TestSummaryMismatch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withStepNothingIsAdded();
    void newestWithoutStep();
    void noSummaryElement_data();
    void noSummaryElement();
    void olderWithoutStep();
    void severalWithoutStep();
    void newestWithItsOwnSummary();
    void newestWithoutFiles();
    void newestThatReachesBack();
    void twoStepsInOneDocument();
    void linesInOrder();
    void categoryCanBeSwitchedOff();
    void contentOutsideTheDocument();
};

void TestSummaryMismatch::withStepNothingIsAdded()
{
    // Neither to the newest step nor to an older one.
    const FileSpec named = fileNamed("named");
    const FileSpec summary = summaryFile(summaryXml(FileElement(named).xml()));
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({fileNamed("a"), named, summary}));
    document.writeSection(stepWith({fileNamed("b"), named, summary}));
    const MessageCapture capture;
    const QList<Summary> summaries = OpenedDocument(document).summaries();
    QCOMPARE(names(summaries.at(0)), latin1List({"named"}));
    QCOMPARE(names(summaries.at(1)), latin1List({"named"}));
    QCOMPARE(tresktest::debugLines(capture), QStringList());
}

void TestSummaryMismatch::newestWithoutStep()
{
    FileSpec a = FileSpec::flate(latin1("a"), "content");
    a.desc = latin1("a description");
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({fileNamed("older")}));
    document.writeSection(stepWith({a, fileNamed("b"), summaryWithoutStep()}));
    OpenedDocument opened(document);
    Summary expected;
    expected.tagId = 0;
    expected.fromXml = true;
    for (int id = 1; id <= 3; ++id)
        expected.files += tresk::makeFileSummaryFromFileTag(*opened.parser.getFile(id));
    const QList<Summary> summaries = summariesOf(document);
    QCOMPARE(textOf(summaries.at(1)), textOf(expected));
    QCOMPARE(names(expected), latin1List({"a", "b", "ws_summary.xml"}));
    QCOMPARE(names(summaries.at(0)), latin1List({"older"}));
}

void TestSummaryMismatch::noSummaryElement_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<bool>("fromXml");
    QTest::addColumn<bool>("added");
    QTest::newRow("empty") << QByteArray() << false << true;
    QTest::newRow("text") << QByteArray("text") << false << true;
    QTest::newRow("summary not closed")
        << QByteArray("<trxchange><Workflowstep></Workflowstep>") << false << true;
    QTest::newRow("empty summary") << QByteArray("<trxchange></trxchange>") << true << true;
    QTest::newRow("step not closed")
        << QByteArray("<trxchange><Workflowstep></trxchange>") << true << true;
    QTest::newRow("signature only")
        << QByteArray("<trxchange><MD5Signature/></trxchange>") << true << true;
    QTest::newRow("empty step") << QByteArray("<trxchange><Workflowstep/></trxchange>") << true
                                << false;
}

void TestSummaryMismatch::noSummaryElement()
{
    QFETCH(QByteArray, xml);
    QFETCH(bool, fromXml);
    QFETCH(bool, added);
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({fileNamed("a"), summaryFile(xml)}));
    const Summary summary = summariesOf(document).at(0);
    QCOMPARE(summary.fromXml, fromXml);
    QCOMPARE(names(summary), added ? latin1List({"a", "ws_summary.xml"}) : QStringList());
}

void TestSummaryMismatch::olderWithoutStep()
{
    // It gets the files of the newest section, not its own.
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({fileNamed("old"), summaryWithoutStep()}));
    document.writeSection(stepWith({fileNamed("middle")}));
    document.writeSection(stepWith({fileNamed("new"), fileNamed("newer")}));
    const QList<Summary> summaries = summariesOf(document);
    QCOMPARE(summaries.at(0).tagId, 2);
    QCOMPARE(names(summaries.at(0)), latin1List({"new", "newer"}));
    QCOMPARE(summaries.at(0).files.at(0).tagId, 3);
    QCOMPARE(names(summaries.at(1)), latin1List({"middle"}));
    QCOMPARE(names(summaries.at(2)), latin1List({"new", "newer"}));
}

void TestSummaryMismatch::severalWithoutStep()
{
    // Being added does not use a file up.
    DocumentWriter document = newDocument();
    for (int i = 0; i < 3; ++i)
        document.writeSection(stepWith({summaryWithoutStep()}));
    const QList<Summary> summaries = summariesOf(document);
    QCOMPARE(summaries.size(), 3);
    for (const Summary& summary : summaries) {
        QCOMPARE(names(summary), latin1List({"ws_summary.xml"}));
        QCOMPARE(summary.files.at(0).tagId, 2);
    }
}

void TestSummaryMismatch::newestWithItsOwnSummary()
{
    // What the newest summary names is tied after the older ones had their turn, and so are
    // files of the same name and content elsewhere.
    const FileSpec a = fileNamed("a");
    const FileSpec summary = summaryFile(summaryXml(FileElement(a).xml()));
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({a, summaryWithoutStep()}));
    document.writeSection(stepWith({a, summary}));
    document.writeSection(stepWith({a, summary}));
    const QList<Summary> summaries = summariesOf(document);
    QCOMPARE(names(summaries.at(0)), latin1List({"a", "ws_summary.xml"}));
    QCOMPARE(summaries.at(0).files.at(0).tagId, 4);
    QCOMPARE(names(summaries.at(1)), latin1List({"a"}));
    QCOMPARE(summaries.at(1).files.at(0).tagId, 2);
    QCOMPARE(names(summaries.at(2)), latin1List({"a"}));
    QCOMPARE(summaries.at(2).files.at(0).tagId, 4);
}

void TestSummaryMismatch::newestWithoutFiles()
{
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({fileNamed("a"), summaryWithoutStep()}));
    document.writeSection(stepWith({}));
    const MessageCapture capture;
    const QList<Summary> summaries = OpenedDocument(document).summaries();
    QVERIFY(summaries.at(0).fromXml);
    QVERIFY(summaries.at(0).files.isEmpty());
    QCOMPARE(tresktest::debugLines(capture), QStringList());
}

void TestSummaryMismatch::newestThatReachesBack()
{
    // Files of an older step that lie in the newest section, too, are added as such of it.
    DocumentWriter document = newDocument();
    const auto first = document.writeSection(stepWith({fileNamed("a"), summaryWithoutStep()}));
    SectionSpec second = stepWith({fileNamed("b")});
    second.regionStart = first.regionStart;
    document.writeSection(second);
    const QList<Summary> summaries = summariesOf(document);
    QCOMPARE(names(summaries.at(0)), latin1List({"a", "ws_summary.xml", "b"}));
    QCOMPARE(textOf(summaries.at(0)).filter(latin1("tagId")),
             latin1List({"tagId: 1", "  tagId: 0", "  tagId: 1", "  tagId: 2"}));
}

void TestSummaryMismatch::twoStepsInOneDocument()
{
    // Once there was a step element, there is nothing to add, also if the last one was empty.
    const QByteArray steps = element("Workflowstep", FileElement(fileNamed("a")).xml())
        + "<Workflowstep/>";
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({fileNamed("a"), summaryFile(element("trxchange", steps))}));
    QVERIFY(summariesOf(document).at(0).files.isEmpty());
}

void TestSummaryMismatch::linesInOrder()
{
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({fileNamed("old"), summaryWithoutStep()}));
    document.writeSection(stepWith({fileNamed("b"), fileNamed("a"), summaryWithoutStep()}));
    OpenedDocument opened(document);
    QStringList expected;
    for (int id = 2; id <= 4; ++id)
        expected += mismatchLines(*opened.parser.getFile(id));
    const MessageCapture capture;
    opened.summaries();
    QCOMPARE(tresktest::debugLines(capture), expected + expected);
    QCOMPARE(expected.count(latin1("foundMismatch")), 3);
    QCOMPARE(expected.at(2), latin1("  Filename \"b\""));
    QCOMPARE(capture.count(QtDebugMsg, "tresk"), 2 * 3 * 21);
}

void TestSummaryMismatch::categoryCanBeSwitchedOff()
{
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({fileNamed("a"), summaryWithoutStep()}));
    OpenedDocument opened(document);
    const MessageCapture capture;
    QLoggingCategory::setFilterRules(latin1("tresk.debug=false"));
    opened.summaries();
    QLoggingCategory::setFilterRules(QString());
    QCOMPARE(tresktest::debugLines(capture), QStringList());
    opened.summaries();
    QVERIFY(tresktest::debugLines(capture).contains(latin1("foundMismatch")));
}

void TestSummaryMismatch::contentOutsideTheDocument()
{
    // A range that is not wholly in the document reads as empty, which is not unreadable.
    DocumentWriter document = newDocument();
    document.writeSection(stepWith(
        {fileNamed("a"), summaryFile(summaryXml(QByteArray())).with("cfilesize", "1000000")}));
    const Summary summary = summariesOf(document).at(0);
    QVERIFY(!summary.fromXml);
    QVERIFY(summary.title.isNull());
    QCOMPARE(names(summary), latin1List({"a", "ws_summary.xml"}));
}

QTEST_GUILESS_MAIN(TestSummaryMismatch)

#include "tst_summarymismatch.moc"
