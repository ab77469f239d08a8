#ifndef TRESK_APPS_MESSAGES_H
#define TRESK_APPS_MESSAGES_H

#include <QString>
#include <QStringView>

/// What is said to the user on standard error, one line each.
namespace tresk::cli {

/// How much is said.
enum class Verbosity {
    Quiet, ///< errors only
    Normal, ///< errors, warnings and notes
    Verbose ///< also what the library and Qt log
};

void setVerbosity(Verbosity verbosity);
Verbosity verbosity();

/// Keeps what the library and Qt log to themselves off standard error, unless verbose.
void catchLogLines();

/// Something that makes the command fail: "tresk: " and @p text, which is made printable.
void reportError(const QString& text);
/// The same about @p subject, a document for instance: "tresk: SUBJECT: TEXT".
void reportError(const QString& subject, QStringView text);
/// Something to know about @p subject that lets the command succeed nevertheless.
void reportWarning(const QString& subject, QStringView text);
/// Something about @p subject that need not be right or wrong.
void reportNote(const QString& subject, QStringView text);
/// A line that the library logged; said only when verbose.
void relayLogLine(const QString& text);

} // namespace tresk::cli

#endif
