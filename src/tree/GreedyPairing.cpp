#include "tree/GreedyPairing.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace tresk {

GreedyPairing greedyPairing(const PairingProblem& problem)
{
    PartialPairing pairing(problem);
    const double leftOver = pairing.aloneColumnCost();
    double bound = leftOver * problem.columns; // if each row could have the column that it wants
    // For a number of pairs that is odd, or even, instead.
    double leastExtra = pairing.oddDiscount();
    int pairs = 0;
    while (!pairing.isComplete()) {
        const int row = pairing.firstOpenRow();
        int cheapest = alone;
        double cost = pairing.aloneRowCost(row);
        double lowest = std::numeric_limits<double>::infinity(); // of all columns
        for (int column = 0; column < problem.columns; ++column) {
            lowest = std::min(lowest, problem.price(row, column) - leftOver);
            if (!pairing.isOpenColumn(column))
                continue;
            if (pairing.pairCost(row, column) - leftOver < cost) {
                cheapest = column;
                cost = pairing.pairCost(row, column) - leftOver;
            }
        }
        bound += std::min(lowest, problem.aloneCost);
        pairs += lowest < problem.aloneCost ? 1 : 0;
        leastExtra = std::min(leastExtra, std::abs(lowest - problem.aloneCost));
        pairing.decide(cheapest);
    }
    const bool isOdd = (problem.columns - pairs) % 2 != 0;
    bound -= pairing.oddDiscount() - (isOdd ? 0 : leastExtra);
    return {std::move(pairing), bound};
}

} // namespace tresk
