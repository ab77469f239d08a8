#include <tresk/FileHash.h>

#include <tresk/TreskParser.h>

#include "container/FileKey.h"

namespace tresk {

QString fileKey(int sectionId, const QString& name, const QString& md5, int size)
{
    // All at once: a name that itself holds a "%3" comes out as it is.
    return QStringLiteral("file: <%1>-<%2>-<%3>-<%4>")
        .arg(QString::number(sectionId), name, md5, QString::number(size));
}

QString makeFileHash(const FileTag& tag, int sectionId)
{
    return fileKey(sectionId, tag.filename, tag.md5file, tag.filesize);
}

} // namespace tresk
