#ifndef TRESK_CONJUNCTIVENORMALFORM_H
#define TRESK_CONJUNCTIVENORMALFORM_H

#include <tresk/Export.h>

#include <QList>
#include <QMultiHash>
#include <QSet>
#include <QString>

namespace tresk {

/// One side of a comparison: a text, or an attribute of a record.
class TRESK_EXPORT CNFOperand {
public:
    /// An operand that has no value; all its texts are empty.
    static CNFOperand fromInvalid();
    /// The text @p text itself.
    static CNFOperand fromString(const QString& text);
    /// The attribute @p attribute ("filepath", "user:key") of the record called @p name.
    static CNFOperand fromVariable(const QString& name, const QString& attribute);

    /// @{
    /// What kind of operand it is: exactly one of the three holds.
    bool isInvalid() const { return m_type == Invalid; }
    bool isString() const { return m_type == String; }
    bool isVariable() const { return m_type == Variable; }
    /// @}
    QString variableName() const { return m_variableName; } ///< empty unless a variable
    QString variableAttribute() const { return m_variableAttribute; } ///< likewise
    QString string() const { return m_string; } ///< empty unless a string

private:
    enum Type { Invalid = 0, String = 1, Variable = 2 };

    CNFOperand() = default;

    Type m_type = Invalid;
    QString m_variableName;
    QString m_variableAttribute;
    QString m_string;
};

/// A comparison of two operands, or a boolean attribute; either may be negated.
class TRESK_EXPORT CNFLiteral {
public:
    /// A predicate: @p left compared with @p right by @p op, such as "==" or "%contains".
    CNFLiteral(bool negated, const CNFOperand& left, const QString& op, const CNFOperand& right);
    /// The boolean attribute @p boolVariable.
    CNFLiteral(bool negated, const CNFOperand& boolVariable);
    /// A predicate that never holds: invalid operands and the operator "invalid".
    static CNFLiteral fromInvalid();

    /// @{
    /// What kind of literal it is: exactly one of the two holds.
    bool isBoolVariable() const { return m_type == BoolVariable; }
    bool isPredicate() const { return m_type == Predicate; }
    /// @}
    /// @{
    /// Whether it holds exactly where the comparison or attribute does not.
    bool isNegated() const { return m_negated; }
    void setNegated(bool negated) { m_negated = negated; }
    /// @}
    QString op() const { return m_op; } ///< empty for a boolean attribute
    CNFOperand left() const { return m_left; } ///< for a boolean attribute, the attribute
    CNFOperand right() const { return m_right; } ///< invalid for a boolean attribute
    CNFOperand boolVariable() const { return m_left; } ///< left() by another name
    /// The names of the records that the operands read.
    QSet<QString> variableNames() const;

private:
    enum Type { BoolVariable = 0, Predicate = 1 };

    Type m_type;
    bool m_negated;
    QString m_op;
    CNFOperand m_left;
    CNFOperand m_right;
};

/// Literals of which one has to hold.
class TRESK_EXPORT CNFDisjunction {
public:
    /// How many literals there are; without any it never holds.
    int numLiterals() const { return int(m_literals.size()); }
    /// Literal @p i, owned by the disjunction and valid until it changes; null where there is none.
    const CNFLiteral* literalAt(int i) const;
    /// Adds a copy of @p literal at the end.
    void addLiteral(const CNFLiteral& literal);
    /// For each name the literals that use it, by index.
    QMultiHash<QString, int> variableLocations() const;

private:
    QList<CNFLiteral> m_literals;
};

/// The place of a literal in a normal form.
struct TRESK_EXPORT CNFLiteralIndex {
    /// Literal @p literal of disjunction @p disjunction, both from 0.
    CNFLiteralIndex(int disjunction, int literal)
        : disjunctionIndex(disjunction)
        , literalIndex(literal)
    {
    }

    int disjunctionIndex; ///< of the disjunction in the normal form
    int literalIndex; ///< of the literal in the disjunction
};

/// What a query is compiled to: disjunctions that all have to hold.
class TRESK_EXPORT ConjunctiveNormalForm {
public:
    /// How many disjunctions there are; without any the query always holds.
    int numDisjunctions() const { return int(m_disjunctions.size()); }
    /// Disjunction @p i, owned by the form and valid until it changes; null where there is none.
    const CNFDisjunction* disjunctionAt(int i) const;
    /// Adds a copy of @p disjunction at the end.
    void addDisjunction(const CNFDisjunction& disjunction);
    /// The last disjunction, to be added to; owned by the form and valid until it changes. Null
    /// where there is none.
    CNFDisjunction* lastDisjunction();
    /// Removes all disjunctions.
    void clear();
    /// The literal at @p index, owned by the form and valid until it changes; null where there is
    /// none.
    const CNFLiteral* literalAt(const CNFLiteralIndex& index) const;
    /// For each name the literals that use it.
    QMultiHash<QString, CNFLiteralIndex> variableLocations() const;

private:
    QList<CNFDisjunction> m_disjunctions;
};

} // namespace tresk

#endif
