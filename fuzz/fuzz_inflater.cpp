// The inflater with a stream in pieces: what it says after each piece must be what zlib says of
// all pieces so far in one go. Then the same stream as an embedded file, read by the parser.

#include "ByteSource.h"
#include "ParserComparison.h"
#include "ScratchFile.h"

#include "DocumentWriter.h"

#include <tresk/Inflater.h>

#include <algorithm>
#include <vector>

#include <zlib.h>

using tresk_fuzz::ByteSource;
using tresk_fuzz::ScratchFile;

namespace {

constexpr int mostInput = 2200;
constexpr int mostContent = mostInput * 1032; // what a stream of that size may yield
constexpr int mostCuts = 24;
constexpr int mostCutsOfLarge = 6;

struct Inflated {
    QByteArray content;
    bool finished = false;
    bool failed = false;
};

/// Decodes @p stream in one go, as far as it goes.
Inflated inflated(const QByteArray& stream)
{
    static std::vector<Bytef> room(mostContent + 64 * 1024);
    z_stream zlib = {};
    TRESK_REQUIRE(inflateInit(&zlib) == Z_OK);
    zlib.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(stream.constData()));
    zlib.avail_in = static_cast<uInt>(stream.size());
    zlib.next_out = room.data();
    zlib.avail_out = static_cast<uInt>(room.size());
    const int status = inflate(&zlib, Z_SYNC_FLUSH);
    inflateEnd(&zlib);
    Inflated result;
    result.content = QByteArray(reinterpret_cast<const char*>(room.data()),
                                static_cast<int>(zlib.total_out));
    result.finished = status == Z_STREAM_END;
    result.failed = !result.finished && status != Z_OK && status != Z_BUF_ERROR;
    return result;
}

/// Something to compress: a few runs of one byte, which may be long and fill a decoder's buffer
/// exactly, and bytes of the input.
QByteArray contentFrom(ByteSource& source)
{
    QByteArray content;
    for (int i = source.below(6); i > 0; --i) {
        const int kind = source.below(4);
        const int length = kind == 0 ? 256 * 1024 * source.below(5) : source.below(700);
        if (kind < 2)
            content += QByteArray(std::min(length, mostContent - 1024 - int(content.size())),
                                  static_cast<char>(source.byte()));
        else
            content += source.bytes(length % 64);
    }
    return content;
}

/// A stream made of the input: sound, damaged, two of them, or the input itself.
QByteArray streamFrom(ByteSource& source)
{
    const int kind = source.below(5);
    if (kind == 0)
        return source.rest();
    const int level = source.below(10);
    QByteArray stream = tresktest::deflated(contentFrom(source), level);
    if (kind == 2) {
        stream += tresktest::deflated(source.bytes(20));
        stream += source.bytes(20);
    }
    if (kind > 2)
        stream.truncate(mostInput);
    for (int i = kind > 2 ? source.below(4) : 0; i > 0; --i) {
        const int place = source.below(65536) % int(stream.size());
        stream[place] = static_cast<char>(source.byte());
    }
    if (kind == 4)
        stream.chop(source.below(64));
    return stream;
}

/// Feeds @p stream in pieces. Each call must give what the stream so far has more than before.
void feedInPieces(tresk::Inflater& inflater, const QByteArray& stream, ByteSource& source)
{
    // Each of them takes one go more.
    const int allowedCuts = inflated(stream).content.size() > 100 * 1000 ? mostCutsOfLarge
                                                                         : mostCuts;
    QByteArray content;
    int fed = 0;
    for (int cut = 0; fed < stream.size(); ++cut) {
        const int left = int(stream.size()) - fed;
        const int count = cut < allowedCuts
            ? std::min(left, source.below(8) == 0 ? source.below(65536) : source.below(40))
            : left;
        const bool wasValid = inflater.isValid();
        const bool wasFinished = inflater.hasFinished();
        const QByteArray piece = inflater.inflateData(stream.mid(fed, count));
        fed += count;
        const Inflated expected = inflated(stream.left(fed));
        TRESK_REQUIRE(inflater.isValid() == !expected.failed);
        TRESK_REQUIRE(inflater.hasFinished() == expected.finished);
        TRESK_REQUIRE(wasValid || !inflater.isValid());
        TRESK_REQUIRE(!wasFinished || (inflater.hasFinished() && piece.isEmpty()));
        content += piece;
        if (expected.failed)
            TRESK_REQUIRE(piece.isEmpty() && expected.content.startsWith(content));
        else
            TRESK_REQUIRE(content == expected.content);
    }
}

/// Has the parser read @p stream as a file of @p size bytes.
void readEmbedded(const QByteArray& stream, int size)
{
    static ScratchFile scratch;
    static ScratchFile output;
    tresktest::DocumentWriter document;
    document.writeHeader();
    tresktest::FileSpec file = tresktest::FileSpec::flate(QStringLiteral("file"), QByteArray());
    file.stored = stream;
    document.writeFile(file.with("filesize", QByteArray::number(size)));
    scratch.setContent(document.bytes());

    tresk::TreskParser parser;
    TRESK_REQUIRE(
        tresk_fuzz::openBoth(parser, tresk::ParseTolerant, scratch.path(), document.bytes()));
    tresk_fuzz::requireSameContent(parser, tresk::ParseTolerant, *parser.getFile(0));
    const Inflated whole = inflated(stream);
    const QPair<QString, QString> checksums = parser.calcChecksumsForFile(0);
    TRESK_REQUIRE(checksums.first == QString::fromLatin1(tresktest::md5Hex(stream)));
    TRESK_REQUIRE(
        checksums.second
        == QString::fromLatin1(tresktest::md5Hex(whole.finished ? whole.content : QByteArray())));
    TRESK_REQUIRE(parser.writeFileToDisk(0, output.path()));
    TRESK_REQUIRE(output.content() == (whole.failed ? QByteArray() : whole.content));
}

void runInflater(const QByteArray& input)
{
    if (input.size() > mostInput)
        return;
    static tresk::Inflater inflater;
    ByteSource source(input);
    const int cutsSize = source.below(64);
    ByteSource cuts(source.bytes(cutsSize));
    const int sizeShift = source.below(5) - 2;
    const QByteArray first = streamFrom(source);
    const QByteArray second = source.flag() ? streamFrom(source) : first;
    for (const QByteArray& stream : {first, second}) {
        inflater.reset();
        TRESK_REQUIRE(inflater.isValid() && !inflater.hasFinished());
        feedInPieces(inflater, stream, cuts);
        inflater.inflateData("more");
        TRESK_REQUIRE(inflater.inflateData(QByteArray()).isEmpty());
    }
    readEmbedded(first, std::max(0, int(inflated(first).content.size()) + sizeShift));
}

const tresk_fuzz::Target target("inflater", runInflater);

} // namespace
