#include "Runners.h"

#include <tresk/TreskaddRunner.h>
#include <tresk/TreskdelRunner.h>

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

using tresk::TreskaddRunner;
using tresk::TreskdelRunner;
using tresk::TreskRunner;
using tresktest::exitMessage;
using tresktest::flagsOf;
using tresktest::inPieces;
using tresktest::out;
using tresktest::RunnerLog;
using tresktest::standIn;
using tresktest::text;
using tresktest::ToolFolder;

namespace {

volatile std::sig_atomic_t brokenPipes = 0;

void countBrokenPipe(int)
{
    brokenPipes = brokenPipes + 1;
}

QByteArray textOf(int signal)
{
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    QByteArray text = QByteArray::number(flagsOf(action));
    if (action.sa_handler == SIG_DFL)
        text += " default";
    else if (action.sa_handler == SIG_IGN)
        text += " ignored";
    else
        text += action.sa_handler == countBrokenPipe ? " counted" : " other";
    return text;
}

QByteArray textOf(const sigset_t& set)
{
    QByteArray text;
    for (int signal = 1; signal < SIGRTMIN; ++signal) {
        if (sigismember(&set, signal) == 1)
            text += ' ' + QByteArray::number(signal);
    }
    return text;
}

/// What this process does about signals.
QByteArray signalState()
{
    sigset_t mask;
    sigset_t pending;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    sigpending(&pending);
    return "SIGPIPE " + textOf(SIGPIPE) + ", SIGCHLD " + textOf(SIGCHLD) + ", blocked"
        + textOf(mask) + ", pending" + textOf(pending) + ", counted "
        + QByteArray::number(brokenPipes);
}

/// Has this process handle SIGPIPE, or SIGCHLD, as @p mode says.
void setMode(const QByteArray& mode)
{
    struct sigaction action = {};
    action.sa_flags = SA_RESTART;
    action.sa_handler = mode == "ignored" ? SIG_IGN : mode == "counted" ? countBrokenPipe : SIG_DFL;
    if (mode != "default")
        sigaction(SIGPIPE, &action, nullptr);
    if (mode == "children ignored")
        std::signal(SIGCHLD, SIG_IGN);
    action.sa_flags = SA_NOCLDWAIT;
    if (mode == "children not kept")
        sigaction(SIGCHLD, &action, nullptr);
    if (mode != "blocked" && mode != "pending")
        return;
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    sigaddset(&set, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    if (mode == "pending")
        std::raise(SIGPIPE);
}

/// Runs tools that close their input too early and prints what changed by that.
int runWithBrokenPipes(const QByteArray& mode)
{
    const ToolFolder tools;
    const QString input(1000000, QLatin1Char('x'));
    const QByteArray steps = "sigpipe\ntaken\nclose 0\n" + inPieces({"closed\n"})
        + "sleep 10\nexit 3\n";
    TreskaddRunner runner(nullptr);
    TreskaddRunner inner(nullptr);
    QObject context;
    const auto print = [](const QString& message) {
        std::fputs(message.toUtf8().constData(), stdout);
    };
    for (TreskRunner* const each : QList<TreskRunner*>({&runner, &inner})) {
        each->setSearchPaths({tools.relative()});
        QObject::connect(each, &TreskRunner::log, &context, print);
    }
    setMode(mode);
    standIn(steps);
    const QByteArray before = signalState();
    for (int run = 0; run < 3; ++run) {
        if (run == 2) {
            QObject::connect(&runner, &TreskRunner::intercept, &context, [&] {
                QObject::disconnect(&runner, &TreskRunner::intercept, nullptr, nullptr);
                inner.runProcess(input);
            });
        }
        runner.runProcess(input);
        std::printf("%s\n", signalState() == before ? "unchanged" : signalState().constData());
    }
    return 0;
}

/// Whether a process keeps the file locked.
bool isLocked(const QString& path)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC);
    const bool locked = flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(file);
    return locked;
}

} // namespace

/// Signals of the host and of the tools, and processes that tools leave behind.
class TestTreskRunnerSignals : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void brokenPipe_data();
    void brokenPipe();
    void maskOfOthers();
    void dies_data();
    void dies();
    void survivesHangUp();
    void processLeftBehind_data();
    void processLeftBehind();
    void allChildrenAreCollected();

private:
    const ToolFolder m_tools;
    TreskaddRunner m_runner{nullptr};
};

void TestTreskRunnerSignals::init()
{
    m_runner.setSearchPaths({m_tools.relative()});
}

void TestTreskRunnerSignals::brokenPipe_data()
{
    QTest::addColumn<QString>("mode");
    for (const char* const mode : {"default", "ignored", "counted", "blocked", "pending",
                                   "children ignored", "children not kept"})
        QTest::newRow(mode) << text(mode);
}

void TestTreskRunnerSignals::brokenPipe()
{
    // In a process of its own, in which a tool is run for the first time.
    QFETCH(QString, mode);
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {text("--broken-pipes"), mode});
    QVERIFY(process.waitForFinished());
    const QByteArray tool = "SIGPIPE default not blocked\n";
    const QByteArray rest = "closed\nProgramm exited with error code: 3\n\n";
    const QByteArray plain = tool + rest + "unchanged\n";
    QCOMPARE(process.readAllStandardOutput(),
             plain + plain + tool + tool + rest + rest + "unchanged\n");
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
}

void TestTreskRunnerSignals::maskOfOthers()
{
    // What a slot does about other signals stays.
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGUSR2);
    QObject context;
    connect(&m_runner, &TreskRunner::intercept, &context,
            [&] { pthread_sigmask(SIG_BLOCK, &set, nullptr); });
    standIn(inPieces({"a\n"}));
    QCOMPARE(m_runner.runProcess(text("input")), 0);
    sigset_t mask;
    pthread_sigmask(SIG_UNBLOCK, &set, &mask);
    QCOMPARE(textOf(mask), ' ' + QByteArray::number(SIGUSR2));
}

void TestTreskRunnerSignals::dies_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGHUP") << SIGHUP;
    QTest::newRow("SIGABRT") << SIGABRT;
    QTest::newRow("SIGKILL") << SIGKILL;
    QTest::newRow("SIGSEGV") << SIGSEGV;
    QTest::newRow("SIGPIPE") << SIGPIPE;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void TestTreskRunnerSignals::dies()
{
    QFETCH(int, signal);
    const RunnerLog log(m_runner);
    standIn(out("a\nb") + "die " + QByteArray::number(signal) + '\n');
    QCOMPARE(m_runner.runProcess(text("input")), signal);
    QCOMPARE(log.messages, QStringList({text("0 a\n"), text("0 b\n"), exitMessage(signal)}));
}

void TestTreskRunnerSignals::survivesHangUp()
{
    const RunnerLog log(m_runner);
    const QByteArray number = QByteArray::number(SIGHUP) + '\n';
    standIn("ignore " + number + out("a\n") + "raise " + number + "sleep 20\n" + out("b\n")
            + "exit 2\n");
    QCOMPARE(m_runner.runProcess(text("input")), 2);
    QCOMPARE(log.messages, QStringList({text("0 a\n"), text("0 b\n"), exitMessage(2)}));
}

void TestTreskRunnerSignals::processLeftBehind_data()
{
    QTest::addColumn<QByteArray>("step");
    QTest::newRow("silent") << QByteArray("leavesilent ");
    // It leaves no moment without output.
    QTest::newRow("talking") << QByteArray("leavetalking ");
}

void TestTreskRunnerSignals::processLeftBehind()
{
    QFETCH(QByteArray, step);
    const QString lock = m_tools.write(text("lock"), "");
    const RunnerLog log(m_runner);
    standIn(out("a\n") + step + QFile::encodeName(lock) + "\nsleep 30\nexit 6\n");
    QCOMPARE(m_runner.runProcess(text("input")), 6);
    QVERIFY(isLocked(lock)); // so it has not been waited for
    QVERIFY(QFile::remove(lock)); // ends it
    QCOMPARE(log.messages.constFirst(), text("0 a\n"));
    QCOMPARE(log.messages.constLast(), exitMessage(6));
}

void TestTreskRunnerSignals::allChildrenAreCollected()
{
    standIn("exit 1\n");
    QCOMPARE(m_runner.runProcess(text("input")), 1);
    standIn("die 9\n");
    QCOMPARE(m_runner.runProcess(text("input")), 9);
    QCOMPARE(waitpid(-1, nullptr, WNOHANG), -1);
    QCOMPARE(errno, ECHILD);
    m_tools.makeFolder(text("broken"));
    m_tools.write(text("broken/treskadd"), "x");
    m_runner.setSearchPaths({m_tools.relative(text("broken"))});
    QCOMPARE(m_runner.runProcess(text("input")), -1001);
    QCOMPARE(waitpid(-1, nullptr, WNOHANG), -1);
    QCOMPARE(errno, ECHILD);
}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--broken-pipes") == 0)
        return runWithBrokenPipes(argv[2]);
    TestTreskRunnerSignals test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_treskrunner_signals.moc"
