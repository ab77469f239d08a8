#include "Commands.h"
#include "Invocation.h"
#include "Messages.h"
#include "OutOfMemory.h"
#include "SystemText.h"
#include "ToolRun.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tresk::cli {

namespace {

const char* const ownValue = "tresk";

/// Makes the standard streams that are closed fail when they are used. Otherwise what is opened
/// next would take a stream's number, and get what is written to the stream.
void keepStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        const bool isClosed = fcntl(stream, F_GETFD) == -1;
        if (isClosed) // so it is the lowest free number, which open() takes
            open("/", O_RDONLY | O_DIRECTORY);
    }
}

/// Makes a closed pipe and a file that grows beyond the limit errors that are reported, where
/// a signal would end the program with its work half done.
void ignoreWriteSignals()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

QStringList decodedArguments(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments += fromSystem(argv[i]);
    return arguments;
}

void applyCommonOptions(Invocation& invocation)
{
    if (invocation.isSet("quiet"))
        setVerbosity(Verbosity::Quiet);
    else if (invocation.isSet("verbose"))
        setVerbosity(Verbosity::Verbose);
    if (verbosity() != Verbosity::Verbose)
        QLoggingCategory::setFilterRules(QStringLiteral("tresk.debug=false"));

    const QString colour = invocation.value("color");
    const bool coloured = colour == QLatin1String("always")
        || (colour != QLatin1String("never") && invocation.output.isTerminal()
            && environmentAllowsColour());
    invocation.style = Style(coloured);
}

/// Returns the exit code.
int runCommand(const Command& command, Invocation& invocation)
{
    const int exitCode = command.run(invocation);
    invocation.output.flush();
    // Nobody can tell what has failed, or was not found, where the output is not complete.
    const int error = invocation.output.error();
    const bool isTool = command.wrongUsage != exitTrouble;
    const bool isLost = error != 0 && error != EPIPE && exitCode == exitFailed;
    return isLost && !isTool ? exitTrouble : exitCode;
}

/// Does what @p arguments (the program's name first) ask for; @p position is where the
/// command stands in them.
int dispatch(Invocation& invocation, QStringList arguments, int position)
{
    const Command* command = nullptr;
    if (position < arguments.size()) {
        command = findCommandNamed(arguments.takeAt(position));
        if (!command)
            return exitTrouble;
        if (arguments[position - 1] == QLatin1String("--"))
            arguments.removeAt(position - 1);
    }
    const int wrongUsage = command ? command->wrongUsage : exitTrouble;
    if (wrongUsage != exitTrouble)
        setOutOfMemoryCode(toolNotRun);
    if (!parseOptions(invocation.options, command, arguments))
        return wrongUsage;
    if (invocation.isSet("help")) {
        invocation.output.write(command ? helpFor(*command) : generalHelp());
        return exitDone;
    }
    if (invocation.isSet("version")) {
        invocation.output.write(QByteArray("tresk " TRESK_VERSION "\n"));
        return exitDone;
    }
    invocation.arguments = invocation.options.positionalArguments();
    if (!checkArguments(command, invocation.arguments))
        return wrongUsage;
    applyCommonOptions(invocation);
    return runCommand(*command, invocation);
}

/// Writes what is left of the output and reports what went wrong with it. Nobody needs to be
/// told that the reader has gone away, or that a signal has ended the command while it wrote.
int finish(Output& output, int exitCode)
{
    output.flush();
    const int error = output.error();
    const bool expected = error == EPIPE || error == EINTR;
    if (error != 0 && !expected)
        reportError(QStringLiteral("standard output"), systemError(error));
    if (error == 0 || exitCode != exitDone)
        return exitCode;
    return error == EPIPE ? exitSignal + SIGPIPE : exitTrouble;
}

int run(const QStringList& arguments)
{
    Invocation invocation;
    const int position = findCommand(arguments);
    if (position < 0)
        return exitTrouble;
    return finish(invocation.output, dispatch(invocation, arguments, position));
}

/// Has Qt wait for events by itself: GLib would end the program in its own way where memory runs
/// out. To be called before there is an application; allowGlib() is for the tools that are run.
void avoidGlib()
{
    if (!qEnvironmentVariableIsSet("QT_NO_GLIB"))
        qputenv("QT_NO_GLIB", ownValue);
}

void allowGlib()
{
    if (qgetenv("QT_NO_GLIB") == ownValue)
        qunsetenv("QT_NO_GLIB");
}

} // namespace

} // namespace tresk::cli

int main(int argc, char** argv)
{
    using namespace tresk::cli;

    endWhenOutOfMemory();
    keepStandardStreams();
    ignoreWriteSignals();
    catchLogLines();
    useUtf8ForSystemText();
    const QStringList arguments = decodedArguments(argc, argv);
    avoidGlib();
    const QCoreApplication application(argc, argv);
    allowGlib();
    useEnglishSystemMessages();
    return run(arguments);
}
