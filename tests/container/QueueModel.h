#ifndef TRESK_TESTS_QUEUEMODEL_H
#define TRESK_TESTS_QUEUEMODEL_H

#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

/// The queues once more, written as plainly as the behaviour can be described and with 64 bits
/// for every number, on documents in memory. The real queues are compared with them. Events are
/// told as QueueEvents tells them.
namespace tresktest {

/// A document, and what a parser reads from it.
struct DocumentView {
    QByteArray bytes;
    QList<tresk::SectionTag> sections;
    QList<tresk::FileTag> files;

    /// Bytes of a range; none if it is not wholly inside the document.
    QByteArray read(qint64 pos, qint64 length) const;
};

class ValidationModel {
public:
    ValidationModel(const DocumentView* document, int blockSize);

    void reset(const DocumentView* document);
    void repopulate(const DocumentView* document);
    void addValidatees(const QList<int>& fileIds, const QList<int>& sectionIds);
    void addValidatees(const QList<tresk::SavedFile>& files);
    bool process();
    void cancelValidation();

    void add(const QString& event) { m_events.append(event); }
    QString take();

private:
    enum Type { Section, File, Saved };

    struct Entry {
        Type type;
        int id;
        qint64 start;
        qint64 length;
        qint64 tagPos;
        QByteArray validationTag;
        QString md5;
        QString md5Compressed;
        QString name;
    };

    static Entry entryOf(const tresk::SectionTag& section);
    static Entry entryOf(const tresk::FileTag& file);
    static Entry entryOf(const tresk::SavedFile& file);
    void append(const Entry& entry);
    void beginEntry(const Entry& entry);
    void hashBlock(const Entry& entry);
    void finishEntry(const Entry& entry);
    QByteArray readSaved(qint64 length);
    bool fedIsValid() const;
    void stopWatch();

    const DocumentView* m_document;
    qint64 m_blockSize;
    QList<Entry> m_queue;
    qint64 m_offset = 0;
    qint64 m_total = 0;
    qint64 m_processed = 0;
    bool m_watchRuns = false;
    int m_tagsMet = 0; // how often the place of the current section's tag was reached
    QString m_md5; // of the entry that was begun last
    QString m_md5Compressed;
    QByteArray m_fed;
    bool m_incomplete = false; // the document does not have all bytes of the current entry
    bool m_savedIsOpen = false;
    QByteArray m_savedBytes; // of the open file that are still to be read
    QStringList m_events;
};

class ExtractionModel {
public:
    explicit ExtractionModel(const DocumentView* document);

    void reset(const DocumentView* document);
    void addExtractees(const QHash<int, QString>& targets);
    bool process();
    void cancelExtraction();

    void add(const QString& event) { m_events.append(event); }
    QString take();
    /// What was written, by path. Paths in folders that do not exist cannot be written.
    const QMap<QString, QByteArray>& written() const { return m_written; }

private:
    struct Entry {
        int id;
        qint64 start;
        qint64 length;
        QString md5Compressed;
        QString target;
    };

    bool fail(const QString& message, const Entry& entry);
    void nextEntry();

    const DocumentView* m_document;
    QList<Entry> m_queue;
    qint64 m_offset = 0;
    qint64 m_total = 0;
    qint64 m_processed = 0;
    QByteArray m_stored; // read so far of the current entry
    QMap<QString, QByteArray> m_written;
    QStringList m_events;
};

} // namespace tresktest

#endif
