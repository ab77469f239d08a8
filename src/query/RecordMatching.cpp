#include "query/RecordMatching.h"

#include <cstddef>
#include <map>
#include <set>

namespace tresk {

namespace {

/// Bipartite matching by augmenting paths.
class Matching {
public:
    Matching(const std::vector<const std::vector<int>*>& candidates, const std::vector<bool>& held)
        : m_candidates(candidates)
        , m_held(held)
    {
    }

    bool isComplete()
    {
        for (std::size_t name = 0; name < m_candidates.size(); ++name) {
            m_tried.clear();
            if (!findRecord(name))
                return false;
        }
        return true;
    }

private:
    /// Gives the name a record, if need be that of a name which takes another one instead.
    bool findRecord(std::size_t name)
    {
        for (const int record : *m_candidates[name]) {
            if (m_held[std::size_t(record)] || !m_tried.insert(record).second)
                continue;
            const auto owner = m_owners.find(record);
            if (owner == m_owners.end() || findRecord(owner->second)) {
                m_owners[record] = name;
                return true;
            }
        }
        return false;
    }

    const std::vector<const std::vector<int>*>& m_candidates;
    const std::vector<bool>& m_held;
    std::map<int, std::size_t> m_owners; ///< names by their records
    std::set<int> m_tried; ///< records, for the current name
};

} // namespace

bool haveOwnRecords(const std::vector<const std::vector<int>*>& candidates,
                    const std::vector<bool>& held)
{
    return Matching(candidates, held).isComplete();
}

} // namespace tresk
