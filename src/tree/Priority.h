#ifndef TRESK_TREE_PRIORITY_H
#define TRESK_TREE_PRIORITY_H

#include <limits>

namespace tresk {

/// The priority of a path that costs @p cost: the cost without its fraction; the smallest int where
/// that does not fit one.
inline int priorityOf(float cost)
{
    const bool fits = cost >= -2147483648.0F && cost < 2147483648.0F;
    return fits ? int(cost) : std::numeric_limits<int>::min();
}

} // namespace tresk

#endif
