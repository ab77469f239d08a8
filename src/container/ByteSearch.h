#ifndef TRESK_CONTAINER_BYTESEARCH_H
#define TRESK_CONTAINER_BYTESEARCH_H

#include <QByteArray>

#include <cstddef>
#include <limits>
#include <string_view>

namespace tresk {

/// What a QByteArray can hold on every version of Qt, with room to grow into.
inline constexpr int longestArray = std::numeric_limits<int>::max() - 4096;

/// Stands for no index.
inline constexpr std::size_t npos = std::string_view::npos;

inline std::string_view view(const QByteArray& bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

inline bool startsWith(std::string_view bytes, std::string_view start)
{
    return bytes.substr(0, start.size()) == start;
}

/// Index of the first line feed in @p bytes at or behind @p from, or npos.
std::size_t findLineFeed(std::string_view bytes, std::size_t from);
/// Index of the last line feed in @p bytes, or npos.
std::size_t findLastLineFeed(std::string_view bytes);

/// Index of the first occurrence of @p text in @p bytes, or npos.
std::size_t findText(std::string_view bytes, std::string_view text);
/// Index of the last occurrence of @p text, which is not empty, in @p bytes, or npos. Takes
/// time in proportion to the bytes between the occurrence and the end, so that a scan
/// backwards over many occurrences is linear.
std::size_t findLastText(std::string_view bytes, std::string_view text);

} // namespace tresk

#endif
