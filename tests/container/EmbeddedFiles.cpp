#include "EmbeddedFiles.h"

namespace tresktest {

FileSpec plain(const QByteArray& content)
{
    return FileSpec::plain(QStringLiteral("file"), content);
}

FileSpec flate(const QByteArray& content)
{
    return FileSpec::flate(QStringLiteral("file"), content);
}

FileSpec storedAs(FileSpec file, const QByteArray& stored)
{
    file.stored = stored;
    return file;
}

QByteArray counted(int size)
{
    QByteArray bytes;
    bytes.reserve(size + 16);
    for (quint32 i = 0; bytes.size() < size; ++i)
        bytes += QByteArray::number(i * 2654435761U);
    bytes.truncate(size);
    return bytes;
}

QByteArray squares(int size)
{
    QByteArray bytes;
    for (int i = 0; i < size; ++i)
        bytes += static_cast<char>(i * i % 251);
    return bytes;
}

QByteArray withWrongChecksum(const QByteArray& content)
{
    QByteArray stream = deflated(content);
    stream[stream.size() - 1] = static_cast<char>(stream.at(stream.size() - 1) ^ 1);
    return stream;
}

DocumentWriter newDocument()
{
    DocumentWriter document("%PDF-1.4\n");
    document.writeHeader();
    return document;
}

} // namespace tresktest
