#include "DocumentWriter.h"
#include "RecordText.h"
#include "TestFiles.h"

#include <tresk/TreskParser.h>

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <limits>

using tresk::FileTag;
using tresk::SectionTag;
using tresk::TreskParser;
using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::SectionSpec;
using tresktest::TestDir;
using tresktest::textOf;
using tresktest::WrittenFile;
using tresktest::WrittenSection;

namespace {

class TextListener : public QObject {
    Q_OBJECT

public:
    QStringList texts;

public Q_SLOTS:
    void log(const QString& text) { texts.append(text); }
};

SectionSpec step(const QString& title, const QVector<FileSpec>& files)
{
    SectionSpec section;
    section.title = title;
    section.files = files;
    return section;
}

/// Three chained sections of two, one and no files.
DocumentWriter threeSteps(const QByteArray& terminator = "\n")
{
    DocumentWriter doc("%PDF-1.4\n%\xe2\xe3\xcf\xd3\n");
    doc.setTerminator(terminator);
    doc.writeHeader();
    doc.write("1 0 obj\nendobj\n%%EOF\n");
    doc.writeSection(step(QStringLiteral("first"),
                          {FileSpec::plain(QStringLiteral("in.txt"), "input\nof two lines\n"),
                           FileSpec::flate(QStringLiteral("out.bin"), QByteArray(500, '\0'))}));
    doc.writeSection(step(QStringLiteral("second"),
                          {FileSpec::flate(QStringLiteral("\u00fc\U0001f600].txt"), "text")}));
    doc.writeSection(step(QStringLiteral("third"), {}));
    return doc;
}

QList<int> idsOf(const QList<FileTag>& files)
{
    QList<int> ids;
    for (const FileTag& file : files)
        ids.append(file.id);
    return ids;
}

} // namespace

/// Opening documents, their lists, and which files belong to which section.
class TestTreskParser : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void metaObject();
    void newParser();
    void recordsAreZeroAtFirst();
    void constructorConnectsListener();
    void header_data();
    void header();
    void unreadable_data();
    void unreadable();
    void relativePath();
    void tooLarge_data();
    void tooLarge();
    void emptyHistory();
    void reopen();
    void logsNothing();
    void sectionRecords_data();
    void sectionRecords();
    void fileRecords_data();
    void fileRecords();
    void recordsOutOfRange();
    void recordsAreCopies();
    void filesInSection();
    void filesBehindMarker();
    void fileBeyondRegion_data();
    void fileBeyondRegion();
    void fileBeforeRegion_data();
    void fileBeforeRegion();
    void fileInSeveralSections();
    void regionWithoutNumbers();
    void regionNumbersThatDoNotFit();
    void bytes();
    void staysReadableWhenRemoved();
    void manyFiles();
    void manySections();

private:
    bool open(const QByteArray& bytes)
    {
        return m_parser.open(m_dir.write(QStringLiteral("document"), bytes));
    }

    TestDir m_dir;
    TreskParser m_parser;
};

void TestTreskParser::metaObject()
{
    QCOMPARE(TreskParser::staticMetaObject.className(), "tresk::TreskParser");
    QCOMPARE(TreskParser::staticMetaObject.superClass()->className(), "tresk::LogSource");
    QCOMPARE(TreskParser::staticMetaObject.methodCount(),
             TreskParser::staticMetaObject.superClass()->methodCount());
    QCOMPARE(int(tresk::ParseStrict), 0);
    QCOMPARE(int(tresk::ParseTolerant), 1);
}

void TestTreskParser::newParser()
{
    TreskParser parser;
    QCOMPARE(parser.getNumSections(), 0);
    QCOMPARE(parser.getNumFiles(), 0);
    QVERIFY(parser.getSections().isEmpty());
    QVERIFY(parser.getFiles().isEmpty());
    QVERIFY(!parser.getSection(0));
    QVERIFY(!parser.getFile(0));
    QVERIFY(parser.getFilesInSection(0).isEmpty());
    QVERIFY(parser.getSectionlessFiles().isEmpty());
    QCOMPARE(parser.getBytes(0, 1), QByteArray());
    QVERIFY(!parser.getFileContent(0));
}

void TestTreskParser::recordsAreZeroAtFirst()
{
    const SectionTag section;
    QCOMPARE(textOf(section),
             QStringLiteral("id=0|pos=0|tagLength=0|version=|creator=|title=|left=0|size=0|index=0|"
                            "md5section=|previousmd5=|previousmarker=0|validationTag=|"));
    const FileTag file;
    QCOMPARE(
        textOf(file),
        QStringLiteral("id=0|pos=0|tagLength=0|filetype=|filename=|desc=|comment=|compression=|"
                       "filesize=0|cfilesize=0|blocksize=0|offset=0|md5file=|md5cfile=|"));
}

void TestTreskParser::constructorConnectsListener()
{
    TextListener listener;
    TreskParser parser(tresk::ParseStrict, &listener);
    QCOMPARE(parser.parent(), nullptr);
    parser.writeFileToDisk(-1, QStringLiteral("nowhere"));
    QCOMPARE(listener.texts.size(), 1);
}

void TestTreskParser::header_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<bool>("found");
    const QByteArray headerText = tresktest::headerLine();
    for (int line = 1; line <= 12; ++line) {
        QTest::addRow("on line %d", line)
            << QByteArray(QByteArray("x\n").repeated(line - 1) + headerText + "\n") << (line <= 10);
    }
    const QByteArray nul("a\0b\n", 4);
    QTest::newRow("no headerText") << QByteArray("%PDF-1.4\n%%EOF\n") << false;
    QTest::newRow("without line feed") << headerText << true;
    QTest::newRow("on line 10 without line feed")
        << QByteArray(QByteArray("x\n").repeated(9) + headerText) << true;
    QTest::newRow("behind empty lines") << QByteArray("\n\r\n\n" + headerText) << true;
    QTest::newRow("with text behind it") << QByteArray(headerText + "[more]\r\n") << true;
    QTest::newRow("behind a NUL byte") << QByteArray(nul + headerText + "\n") << false;
    QTest::newRow("behind a NUL byte on line 9")
        << QByteArray(QByteArray("x\n").repeated(8) + nul + headerText + "\n") << false;
    QTest::newRow("with a NUL byte on its line") << QByteArray(headerText + nul) << false;
    QTest::newRow("before a NUL byte") << QByteArray(headerText + "\n" + nul) << true;
    QTest::newRow("behind text") << QByteArray("x" + headerText + "\n") << false;
    QTest::newRow("behind a blank") << QByteArray(" " + headerText + "\n") << false;
    QTest::newRow("behind a carriage return") << QByteArray("x\r" + headerText + "\n") << false;
    QTest::newRow("behind a byte order mark") << QByteArray("\xef\xbb\xbf" + headerText) << true;
    QTest::newRow("behind lines that are not UTF-8")
        << QByteArray("\xff\xfe\n\xc3\n" + headerText) << true;
    QTest::newRow("other version") << QByteArray("%<--! $TRESK_PDF [version:1.1]\n") << false;
    QTest::newRow("longer version") << QByteArray("%<--! $TRESK_PDF [version:1.01]\n") << false;
    QTest::newRow("cut off") << headerText.chopped(1) << false;
    QTest::newRow("small letters") << headerText.toLower() << false;
    QTest::newRow("long lines") << QByteArray((QByteArray(30000, 'x') + '\n').repeated(9)
                                              + headerText)
                                << true;
}

void TestTreskParser::header()
{
    QFETCH(QByteArray, document);
    QFETCH(bool, found);
    QCOMPARE(open(document), found);
    QCOMPARE(m_parser.getNumSections(), 0);
    QCOMPARE(m_parser.getNumFiles(), 0);
}

void TestTreskParser::unreadable_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << m_dir.path(QStringLiteral("missing"));
    QTest::newRow("no path") << QString();
    QTest::newRow("folder") << m_dir.path(QString());
    QTest::newRow("empty file") << m_dir.write(QStringLiteral("empty"), "");
    QTest::newRow("pipe") << m_dir.makePipe(QStringLiteral("pipe"));
    QTest::newRow("name too long") << m_dir.path(QString(300, QLatin1Char('x')));
}

void TestTreskParser::unreadable()
{
    QFETCH(QString, path);
    QVERIFY(open(threeSteps().bytes()));
    QVERIFY(!m_parser.open(path));
    QCOMPARE(m_parser.getNumSections(), 0);
    QCOMPARE(m_parser.getNumFiles(), 0);
    QCOMPARE(m_parser.getBytes(0, 1), QByteArray());
}

void TestTreskParser::relativePath()
{
    m_dir.write(QStringLiteral("relative"), threeSteps().bytes());
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_dir.path(QString())));
    const bool opened = m_parser.open(QStringLiteral("relative"));
    QVERIFY(QDir::setCurrent(before));
    QVERIFY(opened);
    QCOMPARE(m_parser.getNumSections(), 3);
    QVERIFY(m_parser.getFileContent(0));
    QCOMPARE(*m_parser.getFileContent(0), QByteArray("input\nof two lines\n"));
}

void TestTreskParser::tooLarge_data()
{
    QTest::addColumn<qint64>("size");
    QTest::newRow("2 GiB") << (Q_INT64_C(1) << 31);
    QTest::newRow("3 GiB") << (Q_INT64_C(3) << 30);
    QTest::newRow("4 GiB") << (Q_INT64_C(1) << 32);
    QTest::newRow("a little over 4 GiB") << (Q_INT64_C(1) << 32) + 4096;
}

void TestTreskParser::tooLarge()
{
    QFETCH(qint64, size);
    const QString path = m_dir.write(QStringLiteral("sparse"), threeSteps().bytes());
    QVERIFY(m_parser.open(path));
    QVERIFY(QFile::resize(path, size));
    QVERIFY(!m_parser.open(path));
    QCOMPARE(m_parser.getNumSections(), 0);
    QCOMPARE(m_parser.getNumFiles(), 0);
    QVERIFY(QFile::remove(path));
}

void TestTreskParser::emptyHistory()
{
    QVERIFY(open("%PDF-1.4\n" + tresktest::headerLine() + "\n%%EOF\n"));
    QCOMPARE(m_parser.getNumSections(), 0);
    QCOMPARE(m_parser.getNumFiles(), 0);
    QVERIFY(m_parser.getSectionlessFiles().isEmpty());
}

void TestTreskParser::reopen()
{
    QVERIFY(open(threeSteps().bytes()));
    QCOMPARE(m_parser.getNumSections(), 3);
    QCOMPARE(m_parser.getNumFiles(), 3);

    DocumentWriter other;
    other.writeHeader();
    other.writeFile(FileSpec::plain(QStringLiteral("other"), "another"));
    QVERIFY(m_parser.open(m_dir.write(QStringLiteral("other"), other.bytes())));
    QCOMPARE(m_parser.getNumSections(), 0);
    QCOMPARE(m_parser.getNumFiles(), 1);
    QCOMPARE(*m_parser.getFileContent(0), QByteArray("another"));

    QVERIFY(open(threeSteps().bytes()));
    QCOMPARE(m_parser.getNumSections(), 3);
    QCOMPARE(m_parser.getNumFiles(), 3);
}

void TestTreskParser::logsNothing()
{
    QSignalSpy spy(&m_parser, SIGNAL(log(QString, int)));
    QVERIFY(open(threeSteps().bytes()));
    QVERIFY(!open("no history"));
    QVERIFY(!m_parser.open(m_dir.path(QStringLiteral("missing"))));
    QCOMPARE(spy.count(), 0);
}

void TestTreskParser::sectionRecords_data()
{
    QTest::addColumn<QByteArray>("terminator");
    QTest::newRow("line feeds") << QByteArray("\n");
    QTest::newRow("carriage returns and line feeds") << QByteArray("\r\n");
}

void TestTreskParser::sectionRecords()
{
    QFETCH(QByteArray, terminator);
    const DocumentWriter doc = threeSteps(terminator);
    QVERIFY(open(doc.bytes()));
    QCOMPARE(m_parser.getNumSections(), 3);
    const QStringList titles = {QStringLiteral("third"), QStringLiteral("second"),
                                QStringLiteral("first")};
    for (int id = 0; id < 3; ++id) {
        const SectionTag section = m_parser.getSections().at(id);
        const WrittenSection& written = doc.sections().at(2 - id);
        QCOMPARE(section.id, id);
        QCOMPARE(section.title, titles.at(id));
        QCOMPARE(section.version, QStringLiteral("1.0"));
        QCOMPARE(section.creator, QStringLiteral("writer"));
        QCOMPARE(section.pos, written.lineStart + 1);
        QCOMPARE(section.tagLength, written.tagLength);
        QCOMPARE(section.pos - section.left, written.regionStart);
        QCOMPARE(section.pos - section.left + section.size, written.regionEnd);
        QCOMPARE(section.index, 2 - id);
        QCOMPARE(section.md5section, QString::fromLatin1(written.md5section));
        QCOMPARE(section.previousmd5, QString::fromLatin1(written.previousmd5));
        QCOMPARE(section.previousmarker, written.previousmarker);
        QCOMPARE(section.validationTag, written.validationTag);
        QCOMPARE(textOf(*m_parser.getSection(id)), textOf(section));
    }
    QCOMPARE(m_parser.getSections().at(2).previousmarker, -1);
}

void TestTreskParser::fileRecords_data()
{
    sectionRecords_data();
}

void TestTreskParser::fileRecords()
{
    QFETCH(QByteArray, terminator);
    const DocumentWriter doc = threeSteps(terminator);
    QVERIFY(open(doc.bytes()));
    QCOMPARE(m_parser.getNumFiles(), 3);
    for (int id = 0; id < 3; ++id) {
        const FileTag file = m_parser.getFiles().at(id);
        const WrittenFile& written = doc.files().at(id);
        QCOMPARE(file.id, id);
        QCOMPARE(file.pos, written.lineStart + 1);
        QCOMPARE(file.tagLength, written.tagLength);
        QCOMPARE(file.pos + file.tagLength + file.offset, written.dataStart);
        QCOMPARE(file.pos + file.tagLength + file.blocksize, written.blockEnd);
        QCOMPARE(file.cfilesize, int(written.stored.size()));
        QCOMPARE(file.md5file, QString::fromLatin1(written.md5file));
        QCOMPARE(file.md5cfile, QString::fromLatin1(written.md5cfile));
        QCOMPARE(textOf(*m_parser.getFile(id)), textOf(file));
    }
    QCOMPARE(m_parser.getFile(0)->offset, int(terminator.size()));
    QCOMPARE(m_parser.getFile(0)->filetype, QStringLiteral("data"));
    QCOMPARE(m_parser.getFile(0)->filename, QStringLiteral("in.txt"));
    QCOMPARE(m_parser.getFile(0)->compression, QStringLiteral("none"));
    QCOMPARE(m_parser.getFile(1)->compression, QStringLiteral("flate"));
    QCOMPARE(m_parser.getFile(1)->filesize, 500);
    QCOMPARE(m_parser.getFile(2)->filename, QStringLiteral("\u00fc\U0001f600\\].txt"));
}

void TestTreskParser::recordsOutOfRange()
{
    QVERIFY(open(threeSteps().bytes()));
    const int most = std::numeric_limits<int>::max();
    const int least = std::numeric_limits<int>::min();
    for (const int i : {-1, 3, 4, most, least}) {
        QVERIFY(!m_parser.getSection(i));
        QVERIFY(!m_parser.getFile(i));
        QVERIFY(m_parser.getFilesInSection(i).isEmpty());
    }
    QVERIFY(m_parser.getSection(2));
    QVERIFY(m_parser.getFile(2));
}

void TestTreskParser::recordsAreCopies()
{
    QVERIFY(open(threeSteps().bytes()));
    m_parser.getSection(0)->title = QStringLiteral("changed");
    m_parser.getFile(0)->filename = QStringLiteral("changed");
    QCOMPARE(m_parser.getSection(0)->title, QStringLiteral("third"));
    QCOMPARE(m_parser.getFile(0)->filename, QStringLiteral("in.txt"));
    const QSharedPointer<FileTag> file = m_parser.getFile(1);
    QVERIFY(!open("no history"));
    QCOMPARE(file->filename, QStringLiteral("out.bin"));
}

void TestTreskParser::filesInSection()
{
    QVERIFY(open(threeSteps().bytes()));
    QCOMPARE(idsOf(m_parser.getFilesInSection(0)), QList<int>());
    QCOMPARE(idsOf(m_parser.getFilesInSection(1)), QList<int>({2}));
    QCOMPARE(idsOf(m_parser.getFilesInSection(2)), QList<int>({0, 1}));
    QVERIFY(m_parser.getSectionlessFiles().isEmpty());
}

void TestTreskParser::filesBehindMarker()
{
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec section = step(QStringLiteral("a"), {FileSpec::plain(QStringLiteral("1"), "one")});
    section.filesBehind = {FileSpec::plain(QStringLiteral("2"), "two")};
    section.gap = "text at the start of the region\n";
    section.trailing = "text at its end\n";
    doc.writeSection(section);
    doc.writeFile(FileSpec::plain(QStringLiteral("3"), "three"));
    doc.writeSection(section);
    QVERIFY(open(doc.bytes()));
    QCOMPARE(idsOf(m_parser.getFilesInSection(1)), QList<int>({0, 1}));
    QCOMPARE(idsOf(m_parser.getFilesInSection(0)), QList<int>({3, 4}));
    QCOMPARE(idsOf(m_parser.getSectionlessFiles()), QList<int>({2}));
}

void TestTreskParser::fileBeyondRegion_data()
{
    QTest::addColumn<int>("beyond");
    QTest::newRow("ends with the region") << 0;
    QTest::newRow("ends one byte before it") << -1;
    QTest::newRow("ends one byte beyond it") << 1;
}

void TestTreskParser::fileBeyondRegion()
{
    QFETCH(int, beyond);
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec section;
    section.filesBehind = {FileSpec::plain(QStringLiteral("\u00e4.txt"), "content")};
    DocumentWriter whole = doc;
    const WrittenSection written = whole.writeSection(section);
    QCOMPARE(written.regionEnd, written.files.at(0).blockEnd);
    section.regionSize = written.regionEnd - written.regionStart - beyond;
    doc.writeSection(section);
    QVERIFY(open(doc.bytes()));
    QCOMPARE(m_parser.getNumFiles(), 1);
    QCOMPARE(m_parser.getFilesInSection(0).size(), beyond > 0 ? 0 : 1);
    QCOMPARE(m_parser.getSectionlessFiles().size(), beyond > 0 ? 1 : 0);
}

void TestTreskParser::fileBeforeRegion_data()
{
    // A file's position is one behind the start of its line.
    QTest::addColumn<int>("distance");
    QTest::addColumn<bool>("inside");
    QTest::newRow("region from the line's start") << 0 << true;
    QTest::newRow("region from the byte before") << -1 << true;
    QTest::newRow("region from the line's second byte") << 1 << true;
    QTest::newRow("region from the line's third byte") << 2 << false;
}

void TestTreskParser::fileBeforeRegion()
{
    QFETCH(int, distance);
    QFETCH(bool, inside);
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec section = step(QStringLiteral("a"), {FileSpec::plain(QStringLiteral("f"), "x")});
    section.regionStart = doc.position() + distance;
    doc.writeSection(section);
    QVERIFY(open(doc.bytes()));
    QCOMPARE(m_parser.getFilesInSection(0).size(), inside ? 1 : 0);
    QCOMPARE(m_parser.getSectionlessFiles().size(), inside ? 0 : 1);
}

void TestTreskParser::fileInSeveralSections()
{
    DocumentWriter doc;
    doc.writeHeader();
    const int start = doc.position();
    doc.writeFile(FileSpec::plain(QStringLiteral("0"), "sectionless at first"));
    doc.writeSection(step(QStringLiteral("a"), {FileSpec::plain(QStringLiteral("1"), "one")}));
    SectionSpec all = step(QStringLiteral("b"), {FileSpec::plain(QStringLiteral("2"), "two")});
    all.regionStart = start;
    doc.writeSection(all);
    doc.writeFile(FileSpec::plain(QStringLiteral("3"), "three"));
    QVERIFY(open(doc.bytes()));
    QCOMPARE(idsOf(m_parser.getFilesInSection(0)), QList<int>({0, 1, 2}));
    QCOMPARE(idsOf(m_parser.getFilesInSection(1)), QList<int>({1}));
    QCOMPARE(idsOf(m_parser.getSectionlessFiles()), QList<int>({3}));
}

void TestTreskParser::regionWithoutNumbers()
{
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec section = step(QStringLiteral("a"), {FileSpec::plain(QStringLiteral("f"), "x")});
    doc.writeSection(section.with("left", "").with("size", ""));
    QVERIFY(open(doc.bytes()));
    QCOMPARE(m_parser.getSection(0)->left, -1);
    QCOMPARE(m_parser.getSection(0)->size, -1);
    QVERIFY(m_parser.getFilesInSection(0).isEmpty());
    QCOMPARE(idsOf(m_parser.getSectionlessFiles()), QList<int>({0}));
}

void TestTreskParser::regionNumbersThatDoNotFit()
{
    // Sums of positions that leave the range of an integer must not come round again.
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec huge = step(QStringLiteral("a"), {FileSpec::plain(QStringLiteral("f"), "x")});
    doc.writeSection(huge.with("left", "2147483647").with("size", "2147483647"));
    FileSpec longFile = FileSpec::plain(QStringLiteral("g"), "x");
    longFile.with("blocksize", "2147483647");
    doc.writeSection(step(QStringLiteral("b"), {longFile}));
    SectionSpec open = step(QStringLiteral("c"), {FileSpec::plain(QStringLiteral("h"), "x")});
    doc.writeSection(open.with("size", "2147483647"));
    QVERIFY(TestTreskParser::open(doc.bytes()));
    QCOMPARE(m_parser.getNumFiles(), 3);
    QCOMPARE(idsOf(m_parser.getFilesInSection(0)), QList<int>({2}));
    QCOMPARE(idsOf(m_parser.getFilesInSection(1)), QList<int>());
    QCOMPARE(idsOf(m_parser.getFilesInSection(2)), QList<int>({0})); // it ends at its marker
    QCOMPARE(idsOf(m_parser.getSectionlessFiles()), QList<int>({1}));
}

void TestTreskParser::bytes()
{
    const QByteArray document = threeSteps().bytes();
    const auto size = int(document.size());
    QVERIFY(open(document));
    QCOMPARE(m_parser.getBytes(0, size), document);
    QCOMPARE(m_parser.getBytes(5, 10), document.mid(5, 10));
    QCOMPARE(m_parser.getBytes(1, size), QByteArray());
    QCOMPARE(m_parser.getBytes(-1, 1), QByteArray());
    QCOMPARE(m_parser.getBytes(0, -1), QByteArray());
    QCOMPARE(m_parser.getBytes(1, std::numeric_limits<int>::max()), QByteArray());
}

void TestTreskParser::staysReadableWhenRemoved()
{
    QVERIFY(open(threeSteps().bytes()));
    QVERIFY(QFile::remove(m_dir.path(QStringLiteral("document"))));
    QVERIFY(m_parser.getFileContent(2));
    QCOMPARE(*m_parser.getFileContent(2), QByteArray("text"));
}

void TestTreskParser::manyFiles()
{
    const int count = 100000;
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec section;
    section.files = QVector<FileSpec>(count, FileSpec::plain(QStringLiteral("f"), "content"));
    section.files.last().filename = QStringLiteral("last");
    doc.writeSection(section);
    doc.writeFile(FileSpec::plain(QStringLiteral("outside"), ""));
    QVERIFY(open(doc.bytes()));
    QCOMPARE(m_parser.getNumFiles(), count + 1);
    for (int id = 0; id <= count; ++id) {
        if (m_parser.getFile(id)->id != id
            || m_parser.getFile(id)->pos != doc.files().at(id).lineStart + 1)
            QFAIL(qPrintable(textOf(*m_parser.getFile(id))));
    }
    QCOMPARE(m_parser.getFile(count - 1)->filename, QStringLiteral("last"));
    QCOMPARE(m_parser.getFilesInSection(0).size(), count);
    QCOMPARE(idsOf(m_parser.getSectionlessFiles()), QList<int>({count}));
}

void TestTreskParser::manySections()
{
    const int count = 100000;
    DocumentWriter doc;
    doc.writeHeader();
    const SectionSpec section;
    for (int i = 0; i < count; ++i)
        doc.writeSection(section);
    doc.writeFile(FileSpec::plain(QStringLiteral("outside"), ""));
    QVERIFY(open(doc.bytes()));
    QCOMPARE(m_parser.getNumSections(), count);
    for (int id = 0; id < count; ++id) {
        const QSharedPointer<SectionTag> read = m_parser.getSection(id);
        if (read->id != id || read->pos != doc.sections().at(count - 1 - id).lineStart + 1)
            QFAIL(qPrintable(textOf(*read)));
    }
    QCOMPARE(idsOf(m_parser.getSectionlessFiles()), QList<int>({0}));
}

QTEST_GUILESS_MAIN(TestTreskParser)

#include "tst_treskparser.moc"
