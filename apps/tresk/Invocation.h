#ifndef TRESK_APPS_INVOCATION_H
#define TRESK_APPS_INVOCATION_H

#include "Output.h"
#include "Style.h"

#include <QCommandLineParser>
#include <QStringList>

namespace tresk::cli {

/// What a command is run with.
struct Invocation {
    QCommandLineParser options;
    QStringList arguments; ///< without options
    Output output;
    Style style;

    bool isSet(const char* option) const { return options.isSet(QLatin1String(option)); }
    QString value(const char* option) const { return options.value(QLatin1String(option)); }
    QStringList values(const char* option) const { return options.values(QLatin1String(option)); }
};

} // namespace tresk::cli

#endif
