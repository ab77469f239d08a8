#include "Arguments.h"

#include <QFile>
#include <QJsonArray>
#include <QtTest>

using namespace tresktest;

/// What `tresk args` says of faults in argument files, and of files that are none.
class TestCommandArgsFaults : public QObject, protected ArgsRuns {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void messagesAreTold_data();
    void messagesAreTold();
    void quietLeavesErrors();
    void brokenTextIsPlaced_data();
    void brokenTextIsPlaced();
    void byteOrderMarkIsDropped();
    void wrongUtf8IsWarnedOf();
    void controlCharactersAreShown();
    void zeroByteEndsNothing();
    void fileMustBeReadable_data();
    void fileMustBeReadable();
    void sizeIsLimited();
    void failingOutputIsTrouble();
};

void TestCommandArgsFaults::initTestCase()
{
    useUtf8Paths();
}

void TestCommandArgsFaults::messagesAreTold_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("isError");

    const auto row = [](const char* content, const char* kind, const char* message) {
        const QByteArray name(kind);
        QTest::newRow(content) << QByteArray(content) << name << text(message)
                               << (name == QByteArray("error"));
    };
    row("-s title a frobnicate -O b", "error", "unknown option found: frobnicate");
    row("-s title a --readme x", "error", "unknown option found: --readme");
    row("-s title a -O", "error", "not enough parameters for option: -O");
    row("-s titel x -s title a", "error", "first parameter (x) of option -s is invalid");
    row("-s title a -i f -f no-embed", "error", "\"0\" is no valid parameter for option -f");
    row("-s title a -i f -f nonsense", "error", "\"1\" is no valid parameter for option -f");
    row("--sync-cwd -s title a", "information", "invalid option (--sync-cwd) found");
    row("-s title a -s tool a%1b -d %2 %3", "error",
        "first parameter (%3) of option -d is invalid");
}

void TestCommandArgsFaults::messagesAreTold()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, kind);
    QFETCH(QString, message);
    QFETCH(bool, isError);
    const Outcome outcome = args(content);
    const QByteArray mark = isError ? "" : "note: ";
    QCOMPARE(outcome.errors, "tresk: some.args: " + mark + message.toUtf8() + "\n");
    QCOMPARE(outcome.exitCode, isError ? 1 : 0);
    // What was understood is shown nevertheless.
    QVERIFY(outcome.output.contains("\n  title:        a\n"));

    const QJsonObject object = json(content, {}, isError ? 1 : 0);
    const QJsonObject told = strings("kind text", (kind + "|" + message.toUtf8()).constData());
    QCOMPARE(object.value(text("messages")).toArray(), QJsonArray({told}));
    QCOMPARE(titleOf(object), text("a"));
}

void TestCommandArgsFaults::quietLeavesErrors()
{
    const Outcome outcome = args("--sync-cwd -s foo bar -s title \xFF", {text("-q")});
    QCOMPARE(outcome.errors,
             QByteArray("tresk: some.args: first parameter (bar) of option -s is invalid\n"));
    QCOMPARE(outcome.exitCode, 1);
}

void TestCommandArgsFaults::brokenTextIsPlaced_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");

    const auto quote = [](const char* name, const char* content, const char* place) {
        QTest::newRow(name) << QByteArray(content)
                            << text(place) + text(": the quote that begins here never ends");
    };
    const auto backslash = [](const char* name, const char* content, const char* place) {
        QTest::newRow(name) << QByteArray(content)
                            << text(place) + text(": nothing follows the backslash at the end");
    };
    quote("single quote", "'", "line 1, column 1");
    quote("double quote", "-p \"a b", "line 1, column 4");
    quote("quote behind strings", "'a' \"b\" c'd", "line 1, column 10");
    quote("apostrophe in double quotes", "\"it's", "line 1, column 1");
    quote("double quote in single quotes", "'3\" pipe", "line 1, column 1");
    quote("escaped quote at the end", "\"a\\\"", "line 1, column 1");
    quote("backslash in single quotes", "x '\\", "line 1, column 3");
    quote("backslash in double quotes", "x \"\\", "line 1, column 3");
    quote("second line", "-p\n  'a\nb", "line 2, column 3");
    quote("CR LF", "-p\r\n\r\n'a", "line 3, column 1");
    quote("CR", "-p\r'a", "line 2, column 1");
    quote("columns are characters", "\xC3\xA4\xF0\x9D\x84\x9E 'a", "line 1, column 4");
    backslash("alone", "\\", "line 1, column 1");
    backslash("behind a word", "-p\nab\\", "line 2, column 3");
    backslash("behind another", "\\\\\\", "line 1, column 3");
    backslash("behind a string", "'a'\\", "line 1, column 4");
}

void TestCommandArgsFaults::brokenTextIsPlaced()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, message);
    const QJsonObject told = strings("kind text", ("error|" + message.toUtf8()).constData());
    for (const QStringList& options : {QStringList(), QStringList(text("--highlight"))}) {
        const Outcome outcome = args(content, options);
        QCOMPARE(outcome.errors, "tresk: some.args: " + message.toUtf8() + "\n");
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.exitCode, 1);
        QCOMPARE(json(content, options, 1).value(text("messages")).toArray(), QJsonArray({told}));
    }
}

void TestCommandArgsFaults::byteOrderMarkIsDropped()
{
    const Outcome outcome = args("\xEF\xBB\xBF-p");
    QCOMPARE(outcome.errors, QByteArray());
    QVERIFY(outcome.output.startsWith("run\n  switches:     pretend\n"));
    // One of them; another one is a character like others.
    const Outcome second = args("\xEF\xBB\xBF\xEF\xBB\xBF-p");
    QCOMPARE(second.errors, QByteArray("tresk: some.args: unknown option found: \\ufeff-p\n"));
    QCOMPARE(titleOf(json("-s title \xEF\xBB\xBFx")), QString(QChar(0xFEFF)) + text("x"));
}

void TestCommandArgsFaults::wrongUtf8IsWarnedOf()
{
    const QByteArray content = "-s title a\xFF"
                               "b";
    const QByteArray message = "is not UTF-8 throughout; what is not was replaced by U+FFFD";
    const Outcome outcome = args(content);
    QCOMPARE(outcome.errors, "tresk: some.args: warning: " + message + "\n");
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY(outcome.output.contains("a\xEF\xBF\xBD"
                                    "b"));
    const QJsonObject told = strings("kind text", ("warning|" + message).constData());
    QCOMPARE(json(content).value(text("messages")).toArray(), QJsonArray({told}));
    // The replacement character itself is not replaced.
    QCOMPARE(args("-s title \xEF\xBF\xBD").errors, QByteArray());
}

void TestCommandArgsFaults::controlCharactersAreShown()
{
    const Outcome outcome = args(
        "-s title 'a\x1b[2J\nb' -U '\x07' '\r' -s '\x1b' '\x1b' -O '\xE2\x80\xAE'");
    QVERIFY(outcome.output.contains("title:        a\\x1b[2J\\nb\n"));
    QVERIFY(outcome.output.contains("    \\x07 = \\r\n"));
    QVERIFY(outcome.output.contains("output:       \\u202e\n"));
    QCOMPARE(outcome.errors,
             QByteArray("tresk: some.args: first parameter (\\x1b) of option -s is invalid\n"));
    QVERIFY(!outcome.output.contains('\x1b'));
    QVERIFY(!args("'\x1b'", {text("--highlight")}).output.contains('\x1b'));
    const Outcome asJson = args("-s title '\x7f'", {text("--json")});
    QVERIFY(asJson.output.contains("\"\\u007f\""));
}

void TestCommandArgsFaults::zeroByteEndsNothing()
{
    const QJsonObject object = json(QByteArray("-s title a\0b", 12));
    QCOMPARE(titleOf(object), QString::fromUtf8("a\0b", 3));
}

void TestCommandArgsFaults::fileMustBeReadable_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("problem");
    const QString pipe = m_dir.makePipe(text("pipe"));
    QTest::newRow("missing") << text("/nowhere") << QByteArray("No such file or directory");
    QTest::newRow("directory") << text("/") << QByteArray("is a directory");
    QTest::newRow("pipe") << pipe << QByteArray("is not a regular file");
    QTest::newRow("device") << text("/dev/zero") << QByteArray("is not a regular file");
    QTest::newRow("standard input")
        << text("-") << QByteArray("standard input is not supported (./- is a file of that name)");
}

void TestCommandArgsFaults::fileMustBeReadable()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, problem);
    const Outcome outcome = runTresk({text("args"), path});
    QCOMPARE(outcome.errors, "tresk: " + path.toUtf8() + ": " + problem + "\n");
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandArgsFaults::sizeIsLimited()
{
    const qint64 limit = qint64(4) << 20;
    QFile file(m_dir.write(text("large.args"), "-p #"));
    QVERIFY(file.resize(limit));
    const Outcome largest = runTresk({text("args"), file.fileName()});
    QCOMPARE(largest.errors, QByteArray());
    QCOMPARE(largest.output,
             QByteArray("run\n  switches:     pretend\ncommand line\n  --pretend\n"));
    QVERIFY(file.resize(limit + 1));
    const Outcome outcome = runTresk({text("args"), file.fileName()});
    QCOMPARE(outcome.errors,
             "tresk: " + file.fileName().toUtf8()
                 + ": has more than 4 MiB, which is too much for an argument file\n");
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandArgsFaults::failingOutputIsTrouble()
{
    const QString path = m_dir.write(text("other.args"), "-p");
    const Outcome outcome =
        Command({text("args"), path}).inShell(text("exec \"$@\" >/dev/full")).run();
    QCOMPARE(outcome.errors, QByteArray("tresk: standard output: No space left on device\n"));
    QCOMPARE(outcome.exitCode, 2);
}

QTEST_GUILESS_MAIN(TestCommandArgsFaults)
#include "tst_command_args_faults.moc"
