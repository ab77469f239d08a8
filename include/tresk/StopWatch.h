#ifndef TRESK_STOPWATCH_H
#define TRESK_STOPWATCH_H

#include <tresk/LogSource.h>

#include <QString>

#include <ctime>

namespace tresk {

/// Times a named job and logs how much processor time it took.
class TRESK_EXPORT StopWatch : public LogSource {
    Q_OBJECT

public:
    /// A watch that stands still. A @p listener that is not null is connected to the log.
    explicit StopWatch(QObject* listener = nullptr);

    /// Stops and reports, as `stop(true)` does.
    ~StopWatch() override;

    /// Starts timing the job @p name. A timing that still runs is ended first, and
    /// reported unless @p discardRunning is true.
    void start(const QString& name, bool discardRunning);

    /// Ends the timing. If one was running and @p report is true, logs the job's name
    /// and its seconds, such as "validation finished: 1.25s" and a line feed, with
    /// type 0. A second call logs nothing.
    void stop(bool report);

private:
    QString m_name;
    bool m_running = false;
    std::clock_t m_start = 0;
};

} // namespace tresk

#endif
