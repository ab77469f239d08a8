#include "Commands.h"
#include "ContentCopy.h"
#include "ContentReader.h"
#include "Document.h"
#include "FileSelection.h"
#include "Interruption.h"
#include "Invocation.h"
#include "Json.h"
#include "Messages.h"
#include "Progress.h"
#include "Range.h"
#include "TargetDirectory.h"
#include "TargetNames.h"
#include "Text.h"

#include <algorithm>

namespace tresk::cli {

namespace {

/// Number of bytes that are moved to write @p files, and to read them back.
qint64 workFor(const QList<FileTag>& files, bool withVerification)
{
    qint64 sum = 0;
    for (const FileTag& file : files) {
        sum += std::max(0, storedLength(file));
        if (withVerification)
            sum += std::max(0, file.filesize);
    }
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
    using Failure = ContentCopy::Failure;

    Failure extract(const FileTag& file);
    bool mayBeCopied(const FileTag& file, Failure& failure);
    Failure targetFailure(const FileTag& file, const QString& reason) const;
    void showProgress(qint64 done);
    void tell(const FileTag& file, const Failure& failure);
    QJsonObject resultJson(const FileTag& file, const Failure& failure) const;
    QString resultLine(const FileTag& file) const;

    Output& m_output;
    const Style& m_style;
    Document& m_document;
    const TargetDirectory& m_directory;
    const QList<FileTag> m_files;
    TargetNames m_names;
    bool m_force;
    bool m_json;
    bool m_quiet;
    bool m_verify;
    ContentCopy m_copy;
    Progress m_progress;
    qint64 m_done = 0; ///< bytes worked off before those of the current phase
    QString m_currentName; ///< of the file that is being written
    int m_exitCode = exitDone;
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
    , m_force(invocation.isSet("force"))
    , m_json(invocation.isSet("json"))
    , m_quiet(invocation.isSet("quiet"))
    , m_verify(invocation.isSet("verify"))
    , m_copy(document, [this](qint64 done) { showProgress(done); })
    , m_progress(workFor(files, m_verify))
{
}

int Extraction::run()
{
    for (const FileTag& file : m_files) {
        if (interruptedBy() != 0)
            break;
        m_currentName = m_names.of(file);
        showProgress(0);
        const qint64 doneAfter = m_done + workFor({file}, m_verify);
        const Failure failure = extract(file);
        // A file that was complete before the signal came is still told about.
        if (interruptedBy() != 0 && failure.reason != Failure::None)
            break;
        tell(file, failure);
        m_done = doneAfter;
    }
    m_progress.clear();
    if (m_json) {
        writeJson(m_output, "tresk-extract/1",
                  {{QStringLiteral("document"), m_document.name()},
                   {QStringLiteral("directory"), m_directory.path()},
                   {QStringLiteral("files"), m_results}});
    }
    if (interruptedBy() != 0) {
        m_output.flush();
        m_document.report(QStringLiteral("interrupted"));
        return exitSignal + interruptedBy();
    }
    return m_exitCode;
}

ContentCopy::Failure Extraction::extract(const FileTag& file)
{
    Failure failure;
    if (!mayBeCopied(file, failure))
        return failure;
    TargetFile target(m_directory);
    QString error = target.create();
    if (!error.isEmpty())
        return targetFailure(file, error);
    failure = m_copy.copy(file, target);
    if (failure.reason == Failure::Target)
        return targetFailure(file, failure.text);
    if (failure.reason == Failure::None && m_verify) {
        m_done += workFor({file}, false);
        failure = m_copy.verify(file, target);
        if (failure.reason == Failure::Target)
            return targetFailure(file, failure.text);
    }
    if (failure.reason != Failure::None)
        return failure;
    error = target.complete(m_names.of(file), m_force);
    return error.isEmpty() ? Failure() : targetFailure(file, error);
}

/// Whether the marker of @p file is without fault and its name can be taken; says why not in
/// @p failure.
bool Extraction::mayBeCopied(const FileTag& file, Failure& failure)
{
    const ContentReader content(m_document, file);
    if (!content.fault().isNone()) {
        failure = {Failure::Content, content.error()};
        return false;
    }
    const QString remark = remarkOn(file);
    if (!remark.isEmpty()) {
        m_progress.clear();
        m_document.warn(file, remark);
    }
    const QString obstacle = m_directory.obstacle(m_names.of(file), m_force);
    if (!obstacle.isEmpty())
        failure = targetFailure(file, obstacle);
    return obstacle.isEmpty();
}

ContentCopy::Failure Extraction::targetFailure(const FileTag& file, const QString& reason) const
{
    return {
        Failure::Target,
        QStringLiteral("cannot write %1: %2").arg(m_directory.pathOf(m_names.of(file)), reason)};
}

void Extraction::showProgress(qint64 done)
{
    m_progress.show(m_done + done, m_currentName);
}

void Extraction::tell(const FileTag& file, const Failure& failure)
{
    if (m_json)
        m_results += resultJson(file, failure);
    if (failure.reason != Failure::None) {
        const int code = failure.reason == Failure::Checksum ? exitFailed : exitTrouble;
        m_exitCode = std::max(m_exitCode, code);
        m_progress.clear();
        m_document.report(file, failure.text);
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
///     verified true, if it was with --verify
///     error    what went wrong, if it failed
QJsonObject Extraction::resultJson(const FileTag& file, const Failure& failure) const
{
    const bool written = failure.reason == Failure::None;
    QJsonObject object = {
        {QStringLiteral("id"), file.id},
        {QStringLiteral("path"), m_directory.pathOf(m_names.of(file))},
        {QStringLiteral("status"), written ? QStringLiteral("written") : QStringLiteral("failed")}};
    insertText(object, QStringLiteral("name"), file.filename);
    if (written)
        object.insert(QStringLiteral("size"), file.filesize);
    else
        object.insert(QStringLiteral("error"), failure.text);
    if (written && m_verify)
        object.insert(QStringLiteral("verified"), true);
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
            "is missing: all, or those that FILE means, an id or a name as for 'tresk cat'.\n"
            "\n"
            "A file is called as in the document, as far as that is safe: directories are\n"
            "left out, unprintable characters become '_', and names that are empty, reserved\n"
            "or used more than once are told apart by the id. Nothing is written outside of\n"
            "DIR, and nothing that exists is replaced without --force.\n"
            "\n"
            "What does not fit what the document says of it is not written. Checksums are\n"
            "compared with --verify only: what was written is read back, and a file that\n"
            "differs does not stay.\n",
            "tresk extract report.pdf -C files  # all\n"
            "tresk extract --verify report.pdf plot.py 9 -C sources\n",
            {{'C', "directory", "DIR", "where to write; has to be given", ValueKind::Directory},
             {'f', "force", nullptr, "replace files that exist, and symbolic links themselves"},
             {0, "verify", nullptr, "compare the checksums of what was written"},
             {0, "json", nullptr, "print one JSON object instead of a line per file"}},
            {"DOC"},
            anyNumber,
            runExtract,
            {ValueKind::File, ValueKind::Text},
            {{"1", "with --verify: a checksum is wrong or missing"},
             {"2", "trouble: wrong usage, a damaged document, a file not written"},
             {"129, 130, 143", "ended by the signal HUP, INT or TERM, after cleaning up"}}};
}

} // namespace tresk::cli
