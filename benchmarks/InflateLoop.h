#ifndef TRESK_BENCHMARKS_INFLATELOOP_H
#define TRESK_BENCHMARKS_INFLATELOOP_H

#include <tresk/TreskParser.h>

#include <QFile>

#include <memory>

#include <zlib.h>

namespace treskbench {

/// What reading a compressed file costs without a library: reads the stored bytes of @p tag in
/// pieces of 256 KiB, inflates them into a buffer of 1 MiB, and hands both on.
template <typename Stored, typename Content>
void inflateLoop(const QString& document, const tresk::FileTag& tag, Stored onStored,
                 Content onContent)
{
    const int inputSize = 256 * 1024;
    const int outputSize = 1024 * 1024;
    QFile in(document);
    if (!in.open(QIODevice::ReadOnly | QIODevice::Unbuffered)
        || !in.seek(tag.pos + tag.tagLength + tag.offset))
        qFatal("cannot read benchmark data");
    const std::unique_ptr<char[]> input(new char[inputSize]);
    const std::unique_ptr<char[]> output(new char[outputSize]);
    z_stream stream{};
    inflateInit(&stream);
    qint64 left = tag.cfilesize;
    for (int result = Z_OK; result == Z_OK;) {
        if (stream.avail_in == 0) {
            const qint64 count = in.read(input.get(), qMin<qint64>(left, inputSize));
            left -= count;
            onStored(input.get(), int(count));
            stream.next_in = reinterpret_cast<Bytef*>(input.get());
            stream.avail_in = uInt(count);
        }
        stream.next_out = reinterpret_cast<Bytef*>(output.get());
        stream.avail_out = uInt(outputSize);
        result = inflate(&stream, Z_NO_FLUSH);
        onContent(output.get(), outputSize - int(stream.avail_out));
    }
    inflateEnd(&stream);
}

} // namespace treskbench

#endif
