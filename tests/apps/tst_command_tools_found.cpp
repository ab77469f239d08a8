#include "Tools.h"
#include "Watched.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QtTest>

using namespace tresktest;

/// What `tresk undo` asks for, and which tools are found.
class TestCommandToolsFound : public ToolTest {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeFolder(); }
    void documentsAreAskedToBeUndone_data();
    void documentsAreAskedToBeUndone();
    void nothingIsUndoneInDoubt_data();
    void nothingIsUndoneInDoubt();
    void longRequestIsNamed_data();
    void longRequestIsNamed();
    void otherFaultsDoNotMatterForUndo();
    void toolsAreSearchedInOrder();
    void searchPathMayBeginWithAColon();
    void searchPathMustBeUtf8();
    void ownDirectoryIsSearchedFirst();
    void scriptIsRunByPython();
    void missingToolIsReported();
    void unfitToolIsReported_data();
    void unfitToolIsReported();
    void argumentFileMustBeReadable();

private:
    /// The whole path of a tool in the folder, as users are told of it.
    QByteArray toolPath(const char* name) const
    {
        return QFileInfo(path("tools")).canonicalFilePath().toUtf8() + '/' + name;
    }
};

void TestCommandToolsFound::documentsAreAskedToBeUndone_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("request");
    const auto row = [](const char* content, const QStringList& options, const char* request) {
        QTest::newRow(content) << QByteArray(content) << options << QByteArray(request);
    };
    const QStringList x = {text("-D"), text("X=1 2")};
    row("-O a.pdf", {}, "<DelWorkflowStep>a.pdf</DelWorkflowStep>");
    row("-A 'b c.pdf' -p -O \xC3\xA4 #x", {},
        "<DelWorkflowStep>b c.pdf</DelWorkflowStep><DelWorkflowStep>\xC3\xA4</DelWorkflowStep>");
    row("-O $X.pdf", x, "<DelWorkflowStep>1 2.pdf</DelWorkflowStep>");
    row("-O $Y", {}, "<DelWorkflowStep>$Y</DelWorkflowStep>");
    row("-O '$Y'", {}, "<DelWorkflowStep>$$Y</DelWorkflowStep>");
    row("-O another", {}, "<DelWorkflowStep>another</DelWorkflowStep>");
}

void TestCommandToolsFound::documentsAreAskedToBeUndone()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, options);
    QFETCH(QByteArray, request);
    dir().write(text("some.args"), content);
    writeTool("tools/treskdel", "printf '%s: %s\\n' \"$#\" \"$1\"; wc -c | tr -d ' '\n");
    const Outcome outcome = command("undo", options).run();
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, "1: " + request + "\n0\n");
    QCOMPARE(outcome.exitCode, 0);
}

void TestCommandToolsFound::nothingIsUndoneInDoubt_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArrayList>("problems");
    const auto row = [](const char* name, const char* content, const QByteArrayList& problems) {
        QTest::newRow(name) << QByteArray(content) << problems;
    };
    const QByteArray none = "names no document to write (-O or -A); nothing is undone";
    const QByteArray doubt =
        "is not understood to its end; nothing is undone before that is mended";
    row("empty", "", {none});
    row("no document", "-I a.pdf -i b", {none});
    row("unknown option", "-O a.pdf --readme b -O c.pdf",
        {"unknown option found: --readme", doubt});
    row("no parameter", "-O a.pdf -s title", {"not enough parameters for option: -s", doubt});
    row("no document behind the option", "-O another -O",
        {"not enough parameters for option: -O", doubt});
    row("option that is no option", "-O a.pdf -c", {"not enough parameters for option: -c", doubt});
    row("quote", "-O a.pdf '", {"line 1, column 10: the quote that begins here never ends", doubt});
    row("backslash", "-O another \\",
        {"line 1, column 12: nothing follows the backslash at the end", doubt});
    row("empty document", "-O ''", {});
    QTest::newRow("zero byte in a path")
        << QByteArray("-O a.pdf -O b\0c -O d.pdf", 25)
        << QByteArrayList{"names a document with a zero byte in its path, behind which treskdel "
                          "would see nothing; nothing is undone"};
    QTest::newRow("zero byte elsewhere")
        << QByteArray("-O a.pdf -s title b\0c", 21) << QByteArrayList();
}

void TestCommandToolsFound::nothingIsUndoneInDoubt()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArrayList, problems);
    dir().write(text("some.args"), content);
    writeTool("tools/treskdel", "echo undone\n");
    const Outcome outcome = command("undo").run();
    QByteArray errors;
    for (const QByteArray& problem : problems)
        errors += "tresk: some.args: " + problem + "\n";
    QCOMPARE(outcome.errors, errors);
    QCOMPARE(outcome.output, problems.isEmpty() ? QByteArray("undone\n") : QByteArray());
    QCOMPARE(outcome.exitCode, problems.isEmpty() ? 0 : 125);
}

void TestCommandToolsFound::longRequestIsNamed_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("isTooLong");
    // The system ends an argument with a zero byte.
    const int most = 128 * 1024 - 1
        - static_cast<int>(qstrlen("<DelWorkflowStep></DelWorkflowStep>"));
    QTest::newRow("longest") << most << false;
    QTest::newRow("too long") << most + 1 << true;
    QTest::newRow("much too long") << 1000000 << true;
}

void TestCommandToolsFound::longRequestIsNamed()
{
    QFETCH(int, length);
    QFETCH(bool, isTooLong);
    if (isTooLong && isUnderValgrind())
        QSKIP("valgrind ends where a program cannot be started");
    // Bytes count, two for each of these characters.
    const QByteArray name = QByteArray("\xC3\xA4").repeated(length / 2)
        + QByteArray(length % 2, 'x');
    dir().write(text("some.args"), "-O " + name);
    writeTool("tools/treskdel", "printf '%s' \"$1\" | wc -c | tr -d ' '\n");
    const QByteArray size = QByteArray::number(length + 35);
    const Outcome outcome = command("undo").run();
    QCOMPARE(outcome.output, isTooLong ? QByteArray() : size + "\n");
    QCOMPARE(outcome.errors,
             isTooLong ? "tresk: treskdel: " + toolPath("treskdel")
                     + " failed to start\ntresk: treskdel: the request of " + size
                     + " bytes is too long to be handed over\n"
                       : QByteArray());
    QCOMPARE(outcome.exitCode, isTooLong ? 126 : 0);
}

void TestCommandToolsFound::otherFaultsDoNotMatterForUndo()
{
    dir().write(text("some.args"), "-O a.pdf -i b -f embed -s foo \xFF --sync-cwd");
    writeTool("tools/treskdel", "exit 4\n");
    const QByteArray warning = "tresk: some.args: warning: is not UTF-8 throughout; what is not "
                               "was replaced by U+FFFD\n";
    const Outcome outcome = command("undo").run();
    QCOMPARE(outcome.errors, warning);
    QCOMPARE(outcome.exitCode, 4);
    const Outcome verbose = command("undo", {text("-v")}).run();
    QCOMPARE(verbose.errors,
             warning
                 + "tresk: some.args: \"1\" is no valid parameter for option -f\n"
                   "tresk: some.args: first parameter (\xEF\xBF\xBD) of option -s is invalid\n"
                   "tresk: some.args: note: invalid option (--sync-cwd) found\n"
                   "tresk: Programm exited with error code: 4\n");
    QCOMPARE(verbose.exitCode, 4);
}

void TestCommandToolsFound::toolsAreSearchedInOrder()
{
    const QDir dir(path(""));
    QVERIFY(dir.mkpath(text("first/treskadd"))); // a directory is no tool
    QVERIFY(dir.mkpath(text("real/second \xC3\xA4")));
    QVERIFY(QFile::link(path("real/second \xC3\xA4"), path("link")));
    writeTool("real/second \xC3\xA4/treskadd", "echo second\n");
    writeTool("real/treskadd", "echo real\n");
    writeTool("tools/treskadd", "echo tools\n");
    const auto found = [this](const char* searchPaths) {
        QStringList arguments = {text("add"), text("some.args")};
        for (const QString& searchPath : text(searchPaths).split(QLatin1Char('|')))
            arguments += {text("--search-path"), searchPath};
        return Command(arguments).inDirectory(path("")).run().output;
    };
    QCOMPARE(found("first|missing|real/second \xC3\xA4|tools"), QByteArray("second\n"));
    QCOMPARE(found("tools|link"), QByteArray("tools\n"));
    QCOMPARE(found("link|tools"), QByteArray("second\n"));
    // As the system goes: up from where the link leads.
    QCOMPARE(found("link/.."), QByteArray("real\n"));
    QCOMPARE(found("first/../tools/."), QByteArray("tools\n"));
    QCOMPARE(found(path("tools").toUtf8().constData()), QByteArray("tools\n"));
}

void TestCommandToolsFound::searchPathMayBeginWithAColon()
{
    writeTool("tools/treskadd", "echo found\n");
    for (const char* name : {":tools", ":"}) {
        const Outcome outcome = Command({text("add"), text("some.args"), text("--search-path"),
                                         text(name)})
                                    .inDirectory(path(""))
                                    .inShell(text("cp -R tools \"$5\"; exec \"$@\""))
                                    .run();
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.output, QByteArray("found\n"));
    }
}

void TestCommandToolsFound::searchPathMustBeUtf8()
{
    for (const char* name : {"add", "undo"}) {
        const Outcome outcome = Command({text(name), text("some.args")})
                                    .inDirectory(path(""))
                                    .inShell(
                                        text("exec \"$@\" --search-path \"$(printf 'a\\377')\""))
                                    .run();
        QCOMPARE(outcome.errors,
                 QByteArray("tresk: ") + name
                     + ": the directory of --search-path is not UTF-8; see 'tresk " + name
                     + " --help'\n");
        QCOMPARE(outcome.exitCode, 124);
    }
}

void TestCommandToolsFound::ownDirectoryIsSearchedFirst()
{
    QVERIFY(QDir(path("")).mkdir(text("own")));
    QVERIFY(QFile::copy(text(TRESK_COMMAND), path("own/tresk")));
    QVERIFY(QFile::link(path("own/tresk"), path("tools/tresk")));
    writeTool("own/treskadd", "echo own\n");
    writeTool("tools/treskadd", "echo tools\n");
    writeTool("treskadd", "echo current\n");
    const QString run = text("shift; exec %1 \"$@\"");
    // What counts is where the program is, not the link by which it was called.
    for (const char* name : {"own/tresk", "tools/tresk"})
        QCOMPARE(command("add").inShell(run.arg(text(name))).run().output, QByteArray("own\n"));
    QVERIFY(QFile::remove(path("own/treskadd")));
    QCOMPARE(command("add").inShell(run.arg(text("own/tresk"))).run().output,
             QByteArray("tools\n"));
}

void TestCommandToolsFound::scriptIsRunByPython()
{
    if (QStandardPaths::findExecutable(text("python3")).isEmpty())
        QSKIP("There is no python3");
    writeTool("tools/treskadd", "echo executable\n");
    dir().write(text("tools/treskadd.py"),
                "import sys\nprint(sys.argv[1:], sys.stdin.read())\nsys.exit(5)\n");
    dir().write(text("tools/treskdel.py"), "import sys\nprint(sys.argv[1:])\n");
    const QStringList option = {text("--script")};
    const Outcome outcome = command("add", option).run();
    QCOMPARE(outcome.output, QByteArray("['--stdin'] -O some.pdf\n"));
    QCOMPARE(outcome.exitCode, 5);
    QCOMPARE(command("undo", option).run().output,
             QByteArray("['<DelWorkflowStep>some.pdf</DelWorkflowStep>']\n"));
    // Without an interpreter there is nothing to start.
    const Outcome without = command("add", option).with(text("PATH"), path("")).run();
    QCOMPARE(without.errors, "tresk: treskadd: " + toolPath("treskadd.py") + " failed to start\n");
    QCOMPARE(without.exitCode, 126);
}

void TestCommandToolsFound::missingToolIsReported()
{
    const QByteArray places = QFileInfo(text(TRESK_COMMAND)).canonicalPath().toUtf8() + " or tools";
    dir().write(text("treskadd"), "not in the current directory");
    const auto check = [&](const char* name, const QStringList& options, const QByteArray& tool) {
        const Outcome outcome = command(name, options).with(text("PATH"), path("")).run();
        QCOMPARE(outcome.errors,
                 "tresk: " + tool + ": is not in " + places
                     + "; --search-path names another directory\n");
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.exitCode, 127);
    };
    check("add", {}, "treskadd");
    check("undo", {}, "treskdel");
    check("add", {text("--script")}, "treskadd.py");
}

void TestCommandToolsFound::unfitToolIsReported_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("executable");
    QTest::newRow("not executable") << QByteArray("#!/bin/sh\n") << false;
    QTest::newRow("no program") << QByteArray("\x7F"
                                              "nonsense")
                                << true;
    QTest::newRow("no interpreter") << QByteArray("#!/nowhere/sh\n") << true;
}

void TestCommandToolsFound::unfitToolIsReported()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, executable);
    if (executable && isUnderValgrind())
        QSKIP("valgrind ends where a program cannot be started");
    QFile file(dir().write(text("tools/treskdel"), content));
    if (executable)
        QVERIFY(file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeUser));
    const Outcome outcome = command("undo").run();
    QCOMPARE(outcome.errors, "tresk: treskdel: " + toolPath("treskdel") + " failed to start\n");
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 126);
}

void TestCommandToolsFound::argumentFileMustBeReadable()
{
    QVERIFY(QFile::remove(path("some.args")));
    // Also where there is no tool.
    for (const char* name : {"add", "undo"}) {
        const Outcome outcome = command(name).run();
        QCOMPARE(outcome.errors, QByteArray("tresk: some.args: No such file or directory\n"));
        QCOMPARE(outcome.exitCode, 125);
    }
}

QTEST_GUILESS_MAIN(TestCommandToolsFound)
#include "tst_command_tools_found.moc"
