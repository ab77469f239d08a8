#ifndef TRESK_ARGS_ARGFILEVARIABLES_H
#define TRESK_ARGS_ARGFILEVARIABLES_H

#include <QHash>
#include <QString>

namespace tresk {

/// @p text, which is no string in quotes, with values for its variables, so escaped that they are
/// taken literally. Takes time in proportion to the lengths of both.
QString replaceVariables(const QString& text, const QHash<QString, QString>& variables);

} // namespace tresk

#endif
