// Builds documents in documents by choices from the input, damages some of them, and reads them
// into a tree, which has to be one, in the order of its table, and has to leave no file behind. The
// tree of undamaged documents is known beforehand.

#include "ByteSource.h"
#include "FuzzTarget.h"
#include "Histories.h"
#include "NestedDocuments.h"
#include "ScratchFile.h"
#include "TableOrder.h"

#include <tresk/TreskParser.h>
#include <tresk/WorkflowTree.h>

#include <QFileInfo>

#include <algorithm>

using tresk::WorkflowTree;
using tresktest::textOf;

namespace {

/// Checks all that the tree says of node @p id, of the document at @p path.
void checkNode(WorkflowTree& tree, int id, const QString& path)
{
    const int parent = tree.parent(id);
    TRESK_REQUIRE(tree.children(parent).count(id) == 1);
    TRESK_REQUIRE(tree.workflowStep(id));
    TRESK_REQUIRE(tree.treskParser(id));
    TRESK_REQUIRE(QFileInfo::exists(tree.fileOnDisk(id)));
    if (parent == -1) {
        TRESK_REQUIRE(tree.treskfile(id) == path && tree.fileOnDisk(id) == path);
        return;
    }
    TRESK_REQUIRE(parent < id && tree.workflowStep(parent));
    TRESK_REQUIRE(tree.fileOnDisk(id) != tree.fileOnDisk(parent));
    const QList<tresk::FileSummary> files = tree.workflowStep(parent)->files;
    TRESK_REQUIRE(tree.treskfile(id).endsWith(QLatin1String(".tresk")));
    TRESK_REQUIRE(std::any_of(files.begin(), files.end(), [&](const tresk::FileSummary& file) {
        return file.embedded && file.filename == tree.treskfile(id);
    }));
}

/// The root and what is under it, level by level.
QList<int> levelByLevel(const WorkflowTree& tree)
{
    QList<int> all;
    QList<int> level;
    if (tree.root() != -2)
        level += tree.root();
    while (!level.isEmpty()) {
        all += level;
        QList<int> below;
        for (const int id : level)
            below += tree.children(id);
        level = below;
    }
    return all;
}

/// Checks a tree whose nodes are numbered from @p firstId; returns how many they are.
int checkTree(WorkflowTree& tree, int firstId, const QString& path)
{
    const QList<int> ids = tree.nodeIds();
    const int count = int(ids.size());
    std::vector<int> added;
    for (int id = firstId; id < firstId + count; ++id)
        added.push_back(id);
    const std::vector<int> order = tresktest::tableOrder(added);
    TRESK_REQUIRE(std::equal(ids.begin(), ids.end(), order.begin(), order.end()));
    const auto linked = tree.nodeIdsLinked();
    TRESK_REQUIRE(std::equal(ids.begin(), ids.end(), linked.begin(), linked.end()));

    int children = int(tree.children(-1).size());
    for (const int id : ids) {
        checkNode(tree, id, path);
        const QList<int> below = tree.children(id);
        TRESK_REQUIRE(std::is_sorted(below.begin(), below.end()));
        children += int(below.size());
    }
    TRESK_REQUIRE(children == count);
    const auto root = std::find_if(ids.begin(), ids.end(),
                                   [&](int id) { return tree.parent(id) == -1; });
    TRESK_REQUIRE(tree.root() == (root == ids.end() ? -2 : *root));
    TRESK_REQUIRE(tree.serializedTree() == levelByLevel(tree));

    for (const int id : {firstId - 1, firstId + count}) {
        TRESK_REQUIRE(tree.parent(id) == -2 && !tree.workflowStep(id) && !tree.treskParser(id));
        TRESK_REQUIRE(id == -1 || tree.children(id).isEmpty());
    }
    return count;
}

/// Fills trees from the document at @p path in several ways; returns what they have in common.
QString readTrees(const QString& path, const tresktest::TemporaryFolder& folder)
{
    WorkflowTree copy;
    QString text;
    {
        WorkflowTree tree;
        tree.treeFromTreskFile(path);
        const int count = checkTree(tree, 0, path);
        text = textOf(tree);
        copy = tree;
        const int files = int(folder.files().size());

        const auto parser = QSharedPointer<tresk::TreskParser>::create(tresk::ParseTolerant);
        parser->open(path);
        tree.treeFromTreskFile(parser, path);
        TRESK_REQUIRE(checkTree(tree, count, path) == count);
        TRESK_REQUIRE(textOf(tree) == text);
        TRESK_REQUIRE(folder.files().size() == 2 * files);
    }
    checkTree(copy, 0, path);
    TRESK_REQUIRE(textOf(copy) == text);
    return text;
}

void runWorkflowTree(const QByteArray& input)
{
    static tresk_fuzz::ScratchFile document;
    static const tresktest::TemporaryFolder folder;

    tresk_fuzz::ByteSource source(input);
    tresk_fuzz::NestedDocuments documents(source);
    const tresk_fuzz::NestedDocument made = documents.make();
    document.setContent(made.bytes);
    const QString tree = readTrees(document.path(), folder);
    TRESK_REQUIRE(documents.areDamaged() || tree == made.tree);
    TRESK_REQUIRE(folder.files().isEmpty());
}

const tresk_fuzz::Target target("workflowtree", runWorkflowTree);

} // namespace
