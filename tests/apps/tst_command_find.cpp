#include "Command.h"
#include "Documents.h"
#include "Search.h"

#include <TestFiles.h>

#include <QDir>
#include <QFile>
#include <QtTest>

using namespace tresktest;

/// Which files `tresk find` searches, and in which order.
class TestCommandFind : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pathsComeSorted();
    void namedPathsComeInTheirOrder();
    void directoriesAreNamedInManyWays_data();
    void directoriesAreNamedInManyWays();
    void linksAreFollowedIfNamed();
    void filesWithoutHistoryArePassedOver();
    void namesMayBeAnyBytes();
    void namesAreMadePrintable();
    void filesWithoutAStepAreSearched();
    void exitCodeTellsWhatWasFound_data();
    void exitCodeTellsWhatWasFound();
};

void TestCommandFind::pathsComeSorted()
{
    TestDir dir;
    const QList<const char*> names = {"d/b.pdf", "d/a/z.pdf",   "d/a/y/x.pdf",     "d/a.pdf",
                                      "d/B.pdf", "d/a-1.pdf",   "d/.hidden/h.pdf", "d/10.pdf",
                                      "d/9.pdf", "d/\u00e4.pdf"};
    for (const char* name : names)
        write(dir, name);
    // As if all paths were sorted by their bytes, directories or not.
    QCOMPARE(find(dir, {text("word"), text("d")}).run().output,
             QByteArray("d/.hidden/h.pdf\nd/10.pdf\nd/9.pdf\nd/B.pdf\nd/a-1.pdf\nd/a.pdf\n"
                        "d/a/y/x.pdf\nd/a/z.pdf\nd/b.pdf\nd/\u00e4.pdf\n"));
}

void TestCommandFind::namedPathsComeInTheirOrder()
{
    TestDir dir;
    for (const char* name : {"d/b.pdf", "d/a.pdf", "c.pdf", "e.pdf"})
        write(dir, name);
    const QStringList paths = {text("e.pdf"), text("d"), text("c.pdf"), text("e.pdf")};
    compare(find(dir, QStringList{text("word")} + paths).run(),
            "e.pdf\nd/a.pdf\nd/b.pdf\nc.pdf\ne.pdf\n", "", 0);
}

void TestCommandFind::directoriesAreNamedInManyWays_data()
{
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QByteArray>("output");
    QTest::newRow("plain") << text("d") << QByteArray("d/a.pdf\n");
    QTest::newRow("slash") << text("d/") << QByteArray("d/a.pdf\n");
    QTest::newRow("dot") << text(".") << QByteArray("./d/a.pdf\n");
    QTest::newRow("up") << text("d/../d") << QByteArray("d/../d/a.pdf\n");
}

void TestCommandFind::directoriesAreNamedInManyWays()
{
    QFETCH(QString, directory);
    QFETCH(QByteArray, output);
    TestDir dir;
    write(dir, "d/a.pdf");
    compare(find(dir, {text("word"), directory}).run(), output, "", 0);
}

void TestCommandFind::linksAreFollowedIfNamed()
{
    TestDir dir;
    write(dir, "other/a.pdf");
    write(dir, "d/b.pdf");
    QVERIFY(QFile::link(dir.path(text("other")), dir.path(text("d/directory"))));
    QVERIFY(QFile::link(dir.path(text("d")), dir.path(text("d/loop"))));
    QVERIFY(QFile::link(dir.path(text("other/a.pdf")), dir.path(text("d/file.pdf"))));
    QVERIFY(QFile::link(dir.path(text("nowhere")), dir.path(text("d/dangling.pdf"))));
    compare(find(dir, {text("word"), text("d")}).run(), "d/b.pdf\n", "", 0);
    compare(find(dir, {text("word"), text("d/directory"), text("d/file.pdf")}).run(),
            "d/directory/a.pdf\nd/file.pdf\n", "", 0);
    compare(find(dir, {text("word"), text("d/dangling.pdf")}).run(), "",
            "tresk: d/dangling.pdf: No such file or directory\n", 2);
}

void TestCommandFind::filesWithoutHistoryArePassedOver()
{
    TestDir dir;
    write(dir, "d/a.pdf");
    dir.write(text("d/plain.pdf"), "%PDF-1.4\nword\n%%EOF\n");
    dir.write(text("d/word.txt"), "word");
    dir.write(text("d/header only"), "%PDF-1.4\n" + headerLine() + "\nword\n");
    dir.write(text("d/binary"), noise(100000));
    dir.write(text("d/empty"), "");
    compare(find(dir, {text("word"), text("d")}).run(), "d/a.pdf\n", "", 0);
    // Neither do they disturb if a pattern of the shell names them.
    const QStringList named = {text("word"), text("d/plain.pdf"), text("d/word.txt"),
                               text("d/header only"), text("d/binary")};
    compare(find(dir, named).run(), "", "", 1);
}

void TestCommandFind::namesMayBeAnyBytes()
{
    TestDir dir;
    write(dir, "a.pdf");
    const QString script = text("mkdir \"$(printf 'd\\377')\" && "
                                "cp a.pdf \"$(printf 'd\\377/b\\200.pdf')\" && exec \"$@\"");
    compare(find(dir, {text("word"), text(".")}).inShell(script).run(),
            "./a.pdf\n./d\\xff/b\\x80.pdf\n", "", 0);
    QCOMPARE(find(dir, {text("-0"), text("word"), text(".")}).run().output,
             QByteArray("./a.pdf\0./d\xff/b\x80.pdf\0", 20));
    const QString named = text("exec \"$@\" \"$(printf 'd\\377')\"");
    compare(find(dir, {text("word")}).inShell(named).run(), "d\\xff/b\\x80.pdf\n", "", 0);
    const QString missing = text("exec \"$@\" \"$(printf 'e\\377')\"");
    compare(find(dir, {text("word")}).inShell(missing).run(), "",
            "tresk: e\\xff: No such file or directory\n", 2);
    // Qt cannot remove it.
    QCOMPARE(find(dir, {}).inShell(text("rm -r d*")).run().exitCode, 0);
}

void TestCommandFind::namesAreMadePrintable()
{
    TestDir dir;
    write(dir, "a\nb\x1b[2J\u202e.pdf");
    compare(find(dir, {text("word"), text(".")}).run(), "./a\\nb\\x1b[2J\\u202e.pdf\n", "", 0);
    // Scripts get it as it is.
    for (const char* option : {"-0", "--null"}) {
        QCOMPARE(find(dir, {text(option), text("word"), text(".")}).run().output,
                 QByteArray("./a\nb\x1b[2J\u202e.pdf") + '\0');
    }
}

void TestCommandFind::filesWithoutAStepAreSearched()
{
    TestDir dir;
    DocumentWriter writer("%PDF-1.4\n");
    writer.writeHeader();
    writer.endLine();
    writer.writeFile(FileSpec::plain(text("lonely.txt"), "x"));
    dir.write(text("a.pdf"), writer.bytes());
    compare(find(dir, {text("lonely"), text(".")}).run(), "./a.pdf\n", "", 0);
    compare(find(dir, {text("f:filename == lonely.txt"), text("--bindings"), text(".")}).run(),
            "./a.pdf\n    f: file 0 \"lonely.txt\" of the files without a step\n", "", 0);
    compare(find(dir, {text("s:iswfs"), text("--bindings"), text(".")}).run(),
            "./a.pdf\n    s: the files without a step\n", "", 0);
    // The last summary is theirs also where there are steps.
    writer.writeSection(step(text("first"), {FileSpec::plain(text("kept.txt"), "y")}));
    dir.write(text("a.pdf"), writer.bytes());
    const QString query = text("a:filename == kept.txt && b:filename == lonely.txt");
    compare(find(dir, {query, text("--bindings"), text(".")}).run(),
            "./a.pdf\n"
            "    a: file 1 \"kept.txt\" of step 0 \"first\"\n"
            "    b: file 0 \"lonely.txt\" of the files without a step\n",
            "", 0);
    compare(find(dir, {text("b:filename == lonely.txt"), text("--jsonl"), text(".")}).run(),
            "{\"bindings\":{\"b\":{\"file\":0,\"key\":\"file:1:0\",\"name\":\"lonely.txt\","
            "\"step\":null,\"title\":null}},\"document\":\"./a.pdf\","
            "\"schema\":\"tresk-find-line/1\"}\n",
            "", 0);
}

void TestCommandFind::exitCodeTellsWhatWasFound_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    const auto row = [](const char* arguments, int exitCode) {
        QTest::newRow(arguments) << text(arguments).split(QLatin1Char(' ')) << exitCode;
    };
    row("word a.pdf", 0);
    row("word b.pdf", 1);
    row("word a.pdf b.pdf", 0);
    row("word b.pdf a.pdf", 0);
    row("word empty-directory", 1);
    row("word a.pdf missing.pdf", 2);
    row("word missing.pdf a.pdf", 2);
    row("word b.pdf missing.pdf", 2);
    row("word( a.pdf", 2);
    row("--count word b.pdf", 1);
    row("--count word a.pdf", 0);
    row("--json word b.pdf", 1);
    row("--json word a.pdf missing.pdf", 2);
    row("--jsonl word b.pdf", 1);
    row("-0 word b.pdf", 1);
    row("-q word b.pdf", 1);
    row("-q word a.pdf", 0);
    row("-q word missing.pdf", 2);
    row("-- word a.pdf", 0);
}

void TestCommandFind::exitCodeTellsWhatWasFound()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    TestDir dir;
    write(dir, "a.pdf");
    write(dir, "b.pdf", "another");
    QVERIFY(QDir().mkdir(dir.path(text("empty-directory"))));
    const Outcome outcome = find(dir, arguments).run();
    QCOMPARE(outcome.exitCode, exitCode);
    // Trouble never goes without a message, whatever was asked for.
    QCOMPARE(outcome.errors.isEmpty(), exitCode != 2);
}

QTEST_GUILESS_MAIN(TestCommandFind)
#include "tst_command_find.moc"
