#ifndef TRESK_APPS_TARGETDIRECTORY_H
#define TRESK_APPS_TARGETDIRECTORY_H

#include <QByteArray>
#include <QString>

namespace tresk::cli {

/// The directory that files are written to. It is opened once and held, so that all files
/// end up in it whatever happens to its path meanwhile.
class TargetDirectory {
public:
    TargetDirectory() = default;
    ~TargetDirectory();

    /// Opens the directory at @p path, making it and those above it where they are missing.
    /// Returns what went wrong; nothing if all is well.
    QString open(const QString& path);

    /// The path as the user gave it.
    const QString& path() const { return m_path; }
    /// The path of the file @p name in the directory, to be shown.
    QString pathOf(const QString& name) const;

    /// Why a file cannot get the name @p name, which holds no separator; nothing if it can.
    /// With @p replace a file that is there is no reason, nor is a symbolic link.
    QString obstacle(const QString& name, bool replace) const;

private:
    Q_DISABLE_COPY(TargetDirectory)
    friend class TargetFile;

    QString m_path;
    int m_fd = -1;
};

/// A file that is being written to a directory.
///
/// It grows under a name of its own and gets its real one when it is complete, so that no
/// fragment ever stands under a real name, not even after a crash, and a file that shall be
/// replaced is there until the new one is. The name is given by making a second link, which
/// fails where anything has the name already, a symbolic link included: nobody can slip one
/// in between a check and the act. A file that is not completed is removed.
class TargetFile {
public:
    /// The directory must outlive the file.
    explicit TargetFile(const TargetDirectory& directory);
    ~TargetFile();

    /// Removes the file that is not completed, if there is one. Takes no memory.
    static void removeUnfinished();

    /// Gives the file, which was created, these permissions instead of those of a new one.
    void setMode(unsigned mode);

    // These return what went wrong; nothing if all is well.

    QString create();
    QString write(const QByteArray& bytes);
    /// Reads a piece of what was written from the offset @p pos on. There has to be something.
    QString read(qint64 pos, QByteArray& piece) const;
    /// Tries whether more can be written behind what is there, which spoils the file.
    QString problem();
    /// Gives the file its name @p name. With @p replace whatever else has it goes, unless it
    /// is a directory.
    QString complete(const QString& name, bool replace);

    /// A path by which the file, while it is open, can be opened once more: it leads to this
    /// file whatever happens to the names in the directory.
    QString openPath() const;
    /// Number of bytes in the file.
    qint64 size() const;

private:
    Q_DISABLE_COPY(TargetFile)

    int giveName(const char* name, bool replace);
    void allowOwner();
    void remove() const;

    const TargetDirectory& m_directory;
    QByteArray m_temporaryName;
    int m_fd = -1;
    unsigned m_mode = 0; ///< what the file gets in the end
    bool m_exists = false;
};

} // namespace tresk::cli

#endif
