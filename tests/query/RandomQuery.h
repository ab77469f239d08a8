#ifndef TRESK_TESTS_RANDOMQUERY_H
#define TRESK_TESTS_RANDOMQUERY_H

#include "QueryModel.h"

#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <functional>

namespace tresktest {

/// A condition made of others, or a literal.
struct ModelCondition {
    enum Kind { Literal, Not, And, Or };
    Kind kind = Literal;
    ModelLiteral literal;
    QList<ModelCondition> children;
};

/// Whether @p condition holds of the records in @p places.
bool holds(const QueryModel& model, const ModelCondition& condition, const ModelPlaces& places);

/// Makes records of few different values, and queries about them that are valid and have at most
/// four names. The names of unnamed records are "@unnamed-1", "@unnamed-2", ... from left to right.
class RandomQuery {
public:
    explicit RandomQuery(quint32 seed);
    /// Has @p below choose numbers from 0 to one less than its argument.
    explicit RandomQuery(const std::function<int(int)>& below);

    /// Up to six records.
    QList<tresk::Summary> records();

    /// A conjunction of disjunctions, some of whose literals have no value.
    ModelForm form();
    QString textOf(const ModelForm& form);

    /// Conditions in all combinations; without unnamed records if @p isNamed.
    ModelCondition tree(bool isNamed);
    QString textOf(const ModelCondition& tree);

private:
    int number(int from, int to) { return from + m_below(to - from + 1); }
    bool oneIn(int count) { return m_below(count) == 0; }
    QString oneOf(const QStringList& list) { return list.at(number(0, int(list.size()) - 1)); }
    QString oneOf(const char* words);

    void startNames(bool isNamed);
    bool takeName(ModelOperand& operand);
    ModelOperand attributeOr(const char* attributes, const QStringList& texts);
    ModelLiteral literal();
    ModelLiteral literalWithoutValue();
    ModelCondition treeOfDepth(int depth);
    QString textOf(const ModelOperand& operand);
    QString textOf(const ModelLiteral& literal);

    std::function<int(int)> m_below;
    QStringList m_names; ///< in use, so far
    int m_mostNames = 0;
    int m_unnamed = 0;
    bool m_isNamed = false;
};

} // namespace tresktest

#endif
