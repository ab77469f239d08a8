#include "args/ArgfileLexer.h"

namespace tresk {

namespace {

bool isSpace(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\r')
        || c == QLatin1Char('\n');
}

bool isLineBreak(QChar c)
{
    return c == QLatin1Char('\r') || c == QLatin1Char('\n');
}

bool isQuote(QChar c)
{
    return c == QLatin1Char('"') || c == QLatin1Char('\'');
}

// Each of these returns where the token that begins at @p begin ends, or at most @p begin if there
// is no such token.

int spaceEnd(const QString& text, int begin)
{
    int end = begin;
    while (end < text.size() && isSpace(text[end]))
        ++end;
    return end;
}

/// A comment takes one character of its line break along: of CR LF, the LF stays.
int commentEnd(const QString& text, int begin)
{
    int end = begin + 1;
    while (end < text.size() && !isLineBreak(text[end]))
        ++end;
    return end < text.size() ? end + 1 : end;
}

int wordEnd(const QString& text, int begin)
{
    int end = begin;
    while (end < text.size()) {
        const QChar c = text[end];
        if (c == QLatin1Char('\\')) {
            if (end + 1 == text.size())
                break;
            ++end;
        } else if (isSpace(c) || isQuote(c) || c == QLatin1Char('#')) {
            break;
        }
        ++end;
    }
    return end;
}

int singleQuotedEnd(const QString& text, int begin)
{
    return int(text.indexOf(QLatin1Char('\''), begin + 1)) + 1; // 0 if it is not closed
}

int doubleQuotedEnd(const QString& text, int begin)
{
    for (int end = begin + 1; end < text.size(); ++end) {
        if (text[end] == QLatin1Char('\\'))
            ++end;
        else if (text[end] == QLatin1Char('"'))
            return end + 1;
    }
    return begin;
}

} // namespace

bool beginsSeparator(QChar c)
{
    return isSpace(c) || c == QLatin1Char('#');
}

int tokenEnd(const QString& text, int begin)
{
    const QChar first = text[begin];
    if (isSpace(first))
        return spaceEnd(text, begin);
    if (first == QLatin1Char('#'))
        return commentEnd(text, begin);
    if (first == QLatin1Char('\''))
        return singleQuotedEnd(text, begin);
    if (first == QLatin1Char('"'))
        return doubleQuotedEnd(text, begin);
    return wordEnd(text, begin);
}

} // namespace tresk
