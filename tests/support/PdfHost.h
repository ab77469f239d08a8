#ifndef TRESK_TESTS_PDFHOST_H
#define TRESK_TESTS_PDFHOST_H

#include <QByteArray>
#include <QString>

#include <optional>

namespace tresktest {

/// @p pdf with the header line of a history inserted near its start, behind the comment line
/// of high bytes if there is one, else behind the first line. Everything behind it moves, so
/// the offsets of the cross-reference table and `startxref` are moved along.
///
/// Nothing, with the reason in @p error, unless the file has exactly one cross-reference
/// table of the classic kind and is not linearised. `qpdf --object-streams=disable` makes
/// such a file of any other.
std::optional<QByteArray> pdfWithHeader(const QByteArray& pdf, QString* error);

/// The `startxref`, number and `%%EOF` lines of @p pdf, to be repeated behind a history:
/// readers look for them in the last kilobyte only. Empty if there are none.
QByteArray pdfTail(const QByteArray& pdf);

} // namespace tresktest

#endif
