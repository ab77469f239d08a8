// Shows how the steps of two documents correspond, those of embedded documents included.

#include "Printable.h"

#include <tresk/TreskDiff.h>
#include <tresk/TreskParser.h>
#include <tresk/WorkflowTree.h>
#include <tresk/WorkflowstepCosts.h>

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>
#include <QSharedPointer>

#include <iostream>

namespace {

bool readTree(tresk::WorkflowTree& tree, const char* name)
{
    const QString path = QFile::decodeName(name);
    const auto parser = QSharedPointer<tresk::TreskParser>::create();
    if (!parser->open(path)) {
        std::cerr << name << (parser->readFailed() ? ": cannot be read\n" : ": has no history\n");
        return false;
    }
    tree.treeFromTreskFile(parser, path);
    if (!tree.omissions().isEmpty())
        std::cerr << name << ": too large, something is left out\n";
    return true;
}

std::string titleOf(const tresk::WorkflowTree& tree, int id)
{
    return printable(tree.workflowStep(id)->title);
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication app(argc, argv); // names the temporary files
    if (argc != 3) {
        std::cerr << "usage: compare_histories DOCUMENT DOCUMENT\n";
        return 2;
    }

    QLoggingCategory::setFilterRules(QStringLiteral("tresk.debug=false")); // steps of the search
    tresk::WorkflowTree first;
    tresk::WorkflowTree second;
    if (!readTree(first, argv[1]) || !readTree(second, argv[2]))
        return 2;

    tresk::WorkflowstepCosts costs;
    const tresk::TreskDiff diff(first, second, &costs);
    const QSharedPointer<tresk::TreskDiffResult> result = diff.findBestMatch();
    if (!result)
        return 2;

    for (const int id : first.nodeIds()) {
        const int partner = result->association(id, tresk::FirstTree);
        if (partner < 0) {
            std::cout << "only in the first: " << titleOf(first, id) << '\n';
            continue;
        }
        std::cout << titleOf(first, id) << " = " << titleOf(second, partner);
        if (result->parentChanged(id, tresk::FirstTree))
            std::cout << " (moved)";
        std::cout << '\n';
    }
    for (const int id : second.nodeIds()) {
        if (result->associated(id, tresk::SecondTree)) // which means: has no partner
            std::cout << "only in the second: " << titleOf(second, id) << '\n';
    }
    return 0;
}
