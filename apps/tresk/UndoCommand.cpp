#include "ArgumentFile.h"
#include "Commands.h"
#include "Invocation.h"
#include "Messages.h"
#include "ToolRun.h"

#include <tresk/TreskdelRunner.h>

namespace tresk::cli {

namespace {

/// The request that takes the step of @p file out of its documents again; empty, after it was
/// reported, if there is none that can be relied on.
QString requestFrom(ArgumentFile& file)
{
    const ArgFile options = file.options();
    const bool readToItsEnd = file.isReadToItsEnd(options);
    QString request = readToItsEnd ? options.getUndoWorkflowStep() : QString();
    // What is wrong with files and texts does not matter here.
    if (request.isEmpty() || verbosity() == Verbosity::Verbose)
        file.reportMessages();
    else
        file.reportWarnings();
    if (!readToItsEnd)
        reportError(file.name(), QStringLiteral("is not understood to its end; nothing is undone"));
    else if (request.isEmpty())
        reportError(file.name(),
                    QStringLiteral("names no document to write (-O or -A); nothing is undone"));
    return request;
}

int runUndo(Invocation& invocation)
{
    const Command* const command = findCommandNamed(QStringLiteral("undo"));
    ArgumentFile file;
    TreskdelRunner runner(nullptr);
    for (const QString& problem :
         {file.define(invocation.values("define")), applyToolOptions(invocation, runner)}) {
        if (!problem.isEmpty())
            return reportUsage(command, problem);
    }
    if (!file.read(invocation.arguments.first()))
        return toolNotRun;
    const QString request = requestFrom(file);
    if (request.isEmpty())
        return toolNotRun;
    return runTool(invocation, runner, QStringLiteral("treskdel"), request);
}

std::vector<Option> undoOptions()
{
    std::vector<Option> options = toolOptions();
    options.insert(options.begin(), variableOption());
    return options;
}

} // namespace

Command undoCommand()
{
    static const QByteArray description =
        QByteArray(
            "Runs the tool treskdel, which takes a step out of documents again: the one that\n"
            "treskadd adds when it is given the same argument file, out of all documents\n"
            "that this has it write. What the tool prints is shown while it runs, errors and\n"
            "warnings on standard error. The tool lies in the directory of tresk itself, or\n"
            "in one that --search-path names.\n"
            "\n")
        + toolExitCodes;
    return {"undo",
            "run treskdel, which takes a step out of a document again",
            "ARGFILE",
            description.constData(),
            undoOptions(),
            {"ARGFILE"},
            1,
            runUndo,
            toolWrongUsage};
}

} // namespace tresk::cli
