#include "ContentReader.h"

#include "Document.h"
#include "Range.h"
#include "Text.h"

#include <algorithm>

namespace tresk::cli {

namespace {

// Small enough that what a decompression bomb makes of it fits in memory anywhere.
constexpr int compressedPiece = 64 * 1024;
constexpr int plainPiece = 256 * 1024;

QString bytes(qint64 count)
{
    return counted(count, QStringLiteral("byte"));
}

} // namespace

ContentReader::ContentReader(Document& document, const FileTag& file)
    : m_document(document)
    , m_file(file)
    , m_compressed(file.compression == QLatin1String("flate"))
    , m_start(qint64(file.pos) + file.tagLength + file.offset)
    , m_length(storedLength(file))
    , m_fault(faultOfMarker())
{
}

QByteArray ContentReader::next()
{
    if (!m_fault.isNone())
        return {};
    return m_compressed ? nextInflated() : nextStored();
}

Fault ContentReader::faultOfMarker() const
{
    if (!m_compressed && m_file.compression != QLatin1String("none")) {
        return {
            ItemStatus::UnknownCompression,
            QStringLiteral("its compression %1 is unknown").arg(shownQuoted(m_file.compression))};
    }
    if (m_file.filesize < 0) {
        return {ItemStatus::OutsideDocument,
                QStringLiteral("its marker does not say how large it is")};
    }
    return faultOfRange(m_document, m_file);
}

QByteArray ContentReader::nextStored()
{
    const int limit = m_compressed ? compressedPiece : plainPiece;
    const int size = static_cast<int>(std::min<qint64>(limit, m_length - m_read));
    if (size == 0)
        return {};
    QByteArray piece = m_document.bytes(m_start + m_read, size);
    if (piece.size() != size)
        return fail(ItemStatus::Unreadable, QStringLiteral("its stored bytes cannot be read"));
    m_read += size;
    if (!m_compressed)
        m_delivered += size;
    return piece;
}

QByteArray ContentReader::nextInflated()
{
    while (!m_inflater.hasFinished()) {
        const QByteArray stored = nextStored();
        if (!m_fault.isNone())
            return {};
        if (stored.isEmpty())
            return fail(ItemStatus::BrokenStream,
                        QStringLiteral("its compressed stream breaks off"));
        QByteArray piece = m_inflater.inflateData(stored);
        if (!m_inflater.isValid())
            return fail(ItemStatus::BrokenStream,
                        QStringLiteral("its compressed stream is broken"));
        m_delivered += piece.size();
        if (m_delivered > m_file.filesize) {
            return fail(ItemStatus::Differs,
                        QStringLiteral("its content is longer than the %1 that its marker says")
                            .arg(bytes(m_file.filesize)));
        }
        if (!piece.isEmpty())
            return piece;
    }
    if (m_delivered < m_file.filesize) {
        return fail(ItemStatus::Differs,
                    QStringLiteral("its content has %1, but its marker says %2")
                        .arg(bytes(m_delivered), QString::number(m_file.filesize)));
    }
    return {};
}

QByteArray ContentReader::fail(ItemStatus status, const QString& text)
{
    m_fault = {status, text};
    return {};
}

QString remarkOn(const FileTag& file)
{
    if (file.compression != QLatin1String("none") || file.filesize == file.cfilesize)
        return {};
    return QStringLiteral("it is stored plain, but its marker gives two sizes, %1 and %2; "
                          "the first is taken")
        .arg(numberOrDash(file.filesize), numberOrDash(file.cfilesize));
}

} // namespace tresk::cli
