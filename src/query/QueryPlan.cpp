#include "query/QueryPlan.h"

#include <QHash>

#include <algorithm>
#include <iterator>
#include <numeric>

namespace tresk {

namespace {

/// Sets of names that grow together (union-find).
class NameSets {
public:
    explicit NameSets(int count)
        : m_parents(std::size_t(count))
    {
        std::iota(m_parents.begin(), m_parents.end(), 0);
    }

    /// The smallest name of the set of @p name.
    int first(int name)
    {
        while (parent(name) != name) {
            parent(name) = parent(parent(name));
            name = parent(name);
        }
        return name;
    }

    void join(int a, int b)
    {
        const auto [smaller, larger] = std::minmax({first(a), first(b)});
        parent(larger) = smaller;
    }

private:
    int& parent(int name) { return m_parents[std::size_t(name)]; }

    std::vector<int> m_parents;
};

class Planner {
public:
    Planner(const ConjunctiveNormalForm& form, const std::vector<QueryRecord>& records)
        : m_form(form)
        , m_records(records)
    {
    }

    void run(QueryPlan& plan)
    {
        std::vector<PlannedDisjunction> disjunctions;
        for (int i = 0; i < m_form.numDisjunctions(); ++i) {
            PlannedDisjunction disjunction = planned(*m_form.disjunctionAt(i));
            if (m_isAlwaysTrue)
                continue;
            plan.isContradiction |= disjunction.literals.empty();
            disjunctions.push_back(std::move(disjunction));
        }
        plan.names = m_names;
        if (!plan.isContradiction)
            makeGroups(plan, std::move(disjunctions));
    }

private:
    /// The literals of @p disjunction that depend on records; notes whether those that do not
    /// decide it.
    PlannedDisjunction planned(const CNFDisjunction& disjunction)
    {
        PlannedDisjunction made;
        m_isAlwaysTrue = false;
        for (int i = 0; i < disjunction.numLiterals(); ++i) {
            const CNFLiteral& source = *disjunction.literalAt(i);
            const int left = nameOf(source.left());
            const int right = nameOf(source.right());
            PlannedLiteral literal{QueryLiteral(source, m_records, m_today), left, right};
            const bool hasInvalidOperand = source.isPredicate()
                && (source.left().isInvalid() || source.right().isInvalid());
            if (literal.lastName() >= 0 && !hasInvalidOperand)
                made.literals.push_back(std::move(literal));
            else if (literal.literal.evaluate(0, 0) != Outcome::False)
                m_isAlwaysTrue = true;
        }
        made.names = namesOf(made.literals);
        return made;
    }

    int nameOf(const CNFOperand& operand)
    {
        if (!operand.isVariable())
            return -1;
        const auto known = m_numbers.constFind(operand.variableName());
        if (known != m_numbers.constEnd())
            return *known;
        const int number = int(m_names.size());
        m_numbers.insert(operand.variableName(), number);
        m_names.append(operand.variableName());
        return number;
    }

    static std::vector<int> namesOf(const std::vector<PlannedLiteral>& literals)
    {
        std::vector<int> names;
        for (const PlannedLiteral& literal : literals) {
            for (const int name : {literal.leftName, literal.rightName}) {
                if (name >= 0)
                    names.push_back(name);
            }
        }
        std::sort(names.begin(), names.end());
        names.erase(std::unique(names.begin(), names.end()), names.end());
        return names;
    }

    void makeGroups(QueryPlan& plan, std::vector<PlannedDisjunction> disjunctions) const
    {
        NameSets sets(int(m_names.size()));
        for (const PlannedDisjunction& disjunction : disjunctions) {
            for (const int name : disjunction.names)
                sets.join(disjunction.names.front(), name);
        }

        std::vector<int> groupOf(std::size_t(m_names.size()), -1); // by first name
        for (int name = 0; name < m_names.size(); ++name) {
            int& group = groupOf[std::size_t(sets.first(name))];
            if (group < 0) {
                group = int(plan.groups.size());
                plan.groups.emplace_back();
            }
            plan.groups[std::size_t(group)].names.push_back(name);
        }
        for (PlannedDisjunction& disjunction : disjunctions) {
            const int group = groupOf[std::size_t(sets.first(disjunction.names.front()))];
            plan.groups[std::size_t(group)].disjunctions.push_back(std::move(disjunction));
        }
    }

    const ConjunctiveNormalForm& m_form;
    const std::vector<QueryRecord>& m_records;
    QDate m_today = today();
    QHash<QString, int> m_numbers;
    QStringList m_names;
    bool m_isAlwaysTrue = false; ///< the disjunction planned last
};

} // namespace

void PlannedGroup::add(PlannedGroup group)
{
    names.insert(names.end(), group.names.begin(), group.names.end());
    std::sort(names.begin(), names.end());
    std::move(group.disjunctions.begin(), group.disjunctions.end(),
              std::back_inserter(disjunctions));
}

QueryPlan::QueryPlan(const ConjunctiveNormalForm& form, const std::vector<QueryRecord>& records)
{
    Planner(form, records).run(*this);
}

} // namespace tresk
