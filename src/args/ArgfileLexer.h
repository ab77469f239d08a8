#ifndef TRESK_ARGS_ARGFILELEXER_H
#define TRESK_ARGS_ARGFILELEXER_H

#include <QString>

namespace tresk {

/// Whether a token that begins with @p c is white space or a comment, else a word or a string.
bool beginsSeparator(QChar c);

/// Where the token that begins at @p begin ends. At most @p begin where a quote is not closed or
/// the text ends with a single backslash.
int tokenEnd(const QString& text, int begin);

} // namespace tresk

#endif
