#include <tresk/SummaryCreator.h>

#include <tresk/SummaryReader.h>
#include <tresk/TreskParser.h>

#include "core/Logging.h"
#include "summary/FileIndex.h"

#include <QDebug>

#include <algorithm>
#include <limits>
#include <optional>

namespace tresk {

namespace {

const QLatin1String summaryFilename("ws_summary.xml");
constexpr int longestSummary = std::numeric_limits<int>::max() / 2
    - 64; // that all versions of Qt hold

/// The summary as the last of @p files, those of the section @p sectionId, has it; nothing where
/// that is not a summary document, cannot be read or is beyond @p budget.
std::optional<Summary> readSummaryDocument(TreskParser& parser, int sectionId,
                                           const QList<FileTag>& files, SummaryBudget& budget)
{
    if (files.isEmpty() || files.constLast().filename != summaryFilename)
        return std::nullopt;
    const FileTag& file = files.constLast();
    const int size = file.compression == QLatin1String("none") ? file.cfilesize : file.filesize;
    const bool fits = size <= std::min<qint64>(budget.bytes, longestSummary);
    if (!fits)
        budget.unread.append(sectionId);
    const QSharedPointer<QByteArray> content = fits ? parser.getFileContent(file.id)
                                                    : QSharedPointer<QByteArray>();
    if (!content) {
        qCDebug(debugCategory) << "could not read summary" << file.id;
        return std::nullopt;
    }
    budget.bytes -= content->size();
    // Each file takes thirty times the room of an empty element, so they are counted in advance:
    // not exactly, but never too few.
    if (content->count("<InFile") + content->count("<OutFile") > budget.files) {
        budget.unread.append(sectionId);
        return std::nullopt;
    }
    // With the size: on its own, the array would end at its first NUL.
    const QString text = QString::fromUtf8(content->constData(), int(content->size()));
    return SummaryReader().readSummary(text);
}

/// Ties the files that @p summary names to those of its section, @p files.
void tieFiles(Summary& summary, const QList<FileTag>& files)
{
    if (summary.files.isEmpty())
        return;
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

/// Takes the files of a summary from @p budget; false where it does not suffice.
bool allowFiles(qint64 count, int sectionId, SummaryBudget& budget)
{
    if (count > budget.files) {
        budget.withoutFiles.append(sectionId);
        return false;
    }
    budget.files -= count;
    return true;
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
    SummaryBudget unlimited;
    unlimited.bytes = std::numeric_limits<qint64>::max();
    unlimited.files = std::numeric_limits<qint64>::max();
    return createSummaries(parser, unlimited);
}

QList<Summary> SummaryCreator::createSummaries(TreskParser& parser, SummaryBudget& budget)
{
    QList<Summary> summaries;
    QList<FileSummary> newestFiles; // shared by the summaries that get them
    const QList<SectionTag> sections = parser.getSections();
    for (auto section = sections.crbegin(); section != sections.crend(); ++section) {
        const QList<FileTag> files = parser.getFilesInSection(section->id);
        std::optional<Summary> summary = readSummaryDocument(parser, section->id, files, budget);
        if (!summary) {
            const bool allowed = allowFiles(files.size(), section->id, budget);
            summaries.append(makeSummaryFromTags(*section, allowed ? files : QList<FileTag>()));
            continue;
        }
        const int readTagId = summary->tagId;
        summary->tagId = section->id;
        budget.files -= summary->files.size();
        tieFiles(*summary, files);
        // A summary gets those files of a section that no summary has named, but the section is
        // that of the id that was read. This is -1, or 0 where there was no step element: such a
        // summary, which names no files, gets all those of the newest section, whose own turn
        // comes last.
        if (readTagId == 0) {
            if (newestFiles.isEmpty())
                newestFiles = fromTags(parser.getFilesInSection(0));
            if (allowFiles(newestFiles.size(), section->id, budget)) {
                summary->files = newestFiles;
                reportMismatches(newestFiles);
            }
        }
        summaries.append(*summary);
    }

    Summary unmatched;
    unmatched.title = QStringLiteral("<unmatched files>");
    const QList<FileTag> sectionless = parser.getSectionlessFiles();
    if (allowFiles(sectionless.size(), -1, budget))
        unmatched.files = fromTags(sectionless);
    if (!sectionless.isEmpty())
        summaries.append(unmatched);
    return summaries;
}

} // namespace tresk
