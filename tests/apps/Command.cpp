#include "Command.h"

#include <Watched.h>

#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QtTest>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QTextCodec>
#endif

#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace tresktest {

namespace {

const int mostMilliseconds = 60000;

Outcome outcomeOf(QProcess& process)
{
    Outcome outcome;
    outcome.output = process.readAllStandardOutput();
    outcome.errors = process.readAllStandardError();
    if (process.state() == QProcess::NotRunning && process.exitStatus() == QProcess::NormalExit)
        outcome.exitCode = process.exitCode();
    else
        outcome.errors += process.errorString().toUtf8() + '\n';
    return outcome;
}

/// A terminal of which the tests hold the other end.
class Terminal {
public:
    Terminal()
        : m_fd(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
    {
        if (m_fd != -1 && grantpt(m_fd) == 0 && unlockpt(m_fd) == 0)
            m_path = QString::fromLocal8Bit(ptsname(m_fd));
    }
    ~Terminal()
    {
        if (m_fd != -1)
            close(m_fd);
    }

    QString path() const { return m_path; }

    /// What has been written to the terminal since the last call.
    QByteArray read() const
    {
        QByteArray bytes;
        char buffer[4096];
        for (ssize_t n = 0; (n = ::read(m_fd, buffer, sizeof buffer)) > 0;)
            bytes.append(buffer, static_cast<int>(n));
        return bytes;
    }

private:
    Q_DISABLE_COPY(Terminal)

    int m_fd;
    QString m_path;
};

} // namespace

Command::Command(const QStringList& arguments)
    : m_arguments(arguments)
    , m_environment(QProcessEnvironment::systemEnvironment())
{
    useUtf8Paths();
    m_environment.remove(QStringLiteral("NO_COLOR"));
    m_environment.insert(QStringLiteral("TERM"), QStringLiteral("xterm"));
}

Command& Command::inDirectory(const QString& path)
{
    m_directory = path;
    return *this;
}

Command& Command::with(const QString& variable, const QString& value)
{
    m_environment.insert(variable, value);
    return *this;
}

Command& Command::without(const QString& variable)
{
    m_environment.remove(variable);
    return *this;
}

Command& Command::inShell(const QString& script)
{
    m_script = script;
    return *this;
}

bool Command::asOrdinaryUser(const QString& before)
{
    const bool isRoot = geteuid() == 0;
    const QString other = isRoot ? QStringLiteral("setpriv --reuid=65534 --clear-groups -- ")
                                 : QString();
    const QString script = QStringLiteral("exec %1\"$@\"").arg(other);
    inShell(before + script);
    return !isRoot || Command({QStringLiteral("--version")}).inShell(script).run().exitCode == 0;
}

Outcome Command::run()
{
    return runWhile([](qint64) {});
}

Outcome Command::runWhile(const std::function<void(qint64)>& act)
{
    QProcess process;
    start(process);
    if (process.waitForStarted(mostMilliseconds)) {
        const qint64 id = process.processId();
        if (id > 0)
            act(id);
        process.waitForFinished(mostMilliseconds);
    }
    return outcomeOf(process);
}

Outcome Command::runOnTerminal(bool output, bool errors)
{
    const Terminal terminal;
    if (terminal.path().isEmpty()) {
        QTest::qFail("no terminal to be had", __FILE__, __LINE__);
        return {};
    }
    QProcess process;
    if (output)
        process.setStandardOutputFile(terminal.path());
    if (errors)
        process.setStandardErrorFile(terminal.path());
    start(process);
    // What nobody reads would make the command wait.
    QByteArray shown;
    for (int i = 0; i < mostMilliseconds / 10 && !process.waitForFinished(10); ++i)
        shown += terminal.read();
    shown += terminal.read();
    Outcome outcome = outcomeOf(process);
    (output ? outcome.output : outcome.errors) = shown;
    return outcome;
}

void Command::start(QProcess& process) const
{
    process.setProcessEnvironment(m_environment);
    process.setWorkingDirectory(m_directory);
    const QString command = QStringLiteral(TRESK_COMMAND);
    if (m_script.isEmpty()) {
        process.start(command, m_arguments);
        return;
    }
    const QStringList shellArguments = {QStringLiteral("-c"), m_script, QStringLiteral("sh"),
                                        command};
    process.start(QStringLiteral("sh"), shellArguments + m_arguments);
}

void waitUntilRead(qint64 processId, qint64 bytes)
{
    // valgrind reads programs itself, before they begin.
    const qint64 most = isUnderValgrind() ? bytes + 64 * 1024 * 1024 : bytes;
    QElapsedTimer timer;
    timer.start();
    const QString path = QStringLiteral("/proc/%1/io").arg(processId);
    while (timer.elapsed() < mostMilliseconds) {
        QFile file(path);
        const bool present = file.open(QIODevice::ReadOnly);
        // "rchar: NUMBER"
        const QByteArray first = file.readLine();
        if (!present || first.isEmpty() || first.mid(7).trimmed().toLongLong() >= most)
            return;
        QTest::qSleep(1);
    }
}

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

void useUtf8Paths()
{
    // Qt 6 does so by itself.
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
#endif
}

Outcome runTresk(const QStringList& arguments)
{
    return Command(arguments).run();
}

QJsonObject jsonObject(const QByteArray& json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (!document.isObject())
        QTest::qFail(qPrintable(error.errorString()), __FILE__, __LINE__);
    return document.object();
}

} // namespace tresktest
