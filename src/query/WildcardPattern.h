#ifndef TRESK_QUERY_WILDCARDPATTERN_H
#define TRESK_QUERY_WILDCARDPATTERN_H

#include <QString>
#include <QStringView>

#include <utility>
#include <vector>

namespace tresk {

/// A pattern in which `*` stands for any characters, `?` for any one, `[...]` for one of a set
/// and `[^...]` for one that is not in it; a set may hold ranges, and a "]" as its first character.
/// All else, backslashes too, stands for itself. A character is a UTF-16 code unit.
///
/// Takes a time that is at most the product of both lengths. (Qt's QRegExp does not, and in its
/// wildcard syntax a backslash stands for two of them, or for itself in front of a "*".)
class WildcardPattern {
public:
    explicit WildcardPattern(QStringView pattern);

    /// Whether all of @p text is what the pattern stands for; never for a set that is not closed
    /// or a "]" that closes none.
    bool matches(QStringView text) const;

private:
    struct Element {
        enum Kind { Character, AnyCharacter, AnyCharacters, Set, SetComplement };
        Kind kind;
        char16_t character = 0;
        std::vector<std::pair<char16_t, char16_t>> ranges; ///< both ends are part of them
    };

    qsizetype readSet(QStringView pattern, qsizetype pos);
    static bool fits(const Element& element, char16_t character);

    std::vector<Element> m_elements;
    bool m_valid = true;
};

} // namespace tresk

#endif
