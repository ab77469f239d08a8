#include "query/QueryComparison.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace tresk {

namespace {

using Text = ComparedText;

bool isEqual(Text& left, Text& right, const QDate& /*today*/)
{
    return left.lower() == right.lower();
}

bool contains(Text& left, Text& right, const QDate& /*today*/)
{
    return left.lower().contains(right.lower());
}

bool matches(Text& left, Text& right, const QDate& /*today*/)
{
    return right.pattern().matches(left.lower());
}

/// Dates before numbers: the text of a date begins like a number, too.
template <typename Order>
bool isOrdered(Text& left, Text& right, const QDate& today)
{
    if (left.date(today) && right.date(today))
        return Order()(*left.date(today), *right.date(today));
    return left.number() && right.number() && Order()(*left.number(), *right.number());
}

/// Within a hundredth of the larger one. Two zeros are not: their quotient is no number.
bool isApproximately(Text& left, Text& right, const QDate& /*today*/)
{
    if (!left.number() || !right.number())
        return false;
    const float a = *left.number();
    const float b = *right.number();
    return double(std::fabs(a - b)) / double(std::max(a, b)) < double(0.01F);
}

} // namespace

const std::optional<float>& ComparedText::number()
{
    if (!m_number)
        m_number = readNumber(m_text);
    return *m_number;
}

const std::optional<QDateTime>& ComparedText::date(const QDate& today)
{
    if (!m_date)
        m_date = readDate(m_text, today);
    return *m_date;
}

const WildcardPattern& ComparedText::pattern()
{
    if (!m_pattern)
        m_pattern = std::make_shared<WildcardPattern>(lower());
    return *m_pattern;
}

QueryComparison::QueryComparison(const QString& op, const QDate& today)
    : m_isNegation(op == QLatin1String("!="))
    , m_today(today)
{
    if (op == QLatin1String("==") || m_isNegation)
        m_function = isEqual;
    else if (op == QLatin1String("<"))
        m_function = isOrdered<std::less<>>;
    else if (op == QLatin1String("<="))
        m_function = isOrdered<std::less_equal<>>;
    else if (op == QLatin1String(">"))
        m_function = isOrdered<std::greater<>>;
    else if (op == QLatin1String(">="))
        m_function = isOrdered<std::greater_equal<>>;
    else if (op == QLatin1String("%contains"))
        m_function = contains;
    else if (op == QLatin1String("%matches"))
        m_function = matches;
    else if (op == QLatin1String("%isapprox"))
        m_function = isApproximately;
}

} // namespace tresk
