#include "HistoryTree.h"

#include "CommandLine.h"
#include "Document.h"
#include "Limits.h"
#include "Messages.h"
#include "StepFiles.h"
#include "Summaries.h"
#include "TemporaryFolder.h"
#include "Text.h"

#include <QFileInfo>
#include <QSet>

namespace tresk::cli {

bool HistoryTree::read(const QString& path, const WorkflowTreeLimits& limits)
{
    m_name = path;
    Document document;
    if (!document.openWithSteps(path))
        return false;
    if (StepFiles(document.parser()).areTooMany()) {
        document.report(QStringLiteral("its steps share too many files to be taken apart"));
        return false;
    }
    const TemporaryFolder folder;
    WorkflowTree tree;
    QObject::connect(&tree, &LogSource::log, &tree, relayLogLine);
    tree.setLimits(limits);
    // The parser that has the document open, since opening it anew may fail; it outlives the tree.
    const QSharedPointer<TreskParser> parser(&document.parser(), [](TreskParser*) {});
    tree.treeFromTreskFile(parser, document.parserPath());
    // Only the steps are kept: the temporary files go at once, whatever happens later.
    bool hasGaps = false;
    const QList<int> ids = tree.nodeIds();
    for (const int id : ids) {
        m_tree.addTreeNode(tree.parent(id), *tree.workflowStep(id), tree.treskfile(id),
                           tree.fileOnDisk(id));
        const QSharedPointer<TreskParser> origin = tree.treskParser(id);
        hasGaps = hasGaps || (origin != parser && origin->readFailed());
    }
    reportMissing(document, tree.omissions());
    const QStringList texts = shortfalls(limits, tree.omissions());
    for (const QString& text : texts)
        report(document, text);
    if (hasGaps)
        report(document, QStringLiteral("a part of the documents embedded in it cannot be read"));
    reportDamaged(document, tree);
    report(document, document.extentProblem());
    const QString chainProblem = document.chainProblem();
    report(document, chainProblem.isEmpty() ? document.readingProblem() : chainProblem);
    return true;
}

/// Reports @p problem, if there is one.
void HistoryTree::report(const Document& document, const QString& problem)
{
    if (problem.isEmpty())
        return;
    document.report(problem);
    m_problems += problem;
}

/// Reports the embedded documents of which there is nothing in the tree, but for those @p omitted.
void HistoryTree::reportMissing(const Document& document,
                                const QList<WorkflowTreeOmission>& omitted)
{
    QHash<int, QStringList> omittedUnder;
    for (const WorkflowTreeOmission& omission : omitted) {
        if (!omission.document.isNull())
            omittedUnder[omission.nodeId] += omission.document;
    }
    const QList<int> ids = m_tree.nodeIds();
    for (const int id : ids) {
        QHash<QString, int> accountedFor;
        const QList<Branch> branches = branchesOf(m_tree, id);
        for (const Branch& branch : branches)
            ++accountedFor[branch.document];
        const QStringList omittedHere = omittedUnder.value(id);
        for (const QString& name : omittedHere)
            ++accountedFor[name];
        for (const FileSummary& file : m_tree.workflowStep(id)->files) {
            const bool isDocument = file.embedded
                && file.filename.endsWith(QLatin1String(".tresk"));
            if (!isDocument)
                continue;
            const auto known = accountedFor.find(file.filename);
            if (known != accountedFor.end() && --*known >= 0)
                continue;
            report(document,
                   QStringLiteral("there is no history to be read in %1, which step %2 of the "
                                  "tree embeds")
                       .arg(quoted(file.filename), QString::number(id)));
        }
    }
}

/// Reports the embedded documents in @p tree that have lost their ends or some of their steps.
void HistoryTree::reportDamaged(const Document& document, WorkflowTree& tree)
{
    QSet<QString> examined = {document.parserPath()};
    const QList<int> ids = tree.nodeIds();
    for (const int id : ids) {
        const QString path = tree.fileOnDisk(id);
        if (examined.contains(path))
            continue;
        examined.insert(path);
        const QSharedPointer<TreskParser> parser = tree.treskParser(id);
        for (const QString& problem : {Document::extentProblem(*parser, QFileInfo(path).size()),
                                       Document::chainProblem(*parser)}) {
            if (problem.isEmpty())
                continue;
            report(document,
                   QStringLiteral("embedded document %1 (step %2 of the tree): %3")
                       .arg(quoted(tree.treskfile(id)), QString::number(tree.parent(id)), problem));
        }
    }
}

QList<Branch> branchesOf(const WorkflowTree& tree, int id)
{
    QList<Branch> branches;
    QString lastFile;
    const QList<int> children = tree.children(id);
    for (const int child : children) {
        const QString file = tree.fileOnDisk(child);
        if (branches.isEmpty() || file != lastFile)
            branches.append({tree.treskfile(child), {}});
        branches.last().steps.append(child);
        lastFile = file;
    }
    return branches;
}

QString titleOf(const Workflowstep& step)
{
    return step.title.isEmpty() ? QStringLiteral("<no title>") : printable(step.title);
}

QString circumstancesOf(const Workflowstep& step)
{
    QStringList known;
    for (const QString& text :
         {printable(step.tool), userAndHost(step), printable(step.timestamp)}) {
        if (!text.isEmpty())
            known += text;
    }
    return known.isEmpty() ? QString()
                           : QStringLiteral("  (%1)").arg(known.join(QStringLiteral(", ")));
}

} // namespace tresk::cli
