#ifndef TRESK_TESTS_QUEUEDOCUMENTS_H
#define TRESK_TESTS_QUEUEDOCUMENTS_H

#include "DocumentWriter.h"
#include "TestFiles.h"

#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QHash>
#include <QString>
#include <QVector>

namespace tresktest {

/// A file of @p size equal bytes.
FileSpec fileOf(const char* name, int size);
SectionSpec titled(const char* title);

/// A folder and a parser for the documents of a test program that a queue works on.
class QueueDocuments {
protected:
    bool open(tresk::TreskParser& parser, const DocumentWriter& document);
    bool open(const DocumentWriter& document) { return open(m_parser, document); }
    /// A document of @p files that belong to no section.
    bool open(tresk::TreskParser& parser, const QVector<FileSpec>& files,
              const QByteArray& terminator = "\n");
    bool open(const QVector<FileSpec>& files) { return open(m_parser, files); }

    /// Where the file @p id is to be extracted to.
    QString target(int id) const { return m_dir.path(QStringLiteral("target %1").arg(id)); }
    /// The targets of the first @p count files.
    QHash<int, QString> targets(int count) const;

    TestDir m_dir;
    tresk::TreskParser m_parser;

private:
    int m_documents = 0;
};

/// Two documents for queues that are filled again, and files on disk.
class ValidatedDocuments : protected QueueDocuments {
protected:
    bool openBoth();
    /// A file on disk with its right digest.
    tresk::SavedFile saved(int size) const;

    // m_parser: files of 25, 40 and 25 bytes, of which a and c are alike; one section
    tresk::TreskParser m_other; // one file
};

} // namespace tresktest

#endif
