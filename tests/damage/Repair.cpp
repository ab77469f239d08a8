#include "Repair.h"

#include "DocumentWriter.h"
#include "Expectation.h"
#include "MarkerText.h"

#include <QVector>

#include <algorithm>

#include <zlib.h>

namespace tresktest {

namespace {

/// A marker whose values depend on the bytes of a range, those of other markers included.
struct Covering {
    qint64 start;
    qint64 end;
    int lineStart;
    bool isSection;
};

void put(QByteArray& document, const MarkerText::Field& field, const QByteArray& value)
{
    document.replace(field.place, field.value.size(), value);
}

/// With zeros in front, so that nothing behind it moves; not at all where it has too many digits.
void putNumber(QByteArray& document, const MarkerText::Field& field, qint64 number)
{
    const QByteArray digits = QByteArray::number(number).rightJustified(field.value.size(), '0');
    if (digits.size() == field.value.size())
        put(document, field, digits);
}

void putDigest(QByteArray& document, const MarkerText::Field& field, const QByteArray& bytes)
{
    if (!field.value.isEmpty())
        put(document, field, md5Hex(bytes));
}

/// Gives the zlib stream at @p start, which ends before @p end, the checksum of its content.
void repairStream(QByteArray& document, int start, int end)
{
    constexpr int header = 2;
    z_stream zlib = {};
    if (end - start < header || inflateInit2(&zlib, -MAX_WBITS) != Z_OK)
        return;
    const QByteArray deflated = document.mid(start + header, end - start - header);
    zlib.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(deflated.constData()));
    zlib.avail_in = static_cast<uInt>(deflated.size());
    uLong checksum = adler32(0, nullptr, 0);
    Bytef buffer[4096];
    int status = Z_OK;
    while (status == Z_OK) {
        zlib.next_out = buffer;
        zlib.avail_out = sizeof(buffer);
        status = inflate(&zlib, Z_NO_FLUSH);
        checksum = adler32(checksum, buffer, static_cast<uInt>(sizeof(buffer) - zlib.avail_out));
    }
    const auto checksumStart = start + header + static_cast<int>(zlib.total_in);
    inflateEnd(&zlib);
    if (status != Z_STREAM_END || checksumStart + 4 > end)
        return;
    for (int i = 0; i < 4; ++i)
        document[checksumStart + i] = static_cast<char>(checksum >> (8 * (3 - i)));
}

/// The number in @p field, or less if so many bytes from @p start on are not in the document.
int fitted(const QByteArray& document, const MarkerText& marker, const char* key, qint64 start)
{
    const int number = marker.number(key);
    const qint64 most = qMax<qint64>(0, document.size() - start);
    return int(qMin<qint64>(number, most));
}

void repairFile(QByteArray& document, const MarkerText& marker)
{
    const qint64 start = qint64(marker.pos) + marker.tagLength + marker.number("offset");
    const bool flate = marker.value("compression") == "flate";
    const int size = fitted(document, marker, flate ? "cfilesize" : "filesize", start);
    if (start > document.size() || size < 0)
        return;
    if (flate)
        repairStream(document, int(start), int(start) + size);
    const QByteArray stored = document.mid(int(start), size);
    putNumber(document, marker.field("cfilesize"), size);
    putDigest(document, marker.field("md5cfile"), stored);
    const std::optional<QByteArray> content = flate ? inflated(stored) : stored;
    if (content) {
        putNumber(document, marker.field("filesize"), content->size());
        putDigest(document, marker.field("md5file"), *content);
    }
}

void repairSection(QByteArray& document, const MarkerText& marker)
{
    const int left = qMin(marker.number("left"), marker.pos);
    if (left <= 0)
        return;
    const int begin = marker.pos - left;
    putNumber(document, marker.field("left"), left);
    putNumber(document, marker.field("size"), fitted(document, marker, "size", begin));
    const std::optional<MarkerText> fitting = sectionMarkerAt(document, marker.pos - 1);
    const std::optional<QByteArray> region = checkedRegion(document, *fitting);
    if (region && begin + fitting->number("size") > marker.pos)
        putDigest(document, fitting->field("md5section"), *region);
}

/// All markers, each behind those that are in what it covers.
QVector<Covering> coverings(const QByteArray& document)
{
    QVector<Covering> found;
    for (const MarkerText& file : fileMarkers(document)) {
        const qint64 start = qint64(file.pos) + file.tagLength + file.number("offset");
        const bool flate = file.value("compression") == "flate";
        found.append(
            {start, start + file.number(flate ? "cfilesize" : "filesize"), file.pos - 1, false});
    }
    for (const MarkerText& section : sectionMarkers(document)) {
        const qint64 start = qint64(section.pos) - section.number("left");
        found.append({start, start + section.number("size"), section.pos - 1, true});
    }
    std::sort(found.begin(), found.end(), [](const Covering& a, const Covering& b) {
        return a.end != b.end ? a.end < b.end : a.start > b.start;
    });
    return found;
}

} // namespace

QByteArray repaired(const QByteArray& document)
{
    QByteArray result = document;
    const QVector<Covering> all = coverings(document);
    for (const Covering& covering : all) {
        const std::optional<MarkerText> marker = covering.isSection
            ? sectionMarkerAt(result, covering.lineStart)
            : fileMarkerAt(result, covering.lineStart);
        if (!marker) // overwritten as the checksum of a stream
            continue;
        if (covering.isSection)
            repairSection(result, *marker);
        else
            repairFile(result, *marker);
    }
    return result;
}

} // namespace tresktest
