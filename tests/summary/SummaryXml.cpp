#include "SummaryXml.h"

#include <algorithm>

namespace tresktest {

QByteArray element(const QByteArray& name, const QByteArray& content)
{
    return '<' + name + '>' + content + "</" + name + '>';
}

QByteArray summaryXml(const QByteArray& content)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        + element("trxchange", element("Workflowstep", content)) + '\n';
}

FileSpec summaryFile(const QByteArray& xml)
{
    return FileSpec::plain(QStringLiteral("ws_summary.xml"), xml);
}

FileElement::FileElement(const FileSpec& file, const QByteArray& name)
    : m_name(name)
{
    const bool flate = file.compression == "flate";
    const QByteArray stored = file.stored.value_or(flate ? deflated(file.content) : file.content);
    const auto fromMarker = [&](const QByteArray& key, const QByteArray& value) {
        return file.raw.value(key, value);
    };
    with("Filename", fromMarker("filename", escaped(file.filename)));
    with("Filetype", fromMarker("filetype", escaped(file.filetype)));
    with("Description", fromMarker("desc", escaped(file.desc)));
    with("Comment", fromMarker("comment", escaped(file.comment)));
    with("Embedded", "1");
    with("UncompressedSize", fromMarker("filesize", QByteArray::number(file.content.size())));
    with("UncompressedMD5", fromMarker("md5file", md5Hex(file.content)));
    with("CompressedMethod", fromMarker("compression", file.compression));
    with("CompressedSize", fromMarker("cfilesize", QByteArray::number(stored.size())));
    with("CompressedMD5", fromMarker("md5cfile", flate ? md5Hex(stored) : QByteArray()));
}

FileElement& FileElement::with(const QByteArray& key, const QByteArray& value)
{
    const auto old = std::find_if(m_values.begin(), m_values.end(),
                                  [&](const auto& entry) { return entry.first == key; });
    if (old == m_values.end())
        m_values.append({key, value});
    else
        old->second = value;
    return *this;
}

QByteArray FileElement::xml() const
{
    QByteArray content;
    for (const auto& entry : m_values)
        content += element(entry.first, entry.second);
    return element(m_name, content);
}

} // namespace tresktest
