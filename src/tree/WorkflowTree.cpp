#include <tresk/WorkflowTree.h>

#include <tresk/ExtractionQueue.h>
#include <tresk/SummaryCreator.h>
#include <tresk/TreskParser.h>

#include "tree/HashOrder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <algorithm>
#include <limits>

namespace tresk {

namespace {

constexpr int deepestLevel = 100; // of embedded documents, below the document itself
// Documents that overlap, or that are deflated again and again, can hold any number of others.
constexpr int mostDocuments = 10000;
constexpr qint64 mostBytes = qint64(16) * 1024 * 1024 * 1024;
constexpr qint64 largestDocument = std::numeric_limits<int>::max();

} // namespace

WorkflowTreeNode::WorkflowTreeNode(int nodeId, int parentId, const Workflowstep& step,
                                   const QString& treskfile, const QString& fileOnDisk)
    : m_nodeId(nodeId)
    , m_parentId(parentId)
    , m_step(step)
    , m_treskfile(treskfile)
    , m_fileOnDisk(fileOnDisk)
{
}

WorkflowTree::WorkflowTree(QObject* listener)
    : LogSource(listener)
{
    m_files.publishToLogSignal(this);
}

WorkflowTree::WorkflowTree(const WorkflowTree& other)
    : LogSource(nullptr)
    , m_nextId(other.m_nextId)
    , m_nodes(other.m_nodes)
    , m_children(other.m_children)
    , m_files(other.m_files)
{
    m_files.publishToLogSignal(this);
}

WorkflowTree& WorkflowTree::operator=(const WorkflowTree& other)
{
    m_nextId = other.m_nextId;
    m_nodes = other.m_nodes;
    m_children = other.m_children;
    m_files = other.m_files;
    return *this;
}

WorkflowTree::~WorkflowTree() = default;

void WorkflowTree::treeFromTreskFile(const QString& path)
{
    const auto parser = QSharedPointer<TreskParser>::create(ParseTolerant);
    parser->open(path); // without a document there are no steps
    treeFromTreskFile(parser, path);
}

void WorkflowTree::treeFromTreskFile(const QSharedPointer<TreskParser>& parser, const QString& path)
{
    if (parser)
        parser->getBytes(0, 1); // opens a file again that is deleted with this tree's documents
    clear();
    if (!m_files.addTreskFile(parser, path))
        return;
    m_documentsLeft = mostDocuments;
    m_bytesLeft = mostBytes;
    fillTree(*parser, -1, path, path, 0);
}

int WorkflowTree::addTreeNode(int parentId, const Workflowstep& step, const QString& treskfile,
                              const QString& fileOnDisk)
{
    addTreeNode(WorkflowTreeNode(m_nextId, parentId, step, treskfile, fileOnDisk));
    return m_nextId - 1;
}

void WorkflowTree::addTreeNode(const WorkflowTreeNode& node)
{
    m_nodes.append(node);
    m_children[node.parentId()].append(node.nodeId());
    ++m_nextId;
}

void WorkflowTree::clear()
{
    m_nodes.clear();
    m_children.clear();
    m_files.clear();
}

int WorkflowTree::root() const
{
    const QList<int> ids = nodeIds();
    for (const int id : ids) {
        if (parent(id) == -1)
            return id;
    }
    return -2;
}

int WorkflowTree::parent(int id) const
{
    const WorkflowTreeNode* const found = node(id);
    return found ? found->parentId() : -2;
}

QList<int> WorkflowTree::children(int id) const
{
    return m_children.value(id);
}

const Workflowstep* WorkflowTree::workflowStep(int id) const
{
    const WorkflowTreeNode* const found = node(id);
    return found ? &found->step() : nullptr;
}

QString WorkflowTree::treskfile(int id) const
{
    const WorkflowTreeNode* const found = node(id);
    return found ? found->treskfile() : QString();
}

QString WorkflowTree::fileOnDisk(int id) const
{
    const WorkflowTreeNode* const found = node(id);
    return found ? found->fileOnDisk() : QString();
}

QSharedPointer<TreskParser> WorkflowTree::treskParser(int id)
{
    return m_files.parser(fileOnDisk(id));
}

QList<int> WorkflowTree::nodeIds() const
{
    HashOrder order;
    for (const WorkflowTreeNode& node : m_nodes)
        order.insert(node.nodeId());
    return order.keys();
}

LinkedNodeIds WorkflowTree::nodeIdsLinked() const
{
    LinkedNodeIds linked;
    const QList<int> ids = nodeIds();
    for (const int id : ids)
        linked.append(id);
    return linked;
}

QList<int> WorkflowTree::serializedTree() const
{
    QList<int> ids;
    const int first = root();
    if (first == -2)
        return ids;
    ids.append(first);
    for (int i = 0; i < ids.size(); ++i)
        ids += children(ids.at(i));
    return ids;
}

/// Adds the steps of the document that @p parser has open, @p level documents deep.
void WorkflowTree::fillTree(TreskParser& parser, int parentId, const QString& treskfile,
                            const QString& fileOnDisk, int level)
{
    const QList<Summary> summaries = SummaryCreator().createSummaries(parser);
    for (auto summary = summaries.crbegin(); summary != summaries.crend(); ++summary) {
        const int id = addTreeNode(parentId, *summary, treskfile, fileOnDisk);
        for (const FileSummary& file : summary->files) {
            if (file.embedded && file.filename.endsWith(QLatin1String(".tresk")))
                followFile(parser, id, file, level + 1);
        }
    }
}

/// Adds the steps of an embedded document under the node that embeds it.
void WorkflowTree::followFile(TreskParser& parser, int nodeId, const FileSummary& file, int level)
{
    if (level > deepestLevel) {
        Q_EMIT log(tr("The document %1 is embedded too deeply and is left out").arg(file.filename),
                   1);
        return;
    }
    if (m_documentsLeft == 0 || m_bytesLeft <= 0) {
        Q_EMIT log(tr("There are too many embedded documents; %1 is left out").arg(file.filename),
                   1);
        return;
    }
    --m_documentsLeft;
    const QString path = extractFile(parser, file.tagId);
    // What the tree has opened itself is not kept open while it goes deeper.
    if (level > 1)
        parser.releaseFile();
    if (path.isEmpty())
        return;
    const QSharedPointer<TreskParser> embedded = m_files.addTreskFile(path, true);
    if (!embedded) {
        QFile::remove(path);
        return;
    }
    fillTree(*embedded, nodeId, file.filename, path, level);
    embedded->releaseFile();
}

/// Writes an embedded file to a temporary one and returns its path; empty where that fails.
QString WorkflowTree::extractFile(TreskParser& parser, int fileId)
{
    // A folder that is missing would read as the root folder.
    if (QDir::tempPath().isEmpty()) {
        Q_EMIT log(tr("Could not create a temporary file: %1").arg(tr("The folder is missing")), 1);
        return {};
    }
    QTemporaryFile target;
    target.setAutoRemove(false);
    if (!target.open()) {
        Q_EMIT log(tr("Could not create a temporary file: %1").arg(target.errorString()), 1);
        return {};
    }
    QString path = target.fileName();
    target.close();

    bool extracted = false;
    ExtractionQueue queue(&parser);
    queue.publishToLogSignal(this);
    connect(&queue, &ExtractionQueue::fileProcessed, this,
            [&extracted](int, bool valid) { extracted = valid; });
    queue.addExtractees({{fileId, path}});
    while (queue.process()) {
        if (QFileInfo(path).size() > std::min(m_bytesLeft, largestDocument))
            queue.cancelExtraction(); // nor could it be opened
    }
    m_bytesLeft -= QFileInfo(path).size();
    if (extracted)
        return path;
    QFile::remove(path);
    return {};
}

const WorkflowTreeNode* WorkflowTree::node(int id) const
{
    // Ids are given one after the other, and nodes go only all at once.
    const int first = m_nextId - int(m_nodes.size());
    return id >= first && id < m_nextId ? &m_nodes.at(id - first) : nullptr;
}

} // namespace tresk
