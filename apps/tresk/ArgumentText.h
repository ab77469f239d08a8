#ifndef TRESK_APPS_ARGUMENTTEXT_H
#define TRESK_APPS_ARGUMENTTEXT_H

#include <tresk/ArgFile.h>
#include <tresk/ArgfileParser.h>

#include <QList>
#include <QString>
#include <QStringList>

namespace tresk::cli {

class Output;
class Style;

/// What kind of thing @p token is: word, string, space or comment.
QString kindOf(const ArgfileToken& token);

/// The flags of @p file that are not as they are by default, as an argument file has them.
QStringList changedFlags(const WSFile& file);

/// Writes what @p options say, for people.
void writeOptions(Output& output, const Style& style, const ArgFile& options);
/// Writes one token a line, for people.
void writeTokens(Output& output, const Style& style, const QList<ArgfileToken>& tokens);

} // namespace tresk::cli

#endif
