// Takes any text for an argument file, whose options must be read as the model reads them; and
// makes options of the same bytes, which must be the same when they were written and read again.

#include "ArgFileText.h"
#include "ByteSource.h"
#include "ExpectedArgFile.h"
#include "FuzzTarget.h"
#include "OptionModel.h"
#include "RandomArgFile.h"

#include <tresk/ArgfileParser.h>

using tresk::ArgFile;
using tresktest::Dollars;
using tresktest::ReadOptions;
using tresktest::textOf;

namespace {

using Table = QHash<QString, QString>;

constexpr int longestInput = 4096;

void checkSame(const ReadOptions& read, const ReadOptions& expected)
{
    TRESK_REQUIRE(read.messages == expected.messages);
    TRESK_REQUIRE(textOf(read.options) == textOf(expected.options));
}

void checkReading(const QString& text, const Table* table)
{
    const QStringList arguments = tresk::ArgfileParser().parseArgfile(text, table);
    checkSame(tresktest::readOptions(text, table), tresktest::modelOptions(arguments));
}

/// Reading does not need all that a shell does, so the round trip does not show it.
void checkQuoting(const QString& word, bool expandVariables)
{
    QString expected = word;
    expected.replace(QLatin1String("\\"), QLatin1String("\\\\"));
    expected.replace(QLatin1String("\""), QLatin1String("\\\""));
    expected.replace(QLatin1String("`"), QLatin1String("\\`"));
    expected.replace(QLatin1String(expandVariables ? "$$" : "$"), QLatin1String("\\$"));
    if (tresktest::isQuoted(expected))
        expected = QLatin1Char('"') + expected + QLatin1Char('"');
    TRESK_REQUIRE(tresk::quoteString(word, expandVariables) == expected);
}

void checkRoundTrip(const ArgFile& written, bool expandVariables, Dollars dollars,
                    const Table* table)
{
    const QString line = written.toCommandline(expandVariables);
    checkSame(tresktest::readOptions(line, table),
              {tresktest::expectedOptions(written, dollars), tresktest::expectedMessages(written)});
}

void runOptions(const QByteArray& input)
{
    static const Table empty;
    static const Table table{{QStringLiteral("X"), QStringLiteral("-f $")},
                             {QStringLiteral("a"), QStringLiteral("no-embed")}};
    const QByteArray bytes = input.left(longestInput);
    const QString text = QString::fromUtf8(bytes.constData(), int(bytes.size()));
    checkReading(text, nullptr);
    if (text.contains(QLatin1Char('$')))
        checkReading(text, &table);
    checkQuoting(text, false);
    checkQuoting(text, true);

    tresk_fuzz::ByteSource source(bytes);
    const int which = source.below(3);
    const ArgFile written = tresktest::randomArgFile(
        [&source](int count) { return source.below(count); });
    if (which == 2)
        checkRoundTrip(written, true, Dollars::Kept, nullptr);
    else
        checkRoundTrip(written, false, Dollars::Doubled, which == 1 ? &table : &empty);
}

const tresk_fuzz::Target target("options", runOptions);

} // namespace
