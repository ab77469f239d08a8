#ifndef TRESK_QUERY_QUERYCOMPARISON_H
#define TRESK_QUERY_QUERYCOMPARISON_H

#include "query/QueryValues.h"
#include "query/WildcardPattern.h"

#include <QString>

#include <memory>
#include <optional>

namespace tresk {

/// A text that is compared, perhaps many times; what that needs is worked out once.
class ComparedText {
public:
    explicit ComparedText(const QString& text)
        : m_text(text)
    {
    }

    const QString& lower()
    {
        if (!m_lower)
            m_lower = m_text.toLower();
        return *m_lower;
    }
    const std::optional<float>& number();
    const std::optional<QDateTime>& date(const QDate& today);
    const WildcardPattern& pattern();

private:
    QString m_text;
    std::optional<QString> m_lower;
    std::optional<std::optional<float>> m_number;
    std::optional<std::optional<QDateTime>> m_date;
    std::shared_ptr<const WildcardPattern> m_pattern;
};

/// The operators that compare two texts.
class QueryComparison {
public:
    /// The operator written @p op; @p today is the day of times without a date.
    QueryComparison(const QString& op, const QDate& today);

    /// Whether there is such an operator.
    bool isKnown() const { return m_function != nullptr; }
    /// Whether the operator holds where holds() is false: of "!=", which is that "==" is false.
    bool isNegation() const { return m_isNegation; }
    /// Whether the comparison holds of these two. Neither case nor anything but text counts, save
    /// where both are dates, or else numbers.
    bool holds(ComparedText& left, ComparedText& right) const
    {
        return m_function(left, right, m_today);
    }

private:
    bool (*m_function)(ComparedText& left, ComparedText& right, const QDate& today) = nullptr;
    bool m_isNegation = false;
    QDate m_today;
};

} // namespace tresk

#endif
