#ifndef TRESK_TESTS_OPENEDDOCUMENT_H
#define TRESK_TESTS_OPENEDDOCUMENT_H

#include "DocumentWriter.h"
#include "TestFiles.h"

#include <tresk/SummaryCreator.h>
#include <tresk/TreskParser.h>

namespace tresktest {

/// A document on disk and the parser that has it open.
class OpenedDocument {
public:
    explicit OpenedDocument(const DocumentWriter& document)
    {
        if (!parser.open(m_dir.write(QStringLiteral("document"), document.bytes())))
            qFatal("the document could not be opened");
    }

    QList<tresk::Summary> summaries() { return tresk::SummaryCreator().createSummaries(parser); }

    tresk::TreskParser parser;

private:
    TestDir m_dir;
};

/// A document with a header and no steps yet.
inline DocumentWriter newDocument()
{
    DocumentWriter document("%PDF-1.4\n");
    document.writeHeader();
    return document;
}

/// A step with @p files, titled "marker": unless a summary is read, that is what it is called.
inline SectionSpec stepWith(const QVector<FileSpec>& files)
{
    SectionSpec section;
    section.title = QStringLiteral("marker");
    section.files = files;
    return section;
}

} // namespace tresktest

#endif
