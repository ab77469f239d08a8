#ifndef TRESK_APPS_PROGRESS_H
#define TRESK_APPS_PROGRESS_H

#include <QElapsedTimer>
#include <QString>

namespace tresk::cli {

/// A line at the bottom of the terminal that says how far a long job is. Shown on standard
/// error, and only if that is a terminal and messages are wanted.
class Progress {
public:
    explicit Progress(qint64 total);
    ~Progress();

    /// Shows that @p done of the total are done and @p what is being worked on. Most calls do
    /// nothing, so it may be called often.
    void show(qint64 done, const QString& what);
    /// Takes the line away, to make room for something else.
    void clear();

private:
    Q_DISABLE_COPY(Progress)

    qint64 m_total;
    bool m_enabled;
    bool m_shown = false;
    QElapsedTimer m_sinceShown;
};

} // namespace tresk::cli

#endif
