#ifndef TRESK_WORKFLOWTREE_H
#define TRESK_WORKFLOWTREE_H

#include <tresk/LogSource.h>
#include <tresk/Summary.h>
#include <tresk/SummaryCreator.h>
#include <tresk/TreeId.h>
#include <tresk/TreskFileManager.h>

#include <QHash>
#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QVector>

namespace tresk {

class TreskParser;
struct FileTag;

/// A step in a tree, and the document that it comes from.
class TRESK_EXPORT WorkflowTreeNode {
public:
    /// A node of no tree.
    WorkflowTreeNode() = default;
    /// A node with what the functions below return.
    WorkflowTreeNode(int nodeId, int parentId, const Workflowstep& step, const QString& treskfile,
                     const QString& fileOnDisk);

    int nodeId() const { return m_nodeId; } ///< -2 for a node of no tree
    int parentId() const { return m_parentId; } ///< -1 at the top, -2 for a node of no tree
    /// What the step says of itself; owned by the node.
    const Workflowstep& step() const { return m_step; }
    /// The document of the step: its path, or its name where it is embedded in another.
    QString treskfile() const { return m_treskfile; }
    /// The file that was opened to read it: where it is embedded, a temporary one.
    QString fileOnDisk() const { return m_fileOnDisk; }

private:
    int m_nodeId = -2;
    int m_parentId = -2;
    Workflowstep m_step;
    QString m_treskfile;
    QString m_fileOnDisk;
};

/// How far a tree follows embedded documents, and what it holds in memory. A small file may hold
/// documents that are deflated again and again, or that overlap, and thus any number of them.
struct TRESK_EXPORT WorkflowTreeLimits {
    /// More levels are not followed, whatever the limits say: the tree and those who walk it call
    /// themselves for each, and as JSON, for instance, few programs could read them.
    static constexpr int deepest = 200;

    int depth = 100; ///< levels of embedded documents below the document itself
    int documents = 10000; ///< embedded documents in all
    /// Of documents and summaries, unpacked. A document in which a fault is met counts as what may
    /// have been unpacked in vain.
    qint64 bytes = qint64(16) * 1024 * 1024 * 1024;
    qint64 summaryBytes = SummaryBudget().bytes; ///< of these, of summaries
    /// Steps and files that lie in embedded documents, and files that steps have.
    qint64 records = SummaryBudget().files;
};

/// What a tree has left out since it would go beyond a limit.
struct TRESK_EXPORT WorkflowTreeOmission {
    /// LargestDocument is no limit that can be set: a document has less than 2 GiB.
    enum Limit { Depth, Documents, Bytes, SummaryBytes, Records, SummaryFiles, LargestDocument };

    Limit limit; ///< beyond which it would go
    int nodeId; ///< of the step that is concerned
    /// The name of the document that the step embeds. Null where it is the summary of the step
    /// itself: SummaryBytes or SummaryFiles if it was not read, since it has too many bytes or
    /// names too many files, Records if its files are lacking.
    QString document;
};

/// The steps of a document and of the documents that are embedded in it.
///
/// The steps of one document are siblings, newest first. Under a step hang the steps of the
/// documents that it embeds: files named "*.tresk" that its summary says to be embedded. They are
/// extracted to temporary files, which only the user can read, and which go with the last copy of
/// the tree. What would go beyond the limits is left out, and logged with type 1.
///
/// Nodes are numbered from 0 in the order in which they are added; a tree that is cleared and
/// filled again goes on counting.
class TRESK_EXPORT WorkflowTree : public LogSource {
    Q_OBJECT

public:
    /// An empty tree. A @p listener that is not null is connected to the log.
    explicit WorkflowTree(QObject* listener = nullptr);
    /// @{
    /// A tree with the same nodes that shares the opened documents. Listeners are not copied.
    WorkflowTree(const WorkflowTree& other);
    WorkflowTree& operator=(const WorkflowTree& other);
    /// @}
    ~WorkflowTree() override;

    /// @{
    /// The limits for trees that are filled from now on; those of WorkflowTreeLimits unless set. A
    /// value below 0 counts as 0.
    void setLimits(const WorkflowTreeLimits& limits) { m_limits = limits; }
    const WorkflowTreeLimits& limits() const { return m_limits; }
    /// @}
    /// What was left out when the tree was filled, in the order of the nodes concerned.
    QList<WorkflowTreeOmission> omissions() const { return m_omissions; }

    /// Fills the tree from the document at @p path. A document that cannot be opened gives an
    /// empty tree.
    void treeFromTreskFile(const QString& path);
    /// The same for the document that @p parser has open, and whose path is @p path. A null parser
    /// gives an empty tree.
    void treeFromTreskFile(const QSharedPointer<TreskParser>& parser, const QString& path);
    /// Adds a node under the node @p parentId, or at the top (-1), and returns its id. Whether
    /// there is such a parent is not checked.
    int addTreeNode(int parentId, const Workflowstep& step, const QString& treskfile,
                    const QString& fileOnDisk);
    /// Removes all nodes and lets go of the documents.
    void clear();

    /// The first node at the top, in the order of nodeIds(); -2 if there is none.
    int root() const;
    /// The parent of node @p id: -1 at the top, -2 if there is no such node.
    int parent(int id) const;
    /// The children of node @p id, or the nodes at the top for -1, in the order in which they were
    /// added.
    QList<int> children(int id) const;
    /// The step of node @p id, owned by the tree and valid until it changes; null if there is no
    /// such node.
    const Workflowstep* workflowStep(int id) const;
    /// WorkflowTreeNode::treskfile() of node @p id; empty if there is no such node.
    QString treskfile(int id) const;
    /// WorkflowTreeNode::fileOnDisk() of node @p id; empty if there is no such node.
    QString fileOnDisk(int id) const;
    /// The parser of the file on disk of node @p id; null if there is none.
    QSharedPointer<TreskParser> treskParser(int id);

    /// All nodes. The order is that of a table with 17, 37, 67, ... buckets, as many as the number
    /// of nodes needs: ascending in a tree that was filled once. The same in every process.
    QList<int> nodeIds() const;
    /// The same as a linked list.
    LinkedNodeIds nodeIdsLinked() const;
    /// The root and what is under it, level by level; empty without a root.
    QList<int> serializedTree() const;

private:
    void addTreeNode(const WorkflowTreeNode& node);
    void fillTree(TreskParser& parser, int parentId, const QString& treskfile,
                  const QString& fileOnDisk, int level);
    void followFile(TreskParser& parser, int nodeId, const FileSummary& file, int level);
    QString extractFile(TreskParser& parser, const FileTag& file, bool& isTooLarge);
    QList<Summary> readSummaries(TreskParser& parser, SummaryBudget& budget);
    void omit(WorkflowTreeOmission::Limit limit, int nodeId, const QString& document);
    const WorkflowTreeNode* node(int id) const;

    int m_nextId = 0;
    QVector<WorkflowTreeNode> m_nodes; ///< those with the last ids given, in ascending order
    QHash<int, QList<int>> m_children;
    TreskFileManager m_files;
    WorkflowTreeLimits m_limits;
    WorkflowTreeLimits m_left; ///< of the limits, while the tree is filled
    QList<WorkflowTreeOmission> m_omissions;
};

} // namespace tresk

#endif
