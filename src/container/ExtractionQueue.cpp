#include <tresk/ExtractionQueue.h>

#include <tresk/TreskParser.h>

#include "container/QueueSteps.h"

#include <algorithm>

namespace tresk {

namespace {

constexpr int blockSize = 100000;

} // namespace

ExtractionQueue::ExtractionQueue(TreskParser* parser)
{
    m_stopWatch.publishToLogSignal(this);
    reinit(parser);
}

ExtractionQueue::~ExtractionQueue() = default;

void ExtractionQueue::reinit(TreskParser* parser)
{
    m_queue.clear();
    m_parser = parser;
    m_offset = 0;
    m_total = 0;
    m_processed = 0;
}

void ExtractionQueue::reset(TreskParser* parser)
{
    reinit(parser);
}

void ExtractionQueue::addExtractees(const QHash<int, QString>& targets)
{
    if (!m_parser)
        return;
    QList<int> ids = targets.keys();
    std::sort(ids.begin(), ids.end()); // the order of the document
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    for (const int id : qAsConst(ids)) {
        const QSharedPointer<FileTag> file = m_parser->getFile(id);
        if (!file)
            continue;
        Extractee entry = extracteeFromFile(*file);
        entry.target = targets.value(id);
        m_queue.append(entry);
        m_total += entry.length;
    }
}

bool ExtractionQueue::process()
{
    QString filename;
    if (!m_queue.isEmpty()) {
        const Extractee entry = m_queue.constFirst();
        filename = entry.target;
        if (m_offset == 0)
            openTarget(entry);

        // A length below 0 makes a count below 0, which no read can give.
        const int count = std::min(entry.length - m_offset, blockSize);
        QByteArray data = m_parser->getBytes(entry.start + m_offset, count);
        if (data.size() != count) // The message names the target, not the document.
            return handleError(tr("Could not read from file %1").arg(entry.target), entry);
        m_offset += count;
        m_processed += count;
        if (!entry.md5Compressed.isEmpty()) {
            data = m_inflater.inflateData(data);
            if (!m_inflater.isValid())
                return handleError(tr("Could not decompress data from file %1").arg(entry.target),
                                   entry);
        }
        if (!write(data))
            return handleError(tr("Could not write to file file %1").arg(entry.target), entry);
        if (m_offset == entry.length) {
            Q_EMIT fileProcessed(entry.id, true);
            nextEntry();
        }
    }
    Q_EMIT percentFinishedChanged(percentage(m_processed, m_total), filename);
    if (m_queue.isEmpty())
        cancelExtraction();
    return !m_queue.isEmpty();
}

void ExtractionQueue::cancelExtraction()
{
    m_target.close();
    reinit(m_parser);
    m_stopWatch.stop(true); // never started: logs nothing
}

Extractee ExtractionQueue::extracteeFromFile(const FileTag& file)
{
    Extractee entry;
    entry.id = file.id;
    entry.start = storedStart(file);
    entry.length = file.filesize;
    entry.md5 = file.md5file;
    if (file.compression == QLatin1String("flate")) {
        entry.length = file.cfilesize;
        entry.md5Compressed = file.md5cfile;
    }
    return entry;
}

void ExtractionQueue::openTarget(const Extractee& entry)
{
    m_inflater.reset();
    m_target.close();
    m_target.setFileName(entry.target);
    // A failure shows when the first bytes, or none, are to be written. A file that is empty
    // already is not emptied: file systems make up for that by waiting for the disk.
    if (m_target.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered)
        && m_target.size() > 0 && !m_target.resize(0))
        m_target.close();
}

bool ExtractionQueue::write(const QByteArray& data)
{
    return m_target.isOpen() && m_target.write(data) == data.size();
}

void ExtractionQueue::nextEntry()
{
    if (!m_queue.isEmpty()) {
        m_processed += m_queue.constFirst().length - m_offset; // what was skipped counts as done
        m_queue.removeFirst();
    }
    m_target.close();
    m_offset = 0;
}

bool ExtractionQueue::handleError(const QString& message, const Extractee& entry)
{
    Q_EMIT log(message, 2);
    Q_EMIT fileProcessed(entry.id, false);
    nextEntry();
    return !m_queue.isEmpty();
}

} // namespace tresk
