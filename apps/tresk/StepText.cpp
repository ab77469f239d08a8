#include "StepText.h"

#include "Attributes.h"
#include "Fields.h"
#include "Summaries.h"
#include "Text.h"

#include <QStringList>

namespace tresk::cli {

namespace {

/// The attributes of a step or a file, each on a line of its own under a label.
template <typename Record>
void writeAttributes(Output& output, const Style& style, const Record& record, int indent)
{
    const QString blanks(indent, QLatin1Char(' '));
    const QList<Attribute> attributes = attributesOf(record);
    if (!attributes.isEmpty())
        output.write(blanks + style.label(QStringLiteral("attributes:")) + QLatin1Char('\n'));
    for (const Attribute& attribute : attributes) {
        const QString name = attribute.name.isEmpty() ? QStringLiteral("<no name>")
                                                      : printable(attribute.name);
        QString line = blanks + QStringLiteral("  ") + name + QStringLiteral(" = ")
            + printable(attribute.value);
        if (!attribute.unit.isEmpty())
            line += QLatin1Char(' ') + printable(attribute.unit);
        output.write(line + QLatin1Char('\n'));
    }
}

QString exactSize(int bytes)
{
    if (bytes < 0)
        return {};
    if (bytes < 1024)
        return humanSize(bytes);
    return QStringLiteral("%1 (%2 bytes)").arg(humanSize(bytes), QString::number(bytes));
}

/// Whether the file is embedded, and as which one.
QString embeddedText(const FileSummary& file)
{
    if (file.tagId >= 0)
        return QStringLiteral("file %1").arg(file.tagId);
    return file.embedded ? QStringLiteral("yes, but it is not found in this step")
                         : QStringLiteral("no");
}

QString flagsText(const FileSummary& file)
{
    QStringList flags;
    const auto add = [&flags](bool isSet, const char* name) {
        if (isSet)
            flags += QLatin1String(name);
    };
    add(file.generateMD5, "generate MD5");
    add(file.preview, "preview");
    add(file.previewWS, "preview of the step");
    add(file.thumbnail, "thumbnail");
    add(file.thumbnailOnly, "thumbnail only");
    return flags.join(QStringLiteral(", "));
}

/// Markers have escapes, summaries have none.
QString fileText(const FileSummary& file, const QString& text)
{
    const bool ofMarker = !isInput(file) && !isOutput(file);
    return ofMarker ? shown(text) : printable(text);
}

} // namespace

QString stepHeading(const SectionTag& step, const Summary& summary, const Style& style)
{
    return style.id(QStringLiteral("step %1").arg(step.id)) + QStringLiteral("  ")
        + style.title(titleOf(step, summary)) + QLatin1Char('\n');
}

void writeMarkerFields(const Fields& fields, const SectionTag& step)
{
    fields.write("creator", shown(step.creator));
    fields.write("version", shown(step.version));
    fields.write("index", numberOrDash(step.index));
    fields.write("marker", QStringLiteral("at byte %1").arg(step.pos - 1));
    fields.write("md5", step.md5section);
    fields.write("size", humanSize(step.size));
}

void writeSummaryFields(Output& output, const Style& style, const Summary& summary)
{
    const Fields fields(output, style, 2, 13);
    fields.writeIfSet("time", printable(summary.timestamp));
    fields.writeIfSet("description", printable(summary.description));
    fields.writeIfSet("comment", printable(summary.comment));
    fields.writeIfSet("command", printable(summary.command));
    fields.writeIfSet("tool", printable(summary.tool));
    fields.writeIfSet("tool path", printable(summary.toolPath));
    fields.writeIfSet("user", printable(summary.user));
    fields.writeIfSet("host", printable(summary.host));
    fields.writeIfSet("creator",
                      summary.fromXml ? printable(summary.creator) : shown(summary.creator));
    fields.writeIfSet("root file", printable(summary.treskRootFile));
    fields.writeIfSet("PDF title", printable(summary.pdfTitle));
    fields.writeIfSet("PDF author", printable(summary.pdfAuthor));
    fields.writeIfSet("PDF subject", printable(summary.pdfSubject));
    fields.writeIfSet("PDF keywords", printable(summary.pdfKeywords));
    fields.writeIfSet("PDF producer", printable(summary.pdfProducer));
    fields.writeIfSet("PDF creator", printable(summary.pdfCreator));
    fields.writeIfSet("signature", printable(summary.md5Signature));
    if (!summary.fromXml)
        fields.write("summary", QStringLiteral("none; this is what the marker says"));
    writeAttributes(output, style, summary, 2);
}

void writeFileFields(Output& output, const Style& style, const FileSummary& file)
{
    const char* const role = isInput(file) ? "in" : isOutput(file) ? "out" : "other";
    Fields(output, style, 2, 6).write(role, style.title(nameOf(file)));
    const Fields fields(output, style, 4, 12);
    fields.write("embedded", embeddedText(file));
    fields.writeIfSet("path", printable(file.filepath));
    fields.writeIfSet("type", fileText(file, file.filetype));
    fields.writeIfSet("description", fileText(file, file.description));
    fields.writeIfSet("comment", fileText(file, file.comment));
    fields.writeIfSet("modified", printable(file.lastModified));
    fields.writeIfSet("size", exactSize(file.uncompressedSize));
    fields.writeIfSet("md5", printable(file.uncompressedMD5));
    fields.writeIfSet("compression", fileText(file, file.compressedMethod));
    fields.writeIfSet("stored size", exactSize(file.compressedSize));
    fields.writeIfSet("stored md5", printable(file.compressedMD5));
    fields.writeIfSet("flags", flagsText(file));
    writeAttributes(output, style, file, 4);
}

} // namespace tresk::cli
