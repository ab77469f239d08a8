#include "Progress.h"

#include "Messages.h"
#include "Output.h"
#include "Text.h"

#include <algorithm>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tresk::cli {

namespace {

constexpr int barWidth = 20;
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

Progress::Progress(qint64 total)
    : m_total(total)
    , m_enabled(verbosity() != Verbosity::Quiet && isatty(STDERR_FILENO) == 1
                && qgetenv("TERM") != "dumb")
{
}

Progress::~Progress()
{
    clear();
}

void Progress::show(qint64 done, const QString& what)
{
    if (!m_enabled || (m_sinceShown.isValid() && m_sinceShown.elapsed() < millisecondsBetween))
        return;
    m_sinceShown.start();
    const double share = m_total > 0 ? double(done) / double(m_total) : 1;
    const int filled = std::clamp(static_cast<int>(share * barWidth), 0, barWidth);
    const QString bar = QString(filled, QLatin1Char('#')).leftJustified(barWidth, QLatin1Char('.'));
    const int percent = std::clamp(static_cast<int>(share * 100), 0, 100);
    const QString line = QStringLiteral("[%1] %2%  %3")
                             .arg(bar, QString::number(percent).rightJustified(3), printable(what));
    // The last column stays free: some terminals wrap as soon as it is taken.
    writeToTerminal(QStringLiteral("\r\x1b[K") + cutToWidth(line, terminalWidth() - 1));
    m_shown = true;
}

void Progress::clear()
{
    if (m_shown)
        writeToTerminal(QStringLiteral("\r\x1b[K"));
    m_shown = false;
}

} // namespace tresk::cli
