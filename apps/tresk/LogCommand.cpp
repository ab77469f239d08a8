#include "Commands.h"
#include "Document.h"
#include "FileJson.h"
#include "Invocation.h"
#include "Json.h"
#include "StepFiles.h"
#include "Table.h"
#include "Text.h"

#include <vector>

namespace tresk::cli {

namespace {

/// Prints the steps of a document for people.
class StepPrinter {
public:
    StepPrinter(Invocation& invocation, const StepFiles& stepFiles);

    void print();

private:
    void printStep(const SectionTag& step, const QVector<int>& files);
    void printFilesWithoutStep();
    void printFiles(const QVector<int>& files);
    void printValue(const char* label, const QString& value);
    void printLine(const QString& line);

    Output& m_output;
    const Style& m_style;
    const StepFiles& m_stepFiles;
    bool m_oneLine;
    bool m_listFiles;
    bool m_verbose;
};

QString titleOf(const SectionTag& step)
{
    return step.title.isEmpty() ? QStringLiteral("<no title>") : shown(step.title);
}

QString orDash(const QString& text)
{
    return text.isEmpty() ? QStringLiteral("-") : text;
}

QString countedFiles(const QVector<int>& files)
{
    return counted(files.size(), QStringLiteral("file"));
}

QVector<int> filesWithoutStep(const StepFiles& stepFiles)
{
    std::vector<bool> hasStep(static_cast<size_t>(stepFiles.files().size()), false);
    for (const SectionTag& step : stepFiles.steps()) {
        for (const int id : stepFiles.filesIn(step))
            hasStep[static_cast<size_t>(id)] = true;
    }
    QVector<int> ids;
    for (const FileTag& file : stepFiles.files()) {
        if (!hasStep[static_cast<size_t>(file.id)])
            ids += file.id;
    }
    return ids;
}

StepPrinter::StepPrinter(Invocation& invocation, const StepFiles& stepFiles)
    : m_output(invocation.output)
    , m_style(invocation.style)
    , m_stepFiles(stepFiles)
    , m_oneLine(invocation.isSet("oneline"))
    , m_listFiles(invocation.isSet("files"))
    , m_verbose(invocation.isSet("verbose"))
{
}

void StepPrinter::print()
{
    for (const SectionTag& step : m_stepFiles.steps()) {
        if (step.id > 0 && !m_oneLine)
            printLine(QString());
        printStep(step, m_stepFiles.filesIn(step));
        if (m_output.error() != 0)
            return;
    }
    printFilesWithoutStep();
}

void StepPrinter::printStep(const SectionTag& step, const QVector<int>& files)
{
    const QString title = m_style.title(titleOf(step));
    if (m_oneLine) {
        const QString extent =
            QStringLiteral("(%1, %2)").arg(countedFiles(files), humanSize(step.size));
        printLine(m_style.id(QString::number(step.id)) + QStringLiteral("  ") + title
                  + QStringLiteral("  ") + m_style.label(extent));
    } else {
        printLine(m_style.id(QStringLiteral("step %1").arg(step.id)) + QStringLiteral("  ")
                  + title);
        printValue("creator", orDash(shown(step.creator)));
        printValue("version", orDash(shown(step.version)));
        printValue("index", numberOrDash(step.index));
        if (m_verbose) {
            printValue("marker", QStringLiteral("at byte %1").arg(step.pos - 1));
            printValue("md5", orDash(step.md5section));
        }
        printValue("size", humanSize(step.size));
        printValue("files", QString::number(files.size()));
    }
    if (m_listFiles)
        printFiles(files);
}

void StepPrinter::printFilesWithoutStep()
{
    const QVector<int> files = filesWithoutStep(m_stepFiles);
    if (files.isEmpty())
        return;
    if (!m_oneLine)
        printLine(QString());
    const QString extent = QStringLiteral("(%1)").arg(countedFiles(files));
    printLine(m_style.id(QStringLiteral("-")) + QStringLiteral("  without a step  ")
              + m_style.label(extent));
    if (m_listFiles)
        printFiles(files);
}

void StepPrinter::printFiles(const QVector<int>& files)
{
    Table table({{QString(), Table::Right}, {QString(), Table::Right}, {QString(), Table::Left}});
    for (const int id : files) {
        const FileTag& file = m_stepFiles.files()[id];
        table.addRow({QString::number(id), humanSize(file.filesize), shown(file.filename)});
    }
    table.writeTo(m_output, m_style, false, QStringLiteral("    "));
}

void StepPrinter::printValue(const char* label, const QString& value)
{
    const QString name = QLatin1String(label) + QLatin1Char(':');
    printLine(QStringLiteral("  ") + m_style.label(name.leftJustified(8)) + QLatin1Char(' ')
              + value);
}

void StepPrinter::printLine(const QString& line)
{
    m_output.write(line + QLatin1Char('\n'));
}

/// One step for other programs:
///
///     id           0 for the newest step
///     title, creator, version
///     index        the step's number as its writer counted it
///     size         bytes that the step takes in the document
///     md5          MD5 digest of these bytes, empty if the marker has none
///     previousMd5  that of the step before, as this step's marker has it
///     position     offset of the line with the marker
///     fileCount    number of embedded files in the step
///     files        these files, with --files only
QJsonObject stepJson(const SectionTag& step, const StepFiles& stepFiles, bool listFiles)
{
    const QVector<int> ids = stepFiles.filesIn(step);
    QJsonObject object = {{QStringLiteral("id"), step.id},
                          {QStringLiteral("index"), jsonNumber(step.index)},
                          {QStringLiteral("size"), jsonNumber(step.size)},
                          {QStringLiteral("md5"), step.md5section},
                          {QStringLiteral("previousMd5"), step.previousmd5},
                          {QStringLiteral("position"), step.pos - 1},
                          {QStringLiteral("fileCount"), static_cast<int>(ids.size())}};
    insertText(object, QStringLiteral("title"), step.title);
    insertText(object, QStringLiteral("creator"), step.creator);
    insertText(object, QStringLiteral("version"), step.version);
    if (listFiles) {
        QJsonArray files;
        for (const int id : ids)
            files += fileJson(stepFiles.files()[id]);
        object.insert(QStringLiteral("files"), files);
    }
    return object;
}

/// The history for other programs: "document", "steps" and the ids "filesWithoutStep".
QJsonObject historyJson(const Document& document, const StepFiles& stepFiles, bool listFiles)
{
    QJsonArray steps;
    for (const SectionTag& step : stepFiles.steps())
        steps += stepJson(step, stepFiles, listFiles);
    QJsonArray rest;
    for (const int id : filesWithoutStep(stepFiles))
        rest += id;
    return {{QStringLiteral("document"), document.name()},
            {QStringLiteral("steps"), steps},
            {QStringLiteral("filesWithoutStep"), rest}};
}

/// Reports a history that does not lead back to its first step.
bool checkChain(const Document& document, const SectionTag& oldest)
{
    if (oldest.previousmarker < 0)
        return true;
    document.report(QStringLiteral("the history is incomplete: the step before step %1 is not "
                                   "where its marker says")
                        .arg(oldest.id));
    return false;
}

int runLog(Invocation& invocation)
{
    Document document;
    if (!document.open(invocation.arguments[0]))
        return exitTrouble;
    const StepFiles stepFiles(document.parser());
    if (stepFiles.steps().isEmpty()) {
        document.report(
            QStringLiteral("has no history: no step is left in it, only %1")
                .arg(counted(stepFiles.files().size(), QStringLiteral("embedded file"))));
        return exitTrouble;
    }
    if (invocation.isSet("json"))
        writeJson(invocation.output, historyJson(document, stepFiles, invocation.isSet("files")));
    else
        StepPrinter(invocation, stepFiles).print();
    invocation.output.flush();
    const bool whole = document.checkExtent();
    return checkChain(document, stepFiles.steps().last()) && whole ? exitDone : exitTrouble;
}

} // namespace

Command logCommand()
{
    return {"log",
            "list the steps of a document, newest first",
            "DOC",
            "Lists the steps of a document's history, newest first: what the marker of each\n"
            "says, the number of files embedded in it, and its size in the document.\n",
            {{0, "oneline", nullptr, "show each step on one line"},
             {0, "files", nullptr, "list the files of each step under it"},
             {0, "json", nullptr, "print one JSON object instead"}},
            {"DOC"},
            1,
            runLog};
}

} // namespace tresk::cli
