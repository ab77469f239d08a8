#ifndef TRESK_FILEHASH_H
#define TRESK_FILEHASH_H

#include <tresk/Export.h>

#include <QString>

namespace tresk {

struct FileSummary;
struct FileTag;

/// @{
/// The key under which an embedded file and its description in a step's summary find each
/// other: section id, name, MD5 digest and size of the content. Nothing in it is escaped, so
/// that names which contain ">-<" may collide.
TRESK_EXPORT QString makeFileHash(const FileTag& tag, int sectionId);
TRESK_EXPORT QString makeFileHash(const FileSummary& file, int sectionId);
/// @}

} // namespace tresk

#endif
