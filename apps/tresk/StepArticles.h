#ifndef TRESK_APPS_STEPARTICLES_H
#define TRESK_APPS_STEPARTICLES_H

#include "EmbeddedPictures.h"
#include "HtmlWriter.h"

#include <tresk/Summary.h>
#include <tresk/TreskParser.h>

#include <QList>
#include <QString>

namespace tresk::cli {

class CheckResults;
class Document;
class Summaries;
struct Fault;

/// Writes steps in full, each as an article of a page that can be folded.
class StepArticles {
public:
    /// All of them must outlive the object.
    StepArticles(HtmlWriter& html, Document& document, const Summaries& summaries,
                 const CheckResults& checks);

    /// What links to a step of the document lead to.
    static QString anchorOf(const SectionTag& step);
    /// The same for a step of an embedded document, which is node @p id of the tree.
    static QString anchorOf(int id);

    void write(const SectionTag& step);
    /// A step of an embedded document.
    void write(int id, const Workflowstep& step);
    /// The files that lie in no step, if there are any.
    void writeFilesWithoutStep();

private:
    void open(const QString& anchor, const char* heading, const QString& title);
    void close();
    void writeFields(const Summary& summary);
    void writePictures(const QList<FileSummary>& files);
    void writePicture(const FileSummary& file);
    void writeFiles(const QList<FileSummary>& files, bool areChecked);
    void writeFile(const FileSummary& file, bool isChecked);
    void writeCheck(const char* element, const Fault& fault);

    HtmlWriter& m_html;
    Document& m_document;
    const Summaries& m_summaries;
    const CheckResults& m_checks;
    EmbeddedPictures m_pictures;
};

} // namespace tresk::cli

#endif
