#include "Tools.h"
#include "Watched.h"

#include <QElapsedTimer>
#include <QFile>
#include <QtTest>

#include <csignal>

using namespace tresktest;

/// How `tresk add` and `tresk undo` run their tools.
class TestCommandTools : public ToolTest {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeFolder(); }
    void textIsHandedAsItIs_data();
    void textIsHandedAsItIs();
    void largeInputNeedNotBeRead();
    void linesGoWhereTheyBelong();
    void marksAreTakenOff_data();
    void marksAreTakenOff();
    void quietLeavesErrors();
    void exitCodeIsPassedOn_data();
    void exitCodeIsPassedOn();
    void linesAreRelayedWhileTheToolRuns();
    void toolIsWaitedForWhenInterrupted_data();
    void toolIsWaitedForWhenInterrupted();
    void largeOutputIsWhole();
    void longLineTakesLittleMemory_data();
    void longLineTakesLittleMemory();
    void longLineIsNotCutInACharacter();
    void readerMayGoAway_data();
    void readerMayGoAway();
    void fullDiskIsReported_data();
    void fullDiskIsReported();
    void closedStreamsStayClosed_data();
    void closedStreamsStayClosed();
};

namespace {

/// Waits until the file holds @p bytes; false if it takes too long.
bool waitForContent(const QString& path, const QByteArray& bytes)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 30000) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly) && file.readAll() == bytes)
            return true;
        QTest::qSleep(2);
    }
    return false;
}

/// What makes the shell limit the memory of what it runs, in KiB; nothing where sanitizers or
/// valgrind watch it, which take whatever there is.
QString memoryLimit(int kibibytes)
{
    return isWatched() ? QString() : QStringLiteral("ulimit -v %1; ").arg(kibibytes);
}

const char* const waitForGo = "while [ ! -e go ]; do sleep 0.01; done\n";

} // namespace

void TestCommandTools::textIsHandedAsItIs_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("handed");
    QTest::addColumn<QByteArray>("errors");
    const auto row = [](const char* name, const QByteArray& content) {
        QTest::newRow(name) << content << content << QByteArray();
    };
    row("empty", "");
    row("words, strings, comments", "-O 'a b.pdf'\r\n# \"c\t$X\n\n");
    row("not understood", "'\\");
    row("not ASCII", "\xC3\xA4\xF0\x9D\x84\x9E");
    row("zero byte", QByteArray("a\0b", 3));
    QTest::newRow("byte-order mark")
        << QByteArray("\xEF\xBB\xBF-p") << QByteArray("-p") << QByteArray();
    QTest::newRow("two byte-order marks")
        << QByteArray("\xEF\xBB\xBF\xEF\xBB\xBF-p") << QByteArray("\xEF\xBB\xBF-p") << QByteArray();
    QTest::newRow("not UTF-8") << QByteArray("a\xFF") << QByteArray("a\xEF\xBF\xBD")
                               << QByteArray("tresk: some.args: warning: is not UTF-8 throughout; "
                                             "what is not was replaced by U+FFFD\n");
}

void TestCommandTools::textIsHandedAsItIs()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, handed);
    QFETCH(QByteArray, errors);
    dir().write(text("some.args"), content);
    const Outcome outcome = add("cat > input; echo \"$#: $1\"\n");
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.errors, errors);
    QCOMPARE(outcome.output, QByteArray("1: --stdin\n"));
    QCOMPARE(readFile(path("input")), handed);
}

void TestCommandTools::largeInputNeedNotBeRead()
{
    dir().write(text("some.args"), QByteArray(1 << 20, '#'));
    const Outcome outcome = add("exit 3\n");
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 3);
}

void TestCommandTools::linesGoWhereTheyBelong()
{
    const QByteArray script = "printf ' one\\n\\n***ERROR: bad\\n'\n"
                              "printf '***WARNINGodd\\n' >&2\n"
                              "printf '** x\\r\\n***ERROR\\033[2J\\n\\033]0;\\303\\244\\n'\n"
                              "printf 'Programm exited with error code: 7\\nrest'\n";
    const Outcome outcome = add(script);
    QCOMPARE(
        outcome.output,
        QByteArray(" one\n\n** x\n\\x1b]0;\xC3\xA4\nProgramm exited with error code: 7\nrest\n"));
    QCOMPARE(outcome.errors,
             QByteArray("tresk: treskadd: bad\n"
                        "tresk: treskadd: warning: odd\n"
                        "tresk: treskadd: \\x1b[2J\n"));
    QCOMPARE(outcome.exitCode, 0);
    // On one stream everything is in its place.
    const Outcome both = command("add").inShell(text("exec \"$@\" 2>&1")).run();
    QVERIFY(both.output.startsWith(" one\n\ntresk: treskadd: bad\ntresk: treskadd: warning: odd\n"
                                   "** x\ntresk: treskadd: \\x1b[2J\n"));
    const Outcome verbose = command("add", {text("-v")}).run();
    QCOMPARE(verbose.output, outcome.output);
    QCOMPARE(verbose.errors, outcome.errors + "tresk: Programm exited with error code: 0\n");
}

void TestCommandTools::marksAreTakenOff_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("told");
    const auto row = [](const char* line, const char* told) {
        QTest::newRow(line) << QByteArray(line) << QByteArray(told);
    };
    row("***ERROR", "error");
    row("***ERROR: ", "error");
    row("***ERRORx", "x");
    row("***ERROR:\\tx\\ty\\t", "x\\ty");
    row("***ERROR : : x: ", "x:");
    row("***WARNING", "warning");
    row("***WARNING:", "warning");
    row("***WARNING:\\tx", "warning: x");
    row("***WARNING \\t: x", "warning: x");
}

void TestCommandTools::marksAreTakenOff()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, told);
    const Outcome outcome = add("printf '" + line + "\\n'\n");
    QCOMPARE(outcome.errors, "tresk: treskadd: " + told + "\n");
    QCOMPARE(outcome.output, QByteArray());
}

void TestCommandTools::quietLeavesErrors()
{
    const Outcome outcome = add("echo a; echo '***WARNING b'; echo '***ERROR c'\n", {text("-q")});
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.errors, QByteArray("tresk: treskadd: c\n"));
    QCOMPARE(outcome.exitCode, 0);
}

void TestCommandTools::exitCodeIsPassedOn_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<int>("exitCode");
    for (const int code : {0, 1, 2, 3, 124, 125, 126, 127, 128, 141, 255})
        QTest::newRow(qPrintable(QString::number(code))) << "exit " + QByteArray::number(code)
                + "\n" << code;
    QTest::newRow("signal TERM") << QByteArray("kill -TERM $$\n") << int(SIGTERM);
    // The tool does not inherit that the command ignores this one.
    QTest::newRow("signal PIPE") << QByteArray("kill -PIPE $$; exit 7\n") << int(SIGPIPE);
}

void TestCommandTools::exitCodeIsPassedOn()
{
    QFETCH(QByteArray, script);
    QFETCH(int, exitCode);
    writeTool("tools/treskdel", script);
    for (const Outcome& outcome : {add(script), command("undo").run()}) {
        QCOMPARE(outcome.exitCode, exitCode);
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.errors, QByteArray());
    }
}

void TestCommandTools::linesAreRelayedWhileTheToolRuns()
{
    writeTool("tools/treskadd",
              QByteArray("echo '***ERROR zeroth'; echo first\n") + waitForGo + "echo third\n");
    bool seen = false;
    const Outcome outcome =
        command("add").inShell(text("exec \"$@\" >output 2>errors")).runWhile([&](qint64) {
            seen = waitForContent(path("output"), "first\n")
                && waitForContent(path("errors"), "tresk: treskadd: zeroth\n");
            dir().write(text("go"), "");
        });
    QVERIFY(seen);
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(readFile(path("output")), QByteArray("first\nthird\n"));
}

void TestCommandTools::toolIsWaitedForWhenInterrupted_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("HUP") << int(SIGHUP);
    QTest::newRow("INT") << int(SIGINT);
    QTest::newRow("TERM") << int(SIGTERM);
}

void TestCommandTools::toolIsWaitedForWhenInterrupted()
{
    QFETCH(int, signalNumber);
    writeTool("tools/treskadd",
              QByteArray("printf x > started\n") + waitForGo + "echo last; exit 9\n");
    const Outcome outcome = command("add").runWhile([&](qint64 processId) {
        waitForContent(path("started"), "x");
        ::kill(static_cast<pid_t>(processId), signalNumber);
        dir().write(text("go"), "");
    });
    QCOMPARE(outcome.exitCode, 9);
    QCOMPARE(outcome.output, QByteArray("last\n"));
    QCOMPARE(outcome.errors, QByteArray());
}

void TestCommandTools::largeOutputIsWhole()
{
    const Outcome outcome = add("seq 1 150000\n");
    QByteArray expected;
    for (int i = 1; i <= 150000; ++i)
        expected += QByteArray::number(i) + '\n';
    QVERIFY(outcome.output == expected);
    QCOMPARE(outcome.exitCode, 0);
    // One line of a million characters, without an end.
    const Outcome line = add("printf '%01000000d' 7\n");
    QVERIFY(line.output == QByteArray(999999, '0') + "7\n");
}

void TestCommandTools::longLineTakesLittleMemory_data()
{
    QTest::addColumn<QByteArray>("mark");
    QTest::addColumn<QByteArray>("told");
    QTest::newRow("information") << QByteArray("> ") << QByteArray("> ");
    QTest::newRow("warning") << QByteArray("***WARNING: ")
                             << QByteArray("tresk: treskadd: warning: ");
    QTest::newRow("error") << QByteArray("***ERROR: ") << QByteArray("tresk: treskadd: ");
}

void TestCommandTools::longLineTakesLittleMemory()
{
    QFETCH(QByteArray, mark);
    QFETCH(QByteArray, told);
    const int length = isWatched() ? 1000000 : 10000000;
    const QByteArray size = QByteArray::number(length);
    writeTool("tools/treskadd", "printf '" + mark + "'; exec head -c " + size + " /dev/zero\n");
    // The line takes 20 MB as text, and several times as much written out.
    const Outcome outcome =
        command("add")
            .inShell(QStringLiteral("%1{ \"$@\"; echo $? >code; } 2>&1 | tr -d 0 >shown; cat code")
                         .arg(memoryLimit(230000)))
            .run();
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, QByteArray("0\n"));
    const QByteArray shown = readFile(path("shown"));
    QCOMPARE(shown.left(told.size() + 4), told + "\\x\\x");
    QVERIFY(shown == told + QByteArray("\\x").repeated(length) + '\n');
}

void TestCommandTools::longLineIsNotCutInACharacter()
{
    // Pairs of surrogates at even and odd places, then what is written out as one.
    QByteArray line = QByteArray("\xF0\x9D\x84\x9E").repeated(100000) + 'x'
        + QByteArray("\xF0\x9D\x84\x9E").repeated(100000)
        + QByteArray("\xF3\xA0\x80\x81").repeated(100000);
    dir().write(text("line"), line);
    line.replace("\xF3\xA0\x80\x81", "\\U000e0001");
    const Outcome outcome = add("cat line; printf '\\n***ERROR '; cat line\n");
    QVERIFY(outcome.output == line + '\n');
    QVERIFY(outcome.errors == "tresk: treskadd: " + line + '\n');
}

void TestCommandTools::readerMayGoAway_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("success") << 0 << QByteArray("141\n");
    QTest::newRow("failure") << 3 << QByteArray("3\n");
}

void TestCommandTools::readerMayGoAway()
{
    QFETCH(int, code);
    QFETCH(QByteArray, expected);
    writeTool("tools/treskadd",
              "seq 1 150000; echo done > finished; exit " + QByteArray::number(code) + "\n");
    const Outcome outcome =
        command("add").inShell(text("{ \"$@\"; echo $? >code; } | head -n 1; cat code")).run();
    QCOMPARE(outcome.output, "1\n" + expected);
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(readFile(path("finished")), QByteArray("done\n"));
}

void TestCommandTools::fullDiskIsReported_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("expected");
    QTest::newRow("success") << 0 << 125;
    QTest::newRow("failure") << 3 << 3;
}

void TestCommandTools::fullDiskIsReported()
{
    QFETCH(int, code);
    QFETCH(int, expected);
    writeTool("tools/treskadd", "echo a; exit " + QByteArray::number(code) + "\n");
    const Outcome outcome = command("add").inShell(text("exec \"$@\" >/dev/full")).run();
    QCOMPARE(outcome.errors, QByteArray("tresk: standard output: No space left on device\n"));
    QCOMPARE(outcome.exitCode, expected);
}

void TestCommandTools::closedStreamsStayClosed_data()
{
    QTest::addColumn<QByteArray>("streams");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QByteArray>("errors");
    QTest::addColumn<int>("exitCode");
    const QByteArray said = "said\nwrong\n";
    QTest::newRow("input") << QByteArray("<&-") << said << QByteArray() << 0;
    QTest::newRow("output") << QByteArray(">&-") << QByteArray()
                            << QByteArray("tresk: standard output: Bad file descriptor\n") << 125;
    QTest::newRow("all") << QByteArray("<&- >&- 2>&-") << QByteArray() << QByteArray() << 125;
}

/// None of the files and pipes that are opened takes the place of one.
void TestCommandTools::closedStreamsStayClosed()
{
    QFETCH(QByteArray, streams);
    QFETCH(QByteArray, output);
    QFETCH(QByteArray, errors);
    QFETCH(int, exitCode);
    const QByteArray content = "-O a.pdf\n";
    dir().write(text("some.args"), content);
    writeTool("tools/treskadd", "cat >input\necho said\necho wrong >&2\n");
    const QString script = text("exec \"$@\" ") + text(streams.constData());
    const Outcome outcome = command("add").inShell(script).run();
    QCOMPARE(outcome.output, output);
    QCOMPARE(outcome.errors, errors);
    QCOMPARE(outcome.exitCode, exitCode);
    QCOMPARE(readFile(path("input")), content);
    QCOMPARE(readFile(path("some.args")), content);
}

QTEST_GUILESS_MAIN(TestCommandTools)
#include "tst_command_tools.moc"
