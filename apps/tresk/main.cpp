#include "Commands.h"
#include "Invocation.h"
#include "Messages.h"
#include "SystemText.h"

#include <QCoreApplication>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tresk::cli {

namespace {

/// Occupies the standard descriptors that are closed, lest a file that is opened later take
/// the place of one and receive what is meant for it. Reading or writing fails as before.
void occupyStandardDescriptors()
{
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(fd, F_GETFD) == -1 && errno == EBADF)
            open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
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

    const QString colour = invocation.value("color");
    const bool coloured = colour == QLatin1String("always")
        || (colour != QLatin1String("never") && invocation.output.isTerminal()
            && environmentAllowsColour());
    invocation.style = Style(coloured);
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
    if (!parseOptions(invocation.options, command, arguments))
        return exitTrouble;
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
        return exitTrouble;
    applyCommonOptions(invocation);
    return command->run(invocation);
}

/// Writes what is left of the output and reports what went wrong with it.
int finish(Output& output, int exitCode)
{
    output.flush();
    if (output.error() == 0)
        return exitCode;
    if (output.error() == EPIPE)
        return exitSignal + SIGPIPE;
    reportError(QStringLiteral("standard output"), systemError(output.error()));
    return exitTrouble;
}

int run(const QStringList& arguments)
{
    Invocation invocation;
    const int position = findCommand(arguments);
    if (position < 0)
        return exitTrouble;
    return finish(invocation.output, dispatch(invocation, arguments, position));
}

} // namespace

} // namespace tresk::cli

int main(int argc, char** argv)
{
    using namespace tresk::cli;

    occupyStandardDescriptors();
    ignoreWriteSignals();
    catchLogLines();
    useUtf8ForSystemText();
    const QStringList arguments = decodedArguments(argc, argv);
    const QCoreApplication application(argc, argv);
    useEnglishSystemMessages();
    return run(arguments);
}
