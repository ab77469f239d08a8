// Lists the steps of a document, oldest first, and the files that each names.

#include "Printable.h"

#include <tresk/SummaryCreator.h>
#include <tresk/TreskParser.h>

#include <QFile>

#include <iostream>

namespace {

void printStep(const tresk::Summary& step)
{
    std::cout << "step " << step.tagId << ": " << printable(step.title) << '\n'
              << "  " << printable(step.timestamp) << "  " << printable(step.tool) << "  "
              << printable(step.user) << '@' << printable(step.host) << '\n';
    for (const tresk::FileSummary& file : step.files) {
        std::cout << "  " << printable(file.filePurpose) << ": " << printable(file.filename);
        if (file.tagId >= 0)
            std::cout << " (embedded file " << file.tagId << ", " << file.uncompressedSize
                      << " bytes)";
        std::cout << '\n';
    }
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::cerr << "usage: list_history DOCUMENT\n";
        return 2;
    }

    tresk::TreskParser parser;
    if (!parser.open(QFile::decodeName(argv[1]))) {
        std::cerr << argv[1] << (parser.readFailed() ? ": cannot be read\n" : ": has no history\n");
        return 2;
    }

    tresk::SummaryBudget budget; // summaries unpack to no more than 64 MiB
    const QList<tresk::Summary> summaries = tresk::SummaryCreator().createSummaries(parser, budget);
    for (int i = 0; i < parser.getNumSections(); ++i) // behind them, files that are in no step
        printStep(summaries[i]);

    const bool isComplete = budget.unread.isEmpty() && budget.namingTooMany.isEmpty()
        && budget.withoutFiles.isEmpty();
    if (!isComplete || parser.readFailed()) {
        std::cerr << argv[1] << ": not everything could be read\n";
        return 1;
    }
    return 0;
}
