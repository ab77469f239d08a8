#ifndef TRESK_APPS_JSON_H
#define TRESK_APPS_JSON_H

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <functional>

/// What the commands print for other programs. Every command prints one object, or with --jsonl
/// one on each line. Which names these have is described by the schemas in docs/schemas; each
/// object says under "schema" by which one, such as "tresk-log/1". The number behind the slash goes
/// up when a name that is there already goes or changes its meaning, but not when one is added.
///
/// Texts of markers come as they are stored under their plain name, say "title". Where that
/// differs from what people are shown, because of an escape, "titleUnescaped" stands beside
/// it. Numbers that a marker leaves out are null.
namespace tresk::cli {

class Output;

/// Puts the marker's value @p stored into @p object.
void insertText(QJsonObject& object, const QString& name, const QString& stored);

/// A number of a marker; null for one below 0.
QJsonValue jsonNumber(int number);

/// A text that need not be there; null for a null one.
QJsonValue jsonText(const QString& text);

/// Writes @p object, which is as @p schema says, in several lines, as UTF-8. Characters that a
/// terminal might act on are escaped.
void writeJson(Output& output, const char* schema, const QJsonObject& object);
/// Writes @p object likewise, with an array called @p name in it besides. Its @p count elements are
/// made one by one, so that they take no memory.
void writeJson(Output& output, const char* schema, const QJsonObject& object, const QString& name,
               int count, const std::function<QJsonObject(int index)>& element);
/// Writes @p object likewise, but on one line.
void writeJsonLine(Output& output, const char* schema, const QJsonObject& object);

} // namespace tresk::cli

#endif
