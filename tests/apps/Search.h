#ifndef TRESK_TESTS_APPS_SEARCH_H
#define TRESK_TESTS_APPS_SEARCH_H

#include "Command.h"

#include <TestFiles.h>

#include <QByteArray>
#include <QStringList>

namespace tresktest {

/// Writes a document that has one step of that title, and the directories above it.
void write(const TestDir& dir, const char* name, const char* title = "word");

/// The command `find` with these arguments, to be run in the directory.
Command find(const TestDir& dir, const QStringList& arguments);

/// Compares all that is to be seen of a run.
void compare(const Outcome& outcome, const QByteArray& output, const QByteArray& errors,
             int exitCode);

} // namespace tresktest

#endif
