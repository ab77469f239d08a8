#ifndef TRESK_APPS_PICTURE_H
#define TRESK_APPS_PICTURE_H

#include <QByteArray>

namespace tresk::cli {

/// The media type of a picture that begins with @p start: "image/png", "image/jpeg", "image/gif"
/// or "image/webp". Empty for all else, pictures that can hold scripts among it. Told by the
/// content, of which 16 bytes suffice, whatever the file is called.
QByteArray pictureType(const QByteArray& start);

/// How many pixels a picture has.
struct PictureExtent {
    qint64 width = 0;
    qint64 height = 0;

    bool isKnown() const { return width > 0 && height > 0; }
};

/// What the header of a picture of such a type says. Not known where it is damaged.
PictureExtent pictureExtent(const QByteArray& content);

} // namespace tresk::cli

#endif
