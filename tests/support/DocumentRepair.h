#ifndef TRESK_TESTS_DOCUMENTREPAIR_H
#define TRESK_TESTS_DOCUMENTREPAIR_H

#include <QByteArray>

namespace tresktest {

/// @p document with markers that fit it again after bytes of it were changed, inserted or removed:
/// sizes that are too large, regions that no longer begin with a line, distances that lead to no
/// section, checksums of streams, files and sections. Of a stream that is not whole, these are of
/// its content as far as it goes. What fits stays, and so does a field that is empty. Nothing
/// moves: numbers take the digits that they have, with zeros in front, and stay as they are where
/// these are too few.
///
/// Knows the format, not the library.
QByteArray repairedDocument(const QByteArray& document);

} // namespace tresktest

#endif
