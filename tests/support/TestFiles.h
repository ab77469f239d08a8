#ifndef TRESK_TESTS_TESTFILES_H
#define TRESK_TESTS_TESTFILES_H

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <optional>

namespace tresktest {

/// A folder for the files of one test, removed with all that is in it.
class TestDir {
public:
    TestDir();

    /// The path of @p name in the folder.
    QString path(const QString& name) const;
    /// Writes a file of the folder, replacing it, and returns its path.
    QString write(const QString& name, const QByteArray& bytes) const;
    /// Makes a named pipe in the folder and returns its path.
    QString makePipe(const QString& name) const;

private:
    QTemporaryDir m_dir;
};

/// All bytes of the file at @p path.
QByteArray readFile(const QString& path);

/// Whether this process has the file at @p path open; nothing where the system does not tell.
std::optional<bool> isOpen(const QString& path);

} // namespace tresktest

#endif
