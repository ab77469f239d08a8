#include "query/QueryCompiler.h"

#include "query/QueryParser.h"
#include "query/QueryTokenizer.h"
#include "query/QueryTypes.h"

namespace tresk {

namespace {

/// Marks the texts that stand where a condition is expected: the root, or an operand of
/// conjunctions, disjunctions and negations only, up to the root.
void markBareStrings(QueryTree& tree)
{
    std::vector<bool> isCondition(tree.nodes.size(), false);
    isCondition.back() = true;
    for (std::size_t i = tree.nodes.size(); i-- > 0;) {
        QueryNode& node = tree.nodes[i];
        if (!isCondition[i])
            continue;
        node.isBareString = node.token.isString();
        if (!node.token.isConjunction() && !node.token.isDisjunction() && !node.token.isNegation())
            continue;
        isCondition[std::size_t(node.left)] = true;
        if (node.right >= 0)
            isCondition[std::size_t(node.right)] = true;
    }
}

/// Numbers the unnamed records from left to right, so that each is a record of its own.
void nameUnnamed(QueryTree& tree)
{
    int count = 0;
    const auto nextName = [&count] { return QStringLiteral("@unnamed-%1").arg(++count); };
    for (QueryNode& node : tree.nodes) {
        if (node.isBareString)
            node.recordName = nextName();
        else if (node.token.isVariable() && node.token.variableName().isEmpty())
            node.token.setVariableName(nextName());
    }
}

} // namespace

QueryTree compileQuery(const QString& query, QList<QueryError>& errors)
{
    const std::vector<QueryToken> tokens = tokenize(query, errors);
    if (containsErrors(errors))
        return {};
    const std::vector<QueryToken> checked = checkStructure(tokens, errors);
    if (containsErrors(errors))
        return {};
    QueryTree tree = parseTokens(query, checked);
    if (!checkQueryTypes(tree, errors))
        return {};
    markBareStrings(tree);
    nameUnnamed(tree);
    return tree;
}

} // namespace tresk
