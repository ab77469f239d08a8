#include "Runners.h"
#include "Watched.h"

#include <tresk/TreskaddRunner.h>
#include <tresk/TreskdelRunner.h>

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTest>

#include <sys/resource.h>

using tresk::TreskaddRunner;
using tresk::TreskdelRunner;
using tresk::TreskRunner;
using tresktest::exitMessage;
using tresktest::inPieces;
using tresktest::isWatched;
using tresktest::out;
using tresktest::RunnerLog;
using tresktest::standIn;
using tresktest::text;
using tresktest::ToolFolder;

namespace {

/// A value of this process in /proc, in KiB; -1 where there is none.
qint64 statusValue(const QByteArray& name)
{
    QFile file(text("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(name + ':'))
            return line.mid(name.size() + 1).simplified().split(' ').constFirst().toLongLong();
    }
    return -1;
}

/// Makes the most memory that was in use what is in use now, and returns that, in KiB.
qint64 restartPeak()
{
    QFile file(text("/proc/self/clear_refs"));
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        file.write("5");
    return statusValue("VmHWM");
}

/// Processor time that this process has used, in seconds.
double processorTime()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return double(time.tv_sec) + double(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

int openDescriptors()
{
    const QDir descriptors(text("/proc/self/fd"));
    return int(descriptors.entryList(QDir::Files | QDir::System).size());
}

/// The messages of a tool that prints these bytes and exits with 0.
QStringList messagesOf(const QByteArray& bytes)
{
    QStringList lines =
        QString::fromUtf8(bytes.constData(), int(bytes.size())).split(QLatin1Char('\n'));
    if (lines.constLast().isEmpty())
        lines.removeLast();
    for (QString& line : lines)
        line = text("0 ") + line + QLatin1Char('\n');
    return lines << exitMessage(0);
}

} // namespace

/// Tools that print much, broken text or none, and do not read what they are given.
class TestTreskRunnerHostile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void manyLines();
    void noLineBreaks();
    void manyLineBreaks();
    void brokenText_data();
    void brokenText();
    void randomBytes();
    void inputNotRead_data();
    void inputNotRead();
    void outputClosed();
    void silentForAWhile();
    void noDescriptorsAreLeft();
    void noDescriptorsAreLeftByFailures();

private:
    const ToolFolder m_tools;
    TreskaddRunner m_runner{nullptr};
};

void TestTreskRunnerHostile::init()
{
    m_runner.setSearchPaths({m_tools.relative()});
}

void TestTreskRunnerHostile::manyLines()
{
    // 200 MB
    const int count = 20000;
    const int length = 9999;
    const QString padding = QString(length - 8, QLatin1Char('.')) + QLatin1Char('\n');
    int next = 0;
    bool inOrder = true;
    QObject context;
    QString last;
    connect(&m_runner, &TreskRunner::log, &context, [&](const QString& message) {
        last = message;
        if (next == count)
            return;
        const QString number = QString::number(next).rightJustified(8, QLatin1Char('0'));
        inOrder = inOrder && message.startsWith(number) && message.endsWith(padding)
            && message.size() == length + 1;
        ++next;
    });
    standIn(QStringLiteral("lines %1 %2\n").arg(count).arg(length).toLatin1());
    const qint64 before = restartPeak();
    QCOMPARE(m_runner.runProcess(QString()), 0);
    const qint64 growth = statusValue("VmHWM") - before;
    QVERIFY(inOrder);
    QCOMPARE(next, count);
    QCOMPARE(text("0 ") + last, exitMessage(0));
    // Where it is watched, memory that is free is kept.
    QVERIFY2(isWatched() || growth < 64 * 1024, QByteArray::number(growth).constData());
}

void TestTreskRunnerHostile::noLineBreaks()
{
    const int count = isWatched() ? 20000000 : 200000000;
    int whole = 0;
    QStringList others;
    QObject context;
    connect(&m_runner, &TreskRunner::log, &context, [&](const QString& message, int type) {
        if (type == 0 && message.size() == count + 1 && message.count(QLatin1Char('x')) == count
            && message.endsWith(QLatin1Char('\n')))
            ++whole;
        else
            others += QString::number(type) + QLatin1Char(' ') + message.left(100);
    });
    standIn("characters " + QByteArray::number(count) + '\n');
    QCOMPARE(m_runner.runProcess(QString()), 0);
    QCOMPARE(others, QStringList(exitMessage(0)));
    QCOMPARE(whole, 1);
}

void TestTreskRunnerHostile::manyLineBreaks()
{
    const int count = 500000;
    int empty = 0;
    QObject context;
    connect(&m_runner, &TreskRunner::log, &context,
            [&](const QString& message) { empty += message == text("\n") ? 1 : 0; });
    standIn("lines " + QByteArray::number(count) + " 0\n");
    QCOMPARE(m_runner.runProcess(QString()), 0);
    QCOMPARE(empty, count);
}

void TestTreskRunnerHostile::brokenText_data()
{
    using Pieces = QList<QByteArray>;
    QTest::addColumn<Pieces>("pieces");
    const QByteArray tree = "\xf0\x9f\x8c\xb3";
    QTest::newRow("2 bytes cut") << Pieces({"a\xc3",
                                            "\xbc"
                                            "b\n"});
    QTest::newRow("3 bytes cut behind 1") << Pieces({"\xe2", "\x82\xac\n"});
    QTest::newRow("3 bytes cut behind 2") << Pieces({"\xe2\x82", "\xac\n"});
    for (int i = 1; i < 4; ++i) {
        QTest::newRow(QByteArray("4 bytes cut behind " + QByteArray::number(i)).constData())
            << Pieces({tree.left(i), tree.mid(i) + '\n'});
    }
    QTest::newRow("byte by byte") << Pieces(
        {"\xf0", "\x9f", "\x8c", "\xb3", "\xe2", "\x82", "\xac", "\xc3", "\xbc", "\n"});
    QTest::newRow("cut, then a line feed") << Pieces({"\xe2\x82", "\nb\n"});
    QTest::newRow("cut, then a letter")
        << Pieces({"\xe2\x82", "a", "\xf0\x9f\x8c", "a", "\xc3", "a\n"});
    QTest::newRow("cut, then another") << Pieces({"\xe2\x82", "\xe2\x82", "\xac\xf0", tree, "\n"});
    QTest::newRow("cut, then bytes of no character") << Pieces({"\xf0\x9f", "\xff\xc3", "\xfe\n"});
    QTest::newRow("1 byte at the end") << Pieces({"a\xc3"});
    QTest::newRow("2 bytes at the end") << Pieces({"a\xe2", "\x82"});
    QTest::newRow("3 bytes at the end") << Pieces({"a\xf0\x9f\x8c"});
    QTest::newRow("bytes of no character") << Pieces({"a\xff\xfe\x80\xbf\xc0\xc1\xf5"
                                                      "b\n"});
    QTest::newRow("too long a form") << Pieces({"\xc0\xaf\xe0\x80\xaf\n", "\xe0", "\x80\xaf\n"});
    QTest::newRow("halves of a pair")
        << Pieces({"\xed\xa0\xbc\xed\xbc\xb3\n", "\xed", "\xa0\xbc\n"});
    QTest::newRow("beyond the last") << Pieces({"\xf4\x90\x80\x80\n", "\xf4", "\x90\x80\x80\n"});
    QTest::newRow("byte order mark") << Pieces({"\xef\xbb\xbf"
                                                "a\n"});
    QTest::newRow("byte order mark cut") << Pieces({"\xef", "\xbb",
                                                    "\xbf"
                                                    "a\n"});
    QTest::newRow("byte order mark later") << Pieces({"a",
                                                      "\xef\xbb\xbf"
                                                      "b\n",
                                                      "\xef\xbb\xbf\n"});
    QTest::newRow("two byte order marks") << Pieces({"\xef\xbb\xbf",
                                                     "\xef\xbb\xbf"
                                                     "b\n"});
    QTest::newRow("NUL") << Pieces({QByteArray("a\0b\n", 4), QByteArray("\0\0", 2)});
}

void TestTreskRunnerHostile::brokenText()
{
    QFETCH(QList<QByteArray>, pieces);
    const RunnerLog log(m_runner);
    standIn(inPieces(pieces));
    QCOMPARE(m_runner.runProcess(QString()), 0);
    QCOMPARE(log.messages, messagesOf(pieces.join()));
}

void TestTreskRunnerHostile::randomBytes()
{
    const QByteArray bytes = "\xc3\xbc\xe2\x82\xac\xf0\x9f\x8c\xb3\xef\xbb\xbf\xed\xa0\xff\n"
                             "a";
    QRandomGenerator random(25);
    for (int i = 0; i < 12; ++i) {
        QList<QByteArray> pieces;
        for (int left = 200; left > 0; --left) {
            // Often a part that is right.
            const int at = random.bounded(int(bytes.size()));
            pieces += bytes.mid(at, 1 + random.bounded(4));
        }
        const RunnerLog log(m_runner);
        standIn(inPieces(pieces));
        QCOMPARE(m_runner.runProcess(QString()), 0);
        QCOMPARE(log.messages, messagesOf(pieces.join()));
    }
}

void TestTreskRunnerHostile::inputNotRead_data()
{
    QTest::addColumn<QByteArray>("steps");
    QTest::newRow("ends at once") << QByteArray();
    QTest::newRow("closed") << QByteArray("close 0\n");
    QTest::newRow("open to the end") << QByteArray("sleep 20\n");
}

void TestTreskRunnerHostile::inputNotRead()
{
    QFETCH(QByteArray, steps);
    const QString input(50000000, QLatin1Char('x'));
    for (int i = 0; i < 2; ++i) {
        const RunnerLog log(m_runner);
        standIn(steps + inPieces({"a\n", "b"}) + "exit 3\n");
        QCOMPARE(m_runner.runProcess(input), 3);
        QCOMPARE(log.messages, QStringList({text("0 a\n"), text("0 b\n"), exitMessage(3)}));
    }
}

void TestTreskRunnerHostile::outputClosed()
{
    const RunnerLog log(m_runner);
    standIn(out("a") + "close 1\nclose 2\nsleep 1200\nexit 4\n");
    const double before = processorTime();
    QCOMPARE(m_runner.runProcess(text("input")), 4);
    // It waits without asking over and over.
    QVERIFY(processorTime() - before < 0.5);
    QCOMPARE(log.messages, QStringList({text("0 a\n"), exitMessage(4)}));
}

void TestTreskRunnerHostile::silentForAWhile()
{
    // For longer than the runner waits at a time.
    const RunnerLog log(m_runner);
    standIn("sleep 1100\n" + inPieces({"a\n"}));
    QCOMPARE(m_runner.runProcess(QString()), 0);
    QCOMPARE(log.events, QStringList({text("0 a\n"), text("intercept"), exitMessage(0)}));
}

void TestTreskRunnerHostile::noDescriptorsAreLeft()
{
    TreskdelRunner other(nullptr);
    other.setSearchPaths({m_tools.relative()});
    standIn(out("a\n"));
    QCOMPARE(m_runner.runProcess(QString()), 0); // Some are kept for good.
    const int before = openDescriptors();
    QVERIFY(before > 0);
    const int runs = isWatched() ? 300 : 1000;
    for (int i = 0; i < runs; i += 2) {
        QCOMPARE(m_runner.runProcess(text("input")), 0);
        QCOMPARE(other.runProcess(text("request")), 0);
    }
    QCOMPARE(openDescriptors(), before);
}

void TestTreskRunnerHostile::noDescriptorsAreLeftByFailures()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    QSKIP("Qt 6.4 itself keeps one of each start that fails");
#endif
    m_tools.makeFolder(text("broken"));
    m_tools.write(text("broken/treskadd"), "x");
    m_runner.setSearchPaths({m_tools.relative(text("broken"))});
    QCOMPARE(m_runner.runProcess(QString()), -1001);
    const int before = openDescriptors();
    for (int i = 0; i < 20; ++i)
        QCOMPARE(m_runner.runProcess(text("input")), -1001);
    QCOMPARE(openDescriptors(), before);
}

QTEST_GUILESS_MAIN(TestTreskRunnerHostile)

#include "tst_treskrunner_hostile.moc"
