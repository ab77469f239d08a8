#ifndef TRESK_APPS_DIFFPAGE_H
#define TRESK_APPS_DIFFPAGE_H

#include "ChangeTable.h"
#include "HtmlWriter.h"
#include "StepKind.h"
#include "StepPairs.h"

#include <QList>

#include <functional>

namespace tresk::cli {

class HistoryTree;

/// Writes how the steps of two histories correspond as a page: both side by side, their pairs
/// joined by lines, and below that what is different in each pair, the steps that only one of them
/// has, and the pairs that are the same.
class DiffPage {
public:
    /// All of them must outlive the object. @p certain: whether there is no better way of pairing.
    /// @p goesOn: asked again and again, false where the page is not wanted any more.
    DiffPage(HtmlWriter& html, const HistoryTree& first, const HistoryTree& second,
             const StepPairs& groups, bool certain, std::function<bool()> goesOn);

    void write();

private:
    void writeHeader();
    void writeWarnings();
    void writeContents();
    void writeEntry(const StepKind& kind, int count, const QString& text, const QString& target);
    void writePicture();
    void writeDifferences();
    void writeDifferent(const StepPair& pair);
    void writeSingles(const HistoryTree& history, const QList<int>& steps, const char* id,
                      QString (*idOf)(int step));
    void writeSame();
    void openSection(const char* id, const QString& heading);
    void writeSign(const StepKind& kind);
    ChangeRow parentRow(const StepPair& pair) const;
    ChangeCell parentOf(const HistoryTree& history, int step) const;

    HtmlWriter& m_html;
    const HistoryTree& m_first;
    const HistoryTree& m_second;
    QList<StepPair> m_different;
    QList<StepPair> m_same;
    const StepPairs& m_groups;
    bool m_certain;
    std::function<bool()> m_goesOn;
};

} // namespace tresk::cli

#endif
