// Parsing the marker line of an embedded file against Qt's regular expressions.

#include "PairedRuns.h"

#include "container/Marker.h"

#include <QRegularExpression>

using namespace treskbench;

namespace {

const int lines = 10000;

QByteArray markerLine()
{
    return QByteArray(
        "%<--! $TRESK_EMBEDDEDFILE_BEGIN [filetype:measurement][filename:bearing_run_17.csv]"
        "[desc:Vibration of the front bearing over the whole run][comment:second try]"
        "[compression:flate][filesize:184223][cfilesize:40211][blocksize:40213][offset:1]"
        "[md5file:900150983cd24fb0d6963f7d28e17f72][md5cfile:d41d8cd98f00b204e9800998ecf8427e]-->"
        "\n");
}

QRegularExpression markerExpression()
{
    QString pattern = QStringLiteral(
        "^%<--! \\$TRESK_EMBEDDEDFILE_BEGIN \\[filetype:@T\\]\\[filename:@T\\]\\[desc:@T\\]"
        "\\[comment:@T\\]\\[compression:@T\\]\\[filesize:@N\\]\\[cfilesize:@N\\]\\[blocksize:@N\\]"
        "\\[offset:@N\\]\\[md5file:@H\\]\\[md5cfile:@H\\]-->");
    pattern.replace(QStringLiteral("@T"),
                    QStringLiteral("((?:[^\\]\\\\]|(?:\\\\\\\\)|(?:\\\\\\])|(?:\\\\n))*)"));
    pattern.replace(QStringLiteral("@N"), QStringLiteral("([0-9]*)"));
    pattern.replace(QStringLiteral("@H"), QStringLiteral("((?:)|(?:[a-f0-9]{32}))"));
    QRegularExpression expression(pattern);
    expression.optimize();
    return expression;
}

void parseMarkers(const QByteArray& line)
{
    for (int i = 0; i < lines; ++i)
        benchmark::DoNotOptimize(tresk::readFileMarker(*tresk::lineText(line)));
}

void matchExpression(const QRegularExpression& expression, const QByteArray& line)
{
    for (int i = 0; i < lines; ++i) {
        const QRegularExpressionMatch match = expression.match(QString::fromUtf8(line));
        for (int value = 1; value <= 11; ++value)
            benchmark::DoNotOptimize(match.captured(value));
    }
}

void fileMarker(benchmark::State& state)
{
    const QByteArray line = markerLine();
    const QRegularExpression expression = markerExpression();
    runPairs(state, inProcess([&] { parseMarkers(line); }),
             inProcess([&] { matchExpression(expression, line); }));
    state.counters["line_bytes"] = double(line.size());
    state.counters["us_per_line"] = benchmark::Counter(double(state.iterations()) * lines * 1e-6,
                                                       benchmark::Counter::kIsRate
                                                           | benchmark::Counter::kInvert);
}
BENCHMARK(fileMarker)
    ->Name("marker line, 10000 times / QRegularExpression")
    ->UseManualTime()
    ->Iterations(9);

} // namespace

BENCHMARK_MAIN();
