#ifndef TRESK_TESTS_DOCUMENTWRITER_H
#define TRESK_TESTS_DOCUMENTWRITER_H

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVector>

#include <optional>

/// Writes documents that carry a history, right ones and deliberately wrong ones, from the
/// rules of the format alone: nothing here uses the library that reads them.
///
///     DocumentWriter doc("%PDF-1.4\n");
///     doc.writeHeader();
///     doc.write(restOfTheHost);
///     doc.endLine();
///     SectionSpec step;
///     step.title = QStringLiteral("first step");
///     step.files = {FileSpec::plain(QStringLiteral("in.txt"), "abc"),
///                   FileSpec::flate(QStringLiteral("out.txt"), text)};
///     const WrittenSection written = doc.writeSection(step);
///     save(doc.bytes());
namespace tresktest {

/// Values for single marker fields, by key ("left", "md5file", ...), written as they stand in
/// place of the right ones. Nothing else changes with them.
using RawFields = QHash<QByteArray, QByteArray>;

/// An embedded file to be written. What is not set here is worked out.
struct FileSpec {
    QByteArray content; ///< the uncompressed content
    QString filetype = QStringLiteral("data");
    QString filename;
    QString desc;
    QString comment;
    QByteArray compression = "none"; ///< "none", "flate", or any other word
    /// Bytes to store in place of those that follow from content and compression; cfilesize
    /// and md5cfile are those of these bytes, filesize and md5file stay those of the content.
    std::optional<QByteArray> stored;
    QByteArray gap; ///< bytes in front of the marker, outside the block
    QByteArray afterMarker; ///< bytes between the marker's "-->" and the line terminator
    /// Bytes of the block behind the data; one line terminator if not set. Unless they end
    /// with a line feed, the next marker does not begin its line.
    std::optional<QByteArray> trailing;
    RawFields raw;

    /// A file stored as it is.
    static FileSpec plain(const QString& name, const QByteArray& content);
    /// A file stored as a zlib stream.
    static FileSpec flate(const QString& name, const QByteArray& content);

    /// Adds an entry to raw and returns this.
    FileSpec& with(const QByteArray& key, const QByteArray& value);
};

/// A section to be written: its region holds, in this order, gap, files, marker line,
/// filesBehind and trailing. What is not set here is worked out.
struct SectionSpec {
    QString version = QStringLiteral("1.0");
    QString creator = QStringLiteral("writer");
    QString title;
    QVector<FileSpec> files; ///< files in front of the marker, the usual place
    QVector<FileSpec> filesBehind; ///< files behind the marker
    QByteArray gap; ///< bytes between the region's start and the first file
    QByteArray beforeMarker; ///< bytes in front of the marker, on its line unless they end it
    QByteArray afterMarker; ///< bytes between the marker's "-->" and the line terminator
    QByteArray trailing; ///< bytes at the end of the region
    /// Where the region begins, if not where this section is written. It may reach back over
    /// what is there already, so that files belong to several sections.
    std::optional<int> regionStart;
    /// Length of the region, if not through the end of what is written for this section.
    std::optional<int> regionSize;
    /// Added to the distance to the preceding marker: 5 points 5 bytes too far back.
    int previousShift = 0;
    /// Writes the section as the first of a chain, although there are others.
    bool chainStart = false;
    RawFields raw;

    /// Adds an entry to raw and returns this.
    SectionSpec& with(const QByteArray& key, const QByteArray& value);
};

/// Where an embedded file was written. Positions are byte offsets in the document.
struct WrittenFile {
    int lineStart = 0; ///< first byte of the line that holds the marker
    int tagLength = 0; ///< UTF-16 code units of the marker, minus 1
    QByteArray marker; ///< from "%" through "-->"
    int dataStart = 0;
    QByteArray stored; ///< the stored bytes
    int blockEnd = 0; ///< first byte behind the block
    int blocksize = 0; ///< what the marker should say (raw fields left aside)
    int offset = 0; ///< what the marker should say (raw fields left aside)
    QByteArray md5file; ///< digest of the content
    QByteArray md5cfile; ///< digest of the stored bytes; empty unless "flate"
};

/// Where a section was written. Positions are byte offsets in the document.
struct WrittenSection {
    int lineStart = 0; ///< first byte of the line that holds the marker
    int tagLength = 0; ///< UTF-16 code units of the marker, minus 1
    QByteArray marker; ///< from "%" through "-->"
    QByteArray line; ///< the whole line, terminator included
    QByteArray validationTag; ///< the line without its first byte, its digest zeroed
    int regionStart = 0;
    int regionEnd = 0; ///< first byte behind the region
    int index = 0; ///< 0 in the first section, counting up
    QByteArray md5section; ///< digest of the region (raw fields left aside)
    QByteArray previousmd5; ///< digest of the preceding section; empty in the first
    int previousmarker = -1; ///< bytes back to the preceding marker line; -1 in the first
    QVector<WrittenFile> files; ///< in the order of the document
};

/// Appends to a document. Time is linear in what is written.
class DocumentWriter {
public:
    /// Starts with @p existing bytes, which may hold a history already: the next section is
    /// then chained to the last marker in them.
    explicit DocumentWriter(const QByteArray& existing = QByteArray());

    /// The terminator of the lines written from now on: "\n", which is the default, or "\r\n".
    void setTerminator(const QByteArray& terminator);
    QByteArray terminator() const;

    /// Appends bytes as they are.
    void write(const QByteArray& bytes);
    /// Appends a line terminator, unless the document is at the start of a line.
    void endLine();
    /// Appends the header line, with @p rest behind it on the same line.
    void writeHeader(const QByteArray& rest = QByteArray());
    /// Appends an embedded file that belongs to no section, unless a later one reaches back.
    WrittenFile writeFile(const FileSpec& file);
    /// Appends a section with its files.
    WrittenSection writeSection(const SectionSpec& section);

    /// The document so far.
    const QByteArray& bytes() const;
    /// Its length: where the next byte goes.
    int position() const;
    /// What was written since this writer was made, in order.
    const QVector<WrittenSection>& sections() const;
    /// All files, those in sections included, in order.
    const QVector<WrittenFile>& files() const;

private:
    struct Previous {
        int lineStart;
        int index;
        QByteArray md5section;
    };

    static std::optional<Previous> lastSection(const QByteArray& bytes);
    QByteArray sectionMarker(const SectionSpec& spec, const WrittenSection& written) const;
    void fitRegionEnd(const SectionSpec& spec, WrittenSection& written, int bytesBehind) const;
    QByteArray regionDigest(const WrittenSection& written) const;

    QByteArray m_bytes;
    QByteArray m_terminator = "\n";
    std::optional<Previous> m_previous;
    QVector<WrittenSection> m_sections;
    QVector<WrittenFile> m_files;
};

/// The header line without its terminator.
QByteArray headerLine();
/// @p text as a marker value: a backslash, a closing bracket and a line break escaped, UTF-8.
QByteArray escaped(const QString& text);
/// The zlib stream of @p content.
QByteArray deflated(const QByteArray& content, int level = 6);
/// The MD5 digest of @p bytes as 32 lowercase hexadecimal digits.
QByteArray md5Hex(const QByteArray& bytes);

} // namespace tresktest

#endif
