#include "Documents.h"

#include <QtEndian>

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
    uchar trailer[4];
    qToBigEndian(adler, trailer);
    return result.append(reinterpret_cast<const char*>(trailer), sizeof trailer);
}

FileSpec fileOfZeros(const QString& name, qint64 size)
{
    FileSpec file;
    file.filename = name;
    file.compression = "flate";
    file.stored = streamOfZeros(size);
    return file.with("filesize", QByteArray::number(size));
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
