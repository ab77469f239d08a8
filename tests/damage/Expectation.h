#ifndef TRESK_TESTS_EXPECTATION_H
#define TRESK_TESTS_EXPECTATION_H

#include "MarkerText.h"

#include <QByteArray>

#include <map>
#include <optional>

namespace tresktest {

/// What the bytes of a document hold of an embedded file, by its marker alone.
class ExpectedFile {
public:
    ExpectedFile(const QByteArray& document, const MarkerText& marker);

    const MarkerText& marker() const { return m_marker; }
    bool isFlate() const { return m_flate; }
    bool isPlain() const { return m_plain; }
    bool isBrokenStream() const { return m_flate && !m_inflated; }
    /// Whether the checksums are those of a content that is stored compressed.
    bool isCheckedInflated() const { return m_flate && !m_md5cfile.isEmpty(); }

    /// What checksums and extraction are about: the stored bytes, inflated if they are checked
    /// that way. None if they are not all in the document, or no whole stream.
    std::optional<QByteArray> checkedContent() const;
    /// Whether the checksums are there and right.
    bool isValid() const { return m_valid; }

    /// What is read as the content; none if there is nothing of the size that it should have.
    std::optional<QByteArray> content() const;
    /// The stored bytes that a reader of the content takes; empty outside the document.
    QByteArray stored() const { return m_stored; }
    /// These inflated; empty if they are no whole stream.
    QByteArray inflatedOrEmpty() const { return m_inflated.value_or(QByteArray()); }

private:
    bool hasRightChecksums() const;

    MarkerText m_marker;
    bool m_flate;
    bool m_plain;
    int m_size;
    QByteArray m_md5file;
    QByteArray m_md5cfile;
    std::optional<QByteArray> m_checkedRange;
    QByteArray m_stored;
    std::optional<QByteArray> m_inflated;
    bool m_valid;
};

/// What a document says of one of its sections.
struct ExpectedSection {
    MarkerText marker;
    bool valid; ///< whether its region has the checksum that the marker names
};

/// What is to be expected of a document, found out where it is asked for.
class ExpectedDocument {
public:
    explicit ExpectedDocument(const QByteArray& bytes);

    const QByteArray& bytes() const { return m_bytes; }
    /// The embedded file whose marker line begins at @p lineStart, or null.
    const ExpectedFile* file(int lineStart);
    /// The section whose marker line begins at @p lineStart, or null.
    const ExpectedSection* section(int lineStart);

private:
    QByteArray m_bytes;
    std::map<int, std::optional<ExpectedFile>> m_files;
    std::map<int, std::optional<ExpectedSection>> m_sections;
};

/// The bytes that the checksum of a section is made of; none if they are not all in the document.
std::optional<QByteArray> checkedRegion(const QByteArray& document, const MarkerText& marker);

/// The content of a zlib stream, what is behind its end left aside; none if it is not whole.
std::optional<QByteArray> inflated(const QByteArray& stream);

} // namespace tresktest

#endif
