#ifndef TRESK_CONTAINER_SECTIONSTORE_H
#define TRESK_CONTAINER_SECTIONSTORE_H

#include <tresk/TreskParser.h>

#include <QByteArray>
#include <QHash>
#include <QString>

#include <array>
#include <deque>

namespace tresk {

/// The sections of a document, held in less than 200 bytes each where their texts are of usual
/// length; as SectionTag they take three times as much.
class SectionStore {
public:
    /// Adds a section, whose id is to be its index here. @p line is that of its marker.
    void append(const SectionTag& section, const QByteArray& line);
    void clear();

    int size() const { return int(m_records.size()); }
    /// The section with its validation tag.
    SectionTag at(int i) const;

    // Parts of a section, without making all of it.

    int positionOf(int i) const { return m_records[std::size_t(i)].pos; }
    int leftOf(int i) const { return m_records[std::size_t(i)].left; }
    int sizeOf(int i) const { return m_records[std::size_t(i)].size; }

private:
    /// An MD5 digest, or none.
    struct Digest {
        std::array<char, 16> bytes;
        bool isSet;
    };

    struct Record {
        int pos;
        int tagLength;
        int left;
        int size;
        int index;
        int previousmarker;
        Digest md5section;
        Digest previousmd5;
        int writer; ///< index in m_writers
        QByteArray title; ///< UTF-8
    };

    /// What most sections of a document have in common.
    struct Writer {
        QString version;
        QString creator;
    };

    int indexOfWriter(const SectionTag& section);

    static Digest digestFrom(const QString& digits);
    static QString digitsOf(const Digest& digest);

    std::deque<Record> m_records;
    std::deque<Writer> m_writers; ///< each other than the one before
    /// Those whose validation tags cannot be made of their other fields, and those with long texts.
    QHash<int, SectionTag> m_unusual;
};

} // namespace tresk

#endif
