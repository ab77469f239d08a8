#ifndef TRESK_TESTS_APPS_ARGUMENTS_H
#define TRESK_TESTS_APPS_ARGUMENTS_H

#include "Command.h"

#include <TestFiles.h>

namespace tresktest {

/// Runs `tresk args` on argument files in a folder of its own.
class ArgsRuns {
protected:
    /// Runs it on a file some.args with this content.
    Outcome args(const QByteArray& content, const QStringList& options = {}) const;
    /// The object that it prints with --json; a failure of the test if it ends with another exit
    /// code.
    QJsonObject json(const QByteArray& content, const QStringList& options = {},
                     int exitCode = 0) const;

    TestDir m_dir;
};

/// An object that has just the members of @p names, separated by blanks, with the strings of
/// @p values, separated by "|".
QJsonObject strings(const char* names, const char* values);

/// The title of the step in what `tresk args --json` prints.
QString titleOf(const QJsonObject& object);

} // namespace tresktest

#endif
