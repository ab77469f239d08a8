#include "Completion.h"

#include <Commands.h>

namespace tresk::cli::fish {

namespace {

const char* const head = R"(# Completion of the command tresk for fish.

# Whether the command is the first argument, '' for none yet, and has at least so many arguments
# as the second says, and at most so many as the third.
function __tresk_at --argument-names wanted least most
    set -l name ''
    set -l count 0
    set -l is_value no
    for word in (commandline -opc)[2..-1]
        if test $is_value = yes
            set is_value no
        else if string match -qr -- '^-.' $word
            contains -- "$name $word" $__tresk_with_value; or contains -- " $word" $__tresk_with_value
            and set is_value yes
        else if test -z "$name"
            set name $word
        else
            set count (math $count + 1)
        end
    end
    test "$name" = "$wanted"; or return 1
    test -z "$least"; or test $count -ge $least; or return 1
    test -z "$most"; or test $count -le $most
end

)";

QString quoted(QString text)
{
    text.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    text.replace(QLatin1Char('\''), QStringLiteral("\\'"));
    return QStringLiteral("'%1'").arg(text);
}

QString completeWhen(const QString& condition, const QString& what)
{
    return QStringLiteral("complete -c tresk -n %1 %2\n").arg(quoted(condition), what);
}

/// What completes a value of @p kind; empty for nothing.
QString action(ValueKind kind, const QStringList& choices)
{
    switch (kind) {
    case ValueKind::Text:
        break;
    case ValueKind::File:
        return QStringLiteral("-F");
    case ValueKind::Directory:
        return QStringLiteral("-f -a '(__fish_complete_directories)'");
    case ValueKind::Choice:
        return QStringLiteral("-f -a %1").arg(quoted(choices.join(QLatin1Char(' '))));
    case ValueKind::Command:
        return QStringLiteral("-f -a %1").arg(quoted(commandNames().join(QLatin1Char(' '))));
    }
    return {};
}

QString optionText(const Option& option)
{
    QString text = QStringLiteral("-l ") + QLatin1String(option.name);
    if (option.letter != 0)
        text += QStringLiteral(" -s ") + QLatin1Char(option.letter);
    if (option.value) {
        const QString values = action(option.kind, choicesOf(option));
        text += QStringLiteral(" -r ") + (values.isEmpty() ? QStringLiteral("-f") : values);
    }
    return text + QStringLiteral(" -d ") + quoted(QLatin1String(option.purpose));
}

/// The words behind which there is a value, each with its command and a blank in front of it.
QStringList wordsWithValue(const QString& command, const std::vector<Option>& options)
{
    QStringList words;
    for (const Option& option : options) {
        if (!option.value)
            continue;
        for (const QString& form : optionForms(option))
            words += quoted(QStringLiteral("%1 %2").arg(command, form));
    }
    return words;
}

QString argumentLines(const Command& command)
{
    QString lines;
    const QString name = QLatin1String(command.name);
    const ArgumentKinds kinds = argumentKinds(command);
    int position = 0;
    for (const ValueKind kind : kinds.first) {
        const QString values = action(kind, {});
        const QString place = QString::number(position++);
        if (!values.isEmpty())
            lines += completeWhen(QStringLiteral("__tresk_at %1 %2 %2").arg(name, place), values);
    }
    const QString values = action(kinds.rest, {});
    if (kinds.hasRest && !values.isEmpty())
        lines += completeWhen(QStringLiteral("__tresk_at %1 %2").arg(name).arg(position), values);
    return lines;
}

} // namespace

QString completion()
{
    QStringList withValue = wordsWithValue(QString(), commonOptions());
    QString lines = QStringLiteral("complete -c tresk -f\n");
    for (const Option& option : commonOptions())
        lines += QStringLiteral("complete -c tresk %1\n").arg(optionText(option));
    for (const Command& command : commands()) {
        const QString name = QLatin1String(command.name);
        const QString purpose = quoted(QLatin1String(command.purpose));
        withValue += wordsWithValue(name, command.options);
        lines += completeWhen(QStringLiteral("__tresk_at ''"),
                              QStringLiteral("-a %1 -d %2").arg(name, purpose));
        for (const Option& option : command.options)
            lines += completeWhen(QStringLiteral("__tresk_at %1").arg(name), optionText(option));
        lines += argumentLines(command);
    }
    return QLatin1String(head)
        + QStringLiteral("set -g __tresk_with_value %1\n\n").arg(withValue.join(QLatin1Char(' ')))
        + lines;
}

} // namespace tresk::cli::fish
