// Takes any text for an argument file; the parser must take it apart as its model does, and so
// that nothing of it is lost.

#include "ArgfileModel.h"
#include "FuzzTarget.h"

#include <tresk/ArgfileParser.h>

#include <algorithm>

using tresk::ArgfileParser;
using tresk::ArgfileToken;
using tresktest::ArgfileModelToken;

namespace {

using Table = QHash<QString, QString>;

constexpr int longestText = 512; // The model takes quadratic time.

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

const Table& filledTable()
{
    static const Table table{{latin1("X"), latin1("1 $2")}, {latin1("a"), latin1("'\"\\#$\n")},
                             {latin1("XX"), QString()},     {latin1("aX"), latin1("\\")},
                             {QString(), latin1("none")},   {latin1("NAME"), latin1("${X}")}};
    return table;
}

QStringList parsed(const QString& text, const Table* table)
{
    return ArgfileParser().parseArgfile(text, table);
}

bool isSame(const ArgfileToken& token, const ArgfileModelToken& model)
{
    return token.str() == model.text && token.isSeparator() == model.isSeparator
        && token.position() == model.position && token.originalText() == model.originalText;
}

/// Where there are tokens, they are all of @p text.
void checkCover(const QString& text, const QList<ArgfileToken>& tokens)
{
    QString covered;
    for (const ArgfileToken& token : tokens) {
        TRESK_REQUIRE(token.position() == covered.size());
        TRESK_REQUIRE(token.originalLength() > 0);
        TRESK_REQUIRE(!token.isSeparator() || token.str().isEmpty());
        covered += token.originalText();
    }
    TRESK_REQUIRE(tokens.isEmpty() || covered == text);
}

/// The arguments are what stands between separators, as an editor shows it.
void checkArguments(const QString& text, const QList<ArgfileToken>& tokens)
{
    QStringList runs;
    bool isInRun = false;
    for (const ArgfileToken& token : tokens) {
        if (!token.isSeparator() && !isInRun)
            runs += QString();
        isInRun = !token.isSeparator();
        if (isInRun)
            runs.last() += token.str();
    }
    TRESK_REQUIRE(parsed(text, nullptr) == runs);
    TRESK_REQUIRE(parsed(text, &filledTable()).size() == runs.size());
    if (!text.contains(QLatin1Char('$')))
        TRESK_REQUIRE(parsed(text, &filledTable()) == runs);
}

/// Nothing of @p text is lost between quotes, with a table or without.
void checkQuoted(const QString& text, const Table* table)
{
    QString escaped;
    for (const QChar c : text)
        escaped += QLatin1Char('\\') + QString(c);
    QString doubled = text;
    doubled.replace(QLatin1Char('$'), latin1("$$"));
    const QStringList whole(doubled);
    TRESK_REQUIRE(parsed(QLatin1Char('"') + escaped + QLatin1Char('"'), table) == whole);
    TRESK_REQUIRE(text.isEmpty() || parsed(escaped, table) == whole);
    TRESK_REQUIRE(text.contains(QLatin1Char('\''))
                  || parsed(QLatin1Char('\'') + text + QLatin1Char('\''), table) == whole);
}

void runTokenizer(const QByteArray& input)
{
    const QString text = QString::fromUtf8(input.constData(), int(input.size())).left(longestText);
    const QList<ArgfileToken> tokens = ArgfileParser().getHighlighterList(text);
    const QList<ArgfileModelToken> expected = tresktest::modelHighlighterList(text);
    TRESK_REQUIRE(
        std::equal(tokens.begin(), tokens.end(), expected.begin(), expected.end(), isSame));
    checkCover(text, tokens);
    checkArguments(text, tokens);

    static const Table empty;
    for (const Table* table : {static_cast<const Table*>(nullptr), &empty, &filledTable()}) {
        TRESK_REQUIRE(parsed(text, table) == tresktest::modelArguments(text, table));
        checkQuoted(text, table);
    }
}

const tresk_fuzz::Target target("tokenizer", runTokenizer);

} // namespace
