#include "ArgumentFile.h"
#include "Commands.h"
#include "Invocation.h"
#include "ToolRun.h"

#include <tresk/TreskaddRunner.h>

namespace tresk::cli {

namespace {

int runAdd(Invocation& invocation)
{
    TreskaddRunner runner(nullptr);
    const QString problem = applyToolOptions(invocation, runner);
    if (!problem.isEmpty())
        return reportUsage(findCommandNamed(QStringLiteral("add")), problem);
    ArgumentFile file;
    if (!file.read(invocation.arguments.first()))
        return toolNotRun;
    file.reportMessages();
    return runTool(invocation, runner, QStringLiteral("treskadd"), file.text());
}

} // namespace

Command addCommand()
{
    static const QByteArray description =
        QByteArray(
            "Runs the tool treskadd, which adds a step to a document, and hands it the text\n"
            "of an argument file as it is. What the tool prints is shown while it runs,\n"
            "errors and warnings on standard error. The tool lies in the directory of tresk\n"
            "itself, or in one that --search-path names.\n"
            "\n")
        + toolExitCodes;
    return {"add",
            "run treskadd, which adds a step to a document",
            "ARGFILE",
            description.constData(),
            toolOptions(),
            {"ARGFILE"},
            1,
            runAdd,
            toolWrongUsage};
}

} // namespace tresk::cli
