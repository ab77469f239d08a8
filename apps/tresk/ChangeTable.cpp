#include "ChangeTable.h"

#include "HtmlWriter.h"
#include "StepChanges.h"
#include "Summaries.h"
#include "Text.h"

#include <algorithm>
#include <utility>

namespace tresk::cli {

namespace {

/// Whether @p text can be taken apart at @p index: not inside a character that takes two units,
/// and not in front of what is put onto the character before.
bool isBoundary(const QString& text, int index)
{
    return index >= int(text.size())
        || !(text.at(index).isLowSurrogate() || text.at(index).isMark());
}

/// The lengths of what two texts have in common at their beginnings and at their ends.
struct CommonEnds {
    CommonEnds(const QString& a, const QString& b)
    {
        const int shorter = int(std::min(a.size(), b.size()));
        while (before < shorter && a.at(before) == b.at(before))
            ++before;
        while (before > 0 && !(isBoundary(a, before) && isBoundary(b, before)))
            --before;
        const auto fromEnd = [](const QString& text, int n) { return int(text.size()) - n; };
        while (behind < shorter - before
               && a.at(fromEnd(a, behind + 1)) == b.at(fromEnd(b, behind + 1)))
            ++behind;
        while (behind > 0
               && !(isBoundary(a, fromEnd(a, behind)) && isBoundary(b, fromEnd(b, behind))))
            --behind;
    }

    int before = 0;
    int behind = 0;
};

QString fileText(const QString& purpose)
{
    const QString text = purposeText(purpose);
    if (text == QLatin1String("in"))
        return QStringLiteral("input file");
    return text == QLatin1String("out") ? QStringLiteral("output file") : QStringLiteral("file");
}

void writeMarked(HtmlWriter& html, const QString& text, const CommonEnds& common)
{
    const int length = int(text.size()) - common.before - common.behind;
    html.text(text.left(common.before));
    if (length > 0)
        html.element("mark", text.mid(common.before, length));
    html.text(text.right(common.behind));
}

void writeCell(HtmlWriter& html, const ChangeCell& cell, const CommonEnds& common)
{
    html.open("td");
    if (cell.text.isEmpty()) {
        html.element("span", QStringLiteral("none"), {{"class", QStringLiteral("soft")}});
    } else if (!cell.target.isEmpty()) {
        html.element("a", cell.text, {{"href", QLatin1Char('#') + cell.target}});
    } else {
        writeMarked(html, cell.text, common);
    }
    html.close();
}

} // namespace

ChangeRow rowOf(const Change& change)
{
    const QString before = printable(change.before);
    const QString after = printable(change.after);
    switch (change.kind) {
    case Change::FileRemoved:
    case Change::FileAdded:
        return {fileText(change.what), {before, {}}, {after, {}}};
    case Change::FileAltered:
        return {fileText(change.what),
                {before, {}},
                {after + QStringLiteral(", with other content"), {}}};
    case Change::Altered:
        break;
    }
    return {change.what, {before, {}}, {after, {}}};
}

void writeChangeTable(HtmlWriter& html, const QString& firstName, const QString& secondName,
                      const QList<ChangeRow>& rows)
{
    html.open(
        "table",
        {{"class", QStringLiteral("changes")}, {"aria-label", QStringLiteral("Differences")}});
    html.open("thead");
    html.open("tr");
    for (const QString& heading : {QStringLiteral("What"), firstName, secondName})
        html.element("th", heading, {{"scope", QStringLiteral("col")}});
    html.close();
    html.close();
    html.open("tbody");
    for (const ChangeRow& row : rows) {
        const CommonEnds common(row.first.text, row.second.text);
        html.open("tr");
        html.element("th", row.what, {{"scope", QStringLiteral("row")}});
        writeCell(html, row.first, common);
        writeCell(html, row.second, common);
        html.close();
    }
    html.close();
    html.close();
}

} // namespace tresk::cli
