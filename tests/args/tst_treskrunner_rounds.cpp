#include "Runners.h"
#include "Watched.h"

#include <tresk/TreskaddRunner.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <cerrno>
#include <csignal>
#include <memory>
#include <vector>

#include <pthread.h>
#include <sys/wait.h>

using tresk::TreskaddRunner;
using tresk::TreskRunner;
using tresktest::exitMessage;
using tresktest::flagsOf;
using tresktest::inPieces;
using tresktest::isWatched;
using tresktest::out;
using tresktest::RunnerLog;
using tresktest::standIn;
using tresktest::text;
using tresktest::ToolFolder;

namespace {

/// Something that a tool does, and what is to be seen of it.
struct Misbehaviour {
    const char* name;
    QByteArray steps;
    QString input;
    int exitCode;
    QStringList messages;
    bool saysMore = false; ///< whether there may be more messages in front of the last one
    QString lock = QString(); ///< a file for as long as which a process is left behind
};

QStringList lines(int count, int length)
{
    QStringList result;
    for (int i = 0; i < count; ++i) {
        const QString number = QString::number(i).rightJustified(8, QLatin1Char('0'));
        result += text("0 ") + number.leftJustified(length, QLatin1Char('.')) + QLatin1Char('\n');
    }
    return result;
}

/// The messages @p printed and that of the exit code.
QStringList andExit(QStringList printed, int exitCode)
{
    return printed << exitMessage(exitCode);
}

std::vector<Misbehaviour> misbehaviours(const QString& lock)
{
    const QString unread(1000000, QLatin1Char('x'));
    const QByteArray hangUp = QByteArray::number(SIGHUP) + '\n';
    const QByteArray lockPath = QFile::encodeName(lock) + '\n';
    const QStringList line{text("0 a\n")};
    return {
        {"prints much", "lines 300 999\n", text("input"), 0, andExit(lines(300, 999), 0)},
        {"no line breaks", "characters 300000\nexit 1\n", QString(), 1,
         andExit({text("0 ") + QString(300000, QLatin1Char('x')) + QLatin1Char('\n')}, 1)},
        {"nothing but line breaks", "lines 2000 0\n", QString(), 0,
         andExit(QVector<QString>(2000, text("0 \n")).toList(), 0)},
        {"no UTF-8", inPieces({"a\xff\xc3", "\n\xe2\x82", "\xac\n"}), QString(), 0,
         andExit({text("0 a\ufffd\ufffd\n"), text("0 \u20ac\n")}, 0)},
        {"reads nothing", out("a\n") + "sleep 3\nexit 3\n", unread, 3, andExit(line, 3)},
        {"closes its input", "close 0\n" + out("a\n") + "sleep 3\nexit 4\n", unread, 4,
         andExit(line, 4)},
        {"closes its output", out("a\n") + "close 1\nclose 2\nsleep 3\nexit 5\n", text("input"), 5,
         andExit(line, 5)},
        {"is killed", out("a\nb") + "die 9\n", unread, SIGKILL,
         andExit({text("0 a\n"), text("0 b\n")}, SIGKILL)},
        {"crashes", out("a\n") + "die 11\n", text("input"), SIGSEGV, andExit(line, SIGSEGV)},
        {"ignores hang-ups", "ignore " + hangUp + "raise " + hangUp + "sleep 3\n" + out("a\n"),
         text("input"), 0, andExit(line, 0)},
        {"leaves a silent process", out("a\n") + "leavesilent " + lockPath + "exit 6\n",
         text("input"), 6, andExit(line, 6), false, lock},
        {"leaves a talking process", out("a\n") + "leavetalking " + lockPath + "exit 7\n",
         text("input"), 7, andExit(line, 7), true, lock},
    };
}

/// Number of descriptors, handlers of all signals and the mask: what a run must not change.
QByteArray stateOfProcess()
{
    const QDir descriptors(text("/proc/self/fd"));
    QByteArray state = "descriptors "
        + QByteArray::number(int(descriptors.entryList(QDir::Files | QDir::System).size()));
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) != 0)
            continue;
        state += '\n' + QByteArray::number(signal) + ' '
            + QByteArray::number(qulonglong(reinterpret_cast<quintptr>(action.sa_handler)), 16)
            + ' ' + QByteArray::number(flagsOf(action), 16)
            + (sigismember(&mask, signal) == 1 ? " blocked" : "");
        for (int other = 1; other < NSIG; ++other)
            state += sigismember(&action.sa_mask, other) == 1 ? '1' : '0';
    }
    return state;
}

/// Memory that this process has in use, in KiB; 0 where the system does not tell.
qint64 residentMemory()
{
    QFile file(text("/proc/self/status"));
    const QByteArray status = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const int at = int(status.indexOf("VmRSS:"));
    return at < 0 ? 0 : status.mid(at + 6, 40).simplified().split(' ').constFirst().toLongLong();
}

} // namespace

/// Tools that misbehave in every way, one after the other, again and again in one process.
class TestTreskRunnerRounds : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void rounds_data();
    void rounds();

private:
    void run(TreskRunner& runner, const Misbehaviour& misbehaviour);

    const ToolFolder m_tools;
    QByteArray m_before; ///< state of this process
};

void TestTreskRunnerRounds::initTestCase()
{
    // QProcess keeps some descriptors, and a handler for children, for good.
    standIn("exit 2\n");
    QCOMPARE(QProcess::execute(m_tools.path(text("treskadd")), {}), 2);
    m_before = stateOfProcess();
}

void TestTreskRunnerRounds::run(TreskRunner& runner, const Misbehaviour& misbehaviour)
{
    if (!misbehaviour.lock.isEmpty())
        m_tools.write(text("lock"), "");
    standIn(misbehaviour.steps);
    const RunnerLog log(runner);
    const int exitCode = runner.runProcess(misbehaviour.input);
    if (!misbehaviour.lock.isEmpty())
        QVERIFY(QFile::remove(misbehaviour.lock)); // ends the process
    QCOMPARE(exitCode, misbehaviour.exitCode);
    if (misbehaviour.saysMore) {
        QCOMPARE(log.messages.constFirst(), misbehaviour.messages.constFirst());
        QCOMPARE(log.messages.constLast(), misbehaviour.messages.constLast());
    } else {
        QVERIFY2(log.messages == misbehaviour.messages,
                 qPrintable(log.messages.join(QString()).left(300)));
    }
}

void TestTreskRunnerRounds::rounds_data()
{
    QTest::addColumn<int>("runners");
    QTest::newRow("one runner") << 1;
    QTest::newRow("five runners") << 5; // so each meets each misbehaviour in turn
}

void TestTreskRunnerRounds::rounds()
{
    QFETCH(int, runners);
    std::vector<std::unique_ptr<TreskRunner>> objects;
    for (int i = 0; i < runners; ++i) {
        objects.push_back(std::make_unique<TreskaddRunner>(nullptr));
        objects.back()->setSearchPaths({m_tools.relative()});
    }
    const std::vector<Misbehaviour> all = misbehaviours(m_tools.path(text("lock")));
    const int rounds = isWatched() ? 10 : 30;
    const int warmUp = 5; // until memory is as large as it gets
    size_t next = 0;
    qint64 memory = 0;
    for (int round = 0; round < rounds; ++round) {
        for (const Misbehaviour& misbehaviour : all) {
            run(*objects[next++ % objects.size()], misbehaviour);
            if (QTest::currentTestFailed())
                QFAIL(misbehaviour.name);
            // No zombie either.
            QCOMPARE(waitpid(-1, nullptr, WNOHANG), -1);
            QCOMPARE(errno, ECHILD);
            QVERIFY2(stateOfProcess() == m_before, misbehaviour.name);
        }
        if (round == warmUp)
            memory = residentMemory();
    }
    // What watches keeps memory that is free.
    const qint64 growth = residentMemory() - memory;
    QVERIFY2(isWatched() || growth < 4 * 1024, QByteArray::number(growth).constData());
}

QTEST_GUILESS_MAIN(TestTreskRunnerRounds)

#include "tst_treskrunner_rounds.moc"
