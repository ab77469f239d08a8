#include "Commands.h"
#include "Document.h"
#include "HistoryTree.h"
#include "Interruption.h"
#include "Invocation.h"
#include "Limits.h"
#include "PageFile.h"
#include "Progress.h"
#include "ReportPage.h"
#include "StepFiles.h"
#include "Summaries.h"
#include "Verification.h"

#include <optional>

namespace tresk::cli {

namespace {

/// Checks the document. Nothing if a signal has ended it.
std::optional<CheckResults> checked(Document& document)
{
    CheckResults results;
    Verification verification(document, [&](const Verification::Item& item) {
        ++results.checked;
        if (!item.fault.isNone())
            (item.isStep ? results.steps : results.files).insert(item.id, item.fault);
    });
    Progress progress(verification.bytesToCheck());
    if (verification.run(progress))
        return results;
    return std::nullopt;
}

int runReport(Invocation& invocation)
{
    WorkflowTreeLimits limits = usualTreeLimits();
    if (!applyLimits(invocation, findCommandNamed(QStringLiteral("report")), limits))
        return exitTrouble;
    watchForInterruption();
    const QString path = invocation.arguments.first();
    Document document;
    HistoryTree history;
    if (!document.openWithSteps(path) || !history.read(path, limits))
        return exitTrouble;
    const StepFiles stepFiles(document.parser());
    const Summaries summaries(document, stepFiles);
    const std::optional<CheckResults> checks = checked(document);
    if (!checks)
        return exitSignal + interruptedBy();

    PageFile file(invocation, "output");
    if (!file.open({path}))
        return exitTrouble;
    HtmlWriter html([&file](const QByteArray& bytes) { file.write(bytes); });
    ReportPage(html, document, stepFiles, summaries, history, *checks).write();
    const bool isWritten = file.finish();
    const bool complete = summaries.checkMissing();
    return isWritten && complete && history.isWhole() ? exitDone : exitTrouble;
}

} // namespace

Command reportCommand()
{
    return {"report",
            "make a page for a browser that shows the history",
            "DOC",
            "Makes one HTML file, which needs no network and no other file, of the history of a\n"
            "document: a timeline, the tree of steps and embedded documents, and all that is\n"
            "known of each step and its files, with the pictures among them and the state of\n"
            "the checksums. For example:\n"
            "\n"
            "  tresk report report.pdf -o report.html\n",
            withTreeLimits({{'o', "output", "FILE", "write to FILE instead of standard output"}}),
            {"DOC"},
            1,
            runReport};
}

} // namespace tresk::cli
