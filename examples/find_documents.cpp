// Prints the documents for which a query holds, with the steps and files that its names stand for.

#include "Printable.h"

#include <tresk/SummaryCreator.h>
#include <tresk/TreskFindQuery.h>
#include <tresk/TreskParser.h>

#include <QFile>
#include <QMap>

#include <iostream>

namespace {

/// The title or name behind a key "wfs:STEP" or "file:STEP:FILE", which counts in @p summaries.
QString titleOf(const QString& key, const QList<tresk::Summary>& summaries)
{
    const QStringList parts = key.split(QLatin1Char(':'));
    const tresk::Summary& step = summaries[parts[1].toInt()];
    return parts.size() == 2 ? step.title : step.files[parts[2].toInt()].filename;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc < 3) {
        std::cerr << "usage: find_documents QUERY DOCUMENT...\n";
        return 2;
    }

    const tresk::TreskFindQuery query(QString::fromLocal8Bit(argv[1]));
    for (const tresk::QueryError& error : query.getErrors())
        std::cerr << printable(error.errorMessage().simplified()) << '\n';
    if (!query.isValid()) // it would match everything
        return 2;

    int found = 0;
    for (int i = 2; i < argc; ++i) {
        tresk::TreskParser parser;
        if (!parser.open(QFile::decodeName(argv[i]))) // other files have no history
            continue;
        tresk::SummaryBudget budget;
        const QList<tresk::Summary> summaries = tresk::SummaryCreator().createSummaries(parser,
                                                                                        budget);
        QHash<QString, QString> bindings;
        if (!query.matches(summaries, &bindings))
            continue;
        ++found;
        std::cout << argv[i] << '\n';
        QMap<QString, QString> sorted; // a hash has another order each time
        for (auto binding = bindings.cbegin(); binding != bindings.cend(); ++binding)
            sorted.insert(binding.key(), titleOf(binding.value(), summaries));
        for (auto binding = sorted.cbegin(); binding != sorted.cend(); ++binding)
            std::cout << "  " << printable(binding.key()) << ": " << printable(binding.value())
                      << '\n';
    }
    return found > 0 ? 0 : 1;
}
