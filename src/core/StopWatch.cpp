#include <tresk/StopWatch.h>

#include "core/ProcessorClock.h"

namespace tresk {

StopWatch::StopWatch(QObject* listener)
    : LogSource(listener)
{
}

StopWatch::~StopWatch()
{
    stop(true);
}

void StopWatch::start(const QString& name, bool discardRunning)
{
    stop(!discardRunning);
    m_start = std::clock();
    m_running = true;
    m_name = name;
}

void StopWatch::stop(bool report)
{
    const bool wasRunning = m_running;
    m_running = false;
    if (wasRunning && report) {
        const QString seconds = QString::number(processorSecondsSince(m_start), 'f', 2);
        Q_EMIT log(m_name + QStringLiteral(": ") + seconds + QStringLiteral("s\n"), 0);
    }
}

} // namespace tresk
