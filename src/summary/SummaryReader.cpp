#include <tresk/SummaryReader.h>

#include "core/Logging.h"
#include "summary/ElementScanner.h"

#include <QDebug>

#include <algorithm>
#include <iterator>

namespace tresk {

namespace {

/// An element whose content goes into a field of a Record.
template <typename Record, typename Value>
struct Field {
    QStringView element;
    Value Record::*member;
};

using StepText = Field<Workflowstep, QString>;
using FileText = Field<FileSummary, QString>;
using FileFlag = Field<FileSummary, bool>;
using FileNumber = Field<FileSummary, int>;

constexpr StepText stepTexts[] = {
    {u"TreskRootFile", &Workflowstep::treskRootFile},
    {u"Timestamp", &Workflowstep::timestamp},
    {u"Title", &Workflowstep::title},
    {u"Description", &Workflowstep::description},
    {u"Comment", &Workflowstep::comment},
    {u"Command", &Workflowstep::command},
    {u"Tool", &Workflowstep::tool},
    {u"ToolPath", &Workflowstep::toolPath},
    {u"Host", &Workflowstep::host},
    {u"User", &Workflowstep::user},
    {u"Creator", &Workflowstep::creator},
    {u"PDFTitle", &Workflowstep::pdfTitle},
    {u"PDFAuthor", &Workflowstep::pdfAuthor},
    {u"PDFSubject", &Workflowstep::pdfSubject},
    {u"PDFKeywords", &Workflowstep::pdfKeywords},
    {u"PDFProducer", &Workflowstep::pdfProducer},
    {u"PDFCreator", &Workflowstep::pdfCreator},
};

constexpr FileText fileTexts[] = {
    {u"Filename", &FileSummary::filename},
    {u"Filepath", &FileSummary::filepath},
    {u"Filetype", &FileSummary::filetype},
    {u"Description", &FileSummary::description},
    {u"Comment", &FileSummary::comment},
    {u"LastModified", &FileSummary::lastModified},
    {u"UncompressedMD5", &FileSummary::uncompressedMD5},
    {u"CompressedMethod", &FileSummary::compressedMethod},
    {u"CompressedMD5", &FileSummary::compressedMD5},
};

constexpr FileFlag fileFlags[] = {
    {u"GenerateMD5", &FileSummary::generateMD5}, {u"Embedded", &FileSummary::embedded},
    {u"Preview", &FileSummary::preview},         {u"PreviewWS", &FileSummary::previewWS},
    {u"Thumbnail", &FileSummary::thumbnail},     {u"ThumbnailOnly", &FileSummary::thumbnailOnly},
};

constexpr FileNumber fileNumbers[] = {
    {u"UncompressedSize", &FileSummary::uncompressedSize},
    {u"CompressedSize", &FileSummary::compressedSize},
};

int toNumber(QStringView text)
{
    bool valid = false;
    const int number = text.toString().toInt(&valid);
    return valid ? number : -1;
}

void convert(QStringView text, QString& value)
{
    value = text.toString();
}

void convert(QStringView text, int& value)
{
    value = toNumber(text);
}

void convert(QStringView text, bool& value)
{
    value = text.toString().toInt() != 0;
}

/// Sets the field of @p record that the current element of @p scanner is for, if it is among
/// @p fields.
template <typename Record, typename Fields>
bool setField(Record& record, const Fields& fields, const ElementScanner& scanner)
{
    const auto isMeant = [&scanner](const auto& field) { return scanner.nameIs(field.element); };
    const auto field = std::find_if(std::begin(fields), std::end(fields), isMeant);
    if (field == std::end(fields))
        return false;
    convert(scanner.content(), record.*(field->member));
    return true;
}

void reportUnknown(const char* message, const ElementScanner& scanner)
{
    qCDebug(debugCategory) << message << scanner.name().toString() << ":"
                           << scanner.content().toString();
}

/// Replaces the user attributes of @p record, a step or a file.
template <typename Record, typename Attributes>
void setUserAttributes(Record& record, Attributes attributes)
{
    record.userAttributes = std::move(attributes.first);
    record.userAttributeNames = std::move(attributes.second);
    record.userAttributeUnits = std::move(attributes.third);
}

} // namespace

SummaryReader::SummaryReader() = default;

SummaryReader::~SummaryReader() = default;

Summary SummaryReader::readSummary(const QString& text)
{
    for (ElementScanner scanner(text); scanner.isValid(); scanner.next()) {
        if (scanner.nameIs(u"trxchange"))
            return parseSummary(scanner.content());
    }
    return {};
}

Summary SummaryReader::parseSummary(QStringView content)
{
    Summary summary;
    for (ElementScanner scanner(content); scanner.isValid(); scanner.next()) {
        if (scanner.nameIs(u"Workflowstep"))
            static_cast<Workflowstep&>(summary) = parseWorkflowstep(scanner.content());
        else if (scanner.nameIs(u"MD5Signature"))
            summary.md5Signature = scanner.content().toString();
    }
    summary.fromXml = true;
    return summary;
}

Workflowstep SummaryReader::parseWorkflowstep(QStringView content)
{
    Workflowstep step;
    for (ElementScanner scanner(content); scanner.isValid(); scanner.next()) {
        if (setField(step, stepTexts, scanner))
            continue;
        if (scanner.nameIs(u"InFile") || scanner.nameIs(u"OutFile")) {
            FileSummary file = parseFile(scanner.content());
            file.filePurpose = scanner.name().toString();
            step.files.append(file);
        } else if (scanner.nameIs(u"UserAttributes")) {
            setUserAttributes(step, parseUserAttributes(scanner.content()));
        } else {
            reportUnknown("unknown tag (parseWorkflowstep):", scanner);
        }
    }
    step.tagId = -1;
    return step;
}

FileSummary SummaryReader::parseFile(QStringView content)
{
    FileSummary file;
    for (ElementScanner scanner(content); scanner.isValid(); scanner.next()) {
        if (setField(file, fileTexts, scanner) || setField(file, fileFlags, scanner)
            || setField(file, fileNumbers, scanner))
            continue;
        if (scanner.nameIs(u"UserAttributes"))
            setUserAttributes(file, parseUserAttributes(scanner.content()));
        else
            reportUnknown("unknown tag (ParseFile):", scanner); // with a capital P
    }
    file.tagId = -1;
    return file;
}

Tripple<SummaryReader::Values, QStringList, SummaryReader::Values>
SummaryReader::parseUserAttributes(QStringView content)
{
    Tripple<Values, QStringList, Values> attributes;
    auto& [values, names, units] = attributes;
    for (ElementScanner scanner(content); scanner.isValid(); scanner.next()) {
        if (!scanner.nameIs(u"Attribute")) {
            reportUnknown("unknown tag (parseUserAttributes):", scanner);
            continue;
        }
        const auto [key, value, unit] = parseAttribute(scanner.content());
        values.insert(key, value);
        if (unit)
            units.insert(key, *unit);
        names.append(key);
    }
    return attributes;
}

Tripple<QString, QString, QSharedPointer<QString>>
SummaryReader::parseAttribute(QStringView content)
{
    Tripple<QString, QString, QSharedPointer<QString>> attribute;
    auto& [key, value, unit] = attribute;
    for (ElementScanner scanner(content); scanner.isValid(); scanner.next()) {
        if (scanner.nameIs(u"Key"))
            key = scanner.content().toString();
        else if (scanner.nameIs(u"Value"))
            value = scanner.content().toString();
        else if (scanner.nameIs(u"Unit"))
            unit = QSharedPointer<QString>::create(scanner.content().toString());
        else
            reportUnknown("unknown tag (parseAttribute):", scanner);
    }
    return attribute;
}

} // namespace tresk
