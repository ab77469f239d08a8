#include "StepFields.h"

#include "Summaries.h"
#include "Text.h"

#include <QStringList>

namespace tresk::cli {

namespace {

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

QList<NamedValue> withoutEmpty(const QList<NamedValue>& fields)
{
    QList<NamedValue> known;
    for (const NamedValue& field : fields) {
        if (!field.value.isEmpty())
            known += field;
    }
    return known;
}

} // namespace

QList<NamedValue> markerFields(const SectionTag& step)
{
    return {{"creator", shown(step.creator)},
            {"version", shown(step.version)},
            {"index", numberOrDash(step.index)},
            {"marker", QStringLiteral("at byte %1").arg(step.pos - 1)},
            {"md5", step.md5section},
            {"size", humanSize(step.size)}};
}

QList<NamedValue> summaryFields(const Summary& summary)
{
    QList<NamedValue> fields = withoutEmpty(
        {{"time", printable(summary.timestamp)},
         {"description", printable(summary.description)},
         {"comment", printable(summary.comment)},
         {"command", printable(summary.command)},
         {"tool", printable(summary.tool)},
         {"tool path", printable(summary.toolPath)},
         {"user", printable(summary.user)},
         {"host", printable(summary.host)},
         {"creator", summary.fromXml ? printable(summary.creator) : shown(summary.creator)},
         {"root file", printable(summary.treskRootFile)},
         {"PDF title", printable(summary.pdfTitle)},
         {"PDF author", printable(summary.pdfAuthor)},
         {"PDF subject", printable(summary.pdfSubject)},
         {"PDF keywords", printable(summary.pdfKeywords)},
         {"PDF producer", printable(summary.pdfProducer)},
         {"PDF creator", printable(summary.pdfCreator)},
         {"signature", printable(summary.md5Signature)}});
    if (!summary.fromXml)
        fields += {"summary", QStringLiteral("none; this is what the marker says")};
    return fields;
}

QList<NamedValue> fileFields(const FileSummary& file)
{
    return withoutEmpty({{"embedded", embeddedText(file)},
                         {"path", printable(file.filepath)},
                         {"type", fileText(file, file.filetype)},
                         {"description", fileText(file, file.description)},
                         {"comment", fileText(file, file.comment)},
                         {"modified", printable(file.lastModified)},
                         {"size", exactSize(file.uncompressedSize)},
                         {"md5", printable(file.uncompressedMD5)},
                         {"compression", fileText(file, file.compressedMethod)},
                         {"stored size", exactSize(file.compressedSize)},
                         {"stored md5", printable(file.compressedMD5)},
                         {"flags", flagsText(file)}});
}

QString nameText(const Attribute& attribute)
{
    return attribute.name.isEmpty() ? QStringLiteral("<no name>") : printable(attribute.name);
}

QString valueText(const Attribute& attribute)
{
    const QString value = printable(attribute.value);
    return attribute.unit.isEmpty() ? value : value + QLatin1Char(' ') + printable(attribute.unit);
}

} // namespace tresk::cli
