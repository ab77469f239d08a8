// Takes any text for an argument file; the parser must take it apart as its model does, and so
// that nothing of it is lost.

#include "ArgfileModel.h"
#include "FuzzTarget.h"
#include "Latin1.h"
#include "ParserProperties.h"

#include <tresk/ArgfileParser.h>

#include <algorithm>

using tresk::ArgfileParser;
using tresk::ArgfileToken;
using tresktest::ArgfileModelToken;
using tresktest::latin1;

namespace {

using Table = QHash<QString, QString>;

constexpr int longestText = 512; // The model takes quadratic time.

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

void runTokenizer(const QByteArray& input)
{
    const QString text = QString::fromUtf8(input.constData(), int(input.size())).left(longestText);
    const QList<ArgfileToken> tokens = ArgfileParser().getHighlighterList(text);
    const QList<ArgfileModelToken> expected = tresktest::modelHighlighterList(text);
    TRESK_REQUIRE(
        std::equal(tokens.begin(), tokens.end(), expected.begin(), expected.end(), isSame));
    TRESK_REQUIRE(tresktest::tokensCover(text));
    TRESK_REQUIRE(tresktest::argumentsAreRunsOfTokens(text, filledTable()));

    static const Table empty;
    for (const Table* table : {static_cast<const Table*>(nullptr), &empty, &filledTable()}) {
        TRESK_REQUIRE(parsed(text, table) == tresktest::modelArguments(text, table));
        TRESK_REQUIRE(tresktest::comesOutWhole(text, table));
    }
}

const tresk_fuzz::Target target("tokenizer", runTokenizer);

} // namespace
