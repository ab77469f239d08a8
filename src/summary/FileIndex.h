#ifndef TRESK_SUMMARY_FILEINDEX_H
#define TRESK_SUMMARY_FILEINDEX_H

#include <tresk/Summary.h>
#include <tresk/TreskParser.h>

#include <QHash>
#include <QList>
#include <QString>

#include <optional>
#include <vector>

namespace tresk {

/// The embedded files of one section, to be found for the files that its summary names.
class FileIndex {
public:
    FileIndex(const QList<FileTag>& files, int sectionId);

    /// Takes out the embedded file that is @p file, and returns its id: the nearest of those
    /// with the same key (makeFileHash()), of equally near ones the last in the document.
    /// Nothing where none is near enough.
    std::optional<int> take(const FileSummary& file);

private:
    int m_sectionId;
    QList<FileTag> m_files;
    QHash<QString, std::vector<int>> m_byKey; ///< places in m_files not taken, ascending
};

} // namespace tresk

#endif
