#ifndef TRESK_APPS_DIFFPAGE_H
#define TRESK_APPS_DIFFPAGE_H

#include "HtmlWriter.h"
#include "StepPairs.h"

#include <QHash>

namespace tresk::cli {

class HistoryTree;

/// Writes how the steps of two histories correspond as a page: a picture with both side by side,
/// their pairs joined by lines, and a table of all pairs with what is different in them.
class DiffPage {
public:
    /// All of them must outlive the object. @p certain: whether there is no better way of pairing.
    DiffPage(HtmlWriter& html, const HistoryTree& first, const HistoryTree& second,
             const StepPairs& groups, bool certain);

    void write();

private:
    /// Where a step stands in the picture.
    struct Place {
        int step;
        int level; ///< how many steps it hangs under
    };

    static QList<Place> placesOf(const HistoryTree& history);
    void writeHeader();
    void writePicture();
    void writeColumn(const HistoryTree& history, const QList<Place>& places, int x,
                     const QHash<int, const char*>& kinds);
    void writeLines(const QList<Place>& first, const QList<Place>& second);
    void writePairs();
    void writeSingles(const HistoryTree& history, const QList<int>& steps);
    QString titleIn(const HistoryTree& history, int step) const;

    HtmlWriter& m_html;
    const HistoryTree& m_first;
    const HistoryTree& m_second;
    const StepPairs& m_groups;
    bool m_certain;
};

} // namespace tresk::cli

#endif
