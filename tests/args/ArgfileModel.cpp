#include "ArgfileModel.h"

#include <QRegExp>

namespace tresktest {

namespace {

using Token = ArgfileModelToken;
using Tokens = QList<Token>;
using Table = QHash<QString, QString>;

const QLatin1Char backslash('\\');
const QLatin1Char dollar('$');
const QLatin1Char singleQuote('\'');
const QLatin1Char doubleQuote('"');

struct LexicalClass {
    QRegExp pattern;
    bool isSeparator;
};

const QList<LexicalClass>& lexicalClasses()
{
    static const QList<LexicalClass> all{
        {QRegExp(QStringLiteral("[\\r\\n\\t ]+")), true},
        {QRegExp(QStringLiteral("#[^\\r\\n]*.?")), true},
        {QRegExp(QStringLiteral(R"_(([^\\'"#\r\n\t ]|\\.)+)_")), false},
        {QRegExp(QStringLiteral(R"_(('[^']*'))_")), false},
        {QRegExp(QStringLiteral(R"_(("([^"\\]|\\.)*"))_")), false},
    };
    return all;
}

Token madeUp(const QString& text)
{
    return {text, false, -1, QString()};
}

QString withoutFirstAndLast(const QString& text)
{
    QString inner = text.mid(1);
    inner.chop(1);
    return inner;
}

/// The match of the first class that applies at the beginning of @p rest; empty if there is none.
Token firstToken(const QString& rest, int position)
{
    for (const LexicalClass& lexicalClass : lexicalClasses()) {
        const QRegExp& pattern = lexicalClass.pattern;
        if (pattern.indexIn(rest) != 0)
            continue;
        const QString match = pattern.cap(0);
        return {lexicalClass.isSeparator ? QString() : match, lexicalClass.isSeparator, position,
                match};
    }
    return {};
}

Tokens splitIntoTokens(const QString& text)
{
    Tokens tokens;
    QString rest = text;
    int position = 0;
    while (!rest.isEmpty()) {
        const Token token = firstToken(rest, position);
        const int length = int(token.originalText.size());
        if (length == 0)
            return {};
        tokens += token;
        position += length;
        rest = rest.mid(length);
    }
    return tokens;
}

Tokens withoutDoubleSeparators(const Tokens& tokens)
{
    Tokens result;
    bool afterSeparator = false;
    for (const Token& token : tokens) {
        if (!token.isSeparator || !afterSeparator)
            result += token;
        afterSeparator = token.isSeparator;
    }
    if (!result.isEmpty() && result.first().isSeparator)
        result.removeFirst();
    if (!result.isEmpty() && result.last().isSeparator)
        result.removeLast();
    return result;
}

QStringList findVariables(const QString& text)
{
    const QRegExp variable(QStringLiteral(R"_(\\*\$([A-Za-z0-9]+|\{[A-Za-z0-9]+\}))_"));
    QStringList pieces;
    QString rest = text;
    int offset = 0;
    while (!rest.isEmpty()) {
        const int found = variable.indexIn(rest, offset);
        if (found < 0) {
            pieces += rest;
            break;
        }
        const int length = variable.matchedLength();
        const int backslashes = int(variable.cap(0).indexOf(dollar));
        if (backslashes % 2 != 0) {
            offset = found + length;
            continue;
        }
        if (backslashes > 0)
            pieces += rest.left(backslashes);
        pieces += rest.mid(backslashes, length - backslashes);
        rest = rest.mid(length);
        offset = 0;
    }
    return pieces;
}

QString variableName(const QString& piece)
{
    if (piece.startsWith(QLatin1String("${")) && piece.endsWith(QLatin1Char('}')))
        return piece.mid(2, piece.size() - 3);
    return piece.startsWith(dollar) ? piece.mid(1) : QString();
}

QString escapeEverything(const QString& text)
{
    QString escaped;
    for (const QChar character : text) {
        escaped += backslash;
        escaped += character;
    }
    return escaped;
}

QString replaceVariables(const QStringList& pieces, const Table* variables)
{
    QString text;
    for (const QString& piece : pieces) {
        if (piece.startsWith(dollar) && variables)
            text += escapeEverything(variables->value(variableName(piece)));
        else
            text += piece;
    }
    return text;
}

Token withVariables(const Token& token, const Table* variables)
{
    if (token.isSeparator)
        return token;
    if (token.text.startsWith(doubleQuote))
        return madeUp(doubleQuote
                      + replaceVariables(findVariables(withoutFirstAndLast(token.text)), variables)
                      + doubleQuote);
    if (token.text.startsWith(singleQuote))
        return madeUp(token.text);
    return madeUp(replaceVariables(findVariables(token.text), variables));
}

QString withoutBackslashes(const QString& text)
{
    QString result;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) != backslash || i + 1 == text.size()) {
            result += text.at(i);
            continue;
        }
        ++i;
        if (text.at(i) == dollar)
            result += dollar;
        result += text.at(i);
    }
    return result;
}

QString unescaped(const QString& text)
{
    if (text.startsWith(singleQuote))
        return withoutFirstAndLast(text).replace(dollar, QStringLiteral("$$"));
    if (text.startsWith(doubleQuote))
        return withoutBackslashes(withoutFirstAndLast(text));
    return withoutBackslashes(text);
}

QStringList joined(const Tokens& tokens)
{
    QStringList arguments;
    QString current;
    for (const Token& token : tokens) {
        current += token.text;
        if (token.isSeparator) {
            arguments += current;
            current.clear();
        }
    }
    if (!tokens.isEmpty() && !tokens.last().isSeparator)
        arguments += current;
    return arguments;
}

} // namespace

QList<ArgfileModelToken> modelHighlighterList(const QString& text)
{
    Tokens tokens = splitIntoTokens(text);
    for (Token& token : tokens) {
        if (!token.isSeparator)
            token.text = unescaped(token.text);
    }
    return tokens;
}

QStringList modelArguments(const QString& text, const QHash<QString, QString>* variables)
{
    Tokens tokens = withoutDoubleSeparators(splitIntoTokens(text));
    for (Token& token : tokens) {
        token = withVariables(token, variables);
        if (!token.isSeparator)
            token.text = unescaped(token.text);
    }
    return joined(tokens);
}

} // namespace tresktest
