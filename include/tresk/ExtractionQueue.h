#ifndef TRESK_EXTRACTIONQUEUE_H
#define TRESK_EXTRACTIONQUEUE_H

#include <tresk/Inflater.h>
#include <tresk/LogSource.h>
#include <tresk/StopWatch.h>

#include <QFile>
#include <QHash>
#include <QList>
#include <QString>

namespace tresk {

class TreskParser;
struct FileTag;

/// One embedded file that an ExtractionQueue is to write.
struct TRESK_EXPORT Extractee {
    int id = 0; ///< id of the embedded file
    int start = 0; ///< offset of its first stored byte in the document
    int length = 0; ///< stored bytes to copy
    QString md5; ///< MD5 of the content as the document has it; not compared
    QString md5Compressed; ///< MD5 of the stored bytes; not empty: inflate, empty: copy as stored
    QString target; ///< path of the file to write
};

/// Copies embedded files out of a document into files on disk, step by step.
///
/// Fill the queue with addExtractees(), then call process() until it returns false. Each
/// call moves one block of at most 100000 stored bytes, so that a caller can show progress
/// and cancel in between. After a file that fails the queue goes on with the next.
///
/// Checksums are not compared, and a compressed stream that breaks off without a fault in
/// what there is of it counts as written; a ValidationQueue tells. Neither is what a stream
/// yields compared with FileTag::filesize: a stored byte may become 1032. Who does not trust a
/// document looks at the size of the target after each step, and cancels. A file whose compression
/// is "flate" but which has no checksum of its stored bytes is copied without inflating it.
///
/// A queue serves one thread. It does not own the parser, which has to live, and keep its
/// document open, as long as entries are queued.
class TRESK_EXPORT ExtractionQueue : public LogSource {
    Q_OBJECT

public:
    /// An empty queue over @p parser; null makes a queue that takes no entries.
    explicit ExtractionQueue(TreskParser* parser);
    ~ExtractionQueue() override;

    /// Empties the queue and takes @p parser.
    void reset(TreskParser* parser);

    /// Appends the embedded files whose ids are keys of @p targets, in the order of the
    /// document, each to be written to the path that is its value. Ids that the document
    /// does not have are ignored.
    void addExtractees(const QHash<int, QString>& targets);

    /// Does one step and tells whether entries remain.
    ///
    /// The first step of a file opens its target and replaces what is there. A file that
    /// fails is logged with type 2 ("Could not read from file %1" with the path of the
    /// target, "Could not decompress data from file %1", "Could not write to file file %1")
    /// and ends with fileProcessed(id, false), in a step without percentFinishedChanged().
    /// What was written of it stays.
    bool process();

public Q_SLOTS:
    /// Empties the queue. The file that was being written stays as far as it got.
    void cancelExtraction();

Q_SIGNALS:
    /// Embedded file @p id has been written or, not @p valid, has failed.
    void fileProcessed(int id, bool valid);
    /// @p percent of all stored bytes queued are done, rounded towards 0, counted since a step
    /// of this kind last found the queue empty; @p filename is the path of the target, empty
    /// with an empty queue. The smallest int where the bytes queued add up to 0; do not rely on
    /// it.
    void percentFinishedChanged(int percent, QString filename);

private:
    void reinit(TreskParser* parser);
    static Extractee extracteeFromFile(const FileTag& file);
    void openTarget(const Extractee& entry);
    bool write(const QByteArray& data);
    void nextEntry();
    bool handleError(const QString& message, const Extractee& entry);

    TreskParser* m_parser = nullptr;
    Inflater m_inflater;
    StopWatch m_stopWatch;
    QList<Extractee> m_queue;
    QFile m_target;
    int m_offset = 0;
    qint64 m_total = 0;
    qint64 m_processed = 0;
};

} // namespace tresk

#endif
