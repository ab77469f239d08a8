#include "EmbeddedPictures.h"

#include "ContentReader.h"
#include "Picture.h"
#include "Text.h"

namespace tresk::cli {

namespace {

constexpr qint64 mostPictureBytes = qint64(4) * 1024 * 1024; // of a picture
constexpr qint64 mostPictureBytesInAll = qint64(32) * 1024 * 1024;
constexpr qint64 mostPixels = 40'000'000; // of a picture; unpacked, each takes four bytes
constexpr qint64 mostPixelsInAll = 200'000'000;

constexpr int bytesThatTellType = 16;

} // namespace

EmbeddedPictures::EmbeddedPictures(Document& document)
    : m_document(document)
    , m_bytesLeft(mostPictureBytesInAll)
    , m_pixelsLeft(mostPixelsInAll)
{
}

EmbeddedPicture EmbeddedPictures::take(const FileTag& file)
{
    if (m_taken.contains(file.id))
        return {};
    m_taken.insert(file.id);
    EmbeddedPicture picture = read(file);
    if (picture.content.isEmpty())
        return picture;
    const PictureExtent extent = pictureExtent(picture.content);
    m_bytesLeft -= picture.content.size();
    m_pixelsLeft -= extent.width * extent.height;
    return picture;
}

EmbeddedPicture EmbeddedPictures::read(const FileTag& file)
{
    ContentReader reader(m_document, file);
    QByteArray content;
    QByteArray piece;
    const auto readPiece = [&] {
        piece = reader.next();
        content += piece;
        return !piece.isEmpty();
    };
    while (content.size() < bytesThatTellType && readPiece()) { }
    const QByteArray type = pictureType(content);
    if (type.isEmpty())
        return {};
    if (file.filesize > mostPictureBytes)
        return {type, {}, QStringLiteral("it has more than ") + humanSize(mostPictureBytes)};
    if (file.filesize > m_bytesLeft) {
        return {type,
                {},
                QStringLiteral("the pictures on this page have no more than %1 in all")
                    .arg(humanSize(mostPictureBytesInAll))};
    }
    while (readPiece()) { }
    if (!reader.error().isEmpty())
        return {type, {}, reader.error()};
    const QString reason = obstacle(content);
    return reason.isEmpty() ? EmbeddedPicture{type, content, {}}
                            : EmbeddedPicture{type, {}, reason};
}

/// Why a picture with that content is not shown; nothing if it is.
QString EmbeddedPictures::obstacle(const QByteArray& content) const
{
    const PictureExtent extent = pictureExtent(content);
    if (!extent.isKnown())
        return QStringLiteral("it is damaged");
    if (extent.width > mostPixels / extent.height) {
        return QStringLiteral("it has more than %1 million pixels").arg(mostPixels / 1'000'000);
    }
    if (extent.width * extent.height > m_pixelsLeft) {
        return QStringLiteral("the pictures on this page have no more than %1 million pixels in "
                              "all")
            .arg(mostPixelsInAll / 1'000'000);
    }
    return {};
}

} // namespace tresk::cli
