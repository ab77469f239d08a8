#ifndef TRESK_TESTS_DEBUGLINES_H
#define TRESK_TESTS_DEBUGLINES_H

#include "MessageCapture.h"

#include <QStringList>

namespace tresktest {

/// The texts of what was captured. Anything that is no debug line of the library's category
/// stands out by the category and type in front of it.
QStringList debugLines(const MessageCapture& capture);

} // namespace tresktest

#endif
