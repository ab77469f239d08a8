#include "Interruption.h"

#include <csignal>
#include <initializer_list>

namespace tresk::cli {

namespace {

volatile std::sig_atomic_t notedSignal = 0;

void noteSignal(int number)
{
    notedSignal = number;
}

} // namespace

void watchForInterruption()
{
    for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler == SIG_IGN)
            continue;
        // Without SA_RESTART, so that a write that waits is ended as well.
        action = {};
        action.sa_handler = noteSignal;
        sigemptyset(&action.sa_mask);
        sigaction(number, &action, nullptr);
    }
}

int interruptedBy()
{
    return notedSignal;
}

} // namespace tresk::cli
