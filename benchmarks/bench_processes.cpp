// Whole processes against other programs that do the like.

#include "Data.h"
#include "PairedRuns.h"

#include <QDir>
#include <QFile>

using namespace treskbench;

namespace {

std::vector<std::string> grep(const std::string& path)
{
    return {"env", "LC_ALL=C", "grep", "-a", "-c", "^%<--! \\$TRESK_EMBEDDEDFILE_BEGIN", path};
}

void openWithHistory(benchmark::State& state)
{
    const std::string path =
        writeHostDocument(QStringLiteral("history.pdf"), largestMebibytes(), true).toStdString();
    runPairs(state, wholeProcess({TRESK_COMMAND, "log", path}), wholeProcess(grep(path)));
    QFile::remove(QString::fromStdString(path));
}
BENCHMARK(openWithHistory)->Name("open a large document / grep")->UseManualTime()->Iterations(7);

void openWithout(benchmark::State& state)
{
    const std::string path =
        writeHostDocument(QStringLiteral("empty.pdf"), largestMebibytes(), false).toStdString();
    runPairs(state, wholeProcess({TRESK_DRIVER, "checksums", path}), wholeProcess(grep(path)));
    QFile::remove(QString::fromStdString(path));
}
BENCHMARK(openWithout)->Name("the same without any section / grep")->UseManualTime()->Iterations(7);

void checksums(benchmark::State& state)
{
    const int size = std::max(largestMebibytes() / 2, 1);
    const std::string path =
        writeLargeFileDocument(QStringLiteral("stored.pdf"), size, false).toStdString();
    runPairs(state, wholeProcess({TRESK_DRIVER, "checksums", path}),
             wholeProcess({"md5sum", path}));
    QFile::remove(QString::fromStdString(path));
}
BENCHMARK(checksums)->Name("checksums of a stored file / md5sum")->UseManualTime()->Iterations(7);

void validation(benchmark::State& state)
{
    const int size = std::max(largestMebibytes() / 2, 1);
    const std::string path =
        writeLargeFileDocument(QStringLiteral("validated.pdf"), size, false).toStdString();
    runPairs(state, wholeProcess({TRESK_DRIVER, "validate", path}), wholeProcess({"md5sum", path}));
    QFile::remove(QString::fromStdString(path));
}
BENCHMARK(validation)->Name("validation of a stored file / md5sum")->UseManualTime()->Iterations(7);

void findWord(benchmark::State& state)
{
    const int count = std::max(largestMebibytes(), 10);
    const std::string folder = writeFolder(QStringLiteral("folder"), count).toStdString();
    const std::string word = "resonance";
    runPairs(state, wholeProcess({TRESK_COMMAND, "find", word, folder}),
             wholeProcess({"env", "LC_ALL=C", "grep", "-a", "-l", "-r", word, folder}));
    QDir(QString::fromStdString(folder)).removeRecursively();
}
BENCHMARK(findWord)
    ->Name("find in 1000 documents of 1 MiB / grep of the word")
    ->UseManualTime()
    ->Iterations(7);

/// Fifty runs at a time: one is too short for the clock of the processes.
Timed often(const Timed& once)
{
    return [once] {
        double sum = 0;
        for (int i = 0; i < 50; ++i)
            sum += once();
        return sum;
    };
}

void startup(benchmark::State& state)
{
    runPairs(state, often(wholeProcess({TRESK_COMMAND, "log", TRESK_SAMPLE})),
             often(wholeProcess({TRESK_STARTUP, TRESK_SAMPLE})));
}
BENCHMARK(startup)
    ->Name("log of a small sample, 50 times / a Qt start-up")
    ->UseManualTime()
    ->Iterations(9);

} // namespace

BENCHMARK_MAIN();
