#include "SummaryXml.h"

namespace tresktest {

QByteArray element(const char* name, const QByteArray& content)
{
    return '<' + QByteArray(name) + '>' + content + "</" + name + ">\n";
}

QByteArray fileElement(const char* purpose, const FileSpec& file, bool embedded,
                       const QByteArray& more)
{
    const bool compressed = file.compression == "flate";
    const QByteArray stored = compressed ? deflated(file.content) : file.content;
    return element(
        purpose,
        element("Filename", file.filename.toUtf8()) + element("Filetype", file.filetype.toUtf8())
            + element("Embedded", embedded ? "1" : "0")
            + element("UncompressedSize", QByteArray::number(file.content.size()))
            + element("UncompressedMD5", md5Hex(file.content))
            + element("CompressedMethod", file.compression)
            + element("CompressedSize", QByteArray::number(stored.size()))
            + element("CompressedMD5", compressed ? md5Hex(stored) : QByteArray()) + more);
}

QByteArray attribute(const char* name, const char* value, const char* unit)
{
    return element("Attribute",
                   element("Key", name) + element("Value", value)
                       + (*unit ? element("Unit", unit) : QByteArray()));
}

FileSpec summaryWith(const QByteArray& step)
{
    return summaryOf("<?xml version=\"1.0\"?>\n"
                     + element("trxchange", element("Workflowstep", step)));
}

FileSpec summaryOf(const QByteArray& bytes)
{
    return FileSpec::flate(QStringLiteral("ws_summary.xml"), bytes);
}

} // namespace tresktest
