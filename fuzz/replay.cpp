// Runs a target with inputs from files, without libFuzzer:
//
//     fuzz_replay TARGET FILE|DIRECTORY...
//
// Names each file before it is run; what fails ends the program.

#include "FuzzTarget.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace {

/// The files that @p path names: itself, or those of the folder, sorted by name.
QStringList filesAt(const QString& path)
{
    if (!QFileInfo(path).isDir())
        return {path};
    QStringList files;
    const QDir folder(path);
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden, QDir::Name);
    for (const QString& name : names)
        files += folder.filePath(name);
    return files;
}

bool replay(const tresk_fuzz::Target& target, const QString& path)
{
    const QByteArray shown = QFile::encodeName(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s: cannot be read\n", shown.constData());
        return false;
    }
    std::fprintf(stderr, "%s\n", shown.constData());
    target.run()(file.readAll());
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const tresk_fuzz::Target* const target = argc > 2 ? tresk_fuzz::Target::find(argv[1]) : nullptr;
    if (!target) {
        std::fputs("usage: fuzz_replay TARGET FILE|DIRECTORY...\n", stderr);
        return 2;
    }
    tresk_fuzz::prepareProcess();
    int count = 0;
    for (int i = 2; i < argc; ++i) {
        const QStringList files = filesAt(QFile::decodeName(argv[i]));
        for (const QString& file : files) {
            if (!replay(*target, file))
                return 2;
            ++count;
        }
    }
    return count > 0 ? 0 : 2;
}
