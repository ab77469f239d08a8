#ifndef TRESK_FUZZ_BYTESOURCE_H
#define TRESK_FUZZ_BYTESOURCE_H

#include <QByteArray>

#include <algorithm>

namespace tresk_fuzz {

/// Makes choices from the bytes of an input, from its front. Where there are none left, every
/// choice is 0 and every text empty, so that any input means something.
class ByteSource {
public:
    explicit ByteSource(const QByteArray& input)
        : m_input(input)
    {
    }

    bool atEnd() const { return m_position >= m_input.size(); }

    int byte() { return atEnd() ? 0 : static_cast<unsigned char>(m_input.at(int(m_position++))); }

    /// A number from 0 to @p count - 1, from one byte, or two where one is not enough.
    int below(int count)
    {
        const int value = count > 256 ? byte() * 256 + byte() : byte();
        return count > 0 ? value % count : 0;
    }

    bool flag() { return (byte() & 1) != 0; }

    /// The next @p size bytes, or as many as there are.
    QByteArray bytes(int size)
    {
        const QByteArray taken = m_input.mid(int(m_position), std::max(size, 0));
        m_position += taken.size();
        return taken;
    }

    /// All that is left.
    QByteArray rest() { return bytes(int(m_input.size())); }

private:
    QByteArray m_input;
    qint64 m_position = 0;
};

} // namespace tresk_fuzz

#endif
