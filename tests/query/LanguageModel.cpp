#include "LanguageModel.h"

#include "QueryText.h"

namespace tresktest {

using tresk::QueryError;

namespace {

QueryError errorAt(const ModelToken& token, const QString& message)
{
    return {message, tresk::QueryErrorTypeError, token.position, token.originalText};
}

/// The tokens from @p index on that are to be kept; @p index comes to stand behind them, or is
/// negative where something is wrong.
QList<ModelToken> scan(const QList<ModelToken>& tokens, int& index, bool insideBracket,
                       QList<QueryError>& errors)
{
    QList<ModelToken> kept;
    bool operandComplete = false;
    while (index < tokens.size()) {
        const ModelToken token = tokens.at(index);
        const bool isOperand = token.kind != ModelToken::Operator;
        const bool opens = token.op == str("(");
        if (operandComplete && token.op == str(")")) {
            if (!insideBracket) {
                errors += errorAt(token,
                                  str("Error at position %1:\n found a closing  bracket ) but did "
                                      "not except one.")
                                      .arg(token.position));
                index = -1;
                return {};
            }
            kept += token;
            ++index;
            return kept;
        }
        if (operandComplete && token.arity == 2) {
            kept += token;
            operandComplete = false;
            ++index;
            continue;
        }
        if (operandComplete)
            kept += modelOperator(str("implizit &&"), QString(), token.position);
        if (opens) {
            kept += token;
            ++index;
            kept += scan(tokens, index, true, errors);
            if (index < 0)
                return {};
            operandComplete = true;
        } else if (token.op == str("!") || isOperand) {
            kept += token;
            operandComplete = isOperand;
            ++index;
        } else {
            errors += errorAt(
                token,
                str("Error at position %1:\n expected a string, a variable, an open bracket '(' or "
                    "an unary operator (e.g. !), but found '%2'.")
                    .arg(QString::number(token.position), token.originalText));
            index = -1;
            return {};
        }
    }
    if (tokens.isEmpty()) {
        errors += QueryError(str("Error after position 0:\n query is empty."),
                             tresk::QueryErrorTypeError, 0, QString());
        index = -1;
    } else if (insideBracket || !operandComplete) {
        const ModelToken& last = tokens.last();
        errors += errorAt(
            last,
            str("Error after position %1:\n premature end of query  after %2.")
                .arg(QString::number(last.position + last.originalText.size()), last.originalText));
        index = -1;
    }
    return index < 0 ? QList<ModelToken>() : kept;
}

ModelNodePointer newNode(const ModelToken& token)
{
    const ModelNodePointer node = ModelNodePointer::create();
    node->token = token;
    node->text = token.originalText;
    node->position = token.position;
    return node;
}

void reduce(const QString& query, const ModelToken& op, QList<ModelNodePointer>& operands)
{
    const ModelNodePointer node = newNode(op);
    int end = 0;
    for (int i = 0; i < op.arity; ++i) {
        const ModelNodePointer child = operands.takeLast();
        node->children.prepend(child);
        node->position = i == 0 ? child->position : qMin(node->position, child->position);
        end = qMax(end, child->position + int(child->text.size()));
    }
    node->text = query.mid(node->position, end - node->position);
    operands += node;
}

} // namespace

ModelToken modelOperator(const QString& op, const QString& originalText, int position)
{
    ModelToken token{ModelToken::Operator, {}, {}, {}, op, originalText, position};
    const auto isOneOf = [&op](const QStringList& ops) { return ops.contains(op); };
    if (isOneOf({str("&&"), str("implizit &&")}))
        token.precedence = 2;
    if (isOneOf({str("||")}))
        token.precedence = 3;
    if (isOneOf({str("=="), str("!=")}))
        token.precedence = 4;
    if (isOneOf({str("<"), str("<="), str(">"), str(">=")}))
        token.precedence = 5;
    if (isOneOf({str("%contains"), str("%matches"), str("%isapprox")}))
        token.precedence = 6;
    if (token.precedence > 0) {
        token.associativity = 'l';
        token.arity = 2;
    } else if (op == str("!")) {
        token.precedence = 9;
        token.associativity = 'r';
        token.arity = 1;
    } else {
        token.precedence = op == str("EOS") ? -100 : 0;
        token.arity = 0;
    }
    return token;
}

QStringList textOf(const QList<ModelToken>& tokens)
{
    QStringList lines;
    for (const ModelToken& token : tokens) {
        QString content = str("operator(%1)").arg(token.op);
        if (token.kind == ModelToken::Variable)
            content = str("variable(%1,%2)").arg(token.name, token.attribute);
        else if (token.kind == ModelToken::String)
            content = str("string(%1)").arg(token.value);
        lines += str("%1[%2]@%3").arg(content, token.originalText, QString::number(token.position));
    }
    return lines;
}

QString withoutSurrogates(QString text)
{
    for (QChar& c : text) {
        if (c.isSurrogate())
            c = QChar(0xe000);
    }
    return text;
}

bool ModelNode::isOperator(const char* op) const
{
    return token.kind == ModelToken::Operator && token.op == str(op);
}

bool ModelNode::isConjunction() const
{
    return token.op.contains(str("&&"));
}

bool ModelNode::isDisjunction() const
{
    return token.op.contains(str("||"));
}

QList<ModelToken> modelStructure(const QList<ModelToken>& tokens, QList<QueryError>& errors)
{
    int index = 0;
    return scan(tokens, index, false, errors);
}

ModelNodePointer modelParse(const QString& query, const QList<ModelToken>& tokens)
{
    int offset = 0;
    QList<ModelNodePointer> operands;
    QList<ModelToken> operators;
    QList<ModelToken> all = tokens;
    all += modelOperator(str("EOS"), QString(), -1);
    for (ModelToken token : all) {
        if (token.kind != ModelToken::Operator) {
            operands += newNode(token);
        } else if (token.op == str("(")) {
            offset += 10;
        } else if (token.op == str(")")) {
            offset -= 10;
        } else {
            token.precedence += offset;
            while (!operators.isEmpty()
                   && (operators.last().precedence > token.precedence
                       || (operators.last().precedence == token.precedence
                           && token.associativity == 'l')))
                reduce(query, operators.takeLast(), operands);
            operators += token;
        }
    }
    return operands.last();
}

tresk::ConjunctiveNormalForm modelCompile(const QString& query, QList<QueryError>& errors)
{
    const QList<ModelToken> tokens = modelTokenize(query, errors);
    if (!errors.isEmpty())
        return {};
    const QList<ModelToken> kept = modelStructure(tokens, errors);
    if (!errors.isEmpty())
        return {};
    const ModelNodePointer root = modelParse(query, kept);
    modelCheckTypes(root, errors);
    return errors.isEmpty() ? modelNormalForm(root) : tresk::ConjunctiveNormalForm();
}

} // namespace tresktest
