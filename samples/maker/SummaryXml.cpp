#include "SummaryXml.h"

#include <DocumentWriter.h>

namespace samples {

namespace {

/// Builds elements line by line, indented by their depth.
class ElementWriter {
public:
    explicit ElementWriter(int depth)
        : m_depth(depth)
    {
    }

    void open(const char* name)
    {
        indent();
        m_xml += QByteArray("<") + name + ">\n";
        ++m_depth;
    }

    void close(const char* name)
    {
        --m_depth;
        indent();
        m_xml += QByteArray("</") + name + ">\n";
    }

    void text(const char* name, const QString& value)
    {
        indent();
        m_xml += QByteArray("<") + name + '>' + value.toHtmlEscaped().toUtf8() + "</" + name
            + ">\n";
    }

    void number(const char* name, qint64 value) { text(name, QString::number(value)); }
    void flag(const char* name, bool value) { number(name, value ? 1 : 0); }

    QByteArray xml() const { return m_xml; }

private:
    void indent() { m_xml += QByteArray(m_depth, ' '); }

    QByteArray m_xml;
    int m_depth;
};

void writeAttributes(ElementWriter& out, const QVector<Attribute>& attributes)
{
    if (attributes.isEmpty())
        return;
    out.open("UserAttributes");
    for (const Attribute& attribute : attributes) {
        out.open("Attribute");
        out.text("Key", attribute.name);
        out.text("Value", attribute.value);
        if (!attribute.unit.isEmpty())
            out.text("Unit", attribute.unit);
        out.close("Attribute");
    }
    out.close("UserAttributes");
}

void writeStored(ElementWriter& out, const StepFile& file, const StoredFile& stored)
{
    const bool compressed = file.storage == Storage::Compressed;
    out.text("CompressedMethod", compressed ? QStringLiteral("flate") : QStringLiteral("none"));
    out.number("CompressedSize", stored.stored.size());
    out.text("CompressedMD5", QString::fromLatin1(stored.md5Stored));
}

/// @p stored is null for a file that is not embedded.
void writeFile(ElementWriter& out, const Step& step, const StepFile& file, const StoredFile* stored)
{
    const char* element = file.purpose == Purpose::Input ? "InFile" : "OutFile";
    out.open(element);
    out.text("Filename", stored ? stored->name : file.name);
    out.text("Filepath",
             file.path.isEmpty() ? step.folder + QLatin1Char('/') + file.name : file.path);
    out.text("Filetype", file.filetype);
    out.text("Description", file.description);
    out.text("Comment", file.comment);
    out.text("LastModified", file.lastModified);
    out.flag("GenerateMD5", true);
    out.flag("Embedded", stored);
    out.number("UncompressedSize", file.content.size());
    out.text("UncompressedMD5", QString::fromLatin1(tresktest::md5Hex(file.content)));
    if (stored)
        writeStored(out, file, *stored);
    out.flag("Preview", file.preview);
    out.flag("PreviewWS", file.previewWS);
    out.flag("Thumbnail", file.thumbnail);
    out.flag("ThumbnailOnly", file.thumbnailOnly);
    writeAttributes(out, file.attributes);
    out.close(element);
}

void writeStep(ElementWriter& out, const Step& step, const QString& creator)
{
    out.text("TreskRootFile", step.rootFile);
    out.text("Timestamp", step.timestamp);
    out.text("Title", step.title);
    out.text("Description", step.description);
    out.text("Comment", step.comment);
    out.text("Command", step.command);
    out.text("Tool", step.tool);
    out.text("ToolPath", step.toolPath);
    out.text("Host", step.host);
    out.text("User", step.user);
    out.text("Creator", creator);
}

void writeInfo(ElementWriter& out, const PdfInfo& info)
{
    out.text("PDFTitle", info.title);
    out.text("PDFAuthor", info.author);
    out.text("PDFSubject", info.subject);
    out.text("PDFKeywords", info.keywords);
    out.text("PDFProducer", info.producer);
    out.text("PDFCreator", info.creator);
}

} // namespace

QByteArray summaryXml(const Step& step, const QString& creator, const PdfInfo& info,
                      const QVector<StoredFile>& stored)
{
    ElementWriter element(1);
    element.open("Workflowstep");
    writeStep(element, step, creator);
    writeInfo(element, info);
    auto next = stored.constBegin();
    for (const StepFile& file : step.files)
        writeFile(element, step, file, file.storage == Storage::NotEmbedded ? nullptr : &*next++);
    writeAttributes(element, step.attributes);
    element.close("Workflowstep");

    ElementWriter signature(1);
    signature.text("MD5Signature", QString::fromLatin1(tresktest::md5Hex(element.xml())));
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<trxchange>\n" + element.xml()
        + signature.xml() + "</trxchange>\n";
}

} // namespace samples
