#ifndef TRESK_APPS_TARGETNAMES_H
#define TRESK_APPS_TARGETNAMES_H

#include <tresk/TreskParser.h>

#include <QList>
#include <QStringList>

namespace tresk::cli {

/// The names under which the embedded files of a document are written to disk.
///
/// What a document calls its files is a label, never a path. Of a name without its escapes
/// only the part behind the last "/" or "\" counts; every unprintable character in it becomes
/// "_"; blanks and dots at its end are dropped; more than 255 bytes of UTF-8 are cut, the
/// extension kept. "file-ID" stands in for what is no name then, or one that Windows reserves
/// for a device. Names that would be the same file, to a file system that ignores case and
/// Unicode normalisation as well, all get "-ID" in front of their extension.
///
/// Follows from the document alone, whichever of its files are written.
class TargetNames {
public:
    explicit TargetNames(const QList<FileTag>& files);

    const QString& of(const FileTag& file) const { return m_names[file.id]; }

private:
    QStringList m_names;
};

} // namespace tresk::cli

#endif
