#include "DocumentRepair.h"

#include "DocumentWriter.h"

#include <QList>

#include <algorithm>
#include <optional>

#include <zlib.h>

namespace tresktest {

namespace {

const QByteArray sectionPrefix("%<--! $TRESK_SECTION");
const QByteArray filePrefix("%<--! $TRESK_EMBEDDEDFILE_BEGIN");

const QList<QByteArray>& sectionKeys()
{
    static const QList<QByteArray> keys = {"version",    "creator",     "title",
                                           "left",       "size",        "index",
                                           "md5section", "previousmd5", "previousmarker"};
    return keys;
}

const QList<QByteArray>& fileKeys()
{
    static const QList<QByteArray> keys = {"filetype",    "filename", "desc",      "comment",
                                           "compression", "filesize", "cfilesize", "blocksize",
                                           "offset",      "md5file",  "md5cfile"};
    return keys;
}

struct Value {
    int place = 0; ///< in the document
    int size = 0;
};

/// A marker, and where it stands.
struct Marker {
    bool isSection = false;
    int lineStart = 0;
    int lineEnd = 0; ///< behind the line feed
    int length = 0; ///< UTF-16 code units from "%" through "-->"
    QList<Value> values; ///< in the order of the keys

    Value value(const char* key) const
    {
        const auto index = (isSection ? sectionKeys() : fileKeys()).indexOf(QByteArray(key));
        return values.at(index);
    }
};

bool isStreamHeader(const QByteArray& bytes)
{
    const int method = static_cast<unsigned char>(bytes.at(0));
    const int flags = static_cast<unsigned char>(bytes.at(1));
    const bool needsDictionary = (flags & 0x20) != 0;
    return (method & 0x8f) == 8 && !needsDictionary && (method * 256 + flags) % 31 == 0;
}

struct Inflated {
    QByteArray content; ///< as far as it goes
    int size = 0; ///< of the deflated data
    bool isWhole = false;
};

/// What is behind the header of a zlib stream.
Inflated inflated(const QByteArray& deflated)
{
    Inflated result;
    z_stream zlib = {};
    if (inflateInit2(&zlib, -MAX_WBITS) != Z_OK)
        qFatal("zlib could not be initialised");
    zlib.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(deflated.constData()));
    zlib.avail_in = static_cast<uInt>(deflated.size());
    char buffer[4096];
    int status = Z_OK;
    while (status == Z_OK) {
        zlib.next_out = reinterpret_cast<Bytef*>(buffer);
        zlib.avail_out = sizeof(buffer);
        status = inflate(&zlib, Z_NO_FLUSH);
        result.content.append(buffer, static_cast<int>(sizeof(buffer) - zlib.avail_out));
    }
    inflateEnd(&zlib);
    result.size = static_cast<int>(zlib.total_in);
    result.isWhole = status == Z_STREAM_END;
    return result;
}

/// Repairs a document that it holds.
class Repair {
public:
    explicit Repair(const QByteArray& document);

    QByteArray repaired();

private:
    std::optional<Marker> markerOnLine(int lineStart, int lineEnd) const;
    QByteArray text(const Marker& marker, const char* key) const;
    qint64 number(const Marker& marker, const char* key) const;
    void put(const Marker& marker, const char* key, const QByteArray& text);
    void putNumber(const Marker& marker, const char* key, qint64 number);
    void putDigest(const Marker& marker, const char* key, const QByteArray& bytes);

    bool isFlate(const Marker& file) const { return text(file, "compression") == "flate"; }
    qint64 dataStart(const Marker& file) const;
    qint64 regionStart(const Marker& section) const;
    bool isLineStart(qint64 place) const;
    void fitFile(const Marker& file);
    void fitStream(const Marker& file, int start);
    void fitSection(const Marker& section, const Marker* previous);
    void signFile(const Marker& file);
    void signSection(const Marker& section);

    QByteArray m_document;
    QList<Marker> m_markers;
};

Repair::Repair(const QByteArray& document)
    : m_document(document)
{
    for (int start = 0; start < m_document.size();) {
        const auto lineFeed = m_document.indexOf('\n', start);
        const int end = lineFeed < 0 ? int(m_document.size()) : int(lineFeed) + 1;
        if (const std::optional<Marker> marker = markerOnLine(start, end))
            m_markers.append(*marker);
        start = end;
    }
}

/// A section anywhere on the line, or a file at its start. Values are not looked at closely: one
/// that is wrong in its form does no harm.
std::optional<Marker> Repair::markerOnLine(int lineStart, int lineEnd) const
{
    const QByteArray line = m_document.mid(lineStart, lineEnd - lineStart);
    Marker marker;
    marker.isSection = line.contains(sectionPrefix);
    if ((!marker.isSection && !line.startsWith(filePrefix)) || line.contains('\0'))
        return std::nullopt;
    marker.lineStart = lineStart;
    marker.lineEnd = lineEnd;
    const int start = marker.isSection ? int(line.indexOf(sectionPrefix)) : 0;
    int place = start + int((marker.isSection ? sectionPrefix : filePrefix).size()) + 1;
    for (const QByteArray& key : marker.isSection ? sectionKeys() : fileKeys()) {
        if (line.mid(place, key.size() + 2) != '[' + key + ':')
            return std::nullopt;
        place += int(key.size()) + 2;
        const int begin = place;
        while (place < line.size() && line.at(place) != ']')
            place += line.at(place) == '\\' ? 2 : 1;
        marker.values.append({lineStart + begin, place - begin});
        ++place;
    }
    if (line.mid(place, 3) != "-->")
        return std::nullopt;
    marker.length = int(QString::fromUtf8(line.mid(start, place + 3 - start)).size());
    return marker;
}

QByteArray Repair::text(const Marker& marker, const char* key) const
{
    const Value value = marker.value(key);
    return m_document.mid(value.place, value.size);
}

/// -1 for none, and for what is no number.
qint64 Repair::number(const Marker& marker, const char* key) const
{
    bool isNumber = false;
    const qint64 number = text(marker, key).toLongLong(&isNumber);
    return isNumber ? number : -1;
}

void Repair::put(const Marker& marker, const char* key, const QByteArray& text)
{
    const Value value = marker.value(key);
    if (text.size() == value.size)
        m_document.replace(value.place, value.size, text);
}

void Repair::putNumber(const Marker& marker, const char* key, qint64 number)
{
    put(marker, key, QByteArray::number(number).rightJustified(marker.value(key).size, '0'));
}

void Repair::putDigest(const Marker& marker, const char* key, const QByteArray& bytes)
{
    put(marker, key, md5Hex(bytes));
}

qint64 Repair::dataStart(const Marker& file) const
{
    return file.lineStart + file.length + number(file, "offset");
}

qint64 Repair::regionStart(const Marker& section) const
{
    return section.lineStart + 1 - number(section, "left");
}

bool Repair::isLineStart(qint64 place) const
{
    return place == 0
        || (place > 0 && place <= m_document.size() && m_document.at(int(place) - 1) == '\n');
}

/// Sizes within the document, and those of the stream where there is one.
void Repair::fitFile(const Marker& file)
{
    const qint64 start = dataStart(file);
    const qint64 most = m_document.size() - start;
    if (most < 0)
        return;
    if (isFlate(file))
        fitStream(file, int(start));
    else if (number(file, "filesize") > most)
        putNumber(file, "filesize", most);
    if (!isFlate(file) && text(file, "compression") == "none")
        putNumber(file, "cfilesize", number(file, "filesize"));
    if (number(file, "cfilesize") > most)
        putNumber(file, "cfilesize", most);
}

/// Makes the deflated data at @p start a stream: its header, its checksum and its sizes.
void Repair::fitStream(const Marker& file, int start)
{
    const Inflated data = inflated(m_document.mid(start + 2));
    const int trailer = start + 2 + data.size;
    if (!data.isWhole || trailer + 4 > m_document.size())
        return;
    if (!isStreamHeader(m_document.mid(start, 2)))
        m_document.replace(start, 2, "\x78\x9c");
    const uLong checksum = adler32(adler32(0, nullptr, 0),
                                   reinterpret_cast<const Bytef*>(data.content.constData()),
                                   static_cast<uInt>(data.content.size()));
    for (int i = 0; i < 4; ++i)
        m_document[trailer + i] = static_cast<char>(checksum >> (8 * (3 - i)));
    putNumber(file, "cfilesize", trailer + 4 - start);
    putNumber(file, "filesize", data.content.size());
}

/// A region from a line's start to the end of the document at most, and a way back to a section.
void Repair::fitSection(const Marker& section, const Marker* previous)
{
    if (!isLineStart(regionStart(section)) || regionStart(section) > section.lineStart) {
        const int start = previous ? previous->lineEnd : 0;
        putNumber(section, "left", section.lineStart + 1 - start);
    }
    const qint64 end = regionStart(section) + number(section, "size");
    if (end < section.lineEnd || end > m_document.size())
        putNumber(section, "size", section.lineEnd - regionStart(section));
    const qint64 target = section.lineStart - number(section, "previousmarker");
    const bool leadsToSection = std::any_of(
        m_markers.begin(), m_markers.end(),
        [target](const Marker& marker) { return marker.isSection && marker.lineStart == target; });
    if (previous && !leadsToSection)
        putNumber(section, "previousmarker", section.lineStart - previous->lineStart);
}

void Repair::signFile(const Marker& file)
{
    const bool flate = isFlate(file);
    const qint64 start = dataStart(file);
    const qint64 size = number(file, flate ? "cfilesize" : "filesize");
    if (size < 0 || start + size > m_document.size())
        return;
    const QByteArray stored = m_document.mid(int(start), int(size));
    if (!flate) {
        putDigest(file, "md5file", stored);
        return;
    }
    putDigest(file, "md5cfile", stored);
    putDigest(file, "md5file", inflated(stored.mid(2)).content);
}

void Repair::signSection(const Marker& section)
{
    put(section, "md5section", QByteArray(32, '0'));
    const qint64 start = regionStart(section);
    if (start >= 0)
        putDigest(section, "md5section", m_document.mid(int(start), int(number(section, "size"))));
}

QByteArray Repair::repaired()
{
    const Marker* previous = nullptr;
    for (const Marker& marker : qAsConst(m_markers)) {
        if (!marker.isSection) {
            fitFile(marker);
            continue;
        }
        fitSection(marker, previous);
        previous = &marker;
    }
    // From the end: the data of a file may hold markers, and a section covers files before it.
    for (auto marker = m_markers.crbegin(); marker != m_markers.crend(); ++marker) {
        if (!marker->isSection)
            signFile(*marker);
    }
    for (const Marker& marker : qAsConst(m_markers)) {
        if (marker.isSection)
            signSection(marker);
    }
    return m_document;
}

} // namespace

QByteArray repairedDocument(const QByteArray& document)
{
    return Repair(document).repaired();
}

} // namespace tresktest
