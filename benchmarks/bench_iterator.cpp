// Reading lines and opening long histories.

#include "Data.h"
#include "PairedRuns.h"

#include <tresk/FileIterator.h>
#include <tresk/TreskParser.h>

#include <QFile>

#include <cstring>

#include <malloc.h>

using namespace treskbench;
using tresk::FileIterator;
using tresk::TreskParser;

namespace {

const int mebibyte = 1024 * 1024;

int countLines(const QString& path)
{
    FileIterator iterator;
    int lines = 0;
    iterator.open(path);
    for (bool more = iterator.firstLine(); more; more = iterator.nextLine())
        ++lines;
    return lines;
}

/// What a loop without lines of its own needs: reading, and looking for line feeds.
int countLineFeeds(const QString& path)
{
    QFile file(path);
    QByteArray buffer(512 * 1024, Qt::Uninitialized);
    int lines = 0;
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        qFatal("cannot read benchmark data");
    for (qint64 count = 0; (count = file.read(buffer.data(), buffer.size())) > 0;) {
        const char* from = buffer.constData();
        const char* const end = from + count;
        while ((from = static_cast<const char*>(memchr(from, '\n', std::size_t(end - from))))
               != nullptr) {
            ++lines;
            ++from;
        }
    }
    return lines;
}

void forwardLines(benchmark::State& state)
{
    const QString path = writeHostDocument(QStringLiteral("lines.pdf"), 256, false);
    runPairs(state, inProcess([&] { benchmark::DoNotOptimize(countLines(path)); }),
             inProcess([&] { benchmark::DoNotOptimize(countLineFeeds(path)); }));
}
BENCHMARK(forwardLines)
    ->Name("nextLine over 256 MiB / memchr loop")
    ->UseManualTime()
    ->Iterations(5);

QString writeOneLine(int mebibytes)
{
    const QString path = dataPath(QStringLiteral("line%1").arg(mebibytes));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write benchmark data");
    file.write("\n"); // so that opening reads a short line
    for (int i = 0; i < mebibytes; ++i)
        file.write(QByteArray(mebibyte, 'x'));
    return path;
}

void readBackwards(const QString& path)
{
    FileIterator iterator;
    iterator.open(path);
    if (!iterator.lastLine())
        qFatal("no line");
}

void longLineBackwards(benchmark::State& state)
{
    // Memory stays with the process between the runs: getting it anew from the system costs as
    // much as all the rest, and not the same per byte for both lengths.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, -1);
    const QString longer = writeOneLine(256);
    const QString shorter = writeOneLine(64);
    runPairs(state, inProcess([&] { readBackwards(longer); }),
             inProcess([&] { readBackwards(shorter); }));
}
BENCHMARK(longLineBackwards)
    ->Name("line of 256 MiB backwards / of 64 MiB")
    ->UseManualTime()
    ->Iterations(7);

void openDocument(const QString& path, int sections, int files)
{
    TreskParser parser;
    if (!parser.open(path) || parser.getNumSections() != sections || parser.getNumFiles() != files)
        qFatal("wrong lists");
}

void manySections(benchmark::State& state)
{
    const QString longer = writeLongHistory(QStringLiteral("sections1"), 100000, 0);
    const QString shorter = writeLongHistory(QStringLiteral("sections2"), 50000, 0);
    runPairs(state, inProcess([&] { openDocument(longer, 100000, 0); }),
             inProcess([&] { openDocument(shorter, 50000, 0); }));
}
BENCHMARK(manySections)->Name("open 100000 sections / 50000")->UseManualTime()->Iterations(7);

void manyFiles(benchmark::State& state)
{
    const QString longer = writeLongHistory(QStringLiteral("files1"), 1, 100000);
    const QString shorter = writeLongHistory(QStringLiteral("files2"), 1, 50000);
    runPairs(state, inProcess([&] { openDocument(longer, 1, 100000); }),
             inProcess([&] { openDocument(shorter, 1, 50000); }));
}
BENCHMARK(manyFiles)->Name("open 100000 files / 50000")->UseManualTime()->Iterations(7);

} // namespace

BENCHMARK_MAIN();
