#include "query/QuerySearch.h"

#include "query/GroupSearch.h"
#include "query/QueryPlan.h"

#include <algorithm>
#include <vector>

namespace tresk {

namespace {

/// The names of @p plan that the query gives.
std::vector<int> writtenNames(const QueryPlan& plan)
{
    std::vector<int> names;
    for (int name = 0; name < plan.names.size(); ++name) {
        if (!plan.isUnnamed(name))
            names.push_back(name);
    }
    return names;
}

bool haveDifferentRecords(const std::vector<int>& names, const std::vector<int>& chosen)
{
    std::vector<int> records;
    records.reserve(names.size());
    for (const int name : names)
        records.push_back(chosen[std::size_t(name)]);
    std::sort(records.begin(), records.end());
    return std::adjacent_find(records.begin(), records.end()) == records.end();
}

/// The groups of @p plan with names that the query gives, as one.
PlannedGroup groupOfWrittenNames(QueryPlan& plan)
{
    PlannedGroup joined;
    for (PlannedGroup& group : plan.groups) {
        if (!std::all_of(group.names.begin(), group.names.end(),
                         [&plan](int name) { return plan.isUnnamed(name); }))
            joined.add(std::move(group));
    }
    return joined;
}

} // namespace

std::optional<QueryBindings> searchBindings(const ConjunctiveNormalForm& form,
                                            const QList<Summary>& summaries)
{
    const std::vector<QueryRecord> records = recordsOf(summaries);
    QueryPlan plan(form, records);
    if (plan.isContradiction)
        return std::nullopt;

    // First each group by itself, as if two names could have one record: where this has no answer
    // there is none, and where the records are different, it is the answer.
    std::vector<int> chosen(std::size_t(plan.names.size()), noRecord);
    for (PlannedGroup& group : plan.groups) {
        if (!GroupSearch(group, plan, records, chosen, SharedRecords::Allowed).run())
            return std::nullopt;
    }
    const std::vector<int> written = writtenNames(plan);
    if (!haveDifferentRecords(written, chosen)) {
        PlannedGroup joined = groupOfWrittenNames(plan);
        if (!GroupSearch(joined, plan, records, chosen, SharedRecords::NotAllowed).run())
            return std::nullopt;
    }

    QueryBindings bindings;
    for (const int name : written) {
        const auto record = std::size_t(chosen[std::size_t(name)]);
        bindings.insert(plan.names.at(name), records[record].key());
    }
    return bindings;
}

} // namespace tresk
