#include "StatusLine.h"

#include "Messages.h"
#include "Output.h"
#include "Text.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace tresk::cli {

namespace {

constexpr int millisecondsBetween = 100;

int terminalWidth()
{
    winsize size = {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    return 80;
}

void writeToTerminal(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    writeFully(STDERR_FILENO, bytes.constData(), bytes.size());
}

} // namespace

StatusLine::StatusLine()
    : m_enabled(verbosity() != Verbosity::Quiet && isatty(STDERR_FILENO) == 1
                && qgetenv("TERM") != "dumb")
{
}

StatusLine::~StatusLine()
{
    clear();
}

bool StatusLine::isDue() const
{
    return m_enabled && (!m_sinceShown.isValid() || m_sinceShown.elapsed() >= millisecondsBetween);
}

void StatusLine::show(const QString& text)
{
    if (!isDue())
        return;
    m_sinceShown.start();
    // The last column stays free: some terminals wrap as soon as it is taken.
    writeToTerminal(QStringLiteral("\r\x1b[K") + cutToWidth(text, terminalWidth() - 1));
    m_shown = true;
}

void StatusLine::clear()
{
    if (m_shown)
        writeToTerminal(QStringLiteral("\r\x1b[K"));
    m_shown = false;
}

} // namespace tresk::cli
