#ifndef TRESK_TESTS_MODELFORM_H
#define TRESK_TESTS_MODELFORM_H

#include <tresk/ConjunctiveNormalForm.h>

#include <QList>
#include <QString>
#include <QStringList>

namespace tresktest {

/// One side of a comparison.
struct ModelOperand {
    enum Kind {
        Nothing, ///< what has no value, such as a condition in brackets
        Text,
        Attribute
    };
    Kind kind = Nothing;
    QString text; ///< the text, or the name of the attribute
    QString name; ///< of the record; one that begins with "@" may share it with others
};

/// A comparison or, where op is empty, a boolean attribute: the left side.
struct ModelLiteral {
    bool negated = false;
    QString op;
    ModelOperand left;
    ModelOperand right;
};

using ModelForm = QList<QList<ModelLiteral>>;

/// The names of @p form in the order of their first appearance.
QStringList namesOf(const ModelForm& form);

/// What @p form holds, as the model has it.
ModelForm modelFormOf(const tresk::ConjunctiveNormalForm& form);

} // namespace tresktest

#endif
