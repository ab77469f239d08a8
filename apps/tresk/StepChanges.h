#ifndef TRESK_APPS_STEPCHANGES_H
#define TRESK_APPS_STEPCHANGES_H

#include <tresk/Summary.h>

#include <QList>
#include <QString>

namespace tresk::cli {

/// What is different in a step that corresponds to another.
struct Change {
    enum Kind {
        Altered, ///< a text of the step, from before to after
        FileRemoved, ///< a file that only the first step has: before
        FileAdded, ///< a file that only the second step has: after
        FileAltered ///< a file of the same purpose and name with other content
    };
    Kind kind;
    QString what; ///< what was changed, "tool" for instance; for files their purpose
    QString before;
    QString after;
};

/// What is different in @p second from @p first: time, title, tool, description, comment, command,
/// user and host, and then the files, in the order of the steps' lists.
QList<Change> changesBetween(const Workflowstep& first, const Workflowstep& second);

/// @p change for people, in one line: "tool: "a" -> "b"", "+ out "plot.pdf"".
QString changeText(const Change& change);

} // namespace tresk::cli

#endif
