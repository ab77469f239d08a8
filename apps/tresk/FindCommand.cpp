#include "Commands.h"
#include "Document.h"
#include "FileWalk.h"
#include "Invocation.h"
#include "Json.h"
#include "Limits.h"
#include "Messages.h"
#include "QueryFindings.h"
#include "StatusLine.h"
#include "StepFiles.h"
#include "Summaries.h"
#include "SystemText.h"
#include "Text.h"

#include <tresk/SummaryCreator.h>
#include <tresk/TreskFindQuery.h>

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace tresk::cli {

namespace {

constexpr int millisecondsUntilProgress = 1000;

/// What a name of the query stands for in a document.
struct Binding {
    QString name;
    QString key; ///< as the library has it
    const Summary* step;
    bool isInStep; ///< whether it is a step or of one, not of the files that lie in no step
    const FileSummary* file; ///< null where it is the step itself
};

/// The bindings @p keys, sorted by name, in a document with these @p summaries and so many
/// @p steps. The files that lie in no step have a summary behind those of the steps.
QList<Binding> bindingsFrom(const QHash<QString, QString>& keys, const QList<Summary>& summaries,
                            int steps)
{
    QStringList names = keys.keys();
    std::sort(names.begin(), names.end());
    QList<Binding> bindings;
    for (const QString& name : names) {
        const QStringList parts = keys.value(name).split(QLatin1Char(':'));
        const int index = parts.at(1).toInt();
        const Summary& step = summaries.at(index);
        const FileSummary* file = parts.size() == 3 ? &step.files.at(parts.at(2).toInt()) : nullptr;
        bindings.append({name, keys.value(name), &step, index < steps, file});
    }
    return bindings;
}

/// Asks documents a query and tells which of them it holds for.
class Finder {
public:
    Finder(Invocation& invocation, const TreskFindQuery& query, const SummaryBudget& budget)
        : m_output(invocation.output)
        , m_query(query)
        , m_budget(budget)
        , m_nulls(invocation.isSet("null"))
        , m_countOnly(invocation.isSet("count"))
        , m_showBindings(invocation.isSet("bindings"))
        , m_json(invocation.isSet("json"))
        , m_jsonLines(invocation.isSet("jsonl"))
    {
    }

    /// Returns the exit code.
    int run(const QStringList& paths);

private:
    void search(const QString& path, bool isNamed);
    void checkWhole(const QString& path, const Document& document, const SummaryBudget& left);
    void fail(const QString& path, const QString& problem);
    void tell(const QString& path, const QList<Binding>& bindings);
    void printBinding(const Binding& binding);
    void finish();

    Output& m_output;
    const TreskFindQuery& m_query;
    SummaryBudget m_budget; ///< for each document
    bool m_nulls;
    bool m_countOnly;
    bool m_showBindings;
    bool m_json;
    bool m_jsonLines;
    StatusLine m_statusLine;
    int m_found = 0;
    bool m_failed = false;
    QJsonArray m_documents;
};

int Finder::run(const QStringList& paths)
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    FileWalk walk(paths, [this](const QString& directory, const QString& problem) {
        fail(directory, problem);
    });
    int searched = 0;
    while (const std::optional<QString> path = walk.next()) {
        if (sinceStart.elapsed() > millisecondsUntilProgress) {
            m_statusLine.show(QStringLiteral("%1 searched, %2 found: %3")
                                  .arg(counted(searched, QStringLiteral("file")),
                                       QString::number(m_found), printable(*path)));
        }
        search(*path, walk.isNamed());
        ++searched;
        if (m_output.error() != 0)
            break;
    }
    m_statusLine.clear();
    finish();
    if (m_failed)
        return exitTrouble;
    return m_found > 0 ? exitDone : exitFailed;
}

void Finder::search(const QString& path, bool isNamed)
{
    Document document;
    if (!document.openQuietly(path)) {
        // A file without a history is no document in which anything was done.
        if (document.lacksHistory() || (!isNamed && document.isUnfit()))
            return;
        fail(path, document.problem());
        return;
    }
    if (StepFiles(document.parser()).areTooMany()) {
        fail(path, QStringLiteral("its steps share too many files to be searched"));
        return;
    }
    SummaryBudget left = m_budget;
    const QList<Summary> summaries = SummaryCreator().createSummaries(document.parser(), left);
    QHash<QString, QString> keys;
    const bool found = m_query.matches(summaries, &keys);
    checkWhole(path, document, left);
    if (!found)
        return;
    ++m_found;
    if (!m_countOnly)
        tell(path, bindingsFrom(keys, summaries, document.parser().getNumSections()));
}

/// Reports what was not searched, although it is, or has been, in the document.
void Finder::checkWhole(const QString& path, const Document& document, const SummaryBudget& left)
{
    QStringList problems = shortfalls(m_budget, left, QStringLiteral("--max-unpacked"));
    problems += document.extentProblem();
    problems += document.chainProblem();
    problems += document.readingProblem();
    problems.removeAll(QString());
    for (const QString& problem : qAsConst(problems))
        fail(path, problem);
}

void Finder::fail(const QString& path, const QString& problem)
{
    m_failed = true;
    m_statusLine.clear();
    reportError(path, problem);
}

// Texts of a marker have escapes, those of a summary document are taken as they stand.

QString quotedTitle(const Summary& step)
{
    return step.fromXml ? quoted(step.title) : shownQuoted(step.title);
}

QString quotedName(const FileSummary& file)
{
    return file.tagId >= 0 ? shownQuoted(file.filename) : quoted(file.filename);
}

void insertTextOf(bool isOfMarker, QJsonObject& object, const QString& name, const QString& value)
{
    if (isOfMarker)
        insertText(object, name, value);
    else
        object.insert(name, jsonText(value));
}

QJsonObject bindingJson(const Binding& binding)
{
    QJsonObject object{{QStringLiteral("key"), binding.key},
                       {QStringLiteral("step"), QJsonValue::Null},
                       {QStringLiteral("title"), QJsonValue::Null}};
    if (binding.isInStep) {
        object.insert(QStringLiteral("step"), binding.step->tagId);
        insertTextOf(!binding.step->fromXml, object, QStringLiteral("title"), binding.step->title);
    }
    if (binding.file) {
        object.insert(QStringLiteral("file"), jsonNumber(binding.file->tagId));
        insertTextOf(binding.file->tagId >= 0, object, QStringLiteral("name"),
                     binding.file->filename);
    }
    return object;
}

void Finder::tell(const QString& path, const QList<Binding>& bindings)
{
    m_statusLine.clear();
    if (m_json || m_jsonLines) {
        QJsonObject object{{QStringLiteral("document"), path}};
        QJsonObject byName;
        for (const Binding& binding : bindings)
            byName.insert(binding.name, bindingJson(binding));
        object.insert(QStringLiteral("bindings"), byName);
        if (m_jsonLines)
            writeJsonLine(m_output, "tresk-find-line/1", object);
        else
            m_documents += object;
        return;
    }
    if (m_nulls)
        m_output.write(toSystem(path) + '\0');
    else
        m_output.write(printable(path) + QLatin1Char('\n'));
    if (m_showBindings) {
        for (const Binding& binding : bindings)
            printBinding(binding);
    }
    if (m_output.isTerminal())
        m_output.flush();
}

void Finder::printBinding(const Binding& binding)
{
    const Summary& step = *binding.step;
    const QString place = binding.isInStep
        ? QStringLiteral("step %1 %2").arg(QString::number(step.tagId), quotedTitle(step))
        : QStringLiteral("the files without a step");
    const QString file = binding.file
        ? QStringLiteral("file %1 %2 of ")
              .arg(numberOrDash(binding.file->tagId), quotedName(*binding.file))
        : QString();
    m_output.write(QStringLiteral("    ") + binding.name + QStringLiteral(": ") + file + place
                   + QLatin1Char('\n'));
}

void Finder::finish()
{
    if (m_json) {
        writeJson(m_output, "tresk-find/1",
                  {{QStringLiteral("query"), m_query.query()},
                   {QStringLiteral("documents"), m_documents},
                   {QStringLiteral("count"), m_found}});
    } else if (m_countOnly) {
        m_output.write(QString::number(m_found) + QLatin1Char('\n'));
    }
}

/// What is wrong with the options together; nothing if they go together.
QString conflictOf(const Invocation& invocation)
{
    const std::pair<const char*, const char*> conflicts[] = {
        {"json", "jsonl"}, {"json", "count"},     {"json", "null"},     {"jsonl", "count"},
        {"jsonl", "null"}, {"count", "bindings"}, {"null", "bindings"}, {"null", "count"}};
    for (const auto& [first, second] : conflicts) {
        if (invocation.isSet(first) && invocation.isSet(second)) {
            return QStringLiteral("--%1 and --%2 exclude each other")
                .arg(QLatin1String(first), QLatin1String(second));
        }
    }
    return {};
}

int runFind(Invocation& invocation)
{
    const QString conflict = conflictOf(invocation);
    if (!conflict.isEmpty())
        return reportUsage(findCommandNamed(QStringLiteral("find")), conflict);
    SummaryBudget budget;
    if (!applyLimits(invocation, findCommandNamed(QStringLiteral("find")), budget))
        return exitTrouble;
    const QString text = invocation.arguments.first();
    const TreskFindQuery query(text);
    if (query.isValid())
        return Finder(invocation, query, budget).run(invocation.arguments.mid(1));
    if (invocation.isSet("json")) {
        writeJson(invocation.output, "tresk-find-errors/1",
                  {{QStringLiteral("query"), text},
                   {QStringLiteral("errors"), findingsJson(query.getErrors())}});
    }
    reportFindings(text, query.getErrors());
    return exitTrouble;
}

} // namespace

Command findCommand()
{
    return {"find",
            "find the documents in which something was done",
            "QUERY DOC|DIR...",
            "Prints the path of each document for which the query holds, one a line.\n"
            "Directories are searched to any depth, in the order of their paths; files\n"
            "without a history are passed over, and so are symbolic links in directories.\n"
            "\n"
            "A word finds the documents that have it in any text of a step or a file; names,\n"
            "attributes and comparisons ask for more. Embedded files are not looked into.\n"
            "\n"
            "Of a document that is damaged, or whose summaries unpack to more than they may,\n"
            "what there is of it is searched. SIZE is a number of bytes, or one with KiB, MiB\n"
            "or GiB behind it.\n",
            "tresk find spectrum .\n"
            "tresk find \"f:filename %matches '*.csv' && s:user == 'asato'\" *.pdf\n",
            {summaryLimitOption(),
             {'0', "null", nullptr, "print paths unchanged, a NUL byte behind each"},
             {0, "count", nullptr, "print the number of documents found instead"},
             {0, "bindings", nullptr, "show which step or file each name stands for"},
             {0, "json", nullptr, "print one JSON object instead"},
             {0, "jsonl", nullptr, "print a JSON object for each document, one a line"}},
            {"QUERY", "DOC or DIR"},
            anyNumber,
            runFind,
            {ValueKind::Text, ValueKind::File},
            {{"0", "a document was found"},
             {"1", "no document was found"},
             {"2", "trouble: wrong usage or query, a file that cannot be read or is damaged"}}};
}

} // namespace tresk::cli
