#include "container/Marker.h"

#include "container/ByteSearch.h"

#include <limits>

namespace tresk {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
// A QString holds a little more than 2^30 code units at the most.
constexpr std::size_t longestText = 1000000000;
constexpr std::string_view noDigest = "00000000000000000000000000000000";

/// Takes a marker apart from left to right. Written by hand because the values of a marker
/// may be many megabytes long, where engines of regular expressions give up, and because
/// every character decides alone how to go on: there is never anything to try again.
class MarkerScanner {
public:
    explicit MarkerScanner(std::string_view text)
        : m_text(text)
    {
    }

    /// Characters matched so far, in UTF-16 code units.
    int length() const { return int(qint64(m_pos) - m_surplus); }

    bool literal(std::string_view expected)
    {
        if (!startsWith(m_text.substr(m_pos), expected))
            return false;
        m_pos += expected.size();
        return true;
    }

    bool text(std::string_view key, QString& value)
    {
        if (!open(key))
            return false;
        const std::size_t begin = m_pos;
        while (m_pos < m_text.size() && m_text[m_pos] != ']') {
            if (m_text[m_pos] == '\\' && !isEscape(++m_pos))
                return false;
            ++m_pos;
        }
        if (m_pos == m_text.size() || m_pos - begin > longestText)
            return false;
        value = decoded(begin);
        m_surplus += qint64(m_pos - begin) - value.size();
        return literal("]");
    }

    bool number(std::string_view key, int& value)
    {
        if (!open(key))
            return false;
        const std::size_t begin = m_pos;
        qint64 sum = 0;
        for (; m_pos < m_text.size() && m_text[m_pos] >= '0' && m_text[m_pos] <= '9'; ++m_pos)
            sum = std::min(sum * 10 + (m_text[m_pos] - '0'), tooLarge);
        if (m_pos == begin)
            value = -1;
        else
            value = sum < tooLarge ? int(sum) : 0;
        return literal("]");
    }

    bool md5(std::string_view key, QString& value)
    {
        if (!open(key))
            return false;
        const std::size_t begin = m_pos;
        while (m_pos < m_text.size() && isHexDigit(m_text[m_pos]))
            ++m_pos;
        const std::size_t digits = m_pos - begin;
        if (digits != 0 && digits != noDigest.size())
            return false;
        value = QString::fromLatin1(m_text.data() + begin, int(digits));
        return literal("]");
    }

private:
    static constexpr qint64 tooLarge = qint64(std::numeric_limits<int>::max()) + 1;

    static bool isHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

    bool isEscape(std::size_t pos) const
    {
        return pos < m_text.size()
            && (m_text[pos] == '\\' || m_text[pos] == ']' || m_text[pos] == 'n');
    }

    bool open(std::string_view key) { return literal("[") && literal(key) && literal(":"); }

    QString decoded(std::size_t begin) const
    {
        // Inside a line the three bytes of a byte order mark are a character like others, but
        // decoding drops them at the start of a text: decode the colon before them as well.
        if (startsWith(m_text.substr(begin, m_pos - begin), byteOrderMark))
            return QString::fromUtf8(m_text.data() + begin - 1, int(m_pos - begin + 1)).mid(1);
        return QString::fromUtf8(m_text.data() + begin, int(m_pos - begin));
    }

    std::string_view m_text;
    std::size_t m_pos = 0;
    qint64 m_surplus = 0; // bytes matched beyond the number of code units
};

} // namespace

std::optional<std::string_view> lineText(const QByteArray& line)
{
    if (line.contains('\0'))
        return std::nullopt;
    std::string_view text = view(line);
    if (startsWith(text, byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    return text;
}

std::optional<SectionTag> readSectionMarker(std::string_view text)
{
    MarkerScanner scanner(text);
    SectionTag tag;
    const bool matches = scanner.literal(sectionStart) && scanner.literal(" ")
        && scanner.text("version", tag.version) && scanner.text("creator", tag.creator)
        && scanner.text("title", tag.title) && scanner.number("left", tag.left)
        && scanner.number("size", tag.size) && scanner.number("index", tag.index)
        && scanner.md5("md5section", tag.md5section) && scanner.md5("previousmd5", tag.previousmd5)
        && scanner.number("previousmarker", tag.previousmarker) && scanner.literal("-->");
    if (!matches)
        return std::nullopt;
    tag.tagLength = scanner.length() - 1;
    return tag;
}

std::optional<FileTag> readFileMarker(std::string_view text)
{
    MarkerScanner scanner(text);
    FileTag tag;
    const bool matches = scanner.literal(fileStart) && scanner.literal(" ")
        && scanner.text("filetype", tag.filetype) && scanner.text("filename", tag.filename)
        && scanner.text("desc", tag.desc) && scanner.text("comment", tag.comment)
        && scanner.text("compression", tag.compression) && scanner.number("filesize", tag.filesize)
        && scanner.number("cfilesize", tag.cfilesize) && scanner.number("blocksize", tag.blocksize)
        && scanner.number("offset", tag.offset) && scanner.md5("md5file", tag.md5file)
        && scanner.md5("md5cfile", tag.md5cfile) && scanner.literal("-->");
    if (!matches)
        return std::nullopt;
    tag.tagLength = scanner.length() - 1;
    return tag;
}

QByteArray usualMarkerLine(const SectionTag& section)
{
    QByteArray line = sectionStart;
    const auto add = [&line](const char* key, const QByteArray& value) {
        line.append(key).append(value).append(']');
    };
    const auto number = [](int value) {
        return value < 0 ? QByteArray() : QByteArray::number(value);
    };
    add(" [version:", section.version.toUtf8());
    add("[creator:", section.creator.toUtf8());
    add("[title:", section.title.toUtf8());
    add("[left:", number(section.left));
    add("[size:", number(section.size));
    add("[index:", number(section.index));
    add("[md5section:", section.md5section.toLatin1());
    add("[previousmd5:", section.previousmd5.toLatin1());
    add("[previousmarker:", number(section.previousmarker));
    return line.append("-->\n");
}

QByteArray makeValidationTag(const QByteArray& line, const QString& md5)
{
    const QByteArray key = QByteArrayLiteral("[md5section:");
    const QByteArray written = key + md5.toLatin1() + ']';
    const QByteArray zeroed = key + QByteArray(noDigest.data(), int(noDigest.size())) + ']';

    // Not QByteArray::replace(): where the replacement is longer, as it is for a checksum that
    // was left empty, it moves the rest of the line again and again.
    QByteArray tag;
    tag.reserve(int(line.size())); // all that is needed as a rule, where growing may take twice it
    qsizetype from = 0;
    for (;;) {
        const std::size_t hit = findText(view(line).substr(std::size_t(from)), view(written));
        if (hit == std::string_view::npos)
            break;
        tag.append(line.constData() + from, int(hit)).append(zeroed);
        from += qsizetype(hit) + written.size();
        if (tag.size() > longestArray - line.size())
            return {};
    }
    tag.append(line.constData() + from, int(line.size() - from));
    return tag.remove(0, 1);
}

} // namespace tresk
