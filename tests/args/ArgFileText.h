#ifndef TRESK_TESTS_ARGFILETEXT_H
#define TRESK_TESTS_ARGFILETEXT_H

#include "Text.h"

#include <tresk/ArgFile.h>

#include <QHash>
#include <QString>
#include <QStringList>

namespace tresktest {

/// Everything that is not as by default, a line each, so that options can be compared and seen:
/// `pretend: true`, `title: "a title"`, `user attribute: "key" = "value"`, `output document:
/// "path"`. A file begins with the line `input file: "directory" "name"` or `output file: ...`,
/// which is always there; its other lines are indented.
QStringList textOf(const tresk::WSFile& file);
QStringList textOf(const tresk::ArgFile& options);

/// @p text in quotes and on one line, with all but printable ASCII as \uXXXX.
QString quotedAscii(const QString& text);

/// What became of an argument file.
struct ReadOptions {
    tresk::ArgFile options;
    QStringList messages; ///< in the order in which they came, each as "TYPE TEXT"
};

ReadOptions readOptions(const QString& text, const QHash<QString, QString>* variables = nullptr);

} // namespace tresktest

#endif
