#ifndef TRESK_APPS_MANUALPAGE_H
#define TRESK_APPS_MANUALPAGE_H

#include <CommandLine.h>

#include <QString>

namespace tresk::cli {

/// The manual page of @p command; @p date, a day, is that of the release, or empty.
QString manualPage(const Command& command, const QString& date);
/// The manual page `tresk`, which tells of all commands.
QString generalManualPage(const QString& date);

} // namespace tresk::cli

#endif
