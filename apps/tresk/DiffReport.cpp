#include "DiffReport.h"

#include "Dot.h"
#include "HistoryTree.h"
#include "Invocation.h"
#include "Json.h"
#include "Text.h"

namespace tresk::cli {

namespace {

QJsonArray stepsJson(const QList<int>& steps)
{
    QJsonArray array;
    for (const int step : steps)
        array += step;
    return array;
}

const char* kindName(Change::Kind kind)
{
    switch (kind) {
    case Change::FileRemoved:
        return "fileRemoved";
    case Change::FileAdded:
        return "fileAdded";
    case Change::FileAltered:
        return "fileAltered";
    case Change::Altered:
        break;
    }
    return "altered";
}

} // namespace

DiffReport::DiffReport(Invocation& invocation, const HistoryTree& first, const HistoryTree& second,
                       bool certain)
    : m_output(invocation.output)
    , m_style(invocation.style)
    , m_first(first)
    , m_second(second)
    , m_json(invocation.isSet("json"))
    , m_dot(invocation.isSet("dot"))
    , m_several(invocation.isSet("number"))
    , m_certain(certain)
{
}

void DiffReport::add(const StepPairs& groups)
{
    if (m_count++ == 0)
        m_bestIsSame = groups.areSame();
    if (m_json)
        m_results += json(groups);
    else if (!m_dot)
        print(groups);
    else if (m_count == 1)
        printDot(groups);
}

void DiffReport::finish()
{
    if (!m_json)
        return;
    writeJson(m_output, "tresk-diff/1",
              {{QStringLiteral("first"), m_first.name()},
               {QStringLiteral("second"), m_second.name()},
               {QStringLiteral("same"), m_bestIsSame},
               {QStringLiteral("certain"), m_certain},
               {QStringLiteral("results"), m_results}});
}

void DiffReport::print(const StepPairs& groups)
{
    if (m_several) {
        m_output.write((m_count > 1 ? QStringLiteral("\n") : QString())
                       + m_style.title(QStringLiteral("Way %1").arg(m_count)) + QLatin1Char('\n'));
    }
    if (groups.areSame()) {
        m_output.write(QStringLiteral("The histories are the same: %1.\n")
                           .arg(counted(groups.pairs.size(), QStringLiteral("step"))));
        return;
    }
    printPairs(groups);
    printSingles(m_first, groups.onlyFirst);
    printSingles(m_second, groups.onlySecond);
    printMoved(groups);
}

void DiffReport::printPairs(const StepPairs& groups)
{
    if (groups.pairs.isEmpty())
        return;
    m_output.write(m_style.label(QStringLiteral("Steps that correspond:")) + QLatin1Char('\n'));
    for (const StepPair& pair : groups.pairs) {
        const QString ids = QStringLiteral("%1 = %2").arg(pair.first).arg(pair.second);
        m_output.write(stepLine(m_first, ids, pair.first));
        for (const Change& change : pair.changes) {
            m_output.write(QStringLiteral("        ") + changeText(change) + QLatin1Char('\n'));
        }
    }
}

void DiffReport::printSingles(const HistoryTree& history, const QList<int>& steps)
{
    if (steps.isEmpty())
        return;
    m_output.write(m_style.label(QStringLiteral("Only in %1:").arg(printable(history.name())))
                   + QLatin1Char('\n'));
    for (const int step : steps)
        m_output.write(stepLine(history, QString::number(step), step));
}

void DiffReport::printMoved(const StepPairs& groups)
{
    bool headed = false;
    for (const StepPair& pair : groups.pairs) {
        if (!pair.moved)
            continue;
        if (!headed)
            m_output.write(m_style.label(QStringLiteral("Moved under another step:"))
                           + QLatin1Char('\n'));
        headed = true;
        const QString ids = QStringLiteral("%1 = %2").arg(pair.first).arg(pair.second);
        m_output.write(stepLine(m_first, ids, pair.first));
    }
}

QString DiffReport::stepLine(const HistoryTree& history, const QString& id, int step) const
{
    const Workflowstep& told = *history.tree().workflowStep(step);
    return QStringLiteral("    ") + m_style.id(id) + QStringLiteral("  ")
        + m_style.title(titleOf(told)) + circumstancesOf(told) + QLatin1Char('\n');
}

QJsonObject DiffReport::json(const StepPairs& groups)
{
    QJsonArray pairs;
    for (const StepPair& pair : groups.pairs) {
        QJsonArray changes;
        for (const Change& change : pair.changes) {
            changes += QJsonObject{{QStringLiteral("kind"), QLatin1String(kindName(change.kind))},
                                   {QStringLiteral("what"), change.what},
                                   {QStringLiteral("before"), jsonText(change.before)},
                                   {QStringLiteral("after"), jsonText(change.after)}};
        }
        pairs += QJsonObject{{QStringLiteral("first"), pair.first},
                             {QStringLiteral("second"), pair.second},
                             {QStringLiteral("changes"), changes},
                             {QStringLiteral("moved"), pair.moved}};
    }
    return {{QStringLiteral("pairs"), pairs},
            {QStringLiteral("onlyFirst"), stepsJson(groups.onlyFirst)},
            {QStringLiteral("onlySecond"), stepsJson(groups.onlySecond)}};
}

void DiffReport::printDot(const StepPairs& groups)
{
    m_output.write(QStringLiteral("digraph diff {\n  rankdir=LR;\n  node [shape=box];\n"));
    for (const HistoryTree* history : {&m_first, &m_second}) {
        const QString side = history == &m_first ? QStringLiteral("a") : QStringLiteral("b");
        m_output.write(QStringLiteral("  subgraph cluster_%1 {\n    label=%2;\n")
                           .arg(side, dotText(history->name())));
        const WorkflowTree& tree = history->tree();
        for (const int id : tree.nodeIds()) {
            m_output.write(
                QStringLiteral("    %1%2 [label=%3];\n")
                    .arg(side, QString::number(id), dotText(titleOf(*tree.workflowStep(id)))));
            if (tree.parent(id) != -1)
                m_output.write(
                    QStringLiteral("    %1%2 -> %1%3;\n")
                        .arg(side, QString::number(tree.parent(id)), QString::number(id)));
        }
        m_output.write(QStringLiteral("  }\n"));
    }
    for (const StepPair& pair : groups.pairs) {
        const QString style = pair.moved ? QStringLiteral("dotted")
            : pair.changes.isEmpty()     ? QStringLiteral("solid")
                                         : QStringLiteral("dashed");
        m_output.write(QStringLiteral("  a%1 -> b%2 [dir=none, constraint=false, style=%3];\n")
                           .arg(QString::number(pair.first), QString::number(pair.second), style));
    }
    m_output.write(QStringLiteral("}\n"));
}

} // namespace tresk::cli
