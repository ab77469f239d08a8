#include "Picture.h"

#include <QtEndian>

#include <algorithm>

namespace tresk::cli {

namespace {

template <typename Number>
Number bigEndianAt(const QByteArray& content, int position)
{
    return qFromBigEndian<Number>(content.constData() + position);
}

template <typename Number>
Number littleEndianAt(const QByteArray& content, int position)
{
    return qFromLittleEndian<Number>(content.constData() + position);
}

int byteAt(const QByteArray& content, int position)
{
    return static_cast<unsigned char>(content.at(position));
}

/// From the header chunk, which has to come first (RFC 2083).
PictureExtent extentOfPng(const QByteArray& content)
{
    if (content.size() < 24 || content.mid(12, 4) != "IHDR")
        return {};
    return {bigEndianAt<quint32>(content, 16), bigEndianAt<quint32>(content, 20)};
}

/// Whether a segment with its length is behind the marker of a JPEG. Markers that stand alone have
/// no place in front of the frame.
bool beginsSegment(int marker)
{
    return marker >= 0xC0 && (marker < 0xD0 || marker > 0xD9);
}

/// From the first frame header (ITU-T T.81).
PictureExtent extentOfJpeg(const QByteArray& content)
{
    int position = 2;
    while (position + 9 <= content.size() && byteAt(content, position) == 0xFF) {
        const int marker = byteAt(content, position + 1);
        const bool isFrame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8
            && marker != 0xCC;
        if (isFrame) {
            return {bigEndianAt<quint16>(content, position + 7),
                    bigEndianAt<quint16>(content, position + 5)};
        }
        const bool isFillByte = marker == 0xFF;
        if (!isFillByte && !beginsSegment(marker))
            return {};
        position += isFillByte ? 1 : 2 + bigEndianAt<quint16>(content, position + 2);
    }
    return {};
}

/// Where the blocks of a GIF begin: behind its header and its table of colours.
int gifBlocks(const QByteArray& content)
{
    const int flags = byteAt(content, 10);
    return 13 + ((flags & 0x80) != 0 ? 3 << ((flags & 7) + 1) : 0);
}

/// From the header, and from the first frame, to whose size browsers enlarge the picture.
PictureExtent extentOfGif(const QByteArray& content)
{
    if (content.size() < 13)
        return {};
    PictureExtent extent = {littleEndianAt<quint16>(content, 6),
                            littleEndianAt<quint16>(content, 8)};
    int position = gifBlocks(content);
    while (position + 10 <= content.size() && byteAt(content, position) == 0x21) {
        position += 2; // to the first of the blocks with their lengths, of which the last has 0
        while (position < content.size() && byteAt(content, position) != 0)
            position += 1 + byteAt(content, position);
        ++position;
    }
    if (position + 10 > content.size() || byteAt(content, position) != 0x2C)
        return {};
    const qint64 right = littleEndianAt<quint16>(content, position + 1)
        + littleEndianAt<quint16>(content, position + 5);
    const qint64 bottom = littleEndianAt<quint16>(content, position + 3)
        + littleEndianAt<quint16>(content, position + 7);
    extent.width = std::max(extent.width, right);
    extent.height = std::max(extent.height, bottom);
    return extent;
}

/// From the first chunk (RFC 9649).
PictureExtent extentOfWebp(const QByteArray& content)
{
    if (content.size() < 30)
        return {};
    const QByteArray chunk = content.mid(12, 4);
    if (chunk == "VP8 ") {
        return {littleEndianAt<quint16>(content, 26) & 0x3FFF,
                littleEndianAt<quint16>(content, 28) & 0x3FFF};
    }
    if (chunk == "VP8L") {
        const auto bits = littleEndianAt<quint32>(content, 21);
        return {(bits & 0x3FFF) + 1, (bits >> 14 & 0x3FFF) + 1};
    }
    if (chunk == "VP8X") {
        return {(littleEndianAt<quint32>(content, 24) & 0xFFFFFF) + 1,
                (littleEndianAt<quint32>(content, 26) >> 8) + 1};
    }
    return {};
}

} // namespace

QByteArray pictureType(const QByteArray& start)
{
    if (start.startsWith("\x89PNG\r\n\x1a\n"))
        return "image/png";
    if (start.startsWith("\xff\xd8\xff"))
        return "image/jpeg";
    if (start.startsWith("GIF87a") || start.startsWith("GIF89a"))
        return "image/gif";
    if (start.startsWith("RIFF") && start.mid(8, 4) == "WEBP")
        return "image/webp";
    return {};
}

PictureExtent pictureExtent(const QByteArray& content)
{
    const QByteArray type = pictureType(content);
    if (type == "image/png")
        return extentOfPng(content);
    if (type == "image/jpeg")
        return extentOfJpeg(content);
    if (type == "image/gif")
        return extentOfGif(content);
    return type == "image/webp" ? extentOfWebp(content) : PictureExtent();
}

} // namespace tresk::cli
