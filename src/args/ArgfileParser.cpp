#include <tresk/ArgfileParser.h>

#include "args/ArgfileLexer.h"
#include "args/ArgfileVariables.h"

namespace tresk {

ArgfileToken::ArgfileToken(const QString& text, int position, const QString& originalText)
    : m_text(text)
    , m_separator(false)
    , m_position(position)
    , m_originalText(originalText)
{
}

ArgfileToken::ArgfileToken(const char* text, int position, const QString& originalText)
    : ArgfileToken(QString::fromLatin1(text), position, originalText)
{
}

ArgfileToken::ArgfileToken(TokenSeparator /*separator*/, int position, const QString& originalText)
    : m_separator(true)
    , m_position(position)
    , m_originalText(originalText)
{
}

namespace {

QString withoutQuotes(const QString& text)
{
    return text.mid(1, text.size() - 2);
}

/// A dollar sign that was protected stands doubled in the result, here and below: consumers of
/// the arguments take it for a literal one.
QString unescapeSingleQuoted(const QString& text)
{
    QString inner;
    for (const QChar c : withoutQuotes(text)) {
        if (c == QLatin1Char('$'))
            inner += c;
        inner += c;
    }
    return inner;
}

QString unescapeBackslashed(const QString& text)
{
    if (!text.contains(QLatin1Char('\\')))
        return text;
    QString plain;
    plain.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        if (text[i] == QLatin1Char('\\') && i + 1 < text.size()) {
            ++i;
            if (text[i] == QLatin1Char('$'))
                plain += text[i];
        }
        plain += text[i];
    }
    return plain;
}

QString unescapeDoubleQuoted(const QString& text)
{
    return unescapeBackslashed(withoutQuotes(text));
}

QString unescape(const QString& text)
{
    if (text.startsWith(QLatin1Char('\'')))
        return unescapeSingleQuoted(text);
    if (text.startsWith(QLatin1Char('"')))
        return unescapeDoubleQuoted(text);
    return unescapeBackslashed(text);
}

/// A string keeps its quotes.
QString withVariables(const QString& token, const QHash<QString, QString>& variables)
{
    if (token.startsWith(QLatin1Char('\'')))
        return token;
    if (token.startsWith(QLatin1Char('"')))
        return QLatin1Char('"') + replaceVariables(withoutQuotes(token), variables)
            + QLatin1Char('"');
    return replaceVariables(token, variables);
}

} // namespace

QStringList ArgfileParser::parseArgfile(const QString& text,
                                        const QHash<QString, QString>* variables)
{
    QStringList arguments;
    QString argument;
    bool isInArgument = false; // which may be empty
    for (int begin = 0, end = 0; begin < text.size(); begin = end) {
        end = tokenEnd(text, begin);
        if (end <= begin)
            return {};
        if (!beginsSeparator(text[begin])) {
            const QString token = text.mid(begin, end - begin);
            argument += unescape(variables ? withVariables(token, *variables) : token);
            isInArgument = true;
        } else if (isInArgument) {
            arguments += argument;
            argument.clear();
            isInArgument = false;
        }
    }
    if (isInArgument)
        arguments += argument;
    return arguments;
}

QList<ArgfileToken> ArgfileParser::getHighlighterList(const QString& text)
{
    QList<ArgfileToken> tokens;
    for (int begin = 0, end = 0; begin < text.size(); begin = end) {
        end = tokenEnd(text, begin);
        if (end <= begin)
            return {};
        const QString original = text.mid(begin, end - begin);
        if (beginsSeparator(text[begin]))
            tokens += ArgfileToken(ArgfileToken::Separator, begin, original);
        else
            tokens += ArgfileToken(unescape(original), begin, original);
    }
    return tokens;
}

} // namespace tresk
