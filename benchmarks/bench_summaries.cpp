// Reading summaries: against Qt's XML reader, over lengths, and of texts made to be slow.

#include "Data.h"
#include "PairedRuns.h"

#include <tresk/SummaryCreator.h>
#include <tresk/SummaryReader.h>
#include <tresk/TreskParser.h>

#include <QFile>
#include <QLoggingCategory>
#include <QXmlStreamReader>

using namespace treskbench;
using namespace tresk;

namespace {

void read(const QString& text, int times)
{
    for (int i = 0; i < times; ++i) {
        const Summary summary = SummaryReader().readSummary(text);
        benchmark::DoNotOptimize(&summary);
    }
}

/// Takes the name and the text of every leaf from @p text.
void readWithQt(const QString& text, int times)
{
    for (int i = 0; i < times; ++i) {
        QXmlStreamReader reader(text);
        QString name;
        QString content;
        while (!reader.atEnd()) {
            const QXmlStreamReader::TokenType token = reader.readNext();
            if (token == QXmlStreamReader::StartElement)
                name = reader.name().toString();
            else if (token == QXmlStreamReader::Characters && !reader.isWhitespace())
                content = reader.text().toString();
            benchmark::DoNotOptimize(&content);
        }
        if (reader.hasError())
            qFatal("the summary is no XML");
    }
}

void againstQt(benchmark::State& state)
{
    const QString text = summaryDocument(int(state.range(0)));
    const int times = std::max(1, scaled(4000000) / int(text.size()));
    runPairs(state, inProcess([&] { read(text, times); }),
             inProcess([&] { readWithQt(text, times); }));
    state.counters["bytes"] = double(text.size());
}
BENCHMARK(againstQt)
    ->Name("readSummary / QXmlStreamReader, by number of files")
    ->Arg(3)
    ->Arg(3600)
    ->UseManualTime()
    ->Iterations(15);

/// Reports as "ratio" the time per character of @p text to that of @p ordinary.
void perCharacter(benchmark::State& state, const QString& text, const QString& ordinary)
{
    const int length = scaled(8000000);
    const auto run = [length](const QString& what) {
        const int times = std::max(1, length / int(what.size()));
        return [what, times, seconds = inProcess([what, times] { read(what, times); })] {
            return seconds() / times / double(what.size()) * 1e9;
        };
    };
    runPairs(state, run(text), run(ordinary));
}

void byLength(benchmark::State& state)
{
    perCharacter(state, summaryDocument(3600), summaryDocument(3));
}
BENCHMARK(byLength)
    ->Name("readSummary, nanoseconds a character (as s): 2 MB / 2 KB")
    ->UseManualTime()
    ->Iterations(15);

const int hostileLength = 1000000;

QString inStep(const QString& content)
{
    return QStringLiteral("<trxchange><Workflowstep>") + content
        + QStringLiteral("</Workflowstep></trxchange>");
}

QString distinctNames()
{
    QString text;
    for (int i = 0; i < 20000; ++i)
        text += QStringLiteral("<element-number-%1>text</element-number-%1>").arg(i);
    return inStep(text);
}

QString nested()
{
    const int depth = hostileLength / 15;
    return inStep(QStringLiteral("<Title>").repeated(depth)
                  + QStringLiteral("</Title>").repeated(depth));
}

QString brackets()
{
    return QString(hostileLength, QLatin1Char('<'));
}

/// Every run of characters nearly is the closing tag that is sought.
QString nearMisses()
{
    const QString name(1000, QLatin1Char('<'));
    return inStep(QLatin1Char('<') + name + QLatin1Char('>')
                  + (name + QLatin1Char('>')).repeated(hostileLength / 1001));
}

void hostile(benchmark::State& state)
{
    // Each text once as an element of a step, where it is reported, and so without that.
    QLoggingCategory::setFilterRules(QStringLiteral("tresk.debug=false"));
    QString (*const texts[])() = {distinctNames, nested, brackets, nearMisses};
    perCharacter(state, texts[state.range(0)](), summaryDocument(1780));
}
BENCHMARK(hostile)
    ->Name("readSummary, nanoseconds a character (as s): hostile 1 MB / ordinary 1 MB")
    ->DenseRange(0, 3)
    ->UseManualTime()
    ->Iterations(9);

void allSteps(benchmark::State& state)
{
    TreskParser shorter;
    TreskParser longer;
    if (!shorter.open(writeSummaryHistory(QStringLiteral("shorter.pdf"), scaled(10000)))
        || !longer.open(writeSummaryHistory(QStringLiteral("longer.pdf"), 2 * scaled(10000))))
        qFatal("cannot read benchmark data");
    const auto create = [](TreskParser& parser) {
        if (SummaryCreator().createSummaries(parser).size() != parser.getNumSections())
            qFatal("wrong summaries");
    };
    runPairs(state, inProcess([&] { create(longer); }), inProcess([&] { create(shorter); }));
}
BENCHMARK(allSteps)
    ->Name("createSummaries, 20000 steps / 10000 steps")
    ->UseManualTime()
    ->Iterations(7);

} // namespace

BENCHMARK_MAIN();
