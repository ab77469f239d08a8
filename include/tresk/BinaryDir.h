#ifndef TRESK_BINARYDIR_H
#define TRESK_BINARYDIR_H

#include <tresk/Export.h>

#include <QString>

namespace tresk {

/// The directory that holds the running application's executable, as a canonical
/// path: symbolic links resolved, no separator at its end. Needs a QCoreApplication.
TRESK_EXPORT QString getBinaryDir();

} // namespace tresk

#endif
