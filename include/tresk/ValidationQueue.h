#ifndef TRESK_VALIDATIONQUEUE_H
#define TRESK_VALIDATIONQUEUE_H

#include <tresk/LogSource.h>
#include <tresk/StopWatch.h>
#include <tresk/Validator.h>

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>

namespace tresk {

class TreskParser;
struct FileTag;
struct SectionTag;

/// One checksum that a ValidationQueue is to check.
struct TRESK_EXPORT Validatee {
    int type = 0; ///< 0 section, 1 embedded file, 2 saved file
    int id = 0; ///< id of the section or embedded file; 0 for saved files
    int start = 0; ///< offset of the first byte in the document; 0 for saved files
    int length = 0; ///< number of bytes to hash; below 0 as good as none
    int tagPos = -1; ///< sections: SectionTag::pos, where the validation tag is fed; else -1
    QByteArray validationTag; ///< sections: SectionTag::validationTag; else empty
    QString md5; ///< expected MD5 of the content, 32 lowercase hexadecimal digits
    QString md5Compressed; ///< expected MD5 of the stored bytes; empty if stored plain
    QString name; ///< title (or "<no title>"), file name or path, as it is reported
};

/// A file on disk and what it should be.
struct TRESK_EXPORT SavedFile {
    QString path; ///< the file
    QString md5; ///< expected MD5 (RFC 1321), 32 lowercase hexadecimal digits
    int size = 0; ///< expected length in bytes; as many are hashed, what follows is not seen
};

/// Checks the MD5 checksums of sections, embedded files and files on disk, step by step.
///
/// Fill the queue, then call process() from an event loop or a plain loop until it returns
/// false. Each call hashes one block at most and emits its signals before it returns, so
/// that a caller can show progress and cancel in between:
///
///     ValidationQueue queue(&parser, 0);
///     QObject::connect(&queue, &ValidationQueue::fileProcessed, report);
///     queue.repopulate(&parser);
///     while (queue.process()) { }
///
/// Nothing is reported as an error. A range outside the document, a file that cannot be
/// read, a stream that is damaged and a checksum that is missing all make an item invalid.
///
/// A queue serves one thread. It does not own the parser, which has to live, and keep its
/// document open, as long as entries are queued.
class TRESK_EXPORT ValidationQueue : public LogSource {
    Q_OBJECT

public:
    /// An empty queue over @p parser (null: for saved files only) that hashes @p blockSize
    /// bytes a step; 100000 where that is below 1.
    ValidationQueue(TreskParser* parser, int blockSize);
    ~ValidationQueue() override;

    /// Empties the queue, takes @p parser and starts timing the job "validation finished",
    /// which is logged when the queue has been worked off or the validation is cancelled.
    ///
    /// The place reached inside the current entry is kept: where an entry was half done, the
    /// next one that is queued is begun at that place. repopulate() and cancelValidation()
    /// begin at the start.
    void reset(TreskParser* parser);

    /// Starts over, as reset() does, with all sections of @p parser, oldest first, and then
    /// all embedded files in the order of the document. A null @p parser leaves the queue
    /// empty.
    void repopulate(TreskParser* parser);

    /// Appends the sections whose ids are in @p sectionIds, oldest first, and then the
    /// embedded files whose ids are in @p fileIds, in the order of the document. Other ids
    /// are ignored, repeated ones count once. Nothing happens without a parser. Does not
    /// start the timing.
    void addValidatees(const QList<int>& fileIds, const QList<int>& sectionIds);

    /// Appends @p files in this order; needs no parser. Only regular files are opened.
    void addValidatees(const QList<SavedFile>& files);

    /// Does one step and tells whether entries remain. Emits percentFinishedChanged() on
    /// every call, also with an empty queue.
    bool process();

public Q_SLOTS:
    /// Empties the queue and forgets the progress; logs the time if it was taken.
    void cancelValidation();

Q_SIGNALS:
    /// Embedded file @p id has been checked.
    void fileProcessed(int id, bool valid);
    /// The file on disk @p filename (SavedFile::path) has been checked. One that cannot be opened
    /// is not valid, also where an empty one would be.
    void savedFileProcessed(QString filename, bool valid);
    /// Section @p id has been checked.
    void sectionProcessed(int id, bool valid);
    /// @p percent of all bytes queued since the queue was last empty have been hashed;
    /// @p name is Validatee::name of the entry of this step, empty without one.
    ///
    /// Rounded towards 0. Ends below 100 where sections were checked, since their validation
    /// tags are not counted. The smallest int where the bytes queued add up to 0; do not rely
    /// on it.
    void percentFinishedChanged(int percent, QString name);

private:
    void reinit(TreskParser* parser);
    void forgetProgress();
    void append(const Validatee& validatee);
    static Validatee validateeFromFile(const FileTag& file);
    static Validatee validateeFromSection(const SectionTag& section);
    static Validatee validateeFromSavedFile(const SavedFile& file);
    void beginEntry(const Validatee& entry);
    void hashBlock(const Validatee& entry);
    void feed(const Validatee& entry, qint64 pos, int count);
    void feedFromDisk(int count);
    void finishEntry(const Validatee& entry);
    void nextEntry();

    TreskParser* m_parser = nullptr;
    Validator m_validator;
    StopWatch m_stopWatch;
    QList<Validatee> m_queue;
    qint64 m_offset = 0;
    bool m_tagFed = false;
    qint64 m_total = 0;
    qint64 m_processed = 0;
    QFile m_savedFile;
    int m_blockSize;
};

} // namespace tresk

#endif
