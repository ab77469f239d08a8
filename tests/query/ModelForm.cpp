#include "ModelForm.h"

namespace tresktest {

namespace {

ModelOperand modelOperandOf(const tresk::CNFOperand& operand)
{
    if (operand.isString())
        return {ModelOperand::Text, operand.string(), QString()};
    if (operand.isVariable())
        return {ModelOperand::Attribute, operand.variableAttribute(), operand.variableName()};
    return {};
}

} // namespace

QStringList namesOf(const ModelForm& form)
{
    QStringList names;
    for (const QList<ModelLiteral>& disjunction : form) {
        for (const ModelLiteral& literal : disjunction) {
            for (const ModelOperand& operand : {literal.left, literal.right}) {
                if (operand.kind == ModelOperand::Attribute && !names.contains(operand.name))
                    names += operand.name;
            }
        }
    }
    return names;
}

ModelForm modelFormOf(const tresk::ConjunctiveNormalForm& form)
{
    ModelForm model;
    for (int i = 0; i < form.numDisjunctions(); ++i) {
        model += QList<ModelLiteral>();
        for (int j = 0; j < form.disjunctionAt(i)->numLiterals(); ++j) {
            const tresk::CNFLiteral& literal = *form.disjunctionAt(i)->literalAt(j);
            model.last() += {literal.isNegated(), literal.op(), modelOperandOf(literal.left()),
                             modelOperandOf(literal.right())};
        }
    }
    return model;
}

} // namespace tresktest
