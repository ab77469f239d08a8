#ifndef TRESK_APPS_FILEJSON_H
#define TRESK_APPS_FILEJSON_H

#include <tresk/TreskParser.h>

#include <QJsonObject>
#include <QString>

namespace tresk::cli {

/// What the marker of an embedded file says, for other programs:
///
///     id           number of the file in the document
///     name, type, description, comment, compression
///     size         bytes of the content
///     storedSize   bytes stored
///     md5          MD5 digest of the content, empty if the marker has none
///     storedMd5    MD5 digest of the stored bytes, likewise
///     position     offset of the marker in the document
///
/// and @p purpose, what it is in the step that embedded it.
QJsonObject fileJson(const FileTag& file, const QString& purpose);

} // namespace tresk::cli

#endif
