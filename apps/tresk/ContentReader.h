#ifndef TRESK_APPS_CONTENTREADER_H
#define TRESK_APPS_CONTENTREADER_H

#include "ItemStatus.h"

#include <tresk/Inflater.h>
#include <tresk/TreskParser.h>

#include <QByteArray>
#include <QString>

namespace tresk::cli {

class Document;

/// Reads the content of an embedded file piece by piece and holds it against what the file's
/// marker says. Checksums are not looked at.
///
/// Whatever the document, no more is held in memory than one piece and what it inflates to, of
/// which a byte yields at most 1032.
class ContentReader {
public:
    /// The document must outlive the reader. What is wrong with the marker is an error() from
    /// the start.
    ContentReader(Document& document, const FileTag& file);

    /// The next piece of the content. Empty at its end, and when it turns out to be wrong,
    /// which error() tells apart.
    QByteArray next();

    /// Why the content cannot be read, or not to its end; empty if it can.
    const QString& error() const { return m_fault.text; }
    /// The same with what kind of fault it is.
    const Fault& fault() const { return m_fault; }

    /// Number of stored bytes there are, and how many of them have been read.
    qint64 storedSize() const { return m_length; }
    qint64 storedRead() const { return m_read; }
    /// Number of content bytes delivered.
    qint64 delivered() const { return m_delivered; }

private:
    Q_DISABLE_COPY(ContentReader)

    Fault faultOfMarker() const;
    QByteArray nextStored();
    QByteArray nextInflated();
    QByteArray fail(ItemStatus status, const QString& text);

    Document& m_document;
    FileTag m_file;
    bool m_compressed;
    qint64 m_start;
    qint64 m_length;
    qint64 m_read = 0;
    qint64 m_delivered = 0;
    Inflater m_inflater;
    Fault m_fault;
};

/// A remark on a marker whose numbers contradict each other without harm to the content;
/// empty if they do not.
QString remarkOn(const FileTag& file);

} // namespace tresk::cli

#endif
