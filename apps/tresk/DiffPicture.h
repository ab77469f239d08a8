#ifndef TRESK_APPS_DIFFPICTURE_H
#define TRESK_APPS_DIFFPICTURE_H

#include "StepKind.h"

#include <QList>
#include <QString>

namespace tresk::cli {

class HistoryTree;
class HtmlWriter;
struct StepPairs;

/// The ids that the entries of steps have on the page: of a pair, by the step of the first history,
/// and of steps that only one history has.
QString pairId(int first);
QString firstId(int step);
QString secondId(int step);

/// Writes two histories as lists side by side, the pairs of their steps joined by lines. Steps lead
/// to their entries.
class DiffPicture {
public:
    /// All of them must outlive the object.
    DiffPicture(HtmlWriter& html, const HistoryTree& first, const HistoryTree& second,
                const StepPairs& groups);

    void write();

private:
    /// Where a step stands in the tree.
    struct Place {
        int step;
        int level; ///< how many steps it hangs under
    };
    /// What is shown of a step.
    struct Look {
        StepKind kind;
        QString target;
        int partner = -1; ///< the step of the other history that corresponds; -1 if there is none
    };

    static QList<Place> placesOf(const HistoryTree& history);
    void openStep(const HistoryTree& history, const Place& place, const Look& look);
    void writeLine(int rowsDown);

    HtmlWriter& m_html;
    const HistoryTree& m_first;
    const HistoryTree& m_second;
    const StepPairs& m_groups;
};

} // namespace tresk::cli

#endif
