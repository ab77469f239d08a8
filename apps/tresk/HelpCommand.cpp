#include "Commands.h"
#include "Invocation.h"

#include <algorithm>
#include <cstring>

namespace tresk::cli {

namespace {

const char* const closing =
    "Exit codes: 0 done, 1 something is wrong, differs or was not found, 2 trouble.\n"
    "'tresk COMMAND --help' explains a command, and 'man tresk-COMMAND' does.\n";

QString entry(const QString& name, const char* purpose, int width)
{
    return QStringLiteral("  %1  %2\n").arg(name.leftJustified(width), QLatin1String(purpose));
}

/// Such as "-o, --output=FILE".
QString optionForms(const Option& option)
{
    QString forms = option.letter != 0 ? QStringLiteral("-%1, ").arg(QLatin1Char(option.letter))
                                       : QStringLiteral("    ");
    forms += QStringLiteral("--") + QLatin1String(option.name);
    return option.value ? forms + QLatin1Char('=') + QLatin1String(option.value) : forms;
}

QString optionList(const std::vector<Option>& options)
{
    int width = 0;
    for (const Option& option : options)
        width = std::max(width, static_cast<int>(optionForms(option).size()));
    QString text;
    for (const Option& option : options)
        text += entry(optionForms(option), option.purpose, width);
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

QString exitList(const Command& command)
{
    const std::vector<ExitMeaning> exits = exitMeanings(command);
    int width = 0;
    for (const ExitMeaning& exit : exits)
        width = std::max(width, static_cast<int>(std::strlen(exit.codes)));
    QString text = QStringLiteral("\nExit codes:\n");
    for (const ExitMeaning& exit : exits)
        text += entry(QLatin1String(exit.codes), exit.meaning, width);
    return text;
}

/// The options that all commands have, each in its shortest form.
QString commonOptionLine()
{
    QStringList forms;
    for (const Option& option : commonOptions()) {
        QString form = option.letter != 0 ? QStringLiteral("-%1").arg(QLatin1Char(option.letter))
                                          : QStringLiteral("--") + QLatin1String(option.name);
        if (option.value)
            form += QLatin1Char('=') + QLatin1String(option.value);
        forms += form;
    }
    return QStringLiteral("\nAll commands have %1; see 'tresk --help'.\n")
        .arg(forms.join(QStringLiteral(", ")));
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

const char* const introduction =
    "Shows the history that a document carries: the steps that made it, and the files\n"
    "that these embedded in it. Documents are never changed, but by the tools\n"
    "that add and undo run.\n";

const char* const generalExample = "tresk log report.pdf\n"
                                   "tresk extract report.pdf -C files\n"
                                   "tresk find spectrum *.pdf\n";

QString generalHelp()
{
    QString text = QStringLiteral("Usage: tresk COMMAND [OPTION]... [ARGUMENT]...\n\n");
    text += QLatin1String(introduction);
    text += QStringLiteral("\nCommands:\n");
    for (const Command& command : commands())
        text += entry(QLatin1String(command.name), command.purpose, 7);
    text += QStringLiteral("\nOptions of all commands:\n");
    text += optionList(commonOptions());
    text += exampleList(generalExample);
    text += QLatin1Char('\n') + QLatin1String(closing);
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
    text += exitList(command);
    text += commonOptionLine();
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
            {ValueKind::Command},
            {{"2", "trouble: wrong usage"}}};
}

} // namespace tresk::cli
