#include "Command.h"

#include <QtTest>

using namespace tresktest;

/// What the command says of itself, and of wrong usage.
class TestCommandUsage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wrongUsageIsExplained_data();
    void wrongUsageIsExplained();
    void generalHelpListsAll();
    void generalHelpHasManyForms_data();
    void generalHelpHasManyForms();
    void commandHelpHasManyForms_data();
    void commandHelpHasManyForms();
    void helpFitsTheTerminal_data();
    void helpFitsTheTerminal();
    void versionIsShown_data();
    void versionIsShown();
    void commonOptionsMayPrecedeTheCommand_data();
    void commonOptionsMayPrecedeTheCommand();
    void helpThatCannotBeWrittenIsAnError();
};

namespace {

QStringList words(const char* text)
{
    const QString string = QString::fromUtf8(text);
    return string.isEmpty() ? QStringList() : string.split(QLatin1Char(' '));
}

} // namespace

void TestCommandUsage::wrongUsageIsExplained_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");

    const auto row = [](const char* arguments, const char* message) {
        QTest::newRow(*arguments ? arguments : "nothing")
            << words(arguments) << QByteArray(message);
    };
    row("", "no command given; see 'tresk --help'");
    row("--", "no command given; see 'tresk --help'");
    row("-q", "no command given; see 'tresk --help'");
    row("frobnicate", "unknown command 'frobnicate'; see 'tresk --help'");
    row("lgo", "unknown command 'lgo'; did you mean 'log'? See 'tresk --help'");
    row("extrakt", "unknown command 'extrakt'; did you mean 'extract'? See 'tresk --help'");
    row("file a.pdf", "unknown command 'file'; did you mean 'files'? See 'tresk --help'");
    row("LOG", "unknown command 'LOG'; see 'tresk --help'");
    row("l", "unknown command 'l'; see 'tresk --help'");
    row("help frobnicate", "unknown command 'frobnicate'; see 'tresk --help'");
    row("help hlep", "unknown command 'hlep'; did you mean 'help'? See 'tresk --help'");
    row("help log cat", "help: unexpected argument 'cat'; see 'tresk help --help'");
    row("--frobnicate", "unknown option '--frobnicate'; see 'tresk --help'");
    row("-x log", "unknown option '-x'; see 'tresk --help'");
    row("--json log", "unknown option '--json'; see 'tresk --help'");
    row("--color", "missing value after '--color'; see 'tresk --help'");
    row("--color=blue", "'blue' is none of auto, always and never; see 'tresk --help'");
    row("--quiet=yes log", "unexpected value after '--quiet'; see 'tresk --help'");
    row("log", "log: no DOC given; see 'tresk log --help'");
    row("log --json", "log: no DOC given; see 'tresk log --help'");
    row("show", "show: no DOC given; see 'tresk show --help'");
    row("show a.pdf 1 2", "show: unexpected argument '2'; see 'tresk show --help'");
    row("verify", "verify: no DOC given; see 'tresk verify --help'");
    row("verify --jsonl a.pdf", "verify: unknown option '--jsonl'; see 'tresk verify --help'");
    row("log --frobnicate a.pdf", "log: unknown option '--frobnicate'; see 'tresk log --help'");
    row("log -C dir a.pdf", "log: unknown option '-C'; see 'tresk log --help'");
    row("log --oneline=3 a.pdf", "log: unexpected value after '--oneline'; see 'tresk log --help'");
    row("log --color=blue a.pdf",
        "log: 'blue' is none of auto, always and never; see 'tresk log --help'");
    row("log --color= a.pdf", "log: '' is none of auto, always and never; see 'tresk log --help'");
    row("log a.pdf --color", "log: missing value after '--color'; see 'tresk log --help'");
    row("find", "find: no QUERY given; see 'tresk find --help'");
    row("find word", "find: no DOC or DIR given; see 'tresk find --help'");
    row("finde word", "unknown command 'finde'; did you mean 'find'? See 'tresk --help'");
    row("files", "files: no DOC given; see 'tresk files --help'");
    row("files a.pdf 1", "files: unexpected argument '1'; see 'tresk files --help'");
    row("cat", "cat: no DOC given; see 'tresk cat --help'");
    row("cat a.pdf", "cat: no FILE given; see 'tresk cat --help'");
    row("cat a.pdf 1 2", "cat: unexpected argument '2'; see 'tresk cat --help'");
    row("cat --json a.pdf 1", "cat: unknown option '--json'; see 'tresk cat --help'");
    row("extract", "extract: no DOC given; see 'tresk extract --help'");
    row("extract a.pdf", "extract: no target directory given (-C DIR); see 'tresk extract --help'");
    row("extract a.pdf -C", "extract: missing value after '-C'; see 'tresk extract --help'");
    row("extract a.pdf --dir=x", "extract: unknown option '--dir'; see 'tresk extract --help'");
    QTest::newRow("control characters")
        << QStringList{QStringLiteral("a\n\x1b[31mb")}
        << QByteArray("unknown command 'a\\n\\x1b[31mb'; see 'tresk --help'");
}

void TestCommandUsage::wrongUsageIsExplained()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, message);
    const Outcome outcome = runTresk(arguments);
    QCOMPARE(outcome.errors, "tresk: " + message + "\n");
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandUsage::generalHelpListsAll()
{
    const Outcome outcome = runTresk({QStringLiteral("--help")});
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.errors, QByteArray());
    const QList<QByteArray> lines = outcome.output.split('\n');
    QCOMPARE(lines.first(), QByteArray("Usage: tresk COMMAND [OPTION]... [ARGUMENT]..."));
    for (const char* line :
         {"  log      list the steps of documents, newest first",
          "  show     show what a step says of itself, in full",
          "  verify   compare the checksums of documents with what is in them",
          "  find     find the documents in which something was done",
          "  1    a checksum is wrong or missing, or what it is for damaged; nothing found",
          "  files    list the embedded files of a document",
          "  cat      write the content of an embedded file to standard output",
          "  extract  write embedded files to disk", "  help     explain a command",
          "  -q, --quiet            say nothing but errors, show no progress",
          "      --color=WHEN       colour the output: auto (the default), always, never",
          "  0    done",
          "  2    trouble: wrong usage, a document that cannot be read or is damaged,"})
        QVERIFY2(lines.contains(line), line);
}

void TestCommandUsage::generalHelpHasManyForms_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* form : {"-h", "help", "-q --help", "--color never -h", "--help --version"})
        QTest::newRow(form) << words(form);
}

void TestCommandUsage::generalHelpHasManyForms()
{
    QFETCH(QStringList, arguments);
    const Outcome outcome = runTresk(arguments);
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, runTresk({QStringLiteral("--help")}).output);
}

void TestCommandUsage::commandHelpHasManyForms_data()
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
    QTest::newRow("help") << QStringLiteral("help")
                          << QByteArray("Usage: tresk help [OPTION]... [COMMAND]") << QStringList();
}

void TestCommandUsage::commandHelpHasManyForms()
{
    QFETCH(QString, command);
    QFETCH(QByteArray, usage);
    QFETCH(QStringList, options);
    const Outcome help = runTresk({QStringLiteral("help"), command});
    QCOMPARE(help.exitCode, 0);
    QCOMPARE(help.errors, QByteArray());
    QVERIFY(help.output.startsWith(usage + "\n\n"));
    for (const QString& option : options + words("--quiet --verbose --color=WHEN --help --version"))
        QVERIFY2(help.output.contains(option.toUtf8() + ' '), qPrintable(option));

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

void TestCommandUsage::helpFitsTheTerminal_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* form : {"help", "help log", "help show", "help files", "help cat",
                             "help extract", "help verify", "help find", "help help"})
        QTest::newRow(form) << words(form);
}

void TestCommandUsage::helpFitsTheTerminal()
{
    QFETCH(QStringList, arguments);
    const QByteArray help = runTresk(arguments).output;
    QVERIFY(help.endsWith('\n'));
    for (const QByteArray& line : help.split('\n')) {
        QVERIFY2(line.size() <= 80, line.constData());
        QVERIFY2(!line.endsWith(' '), line.constData());
    }
}

void TestCommandUsage::versionIsShown_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* form : {"--version", "log --version", "--version cat", "extract --version -q"})
        QTest::newRow(form) << words(form);
}

void TestCommandUsage::versionIsShown()
{
    QFETCH(QStringList, arguments);
    const Outcome outcome = runTresk(arguments);
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, QByteArray("tresk " TRESK_VERSION "\n"));
}

void TestCommandUsage::commonOptionsMayPrecedeTheCommand_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char* form : {"-q log /nowhere", "--color never log /nowhere", "-- log /nowhere",
                             "log -- /nowhere", "--color=always -qv log /nowhere --json"})
        QTest::newRow(form) << words(form);
}

void TestCommandUsage::commonOptionsMayPrecedeTheCommand()
{
    QFETCH(QStringList, arguments);
    const Outcome outcome = runTresk(arguments);
    QCOMPARE(outcome.errors, QByteArray("tresk: /nowhere: No such file or directory\n"));
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandUsage::helpThatCannotBeWrittenIsAnError()
{
    const Outcome outcome =
        Command({QStringLiteral("--help")}).inShell(QStringLiteral("\"$@\" >/dev/full")).run();
    QCOMPARE(outcome.errors, QByteArray("tresk: standard output: No space left on device\n"));
    QCOMPARE(outcome.exitCode, 2);
}

QTEST_GUILESS_MAIN(TestCommandUsage)
#include "tst_command_usage.moc"
