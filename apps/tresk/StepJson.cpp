#include "StepJson.h"

#include "Attributes.h"
#include "Json.h"
#include "StepFiles.h"
#include "Summaries.h"

#include <QJsonArray>

namespace tresk::cli {

namespace {

template <typename Record>
QJsonArray attributesJson(const Record& record)
{
    QJsonArray array;
    for (const Attribute& attribute : attributesOf(record)) {
        array += QJsonObject{{QStringLiteral("name"), attribute.name},
                             {QStringLiteral("value"), attribute.value},
                             {QStringLiteral("unit"), jsonText(attribute.unit)}};
    }
    return array;
}

} // namespace

QJsonObject stepJson(const SectionTag& step, const Summary& summary, const StepFiles& stepFiles)
{
    QJsonObject object = {{QStringLiteral("id"), step.id},
                          {QStringLiteral("index"), jsonNumber(step.index)},
                          {QStringLiteral("size"), jsonNumber(step.size)},
                          {QStringLiteral("md5"), step.md5section},
                          {QStringLiteral("previousMd5"), step.previousmd5},
                          {QStringLiteral("position"), step.pos - 1},
                          {QStringLiteral("fileCount"), stepFiles.countIn(step)},
                          {QStringLiteral("time"), jsonText(summary.timestamp)},
                          {QStringLiteral("tool"), jsonText(summary.tool)},
                          {QStringLiteral("user"), jsonText(summary.user)},
                          {QStringLiteral("host"), jsonText(summary.host)}};
    insertText(object, QStringLiteral("title"), step.title);
    insertText(object, QStringLiteral("creator"), step.creator);
    insertText(object, QStringLiteral("version"), step.version);
    const auto count = [&summary](int number) { return jsonNumber(summary.fromXml ? number : -1); };
    object.insert(QStringLiteral("inFileCount"), count(countInputs(summary.files)));
    object.insert(QStringLiteral("outFileCount"), count(countOutputs(summary.files)));
    return object;
}

QJsonValue summaryJson(const Summary& summary)
{
    if (!summary.fromXml)
        return QJsonValue::Null;
    return QJsonObject{{QStringLiteral("rootFile"), jsonText(summary.treskRootFile)},
                       {QStringLiteral("time"), jsonText(summary.timestamp)},
                       {QStringLiteral("title"), jsonText(summary.title)},
                       {QStringLiteral("description"), jsonText(summary.description)},
                       {QStringLiteral("comment"), jsonText(summary.comment)},
                       {QStringLiteral("command"), jsonText(summary.command)},
                       {QStringLiteral("tool"), jsonText(summary.tool)},
                       {QStringLiteral("toolPath"), jsonText(summary.toolPath)},
                       {QStringLiteral("host"), jsonText(summary.host)},
                       {QStringLiteral("user"), jsonText(summary.user)},
                       {QStringLiteral("creator"), jsonText(summary.creator)},
                       {QStringLiteral("pdfTitle"), jsonText(summary.pdfTitle)},
                       {QStringLiteral("pdfAuthor"), jsonText(summary.pdfAuthor)},
                       {QStringLiteral("pdfSubject"), jsonText(summary.pdfSubject)},
                       {QStringLiteral("pdfKeywords"), jsonText(summary.pdfKeywords)},
                       {QStringLiteral("pdfProducer"), jsonText(summary.pdfProducer)},
                       {QStringLiteral("pdfCreator"), jsonText(summary.pdfCreator)},
                       {QStringLiteral("md5Signature"), jsonText(summary.md5Signature)},
                       {QStringLiteral("attributes"), attributesJson(summary)}};
}

QJsonObject fileSummaryJson(const FileSummary& file)
{
    QJsonObject object = {{QStringLiteral("id"), jsonNumber(file.tagId)},
                          {QStringLiteral("purpose"), file.filePurpose},
                          {QStringLiteral("path"), jsonText(file.filepath)},
                          {QStringLiteral("type"), jsonText(file.filetype)},
                          {QStringLiteral("description"), jsonText(file.description)},
                          {QStringLiteral("comment"), jsonText(file.comment)},
                          {QStringLiteral("lastModified"), jsonText(file.lastModified)},
                          {QStringLiteral("generateMd5"), file.generateMD5},
                          {QStringLiteral("embedded"), file.embedded || file.tagId >= 0},
                          {QStringLiteral("preview"), file.preview},
                          {QStringLiteral("previewWs"), file.previewWS},
                          {QStringLiteral("thumbnail"), file.thumbnail},
                          {QStringLiteral("thumbnailOnly"), file.thumbnailOnly},
                          {QStringLiteral("size"), jsonNumber(file.uncompressedSize)},
                          {QStringLiteral("md5"), jsonText(file.uncompressedMD5)},
                          {QStringLiteral("compression"), jsonText(file.compressedMethod)},
                          {QStringLiteral("storedSize"), jsonNumber(file.compressedSize)},
                          {QStringLiteral("storedMd5"), jsonText(file.compressedMD5)},
                          {QStringLiteral("attributes"), attributesJson(file)}};
    if (file.tagId >= 0)
        insertText(object, QStringLiteral("name"), file.filename);
    else
        object.insert(QStringLiteral("name"), jsonText(file.filename));
    return object;
}

} // namespace tresk::cli
