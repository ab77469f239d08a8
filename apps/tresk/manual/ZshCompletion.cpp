#include "Completion.h"

#include <Commands.h>

namespace tresk::cli::zsh {

namespace {

const char* const head = R"(#compdef tresk
# Completion of the command tresk for zsh.

_tresk_commands()
{
    local -a commands
    commands=(
)";

const char* const middle = R"(    )
    _describe -t commands command commands
}

_tresk()
{
    local curcontext=$curcontext state line
    local -A opt_args
    local -a common
    common=(
)";

const char* const branches = R"(    )
    _arguments -C -S $common '(-)1:command:_tresk_commands' '*::argument:->argument' && return 0
    [[ $state == argument ]] || return 1
    curcontext=${curcontext%:*}-$words[1]:
    case $words[1] in
)";

const char* const tail = R"(    *) return 1 ;;
    esac
}

_tresk "$@"
)";

/// @p text with a backslash before each character of @p special.
QString escaped(QString text, const char* special)
{
    for (const char* c = special; *c != '\0'; ++c)
        text.replace(QLatin1Char(*c), QStringLiteral("\\") + QLatin1Char(*c));
    return text;
}

QString quoted(QString text)
{
    text.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    return QStringLiteral("'%1'").arg(text);
}

/// What completes a value of @p kind; a blank for nothing.
QString action(ValueKind kind, const QStringList& choices)
{
    switch (kind) {
    case ValueKind::Text:
        break;
    case ValueKind::File:
        return QStringLiteral("_files");
    case ValueKind::Directory:
        return QStringLiteral("_files -/");
    case ValueKind::Choice:
        return QStringLiteral("(%1)").arg(choices.join(QLatin1Char(' ')));
    case ValueKind::Command:
        return QStringLiteral("_tresk_commands");
    }
    return QStringLiteral(" ");
}

/// The option's form @p form as _arguments takes it.
QString optionEntry(const Option& option, const QString& form)
{
    const QString explanation = escaped(QLatin1String(option.purpose), "\\[]:");
    if (!option.value)
        return quoted(QStringLiteral("%1[%2]").arg(form, explanation));
    // What has a value may be given again. The value is in the same word or in the next one.
    const bool isLong = form.startsWith(QLatin1String("--"));
    return quoted(QStringLiteral("*%1%2[%3]:%4:%5")
                      .arg(form, QLatin1String(isLong ? "=" : "+"), explanation,
                           QLatin1String(option.value), action(option.kind, choicesOf(option))));
}

QStringList optionEntries(const std::vector<Option>& options)
{
    QStringList entries;
    for (const Option& option : options) {
        for (const QString& form : optionForms(option))
            entries += optionEntry(option, form);
    }
    return entries;
}

QStringList argumentEntries(const Command& command)
{
    QStringList entries;
    const ArgumentKinds kinds = argumentKinds(command);
    for (size_t i = 0; i < kinds.first.size(); ++i) {
        entries += quoted(QStringLiteral("%1:argument:%2")
                              .arg(QString::number(i + 1), action(kinds.first[i], {})));
    }
    if (kinds.hasRest)
        entries += quoted(QStringLiteral("*:argument:%1").arg(action(kinds.rest, {})));
    return entries;
}

QString commandBranch(const Command& command)
{
    const QString joint = QStringLiteral(" \\\n            ");
    const QStringList entries = optionEntries(command.options) + argumentEntries(command);
    return QStringLiteral("    %1)\n        _arguments -S $common%2%3\n        ;;\n")
        .arg(QLatin1String(command.name), joint, entries.join(joint));
}

QString lines(const QStringList& entries)
{
    QString text;
    for (const QString& entry : entries)
        text += QStringLiteral("        %1\n").arg(entry);
    return text;
}

} // namespace

QString completion()
{
    QStringList descriptions;
    QString commandBranches;
    for (const Command& command : commands()) {
        const QString purpose = escaped(QLatin1String(command.purpose), "\\:");
        descriptions += quoted(QStringLiteral("%1:%2").arg(QLatin1String(command.name), purpose));
        commandBranches += commandBranch(command);
    }
    return QLatin1String(head) + lines(descriptions) + QLatin1String(middle)
        + lines(optionEntries(commonOptions())) + QLatin1String(branches) + commandBranches
        + QLatin1String(tail);
}

} // namespace tresk::cli::zsh
