// Compiling queries and asking them of summaries in memory. Searching through files is measured
// in bench_processes.

#include "PairedRuns.h"

#include <tresk/Summary.h>
#include <tresk/TreskFindQuery.h>

using namespace treskbench;
using namespace tresk;

namespace {

Summary step(int number, int files)
{
    Summary summary;
    summary.tagId = number;
    summary.timestamp = QStringLiteral("2019-03-12 14:33:07");
    summary.title = QStringLiteral("Spectrum of the front bearing, run %1").arg(number);
    summary.description = QStringLiteral("Whole run, window of 4096 samples");
    summary.command = QStringLiteral("spectrum --window 4096 --out run_%1.csv").arg(number);
    summary.tool = QStringLiteral("Spectrum");
    summary.host = QStringLiteral("lab-04");
    summary.user = QStringLiteral("Meier");
    for (int i = 0; i < files; ++i) {
        FileSummary file;
        file.tagId = number * files + i;
        file.filename = QStringLiteral("run_%1_%2.csv").arg(number).arg(i);
        file.filepath = QStringLiteral("/data/projects/bridge");
        file.filetype = QStringLiteral("data");
        file.uncompressedMD5 = QStringLiteral("%1").arg(file.tagId, 32, 16, QLatin1Char('0'));
        file.filePurpose = QStringLiteral("InFile");
        summary.files.append(file);
    }
    return summary;
}

QList<Summary> history(int steps, int filesEach)
{
    QList<Summary> summaries;
    for (int i = 0; i < steps; ++i)
        summaries.append(step(i, filesEach));
    return summaries;
}

bool matches(const QString& query, const QList<Summary>& summaries)
{
    const TreskFindQuery compiled(query);
    if (!compiled.isValid())
        qFatal("wrong query");
    return compiled.matches(summaries);
}

bool containsWord(const QString& text, const QString& word)
{
    return text.contains(word, Qt::CaseInsensitive);
}

bool containsWord(const Summary& summary, const QString& word)
{
    for (const QString& text :
         {summary.md5Signature, summary.treskRootFile, summary.timestamp, summary.title,
          summary.description, summary.comment, summary.command, summary.tool, summary.toolPath,
          summary.host, summary.user, summary.creator}) {
        if (containsWord(text, word))
            return true;
    }
    for (const FileSummary& file : summary.files) {
        for (const QString& text :
             {file.uncompressedMD5, file.description, file.comment, file.filename, file.filepath,
              file.filetype, file.lastModified, file.filePurpose, file.compressedMD5}) {
            if (containsWord(text, word))
                return true;
        }
    }
    return false;
}

void bareWord(benchmark::State& state)
{
    const QList<Summary> summaries = history(10000, 2);
    const QString word = QStringLiteral("vibration");
    const auto plainLoop = [&] {
        for (const Summary& summary : summaries) {
            if (containsWord(summary, word))
                qFatal("wrong answer");
        }
    };
    const auto query = [&] {
        if (matches(word, summaries))
            qFatal("wrong answer");
    };
    runPairs(state, inProcess(query), inProcess(plainLoop));
}
BENCHMARK(bareWord)
    ->Name("a word in 10000 summaries / loop of QString::contains")
    ->UseManualTime()
    ->Iterations(15);

/// Two names of which each may be any of 6000 records; only the last two fit.
void join(benchmark::State& state)
{
    QList<Summary> summaries = history(1000, 5);
    summaries.last().files[3].comment = QStringLiteral("the first one");
    summaries.last().files[4].description = QStringLiteral("the first one");
    const auto query = [&] {
        if (!matches(QStringLiteral("a:comment == b:description && a:comment != ''"), summaries))
            qFatal("wrong answer");
    };
    runPairs(state, inProcess(query),
             inProcess([&] { matches(QStringLiteral("lab"), summaries); }));
}
BENCHMARK(join)
    ->Name("a join over 6000 records / a word that is found at once")
    ->UseManualTime()
    ->Iterations(5);

void joinOfAllPairs(benchmark::State& state)
{
    QList<Summary> summaries = history(1000, 5);
    summaries.last().files[4].description = summaries.last().files[3].filename;
    const auto query = [&] {
        if (!matches(QStringLiteral("a:filename == b:description && a:isfile && b:isfile"),
                     summaries))
            qFatal("wrong answer");
    };
    runPairs(state, inProcess(query),
             inProcess([&] { matches(QStringLiteral("lab"), summaries); }));
}
BENCHMARK(joinOfAllPairs)
    ->Name("a join over all pairs of 5000 files / a word that is found at once")
    ->UseManualTime()
    ->Iterations(5);

/// What @p times compilations cost.
void compile(const QString& query, int times)
{
    for (int i = 0; i < times; ++i) {
        if (!TreskFindQuery(query).isValid())
            qFatal("wrong query");
    }
}

void compileQuery(benchmark::State& state)
{
    const QString longer = QStringLiteral("step:title %contains 'bearing' && (file:filename "
                                          "%matches *.csv || file:filesize > 10kb) && !x:isfile");
    runPairs(state, inProcess([&] { compile(longer, 1000); }),
             inProcess([&] { compile(QStringLiteral("bearing"), 1000); }));
    state.counters["characters"] = double(longer.size());
}
BENCHMARK(compileQuery)
    ->Name("compiling a query of 100 characters, 1000 times / one word")
    ->UseManualTime()
    ->Iterations(9);

} // namespace

BENCHMARK_MAIN();
