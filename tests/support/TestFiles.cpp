#include "TestFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <sys/stat.h>

namespace tresktest {

TestDir::TestDir()
{
    if (!m_dir.isValid())
        qFatal("no temporary folder could be made");
}

QString TestDir::path(const QString& name) const
{
    return m_dir.filePath(name);
}

QString TestDir::write(const QString& name, const QByteArray& bytes) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        qFatal("%s could not be written", qPrintable(file.fileName()));
    return file.fileName();
}

QString TestDir::makePipe(const QString& name) const
{
    QString pipe = path(name);
    if (mkfifo(QFile::encodeName(pipe).constData(), S_IRUSR | S_IWUSR) != 0)
        qFatal("%s could not be made", qPrintable(pipe));
    return pipe;
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s could not be read", qPrintable(path));
    return file.readAll();
}

std::optional<bool> isOpen(const QString& path)
{
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    if (!descriptors.exists())
        return std::nullopt;
    const QString target = QFileInfo(path).canonicalFilePath();
    const QFileInfoList list = descriptors.entryInfoList(QDir::Files | QDir::System);
    return std::any_of(list.begin(), list.end(), [&target](const QFileInfo& descriptor) {
        return descriptor.symLinkTarget() == target;
    });
}

} // namespace tresktest
