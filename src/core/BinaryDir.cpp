#include <tresk/BinaryDir.h>

#include <QCoreApplication>
#include <QDir>

namespace tresk {

QString getBinaryDir()
{
    return QDir(QCoreApplication::applicationDirPath()).canonicalPath();
}

} // namespace tresk
