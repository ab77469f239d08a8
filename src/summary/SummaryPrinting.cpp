#include <tresk/SummaryCreator.h>

#include "core/Logging.h"

#include <QDebug>

#include <algorithm>

namespace tresk {

namespace {

/// @p values as Qt's debug stream shows a hash, in the order of the names.
QString hashText(const QHash<QString, QString>& values)
{
    QStringList names = values.keys();
    std::sort(names.begin(), names.end());
    QString text;
    QDebug stream(&text);
    stream.nospace() << "QHash(";
    for (const QString& name : qAsConst(names))
        stream << '(' << name << ", " << values.value(name) << ')';
    stream << ')';
    return text;
}

template <typename Value>
void print(const char* label, const Value& value)
{
    qCDebug(debugCategory) << label << value;
}

void printHash(const char* label, const QHash<QString, QString>& values)
{
    qCDebug(debugCategory).noquote() << label << hashText(values);
}

} // namespace

void printFileSummary(const FileSummary& f)
{
    print("  TagID", f.tagId);
    print("  Filename", f.filename);
    print("  Filepath", f.filepath);
    print("  Filetype", f.filetype);
    print("  Description", f.description);
    print("  Comment", f.comment);
    print("  LastModified", f.lastModified);
    print("  GenerateMD5", f.generateMD5);
    print("  Embedded", f.embedded);
    print("  UncompressedSize", f.uncompressedSize);
    print("  UncompressedMD5", f.uncompressedMD5);
    print("  CompressedMethod", f.compressedMethod);
    print("  CompressedSize", f.compressedSize);
    print("  CompressedMD5", f.compressedMD5);
    print("  FilePurpose", f.filePurpose);
    print("  Preview", f.preview);
    print("  PreviewWS", f.previewWS);
    print("  Thumbnail", f.thumbnail);
    print("  ThumbnailOnly", f.thumbnailOnly);
    printHash("  File User Attributes:", f.userAttributes);
}

void printSummary(const Summary& s)
{
    print("TagID", s.tagId);
    print("TreskRootFile:", s.treskRootFile);
    print("Timestamp:", s.timestamp);
    print("Title:", s.title);
    print("Description:", s.description);
    print("Comment:", s.comment);
    print("Command:", s.command);
    print("Tool:", s.tool);
    print("ToolPath:", s.toolPath);
    print("Host:", s.host);
    print("User:", s.user);
    print("Creator:", s.creator);
    print("PDFTitle:", s.pdfTitle);
    print("PDFAuthor:", s.pdfAuthor);
    print("PDFSubject:", s.pdfSubject);
    print("PDFKeywords:", s.pdfKeywords);
    print("PDFProducer:", s.pdfProducer);
    print("PDFCreator:", s.pdfCreator);
    for (const FileSummary& file : s.files)
        printFileSummary(file);
    printHash("Step User Attributes:", s.userAttributes);
    print("Summary MD5:", s.md5Signature);
}

} // namespace tresk
