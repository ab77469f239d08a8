#ifndef TRESK_APPS_REPORTPAGE_H
#define TRESK_APPS_REPORTPAGE_H

#include "HtmlWriter.h"
#include "ItemStatus.h"

#include <tresk/Summary.h>
#include <tresk/TreskParser.h>

#include <QHash>

namespace tresk::cli {

class Document;
class HistoryTree;
class StepFiles;
class Summaries;

/// What has become of the checks of a document.
struct CheckResults {
    QHash<int, Fault> steps; ///< those that fail
    QHash<int, Fault> files;
    int checked = 0; ///< steps and files in all
};

/// Writes the history of a document as a page for people who would rather look than read.
class ReportPage {
public:
    /// All of them must outlive the object.
    ReportPage(HtmlWriter& html, Document& document, const StepFiles& stepFiles,
               const Summaries& summaries, const HistoryTree& history, const CheckResults& checks);

    void write();

private:
    void writeHeader();
    void writeState();
    void writeTimeline();
    void writeTree(int parent);
    void writeBranch(const QString& document, const QList<int>& steps, bool isTop);
    void writeSteps();
    void writeStep(const SectionTag& step);
    void writeFilesWithoutStep();
    void writeFiles(const QList<FileSummary>& files);
    void writeFile(const FileSummary& file);
    void writePicture(const FileSummary& file);
    void writeFault(const Fault& fault);
    template <typename Record>
    void writeAttributes(const Record& record);

    HtmlWriter& m_html;
    Document& m_document;
    const StepFiles& m_stepFiles;
    const Summaries& m_summaries;
    const HistoryTree& m_history;
    const CheckResults& m_checks;
    qint64 m_pictureBytesLeft;
};

} // namespace tresk::cli

#endif
