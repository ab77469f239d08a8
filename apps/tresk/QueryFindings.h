#ifndef TRESK_APPS_QUERYFINDINGS_H
#define TRESK_APPS_QUERYFINDINGS_H

#include <tresk/QueryError.h>

#include <QJsonArray>
#include <QList>
#include <QString>

namespace tresk::cli {

/// Reports all that is wrong with a query, each finding with the place marked under the text of
/// the query.
void reportFindings(const QString& query, const QList<QueryError>& findings);

/// The same for other programs.
QJsonArray findingsJson(const QList<QueryError>& findings);

} // namespace tresk::cli

#endif
