#include "ParserProperties.h"

#include "ArgfileModel.h"

#include <tresk/ArgfileParser.h>

#include <algorithm>

using tresk::ArgfileParser;
using tresk::ArgfileToken;

namespace tresktest {

namespace {

using Table = QHash<QString, QString>;

QStringList parsed(const QString& content, const Table* table)
{
    return ArgfileParser().parseArgfile(content, table);
}

bool isSame(const ArgfileToken& token, const ArgfileModelToken& model)
{
    return token.str() == model.text && token.isSeparator() == model.isSeparator
        && token.position() == model.position && token.originalText() == model.originalText;
}

} // namespace

bool tokensAreThoseOfTheModel(const QString& content)
{
    const QList<ArgfileToken> tokens = ArgfileParser().getHighlighterList(content);
    const QList<ArgfileModelToken> expected = modelHighlighterList(content);
    return std::equal(tokens.begin(), tokens.end(), expected.begin(), expected.end(), isSame);
}

bool argumentsAreThoseOfTheModel(const QString& content, const Table* table)
{
    return parsed(content, table) == modelArguments(content, table);
}

bool tokensCover(const QString& content)
{
    const QList<ArgfileToken> tokens = ArgfileParser().getHighlighterList(content);
    QString covered;
    for (const ArgfileToken& token : tokens) {
        if (token.position() != covered.size() || token.originalLength() <= 0
            || (token.isSeparator() && !token.str().isEmpty()))
            return false;
        covered += token.originalText();
    }
    return tokens.isEmpty() || covered == content;
}

bool argumentsAreRunsOfTokens(const QString& content, const Table& table)
{
    const QList<ArgfileToken> tokens = ArgfileParser().getHighlighterList(content);
    QStringList runs;
    bool isInRun = false;
    for (const ArgfileToken& token : tokens) {
        if (!token.isSeparator() && !isInRun)
            runs += QString();
        isInRun = !token.isSeparator();
        if (isInRun)
            runs.last() += token.str();
    }
    const QStringList filled = parsed(content, &table);
    return parsed(content, nullptr) == runs && filled.size() == runs.size()
        && (content.contains(QLatin1Char('$')) || filled == runs);
}

bool comesOutWhole(const QString& content, const Table* table)
{
    QString escaped;
    for (const QChar c : content)
        escaped += QLatin1Char('\\') + QString(c);
    QString doubled = content;
    doubled.replace(QLatin1Char('$'), QLatin1String("$$"));
    const QStringList whole(doubled);
    const QString inDoubleQuotes = QLatin1Char('"') + escaped + QLatin1Char('"');
    const QString inSingleQuotes = QLatin1Char('\'') + content + QLatin1Char('\'');
    return parsed(inDoubleQuotes, table) == whole
        && (content.isEmpty() || parsed(escaped, table) == whole)
        && (content.contains(QLatin1Char('\'')) || parsed(inSingleQuotes, table) == whole);
}

} // namespace tresktest
