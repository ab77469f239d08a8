// Runs one operation of the library, to be timed as a whole process.

#include <tresk/TreskParser.h>

#include <QString>

#include <cstdio>

int main(int argc, char* argv[])
{
    tresk::TreskParser parser;
    if (argc != 2 || !parser.open(QString::fromLocal8Bit(argv[1])))
        return 2;
    std::puts(qPrintable(parser.calcChecksumsForFile(0).first));
    return 0;
}
