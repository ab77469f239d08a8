// Taking argument files apart. What is unusual costs no more than a few times what ordinary text of
// the same length costs, so that no text is out of proportion to its length.

#include "Data.h"
#include "PairedRuns.h"

#include <tresk/ArgfileParser.h>

#include <QProcess>

using namespace treskbench;
using tresk::ArgfileParser;

namespace {

using Variables = QHash<QString, QString>;

/// @p unit again and again between @p begin and @p end, at most @p size characters in all.
QString textOf(const char* begin, const char* unit, const char* end, int size)
{
    const QString first = QString::fromLatin1(begin);
    const QString middle = QString::fromLatin1(unit);
    const QString last = QString::fromLatin1(end);
    const int count = (size - int(first.size() + last.size())) / int(middle.size());
    return first + middle.repeated(std::max(1, count)) + last;
}

/// Options as people write them: words, strings in both quotes, a variable, comments.
QString ordinaryText(int size)
{
    const char* step = "# Spectrum of the front bearing, whole run\n"
                       "--title \"Spectrum of the front bearing\" --tool Spectrum\n"
                       "--command 'spectrum --window 4096 --out run.csv'\n"
                       "--infile $DATA/run_12.csv --purpose measurement # as it was recorded\n"
                       "--outfile ${DATA}/run_12_spectrum.csv\n"
                       "--host lab-04 --user meier\n\n";
    return textOf("", step, "", size);
}

/// The texts are alike in length, so that the ratio is one per character.
int usualSize()
{
    return std::max(1000, scaled(10000000));
}

Timed parsing(const QString& text, const Variables* variables)
{
    return inProcess([text, variables] {
        const QStringList arguments = ArgfileParser().parseArgfile(text, variables);
        benchmark::DoNotOptimize(&arguments);
    });
}

const Variables* noVariables()
{
    static const Variables none;
    return &none;
}

const Variables* someVariables()
{
    static const Variables some{{QStringLiteral("a"), QStringLiteral("b")},
                                {QStringLiteral("X"), QStringLiteral("c d")},
                                {QStringLiteral("DATA"), QStringLiteral("/data/bridge")}};
    return &some;
}

void parse(benchmark::State& state, const char* begin, const char* unit, const char* end,
           const Variables* (*variables)() = someVariables)
{
    runPairs(state, parsing(textOf(begin, unit, end, usualSize()), variables()),
             parsing(ordinaryText(usualSize()), someVariables()));
}

#define UNUSUAL_TEXT(id, name, ...)                                                                \
    BENCHMARK_CAPTURE(parse, id, __VA_ARGS__)                                                      \
        ->Name("parseArgfile, " name " / ordinary text")                                           \
        ->UseManualTime()                                                                          \
        ->Iterations(5)

UNUSUAL_TEXT(words, "words", "", "spectrum ", "");
UNUSUAL_TEXT(oneWord, "one word", "", "a", "");
UNUSUAL_TEXT(singleQuoted, "one string in single quotes", "'", "a b ", "'");
UNUSUAL_TEXT(doubleQuoted, "one string in double quotes", "\"", "a b ", "\"");
UNUSUAL_TEXT(emptyStrings, "empty strings that touch", "", "''", "");
UNUSUAL_TEXT(backslashes, "backslashes", "", "\\\\", "");
UNUSUAL_TEXT(backslashesInQuotes, "backslashes in double quotes", "\"", "\\\\", "\"");
UNUSUAL_TEXT(sharps, "sharps", "", "#", "");
UNUSUAL_TEXT(comments, "empty comments", "", "#\n", "");
UNUSUAL_TEXT(dollars, "dollar signs in single quotes", "'", "$", "'");
UNUSUAL_TEXT(variables, "variables", "", "$a", "");
UNUSUAL_TEXT(unknown, "unknown variables", "", "$a", "", noVariables);
UNUSUAL_TEXT(braces, "variables in braces", "", "${a}", "");
UNUSUAL_TEXT(quoted, "variables in double quotes", "\"", "$a ", "\"");
UNUSUAL_TEXT(hidden, "variables behind text", "", "abc$X", "");
UNUSUAL_TEXT(hiddenApart, "variables behind text, apart", "", "abc$X-", "");
UNUSUAL_TEXT(farOff, "one word with a variable at its end", "", "a", "$X");
UNUSUAL_TEXT(hiddenBraces, "variables in braces behind text", "", "abc${X}", "");
UNUSUAL_TEXT(escaped, "escaped variables and one that is not", "", "\\$a", "$a");
UNUSUAL_TEXT(halfEscaped, "backslashes and variables", "", "\\\\$a", "");
UNUSUAL_TEXT(backslashesFarOff, "backslashes and one variable", "", "\\\\", "$a");
UNUSUAL_TEXT(openBraces, "braces that are not closed", "", "${a", "");

/// Half of it in front of the variables.
void variablesFarOff(benchmark::State& state)
{
    const QString text = textOf("", "a", "", usualSize() / 2)
        + textOf("", "$X", "", usualSize() / 2);
    runPairs(state, parsing(text, someVariables()),
             parsing(ordinaryText(usualSize()), someVariables()));
}
BENCHMARK(variablesFarOff)
    ->Name("parseArgfile, one word with variables in its second half / ordinary text")
    ->UseManualTime()
    ->Iterations(5);

void byLength(benchmark::State& state)
{
    runPairs(state, parsing(ordinaryText(usualSize()), someVariables()),
             parsing(ordinaryText(usualSize() / 2), someVariables()));
}
BENCHMARK(byLength)
    ->Name("parseArgfile, ordinary text / half of it")
    ->UseManualTime()
    ->Iterations(9);

/// That takes strings in double quotes apart and knows no variables or comments.
void againstQt(benchmark::State& state, const QString& text)
{
    const auto split = [text] {
        const QStringList arguments = QProcess::splitCommand(text);
        benchmark::DoNotOptimize(&arguments);
    };
    runPairs(state, parsing(text, someVariables()), inProcess(split));
}

void ordinaryAgainstQt(benchmark::State& state)
{
    againstQt(state, ordinaryText(usualSize()));
}
BENCHMARK(ordinaryAgainstQt)
    ->Name("parseArgfile / QProcess::splitCommand, ordinary text")
    ->UseManualTime()
    ->Iterations(9);

/// Here ordinary text is no peer: these are many times as many arguments.
void lettersAgainstQt(benchmark::State& state)
{
    againstQt(state, textOf("", "a ", "", usualSize()));
}
BENCHMARK(lettersAgainstQt)
    ->Name("parseArgfile / QProcess::splitCommand, words of one letter")
    ->UseManualTime()
    ->Iterations(9);

void highlighting(benchmark::State& state)
{
    const QString text = ordinaryText(usualSize());
    const auto highlight = [text] {
        const QList<tresk::ArgfileToken> tokens = ArgfileParser().getHighlighterList(text);
        benchmark::DoNotOptimize(&tokens);
    };
    runPairs(state, inProcess(highlight), parsing(text, someVariables()));
}
BENCHMARK(highlighting)
    ->Name("getHighlighterList / parseArgfile, ordinary text")
    ->UseManualTime()
    ->Iterations(9);

} // namespace

BENCHMARK_MAIN();
