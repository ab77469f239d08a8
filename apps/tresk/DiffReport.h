#ifndef TRESK_APPS_DIFFREPORT_H
#define TRESK_APPS_DIFFREPORT_H

#include "StepChanges.h"

#include <tresk/TreskDiff.h>

#include <QJsonArray>
#include <QList>
#include <QString>

namespace tresk::cli {

class HistoryTree;
class Output;
class Style;
struct Invocation;

/// Shows how the steps of two histories correspond: for people, as JSON or as a graph.
class DiffReport {
public:
    /// All of them must outlive the object.
    DiffReport(Invocation& invocation, const HistoryTree& first, const HistoryTree& second);

    /// Notes that there may be better ways than those that are added.
    void setUncertain() { m_certain = false; }
    /// Adds a way of pairing the steps; the best comes first.
    void add(const TreskDiffResult& result);
    /// Writes what has to come at the end.
    void finish();

    /// Whether the best way shows no difference at all.
    bool bestIsSame() const { return m_bestIsSame; }

private:
    /// Two steps that correspond.
    struct Pair {
        int first;
        int second;
        QList<Change> changes;
        bool moved; ///< they hang under steps that do not correspond
    };

    /// What a way of pairing comes to. Steps are in the order of the trees.
    struct Groups {
        QList<Pair> pairs;
        QList<int> onlyFirst;
        QList<int> onlySecond;

        bool areSame() const;
    };

    Groups groupsOf(const TreskDiffResult& result) const;
    void print(const Groups& groups);
    void printPairs(const Groups& groups);
    void printMoved(const Groups& groups);
    void printSingles(const HistoryTree& history, const QList<int>& steps);
    void printChange(const Change& change);
    QString stepLine(const HistoryTree& history, const QString& id, int step) const;
    static QJsonObject json(const Groups& groups);
    void printDot(const Groups& groups);

    Output& m_output;
    const Style& m_style;
    const HistoryTree& m_first;
    const HistoryTree& m_second;
    bool m_json;
    bool m_dot;
    bool m_several;
    int m_count = 0;
    bool m_bestIsSame = false;
    bool m_certain = true;
    QJsonArray m_results;
};

} // namespace tresk::cli

#endif
