// Runs one operation of the library on a document, to be timed as a whole process.

#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QString>

#include <cstdio>
#include <cstring>

namespace {

/// Prints the digests of the first embedded file.
int printChecksums(tresk::TreskParser& parser)
{
    std::puts(qPrintable(parser.calcChecksumsForFile(0).first));
    return 0;
}

/// Checks the first embedded file in steps of 100000 bytes.
int validate(tresk::TreskParser& parser)
{
    bool allValid = true;
    tresk::ValidationQueue queue(&parser, 0);
    QObject::connect(&queue, &tresk::ValidationQueue::fileProcessed,
                     [&allValid](int, bool valid) { allValid = allValid && valid; });
    queue.addValidatees({0}, {});
    while (queue.process()) { }
    return allValid ? 0 : 2;
}

} // namespace

int main(int argc, char* argv[])
{
    tresk::TreskParser parser;
    if (argc != 3 || !parser.open(QString::fromLocal8Bit(argv[2])))
        return 2;
    return std::strcmp(argv[1], "validate") == 0 ? validate(parser) : printChecksums(parser);
}
