#include <tresk/ValidationQueue.h>

#include <tresk/TreskParser.h>

#include "container/QueueSteps.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <limits>

namespace tresk {

namespace {

constexpr int defaultBlockSize = 100000;
constexpr int largestPiece = 1024 * 1024;

enum ValidateeType {
    SectionType = 0,
    EmbeddedFileType = 1,
    SavedFileType = 2,
};

QSet<int> setOf(const QList<int>& ids)
{
    return {ids.begin(), ids.end()};
}

/// Whether the place @p offset bytes into the section @p entry is that of its marker.
bool isAtTag(const Validatee& entry, qint64 offset)
{
    return entry.type == SectionType && entry.start + offset == entry.tagPos;
}

/// Whether the document has all bytes of @p entry. The digest of those that could be read says
/// nothing of the rest: it may be one that somebody wrote down, if only that of no bytes.
bool isInDocument(TreskParser& parser, const Validatee& entry)
{
    const qint64 last = qint64(entry.start) + entry.length - 1;
    return entry.length <= 0
        || (entry.start >= 0 && last <= std::numeric_limits<int>::max()
            && parser.getBytes(int(last), 1).size() == 1);
}

} // namespace

ValidationQueue::ValidationQueue(TreskParser* parser, int blockSize)
    : m_validator(QString(), QString())
    , m_blockSize(blockSize < 1 ? defaultBlockSize : blockSize)
{
    m_stopWatch.publishToLogSignal(this);
    reinit(parser);
}

ValidationQueue::~ValidationQueue() = default;

/// Leaves the offset as it is.
void ValidationQueue::reinit(TreskParser* parser)
{
    m_queue.clear();
    m_parser = parser;
    m_tagFed = false;
    m_total = 0;
    m_processed = 0;
}

void ValidationQueue::reset(TreskParser* parser)
{
    reinit(parser);
    m_stopWatch.start(tr("validation finished"), false);
}

void ValidationQueue::repopulate(TreskParser* parser)
{
    reset(parser);
    m_offset = 0;
    if (!parser)
        return;
    const QList<SectionTag> sections = parser->getSections();
    for (auto section = sections.crbegin(); section != sections.crend(); ++section)
        append(validateeFromSection(*section));
    const QList<FileTag> files = parser->getFiles();
    for (const FileTag& file : files)
        append(validateeFromFile(file));
}

void ValidationQueue::addValidatees(const QList<int>& fileIds, const QList<int>& sectionIds)
{
    if (!m_parser)
        return;
    const QSet<int> wantedSections = setOf(sectionIds);
    const QList<SectionTag> sections = m_parser->getSections();
    for (auto section = sections.crbegin(); section != sections.crend(); ++section) {
        if (wantedSections.contains(section->id))
            append(validateeFromSection(*section));
    }
    const QSet<int> wantedFiles = setOf(fileIds);
    const QList<FileTag> files = m_parser->getFiles();
    for (const FileTag& file : files) {
        if (wantedFiles.contains(file.id))
            append(validateeFromFile(file));
    }
}

void ValidationQueue::addValidatees(const QList<SavedFile>& files)
{
    for (const SavedFile& file : files)
        append(validateeFromSavedFile(file));
}

bool ValidationQueue::process()
{
    QString name;
    if (!m_queue.isEmpty()) {
        const Validatee entry = m_queue.constFirst();
        name = entry.name;
        if (m_offset == 0)
            beginEntry(entry);
        hashBlock(entry);
        if (m_offset == entry.length)
            finishEntry(entry);
    }
    Q_EMIT percentFinishedChanged(percentage(m_processed, m_total), name);
    if (m_queue.isEmpty()) {
        m_stopWatch.stop(true);
        forgetProgress();
    }
    return !m_queue.isEmpty();
}

void ValidationQueue::cancelValidation()
{
    m_queue.clear();
    forgetProgress();
    m_stopWatch.stop(true);
}

void ValidationQueue::forgetProgress()
{
    m_offset = 0;
    m_total = 0;
    m_processed = 0;
}

void ValidationQueue::append(const Validatee& validatee)
{
    m_queue.append(validatee);
    m_total += validatee.length;
}

Validatee ValidationQueue::validateeFromFile(const FileTag& file)
{
    Validatee validatee;
    validatee.type = EmbeddedFileType;
    validatee.id = file.id;
    validatee.start = storedStart(file);
    validatee.length = file.filesize;
    validatee.md5 = file.md5file;
    validatee.name = file.filename;
    if (file.compression == QLatin1String("flate")) {
        validatee.length = file.cfilesize;
        validatee.md5Compressed = file.md5cfile;
    }
    return validatee;
}

Validatee ValidationQueue::validateeFromSection(const SectionTag& section)
{
    Validatee validatee;
    validatee.type = SectionType;
    validatee.id = section.id;
    validatee.start = section.pos - section.left;
    validatee.length = section.size;
    validatee.tagPos = section.pos;
    validatee.validationTag = section.validationTag;
    validatee.md5 = section.md5section;
    validatee.name = section.title.isEmpty() ? tr("<no title>") : section.title;
    return validatee;
}

Validatee ValidationQueue::validateeFromSavedFile(const SavedFile& file)
{
    Validatee validatee;
    validatee.type = SavedFileType;
    validatee.length = file.size;
    validatee.md5 = file.md5;
    validatee.name = file.path;
    return validatee;
}

void ValidationQueue::beginEntry(const Validatee& entry)
{
    m_validator.reinit(entry.md5, entry.md5Compressed);
    m_tagFed = false;
    if (entry.type != SavedFileType)
        return;
    m_savedFile.close();
    m_savedFile.setFileName(entry.name);
    // Opening a pipe would wait for somebody to write into it.
    if (QFileInfo(entry.name).isFile())
        m_savedFile.open(QIODevice::ReadOnly);
}

void ValidationQueue::hashBlock(const Validatee& entry)
{
    // Below 0 where the length is, or where a region ends inside its marker, whose tag is fed as
    // a whole. Nothing is read then, and the entry ends with this step.
    qint64 count = std::min<qint64>(entry.length - m_offset, m_blockSize);
    const qint64 pos = entry.start + m_offset;
    if (entry.type == SectionType && pos < entry.tagPos)
        count = std::min(count, entry.tagPos - pos);
    if (count > 0)
        feed(entry, pos, int(count));
    m_offset += count;
    m_processed += count;

    // Once: a region that ends just before its tag would come back here for ever.
    if (isAtTag(entry, m_offset) && !m_tagFed) {
        m_validator.update(entry.validationTag);
        m_tagFed = true;
        m_offset += entry.validationTag.size(); // not progress: the total has the region alone
    }
}

/// Feeds the next @p count bytes of @p entry, or fewer: that is no error here.
void ValidationQueue::feed(const Validatee& entry, qint64 pos, int count)
{
    if (entry.type == SavedFileType)
        feedFromDisk(count);
    else if (pos <= std::numeric_limits<int>::max())
        m_validator.update(m_parser->getBytes(int(pos), count));
}

void ValidationQueue::feedFromDisk(int count)
{
    // In pieces, since QFile makes room for all of them before it reads.
    while (count > 0 && m_savedFile.isOpen()) {
        const QByteArray piece = m_savedFile.read(std::min(count, largestPiece));
        if (piece.isEmpty())
            return;
        m_validator.update(piece);
        count -= int(piece.size());
    }
}

void ValidationQueue::finishEntry(const Validatee& entry)
{
    // A region that ends where its tag begins does not hold the tag that was fed.
    const bool isThere = entry.type == SavedFileType ? m_savedFile.isOpen()
                                                     : isInDocument(*m_parser, entry);
    const bool valid = isThere && m_validator.isValid() && !isAtTag(entry, m_offset);
    switch (entry.type) {
    case SectionType:
        Q_EMIT sectionProcessed(entry.id, valid);
        break;
    case EmbeddedFileType:
        Q_EMIT fileProcessed(entry.id, valid);
        break;
    default:
        Q_EMIT savedFileProcessed(entry.name, valid);
        Q_EMIT log(
            (valid ? tr("Checksum of file %1 is correct") : tr("Checksum of file %1 is incorrect"))
                .arg(entry.name),
            0);
        break;
    }
    nextEntry();
}

void ValidationQueue::nextEntry()
{
    // A slot may have emptied the queue, or filled it anew; the first entry goes all the same.
    if (!m_queue.isEmpty())
        m_queue.removeFirst();
    m_savedFile.close();
    m_offset = 0;
}

} // namespace tresk
