#ifndef TRESK_APPS_ROFF_H
#define TRESK_APPS_ROFF_H

#include <QString>

/// The language of manual pages.
namespace tresk::cli::roff {

/// @p text as it stands, to be typed again: hyphens and quotes are those of a keyboard.
QString literal(const QString& text);
/// @p text to be read, a line: only what can be typed, such as options, is literal.
QString prose(const QString& text);
/// @p text, which is literal, in bold or italic type.
QString bold(const QString& text);
QString italic(const QString& text);

/// Lines of input for @p text, which is ready to be read and may begin with anything.
QString line(const QString& text);

/// The paragraphs of @p text, between which there is an empty line.
QString paragraphs(const QString& text);
/// The lines of @p text, literal.
QString example(const QString& text);

} // namespace tresk::cli::roff

#endif
