#ifndef TRESK_TESTS_MARKERTEXT_H
#define TRESK_TESTS_MARKERTEXT_H

#include <QByteArray>
#include <QVector>

#include <optional>

namespace tresktest {

/// A marker in the bytes of a document, read by the rules of the format alone: nothing here uses
/// the library. Fields are told apart by their keys ("left", "md5file", ...).
struct MarkerText {
    struct Field {
        QByteArray key;
        int place = 0; ///< offset of the value in the document
        QByteArray value; ///< as it is written
    };

    int pos = 0; ///< offset of the first byte of its line, plus 1
    int tagLength = 0; ///< UTF-16 code units of the marker, minus 1
    QByteArray line; ///< from that first byte through the line feed
    QVector<Field> fields;

    const Field& field(const char* key) const;
    QByteArray value(const char* key) const { return field(key).value; }
    /// -1 for a number that is left out, 0 for one that does not fit an int.
    int number(const char* key) const;
    /// What the checksum of a section covers in place of its marker line, but for its first byte.
    QByteArray validationTag() const;
};

/// The first section marker in the bytes from @p lineStart through the next line feed.
std::optional<MarkerText> sectionMarkerAt(const QByteArray& document, int lineStart);
/// The marker of an embedded file with which the bytes at @p lineStart begin.
std::optional<MarkerText> fileMarkerAt(const QByteArray& document, int lineStart);

/// All lines of @p document that hold a section marker.
QVector<MarkerText> sectionMarkers(const QByteArray& document);
/// All lines of @p document that are the marker of an embedded file, wherever they are.
QVector<MarkerText> fileMarkers(const QByteArray& document);

} // namespace tresktest

#endif
