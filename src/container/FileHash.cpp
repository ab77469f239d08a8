#include <tresk/FileHash.h>

#include <tresk/TreskParser.h>

namespace tresk {

QString makeFileHash(const FileTag& tag, int sectionId)
{
    // All at once: a name that itself holds a "%3" comes out as it is.
    return QStringLiteral("file: <%1>-<%2>-<%3>-<%4>")
        .arg(QString::number(sectionId), tag.filename, tag.md5file, QString::number(tag.filesize));
}

} // namespace tresk
