#ifndef TRESK_APPS_TEXT_H
#define TRESK_APPS_TEXT_H

#include <QString>
#include <QStringView>

#include <functional>

/// Texts from documents, made fit for people and their terminals.
namespace tresk::cli {

/// A marker's value without its escapes: `\\`, `\]` and `\n` become a backslash, a closing
/// bracket and a line break.
QString unescaped(const QString& stored);

/// Whether a terminal may act on the character instead of showing it, or show it as nothing
/// at all: control and formatting characters, line separators, lone surrogates, what Unicode says
/// is no character. The joiners that scripts and emoji need are not among them.
bool isUnprintable(char32_t c);

/// @p text with everything unprintable written out, such as `\n`, `\x1b` or `\u202e`.
QString printable(const QString& text);

/// Hands printable(@p text) to @p take, a long one piece by piece: written out, it may take ten
/// times the memory.
void forPrintable(QStringView text, const std::function<void(const QString&)>& take);

/// A marker's value as it is shown to people: printable(unescaped(@p stored)).
QString shown(const QString& stored);

/// @p text printable, in double quotes.
QString quoted(const QString& text);

/// A marker's value as it is shown to people, in double quotes.
QString shownQuoted(const QString& stored);

/// The number of terminal columns that the printable @p text takes.
int displayWidth(const QString& text);

/// The longest beginning of the printable @p text that takes at most @p columns.
QString cutToWidth(const QString& text, int columns);

/// A number of bytes for people, such as "12.4 KiB"; "-" for a number below 0.
QString humanSize(qint64 bytes);

/// A number, and "-" for one below 0: markers leave unknown numbers empty.
QString numberOrDash(qint64 number);

/// "1 file", "2 files".
QString counted(qint64 count, const QString& singular);

} // namespace tresk::cli

#endif
