#include "Command.h"

#include <TestFiles.h>

#include <Commands.h>

#include <QDir>
#include <QFile>
#include <QtTest>

using namespace tresktest;
namespace cli = tresk::cli;

/// What the command says of itself.
class TestCommandHelp : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void generalHelpListsAll();
    void generalHelpHasManyForms_data();
    void generalHelpHasManyForms();
    void commandHelpHasManyForms_data();
    void commandHelpHasManyForms();
    void helpFitsTheTerminal_data();
    void helpFitsTheTerminal();
    void helpTellsOfAll_data();
    void helpTellsOfAll();
    void exitCodesAreThose_data();
    void exitCodesAreThose();
    void exampleIsReal_data();
    void exampleIsReal();
};

namespace {

QStringList words(const char* text)
{
    const QString string = QString::fromUtf8(text);
    return string.isEmpty() ? QStringList() : string.split(QLatin1Char(' '));
}

/// A row for each command, with its index, which is that in the tables.
void addCommandRows()
{
    QTest::addColumn<int>("index");
    for (size_t i = 0; i < cli::commands().size(); ++i)
        QTest::newRow(cli::commands()[i].name) << static_cast<int>(i);
}

const cli::Command& commandAt(int index)
{
    return cli::commands()[static_cast<size_t>(index)];
}

QByteArray helpOf(const cli::Command& command)
{
    return runTresk({text(command.name), text("--help")}).output;
}

/// The lines of @p help under the heading, without their margin.
QList<QByteArray> section(const QByteArray& help, const QByteArray& heading)
{
    const auto from = help.indexOf("\n" + heading + ":\n  ");
    if (from < 0)
        return {};
    const auto begin = from + heading.size() + 3;
    const auto end = help.indexOf("\n\n", begin);
    QList<QByteArray> lines = help.mid(begin, end - begin).split('\n');
    for (QByteArray& line : lines) {
        if (line.startsWith("  "))
            line.remove(0, 2);
    }
    return lines;
}

/// The lines of examples in @p help.
QList<QByteArray> examplesIn(const QByteArray& help)
{
    return section(help, "Example") + section(help, "Examples");
}

/// A directory as those who read the examples have one: the samples and a tool.
void fillDirectory(const TestDir& dir)
{
    const QDir samples(text(TRESK_SOURCE_DIR "/samples"));
    for (const QString& name : samples.entryList({text("*.pdf"), text("*.args")}, QDir::Files))
        QVERIFY(QFile::copy(samples.filePath(name), dir.path(name)));
    QVERIFY(QDir(dir.path(QString())).mkdir(text("tools")));
    for (const char* name : {"tools/treskadd", "tools/treskdel"}) {
        QFile tool(dir.write(text(name), "#!/bin/sh\necho done\n"));
        QVERIFY(tool.setPermissions(tool.permissions() | QFile::ExeOwner | QFile::ExeUser));
    }
}

} // namespace

void TestCommandHelp::generalHelpListsAll()
{
    const Outcome outcome = runTresk({QStringLiteral("--help")});
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.errors, QByteArray());
    const QList<QByteArray> lines = outcome.output.split('\n');
    QCOMPARE(lines.first(), QByteArray("Usage: tresk COMMAND [OPTION]... [ARGUMENT]..."));
    for (const char* line :
         {"  log      list the steps of documents, newest first",
          "  extract  write embedded files to disk",
          "  undo     run treskdel, which takes a step out of a document again",
          "  help     explain a command",
          "  -q, --quiet       say nothing but errors, show no progress",
          "      --color=WHEN  colour the output: auto (the default), always, never",
          "  tresk log report.pdf"})
        QVERIFY2(lines.contains(line), line);
    for (const cli::Command& command : cli::commands()) {
        const QByteArray line = "  " + QByteArray(command.name).leftJustified(7) + "  "
            + command.purpose;
        QVERIFY2(lines.contains(line), line.constData());
    }
}

void TestCommandHelp::generalHelpHasManyForms_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* form : {"-h", "help", "-q --help", "--color never -h", "--help --version"})
        QTest::newRow(form) << words(form);
}

void TestCommandHelp::generalHelpHasManyForms()
{
    QFETCH(QStringList, arguments);
    const Outcome outcome = runTresk(arguments);
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, runTresk({QStringLiteral("--help")}).output);
}

void TestCommandHelp::commandHelpHasManyForms_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QByteArray>("usage");
    QTest::addColumn<QStringList>("options");

    QTest::newRow("log") << QStringLiteral("log")
                         << QByteArray("Usage: tresk log [OPTION]... DOC...")
                         << words("--oneline --files --json --jsonl");
    QTest::newRow("show") << QStringLiteral("show")
                          << QByteArray("Usage: tresk show [OPTION]... DOC [STEP]")
                          << words("--json");
    QTest::newRow("verify") << QStringLiteral("verify")
                            << QByteArray("Usage: tresk verify [OPTION]... DOC...")
                            << words("--json");
    QTest::newRow("find") << QStringLiteral("find")
                          << QByteArray("Usage: tresk find [OPTION]... QUERY DOC|DIR...")
                          << words("--null --count --bindings --json --jsonl");
    QTest::newRow("files") << QStringLiteral("files")
                           << QByteArray("Usage: tresk files [OPTION]... DOC") << words("--json");
    QTest::newRow("cat") << QStringLiteral("cat")
                         << QByteArray("Usage: tresk cat [OPTION]... DOC FILE") << QStringList();
    QTest::newRow("extract") << QStringLiteral("extract")
                             << QByteArray("Usage: tresk extract [OPTION]... DOC [FILE]... -C DIR")
                             << words("--directory=DIR --force --verify --json");
    QTest::newRow("args") << QStringLiteral("args")
                          << QByteArray("Usage: tresk args [OPTION]... ARGFILE")
                          << words("--define=NAME=VALUE --highlight --json");
    QTest::newRow("add") << QStringLiteral("add")
                         << QByteArray("Usage: tresk add [OPTION]... ARGFILE")
                         << words("--search-path=DIR --script");
    QTest::newRow("undo") << QStringLiteral("undo")
                          << QByteArray("Usage: tresk undo [OPTION]... ARGFILE")
                          << words("--define=NAME=VALUE --search-path=DIR --script");
    QTest::newRow("help") << QStringLiteral("help")
                          << QByteArray("Usage: tresk help [OPTION]... [COMMAND]") << QStringList();
}

void TestCommandHelp::commandHelpHasManyForms()
{
    QFETCH(QString, command);
    QFETCH(QByteArray, usage);
    QFETCH(QStringList, options);
    const Outcome help = runTresk({text("help"), command});
    QCOMPARE(help.exitCode, 0);
    QCOMPARE(help.errors, QByteArray());
    QVERIFY(help.output.startsWith(usage + "\n\n"));
    for (const QString& option : options)
        QVERIFY2(help.output.contains(option.toUtf8() + ' '), qPrintable(option));
    QVERIFY(help.output.endsWith(
        "\n\nAll commands have -q, -v, --color=WHEN, -h, --version; see 'tresk --help'.\n"));

    const QString longOption = QStringLiteral("--help");
    const QString wrongArgument = QStringLiteral("/nowhere");
    for (const QStringList& form :
         {QStringList{command, longOption}, QStringList{command, QStringLiteral("-h")},
          QStringList{longOption, command},
          QStringList{command, wrongArgument, wrongArgument, longOption}}) {
        const Outcome outcome = runTresk(form);
        QCOMPARE(outcome.exitCode, 0);
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.output, help.output);
    }
}

void TestCommandHelp::helpFitsTheTerminal_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("tresk") << words("--help");
    for (const cli::Command& command : cli::commands())
        QTest::newRow(command.name) << QStringList{text("help"), text(command.name)};
}

void TestCommandHelp::helpFitsTheTerminal()
{
    QFETCH(QStringList, arguments);
    const QByteArray help = runTresk(arguments).output;
    QVERIFY(help.endsWith('\n'));
    QVERIFY2(help.count('\n') <= 40, QByteArray::number(help.count('\n')).constData());
    for (const QByteArray& line : help.split('\n')) {
        QVERIFY2(line.size() <= 80, line.constData());
        QVERIFY2(!line.endsWith(' '), line.constData());
    }
}

void TestCommandHelp::helpTellsOfAll_data()
{
    addCommandRows();
}

void TestCommandHelp::helpTellsOfAll()
{
    QFETCH(int, index);
    const cli::Command& command = commandAt(index);
    const QByteArray help = helpOf(command);
    QVERIFY(help.startsWith(QByteArray("Usage: tresk ") + command.name + " [OPTION]... "
                            + command.arguments + "\n\n" + command.description + "\n"));
    const QList<QByteArray> options = section(help, "Options");
    QCOMPARE(static_cast<size_t>(options.size()), command.options.size());
    for (int i = 0; i < options.size(); ++i) {
        const cli::Option& option = command.options[static_cast<size_t>(i)];
        const QByteArray letter = option.letter ? QByteArray("-") + option.letter + ", " : "    ";
        const QByteArray value = option.value ? QByteArray("=") + option.value : QByteArray();
        QVERIFY2(options[i].startsWith(letter + "--" + option.name + value + "  "), options[i]);
        QVERIFY2(options[i].endsWith(QByteArray("  ") + option.purpose), options[i]);
    }
    const QList<QByteArray> examples = examplesIn(help);
    QVERIFY(!examples.isEmpty() && examples.size() <= 3);
    QCOMPARE(examples.join('\n') + '\n', QByteArray(command.example));
    for (const QByteArray& example : examples)
        QVERIFY2(example.startsWith(QByteArray("tresk ") + command.name + ' '), example);
}

void TestCommandHelp::exitCodesAreThose_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("codes");

    size_t rows = 0;
    const auto row = [&rows](const char* name, const char* codes) {
        QTest::newRow(name) << text(name) << text(codes);
        ++rows;
    };
    for (const char* name : {"log", "show", "files", "cat", "tree", "help"})
        row(name, "0; 2; 141");
    for (const char* name : {"find", "diff", "args"})
        row(name, "0; 1; 2; 141");
    for (const char* name : {"extract", "verify", "report"})
        row(name, "0; 1; 2; 129, 130, 143; 141");
    for (const char* name : {"add", "undo"})
        row(name, "0 to 255; 124; 125; 126; 127; 141");
    QCOMPARE(rows, cli::commands().size());
}

void TestCommandHelp::exitCodesAreThose()
{
    QFETCH(QString, command);
    QFETCH(QString, codes);
    QStringList listed;
    const QByteArray help = runTresk({text("help"), command}).output;
    for (const QByteArray& line : section(help, "Exit codes")) {
        const auto gap = line.indexOf("  ");
        QVERIFY2(gap > 0 && !line.mid(gap).trimmed().isEmpty(), line.constData());
        listed += QString::fromUtf8(line.left(gap));
    }
    QCOMPARE(listed.join(text("; ")), codes);
}

void TestCommandHelp::exampleIsReal_data()
{
    QTest::addColumn<QString>("line");

    QByteArray help = runTresk({text("--help")}).output;
    for (const cli::Command& command : cli::commands())
        help += helpOf(command);
    int examples = 0;
    for (const QByteArray& line : help.split('\n')) {
        if (!line.startsWith("  tresk "))
            continue;
        QTest::newRow(line.trimmed().constData()) << QString::fromUtf8(line);
        ++examples;
    }
    QVERIFY(examples > static_cast<int>(cli::commands().size()));
}

void TestCommandHelp::exampleIsReal()
{
    QFETCH(QString, line);
    const TestDir dir;
    fillDirectory(dir);
    const QString script = text("PATH=$(dirname \"$1\"):$PATH; set -- ; ");
    const QStringList before = QDir(dir.path(QString())).entryList(QDir::AllEntries);
    const Outcome outcome =
        Command({}).inDirectory(dir.path(QString())).inShell(script + line).run();

    // Only the sample that is damaged has anything wrong.
    for (const QByteArray& message : outcome.errors.split('\n'))
        QVERIFY2(message.isEmpty() || message.contains("damaged.pdf"), message.constData());
    QVERIFY2(outcome.exitCode >= 0 && outcome.exitCode <= 2, outcome.errors.constData());
    QString written;
    for (const QString& name : QDir(dir.path(QString())).entryList(QDir::AllEntries)) {
        if (!before.contains(name))
            written = dir.path(name);
    }
    QVERIFY(!outcome.output.isEmpty() || QFileInfo(written).size() > 0);
}

QTEST_GUILESS_MAIN(TestCommandHelp)
#include "tst_command_help.moc"
