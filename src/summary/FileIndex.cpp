#include "summary/FileIndex.h"

#include <tresk/FileHash.h>

namespace tresk {

namespace {

/// Files as far apart as this, or farther, are not the same.
constexpr int farApart = 15;

/// How much an embedded file and a description of it differ.
int distance(const FileTag& tag, const FileSummary& file)
{
    const auto weigh = [](bool same, int weight) { return same ? 0 : weight; };
    return weigh(tag.filename == file.filename, 20) + weigh(tag.filetype == file.filetype, 1)
        + weigh(tag.comment == file.comment, 1) + weigh(tag.desc == file.description, 1)
        + weigh(tag.md5file == file.uncompressedMD5, 20)
        + weigh(tag.filesize == file.uncompressedSize, 20)
        + weigh(tag.md5cfile == file.compressedMD5, 2)
        + weigh(tag.cfilesize == file.compressedSize, 2)
        + weigh(tag.compression == file.compressedMethod, 2);
}

} // namespace

FileIndex::FileIndex(const QList<FileTag>& files, int sectionId)
    : m_sectionId(sectionId)
    , m_files(files)
{
    for (int i = 0; i < m_files.size(); ++i)
        m_byKey[makeFileHash(m_files.at(i), sectionId)].push_back(i);
}

std::optional<int> FileIndex::take(const FileSummary& file)
{
    const auto found = m_byKey.find(makeFileHash(file, m_sectionId));
    if (found == m_byKey.end())
        return std::nullopt;
    std::vector<int>& places = *found;
    auto nearest = places.end();
    int smallest = farApart;
    for (auto place = places.end(); place != places.begin() && smallest > 0;) {
        --place;
        const int apart = distance(m_files.at(*place), file);
        if (apart < smallest) {
            smallest = apart;
            nearest = place;
        }
    }
    if (nearest == places.end())
        return std::nullopt;
    const int id = m_files.at(*nearest).id;
    places.erase(nearest);
    return id;
}

} // namespace tresk
