#include "Progress.h"

#include "Text.h"

#include <algorithm>
#include <cmath>

namespace tresk::cli {

namespace {

constexpr int barWidth = 20;
constexpr int millisecondsUntilSpeed = 250; // before, it says little

/// A duration as hours, minutes and seconds: "0:07", "1:02:30".
QString clockText(qint64 seconds)
{
    const auto twoDigits = [](qint64 number) {
        return QString::number(number).rightJustified(2, QLatin1Char('0'));
    };
    const QString rest = QLatin1Char(':') + twoDigits(seconds % 60);
    const qint64 minutes = seconds / 60;
    if (minutes < 60)
        return QString::number(minutes) + rest;
    return QString::number(minutes / 60) + QLatin1Char(':') + twoDigits(minutes % 60) + rest;
}

} // namespace

Progress::Progress(qint64 total)
    : m_total(total)
{
    m_sinceStart.start();
}

void Progress::show(qint64 done, const QString& what)
{
    if (!m_line.isDue())
        return;
    const double share = m_total > 0 ? double(done) / double(m_total) : 1;
    const int filled = std::clamp(static_cast<int>(share * barWidth), 0, barWidth);
    const QString bar = QString(filled, QLatin1Char('#')).leftJustified(barWidth, QLatin1Char('.'));
    const int percent = std::clamp(static_cast<int>(share * 100), 0, 100);
    m_line.show(
        QStringLiteral("[%1] %2%  %3%4")
            .arg(bar, QString::number(percent).rightJustified(3), speed(done), printable(what)));
}

/// "95.3 MiB/s  0:07 left  ", or nothing as long as nothing can be told.
QString Progress::speed(qint64 done) const
{
    const qint64 milliseconds = m_sinceStart.elapsed();
    if (milliseconds < millisecondsUntilSpeed || done <= 0)
        return {};
    const double rate = double(done) * 1000 / double(milliseconds);
    const double secondsLeft = double(std::max<qint64>(0, m_total - done)) / rate;
    return QStringLiteral("%1/s  %2 left  ")
        .arg(humanSize(qint64(rate)), clockText(qint64(std::ceil(secondsLeft))));
}

} // namespace tresk::cli
