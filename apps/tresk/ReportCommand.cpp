#include "CheckResults.h"
#include "Commands.h"
#include "Document.h"
#include "HistoryTree.h"
#include "Interruption.h"
#include "Invocation.h"
#include "Limits.h"
#include "PageFile.h"
#include "ReportPage.h"
#include "StepFiles.h"
#include "Summaries.h"

#include <algorithm>

namespace tresk::cli {

namespace {

/// What the summaries of the document itself may take: no more than in its tree, so that what the
/// tree leaves out, and says so, is left out everywhere.
SummaryBudget summaryBudget(const WorkflowTreeLimits& limits)
{
    SummaryBudget budget;
    budget.bytes = std::min(limits.bytes, limits.summaryBytes);
    budget.files = limits.records;
    return budget;
}

/// Writes the page. Reports what goes wrong and returns false.
bool writePage(Invocation& invocation, const ReportSources& sources)
{
    PageFile file(invocation, "output");
    if (!file.open(invocation.arguments))
        return false;
    HtmlWriter html([&file](const QByteArray& bytes) { file.write(bytes); });
    ReportPage(html, sources, [&file] { return !file.isLost(); }).write();
    return file.finish();
}

/// Reports the checks that have failed. Returns the exit code.
int conclude(const Document& document, const CheckResults& checks)
{
    if (checks.failed() == 0)
        return exitDone;
    document.report(checks.failureText() + QStringLiteral(" ('tresk verify' lists them)"));
    return checks.count(ItemStatus::Unreadable) > 0 ? exitTrouble : exitFailed;
}

int runReport(Invocation& invocation)
{
    WorkflowTreeLimits limits = usualTreeLimits();
    if (!applyLimits(invocation, findCommandNamed(QStringLiteral("report")), limits))
        return exitTrouble;
    const QString path = invocation.arguments.first();
    HistoryTree history;
    Document document;
    if (!history.read(path, limits) || !document.openWithSteps(path))
        return exitTrouble;
    watchForInterruption();
    const StepFiles stepFiles(document.parser());
    const Summaries summaries(document, stepFiles, summaryBudget(limits));
    const std::optional<CheckResults> checks = CheckResults::of(document);
    const bool isWritten = checks
        && writePage(invocation, {document, stepFiles, summaries, history, *checks});
    if (interruptedBy() != 0)
        return exitSignal + interruptedBy();
    if (!isWritten)
        return exitTrouble;
    summaries.warnOfUnreadable();
    const int exitCode = conclude(document, *checks);
    const bool isWhole = history.isWhole() && document.checkReading();
    return isWhole ? exitCode : exitTrouble;
}

} // namespace

Command reportCommand()
{
    return {"report",
            "make a page for a browser that shows the history",
            "DOC",
            "Makes one HTML file, which needs no network and no other file, of the history of\n"
            "a document: a timeline, the tree of steps and embedded documents, and all that\n"
            "is known of each step and its files, with the pictures that the document embeds\n"
            "and the state of its checksums.\n"
            "\n"
            "FILE is replaced if it is there, unless it is the document; '-' is standard\n"
            "output. Embedded documents are read within the limits of 'tresk tree'. If a\n"
            "check fails or a part of the history is missing, the page is made and says so.\n",
            "tresk report report.pdf -o report.html\n",
            withTreeLimits({{'o', "output", "FILE", "write to FILE instead of standard output",
                             ValueKind::File}}),
            {"DOC"},
            1,
            runReport,
            {ValueKind::File},
            {{"0", "done, and all checks are right"},
             {"1", "a check fails, a checksum that is wrong or missing for instance"},
             {"2", "trouble: wrong usage, a damaged document, a page not written"},
             {"129, 130, 143", "ended by the signal HUP, INT or TERM, after cleaning up"}}};
}

} // namespace tresk::cli
