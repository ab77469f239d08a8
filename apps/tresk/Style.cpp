#include "Style.h"

#include <QByteArray>

namespace tresk::cli {

bool environmentAllowsColour()
{
    return qEnvironmentVariableIsEmpty("NO_COLOR") && qgetenv("TERM") != "dumb";
}

} // namespace tresk::cli
