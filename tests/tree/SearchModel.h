#ifndef TRESK_TESTS_SEARCHMODEL_H
#define TRESK_TESTS_SEARCHMODEL_H

#include <utility>
#include <vector>

/// The search for the cheapest pairing of two trees, written down as plainly as can be: paths are
/// copied in full, estimates computed anew, tables replayed.
namespace tresktest {

/// A tree of numbered steps.
struct ModelTree {
    int firstId = 0;
    std::vector<int> parents; ///< of the nodes firstId, firstId + 1, ...
    std::vector<int> steps; ///< likewise

    bool contains(int id) const { return id >= firstId && id - firstId < int(parents.size()); }
    int parent(int id) const;
    int step(int id) const { return steps[std::size_t(id - firstId)]; }
    /// The nodes in the order of their table.
    std::vector<int> ids() const;
};

/// Two trees and what pairs of steps cost.
struct ModelProblem {
    ModelTree tree1;
    ModelTree tree2;
    std::vector<std::vector<float>> prices; ///< by the numbers of the steps

    float costs(int a, int b) const;
};

/// Whole numbers under whole numbers, in the order in which they came.
class ModelTable {
public:
    bool contains(int key) const;
    int value(int key, int otherwise) const;
    void set(int key, int value);
    bool isEmpty() const { return m_entries.empty(); }
    /// The keys in the order of a table.
    std::vector<int> keys() const;

private:
    std::vector<std::pair<int, int>> m_entries;
};

/// A pairing.
struct ModelPath {
    explicit ModelPath(const ModelProblem& p);

    void associate(int a, int b);
    bool reachedGoal() const { return open1.empty(); }
    float getCosts() const;
    int association(int id, int t) const;
    bool associated(int id, int t) const;
    bool parentChanged(int id, int t) const;

    const ModelProblem* problem;
    ModelTable assoc1;
    ModelTable assoc2;
    ModelTable later;
    std::vector<int> open1;
    std::vector<int> open2;
    float cost = 0.0F;

private:
    float costForAssociation(int a, int b) const;
    bool calcParentCostsLater(int a, int b) const;
    bool nodeParentChanged(int a) const;
    float heuristicCosts() const;
    float calcMissingParentCosts() const;
    void closeLeftOver();
};

/// What a search has found.
struct ModelFindings {
    std::vector<ModelPath> paths;
    std::vector<int> popped; ///< how many paths had been popped when each was found
    bool isComplete = true; ///< false if more than the most paths would have been popped
};

ModelFindings search(const ModelProblem& problem, int n, int mostPopped);

} // namespace tresktest

#endif
