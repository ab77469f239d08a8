#include "Commands.h"
#include "ContentReader.h"
#include "Document.h"
#include "FileSelection.h"
#include "Interruption.h"
#include "Invocation.h"
#include "Json.h"
#include "Messages.h"
#include "Progress.h"
#include "TargetDirectory.h"
#include "TargetNames.h"
#include "Text.h"

#include <algorithm>

namespace tresk::cli {

namespace {

qint64 storedSize(const FileTag& file)
{
    const bool plain = file.compression == QLatin1String("none");
    return std::max(0, plain ? file.filesize : file.cfilesize);
}

qint64 storedSize(const QList<FileTag>& files)
{
    qint64 sum = 0;
    for (const FileTag& file : files)
        sum += storedSize(file);
    return sum;
}

/// Writes embedded files of a document to a directory and tells about it.
class Extraction {
public:
    Extraction(Invocation& invocation, Document& document, const TargetDirectory& directory,
               const QList<FileTag>& files);

    /// Returns the exit code.
    int run();

private:
    QString extract(const FileTag& file);
    QString writeContent(const FileTag& file, ContentReader& content, TargetFile& target);
    QString writeError(const FileTag& file, const QString& reason) const;
    void tell(const FileTag& file, const QString& error);
    QJsonObject resultJson(const FileTag& file, const QString& error) const;
    QString resultLine(const FileTag& file) const;

    Output& m_output;
    const Style& m_style;
    Document& m_document;
    const TargetDirectory& m_directory;
    const QList<FileTag> m_files;
    TargetNames m_names;
    Progress m_progress;
    bool m_force;
    bool m_json;
    bool m_quiet;
    qint64 m_storedDone = 0;
    bool m_failed = false;
    QJsonArray m_results;
};

Extraction::Extraction(Invocation& invocation, Document& document, const TargetDirectory& directory,
                       const QList<FileTag>& files)
    : m_output(invocation.output)
    , m_style(invocation.style)
    , m_document(document)
    , m_directory(directory)
    , m_files(files)
    , m_names(document.parser().getFiles())
    , m_progress(storedSize(files))
    , m_force(invocation.isSet("force"))
    , m_json(invocation.isSet("json"))
    , m_quiet(invocation.isSet("quiet"))
{
}

int Extraction::run()
{
    for (const FileTag& file : m_files) {
        const QString error = extract(file);
        // A file that was complete before the signal came is still told about.
        if (interruptedBy() != 0 && !error.isEmpty())
            break;
        tell(file, error);
        m_storedDone += storedSize(file);
    }
    m_progress.clear();
    if (m_json) {
        writeJson(m_output,
                  {{QStringLiteral("document"), m_document.name()},
                   {QStringLiteral("directory"), m_directory.path()},
                   {QStringLiteral("files"), m_results}});
    }
    if (interruptedBy() != 0) {
        m_output.flush();
        m_document.report(QStringLiteral("interrupted"));
        return exitSignal + interruptedBy();
    }
    return m_failed ? exitTrouble : exitDone;
}

/// Returns what went wrong; nothing if the file is in its place.
QString Extraction::extract(const FileTag& file)
{
    m_progress.show(m_storedDone, m_names.of(file));
    ContentReader content(m_document, file);
    if (!content.error().isEmpty())
        return content.error();
    const QString remark = remarkOn(file);
    if (!remark.isEmpty()) {
        m_progress.clear();
        m_document.warn(file, remark);
    }

    QString error = m_directory.obstacle(m_names.of(file), m_force);
    if (!error.isEmpty())
        return writeError(file, error);
    TargetFile target(m_directory);
    error = target.create();
    if (!error.isEmpty())
        return writeError(file, error);
    error = writeContent(file, content, target);
    if (!error.isEmpty())
        return error;
    error = target.complete(m_names.of(file), m_force);
    return error.isEmpty() ? QString() : writeError(file, error);
}

QString Extraction::writeContent(const FileTag& file, ContentReader& content, TargetFile& target)
{
    for (QByteArray piece = content.next(); !piece.isEmpty(); piece = content.next()) {
        const QString error = target.write(piece);
        if (!error.isEmpty())
            return writeError(file, error);
        if (interruptedBy() != 0)
            return QStringLiteral("interrupted");
        m_progress.show(m_storedDone + content.storedRead(), m_names.of(file));
    }
    return content.error();
}

QString Extraction::writeError(const FileTag& file, const QString& reason) const
{
    return QStringLiteral("cannot write %1: %2").arg(m_directory.pathOf(m_names.of(file)), reason);
}

void Extraction::tell(const FileTag& file, const QString& error)
{
    if (m_json)
        m_results += resultJson(file, error);
    if (!error.isEmpty()) {
        m_failed = true;
        m_progress.clear();
        m_document.report(file, error);
    } else if (!m_json && !m_quiet) {
        if (m_output.isTerminal())
            m_progress.clear();
        m_output.write(resultLine(file));
        if (m_output.isTerminal())
            m_output.flush();
    }
}

/// What became of an embedded file, for other programs:
///
///     id, name
///     path     where it was to be written
///     status   "written" or "failed"
///     size     bytes written, unless it failed
///     error    what went wrong, if it failed
QJsonObject Extraction::resultJson(const FileTag& file, const QString& error) const
{
    const bool written = error.isEmpty();
    QJsonObject object = {
        {QStringLiteral("id"), file.id},
        {QStringLiteral("path"), m_directory.pathOf(m_names.of(file))},
        {QStringLiteral("status"), written ? QStringLiteral("written") : QStringLiteral("failed")}};
    insertText(object, QStringLiteral("name"), file.filename);
    if (written)
        object.insert(QStringLiteral("size"), file.filesize);
    else
        object.insert(QStringLiteral("error"), error);
    return object;
}

QString Extraction::resultLine(const FileTag& file) const
{
    const auto width = QString::number(m_files.last().id).size();
    const QString id = QString::number(file.id).rightJustified(static_cast<int>(width));
    const QString& name = m_names.of(file);
    QString line = m_style.id(id) + QStringLiteral("  ") + printable(m_directory.pathOf(name));
    if (name != unescaped(file.filename)) {
        const QString remark =
            QStringLiteral("(in the document: %1)").arg(shownQuoted(file.filename));
        line += QStringLiteral("  ") + m_style.label(remark);
    }
    return line + QLatin1Char('\n');
}

int runExtract(Invocation& invocation)
{
    if (!invocation.isSet("directory"))
        return reportUsage(findCommandNamed(QStringLiteral("extract")),
                           QStringLiteral("no target directory given (-C DIR)"));
    Document document;
    if (!document.open(invocation.arguments[0]))
        return exitTrouble;
    const auto files = selectFiles(document, invocation.arguments.mid(1));
    if (!files)
        return exitTrouble;
    TargetDirectory directory;
    const QString error = directory.open(invocation.value("directory"));
    if (!error.isEmpty()) {
        reportError(invocation.value("directory"), error);
        return exitTrouble;
    }
    watchForInterruption();
    return Extraction(invocation, document, directory, *files).run();
}

} // namespace

Command extractCommand()
{
    return {"extract",
            "write embedded files to disk",
            "DOC [FILE]... -C DIR",
            "Writes embedded files of a document to the directory DIR, which is made if it\n"
            "is missing: all of them, or those that FILE means, an id or a name as for\n"
            "'tresk cat'.\n"
            "\n"
            "A file is called as in the document, as far as that is safe: folders are left\n"
            "out, unprintable characters become '_', and names that are empty, reserved or\n"
            "used more than once are told apart by the id. Nothing is written outside of DIR,\n"
            "and nothing that exists is replaced without --force.\n"
            "\n"
            "A file whose content does not fit what the document says of it is not written;\n"
            "the other ones are, and the exit code is 2. Checksums are not compared.\n",
            {{'C', "directory", "DIR", "where to write; has to be given"},
             {'f', "force", nullptr, "replace files that exist, and symbolic links themselves"},
             {0, "json", nullptr, "print one JSON object instead of a line per file"}},
            {"DOC"},
            anyNumber,
            runExtract};
}

} // namespace tresk::cli
