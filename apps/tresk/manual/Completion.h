#ifndef TRESK_APPS_COMPLETION_H
#define TRESK_APPS_COMPLETION_H

#include <CommandLine.h>

#include <QString>
#include <QStringList>

/// What shells complete behind `tresk`. Nothing is run for it and no document is read: names in
/// documents may be anything.
namespace tresk::cli {

/// The names of all commands.
QStringList commandNames();
/// The option's forms, such as "-C" and "--directory".
QStringList optionForms(const Option& option);
/// What the option's value may be.
QStringList choicesOf(const Option& option);

/// What @p command takes: a kind for each argument, as many as there may be, and what further ones
/// are if there may be any number.
struct ArgumentKinds {
    std::vector<ValueKind> first;
    bool hasRest = false;
    ValueKind rest = ValueKind::Text;
};
ArgumentKinds argumentKinds(const Command& command);

} // namespace tresk::cli

// The scripts.
namespace tresk::cli::bash {
QString completion();
}
namespace tresk::cli::fish {
QString completion();
}
namespace tresk::cli::zsh {
QString completion();
}

#endif
