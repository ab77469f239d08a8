#ifndef TRESK_APPS_TEMPORARYFOLDER_H
#define TRESK_APPS_TEMPORARYFOLDER_H

#include <QByteArray>

#include <dirent.h>

namespace tresk::cli {

/// A folder of its own for the temporary files that are made while it lives; they go with it, also
/// where the program has to end at once, because memory runs out or a signal comes (SIGHUP, SIGINT
/// or SIGTERM), and nobody is left to remove them. Where none can be made, files are made where
/// they would be without it. There is one at a time.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();

    /// Removes the folder that there is, if any. Takes no memory.
    static void removeCurrent();

private:
    Q_DISABLE_COPY(TemporaryFolder)

    void remove();

    QByteArray m_before; ///< what the environment said
    QByteArray m_path;
    DIR* m_directory = nullptr;
};

} // namespace tresk::cli

#endif
