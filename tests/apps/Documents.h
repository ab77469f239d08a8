#ifndef TRESK_TESTS_APPS_DOCUMENTS_H
#define TRESK_TESTS_APPS_DOCUMENTS_H

#include <DocumentWriter.h>
#include <TestFiles.h>

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

namespace tresktest {

/// A step of that title with these files.
SectionSpec step(const QString& title, const QVector<FileSpec>& files = {});

/// A document with these steps, oldest first.
QByteArray documentWith(const QVector<SectionSpec>& steps);
/// A document with one step that has these files.
QByteArray documentWith(const QVector<FileSpec>& files);

/// An embedded document of that name with these steps.
FileSpec embeddedDocument(const char* name, const QVector<SectionSpec>& steps);

/// A zlib stream that inflates to @p size zero bytes, a multiple of 1 MiB. Takes about a
/// thousandth of that, and next to no time to make.
QByteArray streamOfZeros(qint64 size);
/// An embedded file of that name that holds @p size zero bytes, compressed.
FileSpec fileOfZeros(const QString& name, qint64 size);

/// A document in which a file "zeros", stored plain, of @p size zero bytes comes behind the
/// files @p before and in front of @p behind. Its checksum is @p checksum. The zeros are a hole,
/// which takes no room on disk and no time to make. Written to @p dir; returns the path.
QString writeWithHole(const TestDir& dir, const QString& name, int size,
                      const QVector<FileSpec>& before = {}, const QVector<FileSpec>& behind = {},
                      const QByteArray& checksum = md5Hex("something else"));

/// An embedded file that cannot be read as its marker says, and what commands say of it.
struct DamagedFile {
    const char* name; ///< of the test case
    FileSpec file; ///< called "f"; what can be read of it is the beginning of damagedContent()
    QByteArray problem;
};
QVector<DamagedFile> damagedFiles();
const QByteArray& damagedContent();

/// Everything in the directory at @p path.
QStringList entriesOf(const QString& path);

/// Bytes without any pattern, the same in every run.
QByteArray noise(int size);

} // namespace tresktest

#endif
