#ifndef TRESK_TESTS_LANGUAGEMODEL_H
#define TRESK_TESTS_LANGUAGEMODEL_H

#include <tresk/ConjunctiveNormalForm.h>
#include <tresk/QueryError.h>

#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

namespace tresktest {

// The query language written as plainly as it can be described, stage by stage: tokens are cut by
// regular expressions, trees are rewritten in copies. The real compiler is compared with it.

struct ModelToken {
    enum Kind { Variable = 1, String = 2, Operator = 4 };

    Kind kind;
    QString name; ///< of variables
    QString attribute; ///< likewise
    QString value; ///< of strings
    QString op; ///< of operators
    QString originalText;
    int position = -1;
    int precedence = -1;
    char associativity = 'x';
    int arity = -1;
};

ModelToken modelOperator(const QString& op, const QString& originalText, int position);

struct ModelNode;
using ModelNodePointer = QSharedPointer<ModelNode>;

struct ModelNode {
    ModelToken token;
    QList<ModelNodePointer> children;
    QString text;
    int position = -1;

    bool isOperator(const char* op) const;
    bool isConjunction() const;
    bool isDisjunction() const;
};

QList<ModelToken> modelTokenize(const QString& query, QList<tresk::QueryError>& errors);
QList<ModelToken> modelStructure(const QList<ModelToken>& tokens, QList<tresk::QueryError>& errors);
ModelNodePointer modelParse(const QString& query, const QList<ModelToken>& tokens);
void modelCheckTypes(const ModelNodePointer& root, QList<tresk::QueryError>& errors);
tresk::ConjunctiveNormalForm modelNormalForm(ModelNodePointer root);

/// As the library's tokens are written.
QStringList textOf(const QList<ModelToken>& tokens);

/// @p text with a letter for each surrogate, for matchers that take well-formed texts only.
QString withoutSurrogates(QString text);

/// All stages, up to the first that finds something.
tresk::ConjunctiveNormalForm modelCompile(const QString& query, QList<tresk::QueryError>& errors);

} // namespace tresktest

#endif
