#ifndef TRESK_QUERY_QUERYLITERAL_H
#define TRESK_QUERY_QUERYLITERAL_H

#include "query/QueryComparison.h"
#include "query/QueryRecords.h"

#include <tresk/ConjunctiveNormalForm.h>

#include <array>
#include <optional>
#include <vector>

namespace tresk {

/// What is known of a literal once all names that it uses stand for records.
enum class Outcome {
    Unknown, ///< it cannot be evaluated, which is as good as true
    True,
    False
};

/// A literal of a normal form, made ready for being evaluated often.
class QueryLiteral {
public:
    /// @p records is what the names stand for, and has to outlive the literal.
    QueryLiteral(const CNFLiteral& literal, const std::vector<QueryRecord>& records,
                 const QDate& today);

    /// Keeps what it works out about the values of each record: worth it where records are met
    /// again and again.
    void keepValues();

    /// The outcome where the left operand is read from the record at place @p left, the right one
    /// from that at @p right. A place is not used where the operand is no variable.
    Outcome evaluate(std::size_t left, std::size_t right);

private:
    using Values = std::vector<ComparedText>;

    /// One side of a comparison.
    struct Operand {
        std::optional<QueryAttribute> attribute; ///< none for a constant text
        Values values; ///< of the constant, or of the record read last
        std::vector<std::optional<Values>> kept; ///< by record; empty where nothing is kept
    };

    static Operand operandFrom(const CNFOperand& operand);
    Values& valuesOf(Operand& operand, std::size_t record) const;
    Values read(const Operand& operand, std::size_t record) const;
    bool holdsForAny(Values& left, Values& right) const;
    Outcome outcome(bool holds) const;

    const std::vector<QueryRecord>* m_records;
    bool m_isBoolean;
    bool m_isNegated;
    bool m_isEvaluable;
    QueryComparison m_comparison;
    Operand m_left;
    Operand m_right;
};

} // namespace tresk

#endif
