#include "Examination.h"

#include "DocumentWriter.h"
#include "Expectation.h"
#include "Repair.h"
#include "TestFiles.h"

#include <tresk/ExtractionQueue.h>
#include <tresk/FileHash.h>
#include <tresk/SummaryCreator.h>
#include <tresk/TreskDiff.h>
#include <tresk/ValidationQueue.h>
#include <tresk/WorkflowstepCosts.h>

#include <QFile>
#include <QHash>

namespace tresktest {

using tresk::FileTag;
using tresk::SectionTag;
using tresk::TreskParser;

namespace {

const char* const queries[] = {
    "s:title %contains n && f:filesize > 0",
    ":filename == 'a.txt' || s:title == Rest || s:any %contains 2400",
};

QString digest(const QByteArray& bytes)
{
    return QString::fromLatin1(md5Hex(bytes));
}

QString called(const FileTag& file)
{
    return QStringLiteral("file %1 at %2").arg(file.id).arg(file.pos - 1);
}

QString called(const SectionTag& section)
{
    return QStringLiteral("section %1 at %2").arg(section.id).arg(section.pos - 1);
}

bool agree(const FileTag& file, const MarkerText& marker)
{
    return file.tagLength == marker.tagLength && file.filesize == marker.number("filesize")
        && file.cfilesize == marker.number("cfilesize")
        && file.blocksize == marker.number("blocksize") && file.offset == marker.number("offset")
        && file.compression == QString::fromUtf8(marker.value("compression"))
        && file.md5file == QString::fromLatin1(marker.value("md5file"))
        && file.md5cfile == QString::fromLatin1(marker.value("md5cfile"));
}

bool agree(const SectionTag& section, const MarkerText& marker)
{
    return section.tagLength == marker.tagLength && section.left == marker.number("left")
        && section.size == marker.number("size")
        && section.md5section == QString::fromLatin1(marker.value("md5section"))
        && section.previousmarker == marker.number("previousmarker")
        && section.validationTag == marker.validationTag();
}

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
        || file.write(bytes) != bytes.size())
        qFatal("%s could not be written", qPrintable(path));
}

} // namespace

Examination::Examination(const QByteArray& sound, const QString& folder)
    : m_sound(sound)
    , m_soundHead(sound.left(sound.indexOf('\n', sound.indexOf(headerLine())) + 1))
    , m_soundFiles(fileMarkers(sound))
    , m_folder(folder)
    , m_path(folder + QStringLiteral("/document"))
    , m_damaged(sound)
{
    const QString soundPath = folder + QStringLiteral("/sound");
    write(soundPath, sound);
    m_soundTree.treeFromTreskFile(soundPath);
    for (const char* query : queries) {
        m_queries.append(tresk::TreskFindQuery(QLatin1String(query)));
        if (!m_queries.constLast().isValid())
            qFatal("the query %s is wrong", query);
    }
}

std::optional<QByteArray> Examination::variant(const Mutation& mutation) const
{
    const QByteArray document = mutation.applied(m_sound);
    if (document == m_sound)
        return std::nullopt;
    if (!mutation.repairs())
        return document;
    const QByteArray fitting = repaired(document);
    if (fitting == document)
        return std::nullopt;
    return fitting;
}

std::optional<QStringList> Examination::examine(const Mutation& mutation)
{
    const std::optional<QByteArray> document = variant(mutation);
    if (!document)
        return std::nullopt;
    m_damaged = ExpectedDocument(*document);
    m_failures.clear();
    m_validFiles.clear();
    write(m_path, *document);
    examineStrictly();
    examineTolerantly();
    if (!mutation.repairs())
        examineUnrepaired(mutation);
    require(readFile(m_path) == *document, QStringLiteral("the document has been changed"));
    return m_failures;
}

bool Examination::open(TreskParser& parser)
{
    if (parser.open(m_path))
        return true;
    require(parser.getNumSections() == 0 && parser.getNumFiles() == 0,
            QStringLiteral("something was read that could not be opened"));
    require(!m_damaged.bytes().startsWith(m_soundHead),
            QStringLiteral("a document with its header was not opened"));
    return false;
}

/// The sections depend on the mode, but what is read of the files does not.
void Examination::examineStrictly()
{
    TreskParser parser(tresk::ParseStrict);
    if (!open(parser))
        return;
    examineSections(parser);
    examineChecksums(parser, 0);
}

void Examination::examineTolerantly()
{
    TreskParser parser;
    if (!open(parser))
        return;
    examineSections(parser);
    const QList<FileTag> files = parser.getFiles();
    for (const FileTag& file : files)
        examineFile(parser, file);
    examineChecksums(parser, 64);
    examineExtraction(parser);
    examineSteps(parser);
}

void Examination::examineSections(TreskParser& parser)
{
    const QList<SectionTag> sections = parser.getSections();
    for (const SectionTag& section : sections) {
        const ExpectedSection* expected = m_damaged.section(section.pos - 1);
        require(expected && agree(section, expected->marker),
                called(section) + QStringLiteral(": misread"));
        parser.getFilesInSection(section.id);
    }
    parser.getSectionlessFiles();
}

void Examination::examineFile(TreskParser& parser, const FileTag& file)
{
    const ExpectedFile* found = m_damaged.file(file.pos - 1);
    if (!found || !agree(file, found->marker())) {
        require(false, called(file) + QStringLiteral(": misread"));
        return;
    }
    const ExpectedFile& expected = *found;
    const std::optional<QByteArray> wanted = expected.content();
    const QSharedPointer<QByteArray> content = parser.getFileContent(file.id);
    // A stream that breaks is as good as empty, but one that yields more before that is given up.
    require(content ? wanted && *content == *wanted : !wanted || expected.isBrokenStream(),
            called(file) + QStringLiteral(": other content"));
    tresk::makeFileHash(file, 0);

    const QPair<QString, QString> checksums = parser.calcChecksumsForFile(file.id);
    require(checksums.first == digest(expected.stored()),
            called(file) + QStringLiteral(": other checksum of the stored bytes"));
    if (expected.isFlate() && file.filesize >= 0)
        require(checksums.second == digest(expected.inflatedOrEmpty()),
                called(file) + QStringLiteral(": other checksum of the content"));

    const bool written = parser.writeFileToDisk(file.id, target(file.id));
    require(written == (expected.isFlate() || expected.isPlain()),
            called(file) + QStringLiteral(": written although it cannot be, or the other way"));
    if (written && expected.isValid() && (expected.isPlain() || expected.isCheckedInflated()))
        require(readFile(target(file.id)) == *expected.checkedContent(),
                called(file) + QStringLiteral(": valid, but written with other content"));
}

void Examination::examineChecksums(TreskParser& parser, int blockSize)
{
    QHash<int, bool> sections;
    QHash<int, bool> files;
    tresk::ValidationQueue queue(&parser, blockSize);
    QObject::connect(&queue, &tresk::ValidationQueue::sectionProcessed,
                     [&](int id, bool valid) { sections.insert(id, valid); });
    QObject::connect(&queue, &tresk::ValidationQueue::fileProcessed,
                     [&](int id, bool valid) { files.insert(id, valid); });
    queue.repopulate(&parser);
    while (queue.process()) { }

    require(sections.size() == parser.getNumSections() && files.size() == parser.getNumFiles(),
            QStringLiteral("not everything was checked"));
    const QList<SectionTag> allSections = parser.getSections();
    for (const SectionTag& section : allSections) {
        const ExpectedSection* expected = m_damaged.section(section.pos - 1);
        const bool valid = sections.value(section.id);
        ++(valid ? m_numValid : m_numInvalid);
        require(expected && valid == expected->valid,
                called(section) + (valid ? QStringLiteral(": valid") : QStringLiteral(": invalid"))
                    + QStringLiteral(" without reason"));
    }
    const QList<FileTag> allFiles = parser.getFiles();
    for (const FileTag& file : allFiles) {
        const ExpectedFile* expected = m_damaged.file(file.pos - 1);
        const bool valid = files.value(file.id);
        ++(valid ? m_numValid : m_numInvalid);
        if (valid)
            m_validFiles.append(file.pos);
        require(expected && valid == expected->isValid(),
                called(file) + (valid ? QStringLiteral(": valid") : QStringLiteral(": invalid"))
                    + QStringLiteral(" without reason"));
    }
}

void Examination::examineExtraction(TreskParser& parser)
{
    QHash<int, QString> targets;
    for (int id = 0; id < parser.getNumFiles(); ++id)
        targets.insert(id, target(id));
    QHash<int, bool> results;
    tresk::ExtractionQueue queue(&parser);
    QObject::connect(&queue, &tresk::ExtractionQueue::fileProcessed,
                     [&](int id, bool valid) { results.insert(id, valid); });
    queue.addExtractees(targets);
    while (queue.process()) { }

    require(results.size() == parser.getNumFiles(), QStringLiteral("not everything was extracted"));
    const QList<FileTag> files = parser.getFiles();
    for (const FileTag& file : files) {
        const ExpectedFile* expected = m_damaged.file(file.pos - 1);
        if (!expected) // reported already
            continue;
        const std::optional<QByteArray> content = expected->checkedContent();
        const bool extracted = results.value(file.id);
        // A stream that only breaks off counts as extracted, and so may do without a content.
        if (content && extracted)
            require(readFile(target(file.id)) == *content,
                    called(file) + QStringLiteral(": extracted with other content"));
        if (!content && !expected->isCheckedInflated())
            require(!extracted, called(file) + QStringLiteral(": extracted from nowhere"));
        if (expected->isValid() && file.filesize >= 0)
            require(extracted, called(file) + QStringLiteral(": valid, but not extracted"));
    }
}

void Examination::examineSteps(TreskParser& parser)
{
    tresk::SummaryCreator creator;
    const QList<tresk::Summary> summaries = creator.createSummaries(parser);
    const bool hasUnmatched = !parser.getSectionlessFiles().isEmpty();
    require(summaries.size() == parser.getNumSections() + (hasUnmatched ? 1 : 0),
            QStringLiteral("a step without a summary"));
    for (const tresk::TreskFindQuery& query : qAsConst(m_queries))
        query.matches(summaries);
    require(m_queries.constFirst().matches(parser) == m_queries.constFirst().matches(summaries),
            QStringLiteral("a query has two answers"));

    tresk::WorkflowTree tree;
    tree.treeFromTreskFile(m_path);
    require(tree.children(-1).size() == summaries.size(),
            QStringLiteral("steps are missing from the tree"));
    tresk::WorkflowstepCosts costs;
    const QSharedPointer<tresk::TreskDiffResult> match =
        tresk::TreskDiff(m_soundTree, tree, &costs).findBestMatch();
    require(bool(match), QStringLiteral("no comparison with the sound document"));
}

/// Where stored bytes were changed and nothing was repaired, a checksum of them must not fit.
void Examination::examineUnrepaired(const Mutation& mutation)
{
    for (const MarkerText& marker : qAsConst(m_soundFiles)) {
        const bool flate = marker.value("compression") == "flate";
        const int start = marker.pos + marker.tagLength + marker.number("offset");
        const int end = start + marker.number(flate ? "cfilesize" : "filesize");
        const bool changed = start < end && end <= m_sound.size() && mutation.place() < end
            && (mutation.cuts() || mutation.place() >= start);
        require(!changed || !m_validFiles.contains(marker.pos),
                QStringLiteral("the file at %1 was changed and is valid").arg(marker.pos - 1));
    }
}

void Examination::require(bool holds, const QString& what)
{
    if (!holds && !m_failures.contains(what))
        m_failures.append(what);
}

QString Examination::target(int id) const
{
    return m_folder + QStringLiteral("/file") + QString::number(id);
}

} // namespace tresktest
