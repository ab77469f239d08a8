#include "container/SectionStore.h"

#include "container/Marker.h"

#include <algorithm>

namespace tresk {

namespace {

constexpr int longestUsualLine = 4096;

/// Decoding drops a byte order mark at the start of a text, so there is a character before it.
QString textFrom(const QByteArray& utf8)
{
    return QString::fromUtf8(':' + utf8).mid(1);
}

} // namespace

void SectionStore::append(const SectionTag& section, const QByteArray& line)
{
    const bool usual = line.size() <= longestUsualLine && line == usualMarkerLine(section);
    QByteArray title = usual ? section.title.toUtf8() : QByteArray();
    title.squeeze();
    const int id = size();
    m_records.push_back({section.pos, section.tagLength, section.left, section.size, section.index,
                         section.previousmarker, digestFrom(section.md5section),
                         digestFrom(section.previousmd5), indexOfWriter(section), title});
    if (usual)
        return;
    SectionTag& kept = m_unusual[id];
    kept = section;
    kept.id = id;
    kept.validationTag = makeValidationTag(line, section.md5section);
}

void SectionStore::clear()
{
    m_records.clear();
    m_writers.clear();
    m_unusual.clear();
}

SectionTag SectionStore::at(int i) const
{
    const auto unusual = m_unusual.constFind(i);
    if (unusual != m_unusual.constEnd())
        return *unusual;
    const Record& record = m_records[std::size_t(i)];
    SectionTag section;
    section.id = i;
    section.pos = record.pos;
    section.tagLength = record.tagLength;
    section.version = m_writers[std::size_t(record.writer)].version;
    section.creator = m_writers[std::size_t(record.writer)].creator;
    section.title = textFrom(record.title);
    section.left = record.left;
    section.size = record.size;
    section.index = record.index;
    section.md5section = digitsOf(record.md5section);
    section.previousmd5 = digitsOf(record.previousmd5);
    section.previousmarker = record.previousmarker;
    section.validationTag = makeValidationTag(usualMarkerLine(section), section.md5section);
    return section;
}

int SectionStore::indexOfWriter(const SectionTag& section)
{
    if (m_writers.empty() || m_writers.back().version != section.version
        || m_writers.back().creator != section.creator)
        m_writers.push_back({section.version, section.creator});
    return int(m_writers.size()) - 1;
}

SectionStore::Digest SectionStore::digestFrom(const QString& digits)
{
    Digest digest = {};
    const QByteArray bytes = QByteArray::fromHex(digits.toLatin1());
    digest.isSet = std::size_t(bytes.size()) == digest.bytes.size();
    if (digest.isSet)
        std::copy(bytes.begin(), bytes.end(), digest.bytes.begin());
    return digest;
}

QString SectionStore::digitsOf(const Digest& digest)
{
    if (!digest.isSet)
        return QString::fromLatin1("");
    const QByteArray bytes = QByteArray::fromRawData(digest.bytes.data(), int(digest.bytes.size()));
    return QString::fromLatin1(bytes.toHex());
}

} // namespace tresk
