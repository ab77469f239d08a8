#ifndef TRESK_TESTS_RANDOMQUERY_H
#define TRESK_TESTS_RANDOMQUERY_H

#include "QueryModel.h"

#include <QList>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

namespace tresktest {

/// A condition made of others, or a literal.
struct ModelTree {
    enum Kind { Literal, Not, And, Or };
    Kind kind = Literal;
    ModelLiteral literal;
    QList<ModelTree> children;
};

/// Makes records of few different values, and queries about them that are valid and have at most
/// four names. The names of unnamed records are "@unnamed-1", "@unnamed-2", ... from left to right.
class RandomQuery {
public:
    explicit RandomQuery(quint32 seed)
        : m_random(seed)
    {
    }

    /// Up to six records.
    QList<tresk::Summary> records();

    /// A conjunction of disjunctions, some of whose literals have no value.
    ModelForm form();
    QString textOf(const ModelForm& form);

    /// Conditions in all combinations; without unnamed records if @p isNamed.
    ModelTree tree(bool isNamed);
    QString textOf(const ModelTree& tree);

private:
    int number(int from, int to) { return m_random.bounded(from, to + 1); }
    bool oneIn(int count) { return m_random.bounded(count) == 0; }
    QString oneOf(const QStringList& list) { return list.at(number(0, int(list.size()) - 1)); }
    QString oneOf(const char* words);

    void startNames(bool isNamed);
    bool takeName(ModelOperand& operand);
    ModelOperand attributeOr(const char* attributes, const QStringList& texts);
    ModelLiteral literal();
    ModelLiteral literalWithoutValue();
    ModelTree treeOfDepth(int depth);
    QString textOf(const ModelOperand& operand);
    QString textOf(const ModelLiteral& literal);

    QRandomGenerator m_random;
    QStringList m_names; ///< in use, so far
    int m_mostNames = 0;
    int m_unnamed = 0;
    bool m_isNamed = false;
};

} // namespace tresktest

#endif
