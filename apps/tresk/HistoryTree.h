#ifndef TRESK_APPS_HISTORYTREE_H
#define TRESK_APPS_HISTORYTREE_H

#include <tresk/WorkflowTree.h>

#include <QList>
#include <QString>
#include <QStringList>

namespace tresk::cli {

class Document;

/// The steps of a document and of the documents that it embeds, for the commands that show or
/// compare them.
class HistoryTree {
public:
    HistoryTree() = default;

    /// Reads the document at @p path as far as @p limits allow. Reports what is wrong and returns
    /// false if there is no history in it.
    bool read(const QString& path, const WorkflowTreeLimits& limits);
    /// Whether everything could be read.
    bool isWhole() const { return m_problems.isEmpty(); }
    /// What could not, as it was reported.
    const QStringList& problems() const { return m_problems; }

    const QString& name() const { return m_name; }
    const WorkflowTree& tree() const { return m_tree; }

private:
    Q_DISABLE_COPY(HistoryTree)

    void report(const Document& document, const QString& problem);
    void reportMissing(const Document& document, const QList<WorkflowTreeOmission>& omitted);
    void reportDamaged(const Document& document, WorkflowTree& tree);

    QString m_name;
    WorkflowTree m_tree;
    QStringList m_problems;
};

/// Steps that come from one document and hang under one step.
struct Branch {
    QString document; ///< the name of the document; at the top, its path
    QList<int> steps;
};

/// The children of node @p id of @p tree by the documents that they come from.
QList<Branch> branchesOf(const WorkflowTree& tree, int id);

/// The title of a step, fit for people.
QString titleOf(const Workflowstep& step);
/// Tool, user@host and time of a step, as far as they are known: "  (LibreOffice, mv@ws17)".
QString circumstancesOf(const Workflowstep& step);

} // namespace tresk::cli

#endif
