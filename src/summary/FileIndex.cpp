#include "summary/FileIndex.h"

namespace tresk {

FileIndex::FileIndex(const QList<FileTag>& files)
    : m_files(files)
{
    for (int i = 0; i < m_files.size(); ++i) {
        const FileTag& file = m_files.at(i);
        m_byKey[{file.filename, {file.md5file, file.filesize}}].add(i);
    }
}

std::optional<int> FileIndex::take(const FileSummary& file)
{
    const auto found = m_byKey.find({file.filename, {file.uncompressedMD5, file.uncompressedSize}});
    if (found == m_byKey.end())
        return std::nullopt;
    const std::optional<int> place = found->takeNearest(m_files, file);
    if (!place)
        return std::nullopt;
    return m_files.at(*place).id;
}

} // namespace tresk
