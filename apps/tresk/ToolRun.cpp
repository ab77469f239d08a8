#include "ToolRun.h"

#include "Interruption.h"
#include "Invocation.h"
#include "Messages.h"
#include "SystemText.h"
#include "Text.h"

#include <tresk/BinaryDir.h>

#include <QDir>
#include <QFileInfo>

#include <cerrno>

namespace tresk::cli {

namespace {

constexpr int foundNone = -1000;
constexpr int startedNone = -1001;

QString absolutePath(const QString& directory)
{
    // By hand, since Qt takes a colon at the beginning for something else than a file.
    const QString path = directory.startsWith(QLatin1Char('/'))
        ? directory
        : QDir::currentPath() + QLatin1Char('/') + directory;
    // Where there is one, without symbolic links, on which ".." would take another way.
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(path) : canonical;
}

/// What an error or a warning says, of which the runner has taken the mark off: behind that there
/// often is a colon.
QStringView withoutColon(QStringView line)
{
    QStringView text = line.trimmed();
    while (!text.isEmpty() && (text.front() == QLatin1Char(':') || text.front().isSpace()))
        text = text.mid(1);
    return text;
}

/// Tells people what the tool called @p name, which was found at @p path, prints while it prints
/// it.
class Relay {
public:
    Relay(Invocation& invocation, const QString& name, const QString& path)
        : m_output(invocation.output)
        , m_name(name)
        , m_path(path)
    {
    }

    void relay(const QString& line, int kind)
    {
        if (kind == 0) {
            relayInformation(line);
            return;
        }
        m_output.flush(); // so that it stands in its place among the lines
        const QStringView text = withoutColon(line);
        if (kind == 1)
            reportWarning(m_name, text);
        else if (text.isEmpty())
            reportError(m_name, QStringLiteral("error"));
        else if (line.startsWith(m_path + QLatin1Char(' '))) // What the runner says of the tool.
            reportError(m_name, QDir::cleanPath(m_path) + text.mid(m_path.size()).toString());
        else
            reportError(m_name, text);
    }

private:
    void relayInformation(const QString& line)
    {
        // A line of the tool ends with one line feed, what the runner adds with two.
        if (line.endsWith(QLatin1String("\n\n"))) {
            relayLogLine(line);
        } else if (verbosity() != Verbosity::Quiet) {
            forPrintable(QStringView(line).chopped(1),
                         [this](const QString& piece) { m_output.write(piece); });
            m_output.write(QByteArray("\n"));
        }
    }

    Output& m_output;
    QString m_name;
    QString m_path;
};

int reportMissing(const Invocation& invocation, const QString& file)
{
    QStringList places = {getBinaryDir()};
    places += invocation.values("search-path");
    reportError(file,
                QStringLiteral("is not in %1; --search-path names another directory")
                    .arg(places.join(QStringLiteral(" or "))));
    return toolNotFound;
}

} // namespace

const char* const toolDescription =
    "What the tool prints is shown while it runs, errors and warnings on standard\n"
    "error. The tool lies in the directory of tresk itself, or in one that\n"
    "--search-path names.\n";

std::vector<ExitMeaning> toolExits()
{
    return {{"0 to 255", "that of the tool, or the number of the signal that ended it"},
            {"124", "wrong usage"},
            {"125", "the argument file or the output cannot be worked with"},
            {"126", "the tool cannot be started"},
            {"127", "the tool is not found"},
            {"141", "the tool is done, but the reader of the output has gone away"}};
}

std::vector<Option> toolOptions()
{
    return {{0, "search-path", "DIR", "look for the tool here too; may be repeated",
             ValueKind::Directory},
            {0, "script", nullptr, "run the tool's Python script with python3"}};
}

QString applyToolOptions(const Invocation& invocation, TreskRunner& runner)
{
    QStringList paths = {QStringLiteral(".")};
    const QDir binaryDir(getBinaryDir());
    for (const QString& directory : invocation.values("search-path")) {
        if (isUndecoded(directory))
            return QStringLiteral("the directory of --search-path is not UTF-8");
        paths += binaryDir.relativeFilePath(absolutePath(directory));
    }
    runner.setSearchPaths(paths);
    runner.setUsePy2Exe(!invocation.isSet("script"));
    return {};
}

int runTool(Invocation& invocation, TreskRunner& runner, const QString& name, const QString& input,
            const QString& reason)
{
    const QString path = runner.findTreskrun();
    if (path.isEmpty())
        return reportMissing(invocation,
                             runner.getUsePy2Exe() ? name : name + QStringLiteral(".py"));
    // A signal that the tool also gets is its business; the command sees it through.
    watchForInterruption();
    Output& output = invocation.output;
    Relay relay(invocation, name, path);
    QObject::connect(&runner, &LogSource::log, &runner,
                     [&relay](const QString& line, int kind) { relay.relay(line, kind); });
    QObject::connect(&runner, &TreskRunner::intercept, &runner, [&output] { output.flush(); });
    const int exitCode = runner.runProcess(input);
    output.flush();
    if (exitCode == foundNone)
        return toolNotFound;
    if (exitCode == startedNone) {
        if (!reason.isEmpty())
            reportError(name, reason);
        return toolNotStarted;
    }
    // Of a reader that has gone away the exit code tells as with every command.
    if (exitCode == 0 && output.error() != 0 && output.error() != EPIPE)
        return toolNotRun;
    return exitCode;
}

} // namespace tresk::cli
