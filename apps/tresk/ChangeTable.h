#ifndef TRESK_APPS_CHANGETABLE_H
#define TRESK_APPS_CHANGETABLE_H

#include <QList>
#include <QString>

namespace tresk::cli {

class HtmlWriter;
struct Change;

/// One side of a difference, fit for people.
struct ChangeCell {
    QString text; ///< empty if there is nothing on this side
    QString target; ///< the id of an element that the text leads to; empty if it leads nowhere
};

/// A difference between two steps.
struct ChangeRow {
    QString what;
    ChangeCell first;
    ChangeCell second;
};

/// @p change as a row, for a page that has more room than a line.
ChangeRow rowOf(const Change& change);

/// Writes @p rows as a table, below the names of the two histories. What only one of two texts has
/// is marked in it.
void writeChangeTable(HtmlWriter& html, const QString& firstName, const QString& secondName,
                      const QList<ChangeRow>& rows);

} // namespace tresk::cli

#endif
