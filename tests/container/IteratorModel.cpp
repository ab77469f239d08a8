#include "IteratorModel.h"

namespace tresktest {

namespace {

const int sliceSize = 10240;

} // namespace

void IteratorModel::open(const QByteArray& bytes)
{
    // The line of a file that was open before stays until another one is read.
    m_file = bytes;
    m_lineStart = -1;
    m_bufferStart = 0;
    m_cursor = 0;
    if (load(0))
        searchForwards();
}

bool IteratorModel::firstLine()
{
    m_bufferStart = 0;
    m_cursor = 0;
    return load(0) && searchForwards();
}

bool IteratorModel::lastLine()
{
    if (size() <= 0) {
        m_cursor = 0;
        return false;
    }
    m_bufferStart = qMax(size() - sliceSize, 0);
    if (!load(m_bufferStart)) {
        m_cursor = 0;
        return false;
    }
    m_cursor = size() - m_bufferStart;
    return searchBackwards();
}

bool IteratorModel::nextLine()
{
    return searchForwards();
}

bool IteratorModel::prevLine()
{
    return searchBackwards();
}

bool IteratorModel::gotoPos(qint64 pos)
{
    if (pos < 0 || pos >= size())
        return false;
    const auto target = static_cast<int>(pos);
    m_bufferStart = qMax(target - sliceSize / 2, 0);
    m_cursor = target - m_bufferStart;
    return load(m_bufferStart) && searchForwards();
}

std::optional<QString> IteratorModel::curLineAsString() const
{
    if (m_line.contains('\0'))
        return std::nullopt;
    return QString::fromUtf8(m_line);
}

QByteArray IteratorModel::getBytes(qint64 pos, qint64 len) const
{
    if (pos < 0 || pos >= size() || len < 0 || pos + len > size())
        return {};
    return m_file.mid(static_cast<int>(pos), static_cast<int>(len));
}

bool IteratorModel::load(int pos)
{
    const bool atEnd = pos >= size();
    m_buffer = m_file.mid(pos, sliceSize);
    return !(atEnd && m_buffer.isEmpty());
}

bool IteratorModel::searchForwards()
{
    m_lineStart = m_bufferStart + m_cursor;
    if (size() <= m_lineStart)
        return false;
    m_line.clear();
    auto lineFeed = static_cast<int>(m_buffer.indexOf('\n', m_cursor));
    while (lineFeed < 0) {
        m_line += m_buffer.mid(m_cursor);
        m_bufferStart += bufferSize();
        m_cursor = 0;
        if (!load(m_bufferStart))
            return true;
        lineFeed = static_cast<int>(m_buffer.indexOf('\n'));
    }
    m_line += m_buffer.mid(m_cursor, lineFeed + 1 - m_cursor);
    m_cursor = lineFeed + 1;
    return true;
}

bool IteratorModel::searchBackwards()
{
    if (m_bufferStart == 0 && m_cursor == 0) {
        m_lineStart = 0;
        return false;
    }
    m_line.clear();
    // The byte before the cursor is the line's own terminator.
    if (m_cursor - 2 >= 0) {
        const auto lineFeed = static_cast<int>(m_buffer.lastIndexOf('\n', m_cursor - 2));
        if (lineFeed >= 0)
            return finishBackwards(lineFeed);
    }
    for (;;) {
        m_line.prepend(m_buffer.left(m_cursor));
        if (m_bufferStart < 1)
            break;
        const int old = m_bufferStart;
        m_bufferStart = qMax(old - sliceSize, 0);
        if (!load(m_bufferStart))
            break;
        m_cursor = old - m_bufferStart;
        if (m_cursor - 1 < 0)
            continue;
        // Here the byte before the cursor precedes text that is taken already.
        const auto lineFeed = static_cast<int>(m_buffer.lastIndexOf('\n', m_cursor - 1));
        if (lineFeed >= 0)
            return finishBackwards(lineFeed);
    }
    m_cursor = 0;
    m_lineStart = m_bufferStart;
    return true;
}

bool IteratorModel::finishBackwards(int lineFeed)
{
    m_line.prepend(m_buffer.mid(lineFeed + 1, m_cursor - lineFeed - 1));
    m_cursor = lineFeed + 1;
    m_lineStart = m_bufferStart + m_cursor;
    return true;
}

} // namespace tresktest
