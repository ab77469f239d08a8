#ifndef TRESK_APPS_PROGRESS_H
#define TRESK_APPS_PROGRESS_H

#include "StatusLine.h"

#include <QElapsedTimer>
#include <QString>

namespace tresk::cli {

/// How many stored bytes a queue works on before progress is shown again.
constexpr int queueBlock = 100000;

/// A line at the bottom of the terminal that says how far a long job is: a percentage and, once
/// they can be told, bytes a second and the time left. Shown on standard error, and only if
/// that is a terminal and messages are wanted.
class Progress {
public:
    /// For a job of @p total bytes that begins now.
    explicit Progress(qint64 total);

    /// Shows that @p done bytes of the total are done and @p what is being worked on. Most calls do
    /// nothing, so it may be called often.
    void show(qint64 done, const QString& what);
    /// Takes the line away, to make room for something else.
    void clear() { m_line.clear(); }

private:
    Q_DISABLE_COPY(Progress)

    QString speed(qint64 done) const;

    qint64 m_total;
    StatusLine m_line;
    QElapsedTimer m_sinceStart;
};

} // namespace tresk::cli

#endif
