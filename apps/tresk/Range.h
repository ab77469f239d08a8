#ifndef TRESK_APPS_RANGE_H
#define TRESK_APPS_RANGE_H

#include "ItemStatus.h"

#include <tresk/TreskParser.h>

namespace tresk::cli {

class Document;

/// Number of bytes that are stored of the file, and are the subject of its checksum: those of
/// a stream if it is compressed, else those of its content. -1 if the marker does not say.
int storedLength(const FileTag& file);

/// What is wrong with the place of the bytes that the checksum of the step, or of the stored
/// bytes of the file, is about: whether they are all in the document. Checksums do not tell,
/// since bytes that are missing read as none.
Fault faultOfRange(const Document& document, const SectionTag& step);
Fault faultOfRange(const Document& document, const FileTag& file);

} // namespace tresk::cli

#endif
