#ifndef TRESK_QUERY_QUERYVALUES_H
#define TRESK_QUERY_QUERYVALUES_H

#include <QDateTime>
#include <QString>

#include <optional>

namespace tresk {

/// @p text as a number: digits at its start, with a sign, a point and an exponent where there are
/// any, times 1024 for each step of a "kb", "mb" or "gb" at its very end (in either case). What
/// follows the number is ignored. Nothing if it begins otherwise.
std::optional<float> readNumber(const QString& text);

/// @p text as a date ("2019-03-12", also with a year of two digits, taken as it is), a time
/// ("14:33", "14:33:05"; on the day @p today) or a date and a time with blanks between them. What
/// follows is ignored. Nothing if it begins otherwise, or the day or time does not exist.
std::optional<QDateTime> readDate(const QString& text, const QDate& today);

/// The date of now, the same in every time zone.
QDate today();

} // namespace tresk

#endif
