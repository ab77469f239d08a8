#ifndef TRESK_APPS_PICTURE_H
#define TRESK_APPS_PICTURE_H

#include <QByteArray>

namespace tresk::cli {

/// The media type of @p content if it is a picture that a browser shows and that has a size it can
/// cope with: "image/png", "image/jpeg", "image/gif" or "image/webp". Empty for all else, pictures
/// that can hold scripts among it. Told by the content, whatever the file is called.
QByteArray pictureType(const QByteArray& content);

} // namespace tresk::cli

#endif
