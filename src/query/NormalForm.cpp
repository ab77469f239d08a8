#include "query/QueryCompiler.h"
#include "query/QueryParser.h"

#include <algorithm>
#include <iterator>

namespace tresk {

namespace {

constexpr double mostLiterals = 100000;

/// A condition of the tree, by its place, or its negation.
struct Literal {
    int place;
    bool negated;
};

using Clause = std::vector<Literal>;
using Clauses = std::vector<Clause>;

/// How large a normal form would be. Counted as double, since it can exceed any whole number.
struct Size {
    double clauses = 1;
    double literals = 1;
};

/// Multiplies negations and disjunctions out, from the leaves up.
class Normaliser {
public:
    explicit Normaliser(const QueryTree& tree)
        : m_tree(tree)
    {
        pushNegationsDown();
    }

    bool isTooLarge() const
    {
        std::vector<Size> sizes(m_tree.nodes.size());
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            const QueryNode& node = m_tree.nodes[i];
            if (!m_isCondition[i] || node.left < 0)
                continue;
            const Size& left = sizes[std::size_t(node.left)];
            if (node.token.isNegation()) {
                sizes[i] = left;
            } else if (isConnective(node)) {
                const Size& right = sizes[std::size_t(node.right)];
                sizes[i] = isConjunction(i)
                    ? Size{left.clauses + right.clauses, left.literals + right.literals}
                    : Size{left.clauses * right.clauses,
                           left.literals * right.clauses + right.literals * left.clauses};
            }
        }
        return !(sizes.back().literals <= mostLiterals);
    }

    Clauses run()
    {
        m_clauses.resize(m_tree.nodes.size());
        for (std::size_t i = 0; i < m_tree.nodes.size(); ++i) {
            const QueryNode& node = m_tree.nodes[i];
            if (!m_isCondition[i])
                continue;
            if (node.token.isNegation())
                m_clauses[i] = std::move(m_clauses[std::size_t(node.left)]);
            else if (!isConnective(node))
                m_clauses[i] = {{{int(i), m_isNegated[i]}}};
            else if (isConjunction(i))
                m_clauses[i] = conjunction(takeClauses(node.left), takeClauses(node.right));
            else
                m_clauses[i] = disjunction(takeClauses(node.left), takeClauses(node.right));
        }
        return std::move(m_clauses.back());
    }

private:
    static bool isConnective(const QueryNode& node)
    {
        return node.token.isConjunction() || node.token.isDisjunction();
    }

    /// Whether the connective at @p place is a conjunction once negations stand at conditions only.
    bool isConjunction(std::size_t place) const
    {
        return m_tree.nodes[place].token.isConjunction() != m_isNegated[place];
    }

    Clauses takeClauses(int place) { return std::move(m_clauses[std::size_t(place)]); }

    /// Finds which conditions the normal form is made of, and which of them are negated.
    void pushNegationsDown()
    {
        m_isCondition.assign(m_tree.nodes.size(), false);
        m_isNegated.assign(m_tree.nodes.size(), false);
        m_isCondition.back() = true;
        for (std::size_t i = m_tree.nodes.size(); i-- > 0;) {
            const QueryNode& node = m_tree.nodes[i];
            if (!m_isCondition[i] || !(isConnective(node) || node.token.isNegation()))
                continue;
            for (const int child : {node.left, node.right}) {
                if (child < 0)
                    continue;
                m_isCondition[std::size_t(child)] = true;
                m_isNegated[std::size_t(child)] = m_isNegated[i] != node.token.isNegation();
            }
        }
    }

    static Clauses conjunction(Clauses left, Clauses right)
    {
        std::move(right.begin(), right.end(), std::back_inserter(left));
        return left;
    }

    static Clauses disjunction(Clauses left, const Clauses& right)
    {
        if (right.size() == 1) { // long disjunctions grow in place
            for (Clause& clause : left)
                clause.insert(clause.end(), right.front().begin(), right.front().end());
            return left;
        }
        Clauses product;
        product.reserve(left.size() * right.size());
        for (const Clause& first : left) {
            for (const Clause& second : right) {
                product.push_back(first);
                product.back().insert(product.back().end(), second.begin(), second.end());
            }
        }
        return product;
    }

    const QueryTree& m_tree;
    std::vector<bool> m_isCondition; ///< what is a condition or made of conditions, by place
    std::vector<bool> m_isNegated; ///< likewise
    std::vector<Clauses> m_clauses; ///< of the nodes so far, until their parents take them
};

CNFOperand operandOf(const QueryNode& node)
{
    const QueryToken& token = node.token;
    if (token.isVariable())
        return CNFOperand::fromVariable(token.variableName(), token.variableAttribute());
    return token.isString() ? CNFOperand::fromString(token.value()) : CNFOperand::fromInvalid();
}

/// The operand at @p place, without any two negations that cancel each other out.
CNFOperand operandAt(const QueryTree& tree, int place)
{
    const auto nodeAt = [&tree](int at) -> const QueryNode& { return tree.nodes[std::size_t(at)]; };
    while (nodeAt(place).token.isNegation() && nodeAt(nodeAt(place).left).token.isNegation())
        place = nodeAt(nodeAt(place).left).left;
    return operandOf(nodeAt(place));
}

CNFLiteral literalOf(const QueryTree& tree, const Literal& literal)
{
    const QueryNode& node = tree.nodes[std::size_t(literal.place)];
    if (node.isBareString)
        return {literal.negated, CNFOperand::fromVariable(node.recordName, QStringLiteral("any")),
                QStringLiteral("%contains"), operandOf(node)};
    if (node.token.isVariable())
        return {literal.negated, operandOf(node)};
    return {literal.negated, operandAt(tree, node.left), node.token.operatorText(),
            operandAt(tree, node.right)};
}

} // namespace

void buildNormalForm(const QueryTree& tree, ConjunctiveNormalForm& form, QList<QueryError>& errors)
{
    Normaliser normaliser(tree);
    if (normaliser.isTooLarge()) {
        errors.append(tooComplex(tree.query, 0));
        return;
    }
    const Clauses clauses = normaliser.run();
    for (const Clause& clause : clauses) {
        form.addDisjunction(CNFDisjunction());
        CNFDisjunction* disjunction = form.lastDisjunction();
        for (const Literal& literal : clause)
            disjunction->addLiteral(literalOf(tree, literal));
    }
}

} // namespace tresk
