#include "Characters.h"

#include <algorithm>
#include <iterator>

namespace tresk::cli {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

// Whole blocks, not single characters: what is unassigned in them is drawn wide as well.
constexpr Range wideRanges[] = {
    {0x1100, 0x115F}, // Hangul initials
    {0x2E80, 0x303E}, // radicals, CJK punctuation
    {0x3041, 0xA4CF}, // kana, CJK ideographs, Yi
    {0xA960, 0xA97F}, // Hangul initials, extended
    {0xAC00, 0xD7A3}, // Hangul syllables
    {0xF900, 0xFAFF}, // compatibility ideographs
    {0xFE30, 0xFE6F}, // vertical and small forms
    {0xFF00, 0xFF60}, // full-width forms
    {0xFFE0, 0xFFE6}, // full-width signs
    {0x1F300, 0x1F64F}, // pictographs, faces
    {0x1F680, 0x1F6FF}, // transport
    {0x1F900, 0x1F9FF}, // more pictographs
    {0x20000, 0x3FFFD}, // further ideographs
};

bool isWide(char32_t c)
{
    const auto* range = std::lower_bound(std::begin(wideRanges), std::end(wideRanges), c,
                                         [](const Range& r, char32_t v) { return r.last < v; });
    return range != std::end(wideRanges) && range->first <= c;
}

} // namespace

int columnsOf(char32_t c)
{
    if (c < 0x300)
        return 1;
    switch (QChar::category(c)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return 0;
    default:
        return isWide(c) ? 2 : 1;
    }
}

} // namespace tresk::cli
