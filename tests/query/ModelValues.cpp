#include "ModelValues.h"

#include <QDateTime>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <optional>

namespace tresktest {

namespace {

using DateAndTime = std::pair<QDate, QTime>;

std::optional<float> numberIn(const QString& text)
{
    static const QRegularExpression number(QStringLiteral("\\A[+-]?[0-9.,]+(e[+-]?[0-9]+)?"));
    QString rest = text.toLower();
    float factor = 1;
    for (const char* suffix : {"kb", "mb", "gb"}) {
        const QLatin1String end(suffix);
        if (rest.endsWith(end)) {
            rest.chop(2);
            factor = end == QLatin1String("kb") ? 1024.0F
                : end == QLatin1String("mb")    ? 1048576.0F
                                                : 1073741824.0F;
            break;
        }
    }
    const QRegularExpressionMatch match = number.match(rest);
    bool isNumber = false;
    const float value = match.captured().toFloat(&isNumber);
    if (!match.hasMatch() || !isNumber)
        return std::nullopt;
    return value * factor;
}

std::optional<DateAndTime> dateIn(const QString& text)
{
    const QString date = QStringLiteral("(?:([0-9]{2}|[0-9]{4})-([0-9]{1,2})-([0-9]{1,2}))");
    const QString time = QStringLiteral("(?:([0-9]{1,2}):([0-9]{1,2})(?::([0-9]{1,2}))?)");
    static const QRegularExpression both(QStringLiteral("\\A%1 +%2").arg(date, time));
    static const QRegularExpression dateOnly(QStringLiteral("\\A") + date);
    static const QRegularExpression timeOnly(QStringLiteral("\\A") + time);
    const auto dateFrom = [](const QRegularExpressionMatch& match) {
        return QDate(match.captured(1).toInt(), match.captured(2).toInt(),
                     match.captured(3).toInt());
    };
    const auto timeFrom = [](const QRegularExpressionMatch& match, int first) {
        return QTime(match.captured(first).toInt(), match.captured(first + 1).toInt(),
                     match.captured(first + 2).toInt());
    };
    DateAndTime result;
    const QRegularExpressionMatch asBoth = both.match(text);
    const QRegularExpressionMatch asDate = dateOnly.match(text);
    const QRegularExpressionMatch asTime = timeOnly.match(text);
    if (asBoth.hasMatch())
        result = {dateFrom(asBoth), timeFrom(asBoth, 4)};
    else if (asDate.hasMatch())
        result = {dateFrom(asDate), QTime(0, 0)};
    else if (asTime.hasMatch())
        result = {QDateTime::currentDateTimeUtc().date(), timeFrom(asTime, 1)};
    if (!result.first.isValid() || !result.second.isValid())
        return std::nullopt;
    return result;
}

/// Of sets it knows "[abc]", "[a-c]" and either with "^"; what is not closed matches nothing.
bool isMatch(const QString& pattern, const QString& text)
{
    if (pattern.isEmpty())
        return text.isEmpty();
    const QChar first = pattern.at(0);
    const QString rest = pattern.mid(1);
    if (first == QLatin1Char('*'))
        return isMatch(rest, text) || (!text.isEmpty() && isMatch(pattern, text.mid(1)));
    if (text.isEmpty())
        return false;
    if (first != QLatin1Char('['))
        return (first == QLatin1Char('?') || first == text.at(0)) && isMatch(rest, text.mid(1));
    const int end = int(rest.indexOf(QLatin1Char(']')));
    if (end < 0)
        return false;
    QString set = rest.left(end);
    const bool isComplement = set.startsWith(QLatin1Char('^'));
    if (isComplement)
        set.remove(0, 1);
    const bool isRange = set.size() == 3 && set.at(1) == QLatin1Char('-');
    const bool isIn = isRange ? set.at(0) <= text.at(0) && text.at(0) <= set.at(2)
                              : set.contains(text.at(0));
    return isIn != isComplement && isMatch(rest.mid(end + 1), text.mid(1));
}

template <typename Value>
bool inOrder(const Value& left, const QString& op, const Value& right)
{
    if (op == QLatin1String("<"))
        return left < right;
    if (op == QLatin1String("<="))
        return !(right < left);
    if (op == QLatin1String(">"))
        return right < left;
    return !(left < right);
}

} // namespace

bool modelHolds(const QString& left, const QString& op, const QString& right)
{
    if (op == QLatin1String("=="))
        return left.toLower() == right.toLower();
    if (op == QLatin1String("%contains"))
        return left.toLower().contains(right.toLower());
    if (op == QLatin1String("%matches"))
        return isMatch(right.toLower(), left.toLower());
    const std::optional<float> a = numberIn(left);
    const std::optional<float> b = numberIn(right);
    if (op == QLatin1String("%isapprox"))
        return a && b && double(std::fabs(*a - *b) / std::max(*a, *b)) < double(0.01F);
    const std::optional<DateAndTime> leftDate = dateIn(left);
    const std::optional<DateAndTime> rightDate = dateIn(right);
    if (leftDate && rightDate)
        return inOrder(*leftDate, op, *rightDate);
    return a && b && inOrder(*a, op, *b);
}

} // namespace tresktest
