#include "args/StreamDecoder.h"

#include <algorithm>

namespace tresk {

namespace {

/// How many bytes at the end of @p bytes are a character without its end.
int cutBytes(const QByteArray& bytes)
{
    const int most = std::min(3, int(bytes.size()));
    for (int length = 1; length <= most; ++length) {
        const auto byte = uchar(bytes.at(bytes.size() - length));
        if (byte >= 0xc0) {
            const int whole = byte < 0xe0 ? 2 : byte < 0xf0 ? 3 : 4;
            return length < whole ? length : 0;
        }
        if (byte < 0x80)
            break;
    }
    return 0;
}

} // namespace

QString StreamDecoder::decode(const QByteArray& bytes)
{
    QByteArray all = m_rest + bytes;
    const int cut = cutBytes(all);
    m_rest = all.right(cut);
    all.chop(cut);
    return decodeAll(all);
}

QString StreamDecoder::decodeLast(const QByteArray& bytes)
{
    return decodeAll(m_rest + bytes);
}

QString StreamDecoder::decodeAll(const QByteArray& bytes)
{
    // Qt leaves out one byte order mark at the front, which only that of the whole stream is.
    const QByteArray all = m_begun ? "\xef\xbb\xbf" + bytes : bytes;
    m_begun = m_begun || !bytes.isEmpty();
    return QString::fromUtf8(all.constData(), int(all.size()));
}

} // namespace tresk
