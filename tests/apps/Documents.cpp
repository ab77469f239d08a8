#include "Documents.h"

#include <ByteOrder.h>

#include <QDir>
#include <QFile>

#include <zlib.h>

namespace tresktest {

SectionSpec step(const QString& title, const QVector<FileSpec>& files)
{
    SectionSpec section;
    section.title = title;
    section.files = files;
    return section;
}

QByteArray documentWith(const QVector<SectionSpec>& steps)
{
    DocumentWriter writer("%PDF-1.4\n");
    writer.writeHeader();
    writer.endLine();
    for (const SectionSpec& section : steps)
        writer.writeSection(section);
    return writer.bytes();
}

QByteArray documentWith(const QVector<FileSpec>& files)
{
    return documentWith(QVector<SectionSpec>{step(QStringLiteral("step"), files)});
}

FileSpec embeddedDocument(const char* name, const QVector<SectionSpec>& steps)
{
    return FileSpec::flate(QString::fromUtf8(name), documentWith(steps));
}

QByteArray streamOfZeros(qint64 size)
{
    const int blockSize = 1024 * 1024;
    // A block that depends on nothing before it, so that it can be repeated.
    QByteArray input(blockSize, '\0');
    QByteArray block(blockSize, Qt::Uninitialized);
    z_stream stream = {};
    deflateInit2(&stream, 9, Z_DEFLATED, -15, 9, Z_DEFAULT_STRATEGY);
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = blockSize;
    stream.next_out = reinterpret_cast<Bytef*>(block.data());
    stream.avail_out = blockSize;
    deflate(&stream, Z_FULL_FLUSH);
    block.truncate(static_cast<int>(stream.total_out));
    deflateEnd(&stream);

    QByteArray result("\x78\xda");
    for (qint64 done = 0; done < size; done += blockSize)
        result += block;
    result += QByteArray("\x03\x00", 2); // the last block, empty
    const quint32 adler = (static_cast<quint32>(size % 65521) << 16) | 1;
    return result + bigEndian(adler);
}

FileSpec fileOfZeros(const QString& name, qint64 size)
{
    FileSpec file;
    file.filename = name;
    file.compression = "flate";
    file.stored = streamOfZeros(size);
    return file.with("filesize", QByteArray::number(size));
}

QString writeWithHole(const TestDir& dir, const QString& name, int size,
                      const QVector<FileSpec>& before, const QVector<FileSpec>& behind,
                      const QByteArray& checksum)
{
    DocumentWriter writer(headerLine() + '\n');
    for (const FileSpec& file : before)
        writer.writeFile(file);
    FileSpec zeros = FileSpec::plain(QStringLiteral("zeros"), "");
    zeros.with("filesize", QByteArray::number(size)).with("cfilesize", QByteArray::number(size));
    zeros.with("blocksize", QByteArray::number(size + 2)).with("md5file", checksum);
    const int holeStart = writer.writeFile(zeros).dataStart;
    // All distances are counted inside of what comes behind the hole.
    writer.writeSection(step(QStringLiteral("step"), behind));
    const QString path = dir.path(name);
    QFile file(path);
    const bool written = file.open(QIODevice::WriteOnly)
        && file.write(writer.bytes().left(holeStart)) == holeStart
        && file.seek(qint64(holeStart) + size) && file.write(writer.bytes().mid(holeStart)) > 0;
    if (!written)
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

const QByteArray& damagedContent()
{
    static const QByteArray content = noise(300000);
    return content;
}

QVector<DamagedFile> damagedFiles()
{
    const FileSpec plain = FileSpec::plain(QStringLiteral("f"), damagedContent());
    const FileSpec squeezed = FileSpec::flate(QStringLiteral("f"), damagedContent());
    const auto changed = [](FileSpec file, const char* key, const char* value) {
        return file.with(key, value);
    };
    const auto storing = [&squeezed](const QByteArray& stored) {
        FileSpec file = squeezed;
        file.stored = stored;
        return file;
    };
    const QByteArray stream = deflated(damagedContent());
    QByteArray wrong = stream;
    wrong[wrong.size() - 1] = static_cast<char>(~wrong[wrong.size() - 1]);

    const QByteArray unknown = "its compression \"%1\" is unknown";
    const QByteArray noSize = "its marker does not say how large it is";
    const QByteArray noPlace = "its marker does not say where it is stored";
    const QByteArray beyond = "its stored bytes reach beyond the end of the document";
    const QByteArray broken = "its compressed stream is broken";
    const QByteArray cut = "its compressed stream breaks off";
    const auto compression = [&unknown](const char* shown) {
        return QByteArray(unknown).replace("%1", shown);
    };
    const auto longerThan = [](const char* size) {
        return "its content is longer than the " + QByteArray(size) + " that its marker says";
    };
    return {
        {"unknown compression", changed(plain, "compression", "gzip"), compression("gzip")},
        {"no compression", changed(plain, "compression", ""), compression("")},
        {"capitals", changed(squeezed, "compression", "Flate"), compression("Flate")},
        {"strange", changed(plain, "compression", "x\\n\x1b"), compression("x\\n\\x1b")},
        {"no size", changed(squeezed, "filesize", ""), noSize},
        {"no size, plain", changed(plain, "filesize", ""), noSize},
        {"no stored size", changed(squeezed, "cfilesize", ""), noPlace},
        {"no offset", changed(plain, "offset", ""), noPlace},
        {"beyond the end", changed(plain, "filesize", "400000"), beyond},
        {"beyond the end, compressed", changed(squeezed, "cfilesize", "400000"), beyond},
        {"far beyond", changed(plain, "offset", "2147483647"), beyond},
        {"as far as can be",
         changed(changed(plain, "offset", "2147483647"), "filesize", "2147483647"), beyond},
        {"longer", changed(squeezed, "filesize", "299999"), longerThan("299999 bytes")},
        {"longer than nothing", changed(squeezed, "filesize", "0"), longerThan("0 bytes")},
        {"longer than one", changed(squeezed, "filesize", "1"), longerThan("1 byte")},
        {"shorter", changed(squeezed, "filesize", "300001"),
         "its content has 300000 bytes, but its marker says 300001"},
        {"no stream", storing("this is no stream"), broken},
        {"no long stream", storing(damagedContent()), broken},
        {"broken", storing(QByteArray("\x78\xda\xff\xff")), broken},
        {"wrong checksum of the stream", storing(wrong), broken},
        {"cut", storing(stream.left(200000)), cut},
        {"cut early", storing(stream.left(50000)), cut},
        {"nothing stored", storing(""), cut},
    };
}

QStringList entriesOf(const QString& path)
{
    return QDir(path).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

QByteArray noise(int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    quint32 state = 12345;
    for (char& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

} // namespace tresktest
