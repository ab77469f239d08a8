#include "DiffPage.h"

#include "HistoryTree.h"
#include "Text.h"

#include <algorithm>

namespace tresk::cli {

namespace {

// The picture's measures, in its own units.
constexpr int rowHeight = 32;
constexpr int columnWidth = 400;
constexpr int gapWidth = 160;
constexpr int levelWidth = 16;
constexpr int deepestLevelShown = 10; // deeper steps are no further to the right
constexpr int columnsOfText = 46; // that fit a box, about

QString number(int value)
{
    return QString::number(value);
}

/// The class of what stands for a pair, which says how it is coloured.
const char* kindOf(const StepPair& pair)
{
    if (pair.moved)
        return "moved";
    return pair.changes.isEmpty() ? "same" : "changed";
}

QString remarkOn(const StepPair& pair)
{
    if (pair.moved)
        return QStringLiteral("moved under another step");
    return pair.changes.isEmpty() ? QStringLiteral("the same") : QStringLiteral("changed");
}

} // namespace

DiffPage::DiffPage(HtmlWriter& html, const HistoryTree& first, const HistoryTree& second,
                   const StepPairs& groups, bool certain)
    : m_html(html)
    , m_first(first)
    , m_second(second)
    , m_groups(groups)
    , m_certain(certain)
{
}

void DiffPage::write()
{
    m_html.begin(QStringLiteral("%1 and %2 compared").arg(m_first.name(), m_second.name()));
    writeHeader();
    m_html.open("main");
    m_html.tools(QStringLiteral("Search the pairs"));
    m_html.element("h2", QStringLiteral("Side by side"));
    writePicture();
    writePairs();
    writeSingles(m_first, m_groups.onlyFirst);
    writeSingles(m_second, m_groups.onlySecond);
    m_html.end();
}

void DiffPage::writeHeader()
{
    m_html.open("header");
    m_html.element("h1", QStringLiteral("Two histories compared"));
    m_html.element("p", QStringLiteral("%1 and %2").arg(m_first.name(), m_second.name()),
                   {{"class", QStringLiteral("facts")}});
    if (m_groups.areSame()) {
        m_html.element("p", QStringLiteral("\u2713 The histories are the same."),
                       {{"class", QStringLiteral("right")}});
    } else {
        const auto differ = std::count_if(
            m_groups.pairs.begin(), m_groups.pairs.end(),
            [](const StepPair& pair) { return !pair.changes.isEmpty() || pair.moved; });
        m_html.element("p",
                       QStringLiteral("%1 correspond, %2 of them with differences; %3 only in the "
                                      "first history, %4 only in the second.")
                           .arg(counted(m_groups.pairs.size(), QStringLiteral("step")),
                                QString::number(differ), number(int(m_groups.onlyFirst.size())),
                                number(int(m_groups.onlySecond.size()))));
    }
    if (!m_certain) {
        m_html.element("p",
                       QStringLiteral("The histories differ so much that there may be better ways "
                                      "of pairing their steps."),
                       {{"class", QStringLiteral("wrong")}});
    }
    m_html.close();
}

/// The steps in the order in which a tree is drawn.
QList<DiffPage::Place> DiffPage::placesOf(const HistoryTree& history)
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

/// For eyes only: the table below says the same.
void DiffPage::writePicture()
{
    const QList<Place> first = placesOf(m_first);
    const QList<Place> second = placesOf(m_second);
    const int height = rowHeight
        * int(std::max({first.size(), second.size(), QList<Place>::size_type(1)}));
    QHash<int, const char*> firstKinds;
    QHash<int, const char*> secondKinds;
    for (const StepPair& pair : m_groups.pairs) {
        firstKinds.insert(pair.first, kindOf(pair));
        secondKinds.insert(pair.second, kindOf(pair));
    }
    m_html.open("div", {{"class", QStringLiteral("scroll")}});
    m_html.open(
        "svg",
        {{"class", QStringLiteral("diff")},
         {"viewBox", QStringLiteral("0 0 %1 %2").arg(2 * columnWidth + gapWidth).arg(height)},
         {"width", number(2 * columnWidth + gapWidth)},
         {"height", number(height)},
         {"aria-hidden", QStringLiteral("true")}});
    writeLines(first, second);
    writeColumn(m_first, first, 0, firstKinds);
    writeColumn(m_second, second, columnWidth + gapWidth, secondKinds);
    m_html.close();
    m_html.close();
}

void DiffPage::writeColumn(const HistoryTree& history, const QList<Place>& places, int x,
                           const QHash<int, const char*>& kinds)
{
    for (int row = 0; row < places.size(); ++row) {
        const int indent = levelWidth * std::min(places[row].level, deepestLevelShown);
        const int step = places[row].step;
        m_html.element("rect", QString(),
                       {{"class", QLatin1String(kinds.value(step, "only"))},
                        {"x", number(x + indent + 1)},
                        {"y", number(row * rowHeight + 3)},
                        {"width", number(columnWidth - indent - 2)},
                        {"height", number(rowHeight - 6)},
                        {"rx", QStringLiteral("5")}});
        const int room = columnsOfText - indent / 8;
        m_html.element("text", cutToWidth(titleIn(history, step), room),
                       {{"x", number(x + indent + 8)}, {"y", number(row * rowHeight + 21)}});
    }
}

void DiffPage::writeLines(const QList<Place>& first, const QList<Place>& second)
{
    QHash<int, int> rows; // of the steps of the second history
    for (int row = 0; row < second.size(); ++row)
        rows.insert(second[row].step, row);
    QHash<int, const StepPair*> pairs;
    for (const StepPair& pair : m_groups.pairs)
        pairs.insert(pair.first, &pair);
    for (int row = 0; row < first.size(); ++row) {
        const StepPair* const pair = pairs.value(first[row].step);
        if (!pair)
            continue;
        const int other = rows.value(pair->second);
        m_html.element("line", QString(),
                       {{"class", QLatin1String(kindOf(*pair))},
                        {"x1", number(columnWidth)},
                        {"y1", number(row * rowHeight + rowHeight / 2)},
                        {"x2", number(columnWidth + gapWidth)},
                        {"y2", number(other * rowHeight + rowHeight / 2)}});
    }
}

void DiffPage::writePairs()
{
    if (m_groups.pairs.isEmpty())
        return;
    m_html.element("h2", QStringLiteral("Steps that correspond"));
    m_html.open("div", {{"class", QStringLiteral("scroll")}});
    m_html.open("table");
    m_html.open("thead");
    m_html.open("tr");
    for (const QString& heading :
         {m_first.name(), m_second.name(), QStringLiteral("What is different")})
        m_html.element("th", heading, {{"scope", QStringLiteral("col")}});
    m_html.close();
    m_html.close();
    m_html.open("tbody");
    for (const StepPair& pair : m_groups.pairs) {
        m_html.open("tr", {{"data-item", QString()}, {"class", QLatin1String(kindOf(pair))}});
        m_html.element("td", titleIn(m_first, pair.first));
        m_html.element("td", titleIn(m_second, pair.second));
        m_html.open("td");
        m_html.element("strong", remarkOn(pair));
        for (const Change& change : pair.changes)
            m_html.element("div", changeText(change));
        m_html.close();
        m_html.close();
    }
    m_html.close();
    m_html.close();
    m_html.close();
}

void DiffPage::writeSingles(const HistoryTree& history, const QList<int>& steps)
{
    if (steps.isEmpty())
        return;
    m_html.element("h2", QStringLiteral("Only in ") + history.name());
    m_html.open("ul");
    for (const int step : steps) {
        m_html.element("li",
                       titleIn(history, step) + circumstancesOf(*history.tree().workflowStep(step)),
                       {{"data-item", QString()}});
    }
    m_html.close();
}

QString DiffPage::titleIn(const HistoryTree& history, int step) const
{
    return number(step) + QStringLiteral("  ") + titleOf(*history.tree().workflowStep(step));
}

} // namespace tresk::cli
