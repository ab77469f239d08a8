#ifndef TRESK_APPS_REGULARFILE_H
#define TRESK_APPS_REGULARFILE_H

#include <QString>

namespace tresk::cli {

/// A file that was opened to be read, or what is wrong with it.
struct OpenedFile {
    int fd = -1; ///< to be closed by whoever has it, also if there is a problem; -1 for none
    qint64 size = 0;
    QString problem; ///< empty without one
    bool isUnfit = false; ///< whether the problem is what the file is: a directory, a device
    bool isDirectory = false;
};

/// Opens the regular file at @p path, without waiting for anything.
OpenedFile openRegularFile(const QString& path);

} // namespace tresk::cli

#endif
