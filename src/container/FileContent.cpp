// The operations of TreskParser that read the content of embedded files.

#include <tresk/MD5Generator.h>
#include <tresk/TreskParser.h>

#include "container/ByteSearch.h"
#include "container/Deflate.h"
#include "container/ZlibStream.h"
#include "core/Logging.h"
#include "core/ProcessorClock.h"

#include <QDebug>
#include <QFile>

#include <algorithm>

namespace tresk {

namespace {

constexpr int writePiece = 4 * 1024 * 1024;
constexpr int longestContent = longestArray - 1024 * 1024;
constexpr int digestPiece = 256 * 1024; // stays in the processor's cache between its uses

const QLatin1String flate("flate");
const QLatin1String none("none");

/// Where the stored bytes of @p file begin; may lie far outside the document.
qint64 dataStart(const FileTag& file)
{
    return qint64(file.pos) + file.tagLength + file.offset;
}

/// The content of the zlib stream @p stored, which should have @p size bytes: nothing of a
/// stream that is damaged, and little more than @p size of one that is longer. A stream that is
/// both counts as damaged where @p size is 0, which then fits.
QByteArray inflated(const QByteArray& stored, int size)
{
    QByteArray content;
    if (size < 0 || size > longestContent)
        return content;
    content.reserve(int(std::min<qint64>(size, stored.size() * largestRatio)));
    const auto append = [&content, size](const char* data, int count) {
        if (content.size() <= size)
            content.append(data, count);
        return size == 0 || content.size() <= size;
    };
    ZlibStream stream;
    stream.inflate(stored.constData(), stored.size(), append);
    const bool isLonger = size > 0 && content.size() > size;
    return stream.hasFinished() || isLonger ? content : QByteArray();
}

QString megabytes(int size)
{
    return QString::number(size / 1048576.0, 'f', 2);
}

/// Writes the content of an embedded file piece by piece.
class ContentWriter {
public:
    ContentWriter(QFile& target, bool compressed)
        : m_target(target)
    {
        if (compressed)
            m_stream = std::make_unique<ZlibStream>();
    }

    /// Writes what @p piece, the next stored bytes, yields; false if not all could be written.
    /// A piece in which the stream is found to be damaged yields nothing.
    bool write(const QByteArray& piece)
    {
        if (!m_stream)
            return put(piece.constData(), int(piece.size()));
        const qint64 before = m_target.pos();
        bool written = true;
        const auto putAll = [&](const char* data, int count) { return written = put(data, count); };
        if (!m_stream->inflate(piece.constData(), piece.size(), putAll) && written)
            m_target.resize(before); // goes back there, too
        return written;
    }

private:
    bool put(const char* data, int count) { return m_target.write(data, count) == count; }

    QFile& m_target;
    std::unique_ptr<ZlibStream> m_stream;
};

} // namespace

/// The bytes of a range whose start is a sum of what a marker says.
QByteArray TreskParser::readRange(qint64 pos, int len)
{
    return pos < m_iterator.getFileSize() ? getBytes(int(pos), len) : QByteArray();
}

QSharedPointer<QByteArray> TreskParser::getCompressedFile(int i)
{
    const QSharedPointer<FileTag> file = getFile(i);
    if (!file)
        return {};
    return QSharedPointer<QByteArray>::create(readRange(dataStart(*file), file->cfilesize));
}

QSharedPointer<QByteArray> TreskParser::getFileContent(int i)
{
    const QSharedPointer<FileTag> file = getFile(i);
    if (!file)
        return {};
    QSharedPointer<QByteArray> stored = getCompressedFile(i);
    if (file->compression == none)
        return stored;
    if (file->compression != flate)
        return {};
    // A damaged stream counts as empty, which is the right size where the marker says 0.
    *stored = inflated(*stored, file->filesize);
    return stored->size() == file->filesize ? stored : QSharedPointer<QByteArray>();
}

bool TreskParser::writeFileToDisk(int i, const QString& path)
{
    const std::clock_t started = std::clock();
    Q_EMIT log(tr("[writeFileToDisk] file: %1").arg(path), 0);
    const QSharedPointer<FileTag> file = getFile(i);
    if (!file)
        return false;
    QFile target(path);
    if (!target.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return false;
    const bool compressed = file->compression == flate;
    if (!compressed && file->compression != none) {
        Q_EMIT log(tr("*** ERROR: invalid compression method."), 2);
        return false;
    }
    Q_EMIT log(tr("original/embedded file size: %1/%2 MB (%3/%4 bytes)")
                   .arg(megabytes(file->filesize), megabytes(file->cfilesize),
                        QString::number(file->filesize), QString::number(file->cfilesize)),
               0);
    const int length = compressed ? file->cfilesize : file->filesize;
    qCDebug(debugCategory) << "unextract" << file->filename << "(" << dataStart(*file) << length
                           << ")";

    // Neither a damaged stream nor a range outside the document ends the copying with an error:
    // what can be had is written, and checksums tell the rest.
    ContentWriter writer(target, compressed);
    for (qint64 done = 0; done < length; done += writePiece) {
        const int count = int(std::min<qint64>(length - done, writePiece));
        if (!writer.write(readRange(dataStart(*file) + done, count))) {
            Q_EMIT log(tr("*** ERROR: IO Error."), 2);
            return false;
        }
    }
    Q_EMIT log(tr("[writeFileToDisk] total: %1s.").arg(processorSecondsSince(started)), 0);
    return true;
}

QPair<QString, QString> TreskParser::calcChecksumsForFile(int i)
{
    const QSharedPointer<FileTag> file = getFile(i);
    if (!file)
        return {};
    const bool compressed = file->compression == flate;
    MD5Generator storedDigest;
    MD5Generator contentDigest;
    qint64 contentSize = 0;
    const auto digestContent = [&](const char* data, int count) {
        contentDigest.update(QByteArray::fromRawData(data, count));
        contentSize += count;
        return contentSize <= longestArray;
    };
    ZlibStream stream;

    // A range that is not wholly inside the document reads as empty.
    const qint64 start = dataStart(*file);
    const qint64 end = start + file->cfilesize;
    for (qint64 pos = start; pos < end && end <= m_iterator.getFileSize(); pos += digestPiece) {
        const QByteArray piece = readRange(pos, int(std::min<qint64>(end - pos, digestPiece)));
        storedDigest.update(piece);
        if (compressed)
            stream.inflate(piece.constData(), piece.size(), digestContent);
    }
    if (!compressed)
        return {storedDigest.getHexDigest(), QString()};
    if (file->filesize < 0 || !stream.hasFinished() || !stream.isValid())
        contentDigest.reset();
    return {storedDigest.getHexDigest(), contentDigest.getHexDigest()};
}

} // namespace tresk
