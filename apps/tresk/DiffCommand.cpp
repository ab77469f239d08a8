#include "Commands.h"
#include "DiffPage.h"
#include "DiffReport.h"
#include "HistoryTree.h"
#include "Interruption.h"
#include "Invocation.h"
#include "Limits.h"
#include "Messages.h"
#include "PageFile.h"

#include <tresk/TreskDiff.h>
#include <tresk/WorkflowstepCosts.h>

namespace tresk::cli {

namespace {

constexpr int mostResults = 1000;

/// The number of pairings that are asked for; 0, after it was reported, if that is none.
int wantedResults(const Invocation& invocation, const Command* command)
{
    if (!invocation.isSet("number"))
        return 1;
    bool valid = false;
    const int wanted = invocation.value("number").toInt(&valid);
    if (valid && wanted >= 1 && wanted <= mostResults)
        return wanted;
    reportUsage(command, QStringLiteral("-n takes a number from 1 to %1").arg(mostResults));
    return 0;
}

/// The forms in which the result can be shown, and whether they go together.
bool checkForms(const Invocation& invocation, const Command* command)
{
    QStringList forms;
    for (const char* form : {"json", "dot", "html"}) {
        if (invocation.isSet(form))
            forms += QStringLiteral("--") + QLatin1String(form);
    }
    if (forms.size() > 1) {
        reportUsage(command,
                    forms.join(QStringLiteral(" and ")) + QStringLiteral(" exclude each other"));
        return false;
    }
    if (invocation.isSet("html") && invocation.isSet("number")) {
        reportUsage(command,
                    QStringLiteral("--html shows the best way only, so that -n is of no "
                                   "use with it"));
        return false;
    }
    return true;
}

/// Writes @p way of pairing the steps as a page. Reports what goes wrong and returns false.
bool writePage(Invocation& invocation, const HistoryTree& first, const HistoryTree& second,
               const StepPairs& way, bool certain)
{
    PageFile file(invocation, "html");
    if (!file.open(invocation.arguments))
        return false;
    HtmlWriter html([&file](const QByteArray& bytes) { file.write(bytes); });
    DiffPage(html, first, second, way, certain, [&file] { return !file.isLost(); }).write();
    return file.finish();
}

int runDiff(Invocation& invocation)
{
    const Command* const command = findCommandNamed(QStringLiteral("diff"));
    if (!checkForms(invocation, command))
        return exitTrouble;
    const int wanted = wantedResults(invocation, command);
    if (wanted == 0)
        return exitTrouble;
    WorkflowTreeLimits limits = usualTreeLimits();
    if (!applyLimits(invocation, command, limits))
        return exitTrouble;
    HistoryTree first;
    HistoryTree second;
    const bool firstRead = first.read(invocation.arguments.at(0), limits);
    if (!second.read(invocation.arguments.at(1), limits) || !firstRead)
        return exitTrouble;

    WorkflowstepCosts costs;
    TreskDiff diff(first.tree(), second.tree(), &costs);
    bool certain = true;
    QObject::connect(&diff, &LogSource::log, &diff, [&](const QString& message) {
        reportWarning(first.name() + QStringLiteral(", ") + second.name(), message);
        certain = false;
    });
    const QList<TreskDiffResult> results = diff.findBestMatches(wanted);
    const StepPairs best = stepPairs(first, second, results.first());

    if (invocation.isSet("html")) {
        const bool isWritten = writePage(invocation, first, second, best, certain);
        if (interruptedBy() != 0)
            return exitSignal + interruptedBy();
        if (!isWritten)
            return exitTrouble;
    } else {
        DiffReport report(invocation, first, second, certain);
        for (const TreskDiffResult& result : results)
            report.add(stepPairs(first, second, result));
        report.finish();
    }
    if (!first.isWhole() || !second.isWhole())
        return exitTrouble;
    return best.areSame() ? exitDone : exitFailed;
}

} // namespace

Command diffCommand()
{
    return {
        "diff",
        "show how the steps of two documents correspond",
        "A B",
        "Pairs the steps of two histories, embedded documents included, at the lowest\n"
        "cost: steps of other titles, tools and descriptions cost, and so do steps\n"
        "without a counterpart or under another step. Shows the pairs and what changed in\n"
        "them, the steps that only one document has, and the pairs that have moved.\n"
        "\n"
        "Where large histories differ so much that the best way of pairing their steps\n"
        "takes too long to find, a good one is shown, and a warning says so. What would\n"
        "go beyond the limits, which are those of 'tresk tree', is left out and reported,\n"
        "and the exit code is 2. With --html, FILE is as for 'tresk report'.\n",
        "tresk diff minimal.pdf nested.pdf\n"
        "tresk diff minimal.pdf nested.pdf --html comparison.html  # to look at\n",
        withTreeLimits({{'n', "number", "N", "show the N best ways of pairing steps, best first"},
                        {0, "dot", nullptr, "print a graph for Graphviz instead, of the best way"},
                        {0, "html", "FILE", "write a page for a browser to FILE, of the best way",
                         ValueKind::File},
                        {0, "json", nullptr, "print one JSON object instead"}}),
        {"A", "B"},
        2,
        runDiff,
        {ValueKind::File},
        {{"0", "the histories are the same"}, {"1", "the histories differ"}}};
}

} // namespace tresk::cli
