#include "core/Logging.h"

namespace tresk {

Q_LOGGING_CATEGORY(debugCategory, "tresk", QtDebugMsg)

} // namespace tresk
