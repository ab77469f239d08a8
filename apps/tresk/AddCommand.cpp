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
            "of an argument file: as it stands there, but for a byte-order mark, which is\n"
            "dropped, and what is not UTF-8, which is reported and replaced by U+FFFD.\n"
            "\n")
        + toolDescription;
    return {"add",
            "run treskadd, which adds a step to a document",
            "ARGFILE",
            description.constData(),
            "tresk add --search-path=tools report.args\n",
            toolOptions(),
            {"ARGFILE"},
            1,
            runAdd,
            {ValueKind::File},
            toolExits(),
            toolWrongUsage};
}

} // namespace tresk::cli
