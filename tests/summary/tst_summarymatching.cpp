#include "DebugLines.h"
#include "Latin1.h"
#include "OpenedDocument.h"
#include "SummaryText.h"
#include "SummaryXml.h"

#include <tresk/FileHash.h>

#include <QTest>
#include <QtAlgorithms>

#include <array>
#include <random>
#include <vector>

using tresk::FileSummary;
using tresk::Summary;
using tresktest::DocumentWriter;
using tresktest::element;
using tresktest::FileElement;
using tresktest::FileSpec;
using tresktest::latin1;
using tresktest::newDocument;
using tresktest::OpenedDocument;
using tresktest::SectionSpec;
using tresktest::stepWith;
using tresktest::summaryFile;
using tresktest::summaryXml;

namespace {

/// A file in whose marker no value is empty.
FileSpec file(const char* name = "name", const QByteArray& content = "content")
{
    FileSpec spec = FileSpec::flate(latin1(name), content);
    spec.desc = latin1("description");
    spec.comment = latin1("comment");
    return spec;
}

/// The ids of the files in @p summary.
QList<int> ids(const Summary& summary)
{
    QList<int> result;
    for (const FileSummary& file : summary.files)
        result += file.tagId;
    return result;
}

/// The ids that are found for @p elements by the summary of a step with @p files.
QList<int> matched(QVector<FileSpec> files, const QVector<FileElement>& elements)
{
    QByteArray content;
    for (const FileElement& element : elements)
        content += element.xml();
    files += summaryFile(summaryXml(content));
    DocumentWriter document = newDocument();
    document.writeSection(stepWith(files));
    return ids(OpenedDocument(document).summaries().at(0));
}

const QByteArray someDigest = "900150983cd24fb0d6963f7d28e17f72";

/// A field that does not keep a file from being found, and how much it counts.
struct LightField {
    const char* markerKey;
    const char* elementName;
    const char* value;
    int weight;
};

const LightField lightFields[] = {
    {"filetype", "Filetype", "data", 1},
    {"comment", "Comment", "comment", 1},
    {"desc", "Description", "description", 1},
    {"md5cfile", "CompressedMD5", "900150983cd24fb0d6963f7d28e17f72", 2},
    {"cfilesize", "CompressedSize", "1234", 2},
    {"compression", "CompressedMethod", "flate", 2},
};
const int fieldSets = 1 << 6;

/// The sum of what the fields in a set count.
int weight(int set)
{
    int sum = 0;
    for (int i = 0; i < 6; ++i)
        sum += (set >> i & 1) * lightFields[i].weight;
    return sum;
}

/// A file in whose marker the fields in @p set are empty and the others have their value.
FileSpec without(int set, const QByteArray& name)
{
    FileSpec spec = FileSpec::plain(QString::fromLatin1(name), "content");
    for (int i = 0; i < 6; ++i)
        spec.with(lightFields[i].markerKey, (set >> i & 1) ? "" : lightFields[i].value);
    return spec;
}

} // namespace

/// How the files that a summary names find the embedded ones.
class TestSummaryMatching : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void differences_data();
    void differences();
    void allLightFieldsTogether();
    void nearestOfTwo();
    void lastOfEquallyNear();
    void nearestOfMany_data();
    void nearestOfMany();
    void firstNamedChoosesFirst();
    void eachFileOnce();
    void manyTimesTheSame();
    void notEmbeddedTakesNothing();
    void unknownSizeAndChecksum();
    void namesAreComparedAsWritten();
    void collidingKeys_data();
    void collidingKeys();
    void collidingFileIsLeft();
    void sectionsAreApart();
    void fileInSeveralSections();
    void filesOutsideTheSection();
    void summaryThatNamesItself();
};

void TestSummaryMatching::differences_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("found");
    const auto add = [](const char* title, const char* name, const QByteArray& value, bool found) {
        QTest::newRow(title) << QByteArray(name) << value << found;
    };
    add("none", "Filepath", "anything", true);
    add("name", "Filename", "other", false);
    add("case of the name", "Filename", "NAME", false);
    add("blank behind the name", "Filename", "name ", false);
    add("checksum", "UncompressedMD5", someDigest, false);
    add("no checksum", "UncompressedMD5", "", false);
    add("size", "UncompressedSize", "8", false);
    add("no size", "UncompressedSize", "", false);
    add("same size", "UncompressedSize", " +007 ", true);
    add("type", "Filetype", "other", true);
    add("description", "Description", "other", true);
    add("comment", "Comment", "other", true);
    add("stored checksum", "CompressedMD5", someDigest, true);
    add("stored size", "CompressedSize", "", true);
    add("method", "CompressedMethod", "none", true);
    add("embedded", "Embedded", "-5", true);
    add("not embedded", "Embedded", "0", false);
    add("no flag", "Embedded", "yes", false);
}

void TestSummaryMatching::differences()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, value);
    QFETCH(bool, found);
    const tresktest::MessageCapture capture;
    for (const char* role : {"InFile", "OutFile"}) {
        const FileElement element = FileElement(file(), role).with(name, value);
        QCOMPARE(matched({file("before"), file(), file("behind")}, {element}),
                 QList<int>{found ? 1 : -1});
    }
    QCOMPARE(tresktest::debugLines(capture), QStringList());
}

void TestSummaryMatching::allLightFieldsTogether()
{
    FileElement element(file());
    for (const LightField& field : lightFields)
        element.with(field.elementName, "0");
    QCOMPARE(matched({file()}, {element}), QList<int>{0});
}

void TestSummaryMatching::nearestOfTwo()
{
    // Two files under each key: any set of fields is wrong in the one, up to two in the other.
    QVector<FileSpec> files;
    QByteArray content;
    QList<int> expected;
    for (int first = 0; first < fieldSets; ++first) {
        for (int second = 0; second < fieldSets; ++second) {
            if (qPopulationCount(static_cast<quint32>(second)) > 2)
                continue;
            const QByteArray name = QByteArray::number(first) + '-' + QByteArray::number(second);
            const bool isFirst = weight(first) < weight(second);
            expected += static_cast<int>(files.size()) + (isFirst ? 0 : 1);
            files += without(first, name);
            files += without(second, name);
            content += FileElement(without(0, name)).xml();
        }
    }
    files += summaryFile(summaryXml(content));
    DocumentWriter document = newDocument();
    document.writeSection(stepWith(files));
    QCOMPARE(ids(OpenedDocument(document).summaries().at(0)), expected);
}

void TestSummaryMatching::lastOfEquallyNear()
{
    const FileElement element = FileElement(file());
    QCOMPARE(matched({file(), file("x"), file(), file(), file("y")}, {element, element, element}),
             (QList<int>{3, 2, 0}));
    // The same goes for files that are not quite the same.
    const FileElement other = FileElement(file()).with("Comment", "x");
    QCOMPARE(matched({file(), file(), file()}, {other, other}), (QList<int>{2, 1}));
}

void TestSummaryMatching::nearestOfMany_data()
{
    QTest::addColumn<int>("files");
    QTest::addColumn<int>("values");
    for (const int files : {1, 2, 15, 16, 17, 18, 40, 300}) {
        for (const int values : {1, 2, 3, 40}) {
            QTest::newRow(qPrintable(QStringLiteral("%1 of %2 values").arg(files).arg(values)))
                << files << values;
        }
    }
}

void TestSummaryMatching::nearestOfMany()
{
    // Each looks for its own among all that are left.
    QFETCH(int, files);
    QFETCH(int, values);
    std::mt19937 random(static_cast<unsigned>(files * 100 + values));
    const auto draw = [&] {
        std::array<QByteArray, 6> result;
        for (QByteArray& value : result)
            value = QByteArray::number(static_cast<int>(random() % unsigned(values)));
        result[3] = result[3].rightJustified(32, '0'); // a checksum has this many digits
        return result;
    };
    QVector<FileSpec> specs;
    std::vector<std::array<QByteArray, 6>> fields;
    std::vector<bool> taken(static_cast<size_t>(files), false);
    for (int i = 0; i < files; ++i) {
        fields.push_back(draw());
        FileSpec spec = FileSpec::plain(latin1("name"), "content");
        for (size_t field = 0; field < 6; ++field)
            spec.with(lightFields[field].markerKey, fields.back()[field]);
        specs += spec;
    }
    QVector<FileElement> elements;
    QList<int> expected;
    for (int i = 0; i < files + 2; ++i) {
        const std::array<QByteArray, 6> wanted = draw();
        FileElement element(specs.constFirst());
        for (size_t field = 0; field < 6; ++field)
            element.with(lightFields[field].elementName, wanted[field]);
        elements += element;
        int nearest = -1;
        int smallest = 15;
        for (size_t file = 0; file < fields.size(); ++file) {
            int apart = 0;
            for (size_t field = 0; field < 6; ++field)
                apart += fields[file][field] == wanted[field] ? 0 : lightFields[field].weight;
            if (!taken[file] && apart <= smallest) {
                smallest = apart;
                nearest = static_cast<int>(file);
            }
        }
        expected += nearest;
        if (nearest >= 0)
            taken[static_cast<size_t>(nearest)] = true;
    }
    QCOMPARE(matched(specs, elements), expected);
}

void TestSummaryMatching::firstNamedChoosesFirst()
{
    FileSpec marked = file();
    marked.comment = latin1("marked");
    const FileElement vague = FileElement(file()).with("Comment", "vague");
    // A file that was taken is not given back to one that it suits better.
    QCOMPARE(matched({file(), marked}, {vague, FileElement(marked)}), (QList<int>{1, 0}));
    QCOMPARE(matched({file(), marked}, {FileElement(marked), vague}), (QList<int>{1, 0}));
    QCOMPARE(matched({marked, file()}, {vague, FileElement(marked)}), (QList<int>{1, 0}));
    QCOMPARE(matched({marked}, {vague, FileElement(marked)}), (QList<int>{0, -1}));
}

void TestSummaryMatching::eachFileOnce()
{
    const FileElement in(file(), "InFile");
    const FileElement out(file(), "OutFile");
    QCOMPARE(matched({file()}, {in, out}), (QList<int>{0, -1}));
    QCOMPARE(matched({file()}, {out, in, out}), (QList<int>{0, -1, -1}));
    QCOMPARE(matched({file(), file()}, {in, out, in}), (QList<int>{1, 0, -1}));
}

void TestSummaryMatching::manyTimesTheSame()
{
    const QVector<FileElement> elements(1000, FileElement(file()));
    QList<int> expected = {0};
    while (expected.size() < 1000)
        expected += -1;
    QCOMPARE(matched({file()}, elements), expected);
    for (int i = 0; i < 1000; ++i)
        expected[i] = 999 - i;
    QCOMPARE(matched(QVector<FileSpec>(1000, file()), elements), expected);
}

void TestSummaryMatching::notEmbeddedTakesNothing()
{
    const FileElement embedded(file());
    const FileElement notEmbedded = FileElement(file()).with("Embedded", "0");
    QCOMPARE(matched({file()}, {notEmbedded, embedded, notEmbedded}), (QList<int>{-1, 0, -1}));
}

void TestSummaryMatching::unknownSizeAndChecksum()
{
    // What the marker leaves empty and the summary leaves out is the same.
    FileSpec unknown = FileSpec::plain(latin1("name"), "content");
    unknown.with("filesize", "").with("md5file", "");
    const QByteArray bare = "<InFile><Filename>name</Filename><Embedded>1</Embedded></InFile>";
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({unknown, summaryFile(summaryXml(bare))}));
    QCOMPARE(ids(OpenedDocument(document).summaries().at(0)), QList<int>{0});
}

void TestSummaryMatching::namesAreComparedAsWritten()
{
    const FileSpec escaped = file("a]b\\c");
    QCOMPARE(matched({escaped}, {FileElement(escaped).with("Filename", "a\\]b\\\\c")}),
             QList<int>{0});
    QCOMPARE(matched({escaped}, {FileElement(escaped).with("Filename", "a]b\\c")}), QList<int>{-1});
    const FileSpec entity = file("a&b%1");
    QCOMPARE(matched({entity}, {FileElement(entity)}), QList<int>{0});
    QCOMPARE(matched({entity}, {FileElement(entity).with("Filename", "a&amp;b%1")}),
             QList<int>{-1});
    FileSpec umlaut = file();
    umlaut.filename = QStringLiteral("\u00e4");
    QCOMPARE(matched({umlaut}, {FileElement(umlaut)}), QList<int>{0});
}

void TestSummaryMatching::collidingKeys_data()
{
    QTest::addColumn<QByteArray>("markerName");
    QTest::addColumn<QByteArray>("markerDigest");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("digest");
    QTest::newRow("checksum in the marker")
        << QByteArray("a>-<b") << someDigest << QByteArray("a") << "b>-<" + someDigest;
    QTest::newRow("no checksum in the marker")
        << "a>-<" + someDigest << QByteArray() << QByteArray("a") << someDigest + ">-<";
    QTest::newRow("several parts")
        << QByteArray("a>-<b>-<c") << QByteArray() << QByteArray("a>-<b") << QByteArray("c>-<");
    QTest::newRow("no name in the summary")
        << QByteArray(">-<b") << someDigest << QByteArray() << "b>-<" + someDigest;
}

void TestSummaryMatching::collidingKeys()
{
    // The keys are the same, but name and checksum differ.
    QFETCH(QByteArray, markerName);
    QFETCH(QByteArray, markerDigest);
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, digest);
    FileSpec spec = file();
    spec.with("filename", markerName).with("md5file", markerDigest);
    FileElement element(spec);
    element.with("Filename", name).with("UncompressedMD5", digest);
    FileSummary summary;
    summary.filename = QString::fromLatin1(name);
    summary.uncompressedMD5 = QString::fromLatin1(digest);
    tresk::FileTag tag;
    tag.filename = QString::fromLatin1(markerName);
    tag.md5file = QString::fromLatin1(markerDigest);
    tag.filesize = summary.uncompressedSize;
    QCOMPARE(tresk::makeFileHash(summary, 0), tresk::makeFileHash(tag, 0));

    QCOMPARE(matched({spec}, {element}), QList<int>{-1});
}

void TestSummaryMatching::collidingFileIsLeft()
{
    FileSpec spec = file();
    spec.with("filename", "a>-<b").with("md5file", someDigest);
    FileElement colliding(spec);
    colliding.with("Filename", "a").with("UncompressedMD5", "b>-<" + someDigest);
    QCOMPARE(matched({spec}, {colliding, FileElement(spec)}), (QList<int>{-1, 0}));
}

void TestSummaryMatching::sectionsAreApart()
{
    const FileSpec summary = summaryFile(summaryXml(FileElement(file()).xml()));
    DocumentWriter document = newDocument();
    document.writeFile(file());
    document.writeSection(stepWith({file(), summary}));
    document.writeSection(stepWith({file("other"), summary}));
    document.writeSection(stepWith({file(), summary}));
    const QList<Summary> summaries = OpenedDocument(document).summaries();
    QCOMPARE(ids(summaries.at(0)), QList<int>{1});
    QCOMPARE(ids(summaries.at(1)), QList<int>{-1});
    QCOMPARE(ids(summaries.at(2)), QList<int>{5});
}

void TestSummaryMatching::fileInSeveralSections()
{
    // It can be taken once in each of them.
    const QByteArray element = FileElement(file()).xml();
    const FileSpec summary = summaryFile(summaryXml(element + element));
    DocumentWriter document = newDocument();
    const auto first = document.writeSection(stepWith({file(), summary}));
    SectionSpec second = stepWith({summary});
    second.regionStart = first.regionStart;
    document.writeSection(second);
    const QList<Summary> summaries = OpenedDocument(document).summaries();
    QCOMPARE(ids(summaries.at(0)), (QList<int>{0, -1}));
    QCOMPARE(ids(summaries.at(1)), (QList<int>{0, -1}));
}

void TestSummaryMatching::filesOutsideTheSection()
{
    DocumentWriter document = newDocument();
    document.writeFile(file());
    document.writeSection(stepWith({summaryFile(summaryXml(FileElement(file()).xml()))}));
    const QList<Summary> summaries = OpenedDocument(document).summaries();
    QCOMPARE(ids(summaries.at(0)), QList<int>{-1});
    QCOMPARE(ids(summaries.at(1)), QList<int>{0});
}

void TestSummaryMatching::summaryThatNamesItself()
{
    FileSpec summary = summaryFile(QByteArray());
    summary.with("filesize", "5").with("md5file", "");
    summary.content = summaryXml(FileElement(summary).xml());
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({file(), summary}));
    QCOMPARE(ids(OpenedDocument(document).summaries().at(0)), QList<int>{1});
}

QTEST_GUILESS_MAIN(TestSummaryMatching)

#include "tst_summarymatching.moc"
