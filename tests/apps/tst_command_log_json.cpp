#include "Command.h"
#include "Documents.h"
#include "SummaryXml.h"

#include <TestFiles.h>

#include <QJsonArray>
#include <QtTest>

#include <algorithm>
#include <random>

using namespace tresktest;

/// `tresk log` for programs: --json and --jsonl.
class TestCommandLogJson : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void valuesOfMarkerAndSummary();
    void valuesThatAreMissing();
    void storedAndUnescapedText();
    void filesOfSteps();
    void filesWithoutStep();
    void safeForTerminals();
    void aLineForEachStep();
    void linesOfSeveralDocuments();
    void oneObjectIsOfOneDocument();
    void filesAreCountedAsTheyAreListed();

private:
    QJsonObject run(const QByteArray& document, const QStringList& options = {}) const;

    TestDir m_dir;
};

namespace {

QJsonObject firstStep(const QJsonObject& json)
{
    return json.value(text("steps")).toArray()[0].toObject();
}

QByteArray documentOf(const SectionSpec& section)
{
    return documentWith(QVector<SectionSpec>{section});
}

/// A document with steps that begin somewhere in those before them and end somewhere, and blocks
/// of files that reach beyond them.
QByteArray overlappingDocument(unsigned seed)
{
    std::mt19937 random(seed);
    const auto below = [&random](int bound) { return int(random() % unsigned(bound)); };
    DocumentWriter writer(headerLine() + '\n');
    const int start = writer.position();
    for (int i = 0; i < 12; ++i) {
        SectionSpec section = step(QString::number(i));
        for (int file = below(4); file > 0; --file) {
            section.files += FileSpec::plain(text("f"), QByteArray(below(50), 'x'));
            if (below(6) == 0)
                section.files.last().with("blocksize", QByteArray::number(below(2000)));
        }
        if (below(2) == 0) // whose block ends where the region does
            section.filesBehind = {FileSpec::plain(text("f"), "x")};
        section.regionStart = start + below(writer.position() - start + 1);
        if (below(3) == 0)
            section.regionSize = below(3000);
        writer.writeSection(section);
    }
    return writer.bytes();
}

} // namespace

void TestCommandLogJson::initTestCase()
{
    useUtf8Paths();
}

QJsonObject TestCommandLogJson::run(const QByteArray& document, const QStringList& options) const
{
    const Outcome outcome = runTresk(
        QStringList{text("log"), text("--json"), m_dir.write(text("some.pdf"), document)}
        + options);
    if (outcome.exitCode != 0 || !outcome.errors.isEmpty())
        QTest::qFail(outcome.errors.constData(), __FILE__, __LINE__);
    return jsonObject(outcome.output);
}

void TestCommandLogJson::valuesOfMarkerAndSummary()
{
    const FileSpec in = FileSpec::plain(text("in"), "i");
    SectionSpec second = step(
        text("Draw"),
        {in,
         summaryWith(element("Timestamp", "2024-03-05") + element("Title", "other")
                     + element("Tool", "plotter") + element("Host", "h") + element("User", "")
                     + fileElement("InFile", in) + fileElement("InFile", in, false)
                     + fileElement("OutFile", in, false))});
    second.creator = text("plotter 2.1");
    second.version = text("1.1");
    DocumentWriter writer(headerLine() + '\n');
    const WrittenSection first = writer.writeSection(step(text("Measure")));
    const WrittenSection newest = writer.writeSection(second.with("index", "2"));

    const QJsonObject json = run(writer.bytes());
    QCOMPARE(
        json.keys(),
        QStringList({text("document"), text("filesWithoutStep"), text("schema"), text("steps")}));
    QCOMPARE(json.value(text("schema")).toString(), text("tresk-log/1"));
    QCOMPARE(json.value(text("document")).toString(), m_dir.path(text("some.pdf")));
    QCOMPARE(json.value(text("filesWithoutStep")).toArray(), QJsonArray());
    const QJsonArray steps = json.value(text("steps")).toArray();
    QCOMPARE(steps.size(), 2);
    const QJsonObject expected = {{text("id"), 0},
                                  {text("title"), text("Draw")},
                                  {text("creator"), text("plotter 2.1")},
                                  {text("version"), text("1.1")},
                                  {text("index"), 2},
                                  {text("size"), newest.regionEnd - newest.regionStart},
                                  {text("md5"), QString::fromLatin1(newest.md5section)},
                                  {text("previousMd5"), QString::fromLatin1(first.md5section)},
                                  {text("position"), newest.lineStart},
                                  {text("fileCount"), 2},
                                  {text("inFileCount"), 2},
                                  {text("outFileCount"), 1},
                                  {text("time"), text("2024-03-05")},
                                  {text("tool"), text("plotter")},
                                  {text("user"), QString()},
                                  {text("host"), text("h")}};
    QCOMPARE(steps[0].toObject(), expected);
    QCOMPARE(steps[1].toObject().value(text("id")).toInt(), 1);
    QCOMPARE(steps[1].toObject().value(text("previousMd5")).toString(), QString());
}

void TestCommandLogJson::valuesThatAreMissing()
{
    const QJsonObject bare = firstStep(
        run(documentOf(step(QString()).with("index", "").with("size", ""))));
    for (const char* name :
         {"index", "size", "time", "tool", "user", "host", "inFileCount", "outFileCount"})
        QVERIFY2(bare.value(text(name)).isNull() && bare.contains(text(name)), name);
    QCOMPARE(bare.value(text("title")), QJsonValue(QString()));
}

void TestCommandLogJson::storedAndUnescapedText()
{
    SectionSpec section = step(text("a]b\\c\nd"), {summaryWith(element("Tool", "t\\]"))});
    section.creator = text("x]");
    const QJsonObject only = firstStep(run(documentOf(section)));
    QCOMPARE(only.value(text("title")).toString(), text("a\\]b\\\\c\\nd"));
    QCOMPARE(only.value(text("titleUnescaped")).toString(), text("a]b\\c\nd"));
    QCOMPARE(only.value(text("creator")).toString(), text("x\\]"));
    QCOMPARE(only.value(text("creatorUnescaped")).toString(), text("x]"));
    QVERIFY(!only.contains(text("versionUnescaped")));
    // There are no escapes in summaries.
    QCOMPARE(only.value(text("tool")).toString(), text("t\\]"));
    QVERIFY(!only.contains(text("toolUnescaped")));
}

void TestCommandLogJson::filesOfSteps()
{
    const FileSpec out = FileSpec::plain(text("plot.svg"), "p");
    const QJsonObject json = run(
        documentWith(
            {step(text("a")), step(text("b"), {out, summaryWith(fileElement("OutFile", out))})}),
        {text("--files")});
    const QJsonArray files = firstStep(json).value(text("files")).toArray();
    QCOMPARE(files.size(), 2);
    QCOMPARE(files[0].toObject().value(text("name")).toString(), text("plot.svg"));
    QCOMPARE(files[0].toObject().value(text("purpose")).toString(), text("OutFile"));
    QCOMPARE(files[1].toObject().value(text("id")).toInt(), 1);
    QCOMPARE(files[1].toObject().value(text("purpose")).toString(), text("Undefined"));
    const QJsonObject empty = json.value(text("steps")).toArray()[1].toObject();
    QCOMPARE(empty.value(text("files")), QJsonValue(QJsonArray()));
}

void TestCommandLogJson::filesWithoutStep()
{
    DocumentWriter writer(headerLine() + '\n');
    writer.writeFile(FileSpec::plain(text("stray.txt"), "stray"));
    writer.writeSection(step(text("only"), {FileSpec::plain(text("own.txt"), "own")}));
    writer.writeFile(FileSpec::plain(text("late.txt"), "l"));
    QCOMPARE(run(writer.bytes()).value(text("filesWithoutStep")).toArray(), QJsonArray({0, 2}));
}

void TestCommandLogJson::safeForTerminals()
{
    const QString title = text("a\x1b[31m\x7f\u009b\u202e\U000e0041\u00e4");
    const QString path = m_dir.write(
        text("unsafe.pdf"), documentOf(step(title, {summaryWith(element("Tool", "\x1b[2J"))})));
    for (const char* option : {"--json", "--jsonl"}) {
        const QByteArray json = runTresk({text("log"), text(option), path}).output;
        QVERIFY2(json.contains("\"a\\u001b[31m\\u007f\\u009b\\u202e\\udb40\\udc41\u00e4\""),
                 json.constData());
        QVERIFY2(json.contains("\"\\u001b[2J\""), json.constData());
    }
    const QJsonObject json = jsonObject(runTresk({text("log"), text("--json"), path}).output);
    QCOMPARE(firstStep(json).value(text("title")).toString(), title);
}

void TestCommandLogJson::aLineForEachStep()
{
    const FileSpec in = FileSpec::plain(text("in"), "i");
    const QString path = m_dir.write(
        text("lines.pdf"),
        documentWith(
            {step(text("a\nb")), step(text("c"), {in, summaryWith(fileElement("InFile", in))})}));
    for (const QStringList& options : {QStringList(), QStringList{text("--files")}}) {
        const Outcome outcome = runTresk(QStringList{text("log"), text("--jsonl"), path} + options);
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.exitCode, 0);
        QVERIFY(outcome.output.endsWith('\n'));
        const QList<QByteArray> lines = outcome.output.left(outcome.output.size() - 1).split('\n');
        QCOMPARE(lines.size(), 2);
        const QJsonArray steps =
            jsonObject(runTresk(QStringList{text("log"), text("--json"), path} + options).output)
                .value(text("steps"))
                .toArray();
        for (int i = 0; i < 2; ++i) {
            QJsonObject object = jsonObject(lines[i]);
            QCOMPARE(object.take(text("document")).toString(), path);
            QCOMPARE(object.take(text("schema")).toString(), text("tresk-log-line/1"));
            QCOMPARE(object, steps[i].toObject());
        }
    }
}

void TestCommandLogJson::linesOfSeveralDocuments()
{
    const QString one = m_dir.write(text("one.pdf"), documentOf(step(text("1"))));
    const QString two = m_dir.write(text("two.pdf"), documentOf(step(text("2"))));
    const QString missing = m_dir.path(text("missing"));
    const Outcome outcome = runTresk({text("log"), text("--jsonl"), one, missing, two});
    QCOMPARE(outcome.errors, "tresk: " + missing.toUtf8() + ": No such file or directory\n");
    QCOMPARE(outcome.exitCode, 2);
    const QList<QByteArray> lines = outcome.output.split('\n');
    QCOMPARE(lines.size(), 3);
    QCOMPARE(jsonObject(lines[0]).value(text("document")).toString(), one);
    QCOMPARE(jsonObject(lines[1]).value(text("document")).toString(), two);
}

void TestCommandLogJson::oneObjectIsOfOneDocument()
{
    const Outcome both = runTresk({text("log"), text("--json"), text("a.pdf"), text("b.pdf")});
    QCOMPARE(both.errors,
             QByteArray("tresk: log: --json takes one DOC, --jsonl any number; "
                        "see 'tresk log --help'\n"));
    QCOMPARE(both.exitCode, 2);
    const Outcome forms = runTresk({text("log"), text("--json"), text("--jsonl"), text("a.pdf")});
    QCOMPARE(forms.errors,
             QByteArray("tresk: log: --json and --jsonl exclude each other; "
                        "see 'tresk log --help'\n"));
    QCOMPARE(forms.exitCode, 2);
}

void TestCommandLogJson::filesAreCountedAsTheyAreListed()
{
    int largest = 0;
    for (unsigned seed = 0; seed < 20; ++seed) {
        const QString path = m_dir.write(text("overlapping.pdf"), overlappingDocument(seed));
        const Outcome outcome = runTresk({text("log"), text("--json"), text("--files"), path});
        const QJsonArray steps = jsonObject(outcome.output).value(text("steps")).toArray();
        QVERIFY(!steps.isEmpty());
        for (const QJsonValue& value : steps) {
            const QJsonObject step = value.toObject();
            const int count = step.value(text("fileCount")).toInt();
            QCOMPARE(count, step.value(text("files")).toArray().size());
            largest = std::max(largest, count);
        }
    }
    QVERIFY(largest > 10);
}

QTEST_GUILESS_MAIN(TestCommandLogJson)
#include "tst_command_log_json.moc"
