#ifndef TRESK_TESTS_TABLEORDER_H
#define TRESK_TESTS_TABLEORDER_H

#include <vector>

namespace tresktest {

/// The keys of a table in its order, after they were put into it in the order of @p inserted.
/// Replays every single insertion; up to 65537 keys.
std::vector<int> tableOrder(const std::vector<int>& inserted);

} // namespace tresktest

#endif
