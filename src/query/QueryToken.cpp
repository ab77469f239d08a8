#include "query/QueryToken.h"

#include <algorithm>
#include <iterator>

namespace tresk {

namespace {

struct OperatorKind {
    QLatin1String text;
    int precedence;
    char associativity;
    int arity;
};

// A disjunction binds tighter than a conjunction: "a || b && c || d" is a conjunction of two
// disjunctions, the shape that every query is brought to.
const OperatorKind operatorKinds[] = {
    {QLatin1String("!"), 9, 'r', 1},           {QLatin1String("&&"), 2, 'l', 2},
    {QLatin1String("implizit &&"), 2, 'l', 2}, {QLatin1String("||"), 3, 'l', 2},
    {QLatin1String("=="), 4, 'l', 2},          {QLatin1String("!="), 4, 'l', 2},
    {QLatin1String("<"), 5, 'l', 2},           {QLatin1String("<="), 5, 'l', 2},
    {QLatin1String(">"), 5, 'l', 2},           {QLatin1String(">="), 5, 'l', 2},
    {QLatin1String("%contains"), 6, 'l', 2},   {QLatin1String("%matches"), 6, 'l', 2},
    {QLatin1String("%isapprox"), 6, 'l', 2},   {QLatin1String("("), 0, 'x', 0},
    {QLatin1String(")"), 0, 'x', 0},           {QLatin1String("EOS"), -100, 'x', 0},
};

} // namespace

QueryToken::QueryToken(Kind kind, const QString& text, const QString& originalText, int position)
    : m_kind(kind)
    , m_text(text)
    , m_originalText(originalText)
    , m_position(position)
{
}

QueryToken QueryToken::variable(const QString& name, const QString& attribute,
                                const QString& originalText, int position)
{
    QueryToken token(Variable, name, originalText, position);
    token.m_attribute = attribute;
    return token;
}

QueryToken QueryToken::string(const QString& value, const QString& originalText, int position)
{
    return {String, value, originalText, position};
}

QueryToken QueryToken::op(const QString& text, const QString& originalText, int position)
{
    QueryToken token(Operator, text, originalText, position);
    const auto kind = std::find_if(std::begin(operatorKinds), std::end(operatorKinds),
                                   [&](const OperatorKind& k) { return k.text == text; });
    if (kind != std::end(operatorKinds)) {
        token.m_precedence = kind->precedence;
        token.m_associativity = kind->associativity;
        token.m_arity = kind->arity;
    }
    return token;
}

QueryToken QueryToken::implicitConjunction(int position)
{
    return op(QStringLiteral("implizit &&"), QString(), position);
}

QueryToken QueryToken::endMarker()
{
    return op(QStringLiteral("EOS"), QString(), -1);
}

void QueryToken::setPrecedence(int precedence)
{
    if (isOperator())
        m_precedence = precedence;
}

void QueryToken::setVariableName(const QString& name)
{
    if (isVariable())
        m_text = name;
}

} // namespace tresk
