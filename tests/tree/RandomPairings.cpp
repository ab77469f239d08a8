#include "RandomPairings.h"

namespace tresktest {

namespace {

constexpr int kindsOfStep = 8;

/// A step by the bits of @p number.
tresk::Workflowstep namedStep(int number)
{
    const auto name = [number](int bit) { return QString::number(number >> bit & 1); };
    tresk::Workflowstep step;
    step.title = name(0);
    step.tool = name(1);
    step.description = name(2);
    return step;
}

void setDefaultPrices(RandomTrees& random, ModelProblem& problem)
{
    const tresk::WorkflowstepCosts costs;
    problem.prices.assign(kindsOfStep, {});
    for (int i = 0; i < kindsOfStep; ++i) {
        for (int j = 0; j < kindsOfStep; ++j)
            problem.prices[std::size_t(i)].push_back(costs.costs(namedStep(i), namedStep(j)));
    }
    // The fewer kinds there are, the more steps are the same.
    const int first = random.number(0, kindsOfStep - 1);
    const int last = random.number(first, kindsOfStep - 1);
    for (ModelTree* const tree : {&problem.tree1, &problem.tree2}) {
        for (int& step : tree->steps)
            step = random.number(first, last);
    }
}

void setPricesOfPairs(RandomTrees& random, ModelProblem& problem, float unit)
{
    const std::size_t count1 = problem.tree1.steps.size();
    const std::size_t count2 = problem.tree2.steps.size();
    const int lowest = -random.number(0, 1) * random.number(0, 60);
    problem.prices.assign(count1, std::vector<float>(count2));
    for (std::size_t i = 0; i < count1; ++i) {
        for (float& price : problem.prices[i])
            price = unit * float(random.number(lowest, 180));
    }
    for (ModelTree* const tree : {&problem.tree1, &problem.tree2}) {
        for (std::size_t i = 0; i < tree->steps.size(); ++i)
            tree->steps[i] = int(i);
    }
}

} // namespace

ModelProblem randomProblem(RandomTrees& random, int most, Prices prices)
{
    ModelProblem problem = random.problem(most);
    if (prices == Prices::Default)
        setDefaultPrices(random, problem);
    else if (prices != Prices::AsRandomTrees)
        setPricesOfPairs(random, problem, prices == Prices::Quarters ? 0.25F : 0.173F);
    return problem;
}

ComparedTrees::ComparedTrees(const ModelProblem& problem)
    : ComparedTrees(treeOf(problem.tree1), treeOf(problem.tree2), ModelCosts(problem))
{
}

ComparedTrees::ComparedTrees(const tresk::WorkflowTree& first, const tresk::WorkflowTree& second,
                             const tresk::WorkflowstepCosts& costs)
    : tree1(first)
    , tree2(second)
    , matrix(tree1, tree2, &costs)
    , expander(&tree1, &tree2, &matrix)
{
}

} // namespace tresktest
