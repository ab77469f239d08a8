#ifndef TRESK_APPS_TABLE_H
#define TRESK_APPS_TABLE_H

#include "Style.h"

#include <QStringList>
#include <QVector>

namespace tresk::cli {

class Output;

/// Rows of printable texts in columns that are aligned by their width on a terminal.
class Table {
public:
    enum Alignment { Left, Right };

    struct Column {
        QString title;
        Alignment alignment;
    };

    explicit Table(const QVector<Column>& columns);

    QStringList titles() const;
    /// Adds a row, with a text for each column. The first is the id of what the row is about.
    void addRow(const QStringList& row);
    /// Removes all rows.
    void clear() { m_rows.clear(); }
    /// Makes the columns wide enough for @p row, which is not added.
    void makeRoomFor(const QStringList& row);
    /// Writes the titles, if @p withTitles, and the rows, each line behind @p indent.
    void writeTo(Output& output, const Style& style, bool withTitles,
                 const QString& indent = QString()) const;

private:
    QString line(const QStringList& row, const QVector<int>& widths) const;

    QVector<Column> m_columns;
    QVector<int> m_leastWidths;
    QVector<QStringList> m_rows;
};

} // namespace tresk::cli

#endif
