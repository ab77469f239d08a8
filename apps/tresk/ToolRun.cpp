#include "ToolRun.h"

#include "Interruption.h"
#include "Invocation.h"
#include "Messages.h"
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
    // Where there is one, without symbolic links, on which ".." would take another way.
    const QString canonical = QFileInfo(directory).canonicalFilePath();
    return canonical.isEmpty() ? QDir(directory).absolutePath() : canonical;
}

/// Tells people what a tool prints while it prints it.
class Relay {
public:
    Relay(Invocation& invocation, const QString& name)
        : m_output(invocation.output)
        , m_name(name)
    {
    }

    void relay(const QString& line, int kind)
    {
        if (kind == 0) {
            relayInformation(line);
            return;
        }
        m_output.flush(); // so that it stands in its place among the lines
        // Behind the mark of an error there often is a colon.
        QString text = line.trimmed();
        while (text.startsWith(QLatin1Char(':')) || text.startsWith(QLatin1Char(' ')))
            text.remove(0, 1);
        if (kind == 1)
            reportWarning(m_name, text);
        else
            reportError(m_name, text);
    }

private:
    void relayInformation(const QString& line)
    {
        // A line of the tool ends with one line feed, what the runner adds with two.
        if (line.endsWith(QLatin1String("\n\n")))
            relayLogLine(line);
        else if (verbosity() != Verbosity::Quiet)
            m_output.write(printable(line.chopped(1)) + QLatin1Char('\n'));
    }

    Output& m_output;
    QString m_name;
};

int reportMissing(const Invocation& invocation, const QString& file)
{
    QStringList places = {getBinaryDir()};
    places += invocation.values("search-path");
    reportError(file, QStringLiteral("is not in ") + places.join(QStringLiteral(" or ")));
    return toolNotFound;
}

} // namespace

const char* const toolExitCodes =
    "The exit code is that of the tool, or the number of the signal that ended it;\n"
    "124 for wrong usage, 125 if the argument file or the output cannot be worked\n"
    "with, 126 if the tool cannot be started, 127 if it is not found.\n";

std::vector<Option> toolOptions()
{
    return {{0, "search-path", "DIR", "look for the tool here too; may be given several times"},
            {0, "script", nullptr, "run the tool's Python script with python3"}};
}

QString applyToolOptions(const Invocation& invocation, TreskRunner& runner)
{
    QStringList paths = {QStringLiteral(".")};
    const QDir binaryDir(getBinaryDir());
    for (const QString& directory : invocation.values("search-path")) {
        if (directory.isEmpty())
            return QStringLiteral("--search-path takes a directory");
        paths += binaryDir.relativeFilePath(absolutePath(directory));
    }
    runner.setSearchPaths(paths);
    runner.setUsePy2Exe(!invocation.isSet("script"));
    return {};
}

int runTool(Invocation& invocation, TreskRunner& runner, const QString& name, const QString& input)
{
    if (runner.findTreskrun().isEmpty())
        return reportMissing(invocation,
                             runner.getUsePy2Exe() ? name : name + QStringLiteral(".py"));
    // A signal that the tool also gets is its business; the command sees it through.
    watchForInterruption();
    Output& output = invocation.output;
    Relay relay(invocation, name);
    QObject::connect(&runner, &LogSource::log, &runner,
                     [&relay](const QString& line, int kind) { relay.relay(line, kind); });
    QObject::connect(&runner, &TreskRunner::intercept, &runner, [&output] { output.flush(); });
    const int exitCode = runner.runProcess(input);
    output.flush();
    if (exitCode == foundNone)
        return toolNotFound;
    if (exitCode == startedNone)
        return toolNotStarted;
    // Of a reader that has gone away the exit code tells as with every command.
    if (exitCode == 0 && output.error() != 0 && output.error() != EPIPE)
        return toolNotRun;
    return exitCode;
}

} // namespace tresk::cli
