#include "DebugLines.h"
#include "Latin1.h"
#include "StepXml.h"
#include "SummaryText.h"

#include <tresk/SummaryReader.h>

#include <QTest>

#include <limits>

using tresk::FileSummary;
using tresk::Summary;
using tresk::SummaryReader;
using tresk::Workflowstep;
using tresktest::element;
using tresktest::emptyStep;
using tresktest::latin1;
using tresktest::MessageCapture;
using tresktest::readStep;
using tresktest::textOf;

using StepText = QString Workflowstep::*;
using FileText = QString FileSummary::*;
using FileNumber = int FileSummary::*;
using FileFlag = bool FileSummary::*;
Q_DECLARE_METATYPE(StepText)
Q_DECLARE_METATYPE(FileText)
Q_DECLARE_METATYPE(FileNumber)
Q_DECLARE_METATYPE(FileFlag)

namespace {

FileSummary readFile(const QString& content)
{
    const Summary summary = readStep(element("InFile", content));
    return summary.files.size() == 1 ? summary.files.at(0) : FileSummary();
}

/// A file without content as it is read.
FileSummary emptyFile()
{
    FileSummary file;
    file.tagId = -1;
    file.filePurpose = latin1("InFile");
    return file;
}

const char oddText[] = "  A &amp; &lt;B&gt; <b>\n\t%1</b> ";

} // namespace

/// Which element goes where, and what is made of its content.
class TestSummaryReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isAPlainObject();
    void stepTexts_data();
    void stepTexts();
    void fileTexts_data();
    void fileTexts();
    void fileNumbers_data();
    void fileNumbers();
    void fileFlags_data();
    void fileFlags();
    void numberContents_data();
    void numberContents();
    void lastNumberWins();
    void purposes();
};

void TestSummaryReader::isAPlainObject()
{
    const SummaryReader reader;
    QCOMPARE(reader.metaObject()->className(), "tresk::SummaryReader");
    QCOMPARE(reader.metaObject()->methodCount(), QObject::staticMetaObject.methodCount());
    QVERIFY(!reader.parent());
}

void TestSummaryReader::stepTexts_data()
{
    QTest::addColumn<StepText>("field");
    const auto add = [](const char* name, StepText field) { QTest::newRow(name) << field; };
    add("TreskRootFile", &Workflowstep::treskRootFile);
    add("Timestamp", &Workflowstep::timestamp);
    add("Title", &Workflowstep::title);
    add("Description", &Workflowstep::description);
    add("Comment", &Workflowstep::comment);
    add("Command", &Workflowstep::command);
    add("Tool", &Workflowstep::tool);
    add("ToolPath", &Workflowstep::toolPath);
    add("Host", &Workflowstep::host);
    add("User", &Workflowstep::user);
    add("Creator", &Workflowstep::creator);
    add("PDFTitle", &Workflowstep::pdfTitle);
    add("PDFAuthor", &Workflowstep::pdfAuthor);
    add("PDFSubject", &Workflowstep::pdfSubject);
    add("PDFKeywords", &Workflowstep::pdfKeywords);
    add("PDFProducer", &Workflowstep::pdfProducer);
    add("PDFCreator", &Workflowstep::pdfCreator);
}

void TestSummaryReader::stepTexts()
{
    QFETCH(StepText, field);
    const char* name = QTest::currentDataTag();
    const MessageCapture capture;
    Summary expected = emptyStep();
    expected.*field = latin1(oddText);
    QCOMPARE(textOf(readStep(element(name, oddText))), textOf(expected));
    // The last one wins, also if it is empty.
    QCOMPARE(textOf(readStep(element(name, "x") + element(name, oddText))), textOf(expected));
    expected.*field = latin1("");
    const QString slashForm = QStringLiteral("<%1/>").arg(latin1(name));
    QCOMPARE(textOf(readStep(element(name, "x") + slashForm)), textOf(expected));
    QCOMPARE(tresktest::debugLines(capture), QStringList());

    // It has its meaning in its place only.
    const Summary elsewhere = SummaryReader().readSummary(element("trxchange", element(name, "x")));
    QVERIFY((elsewhere.*field).isNull());
    QVERIFY((readStep(element("X", element(name, "x"))).*field).isNull());
}

void TestSummaryReader::fileTexts_data()
{
    QTest::addColumn<FileText>("field");
    const auto add = [](const char* name, FileText field) { QTest::newRow(name) << field; };
    add("Filename", &FileSummary::filename);
    add("Filepath", &FileSummary::filepath);
    add("Filetype", &FileSummary::filetype);
    add("Description", &FileSummary::description);
    add("Comment", &FileSummary::comment);
    add("LastModified", &FileSummary::lastModified);
    add("UncompressedMD5", &FileSummary::uncompressedMD5);
    add("CompressedMethod", &FileSummary::compressedMethod);
    add("CompressedMD5", &FileSummary::compressedMD5);
}

void TestSummaryReader::fileTexts()
{
    QFETCH(FileText, field);
    const char* name = QTest::currentDataTag();
    const MessageCapture capture;
    FileSummary expected = emptyFile();
    expected.*field = latin1(oddText);
    QCOMPARE(textOf(readFile(element(name, oddText))), textOf(expected));
    QCOMPARE(textOf(readFile(element(name, "x") + element(name, oddText))), textOf(expected));
    expected.*field = latin1("");
    QCOMPARE(textOf(readFile(element(name, "x") + element(name, ""))), textOf(expected));
    QCOMPARE(tresktest::debugLines(capture), QStringList());
}

void TestSummaryReader::fileNumbers_data()
{
    QTest::addColumn<FileNumber>("field");
    QTest::newRow("UncompressedSize") << FileNumber(&FileSummary::uncompressedSize);
    QTest::newRow("CompressedSize") << FileNumber(&FileSummary::compressedSize);
}

void TestSummaryReader::fileNumbers()
{
    QFETCH(FileNumber, field);
    const MessageCapture capture;
    FileSummary expected = emptyFile();
    expected.*field = 1234567890;
    QCOMPARE(textOf(readFile(element(QTest::currentDataTag(), "1234567890"))), textOf(expected));
    QCOMPARE(tresktest::debugLines(capture), QStringList());
}

void TestSummaryReader::fileFlags_data()
{
    QTest::addColumn<FileFlag>("field");
    const auto add = [](const char* name, FileFlag field) { QTest::newRow(name) << field; };
    add("GenerateMD5", &FileSummary::generateMD5);
    add("Embedded", &FileSummary::embedded);
    add("Preview", &FileSummary::preview);
    add("PreviewWS", &FileSummary::previewWS);
    add("Thumbnail", &FileSummary::thumbnail);
    add("ThumbnailOnly", &FileSummary::thumbnailOnly);
}

void TestSummaryReader::fileFlags()
{
    QFETCH(FileFlag, field);
    const char* name = QTest::currentDataTag();
    const MessageCapture capture;
    FileSummary expected = emptyFile();
    QCOMPARE(textOf(readFile(element(name, "0"))), textOf(expected));
    QCOMPARE(textOf(readFile(element(name, "1") + element(name, "0"))), textOf(expected));
    expected.*field = true;
    QCOMPARE(textOf(readFile(element(name, "1"))), textOf(expected));
    QCOMPARE(tresktest::debugLines(capture), QStringList());
}

void TestSummaryReader::numberContents_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("flag");
    const auto add = [](const char* content, int number, bool flag) {
        QTest::newRow(qPrintable(tresktest::quotedOrNull(latin1(content))))
            << latin1(content) << number << flag;
    };
    add("0", 0, false);
    add("-0", 0, false);
    add("1", 1, true);
    add("2", 2, true);
    add("-1", -1, true);
    add("+7", 7, true);
    add("-12", -12, true);
    add(" 5\n", 5, true);
    add("\t 0 ", 0, false);
    add("007", 7, true);
    add("2147483647", std::numeric_limits<int>::max(), true);
    add("-2147483648", std::numeric_limits<int>::min(), true);
    add("2147483648", -1, false);
    add("-2147483649", -1, false);
    add("99999999999999999999999", -1, false);
    add("", -1, false);
    add(" ", -1, false);
    add("12k", -1, false);
    add("yes", -1, false);
    add("true", -1, false);
    add("1.0", -1, false);
    add("1e3", -1, false);
    add("0x10", -1, false);
    add("1,000", -1, false);
    add("1 000", -1, false);
    add("--1", -1, false);
    add("+-1", -1, false);
    add("+ 1", -1, false);
    add("&#49;", -1, false);
    add("<b>1</b>", -1, false);
    QTest::newRow("other digits") << QStringLiteral("\u0661") << -1 << false;
    QTest::newRow("wide digits") << QStringLiteral("\uff11") << -1 << false;
}

void TestSummaryReader::numberContents()
{
    QFETCH(QString, content);
    QFETCH(int, number);
    QFETCH(bool, flag);
    QCOMPARE(readFile(element("UncompressedSize", content)).uncompressedSize, number);
    QCOMPARE(readFile(element("CompressedSize", content)).compressedSize, number);
    QCOMPARE(readFile(element("Embedded", content)).embedded, flag);
    QCOMPARE(readFile(element("ThumbnailOnly", content)).thumbnailOnly, flag);
}

void TestSummaryReader::lastNumberWins()
{
    // What is no number takes the place of what was one.
    const FileSummary file = readFile(element("UncompressedSize", "5")
                                      + element("UncompressedSize", "x") + element("Embedded", "1")
                                      + element("Embedded", "x") + element("CompressedSize", "x")
                                      + element("CompressedSize", "5"));
    QCOMPARE(file.uncompressedSize, -1);
    QCOMPARE(file.embedded, false);
    QCOMPARE(file.compressedSize, 5);
}

void TestSummaryReader::purposes()
{
    const MessageCapture capture;
    const Summary summary = readStep(
        element("InFile", element("Filename", "a")) + element("Title", "x")
        + element("OutFile", element("Filename", "b") + element("FilePurpose", "InFile"))
        + element("InFile", element("Filename", "c")) + latin1("<OutFile/>"));
    QStringList files;
    for (const FileSummary& file : summary.files) {
        files += file.filePurpose + QLatin1Char(' ') + tresktest::quotedOrNull(file.filename);
        QCOMPARE(file.tagId, -1);
    }
    const QStringList expected = {latin1("InFile \"a\""), latin1("OutFile \"b\""),
                                  latin1("InFile \"c\""), latin1("OutFile (null)")};
    QCOMPARE(files, expected);
    QCOMPARE(tresktest::debugLines(capture),
             QStringList{latin1("unknown tag (ParseFile): \"FilePurpose\" : \"InFile\"")});
}

QTEST_GUILESS_MAIN(TestSummaryReader)

#include "tst_summaryreader.moc"
