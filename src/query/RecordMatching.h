#ifndef TRESK_QUERY_RECORDMATCHING_H
#define TRESK_QUERY_RECORDMATCHING_H

#include <vector>

namespace tresk {

/// Whether there is a record of its own, which is not held already, for each of some names: one of
/// the name's @p candidates. For few names with few candidates: calls itself as deep as there are
/// names.
bool haveOwnRecords(const std::vector<const std::vector<int>*>& candidates,
                    const std::vector<bool>& held);

} // namespace tresk

#endif
