#include "TemporaryFolder.h"

#include "Interruption.h"

#include <QDir>
#include <QFile>

#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace tresk::cli {

namespace {

const char* const variable = "TMPDIR";

TemporaryFolder* current = nullptr;

} // namespace

TemporaryFolder::TemporaryFolder()
    : m_before(qgetenv(variable))
    , m_path(QFile::encodeName(QDir::tempPath()) + "/tresk-XXXXXX")
{
    const DelayedInterruption delayed;
    if (!mkdtemp(m_path.data()))
        return;
    current = this;
    m_directory = opendir(m_path.constData());
    cleanUpWhenInterrupted(removeCurrent);
    if (m_directory)
        qputenv(variable, m_path);
}

TemporaryFolder::~TemporaryFolder()
{
    if (current != this)
        return;
    if (m_before.isNull())
        qunsetenv(variable);
    else
        qputenv(variable, m_before);
    const DelayedInterruption delayed;
    remove();
    if (m_directory)
        closedir(m_directory);
    current = nullptr;
    endWhenInterrupted();
}

void TemporaryFolder::removeCurrent()
{
    const DelayedInterruption delayed;
    if (current)
        current->remove();
}

/// In a signal handler as well: nobody else reads the directory meanwhile, and the room to do so
/// was taken when it was opened.
void TemporaryFolder::remove()
{
    if (m_directory) {
        rewinddir(m_directory);
        while (const dirent* const entry = readdir(m_directory))
            unlinkat(dirfd(m_directory), entry->d_name, 0); // "." and ".." stay
    }
    rmdir(m_path.constData());
}

} // namespace tresk::cli
