#include "query/QueryLiteral.h"

namespace tresk {

QueryLiteral::QueryLiteral(const CNFLiteral& literal, const std::vector<QueryRecord>& records,
                           const QDate& today)
    : m_records(&records)
    , m_isBoolean(literal.isBoolVariable())
    , m_isNegated(literal.isNegated())
    , m_isEvaluable(m_isBoolean ? literal.left().isVariable()
                                : !literal.left().isInvalid() && !literal.right().isInvalid())
    , m_comparison(literal.op(), today)
    , m_left(operandFrom(literal.left()))
    , m_right(operandFrom(literal.right()))
{
}

QueryLiteral::Operand QueryLiteral::operandFrom(const CNFOperand& operand)
{
    Operand made;
    if (operand.isVariable())
        made.attribute.emplace(operand.variableAttribute());
    else
        made.values.emplace_back(operand.string());
    return made;
}

void QueryLiteral::keepValues()
{
    for (Operand* operand : {&m_left, &m_right}) {
        if (operand->attribute)
            operand->kept.resize(m_records->size());
    }
}

Outcome QueryLiteral::evaluate(std::size_t left, std::size_t right)
{
    if (!m_isBoolean && !m_comparison.isKnown())
        return Outcome::False; // also if negated
    if (!m_isEvaluable)
        return Outcome::Unknown;
    if (m_isBoolean) {
        const auto isTrue = [](const QString& value) { return value == QLatin1String("true"); };
        return outcome(m_left.attribute->anyValue((*m_records)[left], isTrue));
    }
    const bool streamed = m_left.attribute && m_left.kept.empty();
    bool holds = false;
    if (streamed) {
        Values& rightValues = valuesOf(m_right, right);
        holds = m_left.attribute->anyValue((*m_records)[left], [&](const QString& value) {
            Values single{ComparedText(value)};
            return holdsForAny(single, rightValues);
        });
    } else {
        holds = holdsForAny(valuesOf(m_left, left), valuesOf(m_right, right));
    }
    return outcome(holds != m_comparison.isNegation());
}

QueryLiteral::Values& QueryLiteral::valuesOf(Operand& operand, std::size_t record) const
{
    if (!operand.attribute)
        return operand.values;
    if (operand.kept.empty())
        return operand.values = read(operand, record);
    std::optional<Values>& kept = operand.kept[record];
    if (!kept)
        kept = read(operand, record);
    return *kept;
}

QueryLiteral::Values QueryLiteral::read(const Operand& operand, std::size_t record) const
{
    Values values;
    operand.attribute->anyValue((*m_records)[record], [&values](const QString& value) {
        values.emplace_back(value);
        return false;
    });
    return values;
}

bool QueryLiteral::holdsForAny(Values& left, Values& right) const
{
    for (ComparedText& leftValue : left) {
        for (ComparedText& rightValue : right) {
            if (m_comparison.holds(leftValue, rightValue))
                return true;
        }
    }
    return false;
}

Outcome QueryLiteral::outcome(bool holds) const
{
    return holds != m_isNegated ? Outcome::True : Outcome::False;
}

} // namespace tresk
