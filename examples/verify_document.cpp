// Compares all checksums of a document with its bytes, and shows how far it has come.

#include "Printable.h"

#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QFile>

#include <algorithm>
#include <iostream>

int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::cerr << "usage: verify_document DOCUMENT\n";
        return 2;
    }

    tresk::TreskParser parser;
    if (!parser.open(QFile::decodeName(argv[1]))) {
        std::cerr << argv[1] << (parser.readFailed() ? ": cannot be read\n" : ": has no history\n");
        return 2;
    }

    tresk::ValidationQueue queue(&parser, 0); // 0: as many bytes a step as is usual
    int failures = 0;
    QObject::connect(&queue, &tresk::ValidationQueue::sectionProcessed, [&](int id, bool valid) {
        failures += valid ? 0 : 1;
        std::cout << "step " << id << ' ' << printable(parser.getSection(id)->title)
                  << (valid ? ": right\n" : ": WRONG\n");
    });
    QObject::connect(&queue, &tresk::ValidationQueue::fileProcessed, [&](int id, bool valid) {
        failures += valid ? 0 : 1;
        std::cout << "file " << id << ' ' << printable(parser.getFile(id)->filename)
                  << (valid ? ": right\n" : ": WRONG\n");
    });
    QObject::connect(&queue, &tresk::ValidationQueue::percentFinishedChanged,
                     [](int percent) { std::cerr << std::max(percent, 0) << " %\n"; });

    queue.repopulate(&parser);
    while (queue.process()) { } // one block each; an event loop could do it too

    std::cout << failures << " wrong\n";
    return failures == 0 ? 0 : 1;
}
