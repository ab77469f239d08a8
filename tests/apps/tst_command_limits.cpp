#include "Command.h"
#include "Documents.h"
#include "Search.h"
#include "SummaryXml.h"
#include "Watched.h"

#include <TestFiles.h>

#include <QDir>
#include <QtTest>

using namespace tresktest;

Q_DECLARE_METATYPE(tresktest::FileSpec)

/// Documents that unpack to much more than they are, and the limits of the command.
class TestCommandLimits : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void wrongValues_data();
    void wrongValues();
    void sizes_data();
    void sizes();
    void levels();
    void documents();
    void everyDocumentHoldsSeveral();
    void documentThatUnpacksToMore_data();
    void documentThatUnpacksToMore();
    void largeSummary_data();
    void largeSummary();
    void unreadableSummary();
    void damagedDocuments();
    void summaryThatNamesManyFiles();
    void oneSummaryForManySteps();
    void namesOfOmittedDocumentsAreNotMissing();
    void diffHasTheSameLimits();
    void findReportsDamage_data();
    void findReportsDamage();

private:
    Outcome run(const QStringList& arguments, const QByteArray& document) const;

    TestDir m_dir;
};

namespace {

const qint64 mebibyte = qint64(1024) * 1024;

/// An input file that is embedded, of the size that its marker says.
QByteArray named(const FileSpec& file)
{
    const QByteArray size = file.raw.value("filesize", QByteArray::number(file.content.size()));
    return element("InFile",
                   element("Filename", file.filename.toUtf8()) + element("Embedded", "1")
                       + element("UncompressedSize", size)
                       + element("UncompressedMD5", md5Hex(file.content)));
}

/// A step with a summary that names these files.
SectionSpec stepThatEmbeds(const char* title, const QVector<FileSpec>& files)
{
    QByteArray content = element("Title", title);
    for (const FileSpec& file : files)
        content += named(file);
    return toldStep(content, files);
}

/// A document in so many others, each in the next.
QByteArray nested(int levels)
{
    QByteArray result = documentWith({stepThatEmbeds("innermost", {})});
    for (int i = 0; i < levels; ++i)
        result = documentWith(
            {stepThatEmbeds("level", {FileSpec::plain(text("x.tresk"), result)})});
    return result;
}

/// A summary document that unpacks to @p size bytes, a multiple of 1 MiB.
FileSpec summaryOfZeros(qint64 size)
{
    return fileOfZeros(text("ws_summary.xml"), size);
}

/// @p arguments run with much less memory than the documents here would take.
Command withLittleMemory(const QStringList& arguments)
{
    Command command(arguments);
    if (!isWatched()) // what watches takes any amount of addresses
        command.inShell(text("ulimit -v 1000000; exec \"$@\""));
    return command;
}

QByteArray leftOut(const QByteArray& what, const QByteArray& reason)
{
    return "tresk: a.pdf: " + what + " left out, since " + reason + '\n';
}

} // namespace

/// Runs the command with @p arguments and the document, which is called a.pdf.
Outcome TestCommandLimits::run(const QStringList& arguments, const QByteArray& document) const
{
    m_dir.write(text("a.pdf"), document);
    const QString temporary = m_dir.path(text("temporary"));
    QDir().mkpath(temporary);
    Outcome outcome = withLittleMemory(arguments + QStringList{text("a.pdf")})
                          .inDirectory(m_dir.path(QString()))
                          .with(text("TMPDIR"), temporary)
                          .run();
    if (!entriesOf(temporary).isEmpty())
        outcome.errors += "temporary files are left\n";
    return outcome;
}

void TestCommandLimits::wrongValues_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("problem");
    const auto row = [](const char* command, const char* option, const char* problem) {
        QTest::newRow((QByteArray(command) + option).constData())
            << QStringList{text(command), text(option)} << QByteArray(problem);
    };
    const char* const depth = "--max-depth takes a number from 0 to 200";
    for (const char* option :
         {"--max-depth=201", "--max-depth=-1", "--max-depth=", "--max-depth=x", "--max-depth=1.5",
          "--max-depth=99999999999", "--max-depth=+5", "--max-depth= 5"})
        row("tree", option, depth);
    row("diff", "--max-depth=201", depth);
    const char* const documents = "--max-documents takes a number from 0 to 1000000";
    row("tree", "--max-documents=1000001", documents);
    row("diff", "--max-documents=-5", documents);
    row("diff", "--max-documents=+5", documents);
    const char* const size =
        "--max-unpacked takes a number of bytes, or one with KiB, MiB or GiB behind it";
    for (const char* option :
         {"--max-unpacked=", "--max-unpacked=KiB", "--max-unpacked=-1", "--max-unpacked=+1",
          "--max-unpacked= 1", "--max-unpacked=1 KiB", "--max-unpacked=1KB", "--max-unpacked=1kib",
          "--max-unpacked=1.5MiB", "--max-unpacked=1KiBMiB", "--max-unpacked=0x10",
          "--max-unpacked=8589934592GiB", "--max-unpacked=9223372036854775808"})
        row("tree", option, size);
    row("diff", "--max-unpacked=x", size);
    row("find", "--max-unpacked=1 MiB", size);
}

void TestCommandLimits::wrongValues()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, problem);
    const QByteArray command = arguments.first().toUtf8();
    const Outcome outcome = runTresk(
        arguments + QStringList{text("a.pdf"), text("b.pdf")}.mid(command == "tree" ? 1 : 0));
    QCOMPARE(outcome.errors,
             "tresk: " + command + ": " + problem + "; see 'tresk " + command + " --help'\n");
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandLimits::sizes_data()
{
    QTest::addColumn<QString>("size");
    QTest::addColumn<bool>("suffices");
    QTest::newRow("bytes") << text("1048577") << true;
    QTest::newRow("as many") << text("1048576") << true;
    QTest::newRow("one less") << text("1048575") << false;
    QTest::newRow("none") << text("0") << false;
    QTest::newRow("zeros in front") << text("0001048576") << true;
    QTest::newRow("KiB") << text("1024KiB") << true;
    QTest::newRow("less KiB") << text("1023KiB") << false;
    QTest::newRow("MiB") << text("1MiB") << true;
    QTest::newRow("GiB") << text("1GiB") << true;
    QTest::newRow("no GiB") << text("0GiB") << false;
    QTest::newRow("most bytes") << text("9223372036854775807") << true;
    QTest::newRow("most GiB") << text("8589934591GiB") << true;
}

void TestCommandLimits::sizes()
{
    QFETCH(QString, size);
    QFETCH(bool, suffices);
    const QByteArray document = documentWith({step(text("word"), {summaryOfZeros(mebibyte)})});
    const Outcome outcome = run({text("find"), text("--max-unpacked"), size, text("word")},
                                document);
    QCOMPARE(outcome.exitCode, suffices ? 1 : 2);
}

void TestCommandLimits::levels()
{
    const QByteArray document = nested(3);
    const auto outcome = [&](const char* depth) {
        return run({text("tree"), text("--max-depth"), text(depth)}, document);
    };
    compare(
        outcome("0"), "a.pdf\n└─ 0  level\n",
        leftOut("1 embedded document is", "none is followed deeper than 0 levels (--max-depth)"),
        2);
    compare(outcome("1"), "a.pdf\n└─ 0  level\n   └─ x.tresk\n      └─ 1  level\n",
            leftOut("1 embedded document is", "none is followed deeper than 1 level (--max-depth)"),
            2);
    QCOMPARE(outcome("2").exitCode, 2);
    QCOMPARE(outcome("3").exitCode, 0);

    // More than usual, as far as it goes.
    const QByteArray deep = nested(201);
    const Outcome usual = run({text("tree")}, deep);
    QCOMPARE(usual.output.count("x.tresk"), 100);
    QCOMPARE(usual.exitCode, 2);
    for (const char* form : {"--json", "--dot", "--quiet"}) {
        const Outcome most = run({text("tree"), text("--max-depth=200"), text(form)}, deep);
        QCOMPARE(most.output.count("x.tresk"), 200);
        QCOMPARE(most.errors,
                 leftOut("1 embedded document is",
                         "none is followed deeper than 200 levels (--max-depth)"));
    }
}

void TestCommandLimits::documents()
{
    const QVector<FileSpec> files = {embeddedDocument("a.tresk", {stepThatEmbeds("in a", {})}),
                                     embeddedDocument("b.tresk", {stepThatEmbeds("in b", {})}),
                                     embeddedDocument("c.tresk", {stepThatEmbeds("in c", {})})};
    const QByteArray bytes = documentWith({stepThatEmbeds("all", files)});
    compare(run({text("tree"), text("--max-documents=1")}, bytes),
            "a.pdf\n└─ 0  all\n   └─ a.tresk\n      └─ 1  in a\n",
            leftOut("2 embedded documents are", "no more than 1 are followed (--max-documents)"),
            2);
    QCOMPARE(run({text("tree"), text("--max-documents=3")}, bytes).exitCode, 0);
}

void TestCommandLimits::everyDocumentHoldsSeveral()
{
    // 4 to the power of 12 documents
    FileSpec file = embeddedDocument("x.tresk", {stepThatEmbeds("innermost", {})});
    for (int level = 0; level < 12; ++level)
        file = embeddedDocument("x.tresk", {stepThatEmbeds("four", {file, file, file, file})});
    const QByteArray bytes = documentWith({stepThatEmbeds("outermost", {file})});
    const Outcome outcome = run({text("tree"), text("--max-documents=50")}, bytes);
    QCOMPARE(outcome.output.count("x.tresk"), 50);
    QVERIFY2(outcome.errors.endsWith("no more than 50 are followed (--max-documents)\n"),
             outcome.errors.constData());
    QCOMPARE(outcome.errors.count('\n'), 1);
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandLimits::documentThatUnpacksToMore_data()
{
    QTest::addColumn<FileSpec>("file");
    QTest::newRow("as its marker says") << fileOfZeros(text("x.tresk"), 1024 * mebibyte);
    QTest::newRow("though its marker says less")
        << fileOfZeros(text("x.tresk"), 1024 * mebibyte).with("filesize", "1000");
    QTest::newRow("though its marker does not say")
        << fileOfZeros(text("x.tresk"), 1024 * mebibyte).with("filesize", "");
}

void TestCommandLimits::documentThatUnpacksToMore()
{
    QFETCH(FileSpec, file);
    file.raw.insert("md5cfile", md5Hex(*file.stored)); // without which it is copied as it is
    const QVector<FileSpec> files = {embeddedDocument("a.tresk", {stepThatEmbeds("in a", {})}),
                                     file};
    compare(run({text("tree"), text("--max-unpacked=1MiB")},
                documentWith({stepThatEmbeds("both", files)})),
            "a.pdf\n└─ 0  both\n   └─ a.tresk\n      └─ 1  in a\n",
            leftOut("1 embedded document is", "no more than 1.0 MiB (--max-unpacked) are unpacked"),
            2);
}

void TestCommandLimits::largeSummary_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("limit");
    QTest::addColumn<QByteArray>("shown");
    const auto row = [](const QStringList& arguments, const char* limit, const char* shown) {
        QTest::newRow(qPrintable(arguments.join(QLatin1Char(' '))))
            << arguments << QByteArray(limit) << QByteArray(shown);
    };
    const char* const usual = "64.0 MiB (--max-unpacked)";
    row({text("tree")}, usual, "two");
    row({text("tree"), text("--max-unpacked=1MiB")}, "1.0 MiB (--max-unpacked)", "two");
    row({text("diff"), text("a.pdf")}, usual, "");
    row({text("find"), text("two")}, usual, "a.pdf");
    row({text("find"), text("marker"), text("--max-unpacked=20KiB")}, "20.0 KiB (--max-unpacked)",
        "a.pdf");
    // No text holds as much.
    row({text("find"), text("two"), text("--max-unpacked=4GiB")}, "4.0 GiB (--max-unpacked)",
        "a.pdf");
    row({text("log")}, "64.0 MiB", "two");
    row({text("log"), text("--jsonl")}, "64.0 MiB", "\"inFileCount\":null");
    row({text("show")}, "64.0 MiB", "two");
    row({text("files")}, "64.0 MiB", "ws_summary.xml");
}

void TestCommandLimits::largeSummary()
{
    // The others are read.
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, limit);
    QFETCH(QByteArray, shown);
    const Outcome outcome = run(
        arguments,
        documentWith({stepThatEmbeds("one", {}),
                      step(text("marker"), {summaryOfZeros(2047 * mebibyte)}),
                      stepThatEmbeds("two", {})}));
    const QByteArray line = leftOut("the summaries of 1 step are",
                                    "no more than " + limit + " of summaries are unpacked");
    const bool twice = arguments.first() == text("diff");
    QCOMPARE(outcome.errors, twice ? line + line : line);
    QVERIFY2(outcome.output.contains(shown), outcome.output.constData());
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandLimits::unreadableSummary()
{
    // However large it says to be, that is not the fault.
    const FileSpec huge = summaryWith("").with("filesize", "2147483647");
    FileSpec unknown = huge;
    unknown.compression = "lzma";
    for (const FileSpec& summary : {unknown, FileSpec(huge).with("offset", "2147483647")}) {
        const Outcome outcome = run({text("log"), text("--oneline")},
                                    documentWith({step(text("marker"), {summary})}));
        QCOMPARE(outcome.output, QByteArray("0  -  marker  (1 embedded)\n"));
        QVERIFY2(outcome.errors.startsWith("tresk: a.pdf: warning: step 0 \"marker\": its summary "
                                           "document cannot be read\n"),
                 outcome.errors.constData());
        QVERIFY2(!outcome.errors.contains("left out"), outcome.errors.constData());
    }
}

void TestCommandLimits::damagedDocuments()
{
    // Nothing of them is written, but each is unpacked until the fault is met.
    FileSpec broken = fileOfZeros(text("x.tresk"), 64 * mebibyte);
    broken.stored = broken.stored->chopped(4) + "abcd";
    broken.with("filesize", "1000").with("md5cfile", md5Hex(*broken.stored));
    const Outcome outcome = run(
        {text("tree"), text("--max-unpacked=100MiB")},
        documentWith({stepThatEmbeds("all", QVector<FileSpec>(9, broken))}));
    const QByteArray line = "tresk: a.pdf: there is no history to be read in \"x.tresk\", which "
                            "step 0 of the tree embeds\n";
    QCOMPARE(outcome.errors,
             line + line
                 + leftOut("7 embedded documents are",
                           "no more than 100.0 MiB (--max-unpacked) are unpacked"));
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandLimits::summaryThatNamesManyFiles()
{
    const auto outcome = [this](const QStringList& arguments, int files) {
        const QByteArray names = element("Title", "told") + QByteArray("<InFile/>").repeated(files);
        return run(arguments, documentWith({step(text("marker"), {summaryWith(names)})}));
    };
    const QByteArray line = leftOut("the summaries of 1 step are",
                                    "no more than 1000000 files in them are read");
    QCOMPARE(outcome({text("log"), text("--oneline")}, 1000).exitCode, 0);
    compare(outcome({text("log"), text("--oneline")}, 1000001), "0  -  marker  (1 embedded)\n",
            line, 2);
    compare(outcome({text("tree")}, 1000001), "a.pdf\n└─ 0  marker\n", line, 2);
}

void TestCommandLimits::oneSummaryForManySteps()
{
    // Each reaches back over the one before, and all have the same last file.
    DocumentWriter writer("%PDF-1.4\n");
    writer.writeHeader();
    writer.endLine();
    const int start = writer.position();
    const QByteArray blanks(8 * mebibyte - 1000, ' ');
    writer.writeSection(step(text("marker"), {summaryWith(element("Title", "told") + blanks)}));
    for (int i = 0; i < 100; ++i) {
        SectionSpec more = step(text("marker"));
        more.regionStart = start;
        writer.writeSection(more);
    }
    const Outcome outcome = run({text("log"), text("--oneline")}, writer.bytes());
    QCOMPARE(outcome.output.count('\n'), 101);
    QCOMPARE(outcome.errors,
             leftOut("the summaries of 93 steps are",
                     "no more than 64.0 MiB of summaries are unpacked"));
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandLimits::namesOfOmittedDocumentsAreNotMissing()
{
    // What is not to be read is reported, also where another of that name is left out.
    const FileSpec broken = FileSpec::flate(text("x.tresk"), "no document");
    const QVector<FileSpec> files = {broken,
                                     embeddedDocument("x.tresk", {stepThatEmbeds("in", {})}),
                                     embeddedDocument("x.tresk", {stepThatEmbeds("out", {})})};
    compare(
        run({text("tree"), text("--max-documents=2")},
            documentWith({stepThatEmbeds("all", files)})),
        "a.pdf\n└─ 0  all\n   └─ x.tresk\n      └─ 1  in\n",
        "tresk: a.pdf: there is no history to be read in \"x.tresk\", which step 0 of the tree "
        "embeds\n"
            + leftOut("1 embedded document is", "no more than 2 are followed (--max-documents)"),
        2);
}

void TestCommandLimits::diffHasTheSameLimits()
{
    const QByteArray line = leftOut("1 embedded document is",
                                    "none is followed deeper than 1 level (--max-depth)");
    compare(run({text("diff"), text("--max-depth=1"), text("a.pdf")}, nested(2)),
            "The histories are the same: 2 steps.\n", line + line, 2);
}

void TestCommandLimits::findReportsDamage_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("problem");
    const QByteArray whole = documentWith(
        {step(text("word"), {FileSpec::plain(text("f"), noise(2000))}), step(text("word"))});
    QTest::newRow("whole") << whole << QByteArray();
    SectionSpec beyond = step(text("word"));
    beyond.regionSize = 10000;
    QTest::newRow("cut off") << documentWith({beyond})
                             << QByteArray("is cut off or damaged: 1 step would reach beyond its "
                                           "end");
    FileSpec file = FileSpec::plain(text("f"), "x");
    file.with("blocksize", "5000");
    QTest::newRow("file cut off") << documentWith({step(text("word"), {file})})
                                  << QByteArray("is cut off or damaged: 1 embedded file would "
                                                "reach beyond its end");
    SectionSpec astray = step(text("word"));
    astray.gap = QByteArray(20, '\n'); // farther than the neighbourhood that is searched
    astray.with("previousmarker", "12");
    QTest::newRow("chain broken") << documentWith({step(text("first")), astray})
                                  << QByteArray("the history is incomplete: the step before step 0 "
                                                "is not where its marker says");
}

void TestCommandLimits::findReportsDamage()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, problem);
    const bool isWhole = problem.isEmpty();
    if (!isWhole)
        problem = "tresk: a.pdf: " + problem + '\n';
    compare(run({text("find"), text("word")}, bytes), "a.pdf\n", problem, isWhole ? 0 : 2);
    compare(run({text("find"), text("nothing")}, bytes), "", problem, isWhole ? 1 : 2);
}

QTEST_GUILESS_MAIN(TestCommandLimits)
#include "tst_command_limits.moc"
