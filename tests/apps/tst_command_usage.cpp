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
    row("args", "args: no FILE given; see 'tresk args --help'");
    row("args a b", "args: unexpected argument 'b'; see 'tresk args --help'");
    row("args -D", "args: missing value after '-D'; see 'tresk args --help'");
    row("args --highlight -D X=1 a",
        "args: --highlight and -D exclude each other; see 'tresk args --help'");
    row("arg a", "unknown command 'arg'; did you mean 'args'? See 'tresk --help'");
    row("add", "add: no ARGFILE given; see 'tresk add --help'");
    row("add a b", "add: unexpected argument 'b'; see 'tresk add --help'");
    row("add --json a", "add: unknown option '--json'; see 'tresk add --help'");
    row("add -D X=1 a", "add: unknown option '-D'; see 'tresk add --help'");
    row("add --color=blue a",
        "add: 'blue' is none of auto, always and never; see 'tresk add --help'");
    row("add --search-path= a", "add: --search-path takes a directory; see 'tresk add --help'");
    row("undo", "undo: no ARGFILE given; see 'tresk undo --help'");
    row("undo a b", "undo: unexpected argument 'b'; see 'tresk undo --help'");
    row("undo a --search-path",
        "undo: missing value after '--search-path'; see 'tresk undo --help'");
    row("undo -q --script=x a", "undo: unexpected value after '--script'; see 'tresk undo --help'");
    for (const char* command : {"args", "undo"}) {
        const auto definition = [&](const char* value) {
            const QString advice = QStringLiteral("; see 'tresk %1 --help'");
            const QString problem = QStringLiteral(
                "%1: -D takes NAME=VALUE, NAME of ASCII letters and digits, not "
                "\"%2\"");
            const QString name = QString::fromUtf8(command);
            const QString given = QString::fromUtf8(value);
            const QString message = problem.arg(name, given) + advice.arg(name);
            QTest::newRow(qPrintable(name + QStringLiteral(" -D ") + given))
                << QStringList{name, QStringLiteral("-D"), given, QStringLiteral("a")}
                << message.toUtf8();
        };
        definition("X");
        definition("");
        definition("=1");
        definition("A_B=1");
        definition("\xC3\xA4=1");
        definition("A B=1");
    }
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
    // What runs a tool keeps the low codes for the tool.
    const bool runsTool = outcome.errors.startsWith("tresk: add:")
        || outcome.errors.startsWith("tresk: undo:");
    QCOMPARE(outcome.exitCode, runsTool ? 124 : 2);
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
          "  args     show what an argument file says",
          "  add      run treskadd, which adds a step to a document",
          "  undo     run treskdel, which takes a step out of a document again",
          "Those of add and undo are others: that of the tool, or 124 to 127.",
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
    QTest::newRow("args") << QStringLiteral("args")
                          << QByteArray("Usage: tresk args [OPTION]... FILE")
                          << words("--define=N=VALUE --highlight --json");
    QTest::newRow("add") << QStringLiteral("add")
                         << QByteArray("Usage: tresk add [OPTION]... ARGFILE")
                         << words("--search-path=DIR --script");
    QTest::newRow("undo") << QStringLiteral("undo")
                          << QByteArray("Usage: tresk undo [OPTION]... ARGFILE")
                          << words("--define=N=VALUE --search-path=DIR --script");
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
    for (const char* form :
         {"help", "help log", "help show", "help files", "help cat", "help extract", "help verify",
          "help find", "help args", "help add", "help undo", "help help"})
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
