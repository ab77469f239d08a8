// The queues on compressed files, against loops that do the same without a library. A stored
// file is validated in bench_processes.

#include "Data.h"
#include "InflateLoop.h"
#include "PairedRuns.h"

#include <tresk/ExtractionQueue.h>
#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QCryptographicHash>
#include <QFile>

using namespace treskbench;
using namespace tresk;

namespace {

const int mebibyte = 1024 * 1024;

int documentMebibytes()
{
    return std::max(largestMebibytes() / 2, 1);
}

void openLargeFile(TreskParser& parser, const QString& path)
{
    if (!parser.open(path) || parser.getNumFiles() != 1)
        qFatal("wrong lists");
}

void validate(TreskParser& parser)
{
    bool valid = false;
    ValidationQueue queue(&parser, 0);
    QObject::connect(&queue, &ValidationQueue::fileProcessed,
                     [&valid](int, bool isValid) { valid = isValid; });
    queue.addValidatees({0}, {});
    while (queue.process()) { }
    if (!valid)
        qFatal("wrong checksums");
}

void digestBoth(const QString& document, const FileTag& tag)
{
    QCryptographicHash stored(QCryptographicHash::Md5);
    QCryptographicHash content(QCryptographicHash::Md5);
    const auto add = [](QCryptographicHash& hash, const char* data, int size) {
        hash.addData(QByteArray::fromRawData(data, size));
    };
    inflateLoop(
        document, tag, [&](const char* data, int size) { add(stored, data, size); },
        [&](const char* data, int size) { add(content, data, size); });
    if (QString::fromLatin1(content.result().toHex()) != tag.md5file
        || QString::fromLatin1(stored.result().toHex()) != tag.md5cfile)
        qFatal("wrong checksums");
}

void validateCompressed(benchmark::State& state)
{
    const QString document = writeLargeFileDocument(QStringLiteral("flate.pdf"),
                                                    documentMebibytes(), true);
    TreskParser parser;
    openLargeFile(parser, document);
    runPairs(state, inProcess([&] { validate(parser); }),
             inProcess([&] { digestBoth(document, *parser.getFile(0)); }));
    QFile::remove(document);
}
BENCHMARK(validateCompressed)
    ->Name("validation of a compressed file / plain loop: inflate and both MD5")
    ->UseManualTime()
    ->Iterations(5);

void extract(TreskParser& parser, const QString& target)
{
    ExtractionQueue queue(&parser);
    queue.addExtractees({{0, target}});
    while (queue.process()) { }
}

void inflateTo(const QString& target, const QString& document, const FileTag& tag)
{
    QFile out(target);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        qFatal("cannot write benchmark data");
    inflateLoop(
        document, tag, [](const char*, int) {},
        [&](const char* data, int size) { out.write(data, size); });
}

void extractCompressed(benchmark::State& state)
{
    const QString document = writeLargeFileDocument(QStringLiteral("flate.pdf"),
                                                    documentMebibytes(), true);
    TreskParser parser;
    openLargeFile(parser, document);
    const QString ours = dataPath(QStringLiteral("ours"));
    const QString plain = dataPath(QStringLiteral("plain"));
    runPairs(state, inProcess([&] { extract(parser, ours); }),
             inProcess([&] { inflateTo(plain, document, *parser.getFile(0)); }));
    if (QFile(ours).size() != qint64(documentMebibytes()) * mebibyte
        || QFile(plain).size() != QFile(ours).size())
        qFatal("wrong content");
    QFile::remove(ours);
    QFile::remove(plain);
    QFile::remove(document);
}
BENCHMARK(extractCompressed)
    ->Name("extraction of a compressed file / plain loop: inflate and write")
    ->UseManualTime()
    ->Iterations(5);

} // namespace

BENCHMARK_MAIN();
