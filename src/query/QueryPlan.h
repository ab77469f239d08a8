#ifndef TRESK_QUERY_QUERYPLAN_H
#define TRESK_QUERY_QUERYPLAN_H

#include "query/QueryLiteral.h"

#include <tresk/ConjunctiveNormalForm.h>

#include <QString>
#include <QStringList>

#include <vector>

namespace tresk {

/// A literal with the names it uses, by number; -1 where an operand has none.
struct PlannedLiteral {
    QueryLiteral literal;
    int leftName;
    int rightName;
    /// Of both, the one that gets its record last; -1 for a literal without names.
    int lastName() const { return std::max(leftName, rightName); }
    bool hasTwoNames() const { return leftName >= 0 && rightName >= 0 && leftName != rightName; }
};

/// Literals of which one has to hold.
struct PlannedDisjunction {
    std::vector<PlannedLiteral> literals;
    std::vector<int> names; ///< ascending
};

/// Names that share disjunctions, so that a record for one bears on the others.
struct PlannedGroup {
    std::vector<int> names; ///< ascending
    std::vector<PlannedDisjunction> disjunctions;

    /// Adds the names and disjunctions of @p group.
    void add(PlannedGroup group);
};

/// How a normal form is searched: its names in the order of their first appearance, in groups that
/// do not bear on each other, but for the records that they take from each other.
struct QueryPlan {
    QueryPlan(const ConjunctiveNormalForm& form, const std::vector<QueryRecord>& records);

    /// Whether the name @p name was not given by the query but by the library.
    bool isUnnamed(int name) const { return names.at(name).startsWith(QLatin1Char('@')); }

    /// Whether a disjunction is false whatever the names stand for.
    bool isContradiction = false;
    QStringList names;
    std::vector<PlannedGroup> groups;
};

} // namespace tresk

#endif
