#ifndef TRESK_APPS_TOOLRUN_H
#define TRESK_APPS_TOOLRUN_H

#include "CommandLine.h"

#include <tresk/TreskRunner.h>

#include <QString>

namespace tresk::cli {

/// Exit codes of the commands that run a tool, where there is none of the tool.
enum ToolExitCode {
    toolWrongUsage = 124,
    toolNotRun = 125, ///< there is nothing to run it with, or its output cannot be written
    toolNotStarted = 126,
    toolNotFound = 127
};

/// What the help texts of these commands have in common: all but what the tool does.
extern const char* const toolDescription;

/// The options of these commands that say where the tool is.
std::vector<Option> toolOptions();
std::vector<ExitMeaning> toolExits();

/// Makes @p runner look for the tool where the options say. Returns what is wrong with them, or
/// nothing.
QString applyToolOptions(const Invocation& invocation, TreskRunner& runner);

/// Runs the tool called @p name with @p input and relays what it prints. If it cannot be started,
/// @p reason is reported as well, unless it is empty. Returns the exit code.
int runTool(Invocation& invocation, TreskRunner& runner, const QString& name, const QString& input,
            const QString& reason = QString());

} // namespace tresk::cli

#endif
