// Documents whose sizes, distances and checksums were made to fit again after their bytes were
// changed: so the changes get past these. Content, checksums, verdicts and extracted files must be
// what models make of the same bytes with zlib and digests of their own, and whatever is valid must
// be what its marker says by every road.

#include "ParserComparison.h"
#include "QueueComparison.h"
#include "ScratchFile.h"

#include "DocumentRepair.h"
#include "DocumentWriter.h"

#include <tresk/SummaryCreator.h>

#include <QSet>

#include <algorithm>

using tresk_fuzz::ScratchFile;

namespace {

constexpr int mostDocument = 4 * 1024;
constexpr int mostFiles = 24;
constexpr int largestBlock = 1 << 30;

/// Whether files share bytes, and more than a few: one stream may unpack into a thousand times as
/// much for each of them.
bool sharesBytes(const tresk::TreskParser& parser)
{
    qint64 stored = 0;
    const QList<tresk::FileTag> files = parser.getFiles();
    for (const tresk::FileTag& file : files)
        stored += file.cfilesize <= mostDocument ? file.cfilesize : 0;
    return stored > mostDocument;
}

/// The ids of the files that a validation finds valid.
QSet<int> validFiles(tresk::TreskParser& parser, int blockSize)
{
    QSet<int> valid;
    tresk::ValidationQueue queue(&parser, blockSize);
    QObject::connect(&queue, &tresk::ValidationQueue::fileProcessed,
                     [&valid](int id, bool isValid) {
                         if (isValid)
                             valid.insert(id);
                     });
    QList<int> ids;
    for (int id = 0; id < parser.getNumFiles() && id < mostFiles; ++id)
        ids.append(id);
    queue.addValidatees(ids, {});
    while (queue.process()) { }
    return valid;
}

/// The stored bytes of a file, or those of its content where its checksum is of these.
QByteArray checkedContent(const QByteArray& document, const tresk::FileTag& file)
{
    const qint64 start = qint64(file.pos) + file.tagLength + file.offset;
    const bool flate = file.compression == QLatin1String("flate");
    const int size = std::max(0, flate ? file.cfilesize : file.filesize);
    TRESK_REQUIRE(size == 0 || start + size <= document.size());
    const QByteArray stored = size > 0 ? document.mid(int(start), size) : QByteArray();
    if (!flate || file.md5cfile.isEmpty())
        return stored;
    TRESK_REQUIRE(QString::fromLatin1(tresktest::md5Hex(stored)) == file.md5cfile);
    return qUncompress(QByteArray("\0\1\0\0", 4) + stored);
}

void requireValid(tresk::TreskParser& parser, const QByteArray& document,
                  const tresk::FileTag& file)
{
    static ScratchFile output;
    const QByteArray content = checkedContent(document, file);
    TRESK_REQUIRE(QString::fromLatin1(tresktest::md5Hex(content)) == file.md5file);
    // Only these two are read, and one that is checked as it is stored is inflated nevertheless.
    const bool plain = file.compression == QLatin1String("none");
    if (!plain && (file.compression != QLatin1String("flate") || file.md5cfile.isEmpty()))
        return;
    TRESK_REQUIRE(parser.writeFileToDisk(file.id, output.path()));
    TRESK_REQUIRE(output.content() == content);
}

/// Returns whether there is something more to do with it.
bool readDocument(tresk::ParseMode mode, const QString& path, const QByteArray& document)
{
    tresk::TreskParser parser(mode);
    if (!tresk_fuzz::openBoth(parser, mode, path, document) || sharesBytes(parser))
        return false;
    const QSet<int> valid = validFiles(parser, largestBlock);
    const QList<tresk::FileTag> files = parser.getFiles();
    const bool smallSizes = std::all_of(files.begin(), files.end(), [](const auto& file) {
        return file.filesize <= mostDocument && file.cfilesize <= mostDocument;
    });
    if (smallSizes) // or there would be very many steps
        TRESK_REQUIRE(validFiles(parser, 50) == valid);
    for (int id = 0; id < parser.getNumFiles() && id < mostFiles; ++id) {
        const tresk::FileTag file = *parser.getFile(id);
        tresk_fuzz::requireSameContent(parser, mode, file);
        if (valid.contains(id))
            requireValid(parser, document, file);
    }
    tresk::SummaryCreator creator;
    const int unmatched = parser.getSectionlessFiles().isEmpty() ? 0 : 1;
    TRESK_REQUIRE(creator.createSummaries(parser).size() == parser.getNumSections() + unmatched);
    return true;
}

/// All of the document through both queues, with small blocks and with large ones.
void runQueues(const QByteArray& document)
{
    static tresk_fuzz::QueueSurroundings surroundings;
    surroundings.documents[0].open(document);
    tresk_fuzz::QueueComparison comparison(surroundings);
    for (const char* operation : {"b 64", "R 0", "z", "b 0", "R 0", "z"})
        comparison.perform(operation);
    comparison.requireWritten();
    surroundings.documents[0].requireUnchanged();
}

void runRepaired(const QByteArray& input)
{
    if (input.size() > mostDocument)
        return;
    static ScratchFile file;
    const QByteArray document = tresktest::repairedDocument(input);
    TRESK_REQUIRE(document.size() == input.size());
    file.setContent(document);
    readDocument(tresk::ParseStrict, file.path(), document);
    if (readDocument(tresk::ParseTolerant, file.path(), document))
        runQueues(document);
}

const tresk_fuzz::Target target("repaired", runRepaired);

} // namespace
