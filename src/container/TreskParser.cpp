#include <tresk/TreskParser.h>

#include "container/ByteSearch.h"
#include "container/Marker.h"
#include "container/SectionStore.h"

#include <QSet>

#include <algorithm>
#include <limits>
#include <vector>

namespace tresk {

namespace {

constexpr qint64 largestDocument = std::numeric_limits<int>::max();
constexpr int headerLines = 10;
// Where a previous section is not in its place, tolerant reading looks at the lines around it.
constexpr int linesBack = 5;
constexpr int linesSearched = 10;

// Sums of what markers say can leave the range of int, so they are all made in 64 bits.

/// A section's region, or an embedded file's marker and block; the end is not part of it.
struct Range {
    qint64 begin;
    qint64 end;
};

Range regionOf(const SectionStore& sections, int i)
{
    const qint64 begin = qint64(sections.positionOf(i)) - sections.leftOf(i);
    return {begin, begin + sections.sizeOf(i)};
}

Range blockOf(const FileTag& file)
{
    return {file.pos, qint64(file.pos) + file.tagLength + file.blocksize};
}

/// The positions of a chain of sections. As a rule each is in front of all before it, so that
/// there is nothing to remember but the last.
class ChainPositions {
public:
    /// Adds @p pos to those of @p sections; false if it is there already.
    bool add(int pos, const SectionStore& sections)
    {
        if (pos >= m_first && m_seen.isEmpty()) {
            for (int i = 0; i < sections.size(); ++i)
                m_seen.insert(sections.positionOf(i));
        }
        if (pos >= m_first && m_seen.contains(pos))
            return false;
        m_first = std::min(m_first, pos);
        if (!m_seen.isEmpty())
            m_seen.insert(pos);
        return true;
    }

private:
    int m_first = std::numeric_limits<int>::max();
    QSet<int> m_seen; ///< empty as long as it is not needed
};

bool liesIn(const Range& block, const Range& region)
{
    return region.begin <= block.begin && region.end >= block.end;
}

} // namespace

TreskParser::TreskParser(ParseMode mode, QObject* listener)
    : LogSource(listener)
    , m_sections(std::make_unique<SectionStore>())
    , m_mode(mode)
{
}

TreskParser::~TreskParser() = default;

bool TreskParser::open(const QString& path)
{
    m_sections->clear();
    m_files.clear();
    if (!m_iterator.open(path) || m_iterator.getFileSize() > largestDocument || !headerFound())
        return false;
    readSections();
    findFiles();
    return true;
}

void TreskParser::releaseFile()
{
    m_iterator.releaseFile();
}

bool TreskParser::readFailed() const
{
    return m_iterator.readFailed();
}

QList<SectionTag> TreskParser::getSections() const
{
    QList<SectionTag> sections;
    sections.reserve(m_sections->size());
    for (int i = 0; i < m_sections->size(); ++i)
        sections.append(m_sections->at(i));
    return sections;
}

QList<FileTag> TreskParser::getFiles() const
{
    return m_files;
}

int TreskParser::getNumSections() const
{
    return m_sections->size();
}

int TreskParser::getNumFiles() const
{
    return int(m_files.size());
}

QSharedPointer<SectionTag> TreskParser::getSection(int i) const
{
    if (i < 0 || i >= m_sections->size())
        return {};
    return QSharedPointer<SectionTag>::create(m_sections->at(i));
}

QSharedPointer<FileTag> TreskParser::getFile(int i) const
{
    if (i < 0 || i >= m_files.size())
        return {};
    return QSharedPointer<FileTag>::create(m_files.at(i));
}

QList<FileTag> TreskParser::getFilesInSection(int i) const
{
    QList<FileTag> files;
    if (i < 0 || i >= m_sections->size())
        return files;
    const Range region = regionOf(*m_sections, i);
    // Files are sorted by position, so those that can lie in the region stand together.
    const auto liesBefore = [](const FileTag& file, qint64 pos) { return file.pos < pos; };
    auto file = std::lower_bound(m_files.begin(), m_files.end(), region.begin, liesBefore);
    for (; file != m_files.end() && file->pos <= region.end; ++file) {
        if (liesIn(blockOf(*file), region))
            files.append(*file);
    }
    return files;
}

QList<FileTag> TreskParser::getSectionlessFiles() const
{
    std::vector<Range> regions;
    regions.reserve(std::size_t(m_sections->size()));
    for (int i = 0; i < m_sections->size(); ++i)
        regions.push_back(regionOf(*m_sections, i));
    const auto beginsEarlier = [](const Range& a, const Range& b) { return a.begin < b.begin; };
    std::sort(regions.begin(), regions.end(), beginsEarlier);

    // Of the regions that begin before a file, the one that reaches farthest holds it if any does.
    QList<FileTag> files;
    auto region = regions.cbegin();
    qint64 farthest = std::numeric_limits<qint64>::min();
    for (const FileTag& file : m_files) {
        const Range block = blockOf(file);
        for (; region != regions.cend() && region->begin <= block.begin; ++region)
            farthest = std::max(farthest, region->end);
        if (farthest < block.end)
            files.append(file);
    }
    return files;
}

QByteArray TreskParser::getBytes(int pos, int len)
{
    return m_iterator.getBytes(pos, len);
}

bool TreskParser::headerFound()
{
    bool more = m_iterator.firstLine();
    for (int i = 0; more && i < headerLines; ++i) {
        const QSharedPointer<QByteArray> line = m_iterator.curLine();
        const std::optional<std::string_view> text = lineText(*line);
        if (!text) // A header behind a line with a NUL byte does not count.
            return false;
        if (startsWith(*text, headerStart))
            return true;
        more = m_iterator.nextLine();
    }
    return false;
}

void TreskParser::readSections()
{
    ChainPositions positions; // a chain that leads back into itself ends there
    std::optional<SectionTag> section = findLastSection();
    while (section && positions.add(section->pos, *m_sections)) {
        m_sections->append(*section, *m_iterator.curLine());
        section = findPrevSection(*section);
    }
}

std::optional<SectionTag> TreskParser::findLastSection()
{
    bool found = m_iterator.lastLine();
    for (; found; found = m_iterator.prevLineContaining(sectionStart)) {
        if (std::optional<SectionTag> section = parseSection(m_mode == ParseTolerant))
            return section;
    }
    return std::nullopt;
}

std::optional<SectionTag> TreskParser::findPrevSection(const SectionTag& section)
{
    if (section.previousmarker < 0)
        return std::nullopt;
    // A position outside the document leaves the iterator where it is, on the line of a section
    // that is known already: the chain ends.
    gotoPos(qint64(section.pos) - section.previousmarker - 1);
    if (std::optional<SectionTag> previous = parseSection(false))
        return previous;
    if (m_mode != ParseTolerant)
        return std::nullopt;

    // The first step back only returns to the start of the line just read.
    for (int i = 0; i < linesBack; ++i)
        m_iterator.prevLine();
    for (int i = 0; i < linesSearched; ++i) {
        if (std::optional<SectionTag> previous = parseSection(true))
            return previous;
        m_iterator.nextLine();
    }
    return std::nullopt;
}

/// The section marker at the start of the current line or, if @p anywhere, at the first place on
/// it where one begins. Either way its position is that of the line.
std::optional<SectionTag> TreskParser::parseSection(bool anywhere) const
{
    const QSharedPointer<QByteArray> line = m_iterator.curLine();
    const std::optional<std::string_view> text = lineText(*line);
    const std::size_t start = text && anywhere ? findText(*text, sectionStart) : 0;
    if (!text || start == std::string_view::npos)
        return std::nullopt;
    std::optional<SectionTag> section = readSectionMarker(text->substr(start));
    if (section)
        section->pos = m_iterator.curPos() + 1;
    return section;
}

void TreskParser::findFiles()
{
    bool found = m_iterator.firstLine();
    for (; found; found = m_iterator.nextLineStartingWith(fileStart)) {
        std::optional<FileTag> file = parseFile();
        if (!file)
            continue;
        file->id = int(m_files.size());
        m_files.append(*file);
        // Without the length of the marker, so this lands inside the block. The line found there
        // is passed over, whatever it is.
        gotoPos(qint64(file->pos) + file->blocksize);
    }
}

/// The marker of an embedded file at the start of the current line.
std::optional<FileTag> TreskParser::parseFile() const
{
    if (!m_iterator.curLineStartsWithBytes(fileStart))
        return std::nullopt;
    const QSharedPointer<QByteArray> line = m_iterator.curLine();
    const std::optional<std::string_view> text = lineText(*line);
    std::optional<FileTag> file = text ? readFileMarker(*text) : std::nullopt;
    if (file)
        file->pos = m_iterator.curPos() + 1;
    return file;
}

/// Reads the line from @p pos on; does nothing if that is outside the document.
void TreskParser::gotoPos(qint64 pos)
{
    if (pos >= 0 && pos < largestDocument)
        m_iterator.gotoPos(int(pos));
}

} // namespace tresk
