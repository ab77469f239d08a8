#ifndef TRESK_APPS_DOT_H
#define TRESK_APPS_DOT_H

#include <QString>

namespace tresk::cli {

/// @p text as a quoted string of Graphviz's language, in which it stands for itself. Its lines
/// stay lines; all else in it is made printable.
QString dotText(const QString& text);

} // namespace tresk::cli

#endif
