#include "Commands.h"
#include "Document.h"
#include "FileJson.h"
#include "Invocation.h"
#include "Json.h"
#include "StepFiles.h"
#include "Summaries.h"
#include "Table.h"
#include "Text.h"

namespace tresk::cli {

namespace {

void printTable(Invocation& invocation, const StepFiles& stepFiles, const QVector<IdRuns>& steps,
                const QStringList& purposes)
{
    const bool verbose = invocation.isSet("verbose");
    QVector<Table::Column> columns = {
        {QStringLiteral("ID"), Table::Right},         {QStringLiteral("STEP"), Table::Left},
        {QStringLiteral("SIZE"), Table::Right},       {QStringLiteral("STORED"), Table::Right},
        {QStringLiteral("COMPRESSION"), Table::Left}, {QStringLiteral("PURPOSE"), Table::Left}};
    if (verbose)
        columns += {QStringLiteral("TYPE"), Table::Left};
    columns += {QStringLiteral("NAME"), Table::Left};
    if (verbose)
        columns += {QStringLiteral("DESCRIPTION"), Table::Left};

    Table table(columns);
    for (const FileTag& file : stepFiles.files()) {
        QStringList row = {QString::number(file.id),
                           stepFiles.areTooMany() ? QStringLiteral("?") : steps[file.id].text(),
                           numberOrDash(file.filesize),
                           numberOrDash(file.cfilesize),
                           shown(file.compression),
                           purposeText(purposes[file.id])};
        if (verbose)
            row += shown(file.filetype);
        row += shown(file.filename);
        if (verbose)
            row += shown(file.desc);
        table.addRow(row);
    }
    table.writeTo(invocation.output, invocation.style, true);
}

void printJson(Output& output, const Document& document, const StepFiles& stepFiles,
               const QVector<IdRuns>& steps, const QStringList& purposes)
{
    QJsonArray files;
    for (const FileTag& file : stepFiles.files()) {
        QJsonArray ids;
        for (const int id : steps[file.id].ids())
            ids += id;
        QJsonObject entry = fileJson(file, purposes[file.id]);
        entry.insert(QStringLiteral("steps"), stepFiles.areTooMany() ? QJsonValue() : ids);
        files += entry;
    }
    writeJson(output, "tresk-files/1",
              {{QStringLiteral("document"), document.name()}, {QStringLiteral("files"), files}});
}

int runFiles(Invocation& invocation)
{
    Document document;
    if (!document.open(invocation.arguments[0]))
        return exitTrouble;
    const StepFiles stepFiles(document.parser());
    const QVector<IdRuns> steps = stepsOfFiles(stepFiles);
    const Summaries summaries(document, stepFiles);
    const QStringList purposes = summaries.purposes();
    if (invocation.isSet("json"))
        printJson(invocation.output, document, stepFiles, steps, purposes);
    else if (!stepFiles.files().isEmpty())
        printTable(invocation, stepFiles, steps, purposes);
    invocation.output.flush();
    return checkRead(document, summaries);
}

} // namespace

Command filesCommand()
{
    return {"files",
            "list the embedded files of a document",
            "DOC",
            "Lists the files embedded in a document in their order there: id, ids of the\n"
            "steps that hold it ('-' if none does), size of the content, number of bytes\n"
            "stored, compression, purpose and name. The purpose is what the summary of the\n"
            "step that embedded the file says: in, out, or '-' for neither. With --verbose\n"
            "there are also the type and the description.\n",
            "tresk files report.pdf\n",
            {{0, "json", nullptr, "print one JSON object instead"}},
            {"DOC"},
            1,
            runFiles,
            {ValueKind::File}};
}

} // namespace tresk::cli
