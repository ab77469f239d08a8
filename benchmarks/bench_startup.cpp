// The least that a command with Qt does: it parses its command line.

#include <QCommandLineParser>
#include <QCoreApplication>

int main(int argc, char* argv[])
{
    const QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("A file"));
    parser.process(app);
    return parser.positionalArguments().isEmpty() ? 1 : 0;
}
