#include <tresk/TreskRunner.h>

#include <tresk/BinaryDir.h>

#include "args/SignalGuards.h"
#include "args/StreamDecoder.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <algorithm>

#ifdef Q_OS_UNIX
#include <sys/wait.h>
#endif

namespace tresk {

namespace {

constexpr int notFound = -1000;
constexpr int notStarted = -1001;
constexpr int startTime = 30000; // ms
constexpr int outputTime = 1000; // ms
constexpr int longestRest = 1 << 28; // characters

#ifdef Q_OS_WIN
const QLatin1String executableSuffix(".exe");
const QLatin1String interpreter("python.exe");
#else
const QLatin1String executableSuffix("");
const QLatin1String interpreter("python3");
#endif

/// Whether the tool has ended. QProcess does not look as long as there is output, which processes
/// that the tool left behind may go on with.
bool hasEnded(const QProcess& process)
{
#ifdef Q_OS_UNIX
    siginfo_t info = {};
    const auto id = static_cast<id_t>(process.processId());
    return waitid(P_PID, id, &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid != 0;
#else
    return process.state() == QProcess::NotRunning;
#endif
}

bool endsLine(QChar c)
{
    return c == QLatin1Char('\r') || c == QLatin1Char('\n');
}

} // namespace

TreskRunner::TreskRunner(const QString& toolName, QObject* listener)
    : LogSource(listener)
    , m_toolName(toolName)
    , m_searchPaths(QStringLiteral("."))
{
    setUsePy2Exe(true);
}

TreskRunner::~TreskRunner() = default;

void TreskRunner::setUsePy2Exe(bool packaged)
{
    m_usePy2Exe = packaged;
    m_executableName = m_toolName + (packaged ? executableSuffix : QLatin1String(".py"));
}

QString TreskRunner::findPython()
{
    return m_usePy2Exe ? QString() : QString(interpreter);
}

QString TreskRunner::findTreskrun()
{
    for (const QString& path : qAsConst(m_searchPaths)) {
        QString found = searchInPath(path, m_executableName);
        if (!found.isEmpty())
            return found;
    }
    return {};
}

QString TreskRunner::searchInPath(const QString& dir, const QString& file)
{
    const QFileInfo info(QDir(getBinaryDir() + QDir::separator() + dir), file);
    return info.isFile() ? info.filePath() : QString();
}

int TreskRunner::runTool(const QStringList& arguments, const QByteArray& input)
{
    clearOutputRest();
    const QString tool = findTreskrun();
    if (tool.isEmpty()) {
        // Names what was found, which is nothing; hence two blanks.
        Q_EMIT log(tr("could not find any %1 executable\n").arg(tool), 2);
        return notFound;
    }

    const BrokenPipeGuard guard;
    const ExitCodeGuard exitCodeGuard;
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    {
        const BrokenPipePassage passage; // The tool inherits what is blocked.
        if (m_usePy2Exe)
            process.start(tool, arguments);
        else
            process.start(findPython(), QStringList(tool) + arguments);
    }
    if (!process.waitForStarted(startTime) && process.error() == QProcess::FailedToStart) {
        Q_EMIT log(tr("%1 failed to start\n").arg(tool), 2);
        return notStarted;
    }
    if (!input.isEmpty())
        process.write(input);
    process.closeWriteChannel();

    StreamDecoder decoder;
    while (process.state() != QProcess::NotRunning || process.bytesAvailable() > 0) {
        // What is there already was read by an event loop of the caller, or at the tool's end.
        if (process.bytesAvailable() > 0 || process.waitForReadyRead(outputTime)) {
            processOutput(decoder.decode(process.readAllStandardOutput()), false);
            Q_EMIT intercept();
        }
        if (hasEnded(process))
            process.waitForFinished(outputTime);
    }
    processOutput(decoder.decodeLast(process.readAllStandardOutput()), true);
    Q_EMIT log(QObject::tr("Programm exited with error code: %1\n\n").arg(process.exitCode()), 0);
    return process.exitCode();
}

void TreskRunner::processOutput(const QString& text, bool flush)
{
    int begin = 0;
    for (;;) {
        const auto* const lineBreak = std::find_if(text.begin() + begin, text.end(), endsLine);
        const int end = int(lineBreak - text.begin());
        m_outputRest += text.mid(begin, end - begin);
        if (lineBreak == text.end())
            break;
        m_outputRest += QLatin1Char('\n');
        const QString line = m_outputRest;
        clearOutputRest();
        processOutputLine(line);
        const bool pair = text.mid(end, 2) == QLatin1String("\r\n");
        begin = pair ? end + 2 : end + 1;
    }
    if (!m_outputRest.isEmpty() && (flush || m_outputRest.size() > longestRest))
        processOutputLine(m_outputRest + QLatin1Char('\n'));
    if (m_outputRest.size() > longestRest)
        clearOutputRest();
}

void TreskRunner::processOutputLine(const QString& line)
{
    const QString error = QStringLiteral("***ERROR");
    const QString warning = QStringLiteral("***WARNING");
    if (line.startsWith(error))
        Q_EMIT log(line.mid(error.size()), 2);
    else if (line.startsWith(warning))
        Q_EMIT log(line.mid(warning.size()), 1);
    else
        Q_EMIT log(line, 0);
}

void TreskRunner::clearOutputRest()
{
    m_outputRest.clear();
}

} // namespace tresk
