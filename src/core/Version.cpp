#include <tresk/Version.h>

namespace tresk {

QString version()
{
    return QStringLiteral(TRESKLIB_VERSION_STR);
}

} // namespace tresk
