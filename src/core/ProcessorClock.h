#ifndef TRESK_CORE_PROCESSORCLOCK_H
#define TRESK_CORE_PROCESSORCLOCK_H

#include <QtGlobal>

#include <ctime>

namespace tresk {

/// Seconds of processor time since @p start, a value of std::clock(). Counted in whole
/// milliseconds modulo 2^32, so it starts over at 0 after 49.7 days.
inline double processorSecondsSince(std::clock_t start)
{
    const auto milliseconds = [](std::clock_t ticks) {
        return qint64(ticks) * 1000 / CLOCKS_PER_SEC;
    };
    return static_cast<quint32>(milliseconds(std::clock()) - milliseconds(start)) / 1000.0;
}

} // namespace tresk

#endif
