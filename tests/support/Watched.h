#ifndef TRESK_TESTS_WATCHED_H
#define TRESK_TESTS_WATCHED_H

#include <QtGlobal>

namespace tresktest {

/// Whether valgrind watches this process: one that it starts cannot fail to become a program.
inline bool isUnderValgrind()
{
    return qEnvironmentVariableIsSet("TRESK_VALGRIND");
}

/// Whether sanitizers or valgrind watch what runs, which then takes many times as long and
/// much more memory: what measures either is to be left out, and rounds are to be fewer.
inline bool isWatched()
{
#ifdef TRESK_SANITIZED
    return true;
#else
    return isUnderValgrind();
#endif
}

} // namespace tresktest

#endif
