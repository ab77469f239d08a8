#ifndef TRESK_TESTS_RANDOMTEXT_H
#define TRESK_TESTS_RANDOMTEXT_H

#include <QRandomGenerator>
#include <QString>

namespace tresktest {

/// Tokens, halves of tokens and odd characters in any order.
QString randomPieces(QRandomGenerator& random);

/// A query that keeps to the grammar, and mostly to the types, with at most 8 conditions.
QString randomExpression(QRandomGenerator& random);

/// Takes a few characters out of @p query or puts a piece in.
void damageQuery(QString& query, QRandomGenerator& random);

} // namespace tresktest

#endif
