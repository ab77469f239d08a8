#include "Interruption.h"

#include <array>

namespace tresk::cli {

namespace {

constexpr std::array<int, 3> signalNumbers = {SIGHUP, SIGINT, SIGTERM};

volatile std::sig_atomic_t notedSignal = 0;
void (*cleanUpFirst)() = nullptr;

sigset_t signalSet()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : signalNumbers)
        sigaddset(&set, number);
    return set;
}

void noteSignal(int number)
{
    notedSignal = number;
}

void cleanUpAndEnd(int number)
{
    cleanUpFirst();
    // Comes as soon as this function has returned, and finds the default action.
    std::raise(number);
}

/// Has @p handler called for the signals that are not ignored.
void setHandler(void (*handler)(int), int flags)
{
    for (const int number : signalNumbers) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = handler;
        action.sa_flags = flags;
        action.sa_mask = signalSet();
        sigaction(number, &action, nullptr);
    }
}

} // namespace

void watchForInterruption()
{
    // Without SA_RESTART, so that a write that waits is ended as well.
    setHandler(noteSignal, 0);
}

int interruptedBy()
{
    return notedSignal;
}

void cleanUpWhenInterrupted(void (*cleanUp)())
{
    cleanUpFirst = cleanUp;
    setHandler(cleanUpAndEnd, SA_RESETHAND);
}

void endWhenInterrupted()
{
    setHandler(SIG_DFL, 0);
}

DelayedInterruption::DelayedInterruption()
{
    const sigset_t set = signalSet();
    pthread_sigmask(SIG_BLOCK, &set, &m_before);
}

DelayedInterruption::~DelayedInterruption()
{
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

} // namespace tresk::cli
