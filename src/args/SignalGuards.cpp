#include "args/SignalGuards.h"

#ifdef Q_OS_UNIX
#include <cerrno>
#include <ctime>
#endif

namespace tresk {

#ifdef Q_OS_UNIX

namespace {

bool isPending()
{
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

sigset_t brokenPipe()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    return set;
}

/// Takes a pending SIGPIPE away.
void consume()
{
    const sigset_t set = brokenPipe();
    const timespec noTime = {};
    while (sigtimedwait(&set, nullptr, &noTime) == -1 && errno == EINTR) { }
}

} // namespace

BrokenPipeGuard::BrokenPipeGuard()
    : m_wasPending(isPending())
{
    sigaction(SIGPIPE, nullptr, &m_action);
    const sigset_t set = brokenPipe();
    pthread_sigmask(SIG_BLOCK, &set, &m_mask);
}

BrokenPipeGuard::~BrokenPipeGuard()
{
    if (isPending() && !m_wasPending)
        consume();
    struct sigaction now = {};
    sigaction(SIGPIPE, nullptr, &now);
    if (now.sa_handler == SIG_IGN)
        sigaction(SIGPIPE, &m_action, nullptr);
    if (sigismember(&m_mask, SIGPIPE) == 0) {
        const sigset_t set = brokenPipe();
        pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    }
}

BrokenPipePassage::BrokenPipePassage()
    : m_wasPending(isPending())
{
    if (m_wasPending)
        consume();
    const sigset_t set = brokenPipe();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

BrokenPipePassage::~BrokenPipePassage()
{
    const sigset_t set = brokenPipe();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    if (m_wasPending)
        raise(SIGPIPE);
}

ExitCodeGuard::ExitCodeGuard()
{
    sigaction(SIGCHLD, nullptr, &m_before);
    m_active = m_before.sa_handler == SIG_IGN || (m_before.sa_flags & SA_NOCLDWAIT) != 0;
    struct sigaction keep = m_before;
    keep.sa_flags &= ~SA_NOCLDWAIT;
    if (m_before.sa_handler == SIG_IGN)
        keep.sa_handler = SIG_DFL;
    if (m_active)
        sigaction(SIGCHLD, &keep, nullptr);
}

ExitCodeGuard::~ExitCodeGuard()
{
    if (m_active)
        sigaction(SIGCHLD, &m_before, nullptr);
}

#else

BrokenPipeGuard::BrokenPipeGuard() = default;
BrokenPipeGuard::~BrokenPipeGuard() = default;
BrokenPipePassage::BrokenPipePassage() = default;
BrokenPipePassage::~BrokenPipePassage() = default;
ExitCodeGuard::ExitCodeGuard() = default;
ExitCodeGuard::~ExitCodeGuard() = default;

#endif

} // namespace tresk
