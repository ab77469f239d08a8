#ifndef TRESK_WORKFLOWTREE_H
#define TRESK_WORKFLOWTREE_H

#include <tresk/LogSource.h>
#include <tresk/Summary.h>
#include <tresk/TreeId.h>
#include <tresk/TreskFileManager.h>

#include <QHash>
#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QVector>

namespace tresk {

class TreskParser;

/// A step in a tree, and the document that it comes from.
class TRESK_EXPORT WorkflowTreeNode {
public:
    WorkflowTreeNode() = default;
    WorkflowTreeNode(int nodeId, int parentId, const Workflowstep& step, const QString& treskfile,
                     const QString& fileOnDisk);

    int nodeId() const { return m_nodeId; } ///< -2 for a node of no tree
    int parentId() const { return m_parentId; } ///< -1 at the top, -2 for a node of no tree
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

/// The steps of a document and of the documents that are embedded in it.
///
/// The steps of one document are siblings, newest first. Under a step hang the steps of the
/// documents that it embeds: files named "*.tresk" that its summary says to be embedded. They are
/// extracted to temporary files, which only the user can read, and which go with the last copy of
/// the tree. Embedded documents are followed 100 levels deep, and 10000 of them or 16 GiB in all;
/// what is left out is logged with type 1.
///
/// Nodes are numbered from 0 in the order in which they are added; a tree that is cleared and
/// filled again goes on counting.
class TRESK_EXPORT WorkflowTree : public LogSource {
    Q_OBJECT

public:
    explicit WorkflowTree(QObject* listener = nullptr);
    /// A tree with the same nodes that shares the opened documents. Listeners are not copied.
    WorkflowTree(const WorkflowTree& other);
    WorkflowTree& operator=(const WorkflowTree& other);
    ~WorkflowTree() override;

    /// Fills the tree from the document at @p path. A document that cannot be opened gives an
    /// empty tree.
    void treeFromTreskFile(const QString& path);
    /// The same for the document that @p parser has open, and whose path is @p path. A null parser
    /// gives an empty tree.
    void treeFromTreskFile(const QSharedPointer<TreskParser>& parser, const QString& path);
    /// Adds a node under the node @p parentId, or at the top (-1), and returns its id.
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
    LinkedNodeIds nodeIdsLinked() const;
    /// The root and what is under it, level by level; empty without a root.
    QList<int> serializedTree() const;

private:
    void addTreeNode(const WorkflowTreeNode& node);
    void fillTree(TreskParser& parser, int parentId, const QString& treskfile,
                  const QString& fileOnDisk, int level);
    void followFile(TreskParser& parser, int nodeId, const FileSummary& file, int level);
    QString extractFile(TreskParser& parser, int fileId);
    const WorkflowTreeNode* node(int id) const;

    int m_nextId = 0;
    QVector<WorkflowTreeNode> m_nodes; ///< those with the last ids given, in ascending order
    QHash<int, QList<int>> m_children;
    TreskFileManager m_files;
    int m_documentsLeft = 0; ///< that may be followed still
    qint64 m_bytesLeft = 0; ///< that they may take
};

} // namespace tresk

#endif
