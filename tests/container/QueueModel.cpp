#include "QueueModel.h"

#include "DocumentWriter.h"
#include "QueueEvents.h"
#include "TestFiles.h"

#include <QFileInfo>

#include <limits>

#include <zlib.h>

using tresk::FileTag;
using tresk::SavedFile;
using tresk::SectionTag;

namespace tresktest {

namespace {

struct Inflated {
    QByteArray content;
    bool finished = false;
    bool failed = false;
};

/// Decodes a stream from its beginning, as far as it goes.
Inflated inflated(const QByteArray& stream)
{
    Inflated result;
    z_stream zlib = {};
    if (inflateInit(&zlib) != Z_OK)
        qFatal("zlib could not be initialised");
    zlib.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(stream.constData()));
    zlib.avail_in = static_cast<uInt>(stream.size());
    QByteArray buffer(64 * 1024, '\0');
    int status = Z_OK;
    while (status == Z_OK) {
        zlib.next_out = reinterpret_cast<Bytef*>(buffer.data());
        zlib.avail_out = static_cast<uInt>(buffer.size());
        status = inflate(&zlib, Z_NO_FLUSH);
        result.content += buffer.left(buffer.size() - static_cast<int>(zlib.avail_out));
    }
    inflateEnd(&zlib);
    result.finished = status == Z_STREAM_END;
    result.failed = !result.finished && status != Z_BUF_ERROR; // that is: no more input
    return result;
}

QString percent(qint64 processed, qint64 total, const QString& name)
{
    const int none = std::numeric_limits<int>::min();
    if (total == 0)
        return percentEvent(none, name);
    const double value = static_cast<double>(processed) * 100.0 / static_cast<double>(total);
    const bool fits = value > -2147483649.0 && value < 2147483648.0;
    return percentEvent(fits ? static_cast<int>(value) : none, name);
}

QString takeAll(QStringList& events)
{
    const QString text = events.join(QStringLiteral(" | "));
    events.clear();
    return text;
}

qint64 dataStart(const FileTag& file)
{
    return qint64(file.pos) + file.tagLength + file.offset;
}

bool isFlate(const FileTag& file)
{
    return file.compression == QLatin1String("flate");
}

} // namespace

QByteArray DocumentView::read(qint64 pos, qint64 length) const
{
    if (pos < 0 || length < 0 || pos + length > bytes.size())
        return {};
    return bytes.mid(static_cast<int>(pos), static_cast<int>(length));
}

ValidationModel::ValidationModel(const DocumentView* document, int blockSize)
    : m_document(document)
    , m_blockSize(blockSize < 1 ? 100000 : blockSize)
{
}

void ValidationModel::reset(const DocumentView* document)
{
    m_queue.clear();
    m_document = document;
    m_total = 0;
    m_processed = 0;
    m_tagsMet = 0;
    stopWatch();
    m_watchRuns = true;
}

void ValidationModel::repopulate(const DocumentView* document)
{
    reset(document);
    m_offset = 0;
    if (document == nullptr)
        return;
    for (auto i = document->sections.size(); i > 0; --i)
        append(entryOf(document->sections.at(i - 1)));
    for (const FileTag& file : document->files)
        append(entryOf(file));
}

void ValidationModel::addValidatees(const QList<int>& fileIds, const QList<int>& sectionIds)
{
    if (m_document == nullptr)
        return;
    for (auto i = m_document->sections.size(); i > 0; --i) {
        if (sectionIds.contains(m_document->sections.at(i - 1).id))
            append(entryOf(m_document->sections.at(i - 1)));
    }
    for (const FileTag& file : m_document->files) {
        if (fileIds.contains(file.id))
            append(entryOf(file));
    }
}

void ValidationModel::addValidatees(const QList<SavedFile>& files)
{
    for (const SavedFile& file : files)
        append(entryOf(file));
}

ValidationModel::Entry ValidationModel::entryOf(const SectionTag& section)
{
    const QString untitled = QStringLiteral("<no title>");
    return {Section,
            section.id,
            qint64(section.pos) - section.left,
            section.size,
            section.pos,
            section.validationTag,
            section.md5section,
            QString(),
            section.title.isEmpty() ? untitled : section.title};
}

ValidationModel::Entry ValidationModel::entryOf(const FileTag& file)
{
    const bool flate = isFlate(file);
    return {File,         file.id,      dataStart(file), flate ? file.cfilesize : file.filesize,
            -1,           QByteArray(), file.md5file,    flate ? file.md5cfile : QString(),
            file.filename};
}

ValidationModel::Entry ValidationModel::entryOf(const SavedFile& file)
{
    return {Saved, 0, 0, file.size, -1, QByteArray(), file.md5, QString(), file.path};
}

void ValidationModel::append(const Entry& entry)
{
    m_queue.append(entry);
    m_total += entry.length;
}

bool ValidationModel::process()
{
    QString name;
    if (!m_queue.isEmpty()) {
        const Entry entry = m_queue.constFirst();
        name = entry.name;
        if (m_offset == 0)
            beginEntry(entry);
        hashBlock(entry);
        if (m_offset == entry.length)
            finishEntry(entry);
    }
    add(percent(m_processed, m_total, name));
    if (m_queue.isEmpty())
        cancelValidation();
    return !m_queue.isEmpty();
}

void ValidationModel::beginEntry(const Entry& entry)
{
    m_md5 = entry.md5;
    m_md5Compressed = entry.md5Compressed;
    m_fed.clear();
    m_incomplete = false;
    m_tagsMet = 0;
    if (entry.type != Saved)
        return;
    m_savedIsOpen = QFileInfo(entry.name).isFile();
    m_savedBytes = m_savedIsOpen ? readFile(entry.name) : QByteArray();
}

void ValidationModel::hashBlock(const Entry& entry)
{
    qint64 count = qMin(entry.length - m_offset, m_blockSize);
    if (entry.type == Section && entry.start + m_offset < entry.tagPos)
        count = qMin(count, entry.tagPos - entry.start - m_offset);
    const QByteArray bytes = entry.type == Saved ? readSaved(count)
                                                 : m_document->read(entry.start + m_offset, count);
    m_fed += bytes;
    m_incomplete = m_incomplete || (entry.type != Saved && bytes.size() < count);
    m_offset += count;
    m_processed += count;
    if (entry.type == Section && entry.start + m_offset == entry.tagPos && ++m_tagsMet == 1) {
        m_fed += entry.validationTag;
        m_offset += entry.validationTag.size();
    }
}

void ValidationModel::finishEntry(const Entry& entry)
{
    const bool isValid = m_tagsMet < 2 && fedIsValid() && (entry.type != Saved || m_savedIsOpen);
    const QString state = isValid ? QStringLiteral(" valid") : QStringLiteral(" invalid");
    if (entry.type == Section)
        add(QStringLiteral("section %1").arg(entry.id) + state);
    else if (entry.type == File)
        add(QStringLiteral("file %1").arg(entry.id) + state);
    else
        add(QStringLiteral("saved ") + entry.name + state);
    if (entry.type == Saved) {
        const QString verdict = isValid ? QStringLiteral(" is correct")
                                        : QStringLiteral(" is incorrect");
        add(QStringLiteral("log 0 Checksum of file ") + entry.name + verdict);
    }
    m_queue.removeFirst();
    m_savedBytes.clear();
    m_savedIsOpen = false;
    m_offset = 0;
}

QByteArray ValidationModel::readSaved(qint64 length)
{
    const auto count = static_cast<int>(qBound(qint64(0), length, qint64(m_savedBytes.size())));
    const QByteArray bytes = m_savedBytes.left(count);
    m_savedBytes.remove(0, count);
    return bytes;
}

bool ValidationModel::fedIsValid() const
{
    const auto isDigestOf = [](const QString& md5, const QByteArray& bytes) {
        return md5 == QString::fromLatin1(md5Hex(bytes));
    };
    if (m_incomplete)
        return false;
    if (m_md5Compressed.isEmpty())
        return isDigestOf(m_md5, m_fed);
    const Inflated stream = inflated(m_fed);
    return stream.finished && isDigestOf(m_md5, stream.content)
        && isDigestOf(m_md5Compressed, m_fed);
}

void ValidationModel::cancelValidation()
{
    m_queue.clear();
    m_tagsMet = 0;
    m_offset = 0;
    m_total = 0;
    m_processed = 0;
    stopWatch();
}

void ValidationModel::stopWatch()
{
    if (m_watchRuns)
        add(QStringLiteral("log 0 validation finished: TIME"));
    m_watchRuns = false;
}

QString ValidationModel::take()
{
    return takeAll(m_events);
}

ExtractionModel::ExtractionModel(const DocumentView* document)
    : m_document(document)
{
}

void ExtractionModel::reset(const DocumentView* document)
{
    m_queue.clear();
    m_document = document;
    m_offset = 0;
    m_total = 0;
    m_processed = 0;
}

void ExtractionModel::addExtractees(const QHash<int, QString>& targets)
{
    if (m_document == nullptr)
        return;
    for (const FileTag& file : m_document->files) {
        if (!targets.contains(file.id))
            continue;
        const bool flate = isFlate(file);
        m_queue.append({file.id, dataStart(file), flate ? file.cfilesize : file.filesize,
                        flate ? file.md5cfile : QString(), targets.value(file.id)});
        m_total += m_queue.constLast().length;
    }
}

bool ExtractionModel::process()
{
    QString name;
    if (!m_queue.isEmpty()) {
        const Entry entry = m_queue.constFirst();
        name = entry.target;
        const bool writable = QFileInfo(QFileInfo(entry.target).path()).isDir();
        if (m_offset == 0) {
            m_stored.clear();
            if (writable)
                m_written[entry.target].clear();
        }
        const qint64 count = qMin(entry.length - m_offset, qint64(100000));
        const QByteArray piece = m_document->read(entry.start + m_offset, count);
        if (piece.size() != count)
            return fail(QStringLiteral("Could not read from file "), entry);
        m_offset += count;
        m_processed += count;
        m_stored += piece;
        const Inflated stream = inflated(m_stored);
        if (!entry.md5Compressed.isEmpty() && stream.failed)
            return fail(QStringLiteral("Could not decompress data from file "), entry);
        if (!writable)
            return fail(QStringLiteral("Could not write to file file "), entry);
        m_written[entry.target] = entry.md5Compressed.isEmpty() ? m_stored : stream.content;
        if (m_offset == entry.length) {
            add(QStringLiteral("written %1").arg(entry.id));
            nextEntry();
        }
    }
    add(percent(m_processed, m_total, name));
    if (m_queue.isEmpty())
        reset(m_document);
    return !m_queue.isEmpty();
}

bool ExtractionModel::fail(const QString& message, const Entry& entry)
{
    add(QStringLiteral("log 2 ") + message + entry.target);
    add(QStringLiteral("failed %1").arg(entry.id));
    nextEntry();
    return !m_queue.isEmpty();
}

void ExtractionModel::nextEntry()
{
    m_processed += m_queue.constFirst().length - m_offset;
    m_queue.removeFirst();
    m_offset = 0;
}

void ExtractionModel::cancelExtraction()
{
    reset(m_document);
}

QString ExtractionModel::take()
{
    return takeAll(m_events);
}

} // namespace tresktest
