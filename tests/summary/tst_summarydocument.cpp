#include "DebugLines.h"
#include "Latin1.h"
#include "StepXml.h"
#include "SummaryText.h"

#include <tresk/SummaryReader.h>

#include <QTest>

using tresk::FileSummary;
using tresk::Summary;
using tresk::SummaryReader;
using tresktest::documentOf;
using tresktest::element;
using tresktest::emptyStep;
using tresktest::latin1;
using tresktest::MessageCapture;
using tresktest::textOf;

namespace {

const char oddText[] = "  A &amp; &lt;B&gt; <b>\n\t%1</b> ";

} // namespace

/// The document around a step: what counts as one, and what is taken from several.
class TestSummaryDocument : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void signature();
    void signatureOutsideItsPlace();
    void documents_data();
    void documents();
    void emptyDocuments_data();
    void emptyDocuments();
    void firstTrxchangeCounts();
    void laterWorkflowstepReplaces();
    void readerHasNoState();
    void wholeDocument();
};

void TestSummaryDocument::signature()
{
    const auto read = [](const QString& content) {
        return SummaryReader().readSummary(element("trxchange", content));
    };
    const QString step = element("Workflowstep", element("Title", "x"));
    Summary expected;
    expected.fromXml = true;
    expected.md5Signature = latin1(oddText);
    QCOMPARE(textOf(read(element("MD5Signature", oddText))), textOf(expected));
    QCOMPARE(textOf(read(element("MD5Signature", "x") + element("MD5Signature", oddText))),
             textOf(expected));
    expected.tagId = -1;
    expected.title = latin1("x");
    QCOMPARE(textOf(read(element("MD5Signature", oddText) + step)), textOf(expected));
    QCOMPARE(textOf(read(step + element("MD5Signature", oddText))), textOf(expected));
    expected.md5Signature = latin1("");
    QCOMPARE(textOf(read(step + latin1("<MD5Signature/>"))), textOf(expected));
    expected.md5Signature = QString();
    QCOMPARE(textOf(read(step)), textOf(expected));
}

void TestSummaryDocument::signatureOutsideItsPlace()
{
    const MessageCapture capture;
    QVERIFY(SummaryReader()
                .readSummary(documentOf(element("MD5Signature", "x")))
                .md5Signature.isNull());
    QCOMPARE(tresktest::debugLines(capture),
             QStringList{latin1("unknown tag (parseWorkflowstep): \"MD5Signature\" : \"x\"")});
    const Summary behind = SummaryReader().readSummary(documentOf(QString())
                                                       + element("MD5Signature", "x"));
    QVERIFY(behind.md5Signature.isNull());
}

void TestSummaryDocument::documents_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("behind");
    const QString none;
    QTest::newRow("alone") << none << none;
    QTest::newRow("declaration") << latin1("<?xml version=\"1.0\"?>\n") << latin1("\n");
    QTest::newRow("comments") << latin1("<!-- <trxchange/> -->") << latin1("<!-- -->");
    QTest::newRow("other elements") << latin1("<a>x</a><trxChange/>") << latin1("<b>y</b>");
    QTest::newRow("faults behind") << none << latin1("</trxchange><");
    QTest::newRow("text") << latin1("some text ") << latin1("more");
}

void TestSummaryDocument::documents()
{
    QFETCH(QString, before);
    QFETCH(QString, behind);
    const MessageCapture capture;
    Summary expected = emptyStep();
    expected.title = latin1("x");
    const QString text = before + documentOf(element("Title", "x")) + behind;
    QCOMPARE(textOf(SummaryReader().readSummary(text)), textOf(expected));
    // What stands beside the document is no matter of debug lines.
    QCOMPARE(tresktest::debugLines(capture), QStringList());
}

void TestSummaryDocument::emptyDocuments_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("tagId");
    QTest::addColumn<bool>("fromXml");
    const auto add = [](const char* name, const char* text, int tagId, bool fromXml) {
        QTest::newRow(name) << latin1(text) << tagId << fromXml;
    };
    QTest::newRow("null") << QString() << 0 << false;
    add("nothing", "", 0, false);
    add("text", "trxchange", 0, false);
    add("not closed", "<trxchange><Workflowstep/>", 0, false);
    add("closed wrongly", "<trxchange></Trxchange>", 0, false);
    add("other case", "<TRXCHANGE/>", 0, false);
    add("nested in another", "<a><trxchange/></a>", 0, false);
    add("with attribute", "<trxchange a='b'></trxchange a='b'>", 0, false);
    add("behind a fault", "<a><trxchange></trxchange>", 0, false);
    add("behind a closing tag", "</a><trxchange></trxchange>", 0, false);
    add("step alone", "<Workflowstep/>", 0, false);
    add("slash form", "<trxchange/>", 0, true);
    add("no content", "<trxchange></trxchange>", 0, true);
    add("other content", "<trxchange>a <b/> c</trxchange>", 0, true);
    add("fault at once", "<trxchange></a><Workflowstep/></trxchange>", 0, true);
    add("empty step", "<trxchange><Workflowstep></Workflowstep></trxchange>", -1, true);
    add("step in slash form", "<trxchange><Workflowstep/></trxchange>", -1, true);
    add("step in another", "<trxchange><a><Workflowstep/></a></trxchange>", 0, true);
    add("step not closed", "<trxchange><Workflowstep></trxchange>", 0, true);
    add("fault behind the step", "<trxchange><Workflowstep/></a></trxchange>", -1, true);
}

void TestSummaryDocument::emptyDocuments()
{
    QFETCH(QString, text);
    QFETCH(int, tagId);
    QFETCH(bool, fromXml);
    const MessageCapture capture;
    Summary expected;
    expected.tagId = tagId;
    expected.fromXml = fromXml;
    QCOMPARE(textOf(SummaryReader().readSummary(text)), textOf(expected));
    QCOMPARE(tresktest::debugLines(capture), QStringList());
}

void TestSummaryDocument::firstTrxchangeCounts()
{
    const QString empty = latin1("<trxchange/>");
    const QString full = documentOf(element("Title", "x"));
    QVERIFY(SummaryReader().readSummary(empty + full).title.isNull());
    QCOMPARE(SummaryReader().readSummary(full + empty).title, latin1("x"));
}

void TestSummaryDocument::laterWorkflowstepReplaces()
{
    const QString first = element(
        "Workflowstep",
        element("Title", "1") + element("Comment", "1") + element("InFile", "")
            + element("UserAttributes", element("Attribute", element("Key", "1"))));
    const QString second = element("Workflowstep", element("Title", "2"));
    const QString signature = element("MD5Signature", "s");
    Summary expected = emptyStep();
    expected.title = latin1("2");
    expected.md5Signature = latin1("s");
    QCOMPARE(textOf(SummaryReader().readSummary(element("trxchange", first + signature + second))),
             textOf(expected));
}

void TestSummaryDocument::readerHasNoState()
{
    SummaryReader reader;
    const QString text = documentOf(element("Title", "x") + element("InFile", ""));
    const QStringList first = textOf(reader.readSummary(text));
    QCOMPARE(textOf(reader.readSummary(QString())), textOf(Summary()));
    QCOMPARE(textOf(reader.readSummary(text)), first);
}

void TestSummaryDocument::wholeDocument()
{
    const Summary summary = SummaryReader().readSummary(QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- a step -->\n<trxchange>\n"
        "  <Workflowstep>\n    <Title>measure</Title>\n    <Tool>ruler</Tool>\n"
        "    <OutFile>\n      <Filename>b.txt</Filename>\n"
        "      <UncompressedSize>12</UncompressedSize>\n    </OutFile>\n  </Workflowstep>\n"
        "  <MD5Signature>abc</MD5Signature>\n</trxchange>\n"));
    Summary expected = emptyStep();
    expected.title = latin1("measure");
    expected.tool = latin1("ruler");
    expected.md5Signature = latin1("abc");
    FileSummary file;
    file.filename = latin1("b.txt");
    file.uncompressedSize = 12;
    file.filePurpose = latin1("OutFile");
    expected.files = QList<FileSummary>{file};
    QCOMPARE(textOf(summary), textOf(expected));
}

QTEST_GUILESS_MAIN(TestSummaryDocument)

#include "tst_summarydocument.moc"
