#ifndef TRESK_TESTS_QUEUEEVENTS_H
#define TRESK_TESTS_QUEUEEVENTS_H

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

namespace tresk {
class ExtractionQueue;
class LogSource;
class ValidationQueue;
} // namespace tresk

namespace tresktest {

/// All signals and messages of a queue in the order in which they come, as text:
///
///     section ID valid, file ID invalid, saved PATH valid, written ID, failed ID,
///     percent NUMBER NAME, log TYPE TEXT
///
/// The seconds of a message that ends with a time are left out: "log 0 job: TIME".
class QueueEvents {
public:
    explicit QueueEvents(tresk::ValidationQueue& queue);
    explicit QueueEvents(tresk::ExtractionQueue& queue);

    void add(const QString& event) { m_events.append(event); }
    /// What came since the last call, joined by " | ".
    QString take();

private:
    Q_DISABLE_COPY(QueueEvents)

    void listenToLog(tresk::LogSource& source);

    QStringList m_events;
    QObject m_context; // ends the connections
};

QString percentEvent(int percent, const QString& name);

/// The call of process() for a queue in which nothing is.
inline const QString nothingLeft = QStringLiteral("percent -2147483648  | done");
/// What a queue says at the end of a run that it has timed.
inline const QString timeLogged = QStringLiteral("log 0 validation finished: TIME");

/// One call of process(): its events, and "more" or "done" for what it returns.
template <typename Queue>
QString step(Queue& queue, QueueEvents& events)
{
    events.add(queue.process() ? QStringLiteral("more") : QStringLiteral("done"));
    return events.take();
}

/// The next @p count calls of process().
template <typename Queue>
QStringList steps(Queue& queue, QueueEvents& events, int count)
{
    QStringList lines;
    while (lines.size() < count)
        lines.append(step(queue, events));
    return lines;
}

/// All calls of process() through the one that returns false, or "endless" after a million.
template <typename Queue>
QStringList finish(Queue& queue, QueueEvents& events)
{
    QStringList lines;
    do {
        if (lines.size() == 1000 * 1000)
            return {QStringLiteral("endless")};
        lines.append(step(queue, events));
    } while (!lines.constLast().endsWith(QLatin1String("done")));
    return lines;
}

/// The percentages among the events of @p lines.
QList<int> percentages(const QStringList& lines);
/// The events of @p lines that are neither percentages nor results of process().
QStringList verdicts(const QStringList& lines);

} // namespace tresktest

#endif
