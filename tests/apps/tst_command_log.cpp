#include "Command.h"
#include "Documents.h"
#include "SummaryXml.h"

#include <TestFiles.h>

#include <QJsonArray>
#include <QtTest>

using namespace tresktest;

Q_DECLARE_METATYPE(tresktest::FileSpec)

/// `tresk log` for people. What it prints for programs has a test of its own.
class TestCommandLog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void stepsAreListedNewestFirst();
    void stepsOnOneLine();
    void filesAreListedUnderTheirStep();
    void filesWithoutStepComeLast();
    void verboseShowsMore();
    void missingValuesAreShown();
    void userAndHost_data();
    void userAndHost();
    void titleIsThatOfTheSummary();
    void valuesAreSafeForTerminals();
    void unreadableSummaryIsWarnedOf_data();
    void unreadableSummaryIsWarnedOf();
    void severalDocuments();
    void colourIsTakenWhenAskedFor();
    void manyStepsAndFiles();
    void stepsThatShareTooManyFiles();

private:
    QString run(QStringList options) const;
    QString runOn(const QByteArray& document, QStringList options) const;

    TestDir m_dir;
    DocumentWriter m_writer;
    QString m_path;
};

namespace {

QByteArray documentOf(const SectionSpec& section)
{
    return documentWith(QVector<SectionSpec>{section});
}

/// A document of so many steps with a file each, every one of which reaches back to the first.
QByteArray sharingDocument(int count)
{
    DocumentWriter writer(headerLine() + '\n');
    const int start = writer.position();
    for (int i = 0; i < count; ++i) {
        SectionSpec section = step(QString::number(i), {FileSpec::plain(text("f"), "x")});
        section.regionStart = start;
        writer.writeSection(section);
    }
    return writer.bytes();
}

} // namespace

/// A history of a step without a summary and one with inputs, outputs and a summary.
void TestCommandLog::initTestCase()
{
    useUtf8Paths();
    m_writer.writeHeader();
    m_writer.endLine();
    m_writer.writeSection(step(text("Measure"), {FileSpec::plain(text("raw.bin"), "r")}));

    const FileSpec data = FileSpec::plain(text("data.csv"), QByteArray(5000, 'd'));
    const FileSpec plot = FileSpec::flate(text("plot.svg"), QByteArray(100, 'p'));
    const FileSpec raw = FileSpec::plain(text("raw.bin"), "r");
    SectionSpec second = step(
        text("Draw the plot"),
        {data, plot,
         summaryWith(element("Timestamp", "2024-03-05 11:02:38") + element("Title", "Draw the plot")
                     + element("Tool", "plotter") + element("Host", "calc2")
                     + element("User", "jholm") + fileElement("InFile", data)
                     + fileElement("InFile", raw, false) + fileElement("OutFile", plot))});
    second.creator = text("plotter 2.1");
    second.version = text("1.1");
    m_writer.writeSection(second.with("index", "2"));
    m_path = m_dir.write(text("history.pdf"), m_writer.bytes());
}

/// Runs the command on the history of initTestCase() and returns what it prints.
QString TestCommandLog::run(QStringList options) const
{
    options.prepend(text("log"));
    const Outcome outcome = runTresk(options << m_path);
    if (outcome.exitCode != 0 || !outcome.errors.isEmpty())
        QTest::qFail(outcome.errors.constData(), __FILE__, __LINE__);
    return QString::fromUtf8(outcome.output);
}

QString TestCommandLog::runOn(const QByteArray& document, QStringList options) const
{
    options.prepend(text("log"));
    const Outcome outcome = runTresk(options << m_dir.write(text("other.pdf"), document));
    if (outcome.exitCode != 0 || !outcome.errors.isEmpty())
        QTest::qFail(outcome.errors.constData(), __FILE__, __LINE__);
    return QString::fromUtf8(outcome.output);
}

void TestCommandLog::stepsAreListedNewestFirst()
{
    const QString expected = text("step 0  Draw the plot\n"
                                  "  time:    2024-03-05 11:02:38\n"
                                  "  tool:    plotter\n"
                                  "  user:    jholm@calc2\n"
                                  "  files:   2 in, 1 out, 3 embedded\n"
                                  "\n"
                                  "step 1  Measure\n"
                                  "  time:    -\n"
                                  "  tool:    -\n"
                                  "  user:    -\n"
                                  "  files:   1 embedded\n");
    QCOMPARE(run({}), expected);
    QCOMPARE(run({text("-q")}), expected);
}

void TestCommandLog::stepsOnOneLine()
{
    QCOMPARE(run({text("--oneline")}),
             text("0  2024-03-05 11:02:38  Draw the plot  (plotter, jholm@calc2, 2 in, 1 out, "
                  "3 embedded)\n"
                  "1  -  Measure  (1 embedded)\n"));
}

void TestCommandLog::filesAreListedUnderTheirStep()
{
    // Inputs and outputs that are not embedded are listed too, and embedded files that the
    // summary does not name.
    const QString listed = run({text("--files")});
    QVERIFY2(listed.endsWith(text("  files:   2 in, 1 out, 3 embedded\n"
                                  "    1  in     4.9 KiB  data.csv\n"
                                  "    -  in      1 byte  raw.bin\n"
                                  "    2  out  100 bytes  plot.svg\n"
                                  "    3  -      1.2 KiB  ws_summary.xml\n"
                                  "\n"
                                  "step 1  Measure\n"
                                  "  time:    -\n"
                                  "  tool:    -\n"
                                  "  user:    -\n"
                                  "  files:   1 embedded\n"
                                  "    0  -  1 byte  raw.bin\n")),
             qPrintable(listed));
    const QString oneLine = run({text("--files"), text("--oneline")});
    QVERIFY2(oneLine.endsWith(text("1  -  Measure  (1 embedded)\n    0  -  1 byte  raw.bin\n")),
             qPrintable(oneLine));
}

void TestCommandLog::filesWithoutStepComeLast()
{
    DocumentWriter writer(headerLine() + '\n');
    writer.writeFile(FileSpec::plain(text("stray.txt"), "stray"));
    writer.writeSection(step(text("only"), {FileSpec::plain(text("own.txt"), "own")}));
    writer.writeFile(FileSpec::plain(text("late.txt"), "l"));

    const QString listed = runOn(writer.bytes(), {text("--files")});
    QVERIFY2(listed.endsWith(text("  files:   1 embedded\n"
                                  "    1  -  3 bytes  own.txt\n"
                                  "\n"
                                  "-  without a step  (2 files)\n"
                                  "    0  -  5 bytes  stray.txt\n"
                                  "    2  -   1 byte  late.txt\n")),
             qPrintable(listed));
    const QString oneLine = runOn(writer.bytes(), {text("--oneline")});
    QVERIFY2(oneLine.endsWith(text(")\n-  without a step  (2 files)\n")), qPrintable(oneLine));
}

void TestCommandLog::verboseShowsMore()
{
    const WrittenSection& second = m_writer.sections()[1];
    const double size = (second.regionEnd - second.regionStart) / 1024.0;
    const QString shown = run({text("-v")});
    QVERIFY2(shown.contains(QStringLiteral("  files:   2 in, 1 out, 3 embedded\n"
                                           "  creator: plotter 2.1\n"
                                           "  version: 1.1\n"
                                           "  index:   2\n"
                                           "  marker:  at byte %1\n"
                                           "  md5:     %2\n"
                                           "  size:    %3 KiB\n")
                                .arg(QString::number(second.lineStart),
                                     QString::fromLatin1(second.md5section),
                                     QString::number(size, 'f', 1))),
             qPrintable(shown));
}

void TestCommandLog::missingValuesAreShown()
{
    SectionSpec section = step(QString(), {FileSpec::plain(QString(), "x").with("filesize", "")});
    section.creator.clear();
    section.version.clear();
    section.with("index", "").with("md5section", "");
    QString shown = runOn(documentOf(section), {text("-v"), text("--files")});
    QVERIFY2(shown.startsWith(text("step 0  <no title>\n"
                                   "  time:    -\n"
                                   "  tool:    -\n"
                                   "  user:    -\n"
                                   "  files:   1 embedded\n"
                                   "  creator: -\n"
                                   "  version: -\n"
                                   "  index:   -\n"
                                   "  marker:  at byte ")),
             qPrintable(shown));
    QVERIFY(shown.contains(text("  md5:     -\n")));
    QVERIFY(shown.endsWith(text("    0  -  -  \n")));

    section.with("left", "").with("size", "");
    shown = runOn(documentOf(section), {text("--oneline")});
    QCOMPARE(shown, text("0  -  <no title>  (0 embedded)\n-  without a step  (1 file)\n"));

    // A summary that says nothing.
    shown = runOn(documentOf(step(text("marked"), {summaryWith("")})), {text("--oneline")});
    QCOMPARE(shown, text("0  -  marked  (0 in, 0 out, 1 embedded)\n"));
}

void TestCommandLog::userAndHost_data()
{
    QTest::addColumn<QByteArray>("summary");
    QTest::addColumn<QString>("shown");
    const QByteArray user = element("User", "u");
    const QByteArray host = element("Host", "h");
    QTest::newRow("both") << host + user << text("u@h, ");
    QTest::newRow("user") << user + element("Host", "") << text("u, ");
    QTest::newRow("host") << host << text("@h, ");
    QTest::newRow("neither") << element("User", "") << QString();
}

void TestCommandLog::userAndHost()
{
    QFETCH(QByteArray, summary);
    QFETCH(QString, shown);
    QCOMPARE(runOn(documentOf(step(text("t"), {summaryWith(summary)})), {text("--oneline")}),
             QStringLiteral("0  -  t  (%10 in, 0 out, 1 embedded)\n").replace(text("%1"), shown));
}

void TestCommandLog::titleIsThatOfTheSummary()
{
    const auto titleIn = [this](const QByteArray& summary) {
        const FileSpec file = summaryWith(summary);
        return runOn(documentOf(step(text("marked]"), {file})), {})
            .section(QLatin1Char('\n'), 0, 0);
    };
    QCOMPARE(titleIn(element("Title", "said")), text("step 0  said"));
    // Texts of summaries have neither escapes nor entities.
    QCOMPARE(titleIn(element("Title", " a\\n&amp; ")), text("step 0   a\\n&amp; "));
    QCOMPARE(titleIn(element("Title", "")), text("step 0  marked]"));
    QCOMPARE(titleIn(""), text("step 0  marked]"));
}

void TestCommandLog::valuesAreSafeForTerminals()
{
    const QString title = text(
        "a]b\\c\nd\te\x1b[31mf\x07g\u009bh\u202ei\u2028j\u200bk\U000e0041l\x7fm");
    const QString shown = runOn(documentWith(QVector<SectionSpec>{step(title)}),
                                {text("--oneline")});
    QVERIFY2(
        shown.startsWith(text("0  -  a]b\\c\\nd\\te\\x1b[31mf\\x07g\\x9bh\\u202ei\\u2028j\\u200bk"
                              "\\U000e0041l\\x7fm  (0 embedded)\n")),
        qPrintable(shown));
    // Letters of all scripts, joiners and emoji stay.
    const QString harmless = text(
        "\u00e4\u03a9\u8ef8\U0001f529 \u0646\u200c\u0645 \u093f\u200d \u00a0e\u0301");
    QVERIFY(runOn(documentWith(QVector<SectionSpec>{step(harmless)}), {text("--oneline")})
                .startsWith(text("0  -  ") + harmless + text("  (")));
}

void TestCommandLog::unreadableSummaryIsWarnedOf_data()
{
    QTest::addColumn<FileSpec>("summary");
    QTest::addColumn<bool>("readable");
    const FileSpec sound = summaryWith(element("Tool", "t"));
    FileSpec broken = sound;
    broken.stored = deflated(sound.content).left(30);
    QTest::newRow("sound") << sound << true;
    QTest::newRow("broken stream") << broken << false;
    QTest::newRow("unknown compression") << FileSpec(sound).with("compression", "lzma") << false;
    QTest::newRow("wrong size") << FileSpec(sound).with("filesize", "7") << false;
    QTest::newRow("no summary in it") << summaryOf("hello") << false;
    QTest::newRow("cut") << summaryOf("<trxchange><Workflowstep>") << false;
    QTest::newRow("empty") << summaryOf("") << false;
}

void TestCommandLog::unreadableSummaryIsWarnedOf()
{
    QFETCH(FileSpec, summary);
    QFETCH(bool, readable);
    const QString path = m_dir.write(text("unreadable.pdf"),
                                     documentOf(step(text("a\x1b"), {summary})));
    const QByteArray warning = "tresk: " + path.toUtf8()
        + ": warning: step 0 \"a\\x1b\": its summary document cannot be read\n";
    for (const char* command : {"log", "show", "files"}) {
        const Outcome outcome = runTresk({text(command), path});
        QCOMPARE(outcome.errors, readable ? QByteArray() : warning);
        QCOMPARE(outcome.exitCode, 0);
        QVERIFY(!outcome.output.isEmpty());
        QCOMPARE(runTresk({text(command), text("-q"), path}).errors, QByteArray());
    }
}

void TestCommandLog::severalDocuments()
{
    const QString other = m_dir.write(text("an\x1bother.pdf"), documentOf(step(text("alone"))));
    const QString missing = m_dir.path(text("missing"));
    const Outcome outcome = runTresk({text("log"), text("--oneline"), other, missing, other});
    const QString shown = m_dir.path(text("an\\x1bother.pdf"))
        + text(":\n0  -  alone  (0 embedded)\n");
    QCOMPARE(QString::fromUtf8(outcome.output),
             shown + QLatin1Char('\n') + missing + text(":\n\n") + shown);
    QCOMPARE(outcome.errors, "tresk: " + missing.toUtf8() + ": No such file or directory\n");
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandLog::colourIsTakenWhenAskedFor()
{
    const QString always = run({text("--oneline"), text("--color=always")});
    QVERIFY2(always.startsWith(text("\x1b[33m0\x1b[0m  2024-03-05 11:02:38  \x1b[1mDraw the plot"
                                    "\x1b[0m  \x1b[2m(plotter, ")),
             qPrintable(always));
    QVERIFY(run({text("--color=always"), text("--files")})
                .contains(text("    \x1b[33m1\x1b[0m  in     4.9 KiB  ")));
    // A pipe is no terminal.
    for (const char* when : {"--color=auto", "--color=never"})
        QCOMPARE(run({text("--oneline"), text(when)}), run({text("--oneline")}));
    QVERIFY(!run({text("--json"), text("--color=always")}).contains(QLatin1Char('\x1b')));
}

void TestCommandLog::manyStepsAndFiles()
{
    const int count = 1000;
    const QString shown = runOn(sharingDocument(count), {text("--oneline")});
    QCOMPARE(shown.count(QLatin1Char('\n')), count);
    QVERIFY(shown.startsWith(text("0  -  999  (1000 embedded)\n")));
    QVERIFY(shown.contains(text("\n999  -  0  (1 embedded)\n")));
}

void TestCommandLog::stepsThatShareTooManyFiles()
{
    // More than a million places: listing all of them would take memory that grows as the square
    // of the number of steps.
    const QString path = m_dir.write(text("shared.pdf"), sharingDocument(1500));
    const QByteArray message = "tresk: " + path.toUtf8()
        + ": its steps share too many files, their summaries are not read and their files not "
          "listed\n";
    const auto output = [&](const QStringList& arguments) {
        const Outcome outcome = runTresk(arguments + QStringList{path});
        return outcome.errors == message && outcome.exitCode == 2 ? outcome.output : QByteArray();
    };
    const QByteArray steps = output({text("log"), text("--oneline"), text("--files")});
    QVERIFY2(steps.startsWith("0  -  1499  (1500 embedded)\n1  -  1498  (1499 embedded)\n"),
             steps.constData());
    QCOMPARE(steps.count('\n'), 1500);
    QVERIFY(output({text("log"), text("--json"), text("--files")}).contains("\"files\": null"));
    QVERIFY(output({text("show")}).startsWith("step 0  1499\n"));
    QVERIFY(output({text("show"), text("--json")}).contains("\"files\": null"));
    const QByteArray files = output({text("files")});
    QVERIFY2(files.contains("\n1499  ?  "), files.constData());
    QVERIFY(output({text("files"), text("--json")}).contains("\"steps\": null"));
}

QTEST_GUILESS_MAIN(TestCommandLog)
#include "tst_command_log.moc"
