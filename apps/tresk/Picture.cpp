#include "Picture.h"

#include <QtEndian>

namespace tresk::cli {

namespace {

constexpr qint64 mostPixels = 40'000'000; // unpacked, four bytes each

struct Extent {
    qint64 width = 0;
    qint64 height = 0;

    bool isShowable() const { return width > 0 && height > 0 && width <= mostPixels / height; }
};

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

/// From the header chunk, which has to come first (RFC 2083).
Extent extentOfPng(const QByteArray& content)
{
    if (content.size() < 24 || content.mid(12, 4) != "IHDR")
        return {};
    return {bigEndianAt<quint32>(content, 16), bigEndianAt<quint32>(content, 20)};
}

Extent extentOfGif(const QByteArray& content)
{
    if (content.size() < 10)
        return {};
    return {littleEndianAt<quint16>(content, 6), littleEndianAt<quint16>(content, 8)};
}

/// From the first frame header (ITU-T T.81).
Extent extentOfJpeg(const QByteArray& content)
{
    int position = 2;
    while (position + 9 <= content.size() && content.at(position) == '\xff') {
        const int marker = static_cast<unsigned char>(content.at(position + 1));
        const bool isFrame = marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8
            && marker != 0xcc;
        if (isFrame) {
            return {bigEndianAt<quint16>(content, position + 7),
                    bigEndianAt<quint16>(content, position + 5)};
        }
        position += 2 + bigEndianAt<quint16>(content, position + 2);
    }
    return {};
}

/// From the first chunk (RFC 9649).
Extent extentOfWebp(const QByteArray& content)
{
    if (content.size() < 30)
        return {};
    const QByteArray chunk = content.mid(12, 4);
    if (chunk == "VP8 ") {
        return {littleEndianAt<quint16>(content, 26) & 0x3fff,
                littleEndianAt<quint16>(content, 28) & 0x3fff};
    }
    if (chunk == "VP8L") {
        const auto bits = littleEndianAt<quint32>(content, 21);
        return {(bits & 0x3fff) + 1, (bits >> 14 & 0x3fff) + 1};
    }
    if (chunk == "VP8X") {
        return {(littleEndianAt<quint32>(content, 24) & 0xffffff) + 1,
                (littleEndianAt<quint32>(content, 26) >> 8) + 1};
    }
    return {};
}

} // namespace

QByteArray pictureType(const QByteArray& content)
{
    if (content.startsWith("\x89PNG\r\n\x1a\n"))
        return extentOfPng(content).isShowable() ? "image/png" : "";
    if (content.startsWith("\xff\xd8\xff"))
        return extentOfJpeg(content).isShowable() ? "image/jpeg" : "";
    if (content.startsWith("GIF87a") || content.startsWith("GIF89a"))
        return extentOfGif(content).isShowable() ? "image/gif" : "";
    if (content.startsWith("RIFF") && content.mid(8, 4) == "WEBP")
        return extentOfWebp(content).isShowable() ? "image/webp" : "";
    return {};
}

} // namespace tresk::cli
