#include "SummaryXml.h"

#include "Documents.h"

namespace tresktest {

namespace {

QByteArray inputs(const QVector<FileSpec>& files)
{
    QByteArray elements;
    for (const FileSpec& file : files)
        elements += fileElement("InFile", file);
    return elements;
}

} // namespace

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

SectionSpec toldStep(const QByteArray& content, const QVector<FileSpec>& files)
{
    return step(QStringLiteral("marker"), files + QVector<FileSpec>{summaryWith(content)});
}

SectionSpec titledStep(const char* title, const QVector<FileSpec>& files)
{
    return toldStep(element("Title", title) + inputs(files), files);
}

SectionSpec stepByTool(const char* title, const char* tool, const QVector<FileSpec>& files)
{
    SectionSpec section = toldStep(element("Title", title) + element("Tool", tool) + inputs(files),
                                   files);
    section.title = QString::fromUtf8(title);
    return section;
}

} // namespace tresktest
