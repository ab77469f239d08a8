#include "Expectation.h"

#include "DocumentWriter.h"

#include <zlib.h>

namespace tresktest {

namespace {

/// The bytes of a range; none unless it is wholly inside the document.
std::optional<QByteArray> range(const QByteArray& document, qint64 start, qint64 length)
{
    if (length <= 0)
        return QByteArray();
    if (start < 0 || start + length > document.size())
        return std::nullopt;
    return document.mid(int(start), int(length));
}

} // namespace

ExpectedFile::ExpectedFile(const QByteArray& document, const MarkerText& marker)
    : m_marker(marker)
    , m_flate(marker.value("compression") == "flate")
    , m_plain(marker.value("compression") == "none")
    , m_size(marker.number("filesize"))
    , m_md5file(marker.value("md5file"))
    , m_md5cfile(marker.value("md5cfile"))
{
    const qint64 start = qint64(marker.pos) + marker.tagLength + marker.number("offset");
    const int storedSize = marker.number("cfilesize");
    m_stored = range(document, start, storedSize).value_or(QByteArray());
    m_checkedRange = range(document, start, m_flate ? storedSize : m_size);
    if (m_flate)
        m_inflated = inflated(m_stored);
    m_valid = hasRightChecksums();
}

std::optional<QByteArray> ExpectedFile::checkedContent() const
{
    return isCheckedInflated() && m_checkedRange ? m_inflated : m_checkedRange;
}

bool ExpectedFile::hasRightChecksums() const
{
    const std::optional<QByteArray> content = checkedContent();
    return content && md5Hex(*content) == m_md5file
        && (!isCheckedInflated() || md5Hex(*m_checkedRange) == m_md5cfile);
}

std::optional<QByteArray> ExpectedFile::content() const
{
    if (m_plain)
        return m_stored;
    if (!m_flate || inflatedOrEmpty().size() != m_size)
        return std::nullopt;
    return inflatedOrEmpty();
}

std::optional<QByteArray> checkedRegion(const QByteArray& document, const MarkerText& marker)
{
    const qint64 pos = marker.pos;
    const qint64 begin = pos - marker.number("left");
    const qint64 end = begin + marker.number("size");
    if (begin >= pos || end < pos)
        return range(document, begin, end - begin);
    if (end == pos) // The tag belongs to it, but has no room in it.
        return std::nullopt;
    const QByteArray tag = marker.validationTag();
    const std::optional<QByteArray> before = range(document, begin, pos - begin);
    const std::optional<QByteArray> behind = range(document, pos + tag.size(),
                                                   end - pos - tag.size());
    if (!before || !behind)
        return std::nullopt;
    return *before + tag + *behind;
}

ExpectedDocument::ExpectedDocument(const QByteArray& bytes)
    : m_bytes(bytes)
{
}

const ExpectedFile* ExpectedDocument::file(int lineStart)
{
    const auto [found, isNew] = m_files.try_emplace(lineStart);
    if (isNew) {
        if (const std::optional<MarkerText> marker = fileMarkerAt(m_bytes, lineStart))
            found->second.emplace(m_bytes, *marker);
    }
    return found->second ? &*found->second : nullptr;
}

const ExpectedSection* ExpectedDocument::section(int lineStart)
{
    const auto [found, isNew] = m_sections.try_emplace(lineStart);
    if (isNew) {
        if (const std::optional<MarkerText> marker = sectionMarkerAt(m_bytes, lineStart)) {
            const std::optional<QByteArray> region = checkedRegion(m_bytes, *marker);
            const bool valid = region && md5Hex(*region) == marker->value("md5section");
            found->second = ExpectedSection{*marker, valid};
        }
    }
    return found->second ? &*found->second : nullptr;
}

std::optional<QByteArray> inflated(const QByteArray& stream)
{
    z_stream zlib = {};
    if (inflateInit(&zlib) != Z_OK)
        qFatal("zlib could not be initialised");
    zlib.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(stream.constData()));
    zlib.avail_in = static_cast<uInt>(stream.size());
    QByteArray content;
    char buffer[4096];
    int status = Z_OK;
    while (status == Z_OK) {
        zlib.next_out = reinterpret_cast<Bytef*>(buffer);
        zlib.avail_out = sizeof(buffer);
        status = inflate(&zlib, Z_NO_FLUSH);
        content.append(buffer, int(sizeof(buffer) - zlib.avail_out));
    }
    inflateEnd(&zlib);
    if (status != Z_STREAM_END)
        return std::nullopt;
    return content;
}

} // namespace tresktest
