#include "LargeHistories.h"

#include <random>

namespace tresktest {

namespace {

constexpr int groupSize = 5;

tresk::Workflowstep step(const QString& title, const QString& description = QString())
{
    tresk::Workflowstep s;
    s.title = title;
    s.tool = QStringLiteral("tool");
    s.description = description;
    return s;
}

template <typename StepOf>
tresk::WorkflowTree treeOf(const Parents& parents, StepOf stepOf)
{
    tresk::WorkflowTree tree;
    for (std::size_t i = 0; i < parents.size(); ++i)
        tree.addTreeNode(parents[i], stepOf(int(i)), QString(), QString());
    return tree;
}

/// The step @p number of a history of @p kind.
tresk::Workflowstep mixedStep(int number, const QString& kind)
{
    const int group = number / groupSize;
    const QString name = QString::number(group);
    switch (group % 4) {
    case 0:
    case 2:
        return step(kind + name);
    case 1:
        return step(name, kind);
    default:
        return step(name);
    }
}

} // namespace

Parents flatParents(int count)
{
    return Parents(std::size_t(count), -1);
}

Parents chainedParents(int count)
{
    return branchingParents(count, 1);
}

Parents groupedParents(int count, int size)
{
    Parents parents;
    for (int i = 0; i < count; ++i) {
        const bool isFirst = i % size == 0;
        const bool isAtTop = isFirst && i / size % 3 == 0;
        parents.push_back(isAtTop ? -1 : isFirst ? i - size : i - i % size);
    }
    return parents;
}

Parents branchingParents(int count, int children)
{
    Parents parents;
    for (int i = 0; i < count; ++i)
        parents.push_back(i == 0 ? -1 : (i - 1) / children);
    return parents;
}

Parents randomParents(int count, unsigned seed)
{
    std::mt19937 random(seed); // the same everywhere, unlike distributions
    Parents parents;
    for (int i = 0; i < count; ++i)
        parents.push_back(int(random() % unsigned(i + 1)) - 1);
    return parents;
}

Histories unrelatedHistories(int count)
{
    const auto titled = [](const char* title) {
        return [title](int i) { return step(QLatin1String(title) + QString::number(i)); };
    };
    const Parents parents = flatParents(count);
    return {treeOf(parents, titled("old ")), treeOf(parents, titled("new "))};
}

Histories mixedHistories(const Parents& parents1, const Parents& parents2)
{
    const auto ofKind = [](const char* kind) {
        return [kind](int i) { return mixedStep(i, QLatin1String(kind)); };
    };
    return {treeOf(parents1, ofKind("old ")), treeOf(parents2, ofKind("new "))};
}

Histories equalSteps(const Parents& parents1, const Parents& parents2)
{
    const auto same = [](int) { return step(QStringLiteral("step")); };
    return {treeOf(parents1, same), treeOf(parents2, same)};
}

} // namespace tresktest
