#ifndef TRESK_BENCHMARKS_ASSIGNMENT_H
#define TRESK_BENCHMARKS_ASSIGNMENT_H

#include <cstddef>
#include <limits>
#include <vector>

namespace treskbench {

/// The lowest cost of pairing each of @p n rows with one of @p n columns, by successive shortest
/// paths (the Hungarian method): cubic time. @p cost has the price of a row and a column.
template <typename Cost>
double assignmentCost(int n, Cost cost)
{
    const double infinite = std::numeric_limits<double>::infinity();
    const auto size = std::size_t(n) + 1; // place 0 stands for none
    std::vector<double> rowPotential(size, 0);
    std::vector<double> columnPotential(size, 0);
    std::vector<std::size_t> rowOf(size, 0); // by column
    for (std::size_t row = 1; row < size; ++row) {
        std::vector<double> distance(size, infinite);
        std::vector<std::size_t> before(size, 0);
        std::vector<bool> done(size, false);
        std::size_t column = 0;
        rowOf[0] = row;
        do {
            done[column] = true;
            const std::size_t current = rowOf[column];
            double step = infinite;
            std::size_t next = 0;
            for (std::size_t j = 1; j < size; ++j) {
                if (done[j])
                    continue;
                const double reduced = cost(int(current) - 1, int(j) - 1) - rowPotential[current]
                    - columnPotential[j];
                if (reduced < distance[j]) {
                    distance[j] = reduced;
                    before[j] = column;
                }
                if (distance[j] < step) {
                    step = distance[j];
                    next = j;
                }
            }
            for (std::size_t j = 0; j < size; ++j) {
                if (done[j]) {
                    rowPotential[rowOf[j]] += step;
                    columnPotential[j] -= step;
                } else {
                    distance[j] -= step;
                }
            }
            column = next;
        } while (rowOf[column] != 0);
        for (; column != 0; column = before[column])
            rowOf[column] = rowOf[before[column]];
    }
    double sum = 0;
    for (std::size_t j = 1; j < size; ++j)
        sum += cost(int(rowOf[j]) - 1, int(j) - 1);
    return sum;
}

} // namespace treskbench

#endif
