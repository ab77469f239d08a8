#include "container/ByteSearch.h"

#include <QtAlgorithms>

#include <algorithm>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tresk {

namespace {

std::size_t indexIn(std::string_view bytes, const void* found)
{
    return found != nullptr ? std::size_t(static_cast<const char*>(found) - bytes.data()) : npos;
}

#ifdef __SSE2__

constexpr std::size_t step = 64;

/// A bit for every place among the 64 bytes at @p bytes where @p first stands in front of
/// @p second; looks at one byte more.
quint64 pairsIn(const char* bytes, __m128i first, __m128i second)
{
    __m128i pairs[4];
    for (std::ptrdiff_t i = 0; i < 4; ++i) {
        const auto* const here = reinterpret_cast<const __m128i*>(bytes + 16 * i);
        const auto* const next = reinterpret_cast<const __m128i*>(bytes + 16 * i + 1);
        pairs[i] = _mm_and_si128(_mm_cmpeq_epi8(_mm_loadu_si128(here), first),
                                 _mm_cmpeq_epi8(_mm_loadu_si128(next), second));
    }
    // Nearly always there is none, which one test tells.
    const __m128i any = _mm_or_si128(_mm_or_si128(pairs[0], pairs[1]),
                                     _mm_or_si128(pairs[2], pairs[3]));
    if (_mm_movemask_epi8(any) == 0)
        return 0;
    quint64 bits = 0;
    for (int i = 0; i < 4; ++i)
        bits |= quint64(quint16(_mm_movemask_epi8(pairs[i]))) << (16 * i);
    return bits;
}

/// How many bytes can be passed over because @p text, two bytes or more, does not begin in them.
/// Compares 16 places at a time with its first two bytes, which is quicker than memmem.
std::size_t skipWithout(std::string_view bytes, std::string_view text)
{
    const __m128i first = _mm_set1_epi8(text[0]);
    const __m128i second = _mm_set1_epi8(text[1]);
    std::size_t pos = 0;
    for (; bytes.size() - pos > step; pos += step) {
        quint64 pairs = pairsIn(bytes.data() + pos, first, second);
        for (; pairs != 0; pairs &= pairs - 1) {
            const std::size_t hit = pos + qCountTrailingZeroBits(pairs);
            if (startsWith(bytes.substr(hit), text))
                return hit;
        }
    }
    return pos;
}

#else

std::size_t skipWithout(std::string_view /*bytes*/, std::string_view /*text*/)
{
    return 0;
}

#endif

} // namespace

std::size_t findLineFeed(std::string_view bytes, std::size_t from)
{
    return bytes.find('\n', from);
}

std::size_t findLastLineFeed(std::string_view bytes)
{
    // memrchr and memmem look at many bytes at a time; string_view's searches do not.
    return bytes.empty() ? npos : indexIn(bytes, ::memrchr(bytes.data(), '\n', bytes.size()));
}

std::size_t findText(std::string_view bytes, std::string_view text)
{
    const std::size_t skipped = text.size() >= 2 ? skipWithout(bytes, text) : 0;
    const std::string_view rest = bytes.substr(skipped);
    if (rest.empty())
        return npos;
    const std::size_t hit = indexIn(rest,
                                    ::memmem(rest.data(), rest.size(), text.data(), text.size()));
    return hit != npos ? skipped + hit : npos;
}

std::size_t findLastText(std::string_view bytes, std::string_view text)
{
    // Chunks from the end, each of them searched forwards and four times as long as the
    // one behind it: never much more is looked at than lies behind the occurrence.
    std::size_t end = bytes.size();
    for (std::size_t length = 64; end >= text.size(); length *= 4) {
        const std::size_t begin = end - std::min(end, std::max(length, text.size()));
        std::size_t last = npos;
        std::size_t from = begin;
        for (;;) {
            const std::size_t hit = findText(bytes.substr(from, end - from), text);
            if (hit == npos)
                break;
            last = from + hit;
            from = last + 1;
        }
        if (last != npos || begin == 0)
            return last;
        end = begin + text.size() - 1; // an occurrence may reach into the next chunk
    }
    return npos;
}

} // namespace tresk
