#include <tresk/ConjunctiveNormalForm.h>

namespace tresk {

CNFOperand CNFOperand::fromInvalid()
{
    return {};
}

CNFOperand CNFOperand::fromString(const QString& text)
{
    CNFOperand operand;
    operand.m_type = String;
    operand.m_string = text;
    return operand;
}

CNFOperand CNFOperand::fromVariable(const QString& name, const QString& attribute)
{
    CNFOperand operand;
    operand.m_type = Variable;
    operand.m_variableName = name;
    operand.m_variableAttribute = attribute;
    return operand;
}

CNFLiteral::CNFLiteral(bool negated, const CNFOperand& left, const QString& op,
                       const CNFOperand& right)
    : m_type(Predicate)
    , m_negated(negated)
    , m_op(op)
    , m_left(left)
    , m_right(right)
{
}

CNFLiteral::CNFLiteral(bool negated, const CNFOperand& boolVariable)
    : m_type(BoolVariable)
    , m_negated(negated)
    , m_left(boolVariable)
    , m_right(CNFOperand::fromInvalid())
{
}

CNFLiteral CNFLiteral::fromInvalid()
{
    const CNFOperand invalid = CNFOperand::fromInvalid();
    return {false, invalid, QStringLiteral("invalid"), invalid};
}

QSet<QString> CNFLiteral::variableNames() const
{
    QSet<QString> names;
    for (const CNFOperand* operand : {&m_left, &m_right}) {
        if (operand->isVariable())
            names.insert(operand->variableName());
    }
    return names;
}

const CNFLiteral* CNFDisjunction::literalAt(int i) const
{
    return i >= 0 && i < m_literals.size() ? &m_literals.at(i) : nullptr;
}

void CNFDisjunction::addLiteral(const CNFLiteral& literal)
{
    m_literals.append(literal);
}

QMultiHash<QString, int> CNFDisjunction::variableLocations() const
{
    QMultiHash<QString, int> locations;
    for (int i = 0; i < m_literals.size(); ++i) {
        const QSet<QString> names = m_literals.at(i).variableNames();
        for (const QString& name : names)
            locations.insert(name, i);
    }
    return locations;
}

const CNFDisjunction* ConjunctiveNormalForm::disjunctionAt(int i) const
{
    return i >= 0 && i < m_disjunctions.size() ? &m_disjunctions.at(i) : nullptr;
}

void ConjunctiveNormalForm::addDisjunction(const CNFDisjunction& disjunction)
{
    m_disjunctions.append(disjunction);
}

CNFDisjunction* ConjunctiveNormalForm::lastDisjunction()
{
    return m_disjunctions.isEmpty() ? nullptr : &m_disjunctions.last();
}

void ConjunctiveNormalForm::clear()
{
    m_disjunctions.clear();
}

const CNFLiteral* ConjunctiveNormalForm::literalAt(const CNFLiteralIndex& index) const
{
    const CNFDisjunction* disjunction = disjunctionAt(index.disjunctionIndex);
    return disjunction ? disjunction->literalAt(index.literalIndex) : nullptr;
}

QMultiHash<QString, CNFLiteralIndex> ConjunctiveNormalForm::variableLocations() const
{
    QMultiHash<QString, CNFLiteralIndex> locations;
    for (int i = 0; i < m_disjunctions.size(); ++i) {
        const QMultiHash<QString, int> literals = m_disjunctions.at(i).variableLocations();
        for (auto literal = literals.begin(); literal != literals.end(); ++literal)
            locations.insert(literal.key(), CNFLiteralIndex(i, literal.value()));
    }
    return locations;
}

} // namespace tresk
