#include "Commands.h"
#include "ContentReader.h"
#include "Document.h"
#include "FileSelection.h"
#include "Invocation.h"

namespace tresk::cli {

namespace {

int runCat(Invocation& invocation)
{
    Document document;
    if (!document.open(invocation.arguments[0]))
        return exitTrouble;
    const auto file = selectFile(document, invocation.arguments[1]);
    if (!file)
        return exitTrouble;
    ContentReader content(document, *file);
    const QString remark = remarkOn(*file);
    if (content.error().isEmpty() && !remark.isEmpty())
        document.warn(*file, remark);

    Output& output = invocation.output;
    for (QByteArray piece = content.next(); !piece.isEmpty(); piece = content.next()) {
        output.write(piece);
        if (output.error() != 0)
            return exitDone;
    }
    if (content.error().isEmpty())
        return exitDone;
    output.flush();
    document.report(*file, content.error());
    return exitTrouble;
}

} // namespace

Command catCommand()
{
    return {"cat",
            "write the content of an embedded file to standard output",
            "DOC FILE",
            "Writes the content of an embedded file to standard output, byte for byte.\n"
            "\n"
            "FILE is the id of the file, as 'tresk files' shows it, or its name: an argument\n"
            "of digits only is an id, everything else a name. A name has to be exact, either\n"
            "as it is shown or as it is stored with escapes. If several files have it, their\n"
            "ids are listed and nothing is written.\n"
            "\n"
            "If the content turns out to be damaged, what comes before the damage has been\n"
            "written then, and the exit code is 2. Checksums are not compared.\n",
            "tresk cat report.pdf run-017.csv > run.csv\n"
            "tresk cat report.pdf 2 | head -n 5  # by its id\n",
            {},
            {"DOC", "FILE"},
            2,
            runCat,
            {ValueKind::File, ValueKind::Text}};
}

} // namespace tresk::cli
