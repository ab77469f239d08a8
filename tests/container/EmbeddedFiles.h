#ifndef TRESK_TESTS_EMBEDDEDFILES_H
#define TRESK_TESTS_EMBEDDEDFILES_H

#include "DocumentWriter.h"

namespace tresktest {

/// What most of the files have for content.
inline const QByteArray twoLines = "The content of a file.\nIts second line.\n";

/// A file named "file", stored as it is.
FileSpec plain(const QByteArray& content);
/// A file named "file", stored as a zlib stream.
FileSpec flate(const QByteArray& content);
/// @p file with @p stored for its bytes in the document, whatever follows from its content.
FileSpec storedAs(FileSpec file, const QByteArray& stored);

/// Bytes of which no two pieces are alike.
QByteArray counted(int size);
/// Bytes of all kinds, which repeat soon.
QByteArray squares(int size);
/// The stream of @p content with one bit of its checksum wrong.
QByteArray withWrongChecksum(const QByteArray& content);

/// A document with a header and no steps yet.
DocumentWriter newDocument();

} // namespace tresktest

#endif
