#ifndef TRESK_ARGS_STREAMDECODER_H
#define TRESK_ARGS_STREAMDECODER_H

#include <QByteArray>
#include <QString>

namespace tresk {

/// Decodes a stream of UTF-8 that comes in pieces, as if it came in one; what is none becomes
/// U+FFFD.
class StreamDecoder {
public:
    /// The text of the next piece. A character that its end cuts is left for the next one.
    QString decode(const QByteArray& bytes);
    /// The text of the last piece, and of what waits for bytes that will not come.
    QString decodeLast(const QByteArray& bytes);

private:
    QString decodeAll(const QByteArray& bytes);

    QByteArray m_rest;
    bool m_begun = false;
};

} // namespace tresk

#endif
