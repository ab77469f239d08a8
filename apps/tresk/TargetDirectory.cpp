#include "TargetDirectory.h"

#include "Interruption.h"
#include "Output.h"
#include "SystemText.h"

#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tresk::cli {

namespace {

TargetFile* unfinished = nullptr; // files are written one at a time

QString lastError()
{
    return systemError(errno);
}

QString existsError()
{
    return QStringLiteral("it exists already (--force replaces it)");
}

/// Makes the directory at @p path and those above it. That some or all exist is no error here;
/// whether they are of use shows when the directory is opened.
void makeDirectories(const QByteArray& path)
{
    for (auto end = path.indexOf('/', 1); end != -1; end = path.indexOf('/', end + 1))
        mkdir(path.left(end).constData(), 0777);
    mkdir(path.constData(), 0777);
}

QByteArray temporaryName()
{
    return ".tresk-" + QByteArray::number(QRandomGenerator::system()->generate64(), 36) + ".part";
}

} // namespace

TargetDirectory::~TargetDirectory()
{
    if (m_fd != -1)
        close(m_fd);
}

QString TargetDirectory::open(const QString& path)
{
    m_path = path;
    const QByteArray bytes = toSystem(path);
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    m_fd = ::open(bytes.constData(), flags);
    if (m_fd == -1 && errno == ENOENT && !bytes.isEmpty()) {
        makeDirectories(bytes);
        m_fd = ::open(bytes.constData(), flags);
    }
    return m_fd == -1 ? lastError() : QString();
}

QString TargetDirectory::pathOf(const QString& name) const
{
    if (m_path.endsWith(QLatin1Char('/')))
        return m_path + name;
    return m_path + QLatin1Char('/') + name;
}

QString TargetDirectory::obstacle(const QString& name, bool replace) const
{
    struct stat status = {};
    if (fstatat(m_fd, name.toUtf8().constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT ? QString() : lastError();
    if (S_ISDIR(status.st_mode))
        return QStringLiteral("it is a directory");
    if (!replace)
        return existsError();
    if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode))
        return QStringLiteral("it is not a regular file");
    return {};
}

TargetFile::TargetFile(const TargetDirectory& directory)
    : m_directory(directory)
{
    unfinished = this;
}

TargetFile::~TargetFile()
{
    unfinished = nullptr;
    if (m_fd != -1)
        close(m_fd);
    remove();
}

void TargetFile::removeUnfinished()
{
    if (unfinished)
        unfinished->remove();
}

void TargetFile::remove() const
{
    if (m_exists)
        unlinkat(m_directory.m_fd, m_temporaryName.constData(), 0);
}

QString TargetFile::create()
{
    do {
        m_temporaryName = temporaryName();
        m_fd = openat(m_directory.m_fd, m_temporaryName.constData(),
                      O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    } while (m_fd == -1 && errno == EEXIST);
    m_exists = m_fd != -1;
    if (!m_exists)
        return lastError();
    allowOwner();
    return {};
}

/// Lets the file be opened once more where the umask keeps even its owner out.
void TargetFile::allowOwner()
{
    struct stat status = {};
    if (fstat(m_fd, &status) != 0)
        return;
    m_mode = status.st_mode & 0777U;
    if ((m_mode & 0600U) != 0600U)
        fchmod(m_fd, m_mode | 0600U);
}

void TargetFile::setMode(unsigned mode)
{
    m_mode = mode;
    fchmod(m_fd, m_mode | 0600U);
}

QString TargetFile::write(const QByteArray& bytes)
{
    const int error = writeFully(m_fd, bytes.constData(), bytes.size());
    return error == 0 ? QString() : systemError(error);
}

QString TargetFile::read(qint64 pos, QByteArray& piece) const
{
    piece.resize(64 * 1024);
    const auto size = static_cast<size_t>(piece.size());
    ssize_t count = 0;
    do {
        count = pread(m_fd, piece.data(), size, pos);
    } while (count == -1 && errno == EINTR && interruptedBy() == 0);
    if (count <= 0)
        return systemError(count == 0 ? EIO : errno);
    piece.truncate(static_cast<int>(count));
    return {};
}

QString TargetFile::problem()
{
    const QByteArray some(64 * 1024, '\0');
    return lseek(m_fd, 0, SEEK_END) == -1 ? lastError() : write(some);
}

QString TargetFile::openPath() const
{
    return QStringLiteral("/dev/fd/%1").arg(m_fd);
}

qint64 TargetFile::size() const
{
    struct stat status = {};
    return fstat(m_fd, &status) == 0 ? status.st_size : -1;
}

QString TargetFile::complete(const QString& name, bool replace)
{
    if ((m_mode & 0600U) != 0600U)
        fchmod(m_fd, m_mode);
    // Some file systems report only here that there was no room.
    const int fd = m_fd;
    m_fd = -1;
    if (close(fd) != 0 && errno != EINTR)
        return lastError();
    const int error = giveName(toSystem(name).constData(), replace);
    if (error == EEXIST)
        return existsError();
    return error == 0 ? QString() : systemError(error);
}

/// Returns 0 or the number of the error.
int TargetFile::giveName(const char* name, bool replace)
{
    const int directory = m_directory.m_fd;
    const char* const temporary = m_temporaryName.constData();
    if (!replace) {
        if (linkat(directory, temporary, directory, name, 0) == 0)
            return 0;
        if (errno == EEXIST)
            return EEXIST;
        // No links on this file system: reserve the name with an empty file, then replace that.
        const int reserved = openat(directory, name,
                                    O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
        if (reserved == -1)
            return errno;
        close(reserved);
    }
    if (renameat(directory, temporary, directory, name) == 0) {
        m_exists = false;
        return 0;
    }
    const int error = errno;
    if (!replace)
        unlinkat(directory, name, 0);
    return error;
}

} // namespace tresk::cli
