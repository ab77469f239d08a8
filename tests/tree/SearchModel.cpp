#include "SearchModel.h"

#include "TableOrder.h"

#include <algorithm>
#include <memory>

namespace tresktest {

namespace {

constexpr int none = -2;
constexpr int unmatched = -3;
constexpr float unmatchedCost = 15.0F;
constexpr float wrongParentCost = 10.0F;

void removeFrom(std::vector<int>& list, int id)
{
    list.erase(std::remove(list.begin(), list.end(), id), list.end());
}

} // namespace

int ModelTree::parent(int id) const
{
    return contains(id) ? parents[std::size_t(id - firstId)] : none;
}

std::vector<int> ModelTree::ids() const
{
    std::vector<int> added;
    for (int id = firstId; contains(id); ++id)
        added.push_back(id);
    return tableOrder(added);
}

float ModelProblem::costs(int a, int b) const
{
    if (!tree1.contains(a) || !tree2.contains(b))
        return unmatchedCost;
    return prices[std::size_t(tree1.step(a))][std::size_t(tree2.step(b))];
}

bool ModelTable::contains(int key) const
{
    return std::any_of(m_entries.begin(), m_entries.end(),
                       [&](const std::pair<int, int>& entry) { return entry.first == key; });
}

int ModelTable::value(int key, int otherwise) const
{
    for (const auto& [known, value] : m_entries) {
        if (known == key)
            return value;
    }
    return otherwise;
}

void ModelTable::set(int key, int value)
{
    for (auto& [known, old] : m_entries) {
        if (known == key) {
            old = value;
            return;
        }
    }
    m_entries.emplace_back(key, value);
}

std::vector<int> ModelTable::keys() const
{
    std::vector<int> inserted;
    for (const auto& entry : m_entries)
        inserted.push_back(entry.first);
    return tableOrder(inserted);
}

ModelPath::ModelPath(const ModelProblem& p)
    : problem(&p)
    , open1(p.tree1.ids())
    , open2(p.tree2.ids())
{
    assoc1.set(-1, -1);
    assoc2.set(-1, -1);
}

void ModelPath::associate(int a, int b)
{
    assoc1.set(a, b);
    assoc2.set(b, a);
    removeFrom(open1, a);
    removeFrom(open2, b);
    cost += costForAssociation(a, b);
    later.set(a, int(calcParentCostsLater(a, b)));
    if (!open1.empty())
        return;
    cost += unmatchedCost * float(open2.size());
    cost += calcMissingParentCosts();
    closeLeftOver();
}

void ModelPath::closeLeftOver()
{
    int i = 0;
    do {
        if (open2.empty())
            return;
        const int r = open2.front();
        assoc2.set(r, unmatched);
        removeFrom(open2, r);
        ++i;
    } while (i < int(open2.size()));
}

float ModelPath::costForAssociation(int a, int b) const
{
    float c = problem->costs(a, b);
    const int pa = problem->tree1.parent(a);
    const int pb = problem->tree2.parent(b);
    if (a != unmatched && b != unmatched && assoc1.value(pa, unmatched) != unmatched
        && assoc2.value(pb, unmatched) != unmatched) {
        if (pa != none && pb != none && assoc1.value(pa, unmatched) == pb)
            return c;
        c += wrongParentCost;
    }
    return c;
}

bool ModelPath::calcParentCostsLater(int a, int b) const
{
    return assoc1.value(problem->tree1.parent(a), 0) == unmatched
        || assoc2.value(problem->tree2.parent(b), 0) == unmatched;
}

bool ModelPath::nodeParentChanged(int a) const
{
    const int b = assoc1.value(a, 0);
    if (a == none || b == none)
        return false;
    int pa = problem->tree1.parent(a);
    while (!assoc1.isEmpty() && assoc1.contains(pa) && assoc1.value(pa, 0) == unmatched)
        pa = problem->tree1.parent(pa);
    int pb = problem->tree2.parent(b);
    while (!assoc2.isEmpty() && assoc2.contains(pb) && assoc2.value(pb, 0) == unmatched)
        pb = problem->tree2.parent(pb);
    return assoc1.value(pa, 0) != pb;
}

float ModelPath::heuristicCosts() const
{
    const bool firstIsSmaller = open1.size() < open2.size();
    const std::vector<int>& smaller = firstIsSmaller ? open1 : open2;
    const std::vector<int>& larger = firstIsSmaller ? open2 : open1;
    float h = unmatchedCost * float(larger.size() - smaller.size());
    for (const int x : smaller) {
        float m = unmatchedCost;
        for (const int y : larger)
            m = std::min(m, firstIsSmaller ? problem->costs(x, y) : problem->costs(y, x));
        h += m;
    }
    return h;
}

float ModelPath::calcMissingParentCosts() const
{
    float sum = 0.0F;
    const std::vector<int> nodes = assoc1.keys();
    for (int k = 0; k < int(nodes.size()); ++k) {
        if (later.contains(k) && later.value(k, 0) == 1 && nodeParentChanged(nodes[std::size_t(k)]))
            sum += wrongParentCost;
    }
    return sum;
}

float ModelPath::getCosts() const
{
    return heuristicCosts() + cost;
}

int ModelPath::association(int id, int t) const
{
    return (t == 1 ? assoc1 : assoc2).value(id, none);
}

bool ModelPath::associated(int id, int t) const
{
    const ModelTable& table = t == 1 ? assoc1 : assoc2;
    return !table.contains(id) || table.value(id, 0) == unmatched;
}

bool ModelPath::parentChanged(int id, int t) const
{
    if (t == 1)
        return assoc1.contains(id) && nodeParentChanged(id);
    return assoc2.contains(id) && nodeParentChanged(assoc2.value(id, 0));
}

ModelFindings search(const ModelProblem& problem, int n, int mostPopped)
{
    using Entry = std::pair<std::shared_ptr<ModelPath>, int>;
    const auto isGreater = [](const Entry& a, const Entry& b) { return a.second > b.second; };
    std::vector<Entry> heap;
    const auto push = [&](const ModelPath& path, int priority) {
        heap.emplace_back(std::make_shared<ModelPath>(path), priority);
        std::push_heap(heap.begin(), heap.end(), isGreater);
    };

    push(ModelPath(problem), 0);
    ModelFindings findings;
    int popped = 0;
    while (!heap.empty()) {
        if (++popped > mostPopped) {
            findings.isComplete = false;
            return findings;
        }
        std::pop_heap(heap.begin(), heap.end(), isGreater);
        const std::shared_ptr<ModelPath> path = heap.back().first;
        heap.pop_back();
        if (path->reachedGoal()) {
            findings.paths.push_back(*path);
            findings.popped.push_back(popped);
            if (int(findings.paths.size()) >= n)
                return findings;
            continue;
        }
        const int a = path->open1.front();
        std::vector<int> partners = path->open2;
        partners.push_back(unmatched);
        for (const int b : partners) {
            ModelPath copy(*path);
            copy.associate(a, b);
            push(copy, int(copy.getCosts()));
        }
    }
    return findings;
}

} // namespace tresktest
