#ifndef TRESK_TESTS_RANDOMDOCUMENT_H
#define TRESK_TESTS_RANDOMDOCUMENT_H

#include <QByteArray>

class QRandomGenerator;

namespace tresktest {

/// A small document with a history, put together at random: mostly right, with the deviations
/// that a writer can produce among it.
QByteArray randomDocument(QRandomGenerator& random);

/// Damages a document in one place or a few.
void mutate(QByteArray& document, QRandomGenerator& random);

/// Bytes in which line feeds, NUL bytes and high bytes are frequent.
QByteArray randomBytes(QRandomGenerator& random, int size);

} // namespace tresktest

#endif
