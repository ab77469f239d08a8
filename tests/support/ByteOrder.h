#ifndef TRESK_TESTS_BYTEORDER_H
#define TRESK_TESTS_BYTEORDER_H

#include <QByteArray>
#include <QtEndian>

namespace tresktest {

/// The bytes of @p number, the highest first.
template <typename Number>
QByteArray bigEndian(Number number)
{
    QByteArray bytes(int(sizeof number), '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

/// The bytes of @p number, the lowest first.
template <typename Number>
QByteArray littleEndian(Number number)
{
    QByteArray bytes(int(sizeof number), '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

} // namespace tresktest

#endif
