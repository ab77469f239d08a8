#ifndef TRESK_QUERY_GROUPSEARCH_H
#define TRESK_QUERY_GROUPSEARCH_H

#include "query/QueryPlan.h"

#include <optional>
#include <vector>

namespace tresk {

/// The record of a name that has none.
constexpr int noRecord = -1;

/// Whether two names that the query gives may stand for the same record.
enum class SharedRecords { Allowed, NotAllowed };

/// A depth-first search over the names of a group, which gives each in turn a record.
///
/// Of the records with which a name cannot lead to an answer most are known beforehand: where no
/// more literals hold with a record than with one that has failed, it fails, too. (A name that is
/// compared with a later one is left out of this, since there the record itself counts.) And a
/// record is not given to a name where the later ones would not all find one of their own.
class GroupSearch {
public:
    /// @p chosen has the record of each name of the plan. All of them must outlive the object.
    GroupSearch(PlannedGroup& group, const QueryPlan& plan, const std::vector<QueryRecord>& records,
                std::vector<int>& chosen, SharedRecords sharing);

    /// Fills in the chosen records of the group's names, the first that lead to an answer; false
    /// if there is none.
    bool run();

private:
    using Disjunctions = std::vector<PlannedDisjunction*>;
    /// Which of a level's literals are not false.
    using Outcomes = std::vector<bool>;

    /// A literal in a disjunction of several names, by the place of that.
    struct JointLiteral {
        PlannedLiteral* literal;
        std::size_t disjunction;
    };

    /// What concerns one name of the group.
    struct Level {
        std::size_t name = 0;
        bool isExclusive = false; ///< it does not share its record with other such names
        std::size_t laterExclusive = 0; ///< number of such names behind it
        bool isComparedLater = false; ///< with a later name
        Disjunctions own; ///< those of this name alone
        std::vector<JointLiteral> literals; ///< of which this is the last name
        std::vector<std::size_t> ending; ///< disjunctions of several names, of which it is the last
        /// The records with which its own hold, unless that is to be found out each time.
        std::optional<std::vector<int>> candidates;
        // Of the search so far:
        std::size_t next = 0; ///< the place of the next candidate to be tried
        Outcomes outcomes; ///< with the chosen record
        std::vector<Outcomes> failed; ///< with records that have led to nothing
    };

    void addJoint(PlannedDisjunction& disjunction);
    Level& levelOf(int name);
    bool leaveEnough(std::size_t from) const;
    bool prepare();
    bool findScarce();
    void keepValues(const Level& level, std::size_t& kept) const;
    bool advance(Level& level);
    void takeBack(Level& level);
    bool accept(Level& level, int record);
    bool isHopeless(const Level& level, const Outcomes& outcomes) const;
    bool allHold(const Disjunctions& disjunctions);
    bool isNotFalse(PlannedLiteral& literal);

    const std::vector<QueryRecord>& m_records;
    std::vector<int>& m_chosen;
    std::vector<bool> m_held; ///< by record: an exclusive name has it
    std::vector<Level> m_levels;
    /// Levels of exclusive names with fewer candidates than there are such names: the others will
    /// find a record in any case. Empty where there are too many of them to be looked after.
    std::vector<std::size_t> m_scarce;
    std::vector<int> m_satisfied; ///< by disjunction of several names: literals that are not false
};

} // namespace tresk

#endif
