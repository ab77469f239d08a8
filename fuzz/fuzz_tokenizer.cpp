// Takes any text for an argument file; the parser must take it apart as its model does, and so
// that nothing of it is lost.

#include "FuzzTarget.h"
#include "Latin1.h"
#include "ParserProperties.h"

#include <QHash>

using tresktest::argumentsAreRunsOfTokens;
using tresktest::argumentsAreThoseOfTheModel;
using tresktest::comesOutWhole;
using tresktest::latin1;
using tresktest::tokensAreThoseOfTheModel;
using tresktest::tokensCover;

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

void runTokenizer(const QByteArray& input)
{
    const QString text = QString::fromUtf8(input.constData(), int(input.size())).left(longestText);
    TRESK_REQUIRE(tokensAreThoseOfTheModel(text));
    TRESK_REQUIRE(tokensCover(text));
    TRESK_REQUIRE(argumentsAreRunsOfTokens(text, filledTable()));

    static const Table empty;
    for (const Table* table : {static_cast<const Table*>(nullptr), &empty, &filledTable()}) {
        TRESK_REQUIRE(argumentsAreThoseOfTheModel(text, table));
        TRESK_REQUIRE(comesOutWhole(text, table));
    }
}

const tresk_fuzz::Target target("tokenizer", runTokenizer);

} // namespace
