#ifndef TRESK_QUERY_QUERYPARSER_H
#define TRESK_QUERY_QUERYPARSER_H

#include "query/QueryToken.h"
#include "query/QueryTree.h"

#include <tresk/QueryError.h>

#include <QList>
#include <QString>

#include <vector>

namespace tresk {

/// The translation of a message about a query.
QString translate(const char* message);

/// The finding about a query that is nested too deeply, or whose normal form would be too large.
/// It concerns @p text at @p position.
QueryError tooComplex(const QString& text, int position);

/// Checks that operands, operators and brackets of @p tokens follow each other as they should, and
/// inserts the conjunctions that are implied between operands. At a fault, adds an error to
/// @p errors and returns nothing.
std::vector<QueryToken> checkStructure(const std::vector<QueryToken>& tokens,
                                       QList<QueryError>& errors);

/// Makes the tree of @p tokens, the sound and not empty result of checkStructure(), by the
/// precedence of the operators.
QueryTree parseTokens(const QString& query, const std::vector<QueryToken>& tokens);

} // namespace tresk

#endif
