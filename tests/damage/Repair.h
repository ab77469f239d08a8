#ifndef TRESK_TESTS_REPAIR_H
#define TRESK_TESTS_REPAIR_H

#include <QByteArray>

namespace tresktest {

/// @p document with sizes and checksums that fit what is there: those of zlib streams, of embedded
/// files, and of sections, as far as there are any and they can still be located. Nothing moves:
/// numbers keep their digits. Does not use the library.
QByteArray repaired(const QByteArray& document);

} // namespace tresktest

#endif
