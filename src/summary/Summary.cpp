#include <tresk/Summary.h>

#include <tresk/FileHash.h>
#include <tresk/TreskParser.h>

#include "container/FileKey.h"

namespace tresk {

FileSummary makeFileSummaryFromFileTag(const FileTag& tag)
{
    FileSummary file;
    file.tagId = tag.id;
    file.filetype = tag.filetype;
    file.filename = tag.filename;
    file.description = tag.desc;
    file.comment = tag.comment;
    file.compressedMethod = tag.compression;
    file.compressedSize = tag.cfilesize;
    file.uncompressedSize = tag.filesize;
    file.compressedMD5 = tag.md5cfile;
    file.uncompressedMD5 = tag.md5file;
    return file;
}

Summary makeSummaryFromTags(const SectionTag& section, const QList<FileTag>& files)
{
    Summary summary;
    summary.tagId = section.id;
    summary.title = section.title;
    summary.creator = section.creator;
    for (const FileTag& file : files)
        summary.files.append(makeFileSummaryFromFileTag(file));
    return summary;
}

QString makeFileHash(const FileSummary& file, int sectionId)
{
    return fileKey(sectionId, file.filename, file.uncompressedMD5, file.uncompressedSize);
}

} // namespace tresk
