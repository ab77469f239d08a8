#ifndef TRESK_ARGS_SIGNALGUARDS_H
#define TRESK_ARGS_SIGNALGUARDS_H

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

namespace tresk {

/// While it lives, writing to a pipe that nobody reads only fails, whatever the process does about
/// SIGPIPE; afterwards that is as before. (QProcess has the signal ignored from its first write on,
/// for good, and relies on that ever after.)
class BrokenPipeGuard {
public:
    BrokenPipeGuard();
    BrokenPipeGuard(const BrokenPipeGuard&) = delete;
    BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;
    ~BrokenPipeGuard();

#ifdef Q_OS_UNIX
private:
    struct sigaction m_action = {};
    sigset_t m_mask = {};
    bool m_wasPending = false;
#endif
};

/// Under a guard, lets SIGPIPE through as long as it lives, for a process that is started then. One
/// that is pending stays so.
class BrokenPipePassage {
public:
    BrokenPipePassage();
    BrokenPipePassage(const BrokenPipePassage&) = delete;
    BrokenPipePassage& operator=(const BrokenPipePassage&) = delete;
    ~BrokenPipePassage();

#ifdef Q_OS_UNIX
private:
    bool m_wasPending = false;
#endif
};

/// As long as it lives, has the system keep the exit codes of processes, where the host has it
/// throw them away.
class ExitCodeGuard {
public:
    ExitCodeGuard();
    ExitCodeGuard(const ExitCodeGuard&) = delete;
    ExitCodeGuard& operator=(const ExitCodeGuard&) = delete;
    ~ExitCodeGuard();

#ifdef Q_OS_UNIX
private:
    struct sigaction m_before = {};
    bool m_active = false;
#endif
};

} // namespace tresk

#endif
