#ifndef TRESK_APPS_COMMANDS_H
#define TRESK_APPS_COMMANDS_H

#include "CommandLine.h"

#include <QString>

#include <vector>

namespace tresk::cli {

// Each in the file of its name.
Command addCommand();
Command argsCommand();
Command catCommand();
Command diffCommand();
Command extractCommand();
Command filesCommand();
Command findCommand();
Command helpCommand();
Command logCommand();
Command reportCommand();
Command showCommand();
Command treeCommand();
Command undoCommand();
Command verifyCommand();

/// All commands in the order in which the help text lists them.
const std::vector<Command>& commands();

/// The command called @p name; null, after an error was reported, if there is none.
const Command* findCommandNamed(const QString& name);

/// What `tresk --help` says of the commands together, and its examples.
extern const char* const introduction;
extern const char* const generalExample;

/// What `tresk --help` prints.
QString generalHelp();
/// What `tresk NAME --help` prints.
QString helpFor(const Command& command);

} // namespace tresk::cli

#endif
