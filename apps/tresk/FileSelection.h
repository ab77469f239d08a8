#ifndef TRESK_APPS_FILESELECTION_H
#define TRESK_APPS_FILESELECTION_H

#include <tresk/TreskParser.h>

#include <QStringList>

#include <optional>

namespace tresk::cli {

class Document;

/// The embedded file that @p argument means: its id, if @p argument consists of digits only,
/// else its name, exactly as it is stored or as it is shown without escapes. Reports an id
/// that there is not, a name that no file has, and one that several files have.
std::optional<FileTag> selectFile(const Document& document, const QString& argument);

/// The embedded files that @p arguments mean, each once and in the order of the document; all
/// of them if there are no arguments. Reports every argument that means none.
std::optional<QList<FileTag>> selectFiles(const Document& document, const QStringList& arguments);

} // namespace tresk::cli

#endif
