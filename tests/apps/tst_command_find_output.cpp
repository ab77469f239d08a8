#include "Command.h"
#include "Documents.h"
#include "SummaryXml.h"

#include <TestFiles.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QtTest>

using namespace tresktest;

/// What `tresk find` prints of the documents that it has found.
class TestCommandFindOutput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void bindingsNameStepsAndFiles_data();
    void bindingsNameStepsAndFiles();
    void bindingsAreSortedByName();
    void textsOfMarkersLoseTheirEscapes();
    void countStandsForThePaths_data();
    void countStandsForThePaths();
    void jsonIsOneObject();
    void jsonHasStoredTexts();
    void jsonOfNothingFound();
    void jsonLinesAreObjects();
    void optionsExcludeEachOther_data();
    void optionsExcludeEachOther();
    void helpSaysHow();
    void outputThatCannotBeWritten();
    void readerThatHasGoneAway();
    void progressNeedsASecond();
    void progressIsShownUnlessQuiet_data();
    void progressIsShownUnlessQuiet();

private:
    Command find(const QStringList& arguments) const;
    Outcome searchLong(const QStringList& options) const;

    TestDir m_dir;
};

namespace {

/// A document of two steps: one without a summary, and one with an input and an output.
QByteArray plotDocument()
{
    const FileSpec data = FileSpec::flate(text("data.csv"), QByteArray(5000, '1'));
    const FileSpec plot = FileSpec::plain(text("plot.png"), "picture");
    const QByteArray content = element("Title", "Draw the plot") + element("Tool", "plotter")
        + fileElement("InFile", data) + fileElement("OutFile", plot)
        + fileElement("OutFile", FileSpec::plain(text("plot.log"), "done"), false);
    return documentWith(QVector<SectionSpec>{
        step(text("Measure [2]\nagain"), {FileSpec::plain(text("raw]\n.txt"), "raw")}),
        step(text("marker"), {data, plot, summaryWith(content)})});
}

} // namespace

void TestCommandFindOutput::initTestCase()
{
    m_dir.write(text("other.pdf"), documentWith(QVector<SectionSpec>{step(text("other"))}));
    m_dir.write(text("plot.pdf"), plotDocument());
}

Command TestCommandFindOutput::find(const QStringList& arguments) const
{
    return Command(QStringList{text("find")} + arguments).inDirectory(m_dir.path(QString()));
}

void TestCommandFindOutput::bindingsNameStepsAndFiles_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QByteArray>("bindings");
    const auto row = [](const char* query, const char* bindings) {
        QTest::newRow(query) << text(query) << QByteArray(bindings);
    };
    row("plotter", "");
    row(":tool == plotter", "");
    row("s:tool == plotter", "    s: step 0 \"Draw the plot\"\n");
    row("f:filename == plot.png", "    f: file 2 \"plot.png\" of step 0 \"Draw the plot\"\n");
    row("f:filename == plot.log", "    f: file - \"plot.log\" of step 0 \"Draw the plot\"\n");
    row("draft:isinfile", "    draft: file 1 \"data.csv\" of step 0 \"Draw the plot\"\n");
}

void TestCommandFindOutput::bindingsNameStepsAndFiles()
{
    QFETCH(QString, query);
    QFETCH(QByteArray, bindings);
    const Outcome outcome = find({query, text("--bindings"), text(".")}).run();
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, "./plot.pdf\n" + bindings);
    QCOMPARE(outcome.exitCode, 0);
    // Not shown unless asked for.
    QCOMPARE(find({query, text(".")}).run().output, QByteArray("./plot.pdf\n"));
}

void TestCommandFindOutput::bindingsAreSortedByName()
{
    const QString query = text("z:isinfile && a:isoutfile && z:parentid == M:tagid && M:iswfs");
    QCOMPARE(find({query, text("--bindings"), text("plot.pdf")}).run().output,
             QByteArray("plot.pdf\n"
                        "    M: step 0 \"Draw the plot\"\n"
                        "    a: file 2 \"plot.png\" of step 0 \"Draw the plot\"\n"
                        "    z: file 1 \"data.csv\" of step 0 \"Draw the plot\"\n"));
}

void TestCommandFindOutput::textsOfMarkersLoseTheirEscapes()
{
    const Outcome outcome = find({text("f:filename %contains raw && s:title %contains measure"),
                                  text("--bindings"), text("plot.pdf")})
                                .run();
    QCOMPARE(outcome.output,
             QByteArray("plot.pdf\n"
                        "    f: file 0 \"raw]\\n.txt\" of step 1 \"Measure [2]\\nagain\"\n"
                        "    s: step 1 \"Measure [2]\\nagain\"\n"));
}

void TestCommandFindOutput::countStandsForThePaths_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QByteArray>("count");
    QTest::newRow("none") << text("nothing-of-the-kind") << QByteArray("0\n");
    QTest::newRow("one") << text("plotter") << QByteArray("1\n");
    QTest::newRow("all") << text(":iswfs") << QByteArray("2\n");
}

void TestCommandFindOutput::countStandsForThePaths()
{
    QFETCH(QString, query);
    QFETCH(QByteArray, count);
    QCOMPARE(find({text("--count"), query, text(".")}).run().output, count);
}

void TestCommandFindOutput::jsonIsOneObject()
{
    const QString query = text("s:tool == plotter && f:isoutfile && g:filename == plot.log");
    for (const QStringList& options :
         {QStringList{text("--json")}, QStringList{text("--json"), text("--bindings")}}) {
        const Outcome outcome = find(options + QStringList{query, text(".")}).run();
        QCOMPARE(outcome.errors, QByteArray());
        const QJsonObject stepOfAll{{text("step"), 0}, {text("title"), text("Draw the plot")}};
        QJsonObject s = stepOfAll;
        s.insert(text("key"), text("wfs:1"));
        QJsonObject f = stepOfAll;
        f.insert(text("key"), text("file:1:1"));
        f.insert(text("file"), 2);
        f.insert(text("name"), text("plot.png"));
        QJsonObject g = stepOfAll;
        g.insert(text("key"), text("file:1:2"));
        g.insert(text("file"), QJsonValue::Null);
        g.insert(text("name"), text("plot.log"));
        const QJsonObject bindings{{text("s"), s}, {text("f"), f}, {text("g"), g}};
        const QJsonObject document{{text("document"), text("./plot.pdf")},
                                   {text("bindings"), bindings}};
        const QJsonObject expected{{text("schema"), text("tresk-find/1")},
                                   {text("query"), query},
                                   {text("count"), 1},
                                   {text("documents"), QJsonArray{document}}};
        QCOMPARE(jsonObject(outcome.output), expected);
    }
}

void TestCommandFindOutput::jsonHasStoredTexts()
{
    const QJsonObject object = jsonObject(
        find({text("--json"), text("f:filename %contains raw"), text("plot.pdf")}).run().output);
    const QJsonObject f = object.value(text("documents"))
                              .toArray()
                              .first()
                              .toObject()
                              .value(text("bindings"))
                              .toObject()
                              .value(text("f"))
                              .toObject();
    QCOMPARE(f.value(text("name")).toString(), text("raw\\]\\n.txt"));
    QCOMPARE(f.value(text("nameUnescaped")).toString(), text("raw]\n.txt"));
    QCOMPARE(f.value(text("title")).toString(), text("Measure [2\\]\\nagain"));
    QCOMPARE(f.value(text("titleUnescaped")).toString(), text("Measure [2]\nagain"));
}

void TestCommandFindOutput::jsonOfNothingFound()
{
    const QJsonObject object = jsonObject(
        find({text("--json"), text("nothing-of-the-kind"), text(".")}).run().output);
    QCOMPARE(object,
             (QJsonObject{{text("schema"), text("tresk-find/1")},
                          {text("query"), text("nothing-of-the-kind")},
                          {text("count"), 0},
                          {text("documents"), QJsonArray()}}));
    QCOMPARE(find({text("--jsonl"), text("nothing-of-the-kind"), text(".")}).run().output,
             QByteArray());
}

void TestCommandFindOutput::jsonLinesAreObjects()
{
    QCOMPARE(find({text("--jsonl"), text("s:iswfs"), text(".")}).run().output,
             QByteArray("{\"bindings\":{\"s\":{\"key\":\"wfs:0\",\"step\":0,\"title\":\"other\"}},"
                        "\"document\":\"./other.pdf\",\"schema\":\"tresk-find-line/1\"}\n"
                        "{\"bindings\":{\"s\":{\"key\":\"wfs:0\",\"step\":1,"
                        "\"title\":\"Measure [2\\\\]\\\\nagain\","
                        "\"titleUnescaped\":\"Measure [2]\\nagain\"}},"
                        "\"document\":\"./plot.pdf\",\"schema\":\"tresk-find-line/1\"}\n"));
    QCOMPARE(find({text("--jsonl"), text("plotter"), text(".")}).run().output,
             QByteArray("{\"bindings\":{},\"document\":\"./plot.pdf\","
                        "\"schema\":\"tresk-find-line/1\"}\n"));
}

void TestCommandFindOutput::optionsExcludeEachOther_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("excluded");
    const auto row = [](const char* options, const char* excluded) {
        QTest::newRow(options) << text(options).split(QLatin1Char(' ')) << QByteArray(excluded);
    };
    row("--json --jsonl", "--json and --jsonl");
    row("--jsonl --json", "--json and --jsonl");
    row("--count --json", "--json and --count");
    row("--json -0", "--json and --null");
    row("--count --jsonl", "--jsonl and --count");
    row("-0 --jsonl", "--jsonl and --null");
    row("--bindings --count", "--count and --bindings");
    row("--bindings --null", "--null and --bindings");
    row("-0 --count", "--null and --count");
}

void TestCommandFindOutput::optionsExcludeEachOther()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, excluded);
    const Outcome outcome = find(options + QStringList{text("plotter"), text(".")}).run();
    QCOMPARE(outcome.errors,
             "tresk: find: " + excluded + " exclude each other; see 'tresk find --help'\n");
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandFindOutput::helpSaysHow()
{
    const QByteArray help = find({text("--help")}).run().output;
    QVERIFY(help.startsWith("Usage: tresk find [OPTION]... QUERY DOC|DIR...\n"));
    for (const char* part : {"-0, --null", "--count", "--bindings", "--json ", "--jsonl",
                             "0    a document was found\n", "1    no document was found\n",
                             "2    trouble: wrong usage or query, "})
        QVERIFY2(help.contains(part), part);
    // The example is a query that is right.
    const QString example = text("f:filename %matches '*.csv' && s:user == 'asato'");
    QVERIFY(help.contains("  tresk find \"" + example.toUtf8() + "\" *.pdf\n"));
    const Outcome outcome = find({example, text(".")}).run();
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 1);
}

void TestCommandFindOutput::outputThatCannotBeWritten()
{
    for (const char* option : {"--null", "--count", "--json", "--jsonl"}) {
        const Outcome outcome = find({text(option), text("plotter"), text(".")})
                                    .inShell(text("\"$@\" >/dev/full"))
                                    .run();
        QCOMPARE(outcome.errors, QByteArray("tresk: standard output: No space left on device\n"));
        QCOMPARE(outcome.exitCode, 2);
    }
}

void TestCommandFindOutput::readerThatHasGoneAway()
{
    QStringList arguments = {text("plotter")};
    for (int i = 0; i < 500; ++i)
        arguments += text("./") + QString(500, QLatin1Char('/')) + text("plot.pdf");
    const QString script = text("{ \"$@\"; echo $? >&2; } | head -c 1");
    QCOMPARE(find(arguments).inShell(script).run().errors, QByteArray("141\n"));
}

/// Searches for more than a second: stops the command meanwhile.
Outcome TestCommandFindOutput::searchLong(const QStringList& options) const
{
    const QString script = text("\"$@\" & process=$!\n"
                                "while [ -e /proc/$process/exe ]; do\n"
                                "  ls -l /proc/$process/fd | grep -q plot.pdf || continue\n"
                                "  kill -STOP $process; sleep 1.05; kill -CONT $process\n"
                                "  break\n"
                                "done 2>/dev/null\n"
                                "wait $process");
    QStringList arguments = options + QStringList{text("--count"), text("plotter")};
    for (int i = 0; i < 2000; ++i)
        arguments += text("plot.pdf");
    return find(arguments).inShell(script).runOnTerminal(false, true);
}

void TestCommandFindOutput::progressNeedsASecond()
{
    const Outcome outcome = find({text("plotter"), text(".")}).runOnTerminal(false, true);
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, QByteArray("./plot.pdf\n"));
}

void TestCommandFindOutput::progressIsShownUnlessQuiet_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("shown");
    QTest::newRow("by itself") << QStringList() << true;
    QTest::newRow("quiet") << QStringList{text("-q")} << false;
}

void TestCommandFindOutput::progressIsShownUnlessQuiet()
{
    QFETCH(QStringList, options);
    QFETCH(bool, shown);
    const Outcome outcome = searchLong(options);
    QCOMPARE(outcome.output, QByteArray("2000\n"));
    if (!shown) {
        QCOMPARE(outcome.errors, QByteArray());
        return;
    }
    const QString lines = QString::fromUtf8(outcome.errors);
    const QRegularExpression line(text("^(\r\x1b\\[K[0-9]+ files? searched, [0-9]+ found: "
                                       "plot\\.pdf)+\r\x1b\\[K$"));
    QVERIFY2(line.match(lines).hasMatch(), qPrintable(lines));
}

QTEST_GUILESS_MAIN(TestCommandFindOutput)
#include "tst_command_find_output.moc"
