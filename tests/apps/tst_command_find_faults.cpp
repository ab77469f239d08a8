#include "Command.h"
#include "Documents.h"
#include "Search.h"

#include <TestFiles.h>

#include <QFile>
#include <QtTest>

#include <sys/stat.h>

using namespace tresktest;

/// What `tresk find` does about files and directories that it cannot search.
class TestCommandFindFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void specialFilesAreReportedIfNamed();
    void documentsThatAreNotThereAreReported();
    void directoryThatCannotBeRead();
    void fileThatCannotBeRead();
    void standardInputIsRefused();
    void stepsThatShareTooManyFiles();
    void documentTruncatedMeanwhile();
};

namespace {

bool setMode(const TestDir& dir, const char* name, mode_t mode)
{
    return chmod(QFile::encodeName(dir.path(text(name))).constData(), mode) == 0;
}

} // namespace

void TestCommandFindFaults::specialFilesAreReportedIfNamed()
{
    TestDir dir;
    write(dir, "d/a.pdf");
    write(dir, "d/z.pdf");
    dir.makePipe(text("d/pipe"));
    dir.write(text("d/empty"), "");
    QFile huge(dir.path(text("d/huge")));
    QVERIFY(huge.open(QIODevice::WriteOnly) && huge.resize(qint64(1) << 31));
    // Nobody writes to the pipe, so opening it the usual way would never end.
    compare(find(dir, {text("word"), text("d")}).run(), "d/a.pdf\nd/z.pdf\n", "", 0);
    compare(find(dir,
                 {text("word"), text("d/pipe"), text("d/empty"), text("/dev/null"), text("d/huge"),
                  text("d/z.pdf")})
                .run(),
            "d/z.pdf\n",
            "tresk: d/pipe: is not a regular file\n"
            "tresk: d/empty: is empty\n"
            "tresk: /dev/null: is not a regular file\n"
            "tresk: d/huge: has 2 GiB or more, which is not supported\n",
            2);
}

void TestCommandFindFaults::documentsThatAreNotThereAreReported()
{
    TestDir dir;
    write(dir, "a.pdf");
    const QStringList arguments = {text("missing.pdf"), text("a.pdf"), text("a.pdf/x"), text("")};
    compare(find(dir, QStringList{text("word")} + arguments).run(), "a.pdf\n",
            "tresk: missing.pdf: No such file or directory\n"
            "tresk: a.pdf/x: Not a directory\n"
            "tresk: '': No such file or directory\n",
            2);
}

void TestCommandFindFaults::directoryThatCannotBeRead()
{
    TestDir dir;
    for (const char* name : {"d/a.pdf", "d/closed/b.pdf", "d/listed/c.pdf", "d/z.pdf"})
        write(dir, name);
    QVERIFY(setMode(dir, "", 0755) && setMode(dir, "d/closed", 0)
            && setMode(dir, "d/listed", 0444));
    Command command = find(dir, {text("word"), text("d")});
    const bool canBeRun = command.asOrdinaryUser();
    const Outcome outcome = canBeRun ? command.run() : Outcome();
    QVERIFY(setMode(dir, "d/closed", 0755) && setMode(dir, "d/listed", 0755)); // to be removed
    if (!canBeRun)
        QSKIP("the command cannot be run as another user here");
    // The second one only tells the names of what is in it.
    compare(outcome, "d/a.pdf\nd/z.pdf\n",
            "tresk: d/closed: Permission denied\n"
            "tresk: d/listed/c.pdf: Permission denied\n",
            2);
}

void TestCommandFindFaults::fileThatCannotBeRead()
{
    TestDir dir;
    for (const char* name : {"d/a.pdf", "d/closed.pdf", "d/z.pdf"})
        write(dir, name);
    QVERIFY(setMode(dir, "", 0755) && setMode(dir, "d/closed.pdf", 0));
    Command command = find(dir, {text("word"), text("d")});
    if (!command.asOrdinaryUser())
        QSKIP("the command cannot be run as another user here");
    compare(command.run(), "d/a.pdf\nd/z.pdf\n", "tresk: d/closed.pdf: Permission denied\n", 2);
}

void TestCommandFindFaults::standardInputIsRefused()
{
    TestDir dir;
    write(dir, "-");
    compare(find(dir, {text("word"), text("-")}).run(), "",
            "tresk: -: standard input is not supported (./- is a file of that name)\n", 2);
    compare(find(dir, {text("word"), text("./-")}).run(), "./-\n", "", 0);
    compare(find(dir, {text("word"), text(".")}).run(), "./-\n", "", 0);
}

void TestCommandFindFaults::stepsThatShareTooManyFiles()
{
    // More than a million places of files in steps, each of which would be a record.
    const int count = 1500;
    DocumentWriter writer("%PDF-1.4\n");
    writer.writeHeader();
    writer.endLine();
    const int start = writer.position();
    for (int i = 0; i < count; ++i) {
        SectionSpec spec = step(text("word"), {FileSpec::plain(text("f"), "x")});
        spec.regionStart = start;
        writer.writeSection(spec);
    }
    TestDir dir;
    dir.write(text("a.pdf"), writer.bytes());
    write(dir, "b.pdf");
    compare(find(dir, {text("word"), text(".")}).run(), "./b.pdf\n",
            "tresk: ./a.pdf: its steps share too many files to be searched\n", 2);
}

void TestCommandFindFaults::documentTruncatedMeanwhile()
{
    TestDir dir;
    QVector<SectionSpec> steps;
    for (int i = 0; i < 500; ++i)
        steps += step(text("word"), {FileSpec::plain(text("f"), "x")});
    const QByteArray document = documentWith(steps);
    // Shortens the document and mends it again, time after time, while the command reads nothing
    // else: often between the beginning and the end of a search.
    const QString script = text("\"$@\" & process=$!\n"
                                "change='truncate -s 20000 shrinking.pdf'\n"
                                "back='cp whole.pdf shrinking.pdf'\n"
                                "while [ -e /proc/$process/exe ]; do\n"
                                "  kill -STOP $process; $change; kill -CONT $process\n"
                                "  done=$change; change=$back; back=$done\n"
                                "  sleep 0.005\n"
                                "done 2>/dev/null\n"
                                "wait $process");
    dir.write(text("whole.pdf"), document);
    dir.write(text("shrinking.pdf"), document);
    write(dir, "z.pdf");
    QStringList arguments = {text("word")};
    for (int i = 0; i < 400; ++i)
        arguments += text("shrinking.pdf");
    const Outcome outcome = find(dir, arguments + QStringList{text("z.pdf")}).inShell(script).run();
    QVERIFY2(outcome.errors.contains(
                 "tresk: shrinking.pdf: has become shorter while it was read; try again\n"),
             outcome.errors.left(500).constData());
    QVERIFY(outcome.output.endsWith("\nz.pdf\n"));
    QCOMPARE(outcome.exitCode, 2);
}

QTEST_GUILESS_MAIN(TestCommandFindFaults)
#include "tst_command_find_faults.moc"
