#include "Summaries.h"

#include "CommandLine.h"
#include "Document.h"
#include "Limits.h"
#include "StepFiles.h"
#include "Text.h"

#include <algorithm>
#include <vector>

namespace tresk::cli {

namespace {

const QLatin1String inFile("InFile");
const QLatin1String outFile("OutFile");
const QLatin1String summaryName("ws_summary.xml");

} // namespace

Summaries::Summaries(Document& document, const StepFiles& stepFiles, const SummaryBudget& budget)
    : m_document(document)
    , m_stepFiles(stepFiles)
    , m_budget(budget)
    , m_left(budget)
{
    if (!stepFiles.areTooMany())
        m_summaries = SummaryCreator().createSummaries(document.parser(), m_left);
    const QList<int> left = m_left.unread + m_left.namingTooMany + m_left.withoutFiles;
    m_tooLarge = QSet<int>(left.begin(), left.end());
}

const Summary& Summaries::of(const SectionTag& step) const
{
    static const Summary none;
    return m_summaries.isEmpty() ? none : m_summaries[m_stepFiles.steps().size() - 1 - step.id];
}

QList<FileSummary> Summaries::filesOf(const SectionTag& step) const
{
    const QVector<int> embedded = m_stepFiles.filesIn(step);
    std::vector<bool> named(static_cast<size_t>(m_stepFiles.files().size()), false);
    QList<FileSummary> files;
    for (const FileSummary& file : of(step).files) {
        if (!isInput(file) && !isOutput(file))
            continue;
        files += file;
        if (file.tagId >= 0)
            named[static_cast<size_t>(file.tagId)] = true;
    }
    for (const int id : embedded) {
        if (!named[static_cast<size_t>(id)])
            files += makeFileSummaryFromFileTag(m_stepFiles.files()[id]);
    }
    return files;
}

QList<FileSummary> Summaries::filesWithoutStep() const
{
    QList<FileSummary> files;
    for (const int id : m_stepFiles.filesWithoutStep())
        files += makeFileSummaryFromFileTag(m_stepFiles.files()[id]);
    return files;
}

QStringList Summaries::purposes() const
{
    QStringList result;
    result.reserve(m_stepFiles.files().size());
    for (const FileTag& file : m_stepFiles.files())
        result += makeFileSummaryFromFileTag(file).filePurpose;
    const QString undefined = FileSummary().filePurpose;
    for (const Summary& summary : m_summaries) {
        for (const FileSummary& file : summary.files) {
            if (file.tagId >= 0 && result[file.tagId] == undefined)
                result[file.tagId] = file.filePurpose;
        }
    }
    return result;
}

bool Summaries::isUnreadable(const SectionTag& step) const
{
    if (of(step).fromXml || m_tooLarge.contains(step.id))
        return false;
    const QVector<int> files = m_stepFiles.filesIn(step);
    return !files.isEmpty() && m_stepFiles.files()[files.last()].filename == summaryName;
}

void Summaries::warnOfUnreadable() const
{
    for (const SectionTag& step : m_stepFiles.steps()) {
        if (isUnreadable(step))
            m_document.warn(step, QStringLiteral("its summary document cannot be read"));
    }
}

bool Summaries::checkMissing() const
{
    if (m_stepFiles.areTooMany()) {
        m_document.report(QStringLiteral("its steps share too many files, their summaries are not "
                                         "read and their files not listed"));
        return false;
    }
    warnOfUnreadable();
    const QStringList texts = shortfalls(m_budget, m_left);
    for (const QString& text : texts)
        m_document.report(text);
    return texts.isEmpty();
}

int checkRead(Document& document, const Summaries& summaries)
{
    const bool complete = summaries.checkMissing();
    const bool whole = document.checkExtent() && complete;
    return document.checkReading() && whole ? exitDone : exitTrouble;
}

bool isInput(const FileSummary& file)
{
    return file.filePurpose == inFile;
}

bool isOutput(const FileSummary& file)
{
    return file.filePurpose == outFile;
}

int countInputs(const QList<FileSummary>& files)
{
    return static_cast<int>(std::count_if(files.begin(), files.end(), isInput));
}

int countOutputs(const QList<FileSummary>& files)
{
    return static_cast<int>(std::count_if(files.begin(), files.end(), isOutput));
}

QString purposeText(const QString& filePurpose)
{
    if (filePurpose == inFile)
        return QStringLiteral("in");
    return filePurpose == outFile ? QStringLiteral("out") : QStringLiteral("-");
}

QString titleOf(const SectionTag& step, const Summary& summary)
{
    if (summary.fromXml && !summary.title.isEmpty())
        return printable(summary.title);
    return step.title.isEmpty() ? QStringLiteral("<no title>") : shown(step.title);
}

QString nameOf(const FileSummary& file)
{
    return file.tagId >= 0 ? shown(file.filename) : printable(file.filename);
}

QString userAndHost(const Workflowstep& step)
{
    if (step.host.isEmpty())
        return printable(step.user);
    return printable(step.user) + QLatin1Char('@') + printable(step.host);
}

} // namespace tresk::cli
