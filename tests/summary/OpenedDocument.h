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
    explicit OpenedDocument(const DocumentWriter& document);

    QList<tresk::Summary> summaries() { return tresk::SummaryCreator().createSummaries(parser); }

    tresk::TreskParser parser;

private:
    TestDir m_dir;
};

/// A document with a header and no steps yet.
DocumentWriter newDocument();
/// A step with @p files, titled "marker": unless a summary is read, that is what it is called.
SectionSpec stepWith(const QVector<FileSpec>& files);
/// A file that is no summary.
FileSpec fileNamed(const char* name, const QByteArray& content = "content");
/// A summary that says nothing but the title of its step.
FileSpec titledSummary(const QByteArray& title);

QStringList titles(const QList<tresk::Summary>& summaries);
/// What section @p id of the document gives without a summary document.
tresk::Summary fromMarkers(const tresk::TreskParser& parser, int id);

} // namespace tresktest

#endif
