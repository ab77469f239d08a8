#ifndef TRESK_QUERY_QUERYCOMPILER_H
#define TRESK_QUERY_QUERYCOMPILER_H

#include "query/QueryTree.h"

#include <tresk/ConjunctiveNormalForm.h>
#include <tresk/QueryError.h>

#include <QList>
#include <QString>

namespace tresk {

/// The checked tree of @p query, in which texts that stand for a condition are marked as searches
/// and every unnamed record has a name of its own. Where a stage finds something wrong, adds it to
/// @p errors and returns a tree without nodes.
QueryTree compileQuery(const QString& query, QList<QueryError>& errors);

/// Brings the conditions of @p tree, which has nodes, into normal form, in the order of the text.
/// Adds an error to @p errors and leaves @p form empty where that would be too large.
void buildNormalForm(const QueryTree& tree, ConjunctiveNormalForm& form, QList<QueryError>& errors);

} // namespace tresk

#endif
