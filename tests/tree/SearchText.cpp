#include "SearchText.h"

#include "MessageCapture.h"
#include "Trees.h"

#include <tresk/CostMatrix.h>
#include <tresk/Dijkstra.h>
#include <tresk/Path.h>
#include <tresk/TreskDiff.h>

#include <QDebug>

#include <cstring>

using tresk::Dijkstra;
using tresk::Path;
using tresk::TreeId;

namespace tresktest {

namespace {

/// @p cost to the bit.
QString bitsOf(float cost)
{
    static_assert(sizeof(quint32) == sizeof(float), "a float has 32 bits");
    quint32 bits = 0;
    std::memcpy(&bits, &cost, sizeof bits);
    return QStringLiteral("path costs ") + QString::number(bits, 16);
}

/// Partners and changed parents in @p result, a result or the path of a model.
template <typename Tree, typename Result>
QString textOf(const ModelProblem& problem, const Result& result)
{
    QString text;
    for (const int t : {1, 2}) {
        const ModelTree& tree = t == 1 ? problem.tree1 : problem.tree2;
        std::vector<int> ids{-3, -2, -1};
        for (int id = tree.firstId; tree.contains(id); ++id)
            ids.push_back(id);
        ids.push_back(99);
        for (const int id : ids) {
            text += QStringLiteral(" %1:%2").arg(id).arg(result.association(id, Tree(t)));
            text += QLatin1String(result.associated(id, Tree(t)) ? "!" : "");
            text += QLatin1String(result.parentChanged(id, Tree(t)) ? "^" : "");
        }
        text += QLatin1Char(t == 1 ? ';' : '\n');
    }
    return text;
}

/// The debug lines of the model's path.
QStringList linesOf(const ModelPath& path)
{
    QStringList lines;
    for (const int id : path.assoc1.keys())
        lines += QStringLiteral("%1 -> %2").arg(id).arg(path.assoc1.value(id, 0));
    QString costs;
    QDebug(&costs).nospace() << "Costs: " << path.cost;
    return lines << costs;
}

QString textOf(const ModelTree& tree)
{
    QString text = QStringLiteral("tree");
    for (int id = tree.firstId; tree.contains(id); ++id)
        text += QStringLiteral(" %1<%2=%3").arg(id).arg(tree.parent(id)).arg(tree.step(id));
    return text + QLatin1Char('\n');
}

} // namespace

tresk::WorkflowTree treeOf(const ModelTree& model)
{
    tresk::WorkflowTree tree;
    for (int id = 0; id < model.firstId; ++id)
        tree.addTreeNode(-1, {}, QString(), QString());
    tree.clear();
    for (int id = model.firstId; model.contains(id); ++id) {
        tresk::Workflowstep step;
        step.tagId = model.step(id);
        tree.addTreeNode(model.parent(id), step, QString(), QString());
    }
    return tree;
}

float ModelCosts::costs(const tresk::Workflowstep& a, const tresk::Workflowstep& b) const
{
    return m_prices[std::size_t(a.tagId)][std::size_t(b.tagId)];
}

QString textOf(const ModelProblem& problem)
{
    QString text = textOf(problem.tree1) + textOf(problem.tree2);
    for (const std::vector<float>& row : problem.prices) {
        for (const float price : row)
            text += QString::number(double(price), 'g', 9) + QLatin1Char(' ');
        text += QLatin1Char('\n');
    }
    return text;
}

QString found(const ModelProblem& problem, int n)
{
    const tresk::WorkflowTree tree1 = treeOf(problem.tree1);
    const tresk::WorkflowTree tree2 = treeOf(problem.tree2);
    ModelCosts costs(problem);
    QString text;
    QStringList lines;
    {
        const MessageCapture capture;
        const tresk::TreskDiff diff(tree1, tree2, &costs);
        for (const tresk::TreskDiffResult& result : diff.findBestMatches(n))
            text += textOf<TreeId>(problem, result);
        lines = debugLines(capture);
    }
    const MessageCapture capture;
    const tresk::CostMatrix matrix(tree1, tree2, &costs);
    tresk::PathExpander expander(&tree1, &tree2, &matrix);
    const auto paths = Dijkstra<Path>().findPaths(QSharedPointer<Path>::create(&expander), n);
    for (const QSharedPointer<Path>& path : paths)
        text += textOf<TreeId>(problem, *path) + bitsOf(path->getCosts()) + QLatin1Char('\n');
    if (debugLines(capture) != lines)
        text += QStringLiteral("A second search writes other lines.\n");
    return text + lines.join(QLatin1Char('\n'));
}

QString textOf(const ModelProblem& problem, const ModelFindings& findings)
{
    QString text;
    QString ofPaths;
    QStringList lines;
    for (std::size_t i = 0; i < findings.paths.size(); ++i) {
        const ModelPath& path = findings.paths[i];
        const QString ofPath = textOf<int>(problem, path);
        text += ofPath;
        ofPaths += ofPath + bitsOf(path.getCosts()) + QLatin1Char('\n');
        lines += QStringLiteral("FINISHED");
        lines += QString::number(findings.popped[i]) + QStringLiteral(" nodes expanded");
        lines += linesOf(path);
    }
    return text + ofPaths + lines.join(QLatin1Char('\n'));
}

QString stateOf(const ModelProblem& problem, const Path& path)
{
    const MessageCapture capture;
    path.printMe();
    return textOf<TreeId>(problem, path) + bitsOf(path.getCosts()) + QLatin1Char('\n')
        + debugLines(capture).join(QLatin1Char('\n'));
}

QString stateOf(const ModelProblem& problem, const ModelPath& path)
{
    return textOf<int>(problem, path) + bitsOf(path.getCosts()) + QLatin1Char('\n')
        + linesOf(path).join(QLatin1Char('\n'));
}

} // namespace tresktest
