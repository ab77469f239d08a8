#ifndef TRESK_TESTS_APPS_DOCUMENTS_H
#define TRESK_TESTS_APPS_DOCUMENTS_H

#include <DocumentWriter.h>

#include <QByteArray>
#include <QString>
#include <QVector>

namespace tresktest {

/// A step of that title with these files.
SectionSpec step(const QString& title, const QVector<FileSpec>& files = {});

/// A document with these steps, oldest first.
QByteArray documentWith(const QVector<SectionSpec>& steps);
/// A document with one step that has these files.
QByteArray documentWith(const QVector<FileSpec>& files);

/// A zlib stream that inflates to @p size zero bytes, a multiple of 1 MiB. Takes about a
/// thousandth of that, and next to no time to make.
QByteArray streamOfZeros(qint64 size);
/// An embedded file of that name that holds @p size zero bytes, compressed.
FileSpec fileOfZeros(const QString& name, qint64 size);

/// Bytes without any pattern, the same in every run.
QByteArray noise(int size);

} // namespace tresktest

#endif
