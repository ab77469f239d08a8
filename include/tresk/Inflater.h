#ifndef TRESK_INFLATER_H
#define TRESK_INFLATER_H

#include <tresk/Export.h>

#include <QByteArray>

#include <memory>

namespace tresk {

class ZlibStream;

/// Decodes one zlib stream (RFC 1950) piece by piece.
class TRESK_EXPORT Inflater {
public:
    Inflater();
    ~Inflater();

    /// Starts over with a new stream.
    void reset();

    /// Decodes @p input, the next piece of the stream, and returns what it yields.
    ///
    /// Empty input changes nothing, and input behind the end of the stream is ignored. At an
    /// error the inflater becomes invalid, what this call had decoded is discarded, and this
    /// and every later call returns an empty array until reset(). A piece that would yield
    /// 2 GiB or more is such an error; a byte of input never yields more than 1032.
    QByteArray inflateData(const QByteArray& input);

    /// Whether the end of the stream was reached, its checksum (Adler-32) included.
    bool hasFinished() const;
    /// Whether no error has occurred since the start or the last reset().
    bool isValid() const;

private:
    Q_DISABLE_COPY(Inflater)

    std::unique_ptr<ZlibStream> m_stream;
};

} // namespace tresk

#endif
