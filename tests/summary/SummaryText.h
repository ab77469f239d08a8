#ifndef TRESK_TESTS_SUMMARYTEXT_H
#define TRESK_TESTS_SUMMARYTEXT_H

#include <tresk/Summary.h>

#include <QString>
#include <QStringList>

namespace tresktest {

/// All fields of a record, a line each, so that records can be compared and seen. Texts are
/// quoted, null ones are not; attributes are in the order of their names.
QStringList textOf(const tresk::Summary& summary);
QStringList textOf(const tresk::FileSummary& file);
QStringList textOf(const QList<tresk::Summary>& summaries);

/// @p text in quotes and on one line, or "(null)".
QString quotedOrNull(const QString& text);

} // namespace tresktest

#endif
