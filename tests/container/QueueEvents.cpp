#include "QueueEvents.h"

#include <tresk/ExtractionQueue.h>
#include <tresk/ValidationQueue.h>

#include <QRegularExpression>

using tresk::ExtractionQueue;
using tresk::LogSource;
using tresk::ValidationQueue;

namespace tresktest {

namespace {

QString validity(bool valid)
{
    return valid ? QStringLiteral(" valid") : QStringLiteral(" invalid");
}

QString withoutSeconds(const QString& message)
{
    static const QRegularExpression seconds(QStringLiteral(": [0-9]+\\.[0-9]{2}s\n\\z"));
    QString text = message;
    return text.replace(seconds, QStringLiteral(": TIME"));
}

bool isPercent(const QString& event)
{
    return event.startsWith(QLatin1String("percent "));
}

QStringList eventsOf(const QStringList& lines)
{
    const QString separator = QStringLiteral(" | ");
    return lines.isEmpty() ? QStringList() : lines.join(separator).split(separator);
}

} // namespace

QueueEvents::QueueEvents(ValidationQueue& queue)
{
    QObject::connect(&queue, &ValidationQueue::sectionProcessed, &m_context,
                     [this](int id, bool valid) {
                         add(QStringLiteral("section %1").arg(id) + validity(valid));
                     });
    QObject::connect(
        &queue, &ValidationQueue::fileProcessed, &m_context,
        [this](int id, bool valid) { add(QStringLiteral("file %1").arg(id) + validity(valid)); });
    QObject::connect(&queue, &ValidationQueue::savedFileProcessed, &m_context,
                     [this](const QString& path, bool valid) {
                         add(QStringLiteral("saved ") + path + validity(valid));
                     });
    QObject::connect(
        &queue, &ValidationQueue::percentFinishedChanged, &m_context,
        [this](int percent, const QString& name) { add(percentEvent(percent, name)); });
    listenToLog(queue);
}

QueueEvents::QueueEvents(ExtractionQueue& queue)
{
    QObject::connect(
        &queue, &ExtractionQueue::fileProcessed, &m_context, [this](int id, bool valid) {
            add((valid ? QStringLiteral("written %1") : QStringLiteral("failed %1")).arg(id));
        });
    QObject::connect(
        &queue, &ExtractionQueue::percentFinishedChanged, &m_context,
        [this](int percent, const QString& name) { add(percentEvent(percent, name)); });
    listenToLog(queue);
}

void QueueEvents::listenToLog(LogSource& source)
{
    QObject::connect(&source, &LogSource::log, &m_context, [this](const QString& text, int type) {
        add(QStringLiteral("log %1 ").arg(type) + withoutSeconds(text));
    });
}

QString QueueEvents::take()
{
    const QString text = m_events.join(QStringLiteral(" | "));
    m_events.clear();
    return text;
}

QString percentEvent(int percent, const QString& name)
{
    return QStringLiteral("percent %1 ").arg(percent) + name;
}

QList<int> percentages(const QStringList& lines)
{
    QList<int> numbers;
    const QStringList events = eventsOf(lines);
    for (const QString& event : events) {
        if (isPercent(event))
            numbers.append(event.section(QLatin1Char(' '), 1, 1).toInt());
    }
    return numbers;
}

QStringList verdicts(const QStringList& lines)
{
    QStringList found;
    const QStringList events = eventsOf(lines);
    for (const QString& event : events) {
        if (!isPercent(event) && event != QLatin1String("more") && event != QLatin1String("done"))
            found.append(event);
    }
    return found;
}

} // namespace tresktest
