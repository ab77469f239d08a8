#include "Commands.h"
#include "Document.h"
#include "Interruption.h"
#include "Invocation.h"
#include "Json.h"
#include "Progress.h"
#include "Text.h"
#include "Verification.h"

#include <algorithm>
#include <array>
#include <optional>

namespace tresk::cli {

namespace {

/// How many documents and items there were, and what became of them.
struct Counts {
    int documents = 0; ///< that were checked
    int incomplete = 0; ///< of these, that lack a part of their history
    int notChecked = 0; ///< documents that could not be checked, or not to their end
    int steps = 0;
    int files = 0;
    std::array<int, allItemStatuses.size()> items = {};

    int& of(ItemStatus status) { return items[static_cast<size_t>(status)]; }
    int of(ItemStatus status) const { return items[static_cast<size_t>(status)]; }
};

/// Checks documents and tells about them.
class Verifier {
public:
    explicit Verifier(Invocation& invocation)
        : m_output(invocation.output)
        , m_json(invocation.isSet("json"))
        , m_quiet(invocation.isSet("quiet"))
    {
    }

    /// Returns the exit code.
    int run(const QStringList& paths);

private:
    int verify(const QString& path);
    bool checkItems(Document& document);
    void tell(const Document& document, const Verification::Item& item);
    int conclude(Document& document);
    int conclusion(const Document& document, const char* status, int exitCode);
    void printLine(const QString& line);
    QString countsLine() const;
    QJsonObject countsJson() const;

    Output& m_output;
    bool m_json;
    bool m_quiet;
    Counts m_counts;
    QJsonArray m_documents;

    // Of the document that is being checked:
    int m_checked = 0;
    int m_failed = 0;
    bool m_unreadable = false;
    bool m_outside = false;
    QJsonArray m_steps;
    QJsonArray m_files;
};

int Verifier::run(const QStringList& paths)
{
    int exitCode = exitDone;
    for (const QString& path : paths) {
        exitCode = std::max(exitCode, verify(path));
        if (interruptedBy() != 0 && exitCode >= exitSignal)
            break;
    }
    if (m_json) {
        writeJson(
            m_output, "tresk-verify/1",
            {{QStringLiteral("documents"), m_documents}, {QStringLiteral("counts"), countsJson()}});
    } else if (m_counts.steps + m_counts.files > 0) {
        printLine(countsLine());
    }
    return exitCode;
}

int Verifier::verify(const QString& path)
{
    m_checked = 0;
    m_failed = 0;
    m_unreadable = false;
    m_outside = false;
    m_steps = {};
    m_files = {};
    Document document;
    if (!document.openWithSteps(path)) {
        ++m_counts.notChecked;
        return conclusion(document, document.lacksHistory() ? "noHistory" : "unreadable",
                          exitTrouble);
    }
    if (checkItems(document))
        return conclude(document);
    ++m_counts.notChecked;
    m_output.flush();
    document.report(QStringLiteral("interrupted"));
    return conclusion(document, "interrupted", exitSignal + interruptedBy());
}

/// Returns false if it was interrupted.
bool Verifier::checkItems(Document& document)
{
    std::optional<Progress> progress;
    Verification verification(document, [&](const Verification::Item& item) {
        if (!item.fault.isNone())
            progress->clear();
        tell(document, item);
    });
    progress.emplace(verification.bytesToCheck());
    return verification.run(*progress);
}

void Verifier::tell(const Document& document, const Verification::Item& item)
{
    const Fault& fault = item.fault;
    ++m_checked;
    ++(item.isStep ? m_counts.steps : m_counts.files);
    ++m_counts.of(fault.status);
    m_unreadable = m_unreadable || fault.status == ItemStatus::Unreadable;
    m_outside = m_outside || fault.status == ItemStatus::OutsideDocument;
    const TreskParser& parser = document.parser();
    if (!fault.isNone()) {
        ++m_failed;
        if (item.isStep)
            document.report(*parser.getSection(item.id), fault.text);
        else
            document.report(*parser.getFile(item.id), fault.text);
    }
    if (!m_json)
        return;
    QJsonObject object = {{QStringLiteral("id"), item.id},
                          {QStringLiteral("status"), statusName(fault.status)}};
    if (!fault.isNone())
        object.insert(QStringLiteral("error"), fault.text);
    if (item.isStep)
        insertText(object, QStringLiteral("title"), parser.getSection(item.id)->title);
    else
        insertText(object, QStringLiteral("name"), parser.getFile(item.id)->filename);
    (item.isStep ? m_steps : m_files) += object;
}

/// Tells about a document all of which was checked.
int Verifier::conclude(Document& document)
{
    ++m_counts.documents;
    const bool readable = document.checkReading() && !m_unreadable;
    const bool whole = m_outside || document.checkExtent(); // no need to say it twice
    const bool complete = document.checkChain() && whole;
    if (!complete)
        ++m_counts.incomplete;
    QString result = QStringLiteral("all right");
    if (m_failed > 0)
        result = QStringLiteral("%1 of %2 failed").arg(m_failed).arg(m_checked);
    else if (!readable)
        result = QStringLiteral("unreadable");
    else if (!complete)
        result = QStringLiteral("incomplete");
    printLine(printable(document.name()) + QStringLiteral(": ") + result);
    if (!readable)
        return conclusion(document, "unreadable", exitTrouble);
    if (m_failed > 0)
        return conclusion(document, "failed", exitFailed);
    return complete ? conclusion(document, "right", exitDone)
                    : conclusion(document, "incomplete", exitFailed);
}

/// Notes what other programs are told about a document. Returns @p exitCode.
int Verifier::conclusion(const Document& document, const char* status, int exitCode)
{
    if (!m_json)
        return exitCode;
    QJsonObject object = {{QStringLiteral("document"), document.name()},
                          {QStringLiteral("status"), QLatin1String(status)},
                          {QStringLiteral("steps"), m_steps},
                          {QStringLiteral("files"), m_files}};
    if (!document.problem().isEmpty())
        object.insert(QStringLiteral("error"), document.problem());
    m_documents += object;
    return exitCode;
}

void Verifier::printLine(const QString& line)
{
    if (m_json || m_quiet)
        return;
    m_output.write(line + QLatin1Char('\n'));
    m_output.flush(); // so that it stands in its place among the messages
}

/// All of it in one line: "2 documents, 7 steps, 22 files: 25 right, 3 differ".
QString Verifier::countsLine() const
{
    QStringList results;
    for (const ItemStatus status : allItemStatuses) {
        if (m_counts.of(status) > 0)
            results += countedStatus(m_counts.of(status), status);
    }
    const bool allRight = m_counts.of(ItemStatus::Right) == m_counts.steps + m_counts.files;
    QString line = QStringLiteral("%1, %2, %3")
                       .arg(counted(m_counts.documents, QStringLiteral("document")),
                            counted(m_counts.steps, QStringLiteral("step")),
                            counted(m_counts.files, QStringLiteral("file")));
    if (!results.isEmpty()) {
        line += QStringLiteral(": ")
            + (allRight ? QStringLiteral("all right") : results.join(QStringLiteral(", ")));
    }
    if (m_counts.incomplete > 0)
        line += QStringLiteral("; %1 incomplete")
                    .arg(counted(m_counts.incomplete, QStringLiteral("document")));
    if (m_counts.notChecked > 0)
        line += QStringLiteral("; %1 not checked")
                    .arg(counted(m_counts.notChecked, QStringLiteral("document")));
    return line;
}

QJsonObject Verifier::countsJson() const
{
    QJsonObject counts = {{QStringLiteral("documents"), m_counts.documents},
                          {QStringLiteral("incomplete"), m_counts.incomplete},
                          {QStringLiteral("notChecked"), m_counts.notChecked},
                          {QStringLiteral("steps"), m_counts.steps},
                          {QStringLiteral("files"), m_counts.files}};
    for (const ItemStatus status : allItemStatuses)
        counts.insert(statusName(status), m_counts.of(status));
    return counts;
}

int runVerify(Invocation& invocation)
{
    watchForInterruption();
    return Verifier(invocation).run(invocation.arguments);
}

} // namespace

Command verifyCommand()
{
    return {"verify",
            "compare the checksums of documents with what is in them",
            "DOC...",
            "Checks every step and every embedded file of each document against the checksums\n"
            "that its marker has. What fails is reported, a line for each, with the reason:\n"
            "a checksum that differs or is missing, a compressed stream that is broken, an\n"
            "unknown compression, a place outside of the document. So is a history that does\n"
            "not lead back to its first step. A line for each document and a line of counts\n"
            "follow. Checksums show damage, not forgery.\n",
            "tresk verify *.pdf\n"
            "tresk verify -q report.pdf && echo intact\n",
            {{0, "json", nullptr, "print one JSON object instead"}},
            {"DOC"},
            anyNumber,
            runVerify,
            {ValueKind::File},
            {{"0", "all is right"},
             {"1", "something fails"},
             {"2", "trouble: wrong usage, a document not read or without a history"},
             {"129, 130, 143", "ended by the signal HUP, INT or TERM"}}};
}

} // namespace tresk::cli
