#ifndef TRESK_CONTAINER_ZLIBSTREAM_H
#define TRESK_CONTAINER_ZLIBSTREAM_H

#include <QtGlobal>

#include <functional>
#include <memory>

#include <zlib.h>

namespace tresk {

/// Decodes one zlib stream (RFC 1950) that comes in pieces, without copying what it yields.
class ZlibStream {
public:
    /// Takes the next @p size bytes of the content; false stops the decoding as an error.
    using Sink = std::function<bool(const char* data, int size)>;

    ZlibStream();
    ~ZlibStream();

    /// Starts over with a new stream.
    void reset();

    /// Decodes the next @p size bytes of the stream at @p data and hands what they yield to
    /// @p sink, in portions of up to 1 MiB. False at an error, from then on until reset().
    /// No input changes nothing, and input behind the end of the stream is ignored.
    bool inflate(const char* data, qint64 size, const Sink& sink);

    /// Whether the end of the stream was reached, its checksum included.
    bool hasFinished() const { return m_finished; }
    /// Whether no error has occurred.
    bool isValid() const { return m_valid; }

private:
    Q_DISABLE_COPY(ZlibStream)

    void init();
    void provideInput(const char*& data, qint64& size);
    bool fail();

    z_stream m_zlib;
    std::unique_ptr<char[]> m_output;
    bool m_valid = false;
    bool m_finished = false;
};

} // namespace tresk

#endif
