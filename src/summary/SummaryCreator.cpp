#include <tresk/SummaryCreator.h>

#include <tresk/SummaryReader.h>
#include <tresk/TreskParser.h>

#include "container/Deflate.h"
#include "core/Logging.h"
#include "summary/FileIndex.h"

#include <QDebug>

#include <algorithm>
#include <limits>
#include <optional>

namespace tresk {

namespace {

const QLatin1String summaryFilename("ws_summary.xml");
// That all versions of Qt hold as a text.
constexpr int longestSummary = std::numeric_limits<int>::max() / 2 - 64;
// Inflated before a stream is found to be longer than its content is said to be.
constexpr qint64 largestExcess = qint64(1024) * 1024;

/// The stored bytes of @p file; none where they are not all inside the document.
qint64 storedSize(TreskParser& parser, const FileTag& file)
{
    const qint64 start = qint64(file.pos) + file.tagLength + file.offset;
    const qint64 end = start + file.cfilesize;
    const bool isInside = start >= 0 && start < end && end <= std::numeric_limits<int>::max()
        && !parser.getBytes(int(end - 1), 1).isEmpty();
    return isInside ? file.cfilesize : 0;
}

/// What it takes to read a summary document, in bytes that are stored or inflated.
struct Effort {
    qint64 content; ///< the size that it should have
    qint64 whole; ///< to read it if it has
    qint64 vain; ///< at most if it cannot be read
};

/// The effort for @p file; nothing where it cannot be read, whatever its bytes are.
std::optional<Effort> effortOf(TreskParser& parser, const FileTag& file)
{
    const qint64 stored = storedSize(parser, file);
    if (file.compression == QLatin1String("none"))
        return Effort{stored, stored, stored};
    const qint64 most = stored * largestRatio;
    if (file.compression != QLatin1String("flate") || file.filesize < 0 || file.filesize > most)
        return std::nullopt;
    // A stream that should be empty is followed to its end: it is right also if it is damaged.
    if (file.filesize == 0)
        return Effort{0, most, most};
    const qint64 whole = std::max<qint64>(stored, file.filesize);
    return Effort{file.filesize, whole, std::max(whole, std::min(most, whole + largestExcess))};
}

/// The content of the summary document @p file of the section @p sectionId; null where it cannot
/// be read or is beyond @p budget, which is charged with the effort also if that was in vain.
QSharedPointer<QByteArray> readContent(TreskParser& parser, int sectionId, const FileTag& file,
                                       SummaryBudget& budget)
{
    const std::optional<Effort> effort = effortOf(parser, file);
    if (!effort)
        return {};
    if (effort->whole > budget.bytes || effort->content > longestSummary) {
        budget.unread.append(sectionId);
        return {};
    }
    QSharedPointer<QByteArray> content = parser.getFileContent(file.id);
    budget.bytes -= content ? effort->whole : std::min(effort->vain, budget.bytes);
    return content;
}

/// The summary as the last of @p files, those of the section @p sectionId, has it; nothing where
/// that is not a summary document, cannot be read or is beyond @p budget.
std::optional<Summary> readSummaryDocument(TreskParser& parser, int sectionId,
                                           const QList<FileTag>& files, SummaryBudget& budget)
{
    if (files.isEmpty() || files.constLast().filename != summaryFilename)
        return std::nullopt;
    const FileTag& file = files.constLast();
    const QSharedPointer<QByteArray> content = readContent(parser, sectionId, file, budget);
    if (!content) {
        qCDebug(debugCategory) << "could not read summary" << file.id;
        return std::nullopt;
    }
    // Each file takes thirty times the room of an empty element, so they are counted in advance:
    // not exactly, but never too few. Those of the section are paid for.
    if (content->count("<InFile") + content->count("<OutFile") - files.size() > budget.files) {
        budget.namingTooMany.append(sectionId);
        return std::nullopt;
    }
    // With the size: on its own, the array would end at its first NUL.
    const QString text = QString::fromUtf8(content->constData(), int(content->size()));
    return SummaryReader().readSummary(text);
}

/// How many of @p files, all those of the document, begin in the region of @p section, without a
/// look at each: as many as lie in it, unless blocks are damaged. Never less.
qint64 countFilesIn(const QList<FileTag>& files, const SectionTag& section)
{
    const qint64 begin = qint64(section.pos) - section.left;
    const qint64 end = begin + section.size;
    const auto liesBefore = [](const FileTag& file, qint64 pos) { return file.pos < pos; };
    const auto first = std::lower_bound(files.cbegin(), files.cend(), begin, liesBefore);
    return std::lower_bound(first, files.cend(), end + 1, liesBefore) - first;
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

/// Gives @p summary the files of the newest section, @p newestFiles, which all that get them share.
void takeNewestFiles(Summary& summary, QList<FileSummary>& newestFiles, TreskParser& parser,
                     SummaryBudget& budget)
{
    if (newestFiles.isEmpty())
        newestFiles = fromTags(parser.getFilesInSection(0));
    if (!allowFiles(newestFiles.size(), summary.tagId, budget))
        return;
    summary.files = newestFiles;
    reportMismatches(newestFiles);
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
    QList<FileSummary> newestFiles; // taken from the document once they are needed
    const QList<FileTag> allFiles = parser.getFiles();
    const QList<SectionTag> sections = parser.getSections();
    for (auto section = sections.crbegin(); section != sections.crend(); ++section) {
        // Where all sections hold all files, even asking for them would take too long.
        if (countFilesIn(allFiles, *section) > budget.files) {
            budget.withoutFiles.append(section->id);
            summaries.append(makeSummaryFromTags(*section, {}));
            continue;
        }
        const QList<FileTag> files = parser.getFilesInSection(section->id);
        budget.files -= files.size();
        std::optional<Summary> summary = readSummaryDocument(parser, section->id, files, budget);
        if (!summary) {
            summaries.append(makeSummaryFromTags(*section, files));
            continue;
        }
        const int readTagId = summary->tagId;
        summary->tagId = section->id;
        budget.files -= std::max<qint64>(summary->files.size() - files.size(), 0);
        tieFiles(*summary, files);
        // A summary gets those files of a section that no summary has named, but the section is
        // that of the id that was read. This is -1, or 0 where there was no step element: such a
        // summary, which names no files, gets all those of the newest section, whose own turn
        // comes last.
        if (readTagId == 0)
            takeNewestFiles(*summary, newestFiles, parser, budget);
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
