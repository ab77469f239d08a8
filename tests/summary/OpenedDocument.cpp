#include "OpenedDocument.h"

#include "Latin1.h"
#include "SummaryXml.h"

using tresk::Summary;
using tresk::TreskParser;

namespace tresktest {

OpenedDocument::OpenedDocument(const DocumentWriter& document)
{
    if (!parser.open(m_dir.write(QStringLiteral("document"), document.bytes())))
        qFatal("the document could not be opened");
}

DocumentWriter newDocument()
{
    DocumentWriter document("%PDF-1.4\n");
    document.writeHeader();
    return document;
}

SectionSpec stepWith(const QVector<FileSpec>& files)
{
    SectionSpec section;
    section.title = QStringLiteral("marker");
    section.files = files;
    return section;
}

FileSpec fileNamed(const char* name, const QByteArray& content)
{
    return FileSpec::plain(latin1(name), content);
}

FileSpec titledSummary(const QByteArray& title)
{
    return summaryFile(summaryXml(element("Title", title)));
}

QStringList titles(const QList<Summary>& summaries)
{
    QStringList result;
    for (const Summary& summary : summaries)
        result += summary.title;
    return result;
}

Summary fromMarkers(const TreskParser& parser, int id)
{
    return tresk::makeSummaryFromTags(*parser.getSection(id), parser.getFilesInSection(id));
}

} // namespace tresktest
