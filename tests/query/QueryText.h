#ifndef TRESK_TESTS_QUERYTEXT_H
#define TRESK_TESTS_QUERYTEXT_H

#include "query/QueryToken.h"
#include "query/QueryTree.h"

#include <tresk/ConjunctiveNormalForm.h>
#include <tresk/QueryError.h>

#include <QList>
#include <QString>
#include <QStringList>

#include <vector>

namespace tresktest {

inline QString str(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

/// `variable(file,hash)`, `string(report)` or `operator(&&)`, followed by `[original text]` and
/// `@position`.
QString textOf(const tresk::QueryToken& token);
QStringList textOf(const std::vector<tresk::QueryToken>& tokens);

/// Each finding as `position [original text] message`, with "warning " in front of what is no
/// error. Line feeds of the message stand as they are.
QStringList textOf(const QList<tresk::QueryError>& errors);

/// The tree with brackets around every operator and its operands, and texts in quotes:
/// `("a" && (! f:iswfs))`.
QString textOf(const tresk::QueryTree& tree);

/// `"text"`, `name:attribute` or `invalid`.
QString textOf(const tresk::CNFOperand& operand);
/// `(left op right)` or `name:attribute`, with "!" in front of a negated one.
QString textOf(const tresk::CNFLiteral& literal);
/// The disjunctions, each as its literals with " || " between them.
QStringList textOf(const tresk::ConjunctiveNormalForm& form);

/// What became of a query: its findings or its normal form.
struct CompiledQuery {
    QList<tresk::QueryError> errors;
    tresk::ConjunctiveNormalForm form;
};

/// Compiles @p query by the stages of the library.
CompiledQuery compile(const QString& query);

/// The findings of @p query, and of a normal form its disjunctions.
QStringList findingsOf(const QString& query);
QStringList normalFormOf(const QString& query);

} // namespace tresktest

#endif
