#ifndef TRESK_TESTS_DAMAGEDOCUMENTS_H
#define TRESK_TESTS_DAMAGEDOCUMENTS_H

#include <QByteArray>
#include <QString>
#include <QVector>

namespace tresktest {

/// A small document to be damaged everywhere.
struct DamageDocument {
    QString name;
    QByteArray bytes;
};

/// Larger ones take too long: there are 30 variants for each byte.
constexpr int largestDamageDocument = 16 * 1024;

/// Documents made for this, which together have all that the format knows, oddities included, and
/// the samples that are small enough.
QVector<DamageDocument> damageDocuments();

} // namespace tresktest

#endif
