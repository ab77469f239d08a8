#include "RandomTrees.h"

#include <QRandomGenerator>

namespace tresktest {

namespace {

constexpr int steps = 4;
/// What pairs cost by default.
constexpr float usualPrices[] = {0.0F, 20.0F, 30.0F, 50.0F, 70.0F, 80.0F, 100.0F};
constexpr int unusualParents[] = {-2, -3, 99};

enum Kind { Usual, Alike, Odd, Fractions, Negative, KindCount };

} // namespace

RandomTrees::RandomTrees(quint32 seed)
    : m_below(
        [random = QRandomGenerator(seed)](int count) mutable { return random.bounded(count); })
{
}

RandomTrees::RandomTrees(const std::function<int(int)>& below)
    : m_below(below)
{
}

ModelProblem RandomTrees::problem(int most)
{
    return {tree(number(0, most)), tree(number(0, most)), prices()};
}

ModelProblem RandomTrees::similarTrees()
{
    ModelProblem p;
    const int nodes = number(14, 24);
    p.tree1 = tree(nodes);
    for (int i = 0; i < nodes; ++i)
        p.tree1.steps[std::size_t(i)] = i;
    p.tree2 = p.tree1;
    if (oneIn(2))
        p.tree2.parents[std::size_t(number(0, nodes - 1))] = -1;
    if (oneIn(2))
        p.tree2.steps[std::size_t(number(0, nodes - 1))] = nodes;
    if (oneIn(2)) {
        p.tree2.parents.push_back(-1);
        p.tree2.steps.push_back(nodes);
    }
    const auto count = std::size_t(nodes + 1);
    p.prices.assign(count, std::vector<float>(count, 50.0F));
    for (std::size_t i = 0; i < count; ++i)
        p.prices[i][i] = oneIn(3) ? 0.1F * float(number(0, 9)) : 0.0F;
    return p;
}

ModelTree RandomTrees::tree(int nodes)
{
    ModelTree t;
    t.firstId = oneIn(3) ? number(1, 40) : 0;
    const bool isFlat = oneIn(3);
    const bool isDescending = oneIn(6);
    const bool isUnusual = oneIn(6);
    for (int i = 0; i < nodes; ++i) {
        int parent = -1;
        if (isUnusual && oneIn(3))
            parent = unusualParents[number(0, 2)];
        else if (!isFlat && isDescending && i + 1 < nodes && !oneIn(3))
            parent = t.firstId + number(i + 1, nodes - 1);
        else if (!isFlat && !isDescending && i > 0 && !oneIn(4))
            parent = t.firstId + number(0, i - 1);
        t.parents.push_back(parent);
        t.steps.push_back(number(0, steps - 1));
    }
    return t;
}

float RandomTrees::price(int kind)
{
    switch (kind) {
    case Usual:
        return usualPrices[number(0, 6)];
    case Odd:
        return float(number(0, 65535)) * 40.0F / 65536.0F;
    case Fractions:
        return 0.1F * float(number(0, 320));
    default:
        return 0.37F * float(number(-60, 120));
    }
}

std::vector<std::vector<float>> RandomTrees::prices()
{
    const int kind = number(0, KindCount - 1);
    const float alike[] = {0.0F, 5.0F, 14.9F, 29.9F, 31.0F};
    const float same = alike[number(0, 4)];
    std::vector<std::vector<float>> table(steps, std::vector<float>(steps, same));
    for (std::size_t i = 0; i < steps && kind != Alike; ++i) {
        for (std::size_t j = 0; j < steps; ++j)
            table[i][j] = kind == Usual && i == j ? 0.0F : price(kind);
    }
    return table;
}

} // namespace tresktest
