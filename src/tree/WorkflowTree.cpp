#include <tresk/WorkflowTree.h>

#include <tresk/ExtractionQueue.h>
#include <tresk/TreskParser.h>

#include "container/Deflate.h"
#include "tree/HashOrder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryFile>

#include <algorithm>
#include <limits>
#include <optional>

namespace tresk {

namespace {

constexpr qint64 largestDocument = std::numeric_limits<int>::max();
constexpr qint64 largestPiece = 100000; // of stored bytes that an extraction inflates at once

/// What keeps an embedded document from being followed, @p level documents deep. @p tag is null
/// where the summary names a file that is not there.
std::optional<WorkflowTreeOmission::Limit> reachedLimit(const WorkflowTreeLimits& limits,
                                                        const WorkflowTreeLimits& left,
                                                        const FileTag* tag, int level)
{
    if (level > std::min(limits.depth, WorkflowTreeLimits::deepest))
        return WorkflowTreeOmission::Depth;
    if (left.documents <= 0)
        return WorkflowTreeOmission::Documents;
    // Of one that is as large as it says, nothing is written in vain.
    if (left.bytes <= 0 || (tag && tag->filesize > left.bytes))
        return WorkflowTreeOmission::Bytes;
    return std::nullopt;
}

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
    , m_limits(other.m_limits)
    , m_omissions(other.m_omissions)
{
    m_files.publishToLogSignal(this);
}

WorkflowTree& WorkflowTree::operator=(const WorkflowTree& other)
{
    m_nextId = other.m_nextId;
    m_nodes = other.m_nodes;
    m_children = other.m_children;
    m_files = other.m_files;
    m_limits = other.m_limits;
    m_omissions = other.m_omissions;
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
    clear();
    if (!m_files.addTreskFile(parser, path))
        return;
    m_left = m_limits;
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
    m_omissions.clear();
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
    SummaryBudget budget;
    const QList<Summary> summaries = readSummaries(parser, budget);
    const QSet<int> unread(budget.unread.cbegin(), budget.unread.cend());
    const QSet<int> namingTooMany(budget.namingTooMany.cbegin(), budget.namingTooMany.cend());
    const QSet<int> withoutFiles(budget.withoutFiles.cbegin(), budget.withoutFiles.cend());
    for (auto i = int(summaries.size()) - 1; i >= 0; --i) {
        const Summary& summary = summaries.at(i);
        const int sectionId = i < parser.getNumSections() ? summary.tagId : -1;
        const int id = addTreeNode(parentId, summary, treskfile, fileOnDisk);
        if (unread.contains(sectionId))
            omit(WorkflowTreeOmission::SummaryBytes, id, QString());
        if (namingTooMany.contains(sectionId))
            omit(WorkflowTreeOmission::SummaryFiles, id, QString());
        if (withoutFiles.contains(sectionId))
            omit(WorkflowTreeOmission::Records, id, QString());
        for (const FileSummary& file : summary.files) {
            if (file.embedded && file.filename.endsWith(QLatin1String(".tresk")))
                followFile(parser, id, file, level + 1);
        }
    }
}

/// The summaries of a document as far as the limits allow; @p budget says what was left out.
QList<Summary> WorkflowTree::readSummaries(TreskParser& parser, SummaryBudget& budget)
{
    const qint64 bytes = std::max<qint64>(std::min(m_left.bytes, m_left.summaryBytes), 0);
    budget.bytes = bytes;
    budget.files = std::max<qint64>(m_left.records, 0);
    QList<Summary> summaries = SummaryCreator().createSummaries(parser, budget);
    m_left.bytes -= bytes - budget.bytes;
    m_left.summaryBytes -= bytes - budget.bytes;
    m_left.records = budget.files;
    return summaries;
}

/// Adds the steps of an embedded document under the node that embeds it.
void WorkflowTree::followFile(TreskParser& parser, int nodeId, const FileSummary& file, int level)
{
    const QSharedPointer<FileTag> tag = parser.getFile(file.tagId);
    if (const auto limit = reachedLimit(m_limits, m_left, tag.data(), level)) {
        omit(*limit, nodeId, file.filename);
        return;
    }
    --m_left.documents;
    bool isTooLarge = false;
    const QString path = tag ? extractFile(parser, *tag, isTooLarge) : QString();
    // What the tree has opened itself is not kept open while it goes deeper.
    if (level > 1)
        parser.releaseFile();
    if (path.isEmpty()) {
        if (isTooLarge)
            omit(m_left.bytes < 0 ? WorkflowTreeOmission::Bytes
                                  : WorkflowTreeOmission::LargestDocument,
                 nodeId, file.filename);
        return;
    }
    const QSharedPointer<TreskParser> embedded = m_files.addTreskFile(path, true);
    if (!embedded) {
        QFile::remove(path);
        return;
    }
    const qint64 records = qint64(embedded->getNumSections()) + embedded->getNumFiles();
    if (records > m_left.records) {
        m_files.remove(path);
        omit(WorkflowTreeOmission::Records, nodeId, file.filename);
        return;
    }
    m_left.records -= records;
    fillTree(*embedded, nodeId, file.filename, path, level);
    embedded->releaseFile();
}

void WorkflowTree::omit(WorkflowTreeOmission::Limit limit, int nodeId, const QString& document)
{
    m_omissions.append({limit, nodeId, document});
    if (document.isNull()) {
        Q_EMIT log(limit == WorkflowTreeOmission::Records
                       ? tr("The step %1 has too many files; they are left out").arg(nodeId)
                       : tr("The summary of step %1 is too large and is left out").arg(nodeId),
                   1);
        return;
    }
    QString text;
    if (limit == WorkflowTreeOmission::Depth)
        text = tr("The document %1 is embedded too deeply and is left out");
    else if (limit == WorkflowTreeOmission::LargestDocument)
        text = tr("The document %1 has 2 GiB or more and is left out");
    else
        text = tr("There are too many embedded documents; %1 is left out");
    Q_EMIT log(text.arg(document), 1);
}

/// Writes an embedded file to a temporary one and returns its path; empty where that fails, or
/// was given up since there is too much of it.
QString WorkflowTree::extractFile(TreskParser& parser, const FileTag& file, bool& isTooLarge)
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
    queue.addExtractees({{file.id, path}});
    while (queue.process()) {
        if (QFileInfo(path).size() > std::min(m_left.bytes, largestDocument)) {
            isTooLarge = true;
            queue.cancelExtraction();
        }
    }
    const qint64 size = QFileInfo(path).size();
    isTooLarge = isTooLarge || size > largestDocument; // which could not be opened
    const qint64 stored = file.compression == QLatin1String("flate") ? file.cfilesize : 0;
    if (extracted)
        m_left.bytes -= std::max(size, stored);
    else if (isTooLarge || stored < 0)
        m_left.bytes -= size;
    else // of the piece in which there is a fault, nothing is written
        m_left.bytes -= size + std::min(stored, largestPiece) * largestRatio;
    if (extracted && !isTooLarge)
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
