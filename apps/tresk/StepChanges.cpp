#include "StepChanges.h"

#include "Summaries.h"
#include "Text.h"

#include <QHash>
#include <QPair>

namespace tresk::cli {

namespace {

struct TextField {
    const char* name;
    QString Workflowstep::*member;
};

constexpr TextField textFields[] = {
    {"time", &Workflowstep::timestamp},  {"title", &Workflowstep::title},
    {"tool", &Workflowstep::tool},       {"description", &Workflowstep::description},
    {"comment", &Workflowstep::comment}, {"command", &Workflowstep::command},
    {"user", &Workflowstep::user},       {"host", &Workflowstep::host},
};

/// Which files of a step are taken for the same: those of one purpose and name. Of several with
/// the same name the first corresponds to the first.
using FileKey = QPair<QString, QString>;

FileKey keyOf(const FileSummary& file)
{
    return {file.filePurpose, file.filename};
}

QHash<FileKey, QList<FileSummary>> filesByKey(const QList<FileSummary>& files)
{
    QHash<FileKey, QList<FileSummary>> byKey;
    for (const FileSummary& file : files)
        byKey[keyOf(file)].append(file);
    return byKey;
}

bool isSameContent(const FileSummary& a, const FileSummary& b)
{
    return a.uncompressedMD5 == b.uncompressedMD5 && a.uncompressedSize == b.uncompressedSize;
}

void appendFileChanges(QList<Change>& changes, const QList<FileSummary>& first,
                       const QList<FileSummary>& second)
{
    QHash<FileKey, QList<FileSummary>> left = filesByKey(second);
    for (const FileSummary& file : first) {
        QList<FileSummary>& counterparts = left[keyOf(file)];
        if (counterparts.isEmpty())
            changes.append({Change::FileRemoved, file.filePurpose, file.filename, {}});
        else if (!isSameContent(file, counterparts.takeFirst()))
            changes.append({Change::FileAltered, file.filePurpose, file.filename, file.filename});
    }
    QHash<FileKey, QList<FileSummary>> before = filesByKey(first);
    for (const FileSummary& file : second) {
        QList<FileSummary>& counterparts = before[keyOf(file)];
        if (counterparts.isEmpty())
            changes.append({Change::FileAdded, file.filePurpose, {}, file.filename});
        else
            counterparts.removeFirst();
    }
}

} // namespace

QList<Change> changesBetween(const Workflowstep& first, const Workflowstep& second)
{
    QList<Change> changes;
    for (const TextField& field : textFields) {
        const QString& before = first.*(field.member);
        const QString& after = second.*(field.member);
        if (before != after)
            changes.append({Change::Altered, QLatin1String(field.name), before, after});
    }
    appendFileChanges(changes, first.files, second.files);
    return changes;
}

QString changeText(const Change& change)
{
    switch (change.kind) {
    case Change::FileRemoved:
        return QStringLiteral("- %1 %2").arg(purposeText(change.what), quoted(change.before));
    case Change::FileAdded:
        return QStringLiteral("+ %1 %2").arg(purposeText(change.what), quoted(change.after));
    case Change::FileAltered:
        return QStringLiteral("! %1 %2: other content")
            .arg(purposeText(change.what), quoted(change.before));
    case Change::Altered:
        break;
    }
    return QStringLiteral("%1: %2 -> %3")
        .arg(change.what, quoted(change.before), quoted(change.after));
}

} // namespace tresk::cli
