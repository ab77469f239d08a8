#include "query/GroupSearch.h"

#include "query/RecordMatching.h"

#include <algorithm>

namespace tresk {

namespace {

/// Values and candidates are kept up to so many entries, some 100 MB; the rest is worked out
/// whenever it is needed.
constexpr std::size_t mostKept = 2000000;
/// So many failures are remembered; there are few different ones, but for odd queries.
constexpr std::size_t mostFailures = 64;
constexpr std::size_t mostScarce = 64;

} // namespace

GroupSearch::GroupSearch(PlannedGroup& group, const QueryPlan& plan,
                         const std::vector<QueryRecord>& records, std::vector<int>& chosen,
                         SharedRecords sharing)
    : m_records(records)
    , m_chosen(chosen)
    , m_held(records.size(), false)
{
    m_levels.resize(group.names.size());
    std::size_t exclusive = 0;
    for (std::size_t i = group.names.size(); i-- > 0;) {
        Level& level = m_levels[i];
        level.name = std::size_t(group.names[i]);
        m_chosen[level.name] = noRecord;
        level.isExclusive = sharing == SharedRecords::NotAllowed && !plan.isUnnamed(group.names[i]);
        level.laterExclusive = exclusive;
        exclusive += level.isExclusive ? 1 : 0;
    }
    for (PlannedDisjunction& disjunction : group.disjunctions) {
        if (disjunction.names.size() == 1)
            levelOf(disjunction.names.front()).own.push_back(&disjunction);
        else
            addJoint(disjunction);
    }
}

void GroupSearch::addJoint(PlannedDisjunction& disjunction)
{
    const std::size_t place = m_satisfied.size();
    m_satisfied.push_back(0);
    levelOf(disjunction.names.back()).ending.push_back(place);
    for (PlannedLiteral& literal : disjunction.literals) {
        levelOf(literal.lastName()).literals.push_back({&literal, place});
        if (literal.hasTwoNames())
            levelOf(std::min(literal.leftName, literal.rightName)).isComparedLater = true;
    }
}

GroupSearch::Level& GroupSearch::levelOf(int name)
{
    return *std::lower_bound(
        m_levels.begin(), m_levels.end(), std::size_t(name),
        [](const Level& level, std::size_t wanted) { return level.name < wanted; });
}

bool GroupSearch::run()
{
    if (m_levels.empty())
        return true;
    if (!prepare() || !findScarce() || !leaveEnough(0))
        return false;
    std::size_t level = 0;
    for (;;) {
        if (advance(m_levels[level])) {
            if (!leaveEnough(level + 1))
                continue;
            if (++level == m_levels.size())
                return true;
        } else if (level-- == 0) {
            return false;
        }
    }
}

/// Finds the candidates of all names but the first, whose records are met once only, so that
/// nothing is searched in vain.
bool GroupSearch::prepare()
{
    std::size_t kept = 0;
    for (std::size_t i = 1; i < m_levels.size(); ++i) {
        Level& level = m_levels[i];
        keepValues(level, kept);
        if (kept > mostKept || level.own.empty())
            continue;
        std::vector<int> candidates;
        for (int record = 0; record < int(m_records.size()); ++record) {
            m_chosen[level.name] = record;
            if (allHold(level.own))
                candidates.push_back(record);
        }
        m_chosen[level.name] = noRecord;
        kept += candidates.size();
        if (candidates.empty())
            return false;
        level.candidates = std::move(candidates);
    }
    return true;
}

/// Finds the names that may be short of records; false if there are not enough records at all.
bool GroupSearch::findScarce()
{
    const auto exclusive = std::size_t(std::count_if(
        m_levels.begin(), m_levels.end(), [](const Level& level) { return level.isExclusive; }));
    for (std::size_t i = 0; i < m_levels.size(); ++i) {
        const Level& level = m_levels[i];
        if (level.isExclusive && level.candidates && level.candidates->size() < exclusive)
            m_scarce.push_back(i);
    }
    if (m_scarce.size() > mostScarce)
        m_scarce.clear();
    return exclusive <= m_records.size();
}

/// Whether the names from level @p from on can all have records of their own, as far as each is
/// known by itself.
bool GroupSearch::leaveEnough(std::size_t from) const
{
    std::vector<const std::vector<int>*> candidates;
    for (const std::size_t i : m_scarce) {
        if (i >= from)
            candidates.push_back(&*m_levels[i].candidates);
    }
    return haveOwnRecords(candidates, m_held);
}

void GroupSearch::keepValues(const Level& level, std::size_t& kept) const
{
    for (const JointLiteral& joint : level.literals) {
        if (kept > mostKept)
            return;
        joint.literal->literal.keepValues();
        kept += 2 * m_records.size();
    }
}

/// Gives the name of @p level the next record with which nothing is false.
bool GroupSearch::advance(Level& level)
{
    if (m_chosen[level.name] != noRecord)
        takeBack(level);
    const std::size_t count = level.candidates ? level.candidates->size() : m_records.size();
    while (level.next < count) {
        const std::size_t place = level.next++;
        if (accept(level, level.candidates ? (*level.candidates)[place] : int(place)))
            return true;
    }
    level.next = 0;
    level.failed.clear();
    return false;
}

/// Takes the record of @p level, which has led to nothing, from it.
void GroupSearch::takeBack(Level& level)
{
    if (level.isExclusive)
        m_held[std::size_t(m_chosen[level.name])] = false;
    m_chosen[level.name] = noRecord;
    for (std::size_t i = 0; i < level.literals.size(); ++i)
        m_satisfied[level.literals[i].disjunction] -= level.outcomes[i] ? 1 : 0;
    if (!level.isComparedLater && level.failed.size() < mostFailures)
        level.failed.push_back(level.outcomes);
}

/// Gives the name of @p level the record, unless something is false with it or it is known to lead
/// to nothing.
bool GroupSearch::accept(Level& level, int record)
{
    if (level.isExclusive && m_held[std::size_t(record)])
        return false;
    m_chosen[level.name] = record;
    bool holds = level.candidates || allHold(level.own);
    if (holds) {
        level.outcomes.clear();
        for (const JointLiteral& joint : level.literals)
            level.outcomes.push_back(isNotFalse(*joint.literal));
        holds = !isHopeless(level, level.outcomes);
    }
    if (!holds) {
        m_chosen[level.name] = noRecord;
        return false;
    }
    for (std::size_t i = 0; i < level.literals.size(); ++i)
        m_satisfied[level.literals[i].disjunction] += level.outcomes[i] ? 1 : 0;
    if (level.isExclusive)
        m_held[std::size_t(record)] = true;
    return true;
}

/// Whether @p outcomes leave a disjunction false, or have been tried before, or better ones.
bool GroupSearch::isHopeless(const Level& level, const Outcomes& outcomes) const
{
    for (const std::size_t disjunction : level.ending) {
        bool satisfied = m_satisfied[disjunction] > 0;
        for (std::size_t i = 0; i < outcomes.size() && !satisfied; ++i)
            satisfied = outcomes[i] && level.literals[i].disjunction == disjunction;
        if (!satisfied)
            return true;
    }
    // An exclusive name may have failed because its record was missing to later ones. With one
    // failure more than there are those, one of the records was not.
    const std::size_t needed = level.isExclusive ? level.laterExclusive + 1 : 1;
    const auto wasAtLeastAsGood = [&outcomes](const Outcomes& failed) {
        for (std::size_t i = 0; i < outcomes.size(); ++i) {
            if (outcomes[i] && !failed[i])
                return false;
        }
        return true;
    };
    const auto failures = std::count_if(level.failed.begin(), level.failed.end(), wasAtLeastAsGood);
    return std::size_t(failures) >= needed;
}

bool GroupSearch::allHold(const Disjunctions& disjunctions)
{
    return std::all_of(
        disjunctions.begin(), disjunctions.end(), [this](PlannedDisjunction* disjunction) {
            return std::any_of(disjunction->literals.begin(), disjunction->literals.end(),
                               [this](PlannedLiteral& literal) { return isNotFalse(literal); });
        });
}

bool GroupSearch::isNotFalse(PlannedLiteral& literal)
{
    const auto recordOf = [this](int name) {
        return name < 0 ? 0 : std::size_t(m_chosen[std::size_t(name)]);
    };
    return literal.literal.evaluate(recordOf(literal.leftName), recordOf(literal.rightName))
        != Outcome::False;
}

} // namespace tresk
