#include "QueryText.h"

#include "query/QueryCompiler.h"

namespace tresktest {

namespace {

QString inQuotes(const QString& text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

QString textOfNode(const tresk::QueryTree& tree, int place)
{
    const tresk::QueryNode& node = tree.nodes[std::size_t(place)];
    if (node.token.isVariable())
        return node.token.variableName() + QLatin1Char(':') + node.token.variableAttribute();
    if (node.token.isString())
        return inQuotes(node.token.value());
    QStringList parts;
    if (node.right >= 0)
        parts << textOfNode(tree, node.left) << node.token.operatorText()
              << textOfNode(tree, node.right);
    else
        parts << node.token.operatorText() << textOfNode(tree, node.left);
    return QLatin1Char('(') + parts.join(QLatin1Char(' ')) + QLatin1Char(')');
}

} // namespace

QString textOf(const tresk::QueryToken& token)
{
    QString content = QStringLiteral("none");
    if (token.isVariable())
        content =
            QStringLiteral("variable(%1,%2)").arg(token.variableName(), token.variableAttribute());
    else if (token.isString())
        content = QStringLiteral("string(%1)").arg(token.value());
    else if (token.isOperator())
        content = QStringLiteral("operator(%1)").arg(token.operatorText());
    return QStringLiteral("%1[%2]@%3")
        .arg(content, token.originalText(), QString::number(token.position()));
}

QStringList textOf(const std::vector<tresk::QueryToken>& tokens)
{
    QStringList lines;
    for (const tresk::QueryToken& token : tokens)
        lines += textOf(token);
    return lines;
}

QStringList textOf(const QList<tresk::QueryError>& errors)
{
    QStringList lines;
    for (const tresk::QueryError& error : errors) {
        lines += QStringLiteral("%1%2 [%3] %4")
                     .arg(error.isError() ? QString() : QStringLiteral("warning "),
                          QString::number(error.position()), error.originalText(),
                          error.errorMessage());
    }
    return lines;
}

QString textOf(const tresk::QueryTree& tree)
{
    return tree.nodes.empty() ? QString() : textOfNode(tree, int(tree.nodes.size()) - 1);
}

QString textOf(const tresk::CNFOperand& operand)
{
    if (operand.isVariable())
        return operand.variableName() + QLatin1Char(':') + operand.variableAttribute();
    return operand.isString() ? inQuotes(operand.string()) : QStringLiteral("invalid");
}

QString textOf(const tresk::CNFLiteral& literal)
{
    const QString negation = literal.isNegated() ? QStringLiteral("!") : QString();
    if (literal.isBoolVariable())
        return negation + textOf(literal.boolVariable());
    return QStringLiteral("%1(%2 %3 %4)")
        .arg(negation, textOf(literal.left()), literal.op(), textOf(literal.right()));
}

QStringList textOf(const tresk::ConjunctiveNormalForm& form)
{
    QStringList lines;
    for (int i = 0; i < form.numDisjunctions(); ++i) {
        QStringList literals;
        for (int j = 0; j < form.disjunctionAt(i)->numLiterals(); ++j)
            literals += textOf(*form.disjunctionAt(i)->literalAt(j));
        lines += literals.join(QStringLiteral(" || "));
    }
    return lines;
}

CompiledQuery compile(const QString& query)
{
    CompiledQuery compiled;
    const tresk::QueryTree tree = tresk::compileQuery(query, compiled.errors);
    if (!tree.nodes.empty())
        tresk::buildNormalForm(tree, compiled.form, compiled.errors);
    return compiled;
}

QStringList findingsOf(const QString& query)
{
    return textOf(compile(query).errors);
}

QStringList normalFormOf(const QString& query)
{
    return textOf(compile(query).form);
}

} // namespace tresktest
