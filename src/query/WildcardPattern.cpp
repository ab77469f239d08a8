#include "query/WildcardPattern.h"

#include <algorithm>
#include <optional>

namespace tresk {

WildcardPattern::WildcardPattern(QStringView pattern)
{
    for (qsizetype i = 0; i < pattern.size() && m_valid; ++i) {
        const char16_t c = pattern.at(i).unicode();
        if (c == u'*') {
            if (m_elements.empty() || m_elements.back().kind != Element::AnyCharacters)
                m_elements.push_back({Element::AnyCharacters, 0, {}});
        } else if (c == u'?') {
            m_elements.push_back({Element::AnyCharacter, 0, {}});
        } else if (c == u'[') {
            i = readSet(pattern, i + 1);
        } else {
            m_elements.push_back({Element::Character, c, {}});
            m_valid = c != u']';
        }
    }
}

/// Reads the set that begins at @p pos, behind its "[", and returns the place of its "]".
qsizetype WildcardPattern::readSet(QStringView pattern, qsizetype pos)
{
    Element set{Element::Set, 0, {}};
    if (pos < pattern.size() && pattern.at(pos) == u'^') {
        set.kind = Element::SetComplement;
        ++pos;
    }
    const qsizetype first = pos;
    std::optional<char16_t> rangeStart; // may turn out to be a single character
    bool inRange = false;
    for (; pos < pattern.size() && (pos == first || pattern.at(pos) != u']'); ++pos) {
        const char16_t c = pattern.at(pos).unicode();
        if (inRange) {
            set.ranges.emplace_back(std::minmax(*rangeStart, c));
            rangeStart.reset();
            inRange = false;
        } else if (c == u'-' && rangeStart) {
            inRange = true;
        } else {
            set.ranges.emplace_back(c, c);
            rangeStart = c;
        }
    }
    if (inRange) // a "-" at the end
        set.ranges.emplace_back(u'-', u'-');
    m_elements.push_back(set);
    m_valid = pos < pattern.size();
    return pos;
}

bool WildcardPattern::matches(QStringView text) const
{
    if (!m_valid)
        return false;
    // Where a character does not fit, the last "*" takes one more; earlier ones need not change.
    std::size_t element = 0;
    std::optional<std::size_t> behindStar;
    qsizetype starEnd = 0;
    for (qsizetype i = 0; i < text.size();) {
        if (element < m_elements.size() && m_elements[element].kind == Element::AnyCharacters) {
            behindStar = ++element;
            starEnd = i;
        } else if (element < m_elements.size() && fits(m_elements[element], text.at(i).unicode())) {
            ++element;
            ++i;
        } else if (behindStar) {
            element = *behindStar;
            i = ++starEnd;
        } else {
            return false;
        }
    }
    return std::all_of(m_elements.begin() + std::ptrdiff_t(element), m_elements.end(),
                       [](const Element& e) { return e.kind == Element::AnyCharacters; });
}

bool WildcardPattern::fits(const Element& element, char16_t character)
{
    const auto holds = [character](const auto& range) {
        return range.first <= character && character <= range.second;
    };
    const auto inSet = [&] {
        return std::any_of(element.ranges.begin(), element.ranges.end(), holds);
    };
    switch (element.kind) {
    case Element::Character:
        return element.character == character;
    case Element::AnyCharacter:
        return true;
    case Element::Set:
        return inSet();
    case Element::SetComplement:
        return !inSet();
    case Element::AnyCharacters:
        break;
    }
    return false;
}

} // namespace tresk
