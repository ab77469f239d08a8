#ifndef TRESK_APPS_ARGUMENTJSON_H
#define TRESK_APPS_ARGUMENTJSON_H

#include "ArgumentFile.h"

#include <QJsonArray>
#include <QJsonObject>

namespace tresk::cli {

/// What @p options say, and how they read as a command line.
QJsonObject optionsJson(const ArgFile& options);
QJsonArray tokensJson(const QList<ArgfileToken>& tokens);
QJsonArray messagesJson(const QList<ArgumentMessage>& messages);

} // namespace tresk::cli

#endif
