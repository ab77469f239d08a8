#include <tresk/FileIterator.h>

#include "container/ByteSearch.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace tresk {

namespace {

// A jump loads a small slice around its target; a scan that goes on reads ever larger ones,
// because reading a large document in small steps costs a fifth of the time.
constexpr int smallestSlice = 10240;
constexpr int largestSlice = 256 * 1024;

} // namespace

FileIterator::FileIterator()
    : m_sliceSize(smallestSlice)
{
}

FileIterator::~FileIterator() = default;

bool FileIterator::open(const QString& path)
{
    closeFile();
    m_file = std::make_unique<QFile>(path);
    m_readFailed = !openFile();
    if (m_readFailed)
        return false;
    m_fileSize = m_file->size();
    char byte = 0;
    // A size that cannot be had reads as 0.
    m_readFailed = m_fileSize == 0 && m_file->read(&byte, 1) != 0;
    if (getFirstBuffer())
        searchForwards();
    return true;
}

bool FileIterator::openFile()
{
    // Opening a pipe would wait for a writer, and a device has no end to search from.
    return QFileInfo(m_file->fileName()).isFile()
        && m_file->open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

void FileIterator::closeFile()
{
    m_file.reset();
    m_released = false;
    m_readFailed = false;
    m_fileSize = 0;
    m_buffer.clear();
    m_lineStart = -1;
    m_bufferStart = -1;
    m_cursor = 0;
}

bool FileIterator::firstLine()
{
    // Often it has just been read, and it may be as long as the file.
    if (isOpen() && m_lineStart == 0 && !m_line.isEmpty() && cursorPos() == m_line.size())
        return true;
    return getFirstBuffer() && searchForwards();
}

bool FileIterator::lastLine()
{
    return getLastBuffer() && searchBackwards();
}

bool FileIterator::nextLine()
{
    return searchForwards();
}

bool FileIterator::prevLine()
{
    return searchBackwards();
}

bool FileIterator::nextLineStartingWith(const char* bytes)
{
    // Every line but the one at the cursor has a line feed in front of it.
    const QByteArray text = '\n' + QByteArray(bytes);
    const int length = int(text.size()) - 1;
    const auto behindCursor = [this] { return view(m_buffer).substr(std::size_t(m_cursor)); };
    if (!isOpen())
        return false;
    bool more = m_buffer.size() - m_cursor >= length || getNextBuffer(length);
    if (more && startsWith(behindCursor(), bytes))
        return searchForwards();
    for (; more; more = getNextBuffer(length)) {
        const std::size_t hit = findText(behindCursor(), view(text));
        if (hit != npos) {
            m_cursor += int(hit) + 1;
            return searchForwards();
        }
    }
    m_lineStart = int(cursorPos());
    return false;
}

bool FileIterator::prevLineContaining(const char* bytes)
{
    const std::string_view text(bytes);
    const qint64 limit = cursorPos();
    if (!isOpen())
        return false;
    do {
        const std::size_t hit = findLastText(view(m_buffer).substr(0, std::size_t(m_cursor)), text);
        if (hit != npos) {
            // To the end of the line that holds the text, then back over all of it.
            m_cursor = int(hit);
            searchForwards();
            return (cursorPos() <= limit || moveCursor(limit)) && searchBackwards();
        }
    } while (getPrevBuffer(int(text.size()) - 1));
    m_lineStart = int(cursorPos());
    return false;
}

bool FileIterator::gotoPos(int pos)
{
    if (pos < 0 || pos >= size())
        return false;
    return moveCursor(pos) && searchForwards();
}

int FileIterator::curPos() const
{
    return m_lineStart;
}

QSharedPointer<QByteArray> FileIterator::curLine() const
{
    return m_file ? QSharedPointer<QByteArray>::create(m_line) : QSharedPointer<QByteArray>();
}

QSharedPointer<QString> FileIterator::curLineAsString() const
{
    if (!m_file || m_line.contains('\0'))
        return {};
    return QSharedPointer<QString>::create(QString::fromUtf8(m_line));
}

bool FileIterator::curLineStartsWithBytes(const char* bytes) const
{
    return m_line.startsWith(bytes);
}

QByteArray FileIterator::getBytes(int pos, int len)
{
    if (!isOpen() || pos < 0 || pos >= size() || len < 0 || qint64(pos) + len > size())
        return {};
    QByteArray bytes;
    readInto(bytes, pos, len);
    return bytes;
}

bool FileIterator::reachedStart() const
{
    return m_bufferStart == 0 && m_cursor == 0;
}

bool FileIterator::reachedEnd() const
{
    return size() <= cursorPos();
}

bool FileIterator::empty() const
{
    return size() <= 0;
}

bool FileIterator::onLine() const
{
    return false;
}

qint64 FileIterator::getFileSize() const
{
    return m_fileSize;
}

bool FileIterator::readFailed() const
{
    return m_readFailed;
}

bool FileIterator::isOpen() const
{
    return m_file && (m_file->isOpen() || m_released);
}

void FileIterator::releaseFile()
{
    m_released = isOpen();
    if (m_released)
        m_file->close();
}

/// Whether there is a file to read from, after opening one again that was released.
bool FileIterator::reopen()
{
    if (m_released && openFile())
        m_released = false;
    return m_file && m_file->isOpen();
}

/// The size that positions are compared with: truncated to 32 bits, as positions are.
int FileIterator::size() const
{
    return static_cast<int>(m_fileSize);
}

qint64 FileIterator::cursorPos() const
{
    return m_bufferStart + m_cursor;
}

/// Puts the cursor at @p pos and sees to it that the slice holds the bytes around it.
bool FileIterator::moveCursor(qint64 pos)
{
    if (pos < m_bufferStart || pos >= m_bufferStart + m_buffer.size()) {
        m_sliceSize = smallestSlice;
        m_bufferStart = std::max<qint64>(pos - m_sliceSize / 2, 0);
        getBuffer(m_bufferStart, m_sliceSize);
    }
    m_cursor = int(std::min<qint64>(pos - m_bufferStart, m_buffer.size()));
    return m_cursor < m_buffer.size() || pos == size();
}

/// Reads up to @p len bytes from @p pos into @p bytes, fewer where the file ends.
bool FileIterator::readInto(QByteArray& bytes, qint64 pos, int len)
{
    len = std::min(len, longestArray);
    if (len <= bytes.capacity()) {
        bytes.resize(len);
    } else { // Making the array larger could make room for twice as much.
        bytes.clear();
        bytes = QByteArray(len, Qt::Uninitialized);
    }
    int done = 0;
    qint64 count = reopen() && m_file->seek(pos) ? 1 : -1;
    // Of an error behind some bytes only the next call tells.
    while (count > 0 && done < len) {
        count = m_file->read(bytes.data() + done, len - done);
        done += int(std::max<qint64>(count, 0));
    }
    m_readFailed = m_readFailed || (m_file && count < 0);
    bytes.truncate(done);
    return done > 0;
}

/// Loads up to @p len bytes from @p pos as the slice. False if there are none.
bool FileIterator::getBuffer(qint64 pos, int len)
{
    return readInto(m_buffer, pos, int(std::clamp<qint64>(size() - pos, 0, len)));
}

bool FileIterator::getFirstBuffer()
{
    m_sliceSize = smallestSlice;
    m_bufferStart = 0;
    m_cursor = 0;
    return getBuffer(0, m_sliceSize);
}

/// Loads the next slice, with the last @p overlap bytes behind the cursor before it. The
/// cursor is at the end if there is none.
bool FileIterator::getNextBuffer(int overlap)
{
    const int kept = std::min(overlap, int(m_buffer.size()) - m_cursor);
    m_bufferStart += m_buffer.size() - kept;
    m_cursor = 0;
    m_sliceSize = std::min(2 * m_sliceSize, largestSlice);
    if (getBuffer(m_bufferStart, kept + m_sliceSize) && m_buffer.size() > kept)
        return true;
    m_bufferStart += m_buffer.size();
    m_buffer.clear();
    return false;
}

/// Loads the slice before, with the first @p overlap bytes before the cursor behind it. The
/// cursor is at the start if there is none.
bool FileIterator::getPrevBuffer(int overlap)
{
    const int kept = std::min(overlap, m_cursor);
    const qint64 oldStart = m_bufferStart;
    m_cursor = 0;
    if (oldStart <= 0)
        return false;
    m_sliceSize = std::min(2 * m_sliceSize, largestSlice);
    m_bufferStart = std::max<qint64>(oldStart - m_sliceSize, 0);
    const int len = int(oldStart - m_bufferStart) + kept;
    if (!getBuffer(m_bufferStart, len))
        return false;
    m_cursor = std::min(len, int(m_buffer.size()));
    return true;
}

bool FileIterator::getLastBuffer()
{
    m_cursor = 0;
    if (size() <= 0)
        return false;
    m_sliceSize = smallestSlice;
    m_bufferStart = std::max(size() - m_sliceSize, 0);
    const int len = int(size() - m_bufferStart);
    if (!getBuffer(m_bufferStart, len))
        return false;
    m_cursor = std::min(len, int(m_buffer.size()));
    return true;
}

bool FileIterator::searchForwards()
{
    m_lineStart = int(cursorPos());
    if (!isOpen() || reachedEnd())
        return false;
    const qint64 start = cursorPos();
    const auto feedBehindCursor = [this] {
        return findLineFeed(view(m_buffer), std::size_t(m_cursor));
    };
    std::size_t feed = feedBehindCursor();
    if (feed != npos) { // without room to grow: most lines are whole
        m_line = QByteArray(m_buffer.constData() + m_cursor, int(feed) + 1 - m_cursor);
        m_cursor = int(feed) + 1;
        return true;
    }
    while (feed == npos && getNextBuffer())
        feed = feedBehindCursor();
    if (feed != npos)
        m_cursor = int(feed) + 1;
    if (cursorPos() == start) // the file has become shorter
        return false;
    // Slices put behind each other would take up to twice the memory.
    readInto(m_line, start, int(std::min<qint64>(cursorPos() - start, longestArray)));
    return true;
}

bool FileIterator::searchBackwards()
{
    if (!isOpen() && !reachedStart())
        return false;
    m_lineStart = 0;
    if (reachedStart())
        return false;
    const qint64 end = cursorPos();
    if (m_cursor == 0)
        getPrevBuffer();
    // The byte before the cursor is the line's own line feed, if it has one.
    const int own = std::max(m_cursor - 1, 0);
    std::size_t feed = findLastLineFeed(view(m_buffer).substr(0, std::size_t(own)));
    while (feed == npos && getPrevBuffer())
        feed = findLastLineFeed(view(m_buffer).substr(0, std::size_t(m_cursor)));
    m_cursor = feed != npos ? int(feed) + 1 : 0;
    m_lineStart = int(cursorPos());
    const int length = int(end - cursorPos());
    if (length <= m_buffer.size() - m_cursor)
        m_line = m_buffer.mid(m_cursor, length);
    else // Putting slices in front of each other would take time quadratic in their number.
        readInto(m_line, cursorPos(), length);
    return true;
}

} // namespace tresk
