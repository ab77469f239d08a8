#include "ArgumentFile.h"
#include "Commands.h"
#include "Invocation.h"
#include "Messages.h"
#include "ToolRun.h"

#include <tresk/TreskdelRunner.h>

#include <QFile>

namespace tresk::cli {

namespace {

/// What one argument of a program can have on Linux, with the zero at its end.
constexpr int longestArgument = 128 * 1024; // bytes

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
        reportError(file.name(),
                    QStringLiteral(
                        "is not understood to its end; nothing is undone before that is mended"));
    else if (request.isEmpty())
        reportError(file.name(),
                    QStringLiteral("names no document to write (-O or -A); nothing is undone"));
    if (!request.contains(QChar(QChar::Null)))
        return request;
    reportError(file.name(),
                QStringLiteral("names a document with a zero byte in its path, behind which "
                               "treskdel would see nothing; nothing is undone"));
    return {};
}

/// Why treskdel cannot be started with @p request, as far as that is the reason; else empty.
QString reasonNotToStart(const QString& request)
{
    const auto size = QFile::encodeName(request).size();
    if (size < longestArgument)
        return {};
    return QStringLiteral("the request of %1 bytes is too long to be handed over").arg(size);
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
    return runTool(invocation, runner, QStringLiteral("treskdel"), request,
                   reasonNotToStart(request));
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
            "Runs the tool treskdel, which takes a step out of documents again: out of those\n"
            "that an argument file has treskadd write, with -O or -A. The tool is told their\n"
            "paths and nothing else; which step it takes out is its business.\n"
            "\n")
        + toolDescription;
    return {"undo",
            "run treskdel, which takes a step out of a document again",
            "ARGFILE",
            description.constData(),
            "tresk undo --search-path=tools report.args\n"
            "tresk undo -D TRIAL=017 --search-path=tools report.args\n",
            undoOptions(),
            {"ARGFILE"},
            1,
            runUndo,
            {ValueKind::File},
            toolExits(),
            toolWrongUsage};
}

} // namespace tresk::cli
