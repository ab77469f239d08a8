#include "DocumentWriter.h"
#include "EmbeddedFiles.h"
#include "TestFiles.h"

#include <tresk/TreskParser.h>

#include <QTest>

using tresk::FileTag;
using tresk::TreskParser;
using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::newDocument;
using tresktest::SectionSpec;
using tresktest::TestDir;
using tresktest::WrittenFile;

namespace {

FileSpec named(const char* name, const QByteArray& content = "content")
{
    return FileSpec::plain(QString::fromLatin1(name), content);
}

/// A document with one section and two files.
QByteArray smallDocument()
{
    DocumentWriter doc = newDocument();
    SectionSpec section;
    section.files = {named("inner 1"), named("inner 2")};
    doc.writeSection(section);
    return doc.bytes();
}

} // namespace

/// How the markers of embedded files are found.
class TestFileScan : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void filesInOrder();
    void filesOutsideSections();
    void markerAtTheStartOfTheFile();
    void markerBehindByteOrderMark();
    void markerAtTheEndOfTheFile();
    void textBeforeMarker();
    void markerWithNulByte();
    void malformedMarkers();
    void gapsBetweenBlocks();
    void blockWithoutLineFeedHidesNextMarker();
    void shortData_data();
    void shortData();
    void binaryData();
    void embeddedDocumentIsNotSearched();
    void dataThatLooksLikeMarkerInsideJump();
    void dataThatLooksLikeMarkerBehindJump();
    void lineWhereTheJumpLandsIsNotExamined();
    void blocksizeEmpty();
    void blocksizeOutsideTheDocument_data();
    void blocksizeOutsideTheDocument();
    void sameInBothModes();

private:
    QStringList names(const DocumentWriter& doc)
    {
        if (!m_parser->open(m_dir.write(QStringLiteral("document"), doc.bytes())))
            return {QStringLiteral("(could not be opened)")};
        QStringList list;
        const QList<FileTag> files = m_parser->getFiles();
        for (const FileTag& file : files)
            list.append(file.filename);
        return list;
    }

    static QStringList list(std::initializer_list<const char*> names)
    {
        QStringList result;
        for (const char* name : names)
            result.append(QString::fromLatin1(name));
        return result;
    }

    TestDir m_dir;
    std::unique_ptr<TreskParser> m_parser;
};

void TestFileScan::init()
{
    m_parser = std::make_unique<TreskParser>();
}

void TestFileScan::filesInOrder()
{
    DocumentWriter doc = newDocument();
    SectionSpec section;
    section.files = {named("c"), named("a")};
    section.filesBehind = {named("b")};
    doc.writeSection(section);
    QCOMPARE(names(doc), list({"c", "a", "b"}));
    for (int id = 0; id < 3; ++id)
        QCOMPARE(m_parser->getFiles().at(id).id, id);
}

void TestFileScan::filesOutsideSections()
{
    DocumentWriter doc = newDocument();
    doc.writeFile(named("a"));
    doc.writeSection(SectionSpec());
    doc.writeFile(named("b"));
    QCOMPARE(names(doc), list({"a", "b"}));
    QCOMPARE(m_parser->getSectionlessFiles().size(), 2);
}

void TestFileScan::markerAtTheStartOfTheFile()
{
    DocumentWriter doc;
    FileSpec first = named("a", "");
    doc.writeFile(first);
    doc.writeHeader();
    QCOMPARE(names(doc), list({"a"}));
    QCOMPARE(m_parser->getFile(0)->pos, 1);
}

void TestFileScan::markerBehindByteOrderMark()
{
    // It begins the text of the file's first line, but not its bytes, which are what counts.
    DocumentWriter doc("\xef\xbb\xbf");
    doc.writeFile(named("a", ""));
    doc.writeHeader();
    doc.write("\xef\xbb\xbf");
    doc.writeFile(named("b", ""));
    QCOMPARE(names(doc), QStringList());
}

void TestFileScan::markerAtTheEndOfTheFile()
{
    DocumentWriter doc = newDocument();
    doc.setTerminator("");
    doc.writeHeader();
    doc.write("\n");
    const WrittenFile written = doc.writeFile(named("a", ""));
    QVERIFY(doc.bytes().endsWith("-->"));
    QCOMPARE(names(doc), list({"a"}));
    QCOMPARE(m_parser->getFile(0)->pos, written.lineStart + 1);
}

void TestFileScan::textBeforeMarker()
{
    for (const tresk::ParseMode mode : {tresk::ParseStrict, tresk::ParseTolerant}) {
        m_parser = std::make_unique<TreskParser>(mode);
        DocumentWriter doc = newDocument();
        doc.write("%%EOF");
        doc.writeFile(named("a"));
        doc.writeFile(named("b"));
        QCOMPARE(names(doc), list({"b"}));
    }
}

void TestFileScan::markerWithNulByte()
{
    DocumentWriter doc = newDocument();
    FileSpec nul = named("a");
    nul.afterMarker = QByteArray(1, '\0');
    doc.writeFile(nul);
    doc.writeFile(named("b"));
    QCOMPARE(names(doc), list({"b"}));
}

void TestFileScan::malformedMarkers()
{
    DocumentWriter doc = newDocument();
    doc.writeFile(named("a").with("filesize", "x"));
    doc.writeFile(named("b").with("md5file", "0"));
    doc.writeFile(named("c"));
    QCOMPARE(names(doc), list({"c"}));
    QCOMPARE(m_parser->getFile(0)->id, 0);
}

void TestFileScan::gapsBetweenBlocks()
{
    DocumentWriter doc = newDocument();
    FileSpec second = named("b");
    second.gap = "some text\n\n" + QByteArray(20000, '\0') + '\n';
    FileSpec third = named("c");
    third.trailing = "\n" + QByteArray(3000, 'x') + "\n";
    SectionSpec section;
    section.files = {named("a"), second, third, named("d")};
    doc.writeSection(section);
    QCOMPARE(names(doc), list({"a", "b", "c", "d"}));
    QCOMPARE(m_parser->getFilesInSection(0).size(), 4);
}

void TestFileScan::blockWithoutLineFeedHidesNextMarker()
{
    DocumentWriter doc = newDocument();
    FileSpec open = named("a");
    open.trailing = "";
    SectionSpec section;
    section.files = {open, named("b"), named("c")};
    doc.writeSection(section);
    QCOMPARE(names(doc), list({"a", "c"}));
}

void TestFileScan::shortData_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("line feed") << QByteArray("\n");
    QTest::newRow("line feeds") << QByteArray(200, '\n');
    QTest::newRow("byte") << QByteArray("x");
    QTest::newRow("NUL byte") << QByteArray(1, '\0');
    QTest::newRow("less than a marker") << QByteArray(100, 'x');
    QTest::newRow("as much as a marker") << QByteArray(220, 'x');
    QTest::newRow("more than a marker") << QByteArray(400, 'x');
    QTest::newRow("lines") << QByteArray("line\n").repeated(100);
}

void TestFileScan::shortData()
{
    QFETCH(QByteArray, content);
    DocumentWriter doc = newDocument();
    SectionSpec section;
    section.files = {named("a", content), named("b", content), named("c", content)};
    doc.writeSection(section);
    doc.writeSection(section);
    QCOMPARE(names(doc), list({"a", "b", "c", "a", "b", "c"}));
    QCOMPARE(m_parser->getNumSections(), 2);
    QCOMPARE(*m_parser->getFileContent(4), content);
}

void TestFileScan::binaryData()
{
    QByteArray content;
    for (int i = 0; i < 256; ++i)
        content += static_cast<char>(i);
    content = content.repeated(50);
    DocumentWriter doc = newDocument();
    SectionSpec section;
    section.files = {named("a", content), named("b", content)};
    doc.writeSection(section);
    QCOMPARE(names(doc), list({"a", "b"}));
    QCOMPARE(*m_parser->getFileContent(0), content);
}

void TestFileScan::embeddedDocumentIsNotSearched()
{
    // The jump over a block passes the markers in it.
    DocumentWriter doc = newDocument();
    SectionSpec section;
    section.files = {named("a", smallDocument()), named("b")};
    doc.writeSection(section);
    QCOMPARE(names(doc), list({"a", "b"}));
    QCOMPARE(m_parser->getNumSections(), 1);
}

void TestFileScan::dataThatLooksLikeMarkerInsideJump()
{
    DocumentWriter inner;
    inner.writeFile(named("inner", ""));
    DocumentWriter doc = newDocument();
    doc.writeFile(named("a", "data\n" + inner.bytes() + QByteArray(1000, 'x')));
    doc.writeFile(named("b"));
    QCOMPARE(names(doc), list({"a", "b"}));
}

void TestFileScan::dataThatLooksLikeMarkerBehindJump()
{
    // The jump leaves as many bytes of a block unpassed as its marker has, so a marker that is
    // longer than another one in the last lines of its data lets that one be found.
    DocumentWriter inner;
    inner.writeFile(named("inner", ""));
    FileSpec outer = named("a", QByteArray(1000, 'x') + '\n' + inner.bytes());
    outer.comment = QString(800, QLatin1Char('c'));
    DocumentWriter doc = newDocument();
    doc.writeFile(outer);
    doc.writeFile(named("b"));
    QCOMPARE(names(doc), list({"a", "inner", "b"}));
}

void TestFileScan::lineWhereTheJumpLandsIsNotExamined()
{
    // A blocksize that is too large by the length of the marker lands on the next marker.
    DocumentWriter measure = newDocument();
    const int distance = measure.writeFile(named("a")).blockEnd - newDocument().position();
    const auto documentWith = [](int blocksize) {
        DocumentWriter doc = newDocument();
        doc.writeFile(named("a").with("blocksize", QByteArray::number(blocksize)));
        doc.writeFile(named("b"));
        doc.writeFile(named("c"));
        return doc;
    };
    // With three digits in place of one, the marker is two bytes longer.
    QCOMPARE(names(documentWith(distance + 2 - 1)), list({"a", "c"}));
    QCOMPARE(names(documentWith(distance + 2 - 2)), list({"a", "b", "c"}));
}

void TestFileScan::blocksizeEmpty()
{
    DocumentWriter doc = newDocument();
    doc.writeFile(named("a").with("blocksize", ""));
    doc.writeFile(named("b"));
    QCOMPARE(names(doc), list({"a", "b"}));
    QCOMPARE(m_parser->getFile(0)->blocksize, -1);
}

void TestFileScan::blocksizeOutsideTheDocument_data()
{
    QTest::addColumn<QByteArray>("blocksize");
    QTest::newRow("behind the end") << QByteArray("100000");
    QTest::newRow("largest") << QByteArray("2147483647");
    QTest::newRow("number that does not fit") << QByteArray("2147483648");
}

void TestFileScan::blocksizeOutsideTheDocument()
{
    // Then the scan goes on behind the marker, through the data.
    QFETCH(QByteArray, blocksize);
    DocumentWriter inner;
    inner.writeFile(named("inner", ""));
    DocumentWriter doc = newDocument();
    doc.writeFile(named("a", inner.bytes() + QByteArray(1000, 'x')).with("blocksize", blocksize));
    doc.writeFile(named("b"));
    QCOMPARE(names(doc), list({"a", "inner", "b"}));
}

void TestFileScan::sameInBothModes()
{
    DocumentWriter doc = newDocument();
    SectionSpec section;
    section.beforeMarker = "%%EOF";
    section.files = {named("a"), named("b")};
    doc.writeSection(section);
    for (const tresk::ParseMode mode : {tresk::ParseStrict, tresk::ParseTolerant}) {
        m_parser = std::make_unique<TreskParser>(mode);
        QCOMPARE(names(doc), list({"a", "b"}));
    }
}

QTEST_GUILESS_MAIN(TestFileScan)

#include "tst_filescan.moc"
