#ifndef TRESK_QUERY_QUERYTYPES_H
#define TRESK_QUERY_QUERYTYPES_H

#include "query/QueryTree.h"

#include <tresk/QueryError.h>

#include <QList>

namespace tresk {

/// Checks that the attributes of @p tree exist and that each operator gets operands of the types
/// it needs. Adds what it finds to @p errors, about operands in front of what it finds about their
/// operator; operands that only may be of the wrong type are errors, too. Whether there are no
/// errors afterwards.
bool checkQueryTypes(const QueryTree& tree, QList<QueryError>& errors);

} // namespace tresk

#endif
