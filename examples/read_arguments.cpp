// Reads an argument file, in which a step is described for the tool that adds it, and shows what it
// says. NAME=VALUE gives the variable NAME of the file a value.

#include "Printable.h"

#include <tresk/ArgfileReader.h>

#include <QFile>
#include <QHash>

#include <iostream>

int main(int argc, char* argv[])
{
    if (argc < 2) {
        std::cerr << "usage: read_arguments FILE [NAME=VALUE...]\n";
        return 2;
    }
    QFile file(QFile::decodeName(argv[1]));
    if (!file.open(QIODevice::ReadOnly)) {
        std::cerr << argv[1] << ": cannot be read\n";
        return 2;
    }
    QHash<QString, QString> variables;
    for (int i = 2; i < argc; ++i) {
        const QString definition = QString::fromLocal8Bit(argv[i]);
        variables.insert(definition.section(QLatin1Char('='), 0, 0),
                         definition.section(QLatin1Char('='), 1));
    }

    tresk::ArgfileReader reader;
    bool hasErrors = false;
    QObject::connect(&reader, &tresk::LogSource::log, [&](const QString& message, int type) {
        hasErrors = hasErrors || type == 2;
        std::cerr << message.toStdString();
    });
    const tresk::ArgFile step = reader.readArgfile(QString::fromUtf8(file.readAll()), &variables);

    std::cout << "title: " << printable(step.title()) << '\n'
              << "description: " << printable(step.description()) << '\n';
    for (int i = 0; i < step.numOutputTreskfiles(); ++i)
        std::cout << "document: " << printable(step.outputTreskfile(i)) << '\n';
    for (const QString& key : step.userAttributeKeys())
        std::cout << printable(key) << ": " << printable(step.userAttribute(key)) << '\n';
    for (int i = 0; i < step.numFiles(); ++i) {
        const tresk::WSFile used = step.getConstFile(i);
        std::cout << (used.inputFile() ? "reads " : "writes ") << printable(used.filename())
                  << '\n';
    }
    std::cout << "treskadd " << step.toCommandline(false).toStdString() << '\n';
    return hasErrors ? 1 : 0;
}
