// What headers of pictures say of their size: of pictures made here it is known, of any other bytes
// it does not depend on what comes behind those that tell it.

#include "ByteSource.h"
#include "FuzzTarget.h"

#include <ByteOrder.h>
#include <Picture.h>

#include <algorithm>

using tresk::cli::pictureExtent;
using tresk::cli::PictureExtent;
using tresk::cli::pictureType;
using tresk_fuzz::ByteSource;
using tresktest::bigEndian;
using tresktest::littleEndian;

namespace {

quint16 shortFrom(ByteSource& source)
{
    return quint16(source.below(65536));
}

quint32 longFrom(ByteSource& source)
{
    return quint32(shortFrom(source)) << 16 | shortFrom(source);
}

/// A picture, and the size that its header says.
struct Made {
    QByteArray content;
    PictureExtent extent;
    const char* type;
};

Made madePng(ByteSource& source)
{
    const quint32 width = longFrom(source);
    const quint32 height = longFrom(source);
    return {QByteArray("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16) + bigEndian(width) + bigEndian(height)
                + source.rest(),
            {width, height},
            "image/png"};
}

/// Segments of any kinds but frames, with fill bytes between them, and then a frame.
Made madeJpeg(ByteSource& source)
{
    const QByteArray others = QByteArrayLiteral("\xc4\xc8\xcc\xda\xdb\xdd\xe0\xe1\xef\xfe");
    const QByteArray frames = QByteArrayLiteral(
        "\xc0\xc1\xc2\xc3\xc5\xc6\xc7\xc9\xca\xcb\xcd\xce\xcf");
    QByteArray content("\xff\xd8");
    for (int i = source.below(5); i > 0; --i) {
        const QByteArray data = source.bytes(source.below(20));
        content += QByteArray(1 + source.below(3), '\xff')
            + others.at(source.below(int(others.size()))) + bigEndian(quint16(data.size() + 2))
            + data;
    }
    content += QByteArray(1 + source.below(3), '\xff')
        + frames.at(source.below(int(frames.size())));
    const quint16 width = shortFrom(source);
    const quint16 height = shortFrom(source);
    content += bigEndian(shortFrom(source)) + '\x08' + bigEndian(height) + bigEndian(width);
    return {content + source.rest(), {width, height}, "image/jpeg"};
}

/// A table of colours or none, extensions, and then a frame, which may be beyond the screen.
Made madeGif(ByteSource& source)
{
    const quint16 width = shortFrom(source);
    const quint16 height = shortFrom(source);
    const int colours = source.below(9); // as a power of two; none for 0
    QByteArray content = source.flag() ? "GIF87a" : "GIF89a";
    content += littleEndian(width) + littleEndian(height);
    content += colours == 0 ? '\x08' : char(0x80 + colours - 1);
    content += QByteArray(2 + (colours == 0 ? 0 : 3 << colours), char(source.byte()));
    for (int i = source.below(4); i > 0; --i) {
        content += QByteArray("!") + char(source.byte());
        for (int j = source.below(4); j > 0; --j) {
            const QByteArray block = source.bytes(1 + source.below(255));
            if (!block.isEmpty())
                content += char(block.size()) + block;
        }
        content += '\0';
    }
    const quint16 frame[] = {shortFrom(source), shortFrom(source), shortFrom(source),
                             shortFrom(source)};
    content += ',';
    for (const quint16 number : frame)
        content += littleEndian(number);
    content += char(source.byte());
    return {content + source.rest(),
            {std::max(int(width), frame[0] + frame[2]), std::max(int(height), frame[1] + frame[3])},
            "image/gif"};
}

Made madeWebp(ByteSource& source)
{
    const QByteArray head = "RIFF" + littleEndian(longFrom(source)) + "WEBPVP8";
    const QByteArray size = littleEndian(longFrom(source));
    const int bits = source.below(3) == 0 ? 24 : 14; // of each number
    const quint32 most = (1U << bits) - 1;
    const quint32 width = longFrom(source) & most;
    const quint32 height = longFrom(source) & most;
    const QByteArray more = source.rest() + QByteArray(16, '\0');
    if (bits == 24) {
        return {head + 'X' + size + QByteArray(4, '\0') + littleEndian(width).left(3)
                    + littleEndian(height).left(3) + more,
                {qint64(width) + 1, qint64(height) + 1},
                "image/webp"};
    }
    if ((size.at(0) & 1) != 0) {
        return {head + 'L' + size + '\x2f' + littleEndian(width | height << 14) + more,
                {qint64(width) + 1, qint64(height) + 1},
                "image/webp"};
    }
    return {head + ' ' + size + QByteArray(6, '\x9d') + littleEndian(quint16(width))
                + littleEndian(quint16(height)) + more,
            {width, height},
            "image/webp"};
}

bool areEqual(const PictureExtent& a, const PictureExtent& b)
{
    return a.isKnown() == b.isKnown()
        && (!a.isKnown() || (a.width == b.width && a.height == b.height));
}

/// Where @p content ends may make its size unknown, but not another one.
void requireSameOfCuts(const QByteArray& content)
{
    const PictureExtent whole = pictureExtent(content);
    TRESK_REQUIRE(!whole.isKnown() || !pictureType(content.left(16)).isEmpty());
    TRESK_REQUIRE(whole.width <= 0xFFFFFFFFLL && whole.height <= 0xFFFFFFFFLL);
    bool wasKnown = false;
    for (int size = 0; size <= std::min(int(content.size()), 1000); ++size) {
        const PictureExtent extent = pictureExtent(content.left(size));
        TRESK_REQUIRE(extent.isKnown() ? areEqual(extent, whole) : !wasKnown);
        wasKnown = extent.isKnown();
    }
}

void runPicture(const QByteArray& input)
{
    requireSameOfCuts(input);
    ByteSource source(input);
    constexpr Made (*kinds[])(ByteSource&) = {madePng, madeJpeg, madeGif, madeWebp};
    const Made made = kinds[source.below(4)](source);
    TRESK_REQUIRE(pictureType(made.content.left(16)) == made.type);
    TRESK_REQUIRE(areEqual(pictureExtent(made.content), made.extent));
    requireSameOfCuts(made.content);
}

const tresk_fuzz::Target target("picture", runPicture);

} // namespace
