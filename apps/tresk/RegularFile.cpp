#include "RegularFile.h"

#include "SystemText.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace tresk::cli {

OpenedFile openRegularFile(const QString& path)
{
    OpenedFile file;
    if (path == QLatin1String("-")) {
        file.problem = QStringLiteral(
            "standard input is not supported (./- is a file of that name)");
        return file;
    }
    // Without O_NONBLOCK a named pipe would wait for its writer.
    file.fd = ::open(toSystem(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    struct stat status = {};
    if (file.fd == -1 || fstat(file.fd, &status) != 0) {
        file.problem = systemError(errno);
        return file;
    }
    file.size = status.st_size;
    file.isUnfit = !S_ISREG(status.st_mode);
    file.isDirectory = S_ISDIR(status.st_mode);
    if (file.isDirectory)
        file.problem = QStringLiteral("is a directory");
    else if (file.isUnfit)
        file.problem = QStringLiteral("is not a regular file");
    return file;
}

} // namespace tresk::cli
