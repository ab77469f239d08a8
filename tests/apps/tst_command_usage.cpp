#include "Command.h"

#include <QtTest>

using namespace tresktest;

/// What the command says of its version, and of wrong usage.
class TestCommandUsage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wrongUsageIsExplained_data();
    void wrongUsageIsExplained();
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
    row("--color=blue", "--color takes auto, always or never, not 'blue'; see 'tresk --help'");
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
        "log: --color takes auto, always or never, not 'blue'; see 'tresk log --help'");
    row("log --color= a.pdf",
        "log: --color takes auto, always or never, not ''; see 'tresk log --help'");
    row("log a.pdf --color", "log: missing value after '--color'; see 'tresk log --help'");
    row("find", "find: no QUERY given; see 'tresk find --help'");
    row("find word", "find: no DOC or DIR given; see 'tresk find --help'");
    row("finde word", "unknown command 'finde'; did you mean 'find'? See 'tresk --help'");
    row("report", "report: no DOC given; see 'tresk report --help'");
    row("report a.pdf b", "report: unexpected argument 'b'; see 'tresk report --help'");
    row("report a.pdf -o", "report: missing value after '-o'; see 'tresk report --help'");
    row("report a.pdf --output=", "report: -o takes the path of a file; see 'tresk report --help'");
    row("diff a.pdf b.pdf --html=",
        "diff: --html takes the path of a file; see 'tresk diff --help'");
    row("files", "files: no DOC given; see 'tresk files --help'");
    row("files a.pdf 1", "files: unexpected argument '1'; see 'tresk files --help'");
    row("cat", "cat: no DOC given; see 'tresk cat --help'");
    row("cat a.pdf", "cat: no FILE given; see 'tresk cat --help'");
    row("cat a.pdf 1 2", "cat: unexpected argument '2'; see 'tresk cat --help'");
    row("cat --json a.pdf 1", "cat: unknown option '--json'; see 'tresk cat --help'");
    row("extract", "extract: no DOC given; see 'tresk extract --help'");
    row("extract a.pdf", "extract: no target directory given (-C DIR); see 'tresk extract --help'");
    row("extract a.pdf -C", "extract: missing value after '-C'; see 'tresk extract --help'");
    row("extract a.pdf --directory=", "extract: -C takes a directory; see 'tresk extract --help'");
    row("extract a.pdf --dir=x", "extract: unknown option '--dir'; see 'tresk extract --help'");
    row("args", "args: no ARGFILE given; see 'tresk args --help'");
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
        "add: --color takes auto, always or never, not 'blue'; see 'tresk add --help'");
    row("add --search-path= a", "add: --search-path takes a directory; see 'tresk add --help'");
    row("undo --search-path=x --search-path= a",
        "undo: --search-path takes a directory; see 'tresk undo --help'");
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
