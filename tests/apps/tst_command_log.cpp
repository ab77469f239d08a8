#include "Command.h"
#include "Documents.h"

#include <TestFiles.h>

#include <QJsonArray>
#include <QtTest>

using namespace tresktest;

/// `tresk log`.
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
    void valuesAreSafeForTerminals();
    void jsonHasWhatTheMarkerSays();
    void jsonHasStoredAndUnescapedText();
    void jsonListsFiles();
    void jsonIsSafeForTerminals();
    void colourIsTakenWhenAskedFor();
    void manyStepsAndFiles();

private:
    QString run(QStringList options) const;
    QString runOn(const QByteArray& document, QStringList options) const;

    TestDir m_dir;
    DocumentWriter m_writer;
    QString m_path;
};

namespace {

SectionSpec numbered(SectionSpec section, int index)
{
    return section.with("index", QByteArray::number(index));
}

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

QString human(int bytes)
{
    if (bytes < 1024)
        return QStringLiteral("%1 bytes").arg(bytes);
    return QStringLiteral("%1 KiB").arg(bytes / 1024.0, 0, 'f', 1);
}

} // namespace

void TestCommandLog::initTestCase()
{
    useUtf8Paths();
    m_writer.writeHeader();
    m_writer.endLine();
    m_writer.writeSection(numbered(step(text("Measure")), 1));
    SectionSpec second = numbered(step(text("Draw the plot"),
                                       {FileSpec::plain(text("data.csv"), QByteArray(5000, 'd')),
                                        FileSpec::plain(text("plot.svg"), QByteArray(100, 'p'))}),
                                  2);
    second.creator = text("plotter 2.1");
    second.version = text("1.1");
    m_writer.writeSection(second);
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
    const WrittenSection& first = m_writer.sections()[0];
    const QString expected = QStringLiteral("step 0  Draw the plot\n"
                                            "  creator: plotter 2.1\n"
                                            "  version: 1.1\n"
                                            "  index:   2\n"
                                            "  size:    5.6 KiB\n"
                                            "  files:   2\n"
                                            "\n"
                                            "step 1  Measure\n"
                                            "  creator: writer\n"
                                            "  version: 1.0\n"
                                            "  index:   1\n"
                                            "  size:    %1\n"
                                            "  files:   0\n")
                                 .arg(human(first.regionEnd - first.regionStart));
    QCOMPARE(run({}), expected);
    QCOMPARE(run({text("-q")}), expected);
}

void TestCommandLog::stepsOnOneLine()
{
    const WrittenSection& first = m_writer.sections()[0];
    QCOMPARE(run({text("--oneline")}),
             QStringLiteral("0  Draw the plot  (2 files, 5.6 KiB)\n"
                            "1  Measure  (0 files, %1)\n")
                 .arg(human(first.regionEnd - first.regionStart)));
}

void TestCommandLog::filesAreListedUnderTheirStep()
{
    const QString listed = run({text("--files")});
    QVERIFY2(listed.contains(text("  files:   2\n"
                                  "    0    4.9 KiB  data.csv\n"
                                  "    1  100 bytes  plot.svg\n"
                                  "\n"
                                  "step 1  Measure\n")),
             qPrintable(listed));
    QVERIFY(listed.endsWith(text("  files:   0\n")));
    const QString short_ = run({text("--files"), text("--oneline")});
    QVERIFY2(short_.startsWith(text("0  Draw the plot  (2 files, 5.6 KiB)\n"
                                    "    0    4.9 KiB  data.csv\n"
                                    "    1  100 bytes  plot.svg\n"
                                    "1  Measure  (0 files, ")),
             qPrintable(short_));
}

void TestCommandLog::filesWithoutStepComeLast()
{
    DocumentWriter writer(headerLine() + '\n');
    writer.writeFile(FileSpec::plain(text("stray.txt"), "stray"));
    writer.writeSection(step(text("only"), {FileSpec::plain(text("own.txt"), "own")}));
    writer.writeFile(FileSpec::plain(text("late.txt"), "l"));

    const QString listed = runOn(writer.bytes(), {text("--files")});
    QVERIFY2(listed.endsWith(text("  files:   1\n"
                                  "    1  3 bytes  own.txt\n"
                                  "\n"
                                  "-  without a step  (2 files)\n"
                                  "    0  5 bytes  stray.txt\n"
                                  "    2   1 byte  late.txt\n")),
             qPrintable(listed));
    const QString short_ = runOn(writer.bytes(), {text("--oneline")});
    QVERIFY2(short_.endsWith(text(")\n-  without a step  (2 files)\n")), qPrintable(short_));

    const QJsonObject json = jsonObject(runOn(writer.bytes(), {text("--json")}).toUtf8());
    QCOMPARE(json.value(text("filesWithoutStep")).toArray(), QJsonArray({0, 2}));
}

void TestCommandLog::verboseShowsMore()
{
    const WrittenSection& second = m_writer.sections()[1];
    const QString shown = run({text("-v")});
    QVERIFY2(shown.contains(QStringLiteral("  index:   2\n"
                                           "  marker:  at byte %1\n"
                                           "  md5:     %2\n"
                                           "  size:    5.6 KiB\n")
                                .arg(QString::number(second.lineStart),
                                     QString::fromLatin1(second.md5section))),
             qPrintable(shown));
}

void TestCommandLog::missingValuesAreShown()
{
    SectionSpec section = step(QString(), {FileSpec::plain(QString(), "x").with("filesize", "")});
    section.creator.clear();
    section.version.clear();
    section.with("index", "").with("md5section", "");
    QString shown = runOn(documentWith(QVector<SectionSpec>{section}),
                          {text("-v"), text("--files")});
    QVERIFY2(shown.startsWith(text("step 0  <no title>\n"
                                   "  creator: -\n"
                                   "  version: -\n"
                                   "  index:   -\n"
                                   "  marker:  at byte ")),
             qPrintable(shown));
    QVERIFY(shown.contains(text("  md5:     -\n")));
    QVERIFY(shown.endsWith(text("  files:   1\n    0  -  \n")));

    section.with("left", "").with("size", "");
    shown = runOn(documentWith(QVector<SectionSpec>{section}), {text("--oneline")});
    QCOMPARE(shown, text("0  <no title>  (0 files, -)\n-  without a step  (1 file)\n"));
}

void TestCommandLog::valuesAreSafeForTerminals()
{
    const QString title = text(
        "a]b\\c\nd\te\x1b[31mf\x07g\u009bh\u202ei\u2028j\u200bk\U000e0041l\x7fm");
    const QString shown = runOn(documentWith(QVector<SectionSpec>{step(title)}),
                                {text("--oneline")});
    QVERIFY2(shown.startsWith(text("0  a]b\\c\\nd\\te\\x1b[31mf\\x07g\\x9bh\\u202ei\\u2028j\\u200bk"
                                   "\\U000e0041l\\x7fm  (0 files, ")),
             qPrintable(shown));
    // Letters of all scripts, joiners and emoji stay.
    const QString harmless = text(
        "\u00e4\u03a9\u8ef8\U0001f529 \u0646\u200c\u0645 \u093f\u200d \u00a0e\u0301");
    QVERIFY(runOn(documentWith(QVector<SectionSpec>{step(harmless)}), {text("--oneline")})
                .startsWith(text("0  ") + harmless + text("  (")));
}

void TestCommandLog::jsonHasWhatTheMarkerSays()
{
    const QJsonObject json = jsonObject(run({text("--json")}).toUtf8());
    QCOMPARE(json.keys(), QStringList({text("document"), text("filesWithoutStep"), text("steps")}));
    QCOMPARE(json.value(text("document")).toString(), m_path);
    QCOMPARE(json.value(text("filesWithoutStep")).toArray(), QJsonArray());
    const QJsonArray steps = json.value(text("steps")).toArray();
    QCOMPARE(steps.size(), 2);
    const WrittenSection& first = m_writer.sections()[0];
    const WrittenSection& second = m_writer.sections()[1];
    const QJsonObject newest = {{text("id"), 0},
                                {text("title"), text("Draw the plot")},
                                {text("creator"), text("plotter 2.1")},
                                {text("version"), text("1.1")},
                                {text("index"), 2},
                                {text("size"), second.regionEnd - second.regionStart},
                                {text("md5"), QString::fromLatin1(second.md5section)},
                                {text("previousMd5"), QString::fromLatin1(first.md5section)},
                                {text("position"), second.lineStart},
                                {text("fileCount"), 2}};
    QCOMPARE(steps[0].toObject(), newest);
    QCOMPARE(steps[1].toObject().value(text("id")).toInt(), 1);
    QCOMPARE(steps[1].toObject().value(text("previousMd5")).toString(), QString());

    SectionSpec bare = step(QString());
    bare.with("index", "").with("size", "");
    const QJsonObject other = jsonObject(
        runOn(documentWith(QVector<SectionSpec>{bare}), {text("--json")}).toUtf8());
    const QJsonObject only = other.value(text("steps")).toArray()[0].toObject();
    QVERIFY(only.value(text("index")).isNull());
    QVERIFY(only.value(text("size")).isNull());
    QCOMPARE(only.value(text("title")), QJsonValue(QString()));
}

void TestCommandLog::jsonHasStoredAndUnescapedText()
{
    SectionSpec section = step(text("a]b\\c\nd"));
    section.creator = text("x]");
    const QJsonObject json = jsonObject(
        runOn(documentWith(QVector<SectionSpec>{section}), {text("--json")}).toUtf8());
    const QJsonObject only = json.value(text("steps")).toArray()[0].toObject();
    QCOMPARE(only.value(text("title")).toString(), text("a\\]b\\\\c\\nd"));
    QCOMPARE(only.value(text("titleUnescaped")).toString(), text("a]b\\c\nd"));
    QCOMPARE(only.value(text("creator")).toString(), text("x\\]"));
    QCOMPARE(only.value(text("creatorUnescaped")).toString(), text("x]"));
    QVERIFY(!only.contains(text("versionUnescaped")));
}

void TestCommandLog::jsonListsFiles()
{
    const QJsonObject json = jsonObject(run({text("--json"), text("--files")}).toUtf8());
    const QJsonArray files =
        json.value(text("steps")).toArray()[0].toObject().value(text("files")).toArray();
    QCOMPARE(files.size(), 2);
    QCOMPARE(files[0].toObject().value(text("name")).toString(), text("data.csv"));
    QCOMPARE(files[1].toObject().value(text("id")).toInt(), 1);
    const QJsonObject empty = json.value(text("steps")).toArray()[1].toObject();
    QCOMPARE(empty.value(text("files")), QJsonValue(QJsonArray()));
}

void TestCommandLog::jsonIsSafeForTerminals()
{
    const QString title = text("a\x1b[31m\x7f\u009b\u202e\U000e0041\u00e4");
    const QString json = runOn(documentWith(QVector<SectionSpec>{step(title)}), {text("--json")});
    QVERIFY2(json.contains(text("\"a\\u001b[31m\\u007f\\u009b\\u202e\\udb40\\udc41\u00e4\"")),
             qPrintable(json));
    const QJsonArray steps = jsonObject(json.toUtf8()).value(text("steps")).toArray();
    QCOMPARE(steps[0].toObject().value(text("title")).toString(), title);
}

void TestCommandLog::colourIsTakenWhenAskedFor()
{
    const QString always = run({text("--oneline"), text("--color=always")});
    QVERIFY2(always.startsWith(text("\x1b[33m0\x1b[0m  \x1b[1mDraw the plot\x1b[0m  "
                                    "\x1b[2m(2 files, 5.6 KiB)\x1b[0m\n")),
             qPrintable(always));
    QVERIFY(run({text("--color=always"), text("--files")})
                .contains(text("    \x1b[33m0\x1b[0m    4.9 KiB  ")));
    // A pipe is no terminal.
    for (const char* when : {"--color=auto", "--color=never"})
        QCOMPARE(run({text("--oneline"), text(when)}), run({text("--oneline")}));
    QVERIFY(!run({text("--json"), text("--color=always")}).contains(QLatin1Char('\x1b')));
}

void TestCommandLog::manyStepsAndFiles()
{
    // Every step reaches back to the first, so that the files are in half a million of places.
    const int count = 1000;
    DocumentWriter writer(headerLine() + '\n');
    const int start = writer.position();
    for (int i = 0; i < count; ++i) {
        SectionSpec section = step(QString::number(i), {FileSpec::plain(text("f"), "x")});
        section.regionStart = start;
        writer.writeSection(section);
    }
    const QString shown = runOn(writer.bytes(), {text("--oneline")});
    QCOMPARE(shown.count(QLatin1Char('\n')), count);
    QVERIFY(shown.startsWith(text("0  999  (1000 files, ")));
    QVERIFY(shown.contains(text("\n999  0  (1 file, ")));
}

QTEST_GUILESS_MAIN(TestCommandLog)
#include "tst_command_log.moc"
