#include "QueueDocuments.h"

#include "EmbeddedFiles.h"

using tresk::SavedFile;
using tresk::TreskParser;

namespace tresktest {

FileSpec fileOf(const char* name, int size)
{
    return FileSpec::plain(QString::fromLatin1(name), QByteArray(size, 'x'));
}

SectionSpec titled(const char* title)
{
    SectionSpec section;
    section.title = QString::fromLatin1(title);
    return section;
}

bool QueueDocuments::open(TreskParser& parser, const DocumentWriter& document)
{
    const QString name = QStringLiteral("document %1").arg(m_documents++);
    return parser.open(m_dir.write(name, document.bytes()));
}

bool QueueDocuments::open(TreskParser& parser, const QVector<FileSpec>& files,
                          const QByteArray& terminator)
{
    DocumentWriter document;
    document.setTerminator(terminator);
    document.writeHeader();
    for (const FileSpec& file : files)
        document.writeFile(file);
    return open(parser, document) && parser.getNumFiles() == files.size();
}

QHash<int, QString> QueueDocuments::targets(int count) const
{
    QHash<int, QString> result;
    for (int id = 0; id < count; ++id)
        result.insert(id, target(id));
    return result;
}

bool ValidatedDocuments::openBoth()
{
    const auto plainFile = [](const char* name, int size) {
        return FileSpec::plain(QString::fromLatin1(name), squares(size));
    };
    DocumentWriter document;
    document.writeHeader();
    SectionSpec section = titled("step");
    section.files = {plainFile("a", 25), FileSpec::flate(QStringLiteral("b"), squares(40))};
    section.filesBehind = {plainFile("c", 25)};
    document.writeSection(section);
    return open(document) && m_parser.getNumFiles() == 3 && open(m_other, {plainFile("d", 10)});
}

SavedFile ValidatedDocuments::saved(int size) const
{
    const QByteArray content(size, 's');
    const QString path = m_dir.write(QStringLiteral("saved %1").arg(size), content);
    return {path, QString::fromLatin1(md5Hex(content)), size};
}

} // namespace tresktest
