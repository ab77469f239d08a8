#ifndef TRESK_CONTAINER_MARKER_H
#define TRESK_CONTAINER_MARKER_H

#include <tresk/TreskParser.h>

#include <QByteArray>

#include <optional>
#include <string_view>

namespace tresk {

/// The line that makes a file a document with a history; anything may follow on it.
inline constexpr char headerStart[] = "%<--! $TRESK_PDF [version:1.0]";
/// What section markers begin with.
inline constexpr char sectionStart[] = "%<--! $TRESK_SECTION";
/// What the markers in front of embedded files begin with.
inline constexpr char fileStart[] = "%<--! $TRESK_EMBEDDEDFILE_BEGIN";

/// The text of @p line, valid as long as @p line: none if it holds a NUL byte, and without
/// the byte order mark that decoding UTF-8 drops.
std::optional<std::string_view> lineText(const QByteArray& line);

/// Reads the section marker that @p text begins with: the values and tagLength. None unless
/// the marker matches in full; what follows its "-->" is ignored.
std::optional<SectionTag> readSectionMarker(std::string_view text);
/// Reads the marker of an embedded file likewise.
std::optional<FileTag> readFileMarker(std::string_view text);

/// The line of @p section as it is written as a rule: the marker alone, numbers without zeros in
/// front, and a line feed.
QByteArray usualMarkerLine(const SectionTag& section);

/// What a section's checksum covers in place of the marker line behind its first byte: the
/// whole @p line without that byte, every occurrence of the checksum @p md5 zeroed.
QByteArray makeValidationTag(const QByteArray& line, const QString& md5);

} // namespace tresk

#endif
