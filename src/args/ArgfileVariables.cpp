#include "args/ArgfileVariables.h"

#include <algorithm>
#include <vector>

namespace tresk {

namespace {

constexpr QLatin1Char dollar('$');
constexpr QLatin1Char backslash('\\');

/// A stretch of a token's text.
struct TextPiece {
    int begin;
    int length;
};

/// A dollar sign with a name behind it, and the run of backslashes in front of it.
struct Variable {
    int begin; ///< of the backslashes
    int sign; ///< where the dollar sign stands
    int end; ///< behind the name
};

bool isNameCharacter(QChar c)
{
    return (c >= QLatin1Char('a') && c <= QLatin1Char('z'))
        || (c >= QLatin1Char('A') && c <= QLatin1Char('Z'))
        || (c >= QLatin1Char('0') && c <= QLatin1Char('9'));
}

/// Where the name behind the dollar sign at @p sign ends; @p sign + 1 if there is none.
int nameEnd(const QString& text, int sign)
{
    const int begin = sign + 1;
    const bool braced = begin < text.size() && text[begin] == QLatin1Char('{');
    const int first = braced ? begin + 1 : begin;
    int end = first;
    while (end < text.size() && isNameCharacter(text[end]))
        ++end;
    if (!braced)
        return end;
    return end > first && end < text.size() && text[end] == QLatin1Char('}') ? end + 1 : begin;
}

/// All of @p text, in order; they do not overlap.
std::vector<Variable> variablesIn(const QString& text)
{
    std::vector<Variable> variables;
    int last = 0; // nothing before it belongs to the next variable
    int sign = int(text.indexOf(dollar));
    while (sign != -1) {
        const int end = nameEnd(text, sign);
        if (end > sign + 1) {
            int begin = sign;
            while (begin > last && text[begin - 1] == backslash)
                --begin;
            variables.push_back({begin, sign, end});
        }
        last = end;
        sign = int(text.indexOf(dollar, end));
    }
    return variables;
}

bool isEscaped(int backslashes)
{
    return backslashes % 2 == 1;
}

/// Finds, in a text that is being cut off from its front, the next variable that no backslash
/// protects.
class VariableSearch {
public:
    explicit VariableSearch(const QString& text)
        : m_variables(variablesIn(text))
    {
    }

    /// The first one from @p begin on, with the backslashes that are left in front of it; null if
    /// there is none. @p begin must not get smaller from call to call.
    const Variable* next(int begin)
    {
        while (m_first < m_variables.size() && m_variables[m_first].sign < begin)
            ++m_first;
        if (m_first < m_variables.size() && m_variables[m_first].begin < begin) {
            // Its backslashes were cut, which may have turned what they do.
            m_cut = m_variables[m_first];
            m_cut.begin = begin;
            if (!isEscaped(m_cut.sign - m_cut.begin))
                return &m_cut;
            m_whole = std::max(m_whole, m_first + 1);
        }
        m_whole = std::max(m_whole, m_first);
        while (m_whole < m_variables.size()
               && isEscaped(m_variables[m_whole].sign - m_variables[m_whole].begin))
            ++m_whole;
        return m_whole < m_variables.size() ? &m_variables[m_whole] : nullptr;
    }

private:
    std::vector<Variable> m_variables;
    std::size_t m_first = 0; ///< the first one whose dollar sign is not cut off
    std::size_t m_whole = 0; ///< the first one that is not protected by all of its backslashes
    Variable m_cut = {};
};

/// Cuts @p text into the variables that are replaced and what stands between them.
std::vector<TextPiece> findVariablesInToken(const QString& text)
{
    std::vector<TextPiece> pieces;
    VariableSearch search(text);
    int begin = 0;
    while (const Variable* variable = search.next(begin)) {
        // The lengths of backslashes and variable are taken from where the rest begins, also where
        // other text stands in front of them. So "abc$X" is cut into "ab", "c$" and "X".
        const int backslashes = variable->sign - variable->begin;
        const int length = variable->end - variable->begin;
        if (backslashes > 0)
            pieces.push_back({begin, backslashes});
        pieces.push_back({begin + backslashes, length - backslashes});
        begin += length;
    }
    if (begin < text.size())
        pieces.push_back({begin, int(text.size()) - begin});
    return pieces;
}

/// Makes @p name the one in @p piece, which begins with a dollar sign.
void getVariableName(const QString& text, const TextPiece& piece, QString& name)
{
    const int end = piece.begin + piece.length;
    const bool braced = piece.length > 2 && text[piece.begin + 1] == QLatin1Char('{')
        && text[end - 1] == QLatin1Char('}');
    const int begin = piece.begin + (braced ? 2 : 1);
    name.resize(0); // and its memory stays for the next one
    name.append(text.constData() + begin, (braced ? end - 1 : end) - begin);
}

void appendEscaped(const QString& value, QString& text)
{
    for (const QChar c : value) {
        text += backslash;
        text += c;
    }
}

} // namespace

QString replaceVariables(const QString& text, const QHash<QString, QString>& variables)
{
    if (!text.contains(dollar))
        return text;
    QString replaced;
    replaced.reserve(text.size());
    QString name;
    const std::vector<TextPiece> pieces = findVariablesInToken(text);
    for (const TextPiece& piece : pieces) {
        // Also what only begins like a variable, such as "$" alone.
        if (text[piece.begin] == dollar) {
            getVariableName(text, piece, name);
            appendEscaped(variables.value(name), replaced);
        } else {
            replaced.append(text.constData() + piece.begin, piece.length);
        }
    }
    return replaced;
}

} // namespace tresk
