#include "Commands.h"
#include "Dot.h"
#include "HistoryTree.h"
#include "Invocation.h"
#include "Json.h"
#include "Limits.h"
#include "Text.h"

namespace tresk::cli {

namespace {

/// Draws a tree for people.
class TreePrinter {
public:
    TreePrinter(Invocation& invocation, const WorkflowTree& tree)
        : m_output(invocation.output)
        , m_style(invocation.style)
        , m_tree(tree)
    {
    }

    /// The steps under node @p parent and what hangs under them, behind @p indent.
    void printSteps(const QList<int>& steps, const QString& indent)
    {
        for (int i = 0; i < steps.size(); ++i) {
            const int id = steps.at(i);
            const bool last = i == steps.size() - 1;
            const Workflowstep& step = *m_tree.workflowStep(id);
            m_output.write(indent + branchMark(last) + m_style.id(QString::number(id))
                           + QStringLiteral("  ") + m_style.title(titleOf(step))
                           + circumstancesOf(step) + QLatin1Char('\n'));
            printDocuments(id, indent + continuation(last));
        }
    }

private:
    /// The documents that the step @p id embeds.
    void printDocuments(int id, const QString& indent)
    {
        const QList<Branch> branches = branchesOf(m_tree, id);
        for (int i = 0; i < branches.size(); ++i) {
            const bool last = i == branches.size() - 1;
            m_output.write(indent + branchMark(last) + printable(branches.at(i).document)
                           + QLatin1Char('\n'));
            printSteps(branches.at(i).steps, indent + continuation(last));
        }
    }

    static QString branchMark(bool last)
    {
        return last ? QStringLiteral("\u2514\u2500 ") : QStringLiteral("\u251C\u2500 ");
    }

    static QString continuation(bool last)
    {
        return last ? QStringLiteral("   ") : QStringLiteral("\u2502  ");
    }

    Output& m_output;
    const Style& m_style;
    const WorkflowTree& m_tree;
};

QJsonArray stepsJson(const WorkflowTree& tree, const QList<int>& steps)
{
    QJsonArray array;
    for (const int id : steps) {
        const Workflowstep& step = *tree.workflowStep(id);
        QJsonArray documents;
        const QList<Branch> branches = branchesOf(tree, id);
        for (const Branch& branch : branches) {
            documents += QJsonObject{{QStringLiteral("name"), branch.document},
                                     {QStringLiteral("steps"), stepsJson(tree, branch.steps)}};
        }
        array += QJsonObject{{QStringLiteral("node"), id},
                             {QStringLiteral("step"), step.tagId},
                             {QStringLiteral("title"), jsonText(step.title)},
                             {QStringLiteral("time"), jsonText(step.timestamp)},
                             {QStringLiteral("tool"), jsonText(step.tool)},
                             {QStringLiteral("user"), jsonText(step.user)},
                             {QStringLiteral("host"), jsonText(step.host)},
                             {QStringLiteral("documents"), documents}};
    }
    return array;
}

void printDot(Output& output, const HistoryTree& history)
{
    const WorkflowTree& tree = history.tree();
    output.write(QStringLiteral("digraph history {\n  rankdir=LR;\n  node [shape=box];\n"));
    output.write(
        QStringLiteral("  document [shape=note, label=%1];\n").arg(dotText(history.name())));
    const QList<int> ids = tree.nodeIds();
    for (const int id : ids) {
        const Workflowstep& step = *tree.workflowStep(id);
        const QString label = titleOf(step) + QLatin1Char('\n') + printable(step.tool);
        output.write(
            QStringLiteral("  step%1 [label=%2];\n").arg(QString::number(id), dotText(label)));
        const int parent = tree.parent(id);
        if (parent == -1)
            output.write(QStringLiteral("  document -> step%1;\n").arg(id));
        else
            output.write(QStringLiteral("  step%1 -> step%2 [label=%3];\n")
                             .arg(QString::number(parent), QString::number(id),
                                  dotText(tree.treskfile(id))));
    }
    output.write(QStringLiteral("}\n"));
}

int runTree(Invocation& invocation)
{
    const Command* const command = findCommandNamed(QStringLiteral("tree"));
    if (invocation.isSet("json") && invocation.isSet("dot"))
        return reportUsage(command, QStringLiteral("--json and --dot exclude each other"));
    WorkflowTreeLimits limits = usualTreeLimits();
    if (!applyLimits(invocation, command, limits))
        return exitTrouble;
    HistoryTree history;
    if (!history.read(invocation.arguments.first(), limits))
        return exitTrouble;
    const WorkflowTree& tree = history.tree();
    if (invocation.isSet("json")) {
        writeJson(invocation.output, "tresk-tree/1",
                  {{QStringLiteral("document"), history.name()},
                   {QStringLiteral("steps"), stepsJson(tree, tree.children(-1))}});
    } else if (invocation.isSet("dot")) {
        printDot(invocation.output, history);
    } else {
        invocation.output.write(printable(history.name()) + QLatin1Char('\n'));
        TreePrinter(invocation, tree).printSteps(tree.children(-1), QString());
    }
    return history.isWhole() ? exitDone : exitTrouble;
}

} // namespace

Command treeCommand()
{
    return {"tree",
            "show the steps with those of embedded documents under them",
            "DOC",
            "Draws the steps of a document's history, newest first, and under each step the\n"
            "documents that it embeds (files named *.tresk) with their own steps. The numbers\n"
            "are those that 'tresk diff' calls the steps by.\n"
            "\n"
            "A small document may hold others without end. What would go beyond the limits is\n"
            "left out and reported, and the exit code is 2. Levels are 200 at most. SIZE is a\n"
            "number of bytes, or one with KiB, MiB or GiB behind it, and counts for embedded\n"
            "documents and summaries, which have 64MiB of it unless it is given.\n",
            "tresk tree nested.pdf\n"
            "tresk tree --dot nested.pdf > tree.dot\n",
            withTreeLimits({{0, "dot", nullptr, "print a graph for Graphviz instead"},
                            {0, "json", nullptr, "print one JSON object instead"}}),
            {"DOC"},
            1,
            runTree,
            {ValueKind::File}};
}

} // namespace tresk::cli
