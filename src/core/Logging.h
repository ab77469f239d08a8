#ifndef TRESK_CORE_LOGGING_H
#define TRESK_CORE_LOGGING_H

#include <QLoggingCategory>

namespace tresk {

/// The category "tresk" of all debug lines of the library; enabled unless a front end's
/// logging rules switch it off.
const QLoggingCategory& debugCategory();

} // namespace tresk

#endif
