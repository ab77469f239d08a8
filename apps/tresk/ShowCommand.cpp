#include "Commands.h"
#include "Document.h"
#include "Fields.h"
#include "Invocation.h"
#include "Json.h"
#include "StepFiles.h"
#include "StepJson.h"
#include "StepText.h"
#include "Summaries.h"
#include "Text.h"

#include <algorithm>
#include <optional>

namespace tresk::cli {

namespace {

/// The steps that the command is to show: the one that @p arguments name, or all of them.
/// Reports a step that there is not.
std::optional<QList<SectionTag>> selectSteps(const Document& document, const QStringList& arguments)
{
    const QList<SectionTag> steps = document.parser().getSections();
    if (arguments.isEmpty())
        return steps;
    const QString& argument = arguments.first();
    const bool digits = !argument.isEmpty()
        && std::all_of(argument.begin(), argument.end(),
                       [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); });
    bool fits = false;
    const int id = argument.toInt(&fits);
    if (digits && fits && id < steps.size())
        return QList<SectionTag>{steps[id]};
    const QString ids = steps.size() == 1
        ? QStringLiteral("the only one has the id 0")
        : QStringLiteral("the ids are 0 to %1").arg(steps.size() - 1);
    document.report(QStringLiteral("there is no step ") + (digits ? argument : quoted(argument))
                    + QStringLiteral(" (%1)").arg(ids));
    return std::nullopt;
}

/// Prints steps in full for people.
class SummaryPrinter {
public:
    SummaryPrinter(Invocation& invocation, const Summaries& summaries)
        : m_output(invocation.output)
        , m_style(invocation.style)
        , m_summaries(summaries)
        , m_verbose(invocation.isSet("verbose"))
    {
    }

    void print(const SectionTag& step)
    {
        const Summary& summary = m_summaries.of(step);
        m_output.write(stepHeading(step, summary, m_style));
        writeSummaryFields(m_output, m_style, summary);
        if (m_verbose) {
            m_output.write(QStringLiteral("  ") + m_style.label(QStringLiteral("marker:"))
                           + QLatin1Char('\n'));
            writeMarkerFields(Fields(m_output, m_style, 4, 8), step);
        }
        printFiles(m_summaries.filesOf(step));
    }

    void printFilesWithoutStep()
    {
        const QList<FileSummary> files = m_summaries.filesWithoutStep();
        if (files.isEmpty())
            return;
        m_output.write(QLatin1Char('\n') + m_style.id(QStringLiteral("-"))
                       + QStringLiteral("  without a step\n"));
        printFiles(files);
    }

private:
    void printFiles(const QList<FileSummary>& files)
    {
        for (const FileSummary& file : files) {
            writeFileFields(m_output, m_style, file);
            if (m_output.error() != 0)
                return;
        }
    }

    Output& m_output;
    const Style& m_style;
    const Summaries& m_summaries;
    bool m_verbose;
};

QJsonArray filesJson(const QList<FileSummary>& files)
{
    QJsonArray array;
    for (const FileSummary& file : files)
        array += fileSummaryJson(file);
    return array;
}

QJsonObject documentJson(const Document& document, const QList<SectionTag>& steps,
                         const StepFiles& stepFiles, const Summaries& summaries)
{
    QJsonArray array;
    for (const SectionTag& step : steps) {
        QJsonObject object = stepJson(step, summaries.of(step), stepFiles);
        object.insert(QStringLiteral("summary"), summaryJson(summaries.of(step)));
        object.insert(QStringLiteral("files"),
                      stepFiles.areTooMany() ? QJsonValue() : filesJson(summaries.filesOf(step)));
        array += object;
    }
    return {{QStringLiteral("document"), document.name()}, {QStringLiteral("steps"), array}};
}

int runShow(Invocation& invocation)
{
    Document document;
    if (!document.openWithSteps(invocation.arguments[0]))
        return exitTrouble;
    const auto steps = selectSteps(document, invocation.arguments.mid(1));
    if (!steps)
        return exitTrouble;
    const bool all = invocation.arguments.size() == 1;
    const StepFiles stepFiles(document.parser());
    const Summaries summaries(document, stepFiles);
    if (invocation.isSet("json")) {
        QJsonObject object = documentJson(document, *steps, stepFiles, summaries);
        if (all) {
            object.insert(QStringLiteral("filesWithoutStep"),
                          filesJson(summaries.filesWithoutStep()));
        }
        writeJson(invocation.output, "tresk-show/1", object);
    } else {
        SummaryPrinter printer(invocation, summaries);
        for (const SectionTag& step : *steps) {
            if (all && step.id > 0)
                invocation.output.write(QByteArray("\n"));
            printer.print(step);
        }
        if (all)
            printer.printFilesWithoutStep();
    }
    invocation.output.flush();
    const int exitCode = checkRead(document, summaries);
    return !all || document.checkChain() ? exitCode : exitTrouble;
}

} // namespace

Command showCommand()
{
    return {"show",
            "show what a step says of itself, in full",
            "DOC [STEP]",
            "Shows all that the summary of a step says: when, by whom and with what it was\n"
            "made, user attributes with their units, and each input and output file with its\n"
            "size and checksums, and whether it is embedded. Of all steps, newest first, if\n"
            "STEP, the id of one, is not given.\n"
            "\n"
            "Embedded files that the summary does not name come last. Of a step without a\n"
            "summary only what its marker says is shown. With --verbose that is shown, too.\n",
            "tresk show report.pdf 0  # the newest step\n"
            "tresk show --json report.pdf > history.json\n",
            {{0, "json", nullptr, "print one JSON object instead"}},
            {"DOC"},
            2,
            runShow,
            {ValueKind::File, ValueKind::Text}};
}

} // namespace tresk::cli
