#include "FileJson.h"

#include "Json.h"

namespace tresk::cli {

QJsonObject fileJson(const FileTag& file, const QString& purpose)
{
    QJsonObject object = {{QStringLiteral("id"), file.id},
                          {QStringLiteral("purpose"), purpose},
                          {QStringLiteral("size"), jsonNumber(file.filesize)},
                          {QStringLiteral("storedSize"), jsonNumber(file.cfilesize)},
                          {QStringLiteral("md5"), file.md5file},
                          {QStringLiteral("storedMd5"), file.md5cfile},
                          {QStringLiteral("position"), file.pos - 1}};
    insertText(object, QStringLiteral("name"), file.filename);
    insertText(object, QStringLiteral("type"), file.filetype);
    insertText(object, QStringLiteral("description"), file.desc);
    insertText(object, QStringLiteral("comment"), file.comment);
    insertText(object, QStringLiteral("compression"), file.compression);
    return object;
}

} // namespace tresk::cli
