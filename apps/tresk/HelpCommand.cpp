#include "Commands.h"
#include "Invocation.h"

namespace tresk::cli {

namespace {

const char* const introduction =
    "Shows the history that a document carries: the steps that made it, and the files\n"
    "that these embedded in it. Documents are never changed, but by the tools\n"
    "that add and undo run.\n";

const char* const generalExample = "tresk log report.pdf\n"
                                   "tresk extract report.pdf -C files\n"
                                   "tresk find spectrum *.pdf\n";

const char* const exitCodes =
    "Exit codes:\n"
    "  0    done\n"
    "  1    a checksum is wrong or missing, or what it is for damaged; nothing found\n"
    "  2    trouble: wrong usage, a document that cannot be read or is damaged,\n"
    "       a file that could not be written\n"
    "  129, 130, 143\n"
    "       ended by the signal HUP, INT or TERM\n"
    "  141  the reader of the output has gone away\n"
    "Those of add and undo are others: that of the tool, or 124 to 127.\n";

QString entry(const QString& name, const char* purpose, int width)
{
    return QStringLiteral("  %1  %2\n").arg(name.leftJustified(width), QLatin1String(purpose));
}

QString optionList(const std::vector<Option>& options)
{
    const int width = 21;
    QString text;
    for (const Option& option : options) {
        QString name = QStringLiteral("    ");
        if (option.letter != 0)
            name = QStringLiteral("-%1, ").arg(QLatin1Char(option.letter));
        name += QStringLiteral("--") + QLatin1String(option.name);
        if (option.value)
            name += QLatin1Char('=') + QLatin1String(option.value);
        text += entry(name, option.purpose, width);
    }
    return text;
}

/// The lines of @p example under their heading.
QString exampleList(const char* example)
{
    const QStringList lines = QString::fromLatin1(example).split(QLatin1Char('\n'));
    const QString margin = QStringLiteral("\n  ");
    // The last line feed has made a line too many.
    const QString heading = lines.size() == 2 ? QStringLiteral("\nExample:")
                                              : QStringLiteral("\nExamples:");
    return heading + margin + lines.mid(0, lines.size() - 1).join(margin) + QLatin1Char('\n');
}

int runHelp(Invocation& invocation)
{
    if (invocation.arguments.isEmpty()) {
        invocation.output.write(generalHelp());
        return exitDone;
    }
    const Command* command = findCommandNamed(invocation.arguments.first());
    if (!command)
        return exitTrouble;
    invocation.output.write(helpFor(*command));
    return exitDone;
}

} // namespace

QString generalHelp()
{
    QString text = QStringLiteral("Usage: tresk COMMAND [OPTION]... [ARGUMENT]...\n\n");
    text += QLatin1String(introduction);
    text += QStringLiteral("\nCommands:\n");
    for (const Command& command : commands())
        text += entry(QLatin1String(command.name), command.purpose, 7);
    text += QStringLiteral("\nOptions of all commands:\n");
    text += optionList(commonOptions());
    text += QLatin1Char('\n') + QLatin1String(exitCodes);
    text += exampleList(generalExample);
    text += QStringLiteral("\n'tresk COMMAND --help' explains a command.\n");
    return text;
}

QString helpFor(const Command& command)
{
    QString text = QStringLiteral("Usage: tresk %1 [OPTION]... %2\n\n")
                       .arg(QLatin1String(command.name), QLatin1String(command.arguments));
    text += QLatin1String(command.description);
    if (!command.options.empty()) {
        text += QStringLiteral("\nOptions:\n");
        text += optionList(command.options);
    }
    text += exampleList(command.example);
    text += QStringLiteral("\nOptions of all commands:\n");
    text += optionList(commonOptions());
    text += QLatin1Char('\n') + QLatin1String(exitCodes);
    return text;
}

Command helpCommand()
{
    return {"help",
            "explain a command",
            "[COMMAND]",
            "Explains the command, or lists all commands.\n",
            "tresk help find\n",
            {},
            {},
            1,
            runHelp,
            {ValueKind::Command}};
}

} // namespace tresk::cli
