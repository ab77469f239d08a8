#ifndef TRESK_CONTAINER_FILEKEY_H
#define TRESK_CONTAINER_FILEKEY_H

#include <QString>

namespace tresk {

/// What makeFileHash() makes of a file called @p name in section @p sectionId, whose content
/// has @p size bytes and the digest @p md5.
QString fileKey(int sectionId, const QString& name, const QString& md5, int size);

} // namespace tresk

#endif
