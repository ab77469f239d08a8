#ifndef TRESK_TESTS_PARSERPROPERTIES_H
#define TRESK_TESTS_PARSERPROPERTIES_H

#include <QHash>
#include <QString>

/// What must hold of the parser of argument files and any text.
namespace tresktest {

/// The parser takes @p content apart as its model does.
bool tokensAreThoseOfTheModel(const QString& content);
bool argumentsAreThoseOfTheModel(const QString& content, const QHash<QString, QString>* table);

/// Where there are tokens, they are all of @p content, and nothing else is.
bool tokensCover(const QString& content);
/// The arguments are what stands between separators, as an editor shows it, as many of them with
/// @p table as without, and the same where there is no dollar sign.
bool argumentsAreRunsOfTokens(const QString& content, const QHash<QString, QString>& table);
/// Nothing of @p content is lost between quotes, or where all of it is escaped.
bool comesOutWhole(const QString& content, const QHash<QString, QString>* table);

} // namespace tresktest

#endif
