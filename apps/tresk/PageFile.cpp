#include "PageFile.h"

#include "Interruption.h"
#include "Invocation.h"
#include "Messages.h"
#include "SystemText.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tresk::cli {

namespace {

constexpr int pageBuffer = 64 * 1024;

bool isSameFile(const QString& a, const QString& b)
{
    struct stat first = {};
    struct stat second = {};
    return ::stat(toSystem(a).constData(), &first) == 0
        && ::stat(toSystem(b).constData(), &second) == 0 && first.st_dev == second.st_dev
        && first.st_ino == second.st_ino;
}

/// Whether @p path is a name such as /dev/stdout of a regular file that standard output goes to.
/// Others may write to it too: a new file instead of it would lose what they write.
bool isStandardOutput(const QString& path)
{
    struct stat status = {};
    return fstat(STDOUT_FILENO, &status) == 0 && S_ISREG(status.st_mode)
        && isSameFile(path, QStringLiteral("/dev/fd/%1").arg(STDOUT_FILENO));
}

/// What stands in front of the name: up to the last separator.
QByteArray directoryOf(const QByteArray& path)
{
    return path.left(path.lastIndexOf('/') + 1);
}

/// Where @p path leads, links to what is not there yet included.
QByteArray resolved(const QByteArray& path)
{
    char target[PATH_MAX] = {};
    if (realpath(path.constData(), target))
        return target;
    // Open pipes look like links that lead nowhere.
    if (errno != ENOENT || access(path.constData(), F_OK) == 0)
        return path;
    const ssize_t length = readlink(path.constData(), target, sizeof target);
    if (length <= 0 || size_t(length) == sizeof target)
        return path;
    const QByteArray next(target, int(length));
    return resolved(next.startsWith('/') ? next : directoryOf(path) + next);
}

} // namespace

PageFile::PageFile(Invocation& invocation, const char* option)
    : m_output(invocation.output)
    , m_isFile(invocation.isSet(option) && invocation.value(option) != QLatin1String("-"))
    , m_path(invocation.value(option))
{
}

PageFile::~PageFile()
{
    if (m_device != -1)
        close(m_device);
}

bool PageFile::open(const QStringList& documents)
{
    if (!m_isFile)
        return true;
    for (const QString& document : documents) {
        if (isSameFile(document, m_path)) {
            reportError(m_path,
                        QStringLiteral("is the document itself, which is not written over"));
            return false;
        }
    }
    m_isFile = !isStandardOutput(m_path);
    if (!m_isFile)
        return true;
    watchForInterruption(); // so that nothing unfinished stays
    const QString problem = openTarget();
    if (!problem.isEmpty())
        reportError(m_path, QStringLiteral("cannot be written: ") + problem);
    return problem.isEmpty();
}

/// Returns what went wrong; nothing if all is well.
QString PageFile::openTarget()
{
    const QByteArray path = resolved(toSystem(m_path));
    struct stat status = {};
    const bool exists = ::stat(path.constData(), &status) == 0;
    if (!exists && errno != ENOENT)
        return systemError(errno);
    if (exists && !S_ISREG(status.st_mode)) {
        m_device = ::open(path.constData(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        return m_device == -1 ? systemError(errno) : QString();
    }
    QByteArray directory = directoryOf(path);
    m_name = fromSystem(path.mid(directory.size()));
    if (directory.isEmpty())
        directory = ".";
    // Extracted files may go to a new directory, but a page whose path has a typing error shall
    // not.
    if (m_name.isEmpty() || access(directory.constData(), F_OK) != 0)
        return systemError(m_name.isEmpty() ? EISDIR : errno);
    QString problem = m_directory.open(fromSystem(directory));
    if (!problem.isEmpty())
        return problem;
    m_target = std::make_unique<TargetFile>(m_directory);
    problem = m_target->create();
    if (problem.isEmpty() && exists)
        m_target->setMode(status.st_mode & 0777U);
    return problem;
}

void PageFile::write(const QByteArray& bytes)
{
    if (!m_isFile) {
        m_output.write(bytes);
        return;
    }
    m_buffer += bytes;
    if (m_buffer.size() >= pageBuffer)
        flush();
}

bool PageFile::isLost() const
{
    return interruptedBy() != 0 || !m_problem.isEmpty() || (!m_isFile && m_output.error() != 0);
}

void PageFile::flush()
{
    if (m_problem.isEmpty())
        m_problem = writeOut(m_buffer);
    m_buffer.clear();
}

QString PageFile::writeOut(const QByteArray& bytes)
{
    if (m_target)
        return m_target->write(bytes);
    const int error = writeFully(m_device, bytes.constData(), bytes.size());
    return error == 0 ? QString() : systemError(error);
}

bool PageFile::finish()
{
    if (!m_isFile) {
        m_output.flush(); // what went wrong there is reported at the end
        return interruptedBy() == 0;
    }
    flush();
    if (m_target && m_problem.isEmpty() && interruptedBy() == 0)
        m_problem = m_target->complete(m_name, true);
    if (!m_problem.isEmpty() && interruptedBy() == 0)
        reportError(m_path, QStringLiteral("cannot be written: ") + m_problem);
    return m_problem.isEmpty() && interruptedBy() == 0;
}

} // namespace tresk::cli
