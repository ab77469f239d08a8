// Content of embedded files: writing it to disk, reading it into memory.

#include "Data.h"
#include "InflateLoop.h"
#include "PairedRuns.h"

#include <tresk/TreskParser.h>

#include <QFile>

using namespace treskbench;
using tresk::FileTag;
using tresk::TreskParser;

namespace {

const int mebibyte = 1024 * 1024;

void inflateTo(const QString& target, const QString& document, const FileTag& tag)
{
    QFile out(target);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        qFatal("cannot write benchmark data");
    inflateLoop(
        document, tag, [](const char*, int) {},
        [&](const char* data, int size) { out.write(data, size); });
}

void writeCompressed(benchmark::State& state)
{
    const int size = std::max(largestMebibytes() / 2, 1);
    const QString document = writeLargeFileDocument(QStringLiteral("flate.pdf"), size, true);
    TreskParser parser;
    if (!parser.open(document) || parser.getNumFiles() != 1)
        qFatal("wrong lists");
    const QString ours = dataPath(QStringLiteral("ours"));
    const QString plain = dataPath(QStringLiteral("plain"));
    runPairs(state, inProcess([&] { parser.writeFileToDisk(0, ours); }),
             inProcess([&] { inflateTo(plain, document, *parser.getFile(0)); }));
    if (QFile(ours).size() != qint64(size) * mebibyte || QFile(plain).size() != QFile(ours).size())
        qFatal("wrong content");
    QFile::remove(ours);
    QFile::remove(plain);
}
BENCHMARK(writeCompressed)
    ->Name("writeFileToDisk, compressed / plain inflate loop")
    ->UseManualTime()
    ->Iterations(5);

void contentInMemory(benchmark::State& state)
{
    const QString document = writeLargeFileDocument(QStringLiteral("memory.pdf"), 16, true);
    TreskParser parser;
    if (!parser.open(document) || parser.getNumFiles() != 1)
        qFatal("wrong lists");
    const FileTag tag = *parser.getFile(0);
    const auto uncompress = [&] {
        // qUncompress expects the size, most significant byte first, in front of the stream.
        QByteArray stored = parser.getBytes(tag.pos + tag.tagLength + tag.offset, tag.cfilesize);
        for (int shift = 0; shift < 32; shift += 8)
            stored.prepend(char(tag.filesize >> shift));
        benchmark::DoNotOptimize(qUncompress(stored));
    };
    runPairs(state, inProcess([&] { benchmark::DoNotOptimize(parser.getFileContent(0)); }),
             inProcess(uncompress));
}
BENCHMARK(contentInMemory)
    ->Name("getFileContent of 16 MiB / qUncompress")
    ->UseManualTime()
    ->Iterations(9);

} // namespace

BENCHMARK_MAIN();
