#ifndef TRESK_TRESKPARSER_H
#define TRESK_TRESKPARSER_H

#include <tresk/FileIterator.h>
#include <tresk/LogSource.h>

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QSharedPointer>
#include <QString>

#include <memory>
#include <optional>

namespace tresk {

class SectionStore;

/// How exactly section markers must stand where they are expected.
enum ParseMode {
    /// A section marker begins its line and is where its successor says it is.
    ParseStrict = 0,
    /// Text may precede a section marker on its line, and a predecessor is also sought in
    /// the four lines before and behind the place where it is expected.
    ParseTolerant = 1
};

/// One workflow step as its section marker describes it.
///
/// Texts are kept as they are written, escapes included (`\\`, `\]` and `\n`). Numbers
/// are -1 where the marker leaves them empty, and 0 where they do not fit an int.
/// Checksums are empty or 32 lowercase hexadecimal digits.
struct TRESK_EXPORT SectionTag {
    int id = 0; ///< 0 for the newest section, counting up towards older ones
    int pos = 0; ///< offset of the marker line's first byte, plus 1
    int tagLength = 0; ///< length of the marker in UTF-16 code units, minus 1
    QString version; ///< format version
    QString creator; ///< who or what created the step
    QString title; ///< the step's title
    int left = 0; ///< the section's region begins at pos - left
    int size = 0; ///< length of the region in bytes
    int index = 0; ///< the step's number as the writer counted it
    QString md5section; ///< MD5 (RFC 1321) of the region, the marker's own digits zeroed
    QString previousmd5; ///< md5section of the preceding section; never compared
    int previousmarker = 0; ///< bytes back to the preceding marker line; -1 in the first section
    QByteArray validationTag; ///< stands for the marker line behind its first byte in md5section
};

/// One embedded file as the marker in front of its data describes it.
///
/// Texts, numbers and checksums are kept as in SectionTag.
struct TRESK_EXPORT FileTag {
    int id = 0; ///< the file's number in the document, from 0, in order of appearance
    int pos = 0; ///< offset of the marker line's first byte, plus 1
    int tagLength = 0; ///< length of the marker in UTF-16 code units, minus 1
    QString filetype; ///< the kind of file, free text
    QString filename; ///< the file's name; from a stranger: never a path to write to as it is
    QString desc; ///< description
    QString comment; ///< comment
    QString compression; ///< "flate" (a zlib stream, RFC 1950) or "none"
    int filesize = 0; ///< bytes of the content
    int cfilesize = 0; ///< bytes stored
    int blocksize = 0; ///< the file's block ends at pos + tagLength + blocksize
    int offset = 0; ///< the stored bytes begin at pos + tagLength + offset
    QString md5file; ///< MD5 of the content
    QString md5cfile; ///< MD5 of the stored bytes for "flate", else empty
};

/// Reads one document: its sections, its embedded files and their content.
///
/// The lists are taken when a document is opened and do not change afterwards. The file
/// stays open as long as the parser lives, because content is read on demand; the parser
/// never writes to it. A parser serves one thread.
class TRESK_EXPORT TreskParser : public LogSource {
    Q_OBJECT

public:
    /// A parser without a document. A @p listener that is not null is connected to the log.
    explicit TreskParser(ParseMode mode = ParseTolerant, QObject* listener = nullptr);
    ~TreskParser() override;

    /// Opens the document at @p path in place of the one that was open. False if the file
    /// cannot be read, has 2 GiB or more, or has no header of a history in its first 10
    /// lines; both lists are empty then. True otherwise, also if the history is empty.
    /// Nothing is logged.
    bool open(const QString& path);

    /// Gives the descriptor of the document's file back. What is read next opens the file at its
    /// path again, so it has to be the same then.
    void releaseFile();

    /// Whether the document, or a part of it that was wanted since open(), could not be read, for
    /// another reason than that the file ends there (a failing disk, say). The lists or contents
    /// may lack something then. Also after an open() that has failed: whether that is why.
    bool readFailed() const;

    /// Copies of all sections, newest first: a section's id is its index. Where there are very
    /// many, they take more memory than the parser itself; getSection() gives them one by one.
    QList<SectionTag> getSections() const;
    /// All embedded files in the order of the document: a file's id is its index.
    QList<FileTag> getFiles() const;
    int getNumSections() const; ///< 0 without a document
    int getNumFiles() const; ///< likewise
    /// A copy of section @p i; null where there is no such section.
    QSharedPointer<SectionTag> getSection(int i) const;
    /// A copy of the record of file @p i; null where there is no such file.
    QSharedPointer<FileTag> getFile(int i) const;
    /// The files whose blocks lie inside the region of section @p i, in the order of the
    /// document; empty where there is no such section. A file may lie in several sections.
    QList<FileTag> getFilesInSection(int i) const;
    /// The files that lie in no section, in the order of the document.
    QList<FileTag> getSectionlessFiles() const;

    /// @p len bytes of the document from offset @p pos; empty if the range is not wholly
    /// inside the document.
    QByteArray getBytes(int pos, int len);

    /// The content of file @p i, inflated where it is stored compressed.
    ///
    /// Holds the whole content in memory; writeFileToDisk() does not. Null where there is
    /// no such file, the compression is unknown, or a compressed file's content does not
    /// have the size that its marker says. The stored bytes of a range outside the document
    /// read as empty. Checksums are not compared.
    QSharedPointer<QByteArray> getFileContent(int i);

    /// Writes the content of file @p i to the file at @p path, replacing what is there.
    ///
    /// Streams, so memory stays bounded. Logs its progress and what fails. False where there
    /// is no such file, @p path cannot be opened, the compression is unknown ("*** ERROR:
    /// invalid compression method.", after @p path was emptied), or not everything could be
    /// written ("*** ERROR: IO Error."). What was written stays after a failure.
    ///
    /// The state of the decoder is not checked: of a compressed stream that is damaged or
    /// breaks off, the pieces of 4 MiB of stored bytes before the fault are written, the rest
    /// is left out, and the result is true. So are stored ranges that reach beyond the end of
    /// the document. Use a Validator to know. On anything that cannot be shortened again,
    /// such as a pipe, the sound beginning of a damaged piece stays.
    bool writeFileToDisk(int i, const QString& path);

    /// The MD5 digests of file @p i, 32 lowercase hexadecimal digits each: of its stored
    /// bytes, and, if the compression is "flate", of its content (else empty). For a file
    /// stored plain the first is thus that of its content. Both are empty where there is no
    /// such file; a stream that is damaged counts as a content without bytes. Reads the
    /// stored bytes once, in pieces.
    QPair<QString, QString> calcChecksumsForFile(int i);

private:
    bool headerFound();
    void readSections();
    std::optional<SectionTag> findLastSection();
    std::optional<SectionTag> findPrevSection(const SectionTag& section);
    std::optional<SectionTag> parseSection(bool anywhere) const;
    void findFiles();
    std::optional<FileTag> parseFile() const;
    void gotoPos(qint64 pos);
    QSharedPointer<QByteArray> getCompressedFile(int i);
    QByteArray readRange(qint64 pos, int len);

    FileIterator m_iterator;
    std::unique_ptr<SectionStore> m_sections;
    QList<FileTag> m_files;
    ParseMode m_mode;
};

} // namespace tresk

#endif
