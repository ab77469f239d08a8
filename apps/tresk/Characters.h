#ifndef TRESK_APPS_CHARACTERS_H
#define TRESK_APPS_CHARACTERS_H

#include <QString>

namespace tresk::cli {

/// Walks a text character by character: a surrogate pair is one, a lone surrogate is itself.
/// The text must outlive the walk.
class Characters {
public:
    explicit Characters(const QString& text)
        : m_text(text)
    {
    }

    bool hasNext() const { return m_end < m_text.size(); }

    /// The next character; there must be one.
    char32_t next()
    {
        m_start = m_end++;
        const QChar first = m_text.at(m_start);
        if (!first.isHighSurrogate() || !hasNext() || !m_text.at(m_end).isLowSurrogate())
            return first.unicode();
        return QChar::surrogateToUcs4(first, m_text.at(m_end++));
    }

    /// Where the character that next() gave begins, and where it ends.
    auto start() const { return m_start; }
    auto end() const { return m_end; }

private:
    const QString& m_text;
    decltype(QString().size()) m_start = 0;
    decltype(QString().size()) m_end = 0;
};

/// @p text with each character for which @p isMeant(char32_t) holds replaced by what
/// @p replacement(char32_t) gives.
template <typename Predicate, typename Replacement>
QString replaceCharacters(const QString& text, Predicate isMeant, Replacement replacement)
{
    QString result;
    decltype(text.size()) copied = 0;
    for (Characters it(text); it.hasNext();) {
        const char32_t c = it.next();
        if (!isMeant(c))
            continue;
        result.append(text.constData() + copied, it.start() - copied);
        result += replacement(c);
        copied = it.end();
    }
    if (copied == 0)
        return text;
    return result.append(text.constData() + copied, text.size() - copied);
}

/// The number of terminal columns that a printable character takes: 2 for the wide ones of
/// East Asia and emoji, 0 for marks on the character before, else 1.
int columnsOf(char32_t c);

} // namespace tresk::cli

#endif
