#include "DiffPicture.h"

#include "HistoryTree.h"
#include "HtmlWriter.h"
#include "StepPairs.h"
#include "Text.h"

#include <QHash>

#include <algorithm>

namespace tresk::cli {

namespace {

constexpr int deepestIndent = 8; // steps of deeper levels are no further to the right

// Units of the drawing of a line, which the page stretches to the height of a row and to the width
// between the lists.
constexpr int lineWidth = 100;
constexpr int rowHeight = 10;

} // namespace

QString pairId(int first)
{
    return QStringLiteral("pair-%1").arg(first);
}

QString firstId(int step)
{
    return QStringLiteral("first-%1").arg(step);
}

QString secondId(int step)
{
    return QStringLiteral("second-%1").arg(step);
}

DiffPicture::DiffPicture(HtmlWriter& html, const HistoryTree& first, const HistoryTree& second,
                         const StepPairs& groups)
    : m_html(html)
    , m_first(first)
    , m_second(second)
    , m_groups(groups)
{
}

void DiffPicture::write()
{
    QHash<int, Look> firstLooks;
    QHash<int, Look> secondLooks;
    for (const StepPair& pair : m_groups.pairs) {
        const StepKind kind = kindOf(pair);
        const QString target = pairId(pair.first);
        firstLooks.insert(pair.first, {kind, target, pair.second});
        secondLooks.insert(pair.second, {kind, target, pair.first});
    }
    for (const int step : m_groups.onlyFirst)
        firstLooks.insert(step, {onlyFirstKind(), firstId(step), -1});
    for (const int step : m_groups.onlySecond)
        secondLooks.insert(step, {onlySecondKind(), secondId(step), -1});

    m_html.open("div", {{"class", QStringLiteral("sides")}});
    m_html.element("h3", m_first.name());
    m_html.element("h3", m_second.name());
    m_html.open("ul");
    const QList<Place> firstPlaces = placesOf(m_first);
    const QList<Place> secondPlaces = placesOf(m_second);
    QHash<int, int> secondRows;
    for (int row = 0; row < secondPlaces.size(); ++row)
        secondRows.insert(secondPlaces.at(row).step, row);
    for (int row = 0; row < firstPlaces.size(); ++row) {
        const Place& place = firstPlaces.at(row);
        const Look look = firstLooks.value(place.step);
        openStep(m_first, place, look);
        if (look.partner >= 0)
            writeLine(secondRows.value(look.partner) - row);
        m_html.close();
    }
    m_html.close();
    m_html.open("ul");
    for (const Place& place : secondPlaces) {
        openStep(m_second, place, secondLooks.value(place.step));
        m_html.close();
    }
    m_html.close();
    m_html.close();
}

/// The steps of a history in the order in which its tree is drawn.
QList<DiffPicture::Place> DiffPicture::placesOf(const HistoryTree& history)
{
    const WorkflowTree& tree = history.tree();
    QList<Place> places;
    QList<Place> waiting; // last in, first out
    const auto wait = [&](int parent, int level) {
        const QList<int> steps = tree.children(parent);
        for (auto step = steps.crbegin(); step != steps.crend(); ++step)
            waiting.append({*step, level});
    };
    wait(-1, 0);
    while (!waiting.isEmpty()) {
        const Place place = waiting.takeLast();
        places.append(place);
        wait(place.step, place.level + 1);
    }
    return places;
}

void DiffPicture::openStep(const HistoryTree& history, const Place& place, const Look& look)
{
    const QString indent = QStringLiteral(" level%1").arg(std::min(place.level, deepestIndent));
    HtmlWriter::Attributes attributes = {{"class", QLatin1String(look.kind.name) + indent}};
    if (look.partner >= 0)
        attributes.append({"data-pair", look.target});
    m_html.open("li", attributes);
    m_html.open("a", {{"href", QLatin1Char('#') + look.target}});
    m_html.element("span", look.kind.sign,
                   {{"class", QStringLiteral("sign")},
                    {"role", QStringLiteral("img")},
                    {"aria-label", look.kind.word}});
    m_html.text(QStringLiteral(" %1 ").arg(place.step)
                + titleOf(*history.tree().workflowStep(place.step)));
    m_html.close();
}

/// For eyes only: the lists say the same. Each line is a drawing in the row where it starts, since
/// on paper there may be room between some rows.
void DiffPicture::writeLine(int rowsDown)
{
    const int middle = rowHeight / 2;
    const QString path = QStringLiteral("M0 %1C%2 %1 %2 %3 %4 %3")
                             .arg(QString::number(middle), QString::number(lineWidth / 2),
                                  QString::number(middle + rowsDown * rowHeight),
                                  QString::number(lineWidth));
    m_html.open("svg",
                {{"viewBox", QStringLiteral("0 0 %1 %2").arg(lineWidth).arg(rowHeight)},
                 {"preserveAspectRatio", QStringLiteral("none")},
                 {"aria-hidden", QStringLiteral("true")}});
    m_html.element("path", QString(), {{"d", path}});
    m_html.close();
}

} // namespace tresk::cli
