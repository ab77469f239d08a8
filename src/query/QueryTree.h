#ifndef TRESK_QUERY_QUERYTREE_H
#define TRESK_QUERY_QUERYTREE_H

#include "query/QueryToken.h"

#include <QString>

#include <vector>

namespace tresk {

/// A node of a query's tree: an operand, or an operator over its children.
struct QueryNode {
    QueryToken token;
    /// Children by their places in the tree, in text order; -1 where there is none.
    int left = -1;
    int right = -1;
    /// The part of the query that the node covers, as offsets; that of an operator goes from its
    /// first operand to its last, without its own characters at the sides and without brackets.
    int begin = 0;
    int end = 0;
    /// Whether this is a text that stands for a search in all attributes of an unnamed record.
    bool isBareString = false;
    /// For bare strings, the name of the record that is searched.
    QString recordName;
};

/// The tree of a query. Children come before their parents, leaves in the order of the text, and
/// the root is last, so that whatever goes up or down the tree is a loop over the nodes: queries
/// may nest as deeply as they are long.
struct QueryTree {
    QString query;
    std::vector<QueryNode> nodes; ///< empty for a query that is not right

    QString textOf(const QueryNode& node) const
    {
        return query.mid(node.begin, node.end - node.begin);
    }
};

} // namespace tresk

#endif
