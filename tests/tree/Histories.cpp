#include "Histories.h"

#include "../summary/SummaryXml.h"

#include <tresk/WorkflowTree.h>

#include <QDir>

namespace tresktest {

namespace {

const char temporaryFolder[] = "TMPDIR";

QString textOf(const tresk::WorkflowTree& tree, int parent)
{
    QStringList texts;
    const QList<int> ids = tree.children(parent);
    for (const int id : ids) {
        const QString below = textOf(tree, id);
        const QString title = tree.workflowStep(id)->title;
        texts += below.isEmpty() ? title : title + QLatin1Char('(') + below + QLatin1Char(')');
    }
    return texts.join(QLatin1Char(' '));
}

} // namespace

SectionSpec stepThatSays(const QByteArray& content, const QVector<FileSpec>& files)
{
    SectionSpec section;
    section.title = QStringLiteral("marker");
    section.files = files;
    section.files += summaryFile(summaryXml(content));
    return section;
}

SectionSpec step(const QByteArray& title, const QVector<FileSpec>& files, const QByteArray& purpose)
{
    QByteArray content = element("Title", title);
    for (const FileSpec& file : files)
        content += FileElement(file, purpose).xml();
    return stepThatSays(content, files);
}

QByteArray history(const QVector<SectionSpec>& steps)
{
    DocumentWriter document("%PDF-1.4\n");
    document.writeHeader();
    for (const SectionSpec& section : steps)
        document.writeSection(section);
    return document.bytes();
}

FileSpec embedded(const char* name, const QByteArray& document)
{
    return FileSpec::flate(QString::fromLatin1(name), document);
}

QByteArray nested(int levels)
{
    QByteArray document = history({step("level 0")});
    for (int level = 1; level < levels; ++level) {
        const QByteArray below = "level " + QByteArray::number(level - 1) + ".tresk";
        FileSpec file = embedded(below.constData(), document);
        file.stored = deflated(document, 1); // fast, for many levels
        document = history({step("level " + QByteArray::number(level), {file})});
    }
    return document;
}

QString textOf(const tresk::WorkflowTree& tree)
{
    return textOf(tree, -1);
}

LogLines::LogLines(tresk::LogSource& source)
{
    QObject::connect(&source, &tresk::LogSource::log, &m_context,
                     [this](const QString& text, int type) {
                         lines += QString::number(type) + QLatin1Char(' ') + text;
                     });
}

TemporaryFolder::TemporaryFolder()
    : m_before(qgetenv(temporaryFolder))
{
    qputenv(temporaryFolder, QFile::encodeName(m_dir.path(QStringLiteral("."))));
}

TemporaryFolder::TemporaryFolder(const QString& path)
    : m_before(qgetenv(temporaryFolder))
{
    qputenv(temporaryFolder, QFile::encodeName(path));
}

TemporaryFolder::~TemporaryFolder()
{
    if (m_before.isNull())
        qunsetenv(temporaryFolder);
    else
        qputenv(temporaryFolder, m_before);
}

QStringList TemporaryFolder::files() const
{
    const QDir folder(m_dir.path(QStringLiteral(".")));
    QStringList paths;
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& name : names)
        paths += folder.filePath(name);
    return paths;
}

} // namespace tresktest
