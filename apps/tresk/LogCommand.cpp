#include "Commands.h"
#include "Document.h"
#include "Fields.h"
#include "FileJson.h"
#include "Invocation.h"
#include "Json.h"
#include "StepFiles.h"
#include "StepJson.h"
#include "StepText.h"
#include "Summaries.h"
#include "Table.h"
#include "Text.h"

#include <algorithm>

namespace tresk::cli {

namespace {

/// Prints the steps of a document for people.
class LogPrinter {
public:
    LogPrinter(Invocation& invocation, const StepFiles& stepFiles, const Summaries& summaries);

    void print();

private:
    void printStep(const SectionTag& step);
    void printOnOneLine(const SectionTag& step, const Summary& summary);
    QString countedFiles(const SectionTag& step, const Summary& summary) const;
    void printFilesWithoutStep();
    void printFiles(const QList<FileSummary>& files);

    Output& m_output;
    const Style& m_style;
    const StepFiles& m_stepFiles;
    const Summaries& m_summaries;
    bool m_oneLine;
    bool m_listFiles;
    bool m_verbose;
};

LogPrinter::LogPrinter(Invocation& invocation, const StepFiles& stepFiles,
                       const Summaries& summaries)
    : m_output(invocation.output)
    , m_style(invocation.style)
    , m_stepFiles(stepFiles)
    , m_summaries(summaries)
    , m_oneLine(invocation.isSet("oneline"))
    , m_listFiles(invocation.isSet("files"))
    , m_verbose(invocation.isSet("verbose"))
{
}

void LogPrinter::print()
{
    for (const SectionTag& step : m_stepFiles.steps()) {
        if (step.id > 0 && !m_oneLine)
            m_output.write(QByteArray("\n"));
        printStep(step);
        if (m_output.error() != 0)
            return;
    }
    printFilesWithoutStep();
}

void LogPrinter::printStep(const SectionTag& step)
{
    const Summary& summary = m_summaries.of(step);
    if (m_oneLine) {
        printOnOneLine(step, summary);
    } else {
        m_output.write(stepHeading(step, summary, m_style));
        const Fields fields(m_output, m_style, 2, 8);
        fields.write("time", printable(summary.timestamp));
        fields.write("tool", printable(summary.tool));
        fields.write("user", userAndHost(summary));
        fields.write("files", countedFiles(step, summary));
        if (m_verbose)
            writeMarkerFields(fields, step);
    }
    if (m_listFiles)
        printFiles(m_summaries.filesOf(step));
}

void LogPrinter::printOnOneLine(const SectionTag& step, const Summary& summary)
{
    QStringList details = {printable(summary.tool), userAndHost(summary),
                           countedFiles(step, summary)};
    details.removeAll(QString());
    const QString time = printable(summary.timestamp);
    m_output.write(
        m_style.id(QString::number(step.id)) + QStringLiteral("  ")
        + (time.isEmpty() ? QStringLiteral("-") : time) + QStringLiteral("  ")
        + m_style.title(titleOf(step, summary)) + QStringLiteral("  ")
        + m_style.label(QLatin1Char('(') + details.join(QStringLiteral(", ")) + QLatin1Char(')'))
        + QLatin1Char('\n'));
}

/// How many files there are: inputs and outputs, if there is a summary, and embedded ones.
QString LogPrinter::countedFiles(const SectionTag& step, const Summary& summary) const
{
    QString embedded = QStringLiteral("%1 embedded").arg(m_stepFiles.countIn(step));
    if (!summary.fromXml)
        return embedded;
    return QStringLiteral("%1 in, %2 out, %3")
        .arg(QString::number(countInputs(summary.files)),
             QString::number(countOutputs(summary.files)), embedded);
}

void LogPrinter::printFilesWithoutStep()
{
    const QList<FileSummary> files = m_summaries.filesWithoutStep();
    if (files.isEmpty())
        return;
    const QString extent = QStringLiteral("(%1)").arg(
        counted(files.size(), QStringLiteral("file")));
    m_output.write((m_oneLine ? QString() : QStringLiteral("\n")) + m_style.id(QStringLiteral("-"))
                   + QStringLiteral("  without a step  ") + m_style.label(extent)
                   + QLatin1Char('\n'));
    if (m_listFiles)
        printFiles(files);
}

void LogPrinter::printFiles(const QList<FileSummary>& files)
{
    Table table({{QString(), Table::Right},
                 {QString(), Table::Left},
                 {QString(), Table::Right},
                 {QString(), Table::Left}});
    for (const FileSummary& file : files) {
        table.addRow({numberOrDash(file.tagId), purposeText(file.filePurpose),
                      humanSize(file.uncompressedSize), nameOf(file)});
    }
    table.writeTo(m_output, m_style, false, QStringLiteral("    "));
}

/// One step for other programs, with the embedded files in it if @p listFiles.
QJsonObject listedStepJson(const SectionTag& step, const StepFiles& stepFiles,
                           const Summaries& summaries, const QStringList& purposes, bool listFiles)
{
    QJsonObject object = stepJson(step, summaries.of(step), stepFiles);
    if (listFiles) {
        QJsonArray files;
        for (const int id : stepFiles.filesIn(step))
            files += fileJson(stepFiles.files()[id], purposes[id]);
        object.insert(QStringLiteral("files"), stepFiles.areTooMany() ? QJsonValue() : files);
    }
    return object;
}

/// The history of a document for other programs: one object, or one for each step on a line.
void printJson(Invocation& invocation, const Document& document, const StepFiles& stepFiles,
               const Summaries& summaries)
{
    const bool lines = invocation.isSet("jsonl");
    const bool listFiles = invocation.isSet("files");
    const QStringList purposes = summaries.purposes();
    QJsonArray steps;
    for (const SectionTag& step : stepFiles.steps()) {
        QJsonObject object = listedStepJson(step, stepFiles, summaries, purposes, listFiles);
        if (lines) {
            object.insert(QStringLiteral("document"), document.name());
            writeJsonLine(invocation.output, "tresk-log-line/1", object);
            if (invocation.output.error() != 0)
                return;
        } else {
            steps += object;
        }
    }
    if (lines)
        return;
    QJsonArray rest;
    for (const int id : stepFiles.filesWithoutStep())
        rest += id;
    writeJson(invocation.output, "tresk-log/1",
              {{QStringLiteral("document"), document.name()},
               {QStringLiteral("steps"), steps},
               {QStringLiteral("filesWithoutStep"), rest}});
}

int logDocument(Invocation& invocation, const QString& path)
{
    Document document;
    if (!document.openWithSteps(path))
        return exitTrouble;
    const StepFiles stepFiles(document.parser());
    const Summaries summaries(document, stepFiles);
    if (invocation.isSet("json") || invocation.isSet("jsonl"))
        printJson(invocation, document, stepFiles, summaries);
    else
        LogPrinter(invocation, stepFiles, summaries).print();
    invocation.output.flush();
    const int exitCode = checkRead(document, summaries);
    return document.checkChain() ? exitCode : exitTrouble;
}

int runLog(Invocation& invocation)
{
    const QStringList& paths = invocation.arguments;
    const Command* const command = findCommandNamed(QStringLiteral("log"));
    if (invocation.isSet("json") && invocation.isSet("jsonl"))
        return reportUsage(command, QStringLiteral("--json and --jsonl exclude each other"));
    if (invocation.isSet("json") && paths.size() > 1)
        return reportUsage(command, QStringLiteral("--json takes one DOC, --jsonl any number"));
    const bool headings = paths.size() > 1 && !invocation.isSet("jsonl");
    int exitCode = exitDone;
    for (int i = 0; i < paths.size() && invocation.output.error() == 0; ++i) {
        if (headings) {
            const QString heading = invocation.style.title(printable(paths[i]))
                + QStringLiteral(":\n");
            invocation.output.write((i > 0 ? QStringLiteral("\n") : QString()) + heading);
            invocation.output.flush();
        }
        exitCode = std::max(exitCode, logDocument(invocation, paths[i]));
    }
    return exitCode;
}

} // namespace

Command logCommand()
{
    return {"log",
            "list the steps of documents, newest first",
            "DOC...",
            "Lists the steps of a document's history, newest first: when, with which tool and\n"
            "by whom they were made, as their summaries say, and how many files they read and\n"
            "wrote, and how many are embedded. With --verbose also what their markers say.\n",
            "tresk log report.pdf\n"
            "tresk log --jsonl *.pdf > steps.jsonl  # for a database\n",
            {{0, "oneline", nullptr, "show each step on one line"},
             {0, "files", nullptr, "list the files of each step under it"},
             {0, "json", nullptr, "print one JSON object instead"},
             {0, "jsonl", nullptr, "print a JSON object for each step, on a line of its own"}},
            {"DOC"},
            anyNumber,
            runLog,
            {ValueKind::File}};
}

} // namespace tresk::cli
