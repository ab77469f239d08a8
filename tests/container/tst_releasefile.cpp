#include "DocumentWriter.h"
#include "MessageCapture.h"
#include "TestFiles.h"

#include <tresk/FileIterator.h>
#include <tresk/TreskParser.h>

#include <QFile>
#include <QTest>

#include <functional>

using tresk::FileIterator;
using tresk::TreskParser;
using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::isOpen;
using tresktest::SectionSpec;
using tresktest::TestDir;

using Read = std::function<bool(FileIterator&)>;
Q_DECLARE_METATYPE(Read)

namespace {

/// Lines that all differ, several slices of them.
QByteArray manyLines()
{
    QByteArray bytes;
    for (int i = 0; i < 20000; ++i)
        bytes += "line " + QByteArray::number(i) + '\n';
    return bytes;
}

/// All that an iterator tells without reading.
QByteArray stateOf(const FileIterator& iterator)
{
    const QSharedPointer<QByteArray> line = iterator.curLine();
    return QByteArray::number(iterator.curPos()) + (line ? ": " + *line : QByteArray(" null"))
        + (iterator.reachedStart() ? " start" : "") + (iterator.reachedEnd() ? " end" : "")
        + (iterator.empty() ? " empty " : " ") + QByteArray::number(iterator.getFileSize());
}

QByteArray documentOfOneStep()
{
    DocumentWriter document("%PDF-1.4\n");
    document.writeHeader();
    SectionSpec section;
    section.files = {FileSpec::plain(QStringLiteral("plain"), QByteArray(20000, 'p')),
                     FileSpec::flate(QStringLiteral("flate"), QByteArray(20000, 'f'))};
    document.writeSection(section);
    return document.bytes();
}

} // namespace

/// Descriptors that are given back and taken again when they are needed.
class TestReleaseFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void descriptorIsGivenBack();
    void changesNothing();
    void reads_data();
    void reads();
    void walkAcrossReleases();
    void fileThatIsGone();
    void fileThatComesBack();
    void fileThatGotShorter();
    void pipeInItsPlace();
    void openedAnew();
    void failedOpenForgetsTheFile();
    void closedIterator();
    void parserReadsAgain();
    void parserOfAFileThatIsGone();
    void closedParser();

private:
    TestDir m_dir;
    QString m_path;
    FileIterator m_iterator;
};

void TestReleaseFile::init()
{
    m_path = m_dir.write(QStringLiteral("file"), manyLines());
    QVERIFY(m_iterator.open(m_path));
}

void TestReleaseFile::descriptorIsGivenBack()
{
    if (!isOpen(m_path))
        QSKIP("The system does not tell which files are open.");
    QVERIFY(*isOpen(m_path));
    for (int round = 0; round < 2; ++round) {
        m_iterator.releaseFile();
        QVERIFY(!*isOpen(m_path));
        m_iterator.releaseFile();
        QVERIFY(!*isOpen(m_path));
        QCOMPARE(m_iterator.getBytes(0, 7), QByteArray("line 0\n"));
        QVERIFY(*isOpen(m_path));
    }
}

void TestReleaseFile::changesNothing()
{
    for (const int pos : {0, 100000, 208889}) {
        QVERIFY(m_iterator.gotoPos(pos));
        const QByteArray before = stateOf(m_iterator);
        m_iterator.releaseFile();
        QCOMPARE(stateOf(m_iterator), before);
        if (isOpen(m_path))
            QVERIFY(!*isOpen(m_path)); // none of that opens it
    }
}

void TestReleaseFile::reads_data()
{
    QTest::addColumn<Read>("read");
    QTest::newRow("firstLine") << Read([](FileIterator& it) { return it.firstLine(); });
    QTest::newRow("lastLine") << Read([](FileIterator& it) { return it.lastLine(); });
    QTest::newRow("nextLine") << Read([](FileIterator& it) { return it.nextLine(); });
    QTest::newRow("prevLine") << Read([](FileIterator& it) { return it.prevLine(); });
    QTest::newRow("line before") << Read(
        [](FileIterator& it) { return it.prevLine() && it.prevLine(); });
    QTest::newRow("gotoPos near") << Read([](FileIterator& it) { return it.gotoPos(100010); });
    QTest::newRow("gotoPos far") << Read([](FileIterator& it) { return it.gotoPos(150000); });
    QTest::newRow("gotoPos behind") << Read([](FileIterator& it) { return it.gotoPos(1000000); });
    QTest::newRow("nextLineStartingWith")
        << Read([](FileIterator& it) { return it.nextLineStartingWith("line 19"); });
    QTest::newRow("nextLineStartingWith nothing")
        << Read([](FileIterator& it) { return it.nextLineStartingWith("missing"); });
    QTest::newRow("prevLineContaining")
        << Read([](FileIterator& it) { return it.prevLineContaining("777\n"); });
    QTest::newRow("prevLineContaining nothing")
        << Read([](FileIterator& it) { return it.prevLineContaining("missing"); });
    QTest::newRow("getBytes") << Read([](FileIterator& it) { return it.getBytes(5, 2) == "0\n"; });
    QTest::newRow("all lines to the end") << Read([](FileIterator& it) {
        while (it.nextLine()) { }
        return false;
    });
    QTest::newRow("all lines to the start") << Read([](FileIterator& it) {
        while (it.prevLine()) { }
        return false;
    });
}

void TestReleaseFile::reads()
{
    // The same as without a release, wherever the cursor was.
    QFETCH(Read, read);
    for (const int pos : {0, 5, 100000, 200000}) {
        FileIterator other;
        QVERIFY(other.open(m_path));
        QVERIFY(other.gotoPos(pos));
        QVERIFY(m_iterator.gotoPos(pos));
        m_iterator.releaseFile();
        QCOMPARE(read(m_iterator), read(other));
        QCOMPARE(stateOf(m_iterator), stateOf(other));
    }
}

void TestReleaseFile::walkAcrossReleases()
{
    FileIterator other;
    QVERIFY(other.open(m_path));
    QVERIFY(m_iterator.gotoPos(110000));
    QVERIFY(other.gotoPos(110000));
    quint32 random = 1;
    for (int i = 0; i < 5000; ++i) {
        random = random * 1664525 + 1013904223;
        const bool forwards = (random >> 16) % 8 < (i < 2500 ? 6 : 2);
        if (i % 3 == 0)
            m_iterator.releaseFile();
        QCOMPARE(forwards ? m_iterator.nextLine() : m_iterator.prevLine(),
                 forwards ? other.nextLine() : other.prevLine());
        QCOMPARE(stateOf(m_iterator), stateOf(other));
    }
}

void TestReleaseFile::fileThatIsGone()
{
    m_iterator.releaseFile();
    QVERIFY(QFile::remove(m_path));
    QCOMPARE(m_iterator.getBytes(0, 5), QByteArray());
    QVERIFY(!m_iterator.lastLine());
    QVERIFY(!m_iterator.nextLineStartingWith("line 19999"));
    QVERIFY(!m_iterator.prevLineContaining("line 0"));
    QCOMPARE(m_iterator.getFileSize(), qint64(manyLines().size()));
}

void TestReleaseFile::fileThatComesBack()
{
    m_iterator.releaseFile();
    QVERIFY(QFile::rename(m_path, m_dir.path(QStringLiteral("elsewhere"))));
    QCOMPARE(m_iterator.getBytes(0, 5), QByteArray());
    QVERIFY(QFile::rename(m_dir.path(QStringLiteral("elsewhere")), m_path));
    QCOMPARE(m_iterator.getBytes(0, 5), QByteArray("line "));
    QVERIFY(m_iterator.lastLine());
    QCOMPARE(*m_iterator.curLine(), QByteArray("line 19999\n"));
}

void TestReleaseFile::fileThatGotShorter()
{
    m_iterator.releaseFile();
    m_dir.write(QStringLiteral("file"), "short");
    QCOMPARE(m_iterator.getBytes(0, 3), QByteArray("sho"));
    QCOMPARE(m_iterator.getBytes(3, 10), QByteArray("rt"));
    QCOMPARE(m_iterator.getBytes(100, 10), QByteArray());
}

void TestReleaseFile::pipeInItsPlace()
{
    // Opening one would wait for a writer.
    m_iterator.releaseFile();
    QVERIFY(QFile::remove(m_path));
    m_dir.makePipe(QStringLiteral("file"));
    QCOMPARE(m_iterator.getBytes(0, 5), QByteArray());
    QVERIFY(QFile::remove(m_path));
}

void TestReleaseFile::openedAnew()
{
    m_iterator.releaseFile();
    QVERIFY(m_iterator.open(m_dir.write(QStringLiteral("other"), "a\nb\n")));
    QCOMPARE(stateOf(m_iterator), QByteArray("0: a\n 4"));
    m_iterator.releaseFile();
    QVERIFY(m_iterator.lastLine());
    QCOMPARE(*m_iterator.curLine(), QByteArray("b\n"));
    QVERIFY(m_iterator.open(m_path));
    QVERIFY(m_iterator.nextLine());
    QCOMPARE(*m_iterator.curLine(), QByteArray("line 1\n"));
}

void TestReleaseFile::failedOpenForgetsTheFile()
{
    m_iterator.releaseFile();
    QVERIFY(!m_iterator.open(m_dir.path(QStringLiteral("missing"))));
    m_iterator.releaseFile();
    QVERIFY(m_iterator.empty());
    QCOMPARE(m_iterator.curPos(), -1);
    QCOMPARE(m_iterator.getBytes(0, 5), QByteArray());
    QVERIFY(!m_iterator.firstLine());
    // A file that comes to be where there was none to open is not read either.
    m_dir.write(QStringLiteral("missing"), "here now\n");
    QVERIFY(!m_iterator.firstLine());
    QCOMPARE(m_iterator.getBytes(0, 4), QByteArray());
    QVERIFY(QFile::remove(m_dir.path(QStringLiteral("missing"))));
}

void TestReleaseFile::closedIterator()
{
    FileIterator iterator;
    iterator.releaseFile();
    QVERIFY(!iterator.curLine());
    QVERIFY(iterator.empty());
    QVERIFY(!iterator.reachedStart());
    QVERIFY(!iterator.reachedEnd());
    QVERIFY(!iterator.firstLine());
    QCOMPARE(iterator.getBytes(0, 0), QByteArray());
    QVERIFY(iterator.open(m_path));
    QCOMPARE(*iterator.curLine(), QByteArray("line 0\n"));
}

void TestReleaseFile::parserReadsAgain()
{
    const QByteArray document = documentOfOneStep();
    const QString path = m_dir.write(QStringLiteral("document"), document);
    TreskParser parser;
    QVERIFY(parser.open(path));
    const auto released = [&] {
        parser.releaseFile();
        return isOpen(path) == std::optional(true) ? nullptr : &parser;
    };
    QVERIFY(released());
    QCOMPARE(parser.getNumSections(), 1);
    QCOMPARE(parser.getNumFiles(), 2);
    QCOMPARE(parser.getFilesInSection(0).size(), 2);
    QVERIFY(released()->getFileContent(0));
    QVERIFY(*released()->getFileContent(0) == QByteArray(20000, 'p'));
    QVERIFY(*released()->getFileContent(1) == QByteArray(20000, 'f'));
    QVERIFY(released()->getBytes(0, int(document.size())) == document);
    const tresktest::MessageCapture quiet;
    const QString target = m_dir.path(QStringLiteral("target"));
    QVERIFY(released()->writeFileToDisk(1, target));
    QVERIFY(tresktest::readFile(target) == QByteArray(20000, 'f'));
    QVERIFY(released()->open(m_dir.write(QStringLiteral("another"), document)));
    QVERIFY(QFile::remove(path));
    QVERIFY(*released()->getFileContent(0) == QByteArray(20000, 'p'));
}

void TestReleaseFile::parserOfAFileThatIsGone()
{
    const QString path = m_dir.write(QStringLiteral("document"), documentOfOneStep());
    TreskParser parser;
    QVERIFY(parser.open(path));
    parser.releaseFile();
    QVERIFY(QFile::remove(path));
    QCOMPARE(parser.getNumSections(), 1);
    QCOMPARE(parser.getBytes(0, 10), QByteArray());
    QVERIFY(!parser.getFileContent(1)); // nothing to inflate
}

void TestReleaseFile::closedParser()
{
    TreskParser parser;
    parser.releaseFile();
    QCOMPARE(parser.getBytes(0, 1), QByteArray());
    QVERIFY(!parser.open(m_dir.path(QStringLiteral("missing"))));
    parser.releaseFile();
    QCOMPARE(parser.getNumSections(), 0);
    QVERIFY(parser.open(m_dir.write(QStringLiteral("document"), documentOfOneStep())));
    QCOMPARE(parser.getNumSections(), 1);
}

QTEST_GUILESS_MAIN(TestReleaseFile)

#include "tst_releasefile.moc"
