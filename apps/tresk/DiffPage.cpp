#include "DiffPage.h"

#include "DiffPicture.h"
#include "HistoryTree.h"
#include "Text.h"

#include <algorithm>
#include <utility>

namespace tresk::cli {

namespace {

constexpr int mostShownOfSame = 20; // more pairs without a difference are folded at first

QString stepAndTitle(const HistoryTree& history, int step)
{
    return QStringLiteral("%1 %2").arg(QString::number(step),
                                       titleOf(*history.tree().workflowStep(step)));
}

QString stepsText(const HistoryTree& history)
{
    return QStringLiteral("%1 (%2)").arg(
        history.name(), counted(history.tree().nodeIds().size(), QStringLiteral("step")));
}

} // namespace

DiffPage::DiffPage(HtmlWriter& html, const HistoryTree& first, const HistoryTree& second,
                   const StepPairs& groups, bool certain, std::function<bool()> goesOn)
    : m_html(html)
    , m_first(first)
    , m_second(second)
    , m_groups(groups)
    , m_certain(certain)
    , m_goesOn(std::move(goesOn))
{
    for (const StepPair& pair : groups.pairs)
        (pair.moved || !pair.changes.isEmpty() ? m_different : m_same).append(pair);
}

void DiffPage::write()
{
    m_html.begin(QStringLiteral("%1 and %2 compared").arg(m_first.name(), m_second.name()));
    m_html.element("a", QStringLiteral("Skip to the steps"),
                   {{"class", QStringLiteral("skip")}, {"href", QStringLiteral("#steps")}});
    writeHeader();
    m_html.open("main", {{"id", QStringLiteral("steps")}});
    m_html.tools(QStringLiteral("Search the steps"));
    writePicture();
    writeDifferences();
    writeSingles(m_first, m_groups.onlyFirst, "only-first", firstId);
    writeSingles(m_second, m_groups.onlySecond, "only-second", secondId);
    writeSame();
    m_html.end();
}

void DiffPage::writeHeader()
{
    m_html.open("header");
    m_html.element("h1", QStringLiteral("Two histories compared"));
    m_html.open("p", {{"class", QStringLiteral("soft")}});
    m_html.text(QStringLiteral("%1 and %2").arg(stepsText(m_first), stepsText(m_second)));
    m_html.close();
    if (m_groups.areSame())
        m_html.element("p", QStringLiteral("\u2713 The histories are the same."),
                       {{"class", QStringLiteral("right")}});
    else
        m_html.element("p", QStringLiteral("The histories differ."));
    writeWarnings();
    writeContents();
    m_html.element("p",
                   QStringLiteral("Compared are time, title, tool, description, comment, command, "
                                  "user, host and files of the steps, and under which step each "
                                  "of them hangs."),
                   {{"class", QStringLiteral("soft")}});
    m_html.close();
}

void DiffPage::writeWarnings()
{
    if (!m_certain) {
        m_html.element("p",
                       QStringLiteral("The histories differ so much that there may be better ways "
                                      "of pairing their steps."),
                       {{"class", QStringLiteral("wrong")}});
    }
    for (const HistoryTree* history : {&m_first, &m_second}) {
        const QStringList problems = history->problems();
        for (const QString& problem : problems)
            m_html.element("p", QStringLiteral("%1: %2").arg(history->name(), problem),
                           {{"class", QStringLiteral("wrong")}});
    }
}

/// What there is of each kind, with its sign.
void DiffPage::writeContents()
{
    const auto& pairs = m_groups.pairs;
    const auto isChanged = [](const StepPair& pair) { return !pair.changes.isEmpty(); };
    const auto isMoved = [](const StepPair& pair) { return pair.moved; };
    const auto moved = std::find_if(pairs.begin(), pairs.end(), isMoved);
    m_html.open("nav", {{"aria-label", QStringLiteral("Differences")}});
    m_html.open("ul", {{"class", QStringLiteral("kinds")}});
    writeEntry(changedKind(), int(std::count_if(pairs.begin(), pairs.end(), isChanged)),
               QStringLiteral("changed"), QStringLiteral("different"));
    writeEntry(movedKind(), int(std::count_if(pairs.begin(), pairs.end(), isMoved)),
               QStringLiteral("moved under another step"),
               moved == pairs.end() ? QString() : pairId(moved->first));
    writeEntry(onlyFirstKind(), int(m_groups.onlyFirst.size()),
               QStringLiteral("only in ") + m_first.name(), QStringLiteral("only-first"));
    writeEntry(onlySecondKind(), int(m_groups.onlySecond.size()),
               QStringLiteral("only in ") + m_second.name(), QStringLiteral("only-second"));
    writeEntry(sameKind(), int(m_same.size()), QStringLiteral("the same"), QStringLiteral("same"));
    m_html.close();
    m_html.close();
}

void DiffPage::writeEntry(const StepKind& kind, int count, const QString& text,
                          const QString& target)
{
    if (count == 0)
        return;
    m_html.open("li");
    m_html.element("span", kind.sign,
                   {{"class", QStringLiteral("sign ") + QLatin1String(kind.name)},
                    {"aria-hidden", QStringLiteral("true")}});
    m_html.text(QStringLiteral(" "));
    m_html.element("a", QStringLiteral("%1 %2").arg(QString::number(count), text),
                   {{"href", QLatin1Char('#') + target}});
    m_html.close();
}

void DiffPage::writePicture()
{
    m_html.open("section", {{"aria-labelledby", QStringLiteral("sides-heading")}});
    m_html.element("h2", QStringLiteral("Side by side"), {{"id", QStringLiteral("sides-heading")}});
    DiffPicture(m_html, m_first, m_second, m_groups).write();
    m_html.close();
}

void DiffPage::writeDifferences()
{
    if (m_different.isEmpty())
        return;
    openSection("different", QStringLiteral("Steps that correspond, with differences"));
    for (const StepPair& pair : m_different) {
        if (!m_goesOn())
            break;
        writeDifferent(pair);
    }
    m_html.close();
}

void DiffPage::writeDifferent(const StepPair& pair)
{
    const StepKind kind = kindOf(pair);
    m_html.open("article",
                {{"id", pairId(pair.first)},
                 {"data-item", QString()},
                 {"class", QLatin1String(kind.name)}});
    m_html.open("details", {{"open", QString()}});
    m_html.open("summary");
    m_html.open("h3");
    writeSign(kind);
    m_html.text(QStringLiteral(" %1 = %2 %3")
                    .arg(QString::number(pair.first), QString::number(pair.second),
                         titleOf(*m_first.tree().workflowStep(pair.first))));
    m_html.close();
    m_html.close();
    m_html.open("div", {{"class", QStringLiteral("body")}});
    QList<ChangeRow> rows;
    if (pair.moved)
        rows += parentRow(pair);
    for (const Change& change : pair.changes)
        rows += rowOf(change);
    writeChangeTable(m_html, m_first.name(), m_second.name(), rows);
    m_html.close();
    m_html.close();
    m_html.close();
}

void DiffPage::writeSingles(const HistoryTree& history, const QList<int>& steps, const char* id,
                            QString (*idOf)(int step))
{
    if (steps.isEmpty())
        return;
    openSection(id, QStringLiteral("Only in ") + history.name());
    m_html.open("ul", {{"class", QStringLiteral("only")}});
    for (const int step : steps) {
        if (!m_goesOn())
            break;
        m_html.open("li", {{"id", idOf(step)}, {"data-item", QString()}});
        m_html.text(stepAndTitle(history, step));
        m_html.element("span", circumstancesOf(*history.tree().workflowStep(step)),
                       {{"class", QStringLiteral("soft")}});
        m_html.close();
    }
    m_html.close();
    m_html.close();
}

void DiffPage::writeSame()
{
    if (m_same.isEmpty())
        return;
    openSection("same", QStringLiteral("Steps that are the same"));
    HtmlWriter::Attributes fold;
    if (m_same.size() <= mostShownOfSame)
        fold.append({"open", QString()});
    m_html.open("details", fold);
    m_html.element("summary", counted(m_same.size(), QStringLiteral("pair")));
    m_html.open("table", {{"aria-labelledby", QStringLiteral("same-heading")}});
    m_html.open("thead");
    m_html.open("tr");
    for (const QString& name : {m_first.name(), m_second.name()})
        m_html.element("th", name, {{"scope", QStringLiteral("col")}});
    m_html.close();
    m_html.close();
    m_html.open("tbody");
    for (const StepPair& pair : m_same) {
        if (!m_goesOn())
            break;
        m_html.open("tr", {{"id", pairId(pair.first)}, {"data-item", QString()}});
        m_html.element("td", stepAndTitle(m_first, pair.first));
        m_html.element("td", stepAndTitle(m_second, pair.second));
        m_html.close();
    }
    m_html.close();
    m_html.close();
    m_html.close();
    m_html.close();
}

/// A part of the page that is hidden where nothing in it is found.
void DiffPage::openSection(const char* id, const QString& heading)
{
    const QString headingId = QLatin1String(id) + QStringLiteral("-heading");
    m_html.open(
        "section",
        {{"id", QLatin1String(id)}, {"aria-labelledby", headingId}, {"data-group", QString()}});
    m_html.element("h2", heading, {{"id", headingId}});
}

void DiffPage::writeSign(const StepKind& kind)
{
    m_html.element("span", kind.sign,
                   {{"class", QStringLiteral("sign ") + QLatin1String(kind.name)},
                    {"role", QStringLiteral("img")},
                    {"aria-label", kind.word}});
}

ChangeRow DiffPage::parentRow(const StepPair& pair) const
{
    return {QStringLiteral("hangs under"), parentOf(m_first, pair.first),
            parentOf(m_second, pair.second)};
}

ChangeCell DiffPage::parentOf(const HistoryTree& history, int step) const
{
    const int parent = history.tree().parent(step);
    if (parent < 0)
        return {QStringLiteral("no step"), {}};
    const bool isFirst = &history == &m_first;
    const auto pair = std::find_if(
        m_groups.pairs.begin(), m_groups.pairs.end(), [&](const StepPair& candidate) {
            return (isFirst ? candidate.first : candidate.second) == parent;
        });
    const QString alone = isFirst ? firstId(parent) : secondId(parent);
    return {stepAndTitle(history, parent),
            pair == m_groups.pairs.end() ? alone : pairId(pair->first)};
}

} // namespace tresk::cli
