#include "FileSelection.h"

#include "Document.h"
#include "Text.h"

#include <algorithm>
#include <set>

namespace tresk::cli {

namespace {

bool isId(const QString& argument)
{
    return !argument.isEmpty() && std::all_of(argument.begin(), argument.end(), [](QChar c) {
        return c >= QLatin1Char('0') && c <= QLatin1Char('9');
    });
}

std::optional<FileTag> fileWithId(const Document& document, const QString& argument)
{
    bool fits = false;
    const int id = argument.toInt(&fits);
    if (const auto file = document.parser().getFile(fits ? id : -1))
        return *file;
    const int count = document.parser().getNumFiles();
    QString ids = QStringLiteral("the ids are 0 to %1").arg(count - 1);
    if (count < 2)
        ids = count == 1 ? QStringLiteral("the only one has the id 0")
                         : QStringLiteral("it has none");
    document.report(QStringLiteral("there is no file %1 (%2)").arg(argument, ids));
    return std::nullopt;
}

void reportSeveral(const Document& document, const QString& name, const QList<FileTag>& files)
{
    const int mostShown = 20;
    QStringList ids;
    for (const FileTag& file : files.mid(0, mostShown))
        ids += QString::number(file.id);
    if (files.size() > mostShown)
        ids += QStringLiteral("...");
    document.report(QStringLiteral("%1 is the name of several files, give the id: %2")
                        .arg(quoted(name), ids.join(QStringLiteral(", "))));
}

std::optional<FileTag> fileWithName(const Document& document, const QString& name)
{
    QList<FileTag> found;
    for (const FileTag& file : document.parser().getFiles()) {
        if (file.filename == name || unescaped(file.filename) == name)
            found += file;
    }
    if (found.size() == 1)
        return found.first();
    if (found.isEmpty())
        document.report(
            QStringLiteral("there is no file %1; 'tresk files' lists all").arg(quoted(name)));
    else
        reportSeveral(document, name, found);
    return std::nullopt;
}

} // namespace

std::optional<FileTag> selectFile(const Document& document, const QString& argument)
{
    return isId(argument) ? fileWithId(document, argument) : fileWithName(document, argument);
}

std::optional<QList<FileTag>> selectFiles(const Document& document, const QStringList& arguments)
{
    const QList<FileTag> files = document.parser().getFiles();
    if (arguments.isEmpty())
        return files;
    std::set<int> ids;
    bool complete = true;
    for (const QString& argument : arguments) {
        if (const auto file = selectFile(document, argument))
            ids.insert(file->id);
        else
            complete = false;
    }
    if (!complete)
        return std::nullopt;
    QList<FileTag> selected;
    for (const int id : ids)
        selected += files[id];
    return selected;
}

} // namespace tresk::cli
