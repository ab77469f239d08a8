#include "PageFile.h"

#include "Invocation.h"
#include "Messages.h"
#include "SystemText.h"

#include <cerrno>
#include <sys/stat.h>

namespace tresk::cli {

namespace {

bool isSameFile(const QString& a, const QString& b)
{
    struct stat first = {};
    struct stat second = {};
    return ::stat(toSystem(a).constData(), &first) == 0
        && ::stat(toSystem(b).constData(), &second) == 0 && first.st_dev == second.st_dev
        && first.st_ino == second.st_ino;
}

/// A path that Qt encodes as it was given; where it cannot, there is none.
bool isUsable(const QString& path)
{
    return !path.isEmpty() && !isUndecoded(path) && path != QLatin1String("-");
}

} // namespace

PageFile::PageFile(Invocation& invocation, const char* option)
    : m_output(invocation.output)
    , m_toFile(invocation.isSet(option))
    , m_path(invocation.value(option))
{
}

bool PageFile::open(const QStringList& documents)
{
    if (!m_toFile)
        return true;
    if (!isUsable(m_path)) {
        reportError(m_path, QStringLiteral("is no name that a page can be written to"));
        return false;
    }
    for (const QString& document : documents) {
        if (isSameFile(document, m_path)) {
            reportError(m_path,
                        QStringLiteral("is the document itself, which is not written over"));
            return false;
        }
    }
    m_file = std::make_unique<QSaveFile>(m_path);
    if (m_file->open(QIODevice::WriteOnly))
        return true;
    reportError(m_path, QStringLiteral("cannot be written: ") + m_file->errorString());
    return false;
}

void PageFile::write(const QByteArray& bytes)
{
    if (m_file)
        m_file->write(bytes);
    else
        m_output.write(bytes);
}

bool PageFile::finish()
{
    if (!m_file) {
        m_output.flush(); // what went wrong there is reported at the end
        return true;
    }
    if (m_file->commit())
        return true;
    reportError(m_path, QStringLiteral("cannot be written: ") + m_file->errorString());
    return false;
}

} // namespace tresk::cli
