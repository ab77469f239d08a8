#ifndef TRESK_APPS_STATUSLINE_H
#define TRESK_APPS_STATUSLINE_H

#include <QElapsedTimer>
#include <QString>

namespace tresk::cli {

/// A line at the bottom of the terminal that says what a long job is doing. Shown on standard
/// error, and only if that is a terminal and messages are wanted.
class StatusLine {
public:
    StatusLine();
    ~StatusLine();

    /// Whether show() would show anything now: it does so ten times a second at most.
    bool isDue() const;
    /// Shows the printable @p text, as much of it as fits.
    void show(const QString& text);
    /// Takes the line away, to make room for something else.
    void clear();

private:
    Q_DISABLE_COPY(StatusLine)

    bool m_enabled;
    bool m_shown = false;
    QElapsedTimer m_sinceShown;
};

} // namespace tresk::cli

#endif
