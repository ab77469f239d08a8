#ifndef TRESK_QUERY_QUERYTOKEN_H
#define TRESK_QUERY_QUERYTOKEN_H

#include <QString>

namespace tresk {

/// A word of a query: an attribute of a record, a text or an operator.
///
/// What belongs to another kind of token reads as empty, -1 or 'x'.
class QueryToken {
public:
    QueryToken() = default;

    /// The attribute @p attribute of the record called @p name, which is empty for an unnamed one.
    static QueryToken variable(const QString& name, const QString& attribute,
                               const QString& originalText, int position);
    static QueryToken string(const QString& value, const QString& originalText, int position);
    /// The operator @p text, whose precedence, associativity and arity follow from its text.
    static QueryToken op(const QString& text, const QString& originalText, int position);
    /// The conjunction that is meant where two operands follow each other, in front of what stands
    /// at @p position.
    static QueryToken implicitConjunction(int position);
    /// What stands behind the last token and binds less tightly than all operators.
    static QueryToken endMarker();

    bool isVariable() const { return m_kind == Variable; }
    bool isString() const { return m_kind == String; }
    bool isOperator() const { return m_kind == Operator; }
    bool isOperator(QLatin1String text) const { return isOperator() && m_text == text; }
    /// A conjunction or disjunction, written or implicit.
    bool isConjunction() const { return isOperator() && m_text.contains(QLatin1String("&&")); }
    bool isDisjunction() const { return isOperator() && m_text.contains(QLatin1String("||")); }
    bool isNegation() const { return isOperator(QLatin1String("!")); }

    QString variableName() const { return isVariable() ? m_text : QString(); }
    QString variableAttribute() const { return m_attribute; }
    QString value() const { return isString() ? m_text : QString(); }
    QString operatorText() const { return isOperator() ? m_text : QString(); }
    int precedence() const { return m_precedence; } ///< the larger, the tighter
    char associativity() const { return m_associativity; } ///< 'l', 'r' or, for none, 'x'
    int arity() const { return m_arity; } ///< number of operands
    /// The characters of the query that made the token; none for an implied one.
    QString originalText() const { return m_originalText; }
    /// Where these begin, in UTF-16 code units from 0; -1 for the end marker.
    int position() const { return m_position; }
    int length() const { return int(m_originalText.size()); }

    void setPrecedence(int precedence);
    void setVariableName(const QString& name);

private:
    enum Kind { None = 0, Variable = 1, String = 2, Operator = 4 };

    QueryToken(Kind kind, const QString& text, const QString& originalText, int position);

    Kind m_kind = None;
    QString m_text; ///< name, value or operator text
    QString m_attribute;
    int m_precedence = -1;
    char m_associativity = 'x';
    int m_arity = -1;
    QString m_originalText;
    int m_position = -1;
};

} // namespace tresk

#endif
