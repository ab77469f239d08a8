#ifndef TRESK_TESTS_PARSERPROPERTIES_H
#define TRESK_TESTS_PARSERPROPERTIES_H

#include <QHash>
#include <QString>

namespace tresktest {

/// What must hold of the parser and any text, found out without a model.

/// Where there are tokens, they are all of @p content, and nothing else is.
bool tokensCover(const QString& content);
/// The arguments are what stands between separators, as an editor shows it, as many of them with
/// @p table as without, and the same where there is no dollar sign.
bool argumentsAreRunsOfTokens(const QString& content, const QHash<QString, QString>& table);
/// Nothing of @p content is lost between quotes, or where all of it is escaped.
bool comesOutWhole(const QString& content, const QHash<QString, QString>* table);

} // namespace tresktest

#endif
