#ifndef TRESK_APPS_INTERRUPTION_H
#define TRESK_APPS_INTERRUPTION_H

#include <QtGlobal>

#include <csignal>

namespace tresk::cli {

/// From now on the signals that ask a program to end (SIGHUP, SIGINT, SIGTERM) are only
/// noted, so that unfinished work can be cleared away. Those that are ignored stay so.
void watchForInterruption();

/// The number of the signal that has asked to end, 0 if none.
int interruptedBy();

/// From now on @p cleanUp is called where one of these signals comes, which then ends the program
/// as it would without. It may call only what is safe in a signal handler.
void cleanUpWhenInterrupted(void (*cleanUp)());

/// From now on the signals end the program at once again.
void endWhenInterrupted();

/// While it lives, these signals wait.
class DelayedInterruption {
public:
    DelayedInterruption();
    ~DelayedInterruption();

private:
    Q_DISABLE_COPY(DelayedInterruption)

    sigset_t m_before;
};

} // namespace tresk::cli

#endif
