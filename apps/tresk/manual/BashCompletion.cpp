#include "Completion.h"

#include <Commands.h>

namespace tresk::cli::bash {

namespace {

const char* const head = R"(# Completion of the command tresk for bash.

# Sets options, kinds (of the arguments, in their order) and rest (of all behind those) to what
# the command $1 has, or tresk itself.
_tresk_table()
{
)";

const char* const valueHead = R"(}

# Sets kind to what the option $2 of the command $1 takes; fails if that is nothing.
_tresk_value()
{
    case $1:$2 in
)";

const char* const valueTail = R"(    *) return 1 ;;
    esac
}

# Offers what is of the kind $1 and begins with $2.
_tresk_offer()
{
    case $1 in
    nothing) ;;
    file) compopt -o default ;;
    directory) compopt -o dirnames ;;
    *) mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2") ;;
    esac
}

_tresk()
{
    local words=() line=$COMP_LINE word i
    # Bash has broken words at = and : too.
    for ((i = 0; i <= COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if [[ $i -eq 0 || $line == [[:space:]]* ]]; then
            words+=("$word")
        else
            words[${#words[@]} - 1]+=$word
        fi
        line=${line#"${line%%[![:space:]]*}"}
        line=${line#"$word"}
    done

    local current=${words[${#words[@]} - 1]} name='' count=0 ended='' expected=''
    local kind options kinds rest
    for word in "${words[@]:1:${#words[@]} - 2}"; do
        if [[ $expected ]]; then
            expected=''
        elif [[ ! $ended && $word == -- ]]; then
            ended=$name
        elif [[ ! $ended && $word == -?* ]]; then
            _tresk_value "$name" "$word" && expected=$kind
        elif [[ ! $name ]]; then
            name=$word
        else
            ((++count))
        fi
    done

    _tresk_table "$name"
    COMPREPLY=()
    if [[ $expected ]]; then
        _tresk_offer "$expected" "$current"
    elif [[ ! $ended && $current == --*=* ]]; then
        _tresk_value "$name" "${current%%=*}" && _tresk_offer "$kind" "${current#*=}"
    elif [[ ! $ended && $current == -* ]]; then
        _tresk_offer "$options" "$current"
        [[ ${#COMPREPLY[@]} -ne 1 || ${COMPREPLY[0]} != *= ]] || compopt -o nospace
    else
        _tresk_offer "${kinds[count]:-$rest}" "$current"
    fi
    return 0
}

complete -F _tresk tresk
)";

/// The word for @p kind, or those that may be typed.
QString kindWords(ValueKind kind, const QStringList& choices)
{
    switch (kind) {
    case ValueKind::Text:
        break;
    case ValueKind::File:
        return QStringLiteral("file");
    case ValueKind::Directory:
        return QStringLiteral("directory");
    case ValueKind::Choice:
        return choices.join(QLatin1Char(' '));
    case ValueKind::Command:
        return commandNames().join(QLatin1Char(' '));
    }
    return QStringLiteral("nothing");
}

QString quoted(const QString& words)
{
    return QStringLiteral("'%1'").arg(words);
}

/// All that may be typed of @p options.
QString optionWords(const std::vector<Option>& options)
{
    QStringList words;
    for (const Option& option : options) {
        words += optionForms(option);
        if (option.value)
            words.last() += QLatin1Char('=');
    }
    return words.join(QLatin1Char(' '));
}

QString tableEntry(const Command& command)
{
    QString entry = QStringLiteral("    %1)\n").arg(QLatin1String(command.name));
    if (!command.options.empty())
        entry += QStringLiteral("        options+=' %1'\n").arg(optionWords(command.options));
    const ArgumentKinds kinds = argumentKinds(command);
    QStringList first;
    for (const ValueKind kind : kinds.first)
        first += quoted(kindWords(kind, {}));
    entry += QStringLiteral("        kinds=(%1)\n").arg(first.join(QLatin1Char(' ')));
    if (kinds.hasRest)
        entry += QStringLiteral("        rest=%1\n").arg(quoted(kindWords(kinds.rest, {})));
    return entry + QStringLiteral("        ;;\n");
}

/// Branches for those of @p options that have a value.
QString valueBranches(const QString& command, const std::vector<Option>& options)
{
    QString branches;
    for (const Option& option : options) {
        if (!option.value)
            continue;
        QStringList patterns;
        for (const QString& form : optionForms(option))
            patterns += command + QLatin1Char(':') + form;
        branches += QStringLiteral("    %1) kind=%2 ;;\n")
                        .arg(patterns.join(QStringLiteral(" | ")),
                             quoted(kindWords(option.kind, choicesOf(option))));
    }
    return branches;
}

} // namespace

QString completion()
{
    QString script = QLatin1String(head);
    script += QStringLiteral("    options='%1'\n    kinds=()\n    rest=nothing\n    case $1 in\n")
                  .arg(optionWords(commonOptions()));
    script +=
        QStringLiteral("    '') kinds=(%1) ;;\n").arg(quoted(kindWords(ValueKind::Command, {})));
    for (const Command& command : commands())
        script += tableEntry(command);
    script += QStringLiteral("    esac\n") + QLatin1String(valueHead);
    script += valueBranches(QStringLiteral("*"), commonOptions());
    for (const Command& command : commands())
        script += valueBranches(QLatin1String(command.name), command.options);
    return script + QLatin1String(valueTail);
}

} // namespace tresk::cli::bash
