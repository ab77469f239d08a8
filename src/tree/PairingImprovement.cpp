#include "tree/PairingImprovement.h"

#include <algorithm>

namespace tresk {

namespace {

constexpr long long mostDecisions = 200LL * 1000 * 1000; ///< in all attempts
constexpr double leastGain = 0.125; ///< more than what only decides between equal costs

PartialPairing completed(const PairingProblem& problem, const std::vector<int>& columns)
{
    PartialPairing pairing(problem);
    for (const int column : columns)
        pairing.decide(column);
    return pairing;
}

/// What to do with the row that has the column which another row gets.
enum Exchange { Swap, LeaveAlone };

class Improvement {
public:
    Improvement(const PairingProblem& problem, std::vector<int> columns)
        : m_problem(problem)
        , m_columns(std::move(columns))
        , m_costs(completed(problem, m_columns).costsOfAll())
        , m_attempts(mostDecisions / (problem.rows + problem.columns))
    {
    }

    const std::vector<int>& columns() const { return m_columns; }

    /// Tries everything once. False if nothing of it made the pairing cheaper.
    bool improve()
    {
        const double before = m_costs;
        for (int row = 0; row < m_problem.rows; ++row) {
            attempt(row, alone, LeaveAlone);
            for (int column = 0; column < m_problem.columns && m_attempts > 0; ++column) {
                attempt(row, column, Swap);
                if (m_columns[std::size_t(row)] != alone)
                    attempt(row, column, LeaveAlone);
            }
        }
        return m_costs < before;
    }

private:
    void attempt(int row, int column, Exchange exchange)
    {
        int& own = m_columns[std::size_t(row)];
        if (column == own)
            return;
        --m_attempts;
        std::vector<int> changed = m_columns;
        if (column != alone)
            std::replace(changed.begin(), changed.end(), column, exchange == Swap ? own : alone);
        changed[std::size_t(row)] = column;
        const double costs = completed(m_problem, changed).costsOfAll();
        if (costs < m_costs - leastGain) {
            m_columns = std::move(changed);
            m_costs = costs;
        }
    }

    const PairingProblem& m_problem;
    std::vector<int> m_columns;
    double m_costs;
    long long m_attempts;
};

} // namespace

PartialPairing improvedPairing(const PairingProblem& problem, std::vector<int> columns)
{
    Improvement improvement(problem, std::move(columns));
    while (improvement.improve()) { }
    return completed(problem, improvement.columns());
}

} // namespace tresk
