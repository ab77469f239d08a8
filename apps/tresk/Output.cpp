#include "Output.h"

#include "Interruption.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace tresk::cli {

namespace {

constexpr int bufferSize = 64 * 1024;

/// Blocks until @p fd takes bytes again. Somebody else who holds the same terminal or pipe may
/// have made it non-blocking.
void waitUntilWritable(int fd)
{
    pollfd descriptor = {fd, POLLOUT, 0};
    poll(&descriptor, 1, -1);
}

} // namespace

int writeFully(int fd, const char* bytes, qint64 size)
{
    while (size > 0) {
        const ssize_t written = ::write(fd, bytes, static_cast<size_t>(size));
        if (written >= 0) {
            bytes += written;
            size -= written;
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            waitUntilWritable(fd);
        } else if (errno != EINTR || interruptedBy() != 0) {
            return errno;
        }
    }
    return 0;
}

Output::Output()
    : m_terminal(isatty(STDOUT_FILENO) == 1)
{
    m_buffer.reserve(bufferSize);
}

void Output::write(const QByteArray& bytes)
{
    if (m_buffer.size() + bytes.size() > bufferSize)
        flush();
    if (m_error != 0)
        return;
    if (bytes.size() >= bufferSize)
        m_error = writeFully(STDOUT_FILENO, bytes.constData(), bytes.size());
    else
        m_buffer += bytes;
}

void Output::write(const QString& text)
{
    write(text.toUtf8());
}

void Output::flush()
{
    if (m_error == 0)
        m_error = writeFully(STDOUT_FILENO, m_buffer.constData(), m_buffer.size());
    m_buffer.resize(0);
}

} // namespace tresk::cli
