#ifndef TRESK_APPS_DIFFREPORT_H
#define TRESK_APPS_DIFFREPORT_H

#include "StepPairs.h"

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
    /// All of them must outlive the object. @p certain: whether there are no better ways of pairing
    /// than those that will be added.
    DiffReport(Invocation& invocation, const HistoryTree& first, const HistoryTree& second,
               bool certain);

    /// Adds a way of pairing the steps; the best comes first.
    void add(const StepPairs& groups);
    /// Writes what has to come at the end.
    void finish();

private:
    void print(const StepPairs& groups);
    void printPairs(const StepPairs& groups);
    void printMoved(const StepPairs& groups);
    void printSingles(const HistoryTree& history, const QList<int>& steps);
    QString stepLine(const HistoryTree& history, const QString& id, int step) const;
    static QJsonObject json(const StepPairs& groups);
    void printDot(const StepPairs& groups);

    Output& m_output;
    const Style& m_style;
    const HistoryTree& m_first;
    const HistoryTree& m_second;
    bool m_json;
    bool m_dot;
    bool m_several;
    bool m_certain;
    int m_count = 0;
    bool m_bestIsSame = false;
    QJsonArray m_results;
};

} // namespace tresk::cli

#endif
