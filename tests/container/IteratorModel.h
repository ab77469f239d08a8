#ifndef TRESK_TESTS_ITERATORMODEL_H
#define TRESK_TESTS_ITERATORMODEL_H

#include <QByteArray>
#include <QString>

#include <optional>

namespace tresktest {

/// A line iterator over bytes in memory, written as plainly as the behaviour can be described:
/// slices of 10240 bytes, one step at a time. The real iterator is compared with it.
class IteratorModel {
public:
    /// Opens a file that consists of @p bytes.
    void open(const QByteArray& bytes);

    bool firstLine();
    bool lastLine();
    bool nextLine();
    bool prevLine();
    bool gotoPos(qint64 pos);

    int curPos() const { return m_lineStart; }
    QByteArray curLine() const { return m_line; }
    /// Nothing for a line that holds a NUL byte.
    std::optional<QString> curLineAsString() const;
    bool curLineStartsWith(const QByteArray& bytes) const { return m_line.startsWith(bytes); }
    QByteArray getBytes(qint64 pos, qint64 len) const;
    bool reachedStart() const { return m_bufferStart == 0 && m_cursor == 0; }
    bool reachedEnd() const { return size() <= m_bufferStart + m_cursor; }
    bool empty() const { return size() <= 0; }

private:
    int size() const { return static_cast<int>(m_file.size()); }
    int bufferSize() const { return static_cast<int>(m_buffer.size()); }
    bool load(int pos);
    bool searchForwards();
    bool searchBackwards();
    bool finishBackwards(int lineFeed);

    QByteArray m_file;
    QByteArray m_buffer;
    QByteArray m_line;
    int m_lineStart = -1;
    int m_bufferStart = -1;
    int m_cursor = 0;
};

} // namespace tresktest

#endif
