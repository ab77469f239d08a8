#include "query/QueryParser.h"

#include <algorithm>

namespace tresk {

namespace {

constexpr int bracketPrecedence = 10; // more than any operator's

/// Operator-precedence parsing with one stack of operands and one of operators.
class PrecedenceParser {
public:
    explicit PrecedenceParser(const QString& query) { m_tree.query = query; }

    QueryTree parse(const std::vector<QueryToken>& tokens)
    {
        m_tree.nodes.reserve(tokens.size());
        for (const QueryToken& token : tokens)
            take(token);
        take(QueryToken::endMarker());
        return std::move(m_tree);
    }

private:
    void take(const QueryToken& token)
    {
        if (!token.isOperator())
            pushOperand(token);
        else if (token.isOperator(QLatin1String("(")))
            m_offset += bracketPrecedence;
        else if (token.isOperator(QLatin1String(")")))
            m_offset -= bracketPrecedence;
        else
            pushOperator(token);
    }

    void pushOperand(const QueryToken& token)
    {
        QueryNode node;
        node.token = token;
        node.begin = token.position();
        node.end = token.position() + token.length();
        pushNode(node);
    }

    void pushOperator(QueryToken token)
    {
        token.setPrecedence(token.precedence() + m_offset);
        while (!m_operators.empty() && bindsFirst(m_operators.back(), token)) {
            reduce(m_operators.back());
            m_operators.pop_back();
        }
        m_operators.push_back(token);
    }

    static bool bindsFirst(const QueryToken& top, const QueryToken& next)
    {
        return top.precedence() > next.precedence()
            || (top.precedence() == next.precedence() && next.associativity() == 'l');
    }

    void reduce(const QueryToken& token)
    {
        QueryNode node;
        node.token = token;
        if (token.arity() == 2)
            node.right = popOperand();
        node.left = popOperand();
        const QueryNode& first = m_tree.nodes[std::size_t(node.left)];
        const QueryNode& last = m_tree.nodes[std::size_t(node.right < 0 ? node.left : node.right)];
        node.begin = std::min(first.begin, last.begin);
        node.end = std::max(first.end, last.end);
        pushNode(node);
    }

    void pushNode(const QueryNode& node)
    {
        m_operands.push_back(int(m_tree.nodes.size()));
        m_tree.nodes.push_back(node);
    }

    int popOperand()
    {
        const int place = m_operands.back();
        m_operands.pop_back();
        return place;
    }

    QueryTree m_tree;
    int m_offset = 0;
    std::vector<int> m_operands; ///< places in the tree
    std::vector<QueryToken> m_operators;
};

} // namespace

QueryTree parseTokens(const QString& query, const std::vector<QueryToken>& tokens)
{
    return PrecedenceParser(query).parse(tokens);
}

} // namespace tresk
