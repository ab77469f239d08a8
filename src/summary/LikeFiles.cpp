#include "summary/LikeFiles.h"

#include <algorithm>
#include <numeric>

namespace tresk {

namespace {

constexpr std::size_t few = 16;

/// How much a difference counts in each of the fields that textsOf() has.
constexpr std::array<int, 6> weights = {1, 1, 1, 2, 2, 2};

std::array<QString, 6> textsOf(const FileTag& tag)
{
    return {tag.filetype, tag.comment,     tag.desc,
            tag.md5cfile, tag.compression, QString::number(tag.cfilesize)};
}

std::array<QString, 6> textsOf(const FileSummary& file)
{
    return {file.filetype,      file.comment,          file.description,
            file.compressedMD5, file.compressedMethod, QString::number(file.compressedSize)};
}

bool holds(unsigned fields, std::size_t field)
{
    return (fields >> field & 1U) != 0;
}

/// How much files differ that agree in these fields and in no other.
int distance(unsigned fields)
{
    int sum = 0;
    for (std::size_t field = 0; field < weights.size(); ++field)
        sum += holds(fields, field) ? 0 : weights[field];
    return sum;
}

/// Below 0, 0 or above, as @p a is before, like or behind @p b in these fields.
template <typename Numbers>
int compare(unsigned fields, const Numbers& a, const Numbers& b)
{
    for (std::size_t field = 0; field < a.size(); ++field) {
        if (holds(fields, field) && a[field] != b[field])
            return a[field] < b[field] ? -1 : 1;
    }
    return 0;
}

} // namespace

std::optional<int> LikeFiles::takeNearest(const QList<FileTag>& files, const FileSummary& file)
{
    if (!m_sorted) {
        if (m_places.size() <= few)
            return takeFromFew(files, file);
        number(files);
    }
    const std::array<QString, fieldCount> texts = textsOf(file);
    Numbers wanted = {};
    for (std::size_t field = 0; field < fieldCount; ++field)
        wanted[field] = m_sorted->numberOf[field].value(texts[field], -1);

    // Those that agree in more fields than asked for were met before, at a smaller distance.
    const int farthest = distance(0);
    for (int apart = 0; apart <= farthest; ++apart) {
        int nearest = -1;
        for (unsigned fields = 0; fields < setCount; ++fields) {
            if (distance(fields) == apart)
                nearest = std::max(nearest, lastLeft(fields, wanted));
        }
        if (nearest >= 0) {
            m_sorted->taken[std::size_t(nearest)] = true;
            return m_places[std::size_t(nearest)];
        }
    }
    return std::nullopt;
}

std::optional<int> LikeFiles::takeFromFew(const QList<FileTag>& files, const FileSummary& file)
{
    const std::array<QString, fieldCount> wanted = textsOf(file);
    auto nearest = m_places.end();
    int smallest = distance(0) + 1;
    for (auto place = m_places.end(); place != m_places.begin();) {
        --place;
        const std::array<QString, fieldCount> texts = textsOf(files.at(*place));
        unsigned agreeing = 0;
        for (std::size_t field = 0; field < fieldCount; ++field)
            agreeing |= unsigned(texts[field] == wanted[field]) << field;
        if (distance(agreeing) < smallest) {
            smallest = distance(agreeing);
            nearest = place;
        }
    }
    if (nearest == m_places.end())
        return std::nullopt;
    const int place = *nearest;
    m_places.erase(nearest);
    return place;
}

/// Gives equal texts equal numbers.
void LikeFiles::number(const QList<FileTag>& files)
{
    m_sorted = std::make_shared<Sorted>();
    m_sorted->numbers.reserve(m_places.size());
    for (const int place : m_places) {
        const std::array<QString, fieldCount> texts = textsOf(files.at(place));
        Numbers numbers = {};
        for (std::size_t field = 0; field < fieldCount; ++field) {
            QHash<QString, int>& known = m_sorted->numberOf[field];
            const auto found = known.constFind(texts[field]);
            numbers[field] = found != known.constEnd() ? *found : int(known.size());
            if (found == known.constEnd())
                known.insert(texts[field], numbers[field]);
        }
        m_sorted->numbers.push_back(numbers);
    }
    m_sorted->taken.resize(m_places.size(), false);
}

/// The last file left that agrees with @p wanted in these fields at least; -1 if there is none.
int LikeFiles::lastLeft(unsigned fields, const Numbers& wanted)
{
    for (std::size_t field = 0; field < fieldCount; ++field) {
        if (holds(fields, field) && wanted[field] == -1)
            return -1;
    }
    Sorting& sorted = m_sorted->sortings[fields];
    if (sorted.order.empty())
        sorted = sorting(fields);
    const auto behind = std::upper_bound(
        sorted.order.begin(), sorted.order.end(), wanted, [&](const Numbers& a, int b) {
            return compare(fields, a, m_sorted->numbers[std::size_t(b)]) < 0;
        });
    // Every step leaves a shortcut behind, so that those that are gone are not walked again.
    const int last = int(behind - sorted.order.begin()) - 1;
    int at = last;
    while (at >= 0 && m_sorted->taken[std::size_t(sorted.order[std::size_t(at)])]) {
        int& left = sorted.left[std::size_t(at)];
        if (left == at)
            --left;
        at = left;
    }
    for (int walked = last; walked > at;) {
        int& left = sorted.left[std::size_t(walked)];
        walked = left;
        left = at;
    }
    if (at < 0)
        return -1;
    const int file = sorted.order[std::size_t(at)];
    return compare(fields, wanted, m_sorted->numbers[std::size_t(file)]) == 0 ? file : -1;
}

LikeFiles::Sorting LikeFiles::sorting(unsigned fields) const
{
    Sorting sorted;
    sorted.order.resize(m_places.size());
    std::iota(sorted.order.begin(), sorted.order.end(), 0);
    sorted.left = sorted.order;
    std::sort(sorted.order.begin(), sorted.order.end(), [&](int a, int b) {
        const int order = compare(fields, m_sorted->numbers[std::size_t(a)],
                                  m_sorted->numbers[std::size_t(b)]);
        return order != 0 ? order < 0 : a < b;
    });
    return sorted;
}

} // namespace tresk
