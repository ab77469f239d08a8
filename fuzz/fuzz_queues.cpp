// The queues beside their models, on two documents that scripts describe, with the operations of a
// third script, a line each. Lines of "--" divide the three.

#include "DocumentScript.h"
#include "QueueComparison.h"

using tresk_fuzz::QueueSurroundings;
using tresk_fuzz::scriptedDocument;

namespace {

constexpr int mostOperations = 60;

void runQueues(const QByteArray& input)
{
    if (input.size() > 3000)
        return;
    static QueueSurroundings surroundings;
    const auto firstEnd = input.indexOf("\n--\n");
    const auto secondEnd = firstEnd < 0 ? -1 : input.indexOf("\n--\n", firstEnd + 4);
    if (secondEnd < 0)
        return;
    surroundings.documents[0].open(scriptedDocument(input.left(firstEnd)));
    surroundings.documents[1].open(
        scriptedDocument(input.mid(firstEnd + 4, secondEnd - firstEnd - 4)));
    tresk_fuzz::QueueComparison comparison(surroundings);
    const QList<QByteArray> operations = input.mid(secondEnd + 4).split('\n');
    for (const QByteArray& operation : operations.mid(0, mostOperations))
        comparison.perform(operation);
    comparison.requireWritten();
    for (const tresk_fuzz::OpenDocument& document : surroundings.documents)
        document.requireUnchanged();
}

const tresk_fuzz::Target target("queues", runQueues);

} // namespace
