#include <tresk/SummaryCreator.h>

#include <tresk/SummaryReader.h>
#include <tresk/TreskParser.h>

#include "core/Logging.h"
#include "summary/FileIndex.h"

#include <QDebug>

#include <optional>

namespace tresk {

namespace {

const QLatin1String summaryFilename("ws_summary.xml");

/// The summary as the last of @p files, those of one section, has it; nothing where that is not
/// a summary document or cannot be read.
std::optional<Summary> readSummaryDocument(TreskParser& parser, const QList<FileTag>& files)
{
    if (files.isEmpty() || files.constLast().filename != summaryFilename)
        return std::nullopt;
    const int id = files.constLast().id;
    const QSharedPointer<QByteArray> content = parser.getFileContent(id);
    if (!content) {
        qCDebug(debugCategory) << "could not read summary" << id;
        return std::nullopt;
    }
    // With the size: on its own, the array would end at its first NUL.
    const QString text = QString::fromUtf8(content->constData(), int(content->size()));
    return SummaryReader().readSummary(text);
}

/// Ties the files that @p summary names to those of its section, @p files.
void tieFiles(Summary& summary, const QList<FileTag>& files)
{
    FileIndex index(files);
    for (FileSummary& file : summary.files) {
        if (!file.embedded)
            continue;
        if (const std::optional<int> id = index.take(file))
            file.tagId = *id;
    }
}

QList<FileSummary> fromTags(const QList<FileTag>& tags)
{
    QList<FileSummary> files;
    for (const FileTag& tag : tags)
        files.append(makeFileSummaryFromFileTag(tag));
    return files;
}

void reportMismatches(const QList<FileSummary>& files)
{
    if (!debugCategory().isDebugEnabled())
        return;
    for (const FileSummary& file : files) {
        qCDebug(debugCategory) << "foundMismatch";
        printFileSummary(file);
    }
}

} // namespace

SummaryCreator::SummaryCreator() = default;

SummaryCreator::~SummaryCreator() = default;

QList<Summary> SummaryCreator::createSummaries(TreskParser& parser)
{
    QList<Summary> summaries;
    QList<FileSummary> newestFiles; // shared by the summaries that get them
    const QList<SectionTag> sections = parser.getSections();
    for (auto section = sections.crbegin(); section != sections.crend(); ++section) {
        const QList<FileTag> files = parser.getFilesInSection(section->id);
        std::optional<Summary> summary = readSummaryDocument(parser, files);
        if (!summary) {
            summaries.append(makeSummaryFromTags(*section, files));
            continue;
        }
        const int readTagId = summary->tagId;
        summary->tagId = section->id;
        tieFiles(*summary, files);
        // A summary gets those files of a section that no summary has named, but the section is
        // that of the id that was read. This is -1, or 0 where there was no step element: such a
        // summary, which names no files, gets all those of the newest section, whose own turn
        // comes last.
        if (readTagId == 0) {
            if (newestFiles.isEmpty())
                newestFiles = fromTags(parser.getFilesInSection(0));
            summary->files = newestFiles;
            reportMismatches(newestFiles);
        }
        summaries.append(*summary);
    }

    Summary unmatched;
    unmatched.title = QStringLiteral("<unmatched files>");
    unmatched.files = fromTags(parser.getSectionlessFiles());
    if (!unmatched.files.isEmpty())
        summaries.append(unmatched);
    return summaries;
}

} // namespace tresk
