#ifndef TRESK_APPS_SYSTEMTEXT_H
#define TRESK_APPS_SYSTEMTEXT_H

#include <QByteArray>
#include <QString>

/// Arguments, paths and messages of the operating system, which knows bytes, as text.
namespace tresk::cli {

/// Makes Qt take the system's bytes as UTF-8, whatever the locale says. Call it before the
/// application object is created, and useEnglishSystemMessages() afterwards, because Qt sets
/// the locale there.
void useUtf8ForSystemText();
/// Makes the messages of the operating system English, whatever the locale says.
void useEnglishSystemMessages();

/// @p bytes as text, without loss: those that are not UTF-8 become ASCII characters and, for
/// every other byte, the lone surrogate U+DC00 + byte.
QString fromSystem(const QByteArray& bytes);
/// The bytes from which fromSystem() made @p text.
QByteArray toSystem(const QString& text);
/// Whether @p text is what fromSystem() makes of bytes that are not UTF-8.
bool isUndecoded(const QString& text);

/// What the operating system calls the error number @p code.
QString systemError(int code);

} // namespace tresk::cli

#endif
