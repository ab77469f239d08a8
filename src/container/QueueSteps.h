#ifndef TRESK_CONTAINER_QUEUESTEPS_H
#define TRESK_CONTAINER_QUEUESTEPS_H

#include <tresk/TreskParser.h>

#include <algorithm>
#include <limits>

namespace tresk {

/// Where the stored bytes of @p file begin. A sum beyond the range of int is the largest int,
/// where no document has a byte.
inline int storedStart(const FileTag& file)
{
    const qint64 start = qint64(file.pos) + file.tagLength + file.offset;
    return int(std::min<qint64>(start, std::numeric_limits<int>::max()));
}

/// The percentage that the queues report, rounded towards 0; the smallest int where there is
/// none, that is with a total of 0, or where it does not fit.
inline int percentage(qint64 processed, qint64 total)
{
    const double percent = double(processed) * 100.0 / double(total);
    const bool fits = percent > -2147483649.0 && percent < 2147483648.0;
    return fits ? int(percent) : std::numeric_limits<int>::min();
}

} // namespace tresk

#endif
