#ifndef TRESK_TESTS_DOCS_EXAMPLES_H
#define TRESK_TESTS_DOCS_EXAMPLES_H

#include <QString>
#include <QStringList>
#include <QVector>

namespace tresktest {

/// A fenced block of a page.
struct Block {
    int line = 0; ///< number of the line with its fence
    QString kind; ///< the word behind the fence: "console", "cpp", ...
    QStringList lines;
};

/// The fenced blocks of a Markdown text; one that is not closed has the kind "unclosed".
QVector<Block> blocksIn(const QString& page);

/// A command that a block shows behind "$ ", and what it prints.
struct Example {
    int line = 0;
    QString command; ///< of several lines, if all but the last end with a backslash
    QString output;
};

/// The commands of a block of the kind "console". What stands in front of the first one is lost, so
/// there must not be any.
QVector<Example> examplesIn(const Block& block);

/// Why a command is not run by the test, although a block shows it; empty for those that are run.
QString reasonNotToRun(const QString& command);

} // namespace tresktest

#endif
