#include "DebugLines.h"
#include "Latin1.h"
#include "OpenedDocument.h"
#include "SummaryText.h"
#include "SummaryXml.h"

#include <tresk/SummaryReader.h>

#include <QTest>

using tresk::Summary;
using tresk::SummaryCreator;
using tresk::TreskParser;
using tresktest::DocumentWriter;
using tresktest::element;
using tresktest::FileElement;
using tresktest::fileNamed;
using tresktest::FileSpec;
using tresktest::fromMarkers;
using tresktest::latin1;
using tresktest::MessageCapture;
using tresktest::newDocument;
using tresktest::OpenedDocument;
using tresktest::SectionSpec;
using tresktest::stepWith;
using tresktest::summaryFile;
using tresktest::summaryXml;
using tresktest::textOf;
using tresktest::titledSummary;
using tresktest::titles;

/// Which summaries a document gives, and in which order.
class TestSummaryCreator : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isAPlainObject();
    void withoutDocument();
    void withoutSteps();
    void oldestFirst();
    void stepWithoutFiles();
    void stepWithoutSummary();
    void wholeSummary();
    void summaryOfSeveralSteps();
    void unmatchedFiles();
    void unmatchedFilesAlone();
    void summaryInNoStep();
    void creatorHasNoState();
};

void TestSummaryCreator::isAPlainObject()
{
    const SummaryCreator creator;
    QCOMPARE(creator.metaObject()->className(), "tresk::SummaryCreator");
    QCOMPARE(creator.metaObject()->methodCount(), QObject::staticMetaObject.methodCount());
    QVERIFY(!creator.parent());
}

void TestSummaryCreator::withoutDocument()
{
    TreskParser parser;
    QVERIFY(SummaryCreator().createSummaries(parser).isEmpty());
}

void TestSummaryCreator::withoutSteps()
{
    QVERIFY(OpenedDocument(newDocument()).summaries().isEmpty());
}

void TestSummaryCreator::oldestFirst()
{
    DocumentWriter document = newDocument();
    document.writeFile(fileNamed("stray"));
    document.writeSection(stepWith({titledSummary("oldest")}));
    document.writeSection(stepWith({fileNamed("a")}));
    document.writeSection(stepWith({titledSummary("newest")}));
    const QList<Summary> summaries = OpenedDocument(document).summaries();
    const QStringList expected = {latin1("oldest"), latin1("marker"), latin1("newest"),
                                  latin1("<unmatched files>")};
    QCOMPARE(titles(summaries), expected);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(summaries.at(i).tagId, 2 - i);
}

void TestSummaryCreator::stepWithoutFiles()
{
    DocumentWriter document = newDocument();
    SectionSpec section;
    section.title = latin1("a]title\\");
    section.creator = latin1("a creator");
    document.writeSection(section);
    document.writeSection(section);
    const QList<Summary> summaries = OpenedDocument(document).summaries();
    QCOMPARE(summaries.size(), 2);
    Summary expected;
    expected.tagId = 1;
    expected.title = latin1("a\\]title\\\\");
    expected.creator = latin1("a creator");
    QCOMPARE(textOf(summaries.at(0)), textOf(expected));
    expected.tagId = 0;
    QCOMPARE(textOf(summaries.at(1)), textOf(expected));
}

void TestSummaryCreator::stepWithoutSummary()
{
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({fileNamed("a"), FileSpec::flate(latin1("b"), "content")}));
    document.writeSection(stepWith({fileNamed("c")}));
    const MessageCapture capture;
    OpenedDocument opened(document);
    const QList<Summary> summaries = opened.summaries();
    QCOMPARE(summaries.size(), 2);
    QCOMPARE(summaries.at(0).files.size(), 2);
    QCOMPARE(summaries.at(0).files.at(1).tagId, 1);
    QCOMPARE(textOf(summaries.at(0)), textOf(fromMarkers(opened.parser, 1)));
    QCOMPARE(textOf(summaries.at(1)), textOf(fromMarkers(opened.parser, 0)));
    QCOMPARE(tresktest::debugLines(capture), QStringList());
}

void TestSummaryCreator::wholeSummary()
{
    // Nothing but ids is changed in what is read.
    const FileSpec a = fileNamed("a");
    const QByteArray xml = "<!-- x --><trxchange><MD5Signature>s</MD5Signature>"
        + element("Workflowstep",
                  element("Title", " t ") + element("Comment", "") + FileElement(a).xml()
                      + "<OutFile><Filename>b</Filename><FilePurpose/></OutFile>"
                        "<UserAttributes><Attribute><Key>k</Key></Attribute></UserAttributes>")
        + "</trxchange>";
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({fileNamed("other"), a, summaryFile(xml)}));
    document.writeSection(stepWith({}));

    MessageCapture capture;
    Summary expected = tresk::SummaryReader().readSummary(QString::fromLatin1(xml));
    const QStringList linesOfReader = tresktest::debugLines(capture);
    expected.tagId = 1;
    expected.files[0].tagId = 1;
    QCOMPARE(textOf(OpenedDocument(document).summaries().at(0)), textOf(expected));
    QCOMPARE(linesOfReader.size(), 1);
    QCOMPARE(tresktest::debugLines(capture), linesOfReader + linesOfReader);
}

void TestSummaryCreator::summaryOfSeveralSteps()
{
    // A step without files of its own that reaches back over another one has its files, the
    // summary among them.
    const FileSpec a = fileNamed("a");
    DocumentWriter document = newDocument();
    const auto first = document.writeSection(
        stepWith({a, summaryFile(summaryXml(element("Title", "shared") + FileElement(a).xml()))}));
    SectionSpec second = stepWith({});
    second.regionStart = first.regionStart;
    document.writeSection(second);
    const QList<Summary> summaries = OpenedDocument(document).summaries();
    QCOMPARE(summaries.size(), 2);
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(summaries.at(i).tagId, 1 - i);
        QCOMPARE(summaries.at(i).title, latin1("shared"));
        QCOMPARE(summaries.at(i).files.size(), 1);
        QCOMPARE(summaries.at(i).files.at(0).tagId, 0);
    }
}

void TestSummaryCreator::unmatchedFiles()
{
    DocumentWriter document = newDocument();
    document.writeFile(fileNamed("first"));
    document.writeSection(stepWith({fileNamed("in a step"), titledSummary("summary")}));
    document.writeFile(FileSpec::flate(latin1("second"), "content"));
    document.writeFile(fileNamed("third"));
    const MessageCapture capture;
    OpenedDocument opened(document);
    const QList<Summary> summaries = opened.summaries();
    QCOMPARE(summaries.size(), 2);
    Summary expected;
    expected.title = latin1("<unmatched files>");
    for (const int id : {0, 3, 4})
        expected.files += tresk::makeFileSummaryFromFileTag(*opened.parser.getFile(id));
    QCOMPARE(textOf(summaries.at(1)), textOf(expected));
    QCOMPARE(expected.files.at(1).filename, latin1("second"));
    QCOMPARE(tresktest::debugLines(capture), QStringList());
}

void TestSummaryCreator::unmatchedFilesAlone()
{
    DocumentWriter document = newDocument();
    document.writeFile(fileNamed("a"));
    const QList<Summary> summaries = OpenedDocument(document).summaries();
    QCOMPARE(titles(summaries), QStringList{latin1("<unmatched files>")});
    QCOMPARE(summaries.at(0).tagId, 0);
    QCOMPARE(summaries.at(0).files.size(), 1);
    QVERIFY(!summaries.at(0).fromXml);
}

void TestSummaryCreator::summaryInNoStep()
{
    DocumentWriter document = newDocument();
    document.writeFile(titledSummary("summary"));
    document.writeSection(stepWith({}));
    const QStringList expected = {latin1("marker"), latin1("<unmatched files>")};
    QCOMPARE(titles(OpenedDocument(document).summaries()), expected);
}

void TestSummaryCreator::creatorHasNoState()
{
    const FileSpec a = fileNamed("a");
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({a, summaryFile(summaryXml(FileElement(a).xml()))}));
    OpenedDocument opened(document);
    OpenedDocument empty(newDocument());
    SummaryCreator creator;
    const QStringList first = textOf(creator.createSummaries(opened.parser));
    QVERIFY(creator.createSummaries(empty.parser).isEmpty());
    QCOMPARE(textOf(creator.createSummaries(opened.parser)), first);
}

QTEST_GUILESS_MAIN(TestSummaryCreator)

#include "tst_summarycreator.moc"
