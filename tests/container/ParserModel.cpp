#include "ParserModel.h"

#include "DocumentWriter.h"

#include <QRegularExpressionMatch>

#include <utility>

using tresk::FileTag;
using tresk::SectionTag;

namespace tresktest {

namespace {

const QString sectionStart = QStringLiteral("%<--! $TRESK_SECTION");
const QString header = QStringLiteral("%<--! $TRESK_PDF [version:1.0]");

QString pattern(const char* fields)
{
    QString result = QString::fromLatin1(fields);
    result.replace(QLatin1String("%1"),
                   QLatin1String(R"(((?:[^\]\\]|(?:\\\\)|(?:\\\])|(?:\\n))*))"));
    result.replace(QLatin1String("%2"), QLatin1String("([0-9]*)"));
    result.replace(QLatin1String("%3"), QLatin1String("((?:)|(?:[a-f0-9]{32}))"));
    return result;
}

int integer(const QString& value)
{
    return value.isEmpty() ? -1 : value.toInt();
}

/// The bytes of a zlib stream, decoded by Qt; empty on any error.
QByteArray decompress(const QByteArray& stored, int size)
{
    if (size < 0)
        return {};
    const auto prefix = static_cast<quint32>(size);
    QByteArray data;
    for (int shift = 24; shift >= 0; shift -= 8)
        data += static_cast<char>((prefix >> shift) & 0xff);
    return qUncompress(data + stored);
}

} // namespace

ParserModel::ParserModel(tresk::ParseMode mode)
    : m_mode(mode)
    , m_sectionPattern(pattern(
          R"(^%<--! \$TRESK_SECTION \[version:%1\]\[creator:%1\]\[title:%1\]\[left:%2\]\[size:%2\])"
          R"(\[index:%2\]\[md5section:%3\]\[previousmd5:%3\]\[previousmarker:%2\]-->)"))
    , m_filePattern(pattern(
          R"(^%<--! \$TRESK_EMBEDDEDFILE_BEGIN \[filetype:%1\]\[filename:%1\]\[desc:%1\])"
          R"(\[comment:%1\]\[compression:%1\]\[filesize:%2\]\[cfilesize:%2\]\[blocksize:%2\])"
          R"(\[offset:%2\]\[md5file:%3\]\[md5cfile:%3\]-->)"))
{
}

bool ParserModel::open(const QByteArray& bytes)
{
    m_sections.clear();
    m_files.clear();
    m_iterator.open(bytes);
    if (!headerFound())
        return false;
    readSections();
    findFiles();
    return true;
}

bool ParserModel::headerFound()
{
    bool onLine = m_iterator.firstLine();
    for (int i = 0; i < 10; ++i) {
        if (!onLine)
            return false;
        // A line with a NUL byte is looked at again and again.
        const std::optional<QString> line = m_iterator.curLineAsString();
        if (line && line->startsWith(header))
            return true;
        if (line)
            onLine = m_iterator.nextLine();
    }
    return false;
}

std::optional<SectionTag> ParserModel::findLastSection()
{
    bool onLine = m_iterator.lastLine();
    for (; onLine; onLine = m_iterator.prevLine()) {
        const std::optional<QString> line = m_iterator.curLineAsString();
        if (!line)
            continue;
        std::optional<SectionTag> section;
        if (line->startsWith(sectionStart))
            section = parseSection(*line);
        else if (m_mode == tresk::ParseTolerant && line->contains(sectionStart))
            section = parseSection(line->mid(line->indexOf(sectionStart)));
        if (section)
            return section;
    }
    return std::nullopt;
}

std::optional<SectionTag> ParserModel::findPrevSection(const SectionTag& section)
{
    if (section.previousmarker < 0)
        return std::nullopt;
    m_iterator.gotoPos(qint64(section.pos) - section.previousmarker - 1);
    std::optional<QString> line = m_iterator.curLineAsString();
    if (line) {
        if (auto found = parseSection(*line))
            return found;
    }
    if (m_mode != tresk::ParseTolerant)
        return std::nullopt;
    for (int i = 0; i < 5; ++i)
        m_iterator.prevLine();
    for (int i = 0; i < 10; ++i) {
        line = m_iterator.curLineAsString();
        if (line && line->contains(sectionStart)) {
            if (auto found = parseSection(line->mid(line->indexOf(sectionStart))))
                return found;
        }
        m_iterator.nextLine();
    }
    return std::nullopt;
}

void ParserModel::readSections()
{
    const auto isKnown = [this](int pos) {
        for (const SectionTag& known : std::as_const(m_sections)) {
            if (known.pos == pos)
                return true;
        }
        return false;
    };
    std::optional<SectionTag> section = findLastSection();
    for (int id = 0; section && !isKnown(section->pos); ++id) {
        section->id = id;
        m_sections.append(*section);
        section = findPrevSection(*section);
    }
}

void ParserModel::findFiles()
{
    if (!m_iterator.firstLine())
        return;
    do {
        if (!m_iterator.curLineStartsWith("%<--! $TRESK_EMBEDDEDFILE_BEGIN"))
            continue;
        const std::optional<QString> line = m_iterator.curLineAsString();
        std::optional<FileTag> file = line ? parseFile(*line) : std::nullopt;
        if (!file)
            continue;
        file->id = static_cast<int>(m_files.size());
        m_files.append(*file);
        m_iterator.gotoPos(qint64(file->pos) + file->blocksize);
    } while (m_iterator.nextLine());
}

std::optional<SectionTag> ParserModel::parseSection(const QString& line) const
{
    const QRegularExpressionMatch match = m_sectionPattern.match(line);
    if (!match.hasMatch())
        return std::nullopt;
    SectionTag section;
    section.pos = m_iterator.curPos() + 1;
    section.tagLength = static_cast<int>(match.capturedLength()) - 1;
    section.version = match.captured(1);
    section.creator = match.captured(2);
    section.title = match.captured(3);
    section.left = integer(match.captured(4));
    section.size = integer(match.captured(5));
    section.index = integer(match.captured(6));
    section.md5section = match.captured(7);
    section.previousmd5 = match.captured(8);
    section.previousmarker = integer(match.captured(9));
    section.validationTag = validationTag(section.md5section);
    return section;
}

std::optional<FileTag> ParserModel::parseFile(const QString& line) const
{
    const QRegularExpressionMatch match = m_filePattern.match(line);
    if (!match.hasMatch())
        return std::nullopt;
    FileTag file;
    file.pos = m_iterator.curPos() + 1;
    file.tagLength = static_cast<int>(match.capturedLength()) - 1;
    file.filetype = match.captured(1);
    file.filename = match.captured(2);
    file.desc = match.captured(3);
    file.comment = match.captured(4);
    file.compression = match.captured(5);
    file.filesize = integer(match.captured(6));
    file.cfilesize = integer(match.captured(7));
    file.blocksize = integer(match.captured(8));
    file.offset = integer(match.captured(9));
    file.md5file = match.captured(10);
    file.md5cfile = match.captured(11);
    return file;
}

QByteArray ParserModel::validationTag(const QString& md5) const
{
    const QByteArray written = "[md5section:" + md5.toLatin1() + ']';
    const QByteArray zeroed = "[md5section:" + QByteArray(32, '0') + ']';
    return m_iterator.curLine().replace(written, zeroed).mid(1);
}

QList<FileTag> ParserModel::filesInSection(const SectionTag& section) const
{
    QList<FileTag> result;
    const qint64 start = qint64(section.pos) - section.left;
    for (const FileTag& file : m_files) {
        const qint64 blockEnd = qint64(file.pos) + file.tagLength + file.blocksize;
        if (start <= file.pos && blockEnd <= start + section.size)
            result.append(file);
    }
    return result;
}

QList<FileTag> ParserModel::sectionlessFiles() const
{
    QVector<bool> taken(m_files.size(), false);
    for (const SectionTag& section : m_sections) {
        const QList<FileTag> inside = filesInSection(section);
        for (const FileTag& file : inside)
            taken[file.id] = true;
    }
    QList<FileTag> result;
    for (const FileTag& file : m_files) {
        if (!taken.at(file.id))
            result.append(file);
    }
    return result;
}

QByteArray ParserModel::stored(const FileTag& file) const
{
    return m_iterator.getBytes(qint64(file.pos) + file.tagLength + file.offset, file.cfilesize);
}

std::optional<QByteArray> ParserModel::content(const FileTag& file) const
{
    if (file.compression == QLatin1String("none"))
        return stored(file);
    if (file.compression != QLatin1String("flate"))
        return std::nullopt;
    const QByteArray content = decompress(stored(file), file.filesize);
    if (content.size() != file.filesize)
        return std::nullopt;
    return content;
}

QPair<QString, QString> ParserModel::checksums(const FileTag& file) const
{
    const QByteArray bytes = stored(file);
    const QString first = QString::fromLatin1(md5Hex(bytes));
    if (file.compression != QLatin1String("flate"))
        return {first, QString()};
    return {first, QString::fromLatin1(md5Hex(decompress(bytes, file.filesize)))};
}

} // namespace tresktest
