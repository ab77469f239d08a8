#include "ContentCopy.h"

#include "ContentReader.h"
#include "Document.h"
#include "Interruption.h"
#include "Messages.h"
#include "Progress.h"
#include "Range.h"
#include "TargetDirectory.h"

#include <tresk/MD5Generator.h>

#include <utility>

namespace tresk::cli {

namespace {

using Failure = ContentCopy::Failure;

Failure interrupted()
{
    return {Failure::Interrupted, QStringLiteral("interrupted")};
}

} // namespace

ContentCopy::ContentCopy(Document& document, std::function<void(qint64)> progress)
    : m_document(document)
    , m_progress(std::move(progress))
    , m_extraction(&document.parser())
{
    QObject::connect(&m_extraction, &LogSource::log, &m_extraction, relayLogLine);
    QObject::connect(&m_extraction, &ExtractionQueue::fileProcessed, &m_extraction,
                     [this](int, bool valid) { m_valid = valid; });
}

Failure ContentCopy::copy(const FileTag& file, TargetFile& target)
{
    // The queue does not inflate what has no checksum of its stored bytes. And for what it would
    // do in one step it is a detour: it opens the target once more, and looks through all files
    // of the document for the one that it is given.
    const bool compressed = file.compression == QLatin1String("flate");
    if (storedLength(file) <= queueBlock || (compressed && file.md5cfile.isEmpty()))
        return copyThroughReader(file, target);
    return copyThroughQueue(file, target);
}

Failure ContentCopy::copyThroughQueue(const FileTag& file, TargetFile& target)
{
    m_valid = false;
    m_extraction.addExtractees({{file.id, target.openPath()}});
    qint64 done = 0;
    while (m_extraction.process()) {
        if (interruptedBy() != 0) {
            m_extraction.cancelExtraction();
            return interrupted();
        }
        // What inflates to more than its marker admits is not followed to its end.
        if (target.size() > file.filesize) {
            m_extraction.cancelExtraction();
            break;
        }
        m_progress(done += queueBlock);
    }
    // The queue takes a stream that ends early for a whole one.
    if (m_valid && target.size() == file.filesize)
        return {};
    return failure(file, target);
}

Failure ContentCopy::copyThroughReader(const FileTag& file, TargetFile& target)
{
    ContentReader content(m_document, file);
    for (QByteArray piece = content.next(); !piece.isEmpty(); piece = content.next()) {
        const QString error = target.write(piece);
        if (!error.isEmpty())
            return {Failure::Target, error};
        if (interruptedBy() != 0)
            return interrupted();
        m_progress(content.storedRead());
    }
    return {content.fault().isNone() ? Failure::None : Failure::Content, content.error()};
}

/// Finds out why the queue failed.
Failure ContentCopy::failure(const FileTag& file, TargetFile& target)
{
    const QString obstacle = target.problem();
    if (!obstacle.isEmpty())
        return {Failure::Target, obstacle};
    ContentReader content(m_document, file);
    while (!content.next().isEmpty()) {
        if (interruptedBy() != 0)
            return interrupted();
    }
    if (!content.fault().isNone())
        return {Failure::Content, content.error()};
    return {Failure::Target, QStringLiteral("not everything could be written")};
}

Failure ContentCopy::verify(const FileTag& file, const TargetFile& target)
{
    if (file.md5file.isEmpty())
        return {Failure::Checksum, QStringLiteral("its checksum is missing")};
    // Not with a queue, to which a file that cannot be read is one with another checksum.
    MD5Generator digest;
    QByteArray piece;
    for (qint64 done = 0; done < file.filesize; done += piece.size()) {
        const QString error = target.read(done, piece);
        if (interruptedBy() != 0)
            return interrupted();
        if (!error.isEmpty())
            return {Failure::Target, error};
        digest.update(piece);
        m_progress(done);
    }
    if (digest.getHexDigest() == file.md5file)
        return {};
    return {Failure::Checksum, QStringLiteral("its checksum differs")};
}

} // namespace tresk::cli
