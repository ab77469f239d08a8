// Writes all embedded files of a document to a new folder, and compares what was written with the
// checksums of the document.

#include "Printable.h"

#include <tresk/ExtractionQueue.h>
#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <iostream>

namespace {

/// A name of our own making: the document's could be "../../.profile", or two could be the same.
QString safeName(const tresk::FileTag& file)
{
    const QString allowed = QStringLiteral("abcdefghijklmnopqrstuvwxyz0123456789.-_");
    QString name = file.filename.toLower().right(100);
    std::replace_if(
        name.begin(), name.end(), [&](QChar c) { return !allowed.contains(c); }, QLatin1Char('_'));
    return QString::number(file.id) + QLatin1Char('-') + name;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 3) {
        std::cerr << "usage: extract_files DOCUMENT NEW-FOLDER\n";
        return 2;
    }

    tresk::TreskParser parser;
    if (!parser.open(QFile::decodeName(argv[1]))) {
        std::cerr << argv[1] << (parser.readFailed() ? ": cannot be read\n" : ": has no history\n");
        return 2;
    }
    const QDir folder(QFile::decodeName(argv[2]));
    if (!QDir().mkdir(folder.path())) { // one that exists could hold files, or links to others
        std::cerr << argv[2] << ": cannot be made\n";
        return 2;
    }

    QHash<int, QString> targets;
    QHash<QString, qint64> sizes;
    QList<tresk::SavedFile> saved;
    for (const tresk::FileTag& file : parser.getFiles()) {
        const QString path = folder.filePath(safeName(file));
        targets.insert(file.id, path);
        sizes.insert(path, file.filesize);
        saved.append({path, file.md5file, file.filesize});
    }

    tresk::ExtractionQueue extraction(&parser);
    QObject::connect(&extraction, &tresk::ExtractionQueue::percentFinishedChanged,
                     [&](int, const QString& path) {
                         if (QFileInfo(path).size() > sizes.value(path)) // may grow without end
                             extraction.cancelExtraction();
                     });
    extraction.addExtractees(targets);
    while (extraction.process()) { }

    int failures = 0;
    tresk::ValidationQueue validation(nullptr, 0);
    QObject::connect(&validation, &tresk::ValidationQueue::savedFileProcessed,
                     [&](const QString& path, bool valid) {
                         valid = valid && QFileInfo(path).size() == sizes.value(path);
                         failures += valid ? 0 : 1;
                         std::cout << printable(path) << (valid ? "\n" : ": WRONG\n");
                     });
    validation.addValidatees(saved);
    while (validation.process()) { }
    return failures == 0 ? 0 : 1;
}
