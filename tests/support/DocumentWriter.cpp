#include "DocumentWriter.h"

#include <QCryptographicHash>

#include <zlib.h>

namespace tresktest {

namespace {

const char sectionStart[] = "%<--! $TRESK_SECTION ";
const char fileStart[] = "%<--! $TRESK_EMBEDDEDFILE_BEGIN ";

int sizeOf(const QByteArray& bytes)
{
    return static_cast<int>(bytes.size());
}

QByteArray number(int value)
{
    return value < 0 ? QByteArray() : QByteArray::number(value);
}

/// Puts a marker together, field by field in the order they are added.
class MarkerBuilder {
public:
    MarkerBuilder(const char* start, const RawFields& raw)
        : m_text(start)
        , m_raw(raw)
    {
    }

    MarkerBuilder& field(const char* key, const QByteArray& value)
    {
        m_text.append('[').append(key).append(':');
        m_text.append(m_raw.isEmpty() ? value : m_raw.value(key, value)).append(']');
        if (!m_raw.isEmpty())
            m_raw.remove(key);
        return *this;
    }

    QByteArray finish() const
    {
        if (!m_raw.isEmpty())
            qFatal("there is no marker field \"%s\"", m_raw.constBegin().key().constData());
        return m_text + "-->";
    }

private:
    QByteArray m_text;
    RawFields m_raw;
};

/// Offset of the first byte of the line that holds the byte at @p position.
int lineStartAt(const QByteArray& bytes, int position)
{
    if (position == 0)
        return 0;
    return static_cast<int>(bytes.lastIndexOf('\n', position - 1)) + 1;
}

int codeUnits(const QByteArray& marker)
{
    return static_cast<int>(QString::fromUtf8(marker).size());
}

QByteArray fileMarker(const FileSpec& file, const WrittenFile& written)
{
    return MarkerBuilder(fileStart, file.raw)
        .field("filetype", escaped(file.filetype))
        .field("filename", escaped(file.filename))
        .field("desc", escaped(file.desc))
        .field("comment", escaped(file.comment))
        .field("compression", file.compression)
        .field("filesize", number(sizeOf(file.content)))
        .field("cfilesize", number(sizeOf(written.stored)))
        .field("blocksize", number(written.blocksize))
        .field("offset", number(written.offset))
        .field("md5file", written.md5file)
        .field("md5cfile", written.md5cfile)
        .finish();
}

QByteArray storedBytes(const FileSpec& file)
{
    if (file.stored)
        return *file.stored;
    return file.compression == "flate" ? deflated(file.content) : file.content;
}

/// Appends a file to @p out; the positions returned are those in @p out.
///
/// The reader adds tagLength, which counts UTF-16 code units, to a position in bytes. For a
/// marker with other characters than ASCII that sum falls short of the byte behind "-->", so
/// offset and blocksize, which are counted from there, make up for the difference.
WrittenFile appendFile(QByteArray& out, const FileSpec& file, const QByteArray& terminator)
{
    out += file.gap;
    WrittenFile written;
    written.lineStart = lineStartAt(out, sizeOf(out));
    written.stored = storedBytes(file);
    written.md5file = md5Hex(file.content);
    if (file.compression == "flate")
        written.md5cfile = md5Hex(written.stored);

    const QByteArray unsizedMarker = fileMarker(file, written);
    const int missing = sizeOf(unsizedMarker) - codeUnits(unsizedMarker);
    const QByteArray trailing = file.trailing.value_or(terminator);
    written.offset = missing + sizeOf(file.afterMarker) + sizeOf(terminator);
    written.blocksize = written.offset + sizeOf(written.stored) + sizeOf(trailing);
    written.marker = fileMarker(file, written);
    written.tagLength = codeUnits(written.marker) - 1;

    out += written.marker + file.afterMarker + terminator;
    written.dataStart = sizeOf(out);
    out += written.stored;
    out += trailing;
    written.blockEnd = sizeOf(out);
    return written;
}

QVector<WrittenFile> appendFiles(QByteArray& out, const QVector<FileSpec>& files,
                                 const QByteArray& terminator)
{
    QVector<WrittenFile> written;
    written.reserve(files.size());
    for (const FileSpec& file : files)
        written.append(appendFile(out, file, terminator));
    return written;
}

void move(WrittenFile& file, int distance)
{
    file.lineStart += distance;
    file.dataStart += distance;
    file.blockEnd += distance;
}

/// The value of a field without escapes that is not a marker's first. A bracket inside a text
/// value has a backslash in front, so a closing and an opening one together stand between
/// fields only.
QByteArray fieldOf(const QByteArray& marker, const QByteArray& key)
{
    const QByteArray start = "][" + key + ':';
    const auto value = marker.lastIndexOf(start) + start.size();
    return marker.mid(value, marker.indexOf(']', value) - value);
}

QByteArray digestField(const QByteArray& digest)
{
    return "[md5section:" + digest + ']';
}

} // namespace

FileSpec FileSpec::plain(const QString& name, const QByteArray& content)
{
    FileSpec file;
    file.filename = name;
    file.content = content;
    return file;
}

FileSpec FileSpec::flate(const QString& name, const QByteArray& content)
{
    FileSpec file = plain(name, content);
    file.compression = "flate";
    return file;
}

FileSpec& FileSpec::with(const QByteArray& key, const QByteArray& value)
{
    raw.insert(key, value);
    return *this;
}

SectionSpec& SectionSpec::with(const QByteArray& key, const QByteArray& value)
{
    raw.insert(key, value);
    return *this;
}

DocumentWriter::DocumentWriter(const QByteArray& existing)
    : m_bytes(existing)
    , m_previous(lastSection(existing))
{
}

void DocumentWriter::setTerminator(const QByteArray& terminator)
{
    m_terminator = terminator;
}

QByteArray DocumentWriter::terminator() const
{
    return m_terminator;
}

void DocumentWriter::write(const QByteArray& bytes)
{
    m_bytes += bytes;
}

void DocumentWriter::endLine()
{
    if (!m_bytes.isEmpty() && !m_bytes.endsWith('\n'))
        m_bytes += m_terminator;
}

void DocumentWriter::writeHeader(const QByteArray& rest)
{
    m_bytes += headerLine() + rest + m_terminator;
}

WrittenFile DocumentWriter::writeFile(const FileSpec& file)
{
    m_files.append(appendFile(m_bytes, file, m_terminator));
    return m_files.constLast();
}

WrittenSection DocumentWriter::writeSection(const SectionSpec& section)
{
    WrittenSection written;
    written.regionStart = section.regionStart.value_or(position());
    written.index = m_previous ? m_previous->index + 1 : 0;
    m_bytes += section.gap;
    written.files = appendFiles(m_bytes, section.files, m_terminator);
    m_bytes += section.beforeMarker;
    written.lineStart = lineStartAt(m_bytes, position());
    if (m_previous && !section.chainStart) {
        written.previousmd5 = m_previous->md5section;
        written.previousmarker = written.lineStart - m_previous->lineStart + section.previousShift;
    }

    QByteArray behind;
    QVector<WrittenFile> filesBehind = appendFiles(behind, section.filesBehind, m_terminator);
    behind += section.trailing;
    written.md5section = QByteArray(32, '0');
    fitRegionEnd(section, written, sizeOf(behind));

    const int markerStart = position();
    const QByteArray unsignedMarker = sectionMarker(section, written);
    m_bytes += unsignedMarker + section.afterMarker + m_terminator;
    const int behindStart = position();
    m_bytes += behind;
    const auto lineEnd = m_bytes.indexOf('\n', markerStart) + 1;
    const auto takeLine = [&] {
        return m_bytes.mid(written.lineStart, lineEnd - written.lineStart);
    };

    // The digest is that of the region with the digest's own digits zeroed, so the marker
    // was written with zeros first.
    const QByteArray markedDigest = section.raw.value("md5section", written.md5section);
    written.validationTag =
        takeLine().replace(digestField(markedDigest), digestField(written.md5section)).mid(1);
    written.md5section = regionDigest(written);
    written.marker = sectionMarker(section, written);
    m_bytes.replace(markerStart, unsignedMarker.size(), written.marker);
    written.line = takeLine();
    written.tagLength = codeUnits(written.marker) - 1;

    for (WrittenFile& file : filesBehind)
        move(file, behindStart);
    written.files += filesBehind;
    m_files += written.files;
    m_previous = Previous{written.lineStart, written.index, written.md5section};
    m_sections.append(written);
    return written;
}

const QByteArray& DocumentWriter::bytes() const
{
    return m_bytes;
}

int DocumentWriter::position() const
{
    return sizeOf(m_bytes);
}

const QVector<WrittenSection>& DocumentWriter::sections() const
{
    return m_sections;
}

const QVector<WrittenFile>& DocumentWriter::files() const
{
    return m_files;
}

std::optional<DocumentWriter::Previous> DocumentWriter::lastSection(const QByteArray& bytes)
{
    const auto marker = static_cast<int>(bytes.lastIndexOf(sectionStart));
    if (marker < 0)
        return std::nullopt;
    const auto lineEnd = bytes.indexOf('\n', marker);
    const QByteArray line = bytes.mid(marker, lineEnd < 0 ? -1 : lineEnd - marker);
    return Previous{lineStartAt(bytes, marker), fieldOf(line, "index").toInt(),
                    fieldOf(line, "md5section")};
}

QByteArray DocumentWriter::sectionMarker(const SectionSpec& spec,
                                         const WrittenSection& written) const
{
    return MarkerBuilder(sectionStart, spec.raw)
        .field("version", escaped(spec.version))
        .field("creator", escaped(spec.creator))
        .field("title", escaped(spec.title))
        .field("left", number(written.lineStart + 1 - written.regionStart))
        .field("size", number(written.regionEnd - written.regionStart))
        .field("index", number(written.index))
        .field("md5section", written.md5section)
        .field("previousmd5", written.previousmd5)
        .field("previousmarker", number(written.previousmarker))
        .finish();
}

/// Finds the end of the region, which depends on the digits of its own length.
void DocumentWriter::fitRegionEnd(const SectionSpec& spec, WrittenSection& written,
                                  int bytesBehind) const
{
    if (spec.regionSize) {
        written.regionEnd = written.regionStart + *spec.regionSize;
        return;
    }
    const int fixed = position() + sizeOf(spec.afterMarker) + sizeOf(m_terminator) + bytesBehind;
    int end = fixed;
    do {
        written.regionEnd = end;
        end = fixed + sizeOf(sectionMarker(spec, written));
    } while (end != written.regionEnd);
}

/// The digest of the bytes through the marker line's first one, the validation tag, and what
/// follows the line in the region.
QByteArray DocumentWriter::regionDigest(const WrittenSection& written) const
{
    const int pos = written.lineStart + 1;
    const int behindTag = pos + sizeOf(written.validationTag);
    QCryptographicHash hash(QCryptographicHash::Md5);
    hash.addData(m_bytes.mid(written.regionStart, qMax(0, pos - written.regionStart)));
    hash.addData(written.validationTag);
    hash.addData(m_bytes.mid(behindTag, qMax(0, written.regionEnd - behindTag)));
    return hash.result().toHex();
}

QByteArray headerLine()
{
    return QByteArrayLiteral("%<--! $TRESK_PDF [version:1.0]");
}

QByteArray escaped(const QString& text)
{
    return text.toUtf8().replace("\\", "\\\\").replace("]", "\\]").replace("\n", "\\n");
}

QByteArray deflated(const QByteArray& content, int level)
{
    uLongf size = compressBound(static_cast<uLong>(content.size()));
    QByteArray stream(static_cast<int>(size), Qt::Uninitialized);
    const int result = compress2(reinterpret_cast<Bytef*>(stream.data()), &size,
                                 reinterpret_cast<const Bytef*>(content.constData()),
                                 static_cast<uLong>(content.size()), level);
    if (result != Z_OK)
        qFatal("zlib could not compress %d bytes", sizeOf(content));
    stream.truncate(static_cast<int>(size));
    return stream;
}

QByteArray md5Hex(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex();
}

} // namespace tresktest
