#ifndef TRESK_APPS_ARGUMENTJSON_H
#define TRESK_APPS_ARGUMENTJSON_H

#include "ArgumentFile.h"

#include <QJsonArray>
#include <QJsonObject>

namespace tresk::cli {

/// What @p options say, and how they read as a command line; all but the files.
QJsonObject optionsJson(const ArgFile& options);
QJsonObject wsFileJson(const WSFile& file);
QJsonObject tokenJson(const ArgfileToken& token);
QJsonArray messagesJson(const QList<ArgumentMessage>& messages);

} // namespace tresk::cli

#endif
