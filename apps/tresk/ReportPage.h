#ifndef TRESK_APPS_REPORTPAGE_H
#define TRESK_APPS_REPORTPAGE_H

#include "HtmlWriter.h"
#include "StepArticles.h"

#include <QHash>
#include <QList>
#include <QString>

#include <functional>

namespace tresk::cli {

class CheckResults;
class Document;
class HistoryTree;
class StepFiles;
class Summaries;
struct Branch;

/// What a page is made of.
struct ReportSources {
    Document& document;
    const StepFiles& stepFiles;
    const Summaries& summaries;
    const HistoryTree& history;
    const CheckResults& checks;
};

/// Writes the history of a document as a page for people who would rather look than read.
class ReportPage {
public:
    /// Both must outlive the object. Asks before each step whether @p goesOn.
    ReportPage(HtmlWriter& html, const ReportSources& sources, std::function<bool()> goesOn);

    void write();

private:
    void writeHeader();
    void writeState();
    void writeProblems();
    void writeTimeline();
    void writeTree();
    void writeTreeSteps(const QList<int>& steps);
    void writeSteps();
    void writeEmbeddedDocuments();
    void writeEmbeddedDocuments(const QList<int>& steps);
    void writeEmbeddedDocument(const Branch& branch, int step);
    void openSection(const QString& id, const QString& heading);
    QString anchorOf(int node) const;

    HtmlWriter& m_html;
    ReportSources m_sources;
    StepArticles m_articles;
    std::function<bool()> m_goesOn;
    QHash<int, QString> m_anchors; ///< of the nodes that are steps of the document itself
};

} // namespace tresk::cli

#endif
