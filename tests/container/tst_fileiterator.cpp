#include "../tree/ProcessLimit.h"
#include "TestFiles.h"

#include <tresk/FileIterator.h>

#include <QDir>
#include <QFile>
#include <QTest>

#include <limits>

using tresk::FileIterator;
using tresktest::ProcessLimit;
using tresktest::TestDir;

namespace {

/// The current line; its absence reads as a word of its own.
QByteArray lineOf(const FileIterator& iterator)
{
    const QSharedPointer<QByteArray> line = iterator.curLine();
    return line ? *line : QByteArray("(null)");
}

} // namespace

/// What one iterator does with one file, case by case.
class TestFileIterator : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void closed();
    void failedOpen_data();
    void failedOpen();
    void readsWithoutFile_data();
    void readsWithoutFile();
    void failedOpenKeepsLine();
    void openReadsFirstLine();
    void openEmptyFile();
    void openReplacesFile();
    void openEmptyFileKeepsLine();
    void walkBackwards();
    void walkForwards();
    void backwardAfterForwardReturnsSameLine();
    void forwardAfterBackwardReturnsSameLine();
    void lastLineWithoutLineFeed();
    void emptyLines();
    void longLine_data();
    void longLine();
    void failedNextLineKeepsLine();
    void failedPrevLineKeepsLine();
    void gotoPosInsideLine();
    void gotoPosOutside_data();
    void gotoPosOutside();
    void gotoPosThenBack();
    void findForwards();
    void findForwardsAtTheEnd();
    void findBackwards();
    void findNothing();
    void findAcrossBorders_data();
    void findAcrossBorders();
    void startAndEnd();
    void nulByte();
    void text_data();
    void text();
    void carriageReturnsBelongToTheLine();
    void lineStartsWith();
    void linesAreCopies();
    void bytes_data();
    void bytes();
    void bytesLeaveTheLineAlone();
    void bytesOfShrunkFile();
    void linesOfShrunkFile();
    void lineThatShrinks();
    void noDescriptorLeft();
    void largestFile();
    void sizes();
    void onLineIsAlwaysFalse();

private:
    bool open(const QByteArray& bytes)
    {
        return m_iterator->open(m_dir.write(QStringLiteral("file"), bytes));
    }

    TestDir m_dir;
    std::unique_ptr<FileIterator> m_iterator;
};

void TestFileIterator::init()
{
    m_iterator = std::make_unique<FileIterator>();
}

void TestFileIterator::closed()
{
    QCOMPARE(m_iterator->curPos(), -1);
    QVERIFY(!m_iterator->curLine());
    QVERIFY(!m_iterator->curLineAsString());
    QVERIFY(m_iterator->empty());
    QVERIFY(!m_iterator->reachedStart());
    QVERIFY(!m_iterator->reachedEnd()); // without a file the cursor is before its start
    QCOMPARE(m_iterator->getFileSize(), qint64(0));
    QVERIFY(!m_iterator->curLineStartsWithBytes("a"));
    QVERIFY(!m_iterator->firstLine());
    QVERIFY(!m_iterator->lastLine());
    QVERIFY(!m_iterator->nextLine());
    QVERIFY(!m_iterator->prevLine());
    QVERIFY(!m_iterator->gotoPos(0));
    QVERIFY(!m_iterator->nextLineStartingWith("a"));
    QVERIFY(!m_iterator->prevLineContaining("a"));
    QCOMPARE(m_iterator->getBytes(0, 0), QByteArray());
    QVERIFY(!m_iterator->curLine());
}

void TestFileIterator::failedOpen_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << m_dir.path(QStringLiteral("missing"));
    QTest::newRow("missing folder") << m_dir.path(QStringLiteral("missing/file"));
    QTest::newRow("folder") << m_dir.path(QString());
    QTest::newRow("no path") << QString();
    QTest::newRow("file as a folder")
        << m_dir.write(QStringLiteral("plain"), "x") + QStringLiteral("/file");
    QVERIFY(QFile::link(QStringLiteral("loop"), m_dir.path(QStringLiteral("loop"))));
    QTest::newRow("link to itself") << m_dir.path(QStringLiteral("loop"));
    QTest::newRow("pipe without a writer") << m_dir.makePipe(QStringLiteral("pipe"));
    QTest::newRow("device without an end") << QStringLiteral("/dev/zero");
}

void TestFileIterator::failedOpen()
{
    QFETCH(QString, path);
    QVERIFY(!m_iterator->open(path));
    QVERIFY(m_iterator->curLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray());
    QVERIFY(m_iterator->curLineAsString());
    QVERIFY(m_iterator->empty());
    QVERIFY(!m_iterator->reachedStart());
    QVERIFY(!m_iterator->reachedEnd());
    QCOMPARE(m_iterator->curPos(), -1);
    QCOMPARE(m_iterator->getFileSize(), qint64(0));
    QVERIFY(!m_iterator->firstLine());
    QVERIFY(!m_iterator->lastLine());
    QVERIFY(!m_iterator->nextLine());
    QVERIFY(!m_iterator->prevLine());
    QVERIFY(!m_iterator->gotoPos(0));
    QVERIFY(!m_iterator->nextLineStartingWith("a"));
    QVERIFY(!m_iterator->prevLineContaining("a"));
    QCOMPARE(m_iterator->getBytes(0, 1), QByteArray());
    QCOMPARE(lineOf(*m_iterator), QByteArray());
    // Where the first line would begin.
    QVERIFY(m_iterator->reachedStart());
    QVERIFY(m_iterator->reachedEnd());
    QCOMPARE(m_iterator->curPos(), 0);
}

void TestFileIterator::readsWithoutFile_data()
{
    QTest::addColumn<bool>("isForwards");
    QTest::newRow("next") << true;
    QTest::newRow("previous") << false;
}

void TestFileIterator::readsWithoutFile()
{
    QFETCH(bool, isForwards);
    const auto read = [this, isForwards] {
        return isForwards ? m_iterator->nextLine() : m_iterator->prevLine();
    };
    QVERIFY(!read());
    QCOMPARE(m_iterator->curPos(), -1);
    QVERIFY(!m_iterator->firstLine());
    QCOMPARE(m_iterator->curPos(), -1);
    QVERIFY(!read());
    QCOMPARE(m_iterator->curPos(), 0);
}

void TestFileIterator::failedOpenKeepsLine()
{
    QVERIFY(open("a\nb\n"));
    QVERIFY(!m_iterator->open(m_dir.path(QStringLiteral("missing"))));
    QCOMPARE(lineOf(*m_iterator), QByteArray("a\n"));
    QVERIFY(m_iterator->empty());
    QCOMPARE(m_iterator->curPos(), -1);
    QVERIFY(!m_iterator->nextLine());
    QVERIFY(!m_iterator->firstLine());
}

void TestFileIterator::openReadsFirstLine()
{
    QVERIFY(open("first\nsecond\n"));
    QCOMPARE(lineOf(*m_iterator), QByteArray("first\n"));
    QCOMPARE(m_iterator->curPos(), 0);
    QVERIFY(!m_iterator->empty());
}

void TestFileIterator::openEmptyFile()
{
    QVERIFY(open(""));
    QVERIFY(m_iterator->empty());
    QVERIFY(m_iterator->reachedStart());
    QVERIFY(m_iterator->reachedEnd());
    QCOMPARE(lineOf(*m_iterator), QByteArray());
    QVERIFY(!m_iterator->firstLine());
    QVERIFY(!m_iterator->lastLine());
    QVERIFY(!m_iterator->nextLine());
    QVERIFY(!m_iterator->prevLine());
    QVERIFY(!m_iterator->gotoPos(0));
    QCOMPARE(m_iterator->getBytes(0, 0), QByteArray());
}

void TestFileIterator::openReplacesFile()
{
    QVERIFY(open("a\nb\n"));
    QVERIFY(m_iterator->lastLine());
    QVERIFY(m_iterator->open(m_dir.write(QStringLiteral("other"), "other\n")));
    QCOMPARE(lineOf(*m_iterator), QByteArray("other\n"));
    QCOMPARE(m_iterator->curPos(), 0);
    QCOMPARE(m_iterator->getFileSize(), qint64(6));
    QVERIFY(!m_iterator->nextLine());
}

void TestFileIterator::openEmptyFileKeepsLine()
{
    QVERIFY(open("a\n"));
    QVERIFY(m_iterator->open(m_dir.write(QStringLiteral("empty"), "")));
    QCOMPARE(lineOf(*m_iterator), QByteArray("a\n"));
    QCOMPARE(m_iterator->curPos(), -1);
}

void TestFileIterator::walkBackwards()
{
    QVERIFY(open("a\nb\nc\n"));
    QVERIFY(m_iterator->lastLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("c\n"));
    QCOMPARE(m_iterator->curPos(), 4);
    QVERIFY(m_iterator->prevLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("b\n"));
    QCOMPARE(m_iterator->curPos(), 2);
    QVERIFY(m_iterator->prevLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("a\n"));
    QCOMPARE(m_iterator->curPos(), 0);
    QVERIFY(!m_iterator->prevLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("a\n"));
}

void TestFileIterator::walkForwards()
{
    QVERIFY(open("a\nb\nc\n"));
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("b\n"));
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("c\n"));
    QCOMPARE(m_iterator->curPos(), 4);
    QVERIFY(!m_iterator->nextLine());
}

void TestFileIterator::backwardAfterForwardReturnsSameLine()
{
    QVERIFY(open("a\nb\nc\n"));
    QVERIFY(m_iterator->firstLine());
    QVERIFY(m_iterator->prevLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("a\n"));
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("a\n"));
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("b\n"));
}

void TestFileIterator::forwardAfterBackwardReturnsSameLine()
{
    QVERIFY(open("a\nb\nc\n"));
    QVERIFY(m_iterator->lastLine());
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("c\n"));
    QVERIFY(!m_iterator->nextLine());
    QVERIFY(m_iterator->prevLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("c\n"));
    QVERIFY(m_iterator->prevLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("b\n"));
}

void TestFileIterator::lastLineWithoutLineFeed()
{
    QVERIFY(open("x\ny"));
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("y"));
    QVERIFY(m_iterator->reachedEnd());
    QVERIFY(m_iterator->lastLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("y"));
    QCOMPARE(m_iterator->curPos(), 2);
    QVERIFY(m_iterator->prevLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("x\n"));
}

void TestFileIterator::emptyLines()
{
    QVERIFY(open("\n\na\n\n"));
    QCOMPARE(lineOf(*m_iterator), QByteArray("\n"));
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(m_iterator->curPos(), 1);
    QVERIFY(m_iterator->lastLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("\n"));
    QCOMPARE(m_iterator->curPos(), 4);
    QVERIFY(m_iterator->prevLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("a\n"));
    QVERIFY(m_iterator->prevLine());
    QVERIFY(m_iterator->prevLine());
    QCOMPARE(m_iterator->curPos(), 0);
    QVERIFY(!m_iterator->prevLine());
}

void TestFileIterator::longLine_data()
{
    QTest::addColumn<int>("length");
    for (const int length : {5119, 5120, 5121, 10239, 10240, 10241, 20479, 20480, 20481, 70000})
        QTest::addRow("%d bytes", length) << length;
    QTest::newRow("3 MiB") << 3 * 1024 * 1024;
}

void TestFileIterator::longLine()
{
    QFETCH(int, length);
    QByteArray line(length - 1, 'x');
    for (int i = 0; i < line.size(); i += 7)
        line[i] = static_cast<char>('a' + i % 23);
    line += '\n';
    QVERIFY(open("before\n" + line + "after"));
    QVERIFY(m_iterator->nextLine());
    QVERIFY(lineOf(*m_iterator) == line);
    QCOMPARE(m_iterator->curPos(), 7);
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("after"));
    QVERIFY(m_iterator->lastLine());
    QVERIFY(m_iterator->prevLine());
    QVERIFY(lineOf(*m_iterator) == line);
    QCOMPARE(m_iterator->curPos(), 7);
    QVERIFY(m_iterator->prevLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("before\n"));
}

void TestFileIterator::failedNextLineKeepsLine()
{
    QVERIFY(open("a\nb\n"));
    QVERIFY(m_iterator->nextLine());
    QVERIFY(!m_iterator->nextLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("b\n"));
    QCOMPARE(m_iterator->curPos(), 4);
    QVERIFY(!m_iterator->nextLine());
}

void TestFileIterator::failedPrevLineKeepsLine()
{
    QVERIFY(open("a\nb\n"));
    QVERIFY(m_iterator->prevLine());
    QVERIFY(!m_iterator->prevLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("a\n"));
    QCOMPARE(m_iterator->curPos(), 0);
}

void TestFileIterator::gotoPosInsideLine()
{
    QVERIFY(open("abcdef\nxyz\n"));
    QVERIFY(m_iterator->gotoPos(3));
    QCOMPARE(lineOf(*m_iterator), QByteArray("def\n"));
    QCOMPARE(m_iterator->curPos(), 3);
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("xyz\n"));
}

void TestFileIterator::gotoPosOutside_data()
{
    QTest::addColumn<int>("pos");
    QTest::newRow("size") << 11;
    QTest::newRow("behind") << 12;
    QTest::newRow("far behind") << std::numeric_limits<int>::max();
    QTest::newRow("before") << -1;
    QTest::newRow("far before") << std::numeric_limits<int>::min();
}

void TestFileIterator::gotoPosOutside()
{
    QFETCH(int, pos);
    QVERIFY(open("abcdef\nxyz\n"));
    QVERIFY(m_iterator->gotoPos(3));
    QVERIFY(!m_iterator->gotoPos(pos));
    QCOMPARE(lineOf(*m_iterator), QByteArray("def\n"));
    QCOMPARE(m_iterator->curPos(), 3);
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("xyz\n"));
}

void TestFileIterator::gotoPosThenBack()
{
    // Backwards the line reaches to the start it has in the file, not to where the jump went.
    QVERIFY(open("abcdef\nxyz\n"));
    QVERIFY(m_iterator->gotoPos(3));
    QVERIFY(m_iterator->prevLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("abcdef\n"));
    QCOMPARE(m_iterator->curPos(), 0);
}

void TestFileIterator::findForwards()
{
    QVERIFY(open("ab1\nxab\nab2\n\nab3\n"));
    // The current line has been read already and is not looked at.
    QVERIFY(m_iterator->nextLineStartingWith("ab"));
    QCOMPARE(lineOf(*m_iterator), QByteArray("ab2\n"));
    QCOMPARE(m_iterator->curPos(), 8);
    QVERIFY(m_iterator->nextLineStartingWith("ab"));
    QCOMPARE(lineOf(*m_iterator), QByteArray("ab3\n"));
    QVERIFY(m_iterator->reachedEnd());
    // By the cursor rule the same line is found again after a step back.
    QVERIFY(m_iterator->prevLine());
    QVERIFY(m_iterator->nextLineStartingWith("ab"));
    QCOMPARE(lineOf(*m_iterator), QByteArray("ab3\n"));
}

void TestFileIterator::findForwardsAtTheEnd()
{
    // The last line may be nothing but the text, with or without a line feed.
    for (const char* last : {"ab", "ab\n", "abc"}) {
        QVERIFY(open(QByteArray("x\n") + last));
        QVERIFY(m_iterator->nextLineStartingWith("ab"));
        QCOMPARE(lineOf(*m_iterator), QByteArray(last));
        QVERIFY(open(QByteArray("x\ny\n") + last));
        QVERIFY(m_iterator->nextLineStartingWith("ab"));
        QCOMPARE(lineOf(*m_iterator), QByteArray(last));
    }
    QVERIFY(open("x\na"));
    QVERIFY(!m_iterator->nextLineStartingWith("ab"));
}

void TestFileIterator::findBackwards()
{
    QVERIFY(open("ab\nxabab\ny\nzab"));
    QVERIFY(m_iterator->lastLine());
    QVERIFY(m_iterator->prevLineContaining("ab"));
    QCOMPARE(lineOf(*m_iterator), QByteArray("xabab\n"));
    QCOMPARE(m_iterator->curPos(), 3);
    QVERIFY(m_iterator->prevLineContaining("ab"));
    QCOMPARE(lineOf(*m_iterator), QByteArray("ab\n"));
    QVERIFY(m_iterator->reachedStart());
    QVERIFY(!m_iterator->prevLineContaining("ab"));
    // By the cursor rule a line that was read forwards is found again.
    QVERIFY(m_iterator->gotoPos(11));
    QVERIFY(m_iterator->prevLineContaining("ab"));
    QCOMPARE(lineOf(*m_iterator), QByteArray("zab"));
}

void TestFileIterator::findNothing()
{
    QVERIFY(open("a\nb\nc\n"));
    QVERIFY(!m_iterator->nextLineStartingWith("x"));
    QCOMPARE(lineOf(*m_iterator), QByteArray("a\n"));
    QCOMPARE(m_iterator->curPos(), 6);
    QVERIFY(m_iterator->reachedEnd());
    QVERIFY(m_iterator->prevLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("c\n"));
    QVERIFY(!m_iterator->prevLineContaining("x"));
    QCOMPARE(lineOf(*m_iterator), QByteArray("c\n"));
    QCOMPARE(m_iterator->curPos(), 0);
    QVERIFY(m_iterator->reachedStart());
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("a\n"));
}

void TestFileIterator::findAcrossBorders_data()
{
    // Places that are the border of two slices, whatever sizes slices may have on the way.
    QTest::addColumn<int>("border");
    for (const int border : {5120, 10240, 20480, 30720, 71680, 153600, 317440, 524288, 645120})
        QTest::addRow("%d", border) << border;
}

void TestFileIterator::findAcrossBorders()
{
    QFETCH(int, border);
    const QByteArray text = "%<--! marker";
    const QByteArray filler = QByteArray("filler\n").repeated(border / 7 + 10);
    for (int shift = -15; shift <= 3; ++shift) {
        const QByteArray before = filler.left(border + shift - 1) + '\n';
        QVERIFY(open(before + text + "\nrest\n"));
        QVERIFY(m_iterator->nextLineStartingWith(text.constData()));
        QCOMPARE(lineOf(*m_iterator), text + '\n');
        QCOMPARE(m_iterator->curPos(), border + shift);

        QVERIFY(open("first\nx" + text + '\n' + filler.left(border + shift)));
        QVERIFY(m_iterator->lastLine());
        QVERIFY(m_iterator->prevLineContaining(text.constData()));
        QCOMPARE(lineOf(*m_iterator), 'x' + text + '\n');
        QCOMPARE(m_iterator->curPos(), 6);
    }
}

void TestFileIterator::startAndEnd()
{
    QVERIFY(open("a\nb\n"));
    QVERIFY(!m_iterator->reachedStart());
    QVERIFY(!m_iterator->reachedEnd());
    QVERIFY(m_iterator->nextLine());
    QVERIFY(m_iterator->reachedEnd());
    QVERIFY(m_iterator->prevLine());
    QVERIFY(!m_iterator->reachedEnd());
    QVERIFY(!m_iterator->reachedStart());
    QVERIFY(m_iterator->prevLine());
    QVERIFY(m_iterator->reachedStart());
}

void TestFileIterator::nulByte()
{
    const QByteArray line("a\0b\n", 4);
    QVERIFY(open(line + "c\n"));
    QCOMPARE(lineOf(*m_iterator), line);
    QVERIFY(!m_iterator->curLineAsString());
    QVERIFY(m_iterator->nextLine());
    QVERIFY(m_iterator->curLineAsString());
    QCOMPARE(*m_iterator->curLineAsString(), QStringLiteral("c\n"));
}

void TestFileIterator::text_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("ASCII") << QByteArray("abc\n") << QStringLiteral("abc\n");
    QTest::newRow("two bytes") << QByteArray("\xc3\xa4\n") << QStringLiteral("\u00e4\n");
    QTest::newRow("surrogates") << QByteArray("\xf0\x9f\x98\x80") << QStringLiteral("\U0001f600");
    QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbf"
                                                   "a\n")
                                     << QStringLiteral("a\n");
    QTest::newRow("not UTF-8") << QByteArray("a\xff\n") << QStringLiteral("a\ufffd\n");
}

void TestFileIterator::text()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QVERIFY(open(bytes));
    QVERIFY(m_iterator->curLineAsString());
    QCOMPARE(*m_iterator->curLineAsString(), text);
}

void TestFileIterator::carriageReturnsBelongToTheLine()
{
    QVERIFY(open("a\r\nb\rc\r\n"));
    QCOMPARE(lineOf(*m_iterator), QByteArray("a\r\n"));
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(lineOf(*m_iterator), QByteArray("b\rc\r\n"));
}

void TestFileIterator::lineStartsWith()
{
    QVERIFY(open("%<--! \xc3\xa4\n"));
    QVERIFY(m_iterator->curLineStartsWithBytes(""));
    QVERIFY(m_iterator->curLineStartsWithBytes("%<--! "));
    QVERIFY(m_iterator->curLineStartsWithBytes("%<--! \xc3"));
    QVERIFY(m_iterator->curLineStartsWithBytes("%<--! \xc3\xa4\n"));
    QVERIFY(!m_iterator->curLineStartsWithBytes("%<--! \xc3\xa4\na"));
    QVERIFY(!m_iterator->curLineStartsWithBytes("<--!"));
}

void TestFileIterator::linesAreCopies()
{
    QVERIFY(open("a\nb\n"));
    const QSharedPointer<QByteArray> line = m_iterator->curLine();
    const QSharedPointer<QString> text = m_iterator->curLineAsString();
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(*line, QByteArray("a\n"));
    QCOMPARE(*text, QStringLiteral("a\n"));
    m_iterator->curLine()->append("changed");
    QCOMPARE(lineOf(*m_iterator), QByteArray("b\n"));
}

void TestFileIterator::bytes_data()
{
    const int most = std::numeric_limits<int>::max();
    const int least = std::numeric_limits<int>::min();
    QTest::addColumn<int>("pos");
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("all") << 0 << 11 << QByteArray("abcdef\nxyz\n");
    QTest::newRow("some") << 5 << 4 << QByteArray("f\nxy");
    QTest::newRow("last") << 10 << 1 << QByteArray("\n");
    QTest::newRow("none") << 3 << 0 << QByteArray();
    QTest::newRow("one too many") << 0 << 12 << QByteArray();
    QTest::newRow("partly behind the end") << 10 << 2 << QByteArray();
    QTest::newRow("none at the end") << 11 << 0 << QByteArray();
    QTest::newRow("behind the end") << 12 << 1 << QByteArray();
    QTest::newRow("before the start") << -1 << 2 << QByteArray();
    QTest::newRow("negative length") << 3 << -1 << QByteArray();
    QTest::newRow("sum that does not fit") << 5 << most << QByteArray();
    QTest::newRow("largest position") << most << most << QByteArray();
    QTest::newRow("smallest numbers") << least << least << QByteArray();
}

void TestFileIterator::bytes()
{
    QFETCH(int, pos);
    QFETCH(int, length);
    QFETCH(QByteArray, expected);
    QVERIFY(open("abcdef\nxyz\n"));
    QCOMPARE(m_iterator->getBytes(pos, length), expected);
}

void TestFileIterator::bytesLeaveTheLineAlone()
{
    QByteArray file;
    for (int i = 0; i < 5000; ++i)
        file += QByteArray::number(i) + '\n';
    QVERIFY(open(file));
    int lines = 1;
    do {
        QCOMPARE(lineOf(*m_iterator), QByteArray::number(lines - 1) + '\n');
        const int pos = (lines * 131) % static_cast<int>(file.size() - 40);
        QCOMPARE(m_iterator->getBytes(pos, 40), file.mid(pos, 40));
        ++lines;
    } while (m_iterator->nextLine());
    QCOMPARE(lines - 1, 5000);
}

void TestFileIterator::bytesOfShrunkFile()
{
    QVERIFY(open(QByteArray(100, 'x')));
    QVERIFY(QFile::resize(m_dir.path(QStringLiteral("file")), 50));
    QCOMPARE(m_iterator->getBytes(40, 20), QByteArray(10, 'x'));
    QCOMPARE(m_iterator->getBytes(60, 20), QByteArray());
}

void TestFileIterator::linesOfShrunkFile()
{
    QByteArray bytes;
    for (int i = 10000; i < 20000; ++i)
        bytes += QByteArray::number(i) + '\n';
    QVERIFY(open(bytes));
    QVERIFY(QFile::resize(m_dir.path(QStringLiteral("file")), 30000));
    // What is gone cannot be gone to, and nothing is made up.
    QVERIFY(!m_iterator->gotoPos(45000));
    QVERIFY(!m_iterator->lastLine());
    QVERIFY(m_iterator->gotoPos(18000));
    QCOMPARE(*m_iterator->curLine(), QByteArray("13000\n"));
    QCOMPARE(m_iterator->getFileSize(), qint64(60000));

    QVERIFY(QFile::resize(m_dir.path(QStringLiteral("file")), 0));
    QVERIFY(!m_iterator->gotoPos(40000));
    QVERIFY(!m_iterator->firstLine());
    QVERIFY(!m_iterator->lastLine());
}

/// The end of a long line is found, and then the line is read: it may have become shorter by then.
void TestFileIterator::lineThatShrinks()
{
    const QByteArray line(100000, 'a');
    QVERIFY(open("first\n" + line + "\nlast\n"));
    QVERIFY(QFile::resize(m_dir.path(QStringLiteral("file")), 50000));
    QVERIFY(m_iterator->nextLine());
    QCOMPARE(*m_iterator->curLine(), line.left(50000 - 6));
    QVERIFY(!m_iterator->nextLine());
}

void TestFileIterator::noDescriptorLeft()
{
    const QString path = m_dir.write(QStringLiteral("file"), "line\n");
    {
        const ProcessLimit none(RLIMIT_NOFILE, tresktest::lowestFreeDescriptor());
        QVERIFY(!m_iterator->open(path));
    }
    QVERIFY(m_iterator->empty());
    QVERIFY(!m_iterator->nextLine());
    QVERIFY(m_iterator->open(path));
}

void TestFileIterator::largestFile()
{
    const int size = std::numeric_limits<int>::max();
    const QString path = m_dir.write(QStringLiteral("sparse"), "first\n");
    QVERIFY(QFile::resize(path, size));

    // Opening reads the first line alone, so the hole behind it costs nothing.
    QVERIFY(m_iterator->open(path));
    QCOMPARE(lineOf(*m_iterator), QByteArray("first\n"));
    QVERIFY(m_iterator->gotoPos(size - 1));
    QCOMPARE(lineOf(*m_iterator), QByteArray(1, '\0'));
    QCOMPARE(m_iterator->curPos(), size - 1);
    QVERIFY(m_iterator->reachedEnd());
    QVERIFY(!m_iterator->gotoPos(size));
    QCOMPARE(m_iterator->getBytes(size - 2, 2), QByteArray(2, '\0'));
    QCOMPARE(m_iterator->getBytes(size - 2, 3), QByteArray());
}

void TestFileIterator::sizes()
{
    QVERIFY(open(QByteArray(12345, 'x')));
    QCOMPARE(m_iterator->getFileSize(), qint64(12345));
    QVERIFY(!m_iterator->empty());
}

void TestFileIterator::onLineIsAlwaysFalse()
{
    QVERIFY(!m_iterator->onLine());
    QVERIFY(open("a\n"));
    QVERIFY(!m_iterator->onLine());
    QVERIFY(m_iterator->lastLine());
    QVERIFY(!m_iterator->onLine());
}

QTEST_GUILESS_MAIN(TestFileIterator)

#include "tst_fileiterator.moc"
