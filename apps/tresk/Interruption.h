#ifndef TRESK_APPS_INTERRUPTION_H
#define TRESK_APPS_INTERRUPTION_H

namespace tresk::cli {

/// From now on the signals that ask a program to end (SIGHUP, SIGINT, SIGTERM) are only
/// noted, so that unfinished work can be cleared away. Those that are ignored stay so.
void watchForInterruption();

/// The number of the signal that has asked to end, 0 if none.
int interruptedBy();

} // namespace tresk::cli

#endif
