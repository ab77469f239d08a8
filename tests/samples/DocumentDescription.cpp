#include "DocumentDescription.h"

#include "DocumentChecks.h"

#include <TestFiles.h>

#include <tresk/MD5Generator.h>

#include <QRegularExpression>

namespace tresktest {

namespace {

QString digest(const QByteArray& bytes)
{
    return tresk::MD5Generator(bytes).getHexDigest();
}

QString yesNo(bool value)
{
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}

/// A summary without the elements that repeat sizes and digests of compressed files.
QByteArray withoutSizes(const QByteArray& summary)
{
    static const QRegularExpression element(
        QStringLiteral("<((?:Unc|C)ompressed(?:Size|MD5)|MD5Signature)>[^<]*</"));
    return QString::fromUtf8(summary).replace(element, QStringLiteral("<\\1></")).toUtf8();
}

QStringList indented(const QStringList& lines)
{
    QStringList result;
    for (const QString& line : lines)
        result.append(QStringLiteral("    ") + line);
    return result;
}

QStringList describeContent(tresk::TreskParser& parser, const tresk::FileTag& file)
{
    const auto content = parser.getFileContent(file.id);
    if (!content)
        return {QStringLiteral("unreadable, said to be ") + file.md5file};
    if (file.filename == QLatin1String("ws_summary.xml"))
        return {QStringLiteral("summary ") + digest(withoutSizes(*content))};
    if (file.filename.endsWith(QLatin1String(".tresk"))) {
        const TestDir folder;
        return describeDocument(folder.write(QStringLiteral("embedded"), *content));
    }
    return {QStringLiteral("content %1, said to be %2 with %3 bytes")
                .arg(digest(*content), file.md5file)
                .arg(file.filesize)};
}

QStringList describeFile(tresk::TreskParser& parser, const tresk::FileTag& file)
{
    const QStringList texts{file.filename, file.filetype, file.desc, file.comment,
                            file.compression};
    QStringList lines{QStringLiteral("file ") + texts.join(QLatin1String(" | "))};
    // For a name that is not ASCII the offset makes up for the characters' bytes.
    lines.append(QStringLiteral("offset %1, %2 bytes behind the data, sound: %3")
                     .arg(file.offset)
                     .arg(file.blocksize - file.offset - file.cfilesize)
                     .arg(yesNo(isFileSound(parser, file))));
    return lines + indented(describeContent(parser, file));
}

QStringList describeSection(tresk::TreskParser& parser, const tresk::SectionTag& section)
{
    const QStringList texts{section.title, section.creator, section.version};
    QStringList lines{QStringLiteral("section ") + texts.join(QLatin1String(" | "))};
    lines.append(QStringLiteral("index %1, sound: %2")
                     .arg(section.index)
                     .arg(yesNo(isSectionSound(parser, section))));
    if (const auto older = parser.getSection(section.id + 1)) {
        const int olderEnd = older->pos - older->left + older->size;
        lines.append(QStringLiteral("%1 bytes behind the older region, link off by %2, digest: %3")
                         .arg(section.pos - section.left - olderEnd)
                         .arg(section.pos - section.previousmarker - older->pos)
                         .arg(yesNo(section.previousmd5 == older->md5section)));
    }
    const QList<tresk::FileTag> files = parser.getFilesInSection(section.id);
    for (const tresk::FileTag& file : files)
        lines += indented(describeFile(parser, file));
    return lines;
}

} // namespace

QStringList describeDocument(const QString& path)
{
    tresk::TreskParser parser;
    if (!parser.open(path) || parser.getNumFiles() == 0 || parser.getNumSections() == 0)
        return {QStringLiteral("no history")};

    const QByteArray bytes = readFile(path);
    const auto newest = parser.getSection(0);
    const int historyStart = parser.getFile(0)->pos - 1;
    const int historyEnd = newest->pos - newest->left + newest->size;
    QStringList lines{
        QStringLiteral("host ") + digest(bytes.left(historyStart)),
        QStringLiteral("tail ") + digest(bytes.mid(historyEnd)),
        QStringLiteral("files in no section: %1").arg(parser.getSectionlessFiles().size())};
    const QList<tresk::SectionTag> sections = parser.getSections();
    for (const tresk::SectionTag& section : sections)
        lines += describeSection(parser, section);
    return lines;
}

} // namespace tresktest
