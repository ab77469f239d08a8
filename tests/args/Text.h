#ifndef TRESK_TESTS_ARGS_TEXT_H
#define TRESK_TESTS_ARGS_TEXT_H

#include <QString>

namespace tresktest {

/// The text that these bytes of UTF-8 are.
inline QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

} // namespace tresktest

#endif
