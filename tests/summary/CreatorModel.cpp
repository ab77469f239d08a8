#include "CreatorModel.h"

#include "DebugLines.h"
#include "ReaderModel.h"

#include <tresk/SummaryCreator.h>

#include <optional>

using tresk::FileSummary;
using tresk::FileTag;
using tresk::SectionTag;
using tresk::Summary;

namespace tresktest {

namespace {

QString keyOf(int sectionId, const QString& name, const QString& md5, int size)
{
    return QStringLiteral("file: <") + QString::number(sectionId) + QStringLiteral(">-<") + name
        + QStringLiteral(">-<") + md5 + QStringLiteral(">-<") + QString::number(size)
        + QLatin1Char('>');
}

int distance(const FileTag& tag, const FileSummary& file)
{
    int sum = 0;
    if (tag.filename != file.filename)
        sum += 20;
    if (tag.filetype != file.filetype)
        sum += 1;
    if (tag.comment != file.comment)
        sum += 1;
    if (tag.desc != file.description)
        sum += 1;
    if (tag.md5file != file.uncompressedMD5)
        sum += 20;
    if (tag.filesize != file.uncompressedSize)
        sum += 20;
    if (tag.md5cfile != file.compressedMD5)
        sum += 2;
    if (tag.cfilesize != file.compressedSize)
        sum += 2;
    if (tag.compression != file.compressedMethod)
        sum += 2;
    return sum;
}

FileSummary fromTag(const FileTag& tag)
{
    FileSummary file;
    file.tagId = tag.id;
    file.filename = tag.filename;
    file.filetype = tag.filetype;
    file.description = tag.desc;
    file.comment = tag.comment;
    file.uncompressedSize = tag.filesize;
    file.uncompressedMD5 = tag.md5file;
    file.compressedMethod = tag.compression;
    file.compressedSize = tag.cfilesize;
    file.compressedMD5 = tag.md5cfile;
    return file;
}

} // namespace

QList<Summary> CreatorModel::createSummaries(tresk::TreskParser& parser)
{
    m_entries.clear();
    const QList<SectionTag> sections = parser.getSections();
    for (const SectionTag& section : sections) {
        const QList<FileTag> files = parser.getFilesInSection(section.id);
        for (const FileTag& tag : files) {
            const QString key = keyOf(section.id, tag.filename, tag.md5file, tag.filesize);
            m_entries.append({key, tag, section.id});
        }
    }

    QList<Summary> summaries;
    for (int id = static_cast<int>(sections.size()) - 1; id >= 0; --id) {
        const QList<FileTag> files = parser.getFilesInSection(id);
        std::optional<Summary> summary;
        if (!files.isEmpty() && files.last().filename == QLatin1String("ws_summary.xml")) {
            const QSharedPointer<QByteArray> content = parser.getFileContent(files.last().id);
            if (content) {
                ReaderModel reader;
                summary = reader.readSummary(QString::fromStdString(content->toStdString()));
                m_debugLines += reader.debugLines();
                summary = complete(*summary, id);
            } else {
                m_debugLines += QStringLiteral("could not read summary %1").arg(files.last().id);
            }
        }
        if (!summary) {
            summary = Summary();
            summary->tagId = id;
            summary->title = sections.at(id).title;
            summary->creator = sections.at(id).creator;
            for (const FileTag& tag : files)
                summary->files.append(fromTag(tag));
        }
        summaries.append(*summary);
    }

    Summary unmatched;
    unmatched.title = QStringLiteral("<unmatched files>");
    const QList<FileTag> sectionless = parser.getSectionlessFiles();
    for (const FileTag& tag : sectionless)
        unmatched.files.append(fromTag(tag));
    if (!unmatched.files.isEmpty())
        summaries.append(unmatched);
    return summaries;
}

Summary CreatorModel::complete(const Summary& read, int sectionId)
{
    Summary summary = read;
    summary.tagId = sectionId;
    for (FileSummary& file : summary.files) {
        if (!file.embedded)
            continue;
        const int found = nearest(file, sectionId);
        if (found < 0 || distance(m_entries.at(found).tag, file) >= 15)
            continue;
        file.tagId = m_entries.at(found).tag.id;
        m_entries.removeAt(found);
    }
    for (const Entry& entry : m_entries) {
        if (entry.sectionId != read.tagId)
            continue;
        m_debugLines += QStringLiteral("foundMismatch");
        const FileSummary file = fromTag(entry.tag);
        const MessageCapture capture;
        tresk::printFileSummary(file);
        m_debugLines += tresktest::debugLines(capture);
        summary.files.append(file);
    }
    return summary;
}

/// The place of the entry that is nearest to @p file, the newest of several; -1 without any.
int CreatorModel::nearest(const FileSummary& file, int sectionId) const
{
    const QString key = keyOf(sectionId, file.filename, file.uncompressedMD5,
                              file.uncompressedSize);
    int bound = 1000000;
    int found = -1;
    for (int i = static_cast<int>(m_entries.size()) - 1; i >= 0; --i) {
        const Entry& entry = m_entries.at(i);
        if (entry.key != key || distance(entry.tag, file) >= bound)
            continue;
        bound = distance(entry.tag, file);
        found = i;
    }
    return found;
}

} // namespace tresktest
