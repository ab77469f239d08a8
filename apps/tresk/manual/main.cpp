#include "Completion.h"
#include "ManualPage.h"

#include <Commands.h>

#include <QDir>
#include <QFile>

#include <cstdio>

namespace {

using namespace tresk::cli;

/// Says what is wrong and returns false if that fails.
bool writeFile(const QString& path, const QString& text)
{
    QFile file(path);
    const QByteArray bytes = text.toUtf8();
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush())
        return true;
    std::fprintf(stderr, "tresk_manual: %s: %s\n", qPrintable(path),
                 qPrintable(file.errorString()));
    return false;
}

bool writePages(const QString& directory, const QString& date)
{
    if (!writeFile(directory + QStringLiteral("/tresk.1"), generalManualPage(date)))
        return false;
    for (const Command& command : commands()) {
        const QString path =
            QStringLiteral("%1/tresk-%2.1").arg(directory, QLatin1String(command.name));
        if (!writeFile(path, manualPage(command, date)))
            return false;
    }
    return true;
}

/// Each file has the name by which its shell finds it.
bool writeCompletions(const QString& directory)
{
    return writeFile(directory + QStringLiteral("/bash/tresk"), bash::completion())
        && writeFile(directory + QStringLiteral("/fish/tresk.fish"), fish::completion())
        && writeFile(directory + QStringLiteral("/zsh/_tresk"), zsh::completion());
}

bool makeDirectories(const QString& directory)
{
    for (const char* name : {"man1", "bash", "fish", "zsh"}) {
        const QString path = directory + QLatin1Char('/') + QLatin1String(name);
        if (!QDir().mkpath(path)) {
            std::fprintf(stderr, "tresk_manual: %s: cannot be made\n", qPrintable(path));
            return false;
        }
    }
    return true;
}

} // namespace

/// Writes the manual pages and what shells complete: tresk_manual DIRECTORY DATE
int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fputs("usage: tresk_manual DIRECTORY DATE\n", stderr);
        return 2;
    }
    const QString directory = QString::fromLocal8Bit(argv[1]);
    const QString date = QString::fromLatin1(argv[2]);
    const bool written = makeDirectories(directory)
        && writePages(directory + QStringLiteral("/man1"), date) && writeCompletions(directory);
    return written ? 0 : 1;
}
