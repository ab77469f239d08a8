#include "SummaryText.h"

#include <tresk/Summary.h>
#include <tresk/TreskParser.h>
#include <tresk/Tripple.h>

#include <QSharedPointer>
#include <QTest>

#include <type_traits>

using tresk::FileSummary;
using tresk::FileTag;
using tresk::makeFileSummaryFromFileTag;
using tresk::makeSummaryFromTags;
using tresk::SectionTag;
using tresk::Summary;
using tresk::Tripple;
using tresk::Workflowstep;
using tresktest::textOf;

static_assert(std::is_base_of_v<Workflowstep, Summary>);
static_assert(!std::is_polymorphic_v<Summary> && !std::is_polymorphic_v<FileSummary>);
static_assert(std::is_copy_constructible_v<Summary> && std::is_copy_assignable_v<Summary>);
static_assert(std::is_copy_constructible_v<FileSummary> && std::is_copy_assignable_v<FileSummary>);

namespace {

QString text(const char* latin1)
{
    return QString::fromLatin1(latin1);
}

/// A tag with a different value in each field.
FileTag fileTag(int id = 4)
{
    FileTag tag;
    tag.id = id;
    tag.pos = 100;
    tag.tagLength = 200;
    tag.filetype = text("a type");
    tag.filename = QStringLiteral("name %1\\]").arg(id);
    tag.desc = text("a description");
    tag.comment = text("a comment");
    tag.compression = text("flate");
    tag.filesize = 300;
    tag.cfilesize = 150;
    tag.blocksize = 160;
    tag.offset = 1;
    tag.md5file = text("d41d8cd98f00b204e9800998ecf8427e");
    tag.md5cfile = text("900150983cd24fb0d6963f7d28e17f72");
    return tag;
}

SectionTag sectionTag()
{
    SectionTag tag;
    tag.id = 3;
    tag.pos = 1000;
    tag.version = text("1.0");
    tag.creator = text("a creator");
    tag.title = text("a title");
    tag.index = 7;
    tag.md5section = text("d41d8cd98f00b204e9800998ecf8427e");
    return tag;
}

/// A file without a default value in it.
FileSummary filledFile()
{
    FileSummary file;
    file.tagId = 5;
    file.filename = text("name");
    file.filepath = text("path");
    file.filetype = text("type");
    file.description = text("description");
    file.comment = text("comment");
    file.lastModified = text("yesterday");
    file.generateMD5 = true;
    file.embedded = true;
    file.preview = true;
    file.previewWS = true;
    file.thumbnail = true;
    file.thumbnailOnly = true;
    file.uncompressedSize = 20;
    file.uncompressedMD5 = text("digest");
    file.compressedMethod = text("none");
    file.compressedSize = 10;
    file.compressedMD5 = text("other digest");
    file.userAttributes = {{text("key"), text("value")}};
    file.userAttributeUnits = {{text("key"), text("unit")}};
    file.userAttributeNames = QStringList{text("key"), text("key")};
    file.filePurpose = text("OutFile");
    file.state = 77;
    return file;
}

/// A summary without a default value in it.
Summary filledSummary()
{
    Summary summary;
    summary.tagId = 6;
    summary.treskRootFile = text("root");
    summary.timestamp = text("now");
    summary.title = text("title");
    summary.description = text("description");
    summary.comment = text("comment");
    summary.command = text("command");
    summary.tool = text("tool");
    summary.toolPath = text("path");
    summary.host = text("host");
    summary.user = text("user");
    summary.creator = text("creator");
    summary.pdfTitle = text("pdf title");
    summary.pdfAuthor = text("pdf author");
    summary.pdfSubject = text("pdf subject");
    summary.pdfKeywords = text("pdf keywords");
    summary.pdfProducer = text("pdf producer");
    summary.pdfCreator = text("pdf creator");
    summary.files = QList<FileSummary>{filledFile(), FileSummary()};
    summary.userAttributes = {{text("key"), text("value")}};
    summary.userAttributeUnits = {{text("key"), text("unit")}};
    summary.userAttributeNames = QStringList{text("key")};
    summary.md5Signature = text("signature");
    summary.fromXml = true;
    return summary;
}

} // namespace

class TestSummaryRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fileDefaults();
    void stepDefaults();
    void textShowsEveryField();
    void copiesOfFiles();
    void copiesOfSummaries();
    void copiesAreIndependent();
    void stepOfASummary();
    void fileFromTag();
    void fileFromTagWithoutSizes();
    void fileFromEmptyTag();
    void summaryFromTags();
    void summaryWithoutFiles();
    void summaryKeepsOrderOfFiles();
    void tripple();
};

void TestSummaryRecords::fileDefaults()
{
    const QStringList expected = {
        text("  tagId: -1"),
        text("  filename: (null)"),
        text("  filepath: (null)"),
        text("  filetype: (null)"),
        text("  description: (null)"),
        text("  comment: (null)"),
        text("  lastModified: (null)"),
        text("  generateMD5: false"),
        text("  embedded: false"),
        text("  preview: false"),
        text("  previewWS: false"),
        text("  thumbnail: false"),
        text("  thumbnailOnly: false"),
        text("  uncompressedSize: -1"),
        text("  uncompressedMD5: (null)"),
        text("  compressedMethod: (null)"),
        text("  compressedSize: -1"),
        text("  compressedMD5: (null)"),
        text("  filePurpose: \"Undefined\""),
        text("  state: 1"),
    };
    QCOMPARE(textOf(FileSummary()), expected);
}

void TestSummaryRecords::stepDefaults()
{
    const QStringList expected = {
        text("tagId: 0"),
        text("treskRootFile: (null)"),
        text("timestamp: (null)"),
        text("title: (null)"),
        text("description: (null)"),
        text("comment: (null)"),
        text("command: (null)"),
        text("tool: (null)"),
        text("toolPath: (null)"),
        text("host: (null)"),
        text("user: (null)"),
        text("creator: (null)"),
        text("pdfTitle: (null)"),
        text("pdfAuthor: (null)"),
        text("pdfSubject: (null)"),
        text("pdfKeywords: (null)"),
        text("pdfProducer: (null)"),
        text("pdfCreator: (null)"),
        text("md5Signature: (null)"),
        text("fromXml: false"),
    };
    QCOMPARE(textOf(Summary()), expected);
    QVERIFY(Summary().files.isEmpty());
}

void TestSummaryRecords::textShowsEveryField()
{
    // No line of the one is a line of the other, the two records of files included.
    const QStringList filled = textOf(filledFile());
    QCOMPARE(filled.size(), 24);
    for (const QString& line : textOf(FileSummary()))
        QVERIFY2(!filled.contains(line), qPrintable(line));
    Summary summary = filledSummary();
    summary.files.clear();
    const QStringList step = textOf(summary);
    QCOMPARE(step.size(), 23);
    for (const QString& line : textOf(Summary()))
        QVERIFY2(!step.contains(line), qPrintable(line));
}

void TestSummaryRecords::copiesOfFiles()
{
    const FileSummary file = filledFile();
    const FileSummary copy = file;
    QCOMPARE(textOf(copy), textOf(file));
    FileSummary assigned;
    assigned = file;
    QCOMPARE(textOf(assigned), textOf(file));
    QCOMPARE(assigned.filePurpose, text("OutFile"));
    QCOMPARE(assigned.state, 77);
}

void TestSummaryRecords::copiesOfSummaries()
{
    const Summary summary = filledSummary();
    const Summary copy = summary;
    QCOMPARE(textOf(copy), textOf(summary));
    Summary assigned;
    assigned = summary;
    QCOMPARE(textOf(assigned), textOf(summary));
    assigned = Summary();
    QCOMPARE(textOf(assigned), textOf(Summary()));
}

void TestSummaryRecords::copiesAreIndependent()
{
    const Summary summary = filledSummary();
    Summary copy = summary;
    copy.files[0].filename = text("changed");
    copy.files[0].userAttributes.insert(text("key"), text("changed"));
    copy.userAttributeNames += text("changed");
    QCOMPARE(textOf(summary), textOf(filledSummary()));
}

void TestSummaryRecords::stepOfASummary()
{
    // The step is a part of the summary that can be replaced without the rest.
    Summary summary;
    summary.md5Signature = text("kept");
    summary.fromXml = true;
    static_cast<Workflowstep&>(summary) = filledSummary();
    Summary expected = filledSummary();
    expected.md5Signature = text("kept");
    QCOMPARE(textOf(summary), textOf(expected));
}

void TestSummaryRecords::fileFromTag()
{
    FileSummary expected;
    expected.tagId = 4;
    expected.filetype = text("a type");
    expected.filename = text("name 4\\]");
    expected.description = text("a description");
    expected.comment = text("a comment");
    expected.compressedMethod = text("flate");
    expected.compressedSize = 150;
    expected.uncompressedSize = 300;
    expected.compressedMD5 = text("900150983cd24fb0d6963f7d28e17f72");
    expected.uncompressedMD5 = text("d41d8cd98f00b204e9800998ecf8427e");
    QCOMPARE(textOf(makeFileSummaryFromFileTag(fileTag())), textOf(expected));
}

void TestSummaryRecords::fileFromTagWithoutSizes()
{
    FileTag tag = fileTag();
    tag.filesize = -1;
    tag.cfilesize = -1;
    FileSummary file = makeFileSummaryFromFileTag(tag);
    QCOMPARE(file.uncompressedSize, -1);
    QCOMPARE(file.compressedSize, -1);
    tag.filesize = 0;
    tag.cfilesize = 0;
    file = makeFileSummaryFromFileTag(tag);
    QCOMPARE(file.uncompressedSize, 0);
    QCOMPARE(file.compressedSize, 0);
}

void TestSummaryRecords::fileFromEmptyTag()
{
    // Values of a marker that are there without content stay apart from such that are not.
    FileTag tag;
    tag.comment = text("");
    const FileSummary file = makeFileSummaryFromFileTag(tag);
    QCOMPARE(file.tagId, 0);
    QVERIFY(file.comment.isEmpty() && !file.comment.isNull());
    QVERIFY(file.description.isNull());
}

void TestSummaryRecords::summaryFromTags()
{
    Summary expected;
    expected.tagId = 3;
    expected.title = text("a title");
    expected.creator = text("a creator");
    expected.files = QList<FileSummary>{makeFileSummaryFromFileTag(fileTag())};
    QCOMPARE(textOf(makeSummaryFromTags(sectionTag(), {fileTag()})), textOf(expected));
}

void TestSummaryRecords::summaryWithoutFiles()
{
    const Summary summary = makeSummaryFromTags(sectionTag(), {});
    QCOMPARE(summary.tagId, 3);
    QVERIFY(summary.files.isEmpty());
    QVERIFY(!summary.fromXml);
    QVERIFY(summary.md5Signature.isNull());
}

void TestSummaryRecords::summaryKeepsOrderOfFiles()
{
    const QList<FileTag> tags = {fileTag(9), fileTag(2), fileTag(5)};
    const Summary summary = makeSummaryFromTags(SectionTag(), tags);
    QCOMPARE(summary.files.size(), 3);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(textOf(summary.files.at(i)), textOf(makeFileSummaryFromFileTag(tags.at(i))));
        QCOMPARE(summary.files.at(i).filePurpose, text("Undefined"));
    }
}

void TestSummaryRecords::tripple()
{
    const Tripple<int, QString, QSharedPointer<int>> empty;
    QCOMPARE(empty.first, 0);
    QVERIFY(empty.second.isNull());
    QVERIFY(empty.third.isNull());

    Tripple<int, QString, QStringList> three{1, text("two"), {text("three")}};
    const Tripple<int, QString, QStringList> copy = three;
    three.first = 4;
    three.third += text("five");
    QCOMPARE(copy.first, 1);
    QCOMPARE(copy.second, text("two"));
    QCOMPARE(copy.third, QStringList{text("three")});
}

QTEST_GUILESS_MAIN(TestSummaryRecords)

#include "tst_summaryrecords.moc"
