#include "LanguageModel.h"
#include "QueryText.h"

namespace tresktest {

namespace {

ModelNodePointer copyOf(const ModelNodePointer& node)
{
    const ModelNodePointer copy = ModelNodePointer::create(*node);
    for (ModelNodePointer& child : copy->children)
        child = copyOf(child);
    return copy;
}

ModelNodePointer operatorNode(const char* op, const QList<ModelNodePointer>& children)
{
    const ModelNodePointer node = ModelNodePointer::create();
    node->token = modelOperator(str(op), QString(), -1);
    node->children = children;
    return node;
}

bool isConnective(const ModelNodePointer& node)
{
    return node->isConjunction() || node->isDisjunction() || node->isOperator("!");
}

/// Replaces texts that stand for a condition by searches in all attributes.
ModelNodePointer withoutBareStrings(const ModelNodePointer& node)
{
    if (node->token.kind == ModelToken::String) {
        const ModelNodePointer variable = ModelNodePointer::create(*node);
        variable->token = {ModelToken::Variable, {}, str("any"), {}, {}, {}, -1};
        return operatorNode("%contains", {variable, node});
    }
    if (isConnective(node)) {
        for (ModelNodePointer& child : node->children)
            child = withoutBareStrings(child);
    }
    return node;
}

void nameUnnamed(const ModelNodePointer& node, int& count)
{
    if (node->token.kind == ModelToken::Variable && node->token.name.isEmpty())
        node->token.name = str("@unnamed-%1").arg(++count);
    for (const ModelNodePointer& child : node->children)
        nameUnnamed(child, count);
}

// Rules are applied until none applies any more; those of negations first, since multiplying out
// what is negated afterwards would double conditions.

ModelNodePointer withNegationsInside(const ModelNodePointer& node)
{
    if (node->isOperator("!")) {
        const ModelNodePointer inner = node->children.first();
        if (inner->isOperator("!"))
            return withNegationsInside(inner->children.first());
        if (inner->isConjunction() || inner->isDisjunction())
            return withNegationsInside(operatorNode(inner->isConjunction() ? "||" : "&&",
                                                    {operatorNode("!", {inner->children.first()}),
                                                     operatorNode("!", {inner->children.last()})}));
    }
    for (ModelNodePointer& child : node->children)
        child = withNegationsInside(child);
    return node;
}

ModelNodePointer multipliedOut(const ModelNodePointer& node)
{
    for (ModelNodePointer& child : node->children)
        child = multipliedOut(child);
    if (!node->isDisjunction())
        return node;
    const ModelNodePointer left = node->children.first();
    const ModelNodePointer right = node->children.last();
    if (left->isConjunction())
        return multipliedOut(
            operatorNode("&&",
                         {operatorNode("||", {left->children.first(), right}),
                          operatorNode("||", {left->children.last(), copyOf(right)})}));
    if (right->isConjunction())
        return multipliedOut(
            operatorNode("&&",
                         {operatorNode("||", {left, right->children.first()}),
                          operatorNode("||", {copyOf(left), right->children.last()})}));
    return node;
}

tresk::CNFOperand operandOf(const ModelNodePointer& node)
{
    const ModelToken& token = node->token;
    if (token.kind == ModelToken::Variable)
        return tresk::CNFOperand::fromVariable(token.name, token.attribute);
    if (token.kind == ModelToken::String)
        return tresk::CNFOperand::fromString(token.value);
    return tresk::CNFOperand::fromInvalid();
}

tresk::CNFLiteral literalOf(const ModelNodePointer& node)
{
    if (node->isOperator("!")) {
        tresk::CNFLiteral literal = literalOf(node->children.first());
        literal.setNegated(true);
        return literal;
    }
    if (node->token.arity == 2)
        return {false, operandOf(node->children.first()), node->token.op,
                operandOf(node->children.last())};
    if (node->token.kind == ModelToken::Variable)
        return {false, operandOf(node)};
    return tresk::CNFLiteral::fromInvalid();
}

void addDisjunction(const ModelNodePointer& node, tresk::ConjunctiveNormalForm& form)
{
    if (!node->isDisjunction()) {
        form.lastDisjunction()->addLiteral(literalOf(node));
        return;
    }
    for (const ModelNodePointer& child : node->children)
        addDisjunction(child, form);
}

void addConjunction(const ModelNodePointer& node, tresk::ConjunctiveNormalForm& form)
{
    if (!node->isConjunction()) {
        form.addDisjunction(tresk::CNFDisjunction());
        addDisjunction(node, form);
        return;
    }
    for (const ModelNodePointer& child : node->children)
        addConjunction(child, form);
}

} // namespace

tresk::ConjunctiveNormalForm modelNormalForm(ModelNodePointer root)
{
    root = withoutBareStrings(root);
    int count = 0;
    nameUnnamed(root, count);
    tresk::ConjunctiveNormalForm form;
    addConjunction(multipliedOut(withNegationsInside(root)), form);
    return form;
}

} // namespace tresktest
