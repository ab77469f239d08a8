#include "DebugLines.h"
#include "Latin1.h"

#include <tresk/SummaryCreator.h>

#include <QLoggingCategory>
#include <QTest>

using tresk::FileSummary;
using tresk::printFileSummary;
using tresk::printSummary;
using tresk::Summary;
using tresktest::latin1;
using tresktest::latin1List;
using tresktest::MessageCapture;

namespace {

QStringList printed(const Summary& summary)
{
    const MessageCapture capture;
    printSummary(summary);
    return tresktest::debugLines(capture);
}

QStringList printed(const FileSummary& file)
{
    const MessageCapture capture;
    printFileSummary(file);
    return tresktest::debugLines(capture);
}

FileSummary filledFile()
{
    FileSummary file;
    file.tagId = 12;
    file.filename = latin1("a name");
    file.filepath = latin1("a/path");
    file.filetype = latin1("a type");
    file.description = latin1("a description");
    file.comment = latin1("a comment");
    file.lastModified = latin1("yesterday");
    file.generateMD5 = true;
    file.embedded = false;
    file.preview = true;
    file.previewWS = false;
    file.thumbnail = true;
    file.thumbnailOnly = false;
    file.uncompressedSize = 20;
    file.uncompressedMD5 = latin1("a digest");
    file.compressedMethod = latin1("flate");
    file.compressedSize = 10;
    file.compressedMD5 = latin1("another digest");
    file.userAttributes = {{latin1("key"), latin1("value")}};
    file.userAttributeUnits = {{latin1("key"), latin1("not shown")}};
    file.userAttributeNames = latin1List({"key", "not shown"});
    file.filePurpose = latin1("OutFile");
    file.state = 77;
    return file;
}

QStringList filledFileLines()
{
    return latin1List({
        "  TagID 12",
        "  Filename \"a name\"",
        "  Filepath \"a/path\"",
        "  Filetype \"a type\"",
        "  Description \"a description\"",
        "  Comment \"a comment\"",
        "  LastModified \"yesterday\"",
        "  GenerateMD5 true",
        "  Embedded false",
        "  UncompressedSize 20",
        "  UncompressedMD5 \"a digest\"",
        "  CompressedMethod \"flate\"",
        "  CompressedSize 10",
        "  CompressedMD5 \"another digest\"",
        "  FilePurpose \"OutFile\"",
        "  Preview true",
        "  PreviewWS false",
        "  Thumbnail true",
        "  ThumbnailOnly false",
        "  File User Attributes: QHash((\"key\", \"value\"))",
    });
}

QStringList defaultFileLines()
{
    return latin1List({
        "  TagID -1",
        "  Filename \"\"",
        "  Filepath \"\"",
        "  Filetype \"\"",
        "  Description \"\"",
        "  Comment \"\"",
        "  LastModified \"\"",
        "  GenerateMD5 false",
        "  Embedded false",
        "  UncompressedSize -1",
        "  UncompressedMD5 \"\"",
        "  CompressedMethod \"\"",
        "  CompressedSize -1",
        "  CompressedMD5 \"\"",
        "  FilePurpose \"Undefined\"",
        "  Preview false",
        "  PreviewWS false",
        "  Thumbnail false",
        "  ThumbnailOnly false",
        "  File User Attributes: QHash()",
    });
}

} // namespace

class TestSummaryPrinting : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void defaultFile();
    void filledFile();
    void flagsOfAFile();
    void defaultSummary();
    void filledSummary();
    void attributesInOrderOfTheirNames();
    void attributesInOrderWhateverTheHash();
    void textsAreQuoted();
    void categoryCanBeSwitchedOff();
};

void TestSummaryPrinting::defaultFile()
{
    QCOMPARE(printed(FileSummary()), defaultFileLines());
}

void TestSummaryPrinting::filledFile()
{
    QCOMPARE(printed(::filledFile()), filledFileLines());
}

void TestSummaryPrinting::flagsOfAFile()
{
    // The other way round than in the filled file.
    FileSummary file;
    file.embedded = true;
    file.previewWS = true;
    file.thumbnailOnly = true;
    QStringList expected = defaultFileLines();
    expected.replace(8, latin1("  Embedded true"));
    expected.replace(16, latin1("  PreviewWS true"));
    expected.replace(18, latin1("  ThumbnailOnly true"));
    QCOMPARE(printed(file), expected);
}

void TestSummaryPrinting::defaultSummary()
{
    const QStringList expected = latin1List({
        "TagID 0",
        "TreskRootFile: \"\"",
        "Timestamp: \"\"",
        "Title: \"\"",
        "Description: \"\"",
        "Comment: \"\"",
        "Command: \"\"",
        "Tool: \"\"",
        "ToolPath: \"\"",
        "Host: \"\"",
        "User: \"\"",
        "Creator: \"\"",
        "PDFTitle: \"\"",
        "PDFAuthor: \"\"",
        "PDFSubject: \"\"",
        "PDFKeywords: \"\"",
        "PDFProducer: \"\"",
        "PDFCreator: \"\"",
        "Step User Attributes: QHash()",
        "Summary MD5: \"\"",
    });
    QCOMPARE(printed(Summary()), expected);
}

void TestSummaryPrinting::filledSummary()
{
    Summary summary;
    summary.tagId = 6;
    summary.treskRootFile = latin1("root");
    summary.timestamp = latin1("now");
    summary.title = latin1("a title");
    summary.description = latin1("a description");
    summary.comment = latin1("a comment");
    summary.command = latin1("a command");
    summary.tool = latin1("a tool");
    summary.toolPath = latin1("a/path");
    summary.host = latin1("a host");
    summary.user = latin1("a user");
    summary.creator = latin1("a creator");
    summary.pdfTitle = latin1("pdf title");
    summary.pdfAuthor = latin1("pdf author");
    summary.pdfSubject = latin1("pdf subject");
    summary.pdfKeywords = latin1("pdf keywords");
    summary.pdfProducer = latin1("pdf producer");
    summary.pdfCreator = latin1("pdf creator");
    summary.files = QList<FileSummary>{::filledFile(), FileSummary()};
    summary.userAttributes = {{latin1("step key"), latin1("step value")}};
    summary.userAttributeUnits = {{latin1("step key"), latin1("not shown")}};
    summary.userAttributeNames = latin1List({"step key", "not shown"});
    summary.md5Signature = latin1("a signature");
    summary.fromXml = true;

    const QStringList before = latin1List({
        "TagID 6",
        "TreskRootFile: \"root\"",
        "Timestamp: \"now\"",
        "Title: \"a title\"",
        "Description: \"a description\"",
        "Comment: \"a comment\"",
        "Command: \"a command\"",
        "Tool: \"a tool\"",
        "ToolPath: \"a/path\"",
        "Host: \"a host\"",
        "User: \"a user\"",
        "Creator: \"a creator\"",
        "PDFTitle: \"pdf title\"",
        "PDFAuthor: \"pdf author\"",
        "PDFSubject: \"pdf subject\"",
        "PDFKeywords: \"pdf keywords\"",
        "PDFProducer: \"pdf producer\"",
        "PDFCreator: \"pdf creator\"",
    });
    const QStringList behind = latin1List({
        "Step User Attributes: QHash((\"step key\", \"step value\"))",
        "Summary MD5: \"a signature\"",
    });
    QCOMPARE(printed(summary), before + filledFileLines() + defaultFileLines() + behind);
}

void TestSummaryPrinting::attributesInOrderOfTheirNames()
{
    const QHash<QString, QString> attributes = {
        {latin1("b"), latin1("2")},  {latin1("a"), latin1("1")},  {latin1("B"), latin1("3")},
        {latin1("aa"), latin1("4")}, {latin1("10"), latin1("5")}, {latin1("9"), latin1("6")},
        {QString(), QString()},
    };
    const QString expected = latin1("QHash((\"\", \"\")(\"10\", \"5\")(\"9\", \"6\")(\"B\", \"3\")"
                                    "(\"a\", \"1\")(\"aa\", \"4\")(\"b\", \"2\"))");
    FileSummary file;
    file.userAttributes = attributes;
    QCOMPARE(printed(file).constLast(), latin1("  File User Attributes: ") + expected);
    Summary summary;
    summary.userAttributes = attributes;
    QVERIFY(printed(summary).contains(latin1("Step User Attributes: ") + expected));
}

void TestSummaryPrinting::attributesInOrderWhateverTheHash()
{
    // More of them than a hash would have in order by chance.
    QString expected = latin1("  File User Attributes: QHash(");
    FileSummary file;
    for (int i = 100; i < 300; ++i) {
        file.userAttributes.insert(QString::number(i), QString::number(-i));
        expected += QStringLiteral("(\"%1\", \"-%1\")").arg(i);
    }
    QCOMPARE(printed(file).constLast(), expected + QLatin1Char(')'));
}

void TestSummaryPrinting::textsAreQuoted()
{
    const QString odd = QStringLiteral("a \"b\"\\\n\u00e4%1");
    const QString shown = QStringLiteral("\"a \\\"b\\\"\\\\\\n\u00e4%1\"");
    Summary summary;
    summary.title = odd;
    summary.userAttributes = {{odd, odd}};
    const QStringList lines = printed(summary);
    QCOMPARE(lines.at(3), latin1("Title: ") + shown);
    QCOMPARE(lines.at(18),
             QStringLiteral("Step User Attributes: QHash((") + shown + latin1(", ") + shown
                 + latin1("))"));
    FileSummary file;
    file.filename = odd;
    QCOMPARE(printed(file).at(1), latin1("  Filename ") + shown);
}

void TestSummaryPrinting::categoryCanBeSwitchedOff()
{
    QLoggingCategory::setFilterRules(latin1("tresk.debug=false"));
    const QStringList silent = printed(Summary()) + printed(FileSummary());
    QLoggingCategory::setFilterRules(QString());
    QCOMPARE(silent, QStringList());
    QVERIFY(!printed(Summary()).isEmpty());
}

QTEST_GUILESS_MAIN(TestSummaryPrinting)

#include "tst_summaryprinting.moc"
