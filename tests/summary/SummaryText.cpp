#include "SummaryText.h"

#include <utility>

namespace tresktest {

namespace {

class FieldLines {
public:
    explicit FieldLines(const QString& indent = QString())
        : m_indent(indent)
    {
    }

    FieldLines& add(const char* name, const QString& value)
    {
        return addLine(name, quotedOrNull(value));
    }
    FieldLines& add(const char* name, int value) { return addLine(name, QString::number(value)); }
    FieldLines& add(const char* name, bool value)
    {
        return addLine(name, value ? QStringLiteral("true") : QStringLiteral("false"));
    }

    FieldLines& add(const char* name, const QStringList& values)
    {
        for (const QString& value : values)
            addLine(name, quotedOrNull(value));
        return *this;
    }

    FieldLines& add(const char* name, const QHash<QString, QString>& values)
    {
        QStringList entries;
        for (auto entry = values.begin(); entry != values.end(); ++entry)
            entries += quotedOrNull(entry.key()) + QStringLiteral(" -> ")
                + quotedOrNull(entry.value());
        entries.sort();
        for (const QString& entry : std::as_const(entries))
            addLine(name, entry);
        return *this;
    }

    FieldLines& add(const QList<tresk::FileSummary>& files)
    {
        for (const tresk::FileSummary& file : files) {
            m_lines += m_indent + QStringLiteral("file");
            m_lines += textOf(file);
        }
        return *this;
    }

    QStringList lines() const { return m_lines; }

private:
    FieldLines& addLine(const char* name, const QString& value)
    {
        m_lines += m_indent + QLatin1String(name) + QStringLiteral(": ") + value;
        return *this;
    }

    QString m_indent;
    QStringList m_lines;
};

} // namespace

QStringList textOf(const tresk::Summary& summary)
{
    return FieldLines()
        .add("tagId", summary.tagId)
        .add("treskRootFile", summary.treskRootFile)
        .add("timestamp", summary.timestamp)
        .add("title", summary.title)
        .add("description", summary.description)
        .add("comment", summary.comment)
        .add("command", summary.command)
        .add("tool", summary.tool)
        .add("toolPath", summary.toolPath)
        .add("host", summary.host)
        .add("user", summary.user)
        .add("creator", summary.creator)
        .add("pdfTitle", summary.pdfTitle)
        .add("pdfAuthor", summary.pdfAuthor)
        .add("pdfSubject", summary.pdfSubject)
        .add("pdfKeywords", summary.pdfKeywords)
        .add("pdfProducer", summary.pdfProducer)
        .add("pdfCreator", summary.pdfCreator)
        .add(summary.files)
        .add("userAttributes", summary.userAttributes)
        .add("userAttributeUnits", summary.userAttributeUnits)
        .add("userAttributeNames", summary.userAttributeNames)
        .add("md5Signature", summary.md5Signature)
        .add("fromXml", summary.fromXml)
        .lines();
}

QStringList textOf(const tresk::FileSummary& file)
{
    return FieldLines(QStringLiteral("  "))
        .add("tagId", file.tagId)
        .add("filename", file.filename)
        .add("filepath", file.filepath)
        .add("filetype", file.filetype)
        .add("description", file.description)
        .add("comment", file.comment)
        .add("lastModified", file.lastModified)
        .add("generateMD5", file.generateMD5)
        .add("embedded", file.embedded)
        .add("preview", file.preview)
        .add("previewWS", file.previewWS)
        .add("thumbnail", file.thumbnail)
        .add("thumbnailOnly", file.thumbnailOnly)
        .add("uncompressedSize", file.uncompressedSize)
        .add("uncompressedMD5", file.uncompressedMD5)
        .add("compressedMethod", file.compressedMethod)
        .add("compressedSize", file.compressedSize)
        .add("compressedMD5", file.compressedMD5)
        .add("userAttributes", file.userAttributes)
        .add("userAttributeUnits", file.userAttributeUnits)
        .add("userAttributeNames", file.userAttributeNames)
        .add("filePurpose", file.filePurpose)
        .add("state", file.state)
        .lines();
}

QStringList textOf(const QList<tresk::Summary>& summaries)
{
    QStringList lines;
    for (const tresk::Summary& summary : summaries) {
        lines += QStringLiteral("summary");
        lines += textOf(summary);
    }
    return lines;
}

QString quotedOrNull(const QString& text)
{
    if (text.isNull())
        return QStringLiteral("(null)");
    QString result = text;
    result.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    result.replace(QLatin1Char('"'), QLatin1String("\\\""));
    result.replace(QLatin1Char('\n'), QLatin1String("\\n"));
    return QLatin1Char('"') + result + QLatin1Char('"');
}

} // namespace tresktest
