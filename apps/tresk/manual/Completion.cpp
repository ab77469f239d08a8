#include "Completion.h"

#include <Commands.h>

namespace tresk::cli {

QStringList commandNames()
{
    QStringList names;
    for (const Command& command : commands())
        names += QLatin1String(command.name);
    return names;
}

QStringList optionForms(const Option& option)
{
    QStringList forms = {QStringLiteral("--") + QLatin1String(option.name)};
    if (option.letter != 0)
        forms.prepend(QStringLiteral("-") + QLatin1Char(option.letter));
    return forms;
}

QStringList choicesOf(const Option& option)
{
    QStringList choices;
    for (const char* choice : option.choices)
        choices += QLatin1String(choice);
    return choices;
}

ArgumentKinds argumentKinds(const Command& command)
{
    ArgumentKinds kinds;
    kinds.first = command.argumentKinds;
    const ValueKind last = kinds.first.empty() ? ValueKind::Text : kinds.first.back();
    if (command.most == anyNumber) {
        kinds.hasRest = true;
        kinds.rest = last;
    } else {
        kinds.first.resize(static_cast<size_t>(command.most), last);
    }
    return kinds;
}

} // namespace tresk::cli
