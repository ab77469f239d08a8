#ifndef TRESK_TESTS_TREE_HISTORIES_H
#define TRESK_TESTS_TREE_HISTORIES_H

#include "DocumentWriter.h"
#include "TestFiles.h"

#include <QObject>
#include <QStringList>
#include <QVector>

namespace tresk {
class LogSource;
class WorkflowTree;
} // namespace tresk

namespace tresktest {

/// A step that is titled by its summary, which lists @p files as embedded files of @p purpose.
SectionSpec step(const QByteArray& title, const QVector<FileSpec>& files = {},
                 const QByteArray& purpose = "InFile");
/// The same with the "Workflowstep" element's content given in full.
SectionSpec stepThatSays(const QByteArray& content, const QVector<FileSpec>& files = {});
/// A document with these steps, the oldest first.
QByteArray history(const QVector<SectionSpec>& steps);
/// A document as a compressed embedded file.
FileSpec embedded(const char* name, const QByteArray& document);
/// @p levels documents, each embedded in the step of the next: "level 0" is the innermost.
QByteArray nested(int levels);

/// Titles in the order of the tree, children in brackets: "new(embedded embedded) old".
QString textOf(const tresk::WorkflowTree& tree);

/// What is logged, as "TYPE TEXT".
class LogLines {
public:
    explicit LogLines(tresk::LogSource& source);

    QStringList lines;

private:
    Q_DISABLE_COPY(LogLines)

    QObject m_context; // ends the connection
};

/// Where temporary files go, as long as it lives.
class TemporaryFolder {
public:
    /// A folder of its own.
    TemporaryFolder();
    /// @p path, whatever that is.
    explicit TemporaryFolder(const QString& path);
    ~TemporaryFolder();

    /// The paths of the files that are in the folder.
    QStringList files() const;

private:
    Q_DISABLE_COPY(TemporaryFolder)

    TestDir m_dir;
    QByteArray m_before;
};

} // namespace tresktest

#endif
