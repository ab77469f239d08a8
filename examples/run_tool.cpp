// Has the tool treskadd add the step that an argument file describes. The tool is looked for beside
// this program.

#include "Printable.h"

#include <tresk/TreskaddRunner.h>

#include <QCoreApplication>
#include <QFile>

#include <iostream>

int main(int argc, char* argv[])
{
    const QCoreApplication app(argc, argv); // knows where this program is
    if (argc != 2) {
        std::cerr << "usage: run_tool ARGUMENT-FILE\n";
        return 2;
    }
    QFile file(QFile::decodeName(argv[1]));
    if (!file.open(QIODevice::ReadOnly)) {
        std::cerr << argv[1] << ": cannot be read\n";
        return 2;
    }

    tresk::TreskaddRunner runner(nullptr);
    QObject::connect(&runner, &tresk::LogSource::log, [](const QString& line, int type) {
        const char* const kinds[] = {"", "warning: ", "error: "};
        std::cout << kinds[type] << printable(line.trimmed()) << '\n';
    });

    const int exitCode = runner.runProcess(QString::fromUtf8(file.readAll()));
    if (exitCode < 0) // -1000: there is no tool, -1001: it could not be started
        return 2;
    std::cout << "treskadd ended with " << exitCode << '\n';
    return exitCode == 0 ? 0 : 1;
}
