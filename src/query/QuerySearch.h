#ifndef TRESK_QUERY_QUERYSEARCH_H
#define TRESK_QUERY_QUERYSEARCH_H

#include <tresk/ConjunctiveNormalForm.h>
#include <tresk/Summary.h>

#include <QHash>
#include <QList>
#include <QString>

#include <optional>

namespace tresk {

/// For each name of a query that the query itself gives, the key of its record.
using QueryBindings = QHash<QString, QString>;

/// Looks for records of @p summaries for the names of @p form with which it holds, and returns the
/// first: in the order of the names, each with the first record that leads to an answer.
std::optional<QueryBindings> searchBindings(const ConjunctiveNormalForm& form,
                                            const QList<Summary>& summaries);

} // namespace tresk

#endif
