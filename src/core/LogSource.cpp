#include <tresk/LogSource.h>

namespace tresk {

LogSource::LogSource(QObject* listener)
{
    publishToLogSlot(listener);
}

LogSource::~LogSource() = default;

// Both connect the form without the type, whatever forms the target offers: callers
// rely on their `log(QString)` being the one that is called.

void LogSource::publishToLogSlot(QObject* target)
{
    if (target != nullptr)
        connect(this, SIGNAL(log(QString)), target, SLOT(log(QString)));
}

void LogSource::publishToLogSignal(QObject* target)
{
    if (target != nullptr)
        connect(this, SIGNAL(log(QString)), target, SIGNAL(log(QString)));
}

} // namespace tresk
