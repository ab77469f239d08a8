#include "Table.h"

#include "Output.h"
#include "Text.h"

#include <algorithm>

namespace tresk::cli {

namespace {

QString aligned(const QString& text, Table::Alignment alignment, int width)
{
    const QString blanks(std::max(0, width - displayWidth(text)), QLatin1Char(' '));
    return alignment == Table::Right ? blanks + text : text + blanks;
}

void widen(QVector<int>& widths, const QStringList& row)
{
    for (int i = 0; i < widths.size(); ++i)
        widths[i] = std::max(widths[i], displayWidth(row[i]));
}

} // namespace

Table::Table(const QVector<Column>& columns)
    : m_columns(columns)
    , m_leastWidths(columns.size(), 0)
{
}

QStringList Table::titles() const
{
    QStringList titles;
    for (const Column& column : m_columns)
        titles += column.title;
    return titles;
}

void Table::addRow(const QStringList& row)
{
    m_rows += row;
}

void Table::makeRoomFor(const QStringList& row)
{
    widen(m_leastWidths, row);
}

void Table::writeTo(Output& output, const Style& style, bool withTitles,
                    const QString& indent) const
{
    QVector<int> widths = m_leastWidths;
    if (withTitles)
        widen(widths, titles());
    for (const QStringList& row : m_rows)
        widen(widths, row);

    if (withTitles)
        output.write(indent + style.label(line(titles(), widths)) + QLatin1Char('\n'));
    for (const QStringList& row : m_rows) {
        const QString id = aligned(row[0], m_columns[0].alignment, widths[0]);
        const QString rest = line(row, widths).mid(id.size());
        output.write(indent + style.id(id) + rest + QLatin1Char('\n'));
        if (output.error() != 0)
            return;
    }
}

QString Table::line(const QStringList& row, const QVector<int>& widths) const
{
    QStringList cells;
    for (int i = 0; i < m_columns.size(); ++i) {
        // No blanks behind the last column.
        const bool last = i + 1 == m_columns.size();
        cells += last ? row[i] : aligned(row[i], m_columns[i].alignment, widths[i]);
    }
    return cells.join(QStringLiteral("  "));
}

} // namespace tresk::cli
