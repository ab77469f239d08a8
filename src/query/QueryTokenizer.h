#ifndef TRESK_QUERY_QUERYTOKENIZER_H
#define TRESK_QUERY_QUERYTOKENIZER_H

#include "query/QueryToken.h"

#include <tresk/QueryError.h>

#include <QList>
#include <QString>

#include <vector>

namespace tresk {

/// Cuts @p query into its words. At text that is none, adds an error to @p errors and returns
/// nothing; a query without words returns nothing, too.
std::vector<QueryToken> tokenize(const QString& query, QList<QueryError>& errors);

} // namespace tresk

#endif
