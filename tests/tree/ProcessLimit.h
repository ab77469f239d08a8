#ifndef TRESK_TESTS_TREE_PROCESSLIMIT_H
#define TRESK_TESTS_TREE_PROCESSLIMIT_H

#include <QtGlobal>

#include <algorithm>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace tresktest {

/// Lowers a limit of this process as long as it lives.
class ProcessLimit {
public:
    ProcessLimit(decltype(RLIMIT_NOFILE) resource, rlim_t limit)
        : m_resource(resource)
    {
        if (getrlimit(m_resource, &m_before) != 0)
            qFatal("a limit could not be read");
        rlimit lowered = m_before;
        lowered.rlim_cur = std::min(limit, m_before.rlim_cur);
        if (setrlimit(m_resource, &lowered) != 0)
            qFatal("a limit could not be set");
    }
    ~ProcessLimit() { setrlimit(m_resource, &m_before); }

private:
    Q_DISABLE_COPY(ProcessLimit)

    decltype(RLIMIT_NOFILE) m_resource;
    rlimit m_before;
};

/// The number that the next opened file gets: with that limit none can be opened.
inline rlim_t lowestFreeDescriptor()
{
    const int descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        qFatal("no file could be opened");
    ::close(descriptor);
    return static_cast<rlim_t>(descriptor);
}

} // namespace tresktest

#endif
