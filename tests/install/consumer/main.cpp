#include <tresk/TreskParser.h>

#include <QFile>

#include <iostream>

int main(int argc, char* argv[])
{
    tresk::TreskParser parser;
    if (argc != 2 || !parser.open(QFile::decodeName(argv[1])))
        return 2;

    const QList<tresk::SectionTag> sections = parser.getSections(); // newest first
    for (const tresk::SectionTag& section : sections)
        std::cout << section.id << ' ' << section.title.toStdString() << ": "
                  << parser.getFilesInSection(section.id).size() << " files\n";
}
