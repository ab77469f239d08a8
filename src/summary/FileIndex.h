#ifndef TRESK_SUMMARY_FILEINDEX_H
#define TRESK_SUMMARY_FILEINDEX_H

#include <tresk/Summary.h>
#include <tresk/TreskParser.h>

#include "summary/LikeFiles.h"

#include <QHash>
#include <QList>
#include <QString>

#include <optional>
#include <utility>

namespace tresk {

/// The embedded files of one section, to be found for the files that its summary names.
class FileIndex {
public:
    explicit FileIndex(const QList<FileTag>& files);

    /// Takes out the embedded file that is @p file, and returns its id: the nearest of those
    /// with the same name, checksum and size, of equally near ones the last in the document.
    /// Nothing where there is none. (With another name, checksum or size a file is too far
    /// away, also where the keys of makeFileHash() are the same.)
    std::optional<int> take(const FileSummary& file);

private:
    using Key = std::pair<QString, std::pair<QString, int>>; ///< name, checksum and size

    QList<FileTag> m_files;
    QHash<Key, LikeFiles> m_byKey;
};

} // namespace tresk

#endif
