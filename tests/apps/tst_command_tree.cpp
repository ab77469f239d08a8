#include "Command.h"
#include "Documents.h"
#include "SummaryXml.h"

#include <TestFiles.h>

#include <QDir>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QtTest>

#include <csignal>

using namespace tresktest;

/// What `tresk tree` draws.
class TestCommandTree : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void stepsNewestFirst();
    void embeddedDocumentsUnderTheirStep();
    void severalDocumentsInOneStep();
    void onlyEmbeddedTreskFilesAreFollowed();
    void textsAreSafeForTerminals();
    void jsonHasTheSameShape();
    void dotQuotesWhatIsInIt();
    void jsonAndDotExcludeEachOther();
    void noHistory();
    void brokenDocumentsInsideAreToldOf();
    void damageIsToldOf_data();
    void damageIsToldOf();
    void nothingStaysInTheTemporaryDirectory();
    void nothingStaysBehindASignal_data();
    void nothingStaysBehindASignal();
    void ignoredSignalIsIgnored();

private:
    Outcome tree(const QByteArray& document, const QStringList& options = {}) const;
    QString writeLargeNested() const;
    Outcome treeWithSignal(const QString& before, int number) const;

    TestDir m_dir;
};

Outcome TestCommandTree::tree(const QByteArray& document, const QStringList& options) const
{
    m_dir.write(text("some.pdf"), document);
    return Command(QStringList{text("tree"), text("some.pdf")} + options)
        .inDirectory(m_dir.path(QString()))
        .run();
}

void TestCommandTree::stepsNewestFirst()
{
    const Outcome outcome = tree(documentWith({stepByTool("one", "t1"), stepByTool("two", "t2")}));
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, QByteArray("some.pdf\n├─ 0  two  (t2)\n└─ 1  one  (t1)\n"));
    QCOMPARE(outcome.exitCode, 0);
}

void TestCommandTree::embeddedDocumentsUnderTheirStep()
{
    const FileSpec innermost = embeddedDocument("c.tresk", {stepByTool("three", "t3")});
    const FileSpec inner = embeddedDocument(
        "b.tresk", {stepByTool("two", "t2", {innermost}), stepByTool("two again", "t2")});
    const Outcome outcome = tree(
        documentWith({stepByTool("one", "t1", {inner}), stepByTool("last", "t1")}));
    QCOMPARE(outcome.output,
             QByteArray("some.pdf\n"
                        "├─ 0  last  (t1)\n"
                        "└─ 1  one  (t1)\n"
                        "   └─ b.tresk\n"
                        "      ├─ 2  two again  (t2)\n"
                        "      └─ 3  two  (t2)\n"
                        "         └─ c.tresk\n"
                        "            └─ 4  three  (t3)\n"));
    QCOMPARE(outcome.exitCode, 0);
}

void TestCommandTree::severalDocumentsInOneStep()
{
    const QVector<FileSpec> files{embeddedDocument("a.tresk", {stepByTool("in a", "t")}),
                                  embeddedDocument("b.tresk", {stepByTool("in b", "t")})};
    QCOMPARE(tree(documentWith({stepByTool("both", "t", files)})).output,
             QByteArray("some.pdf\n"
                        "└─ 0  both  (t)\n"
                        "   ├─ a.tresk\n"
                        "   │  └─ 1  in a  (t)\n"
                        "   └─ b.tresk\n"
                        "      └─ 2  in b  (t)\n"));
}

void TestCommandTree::onlyEmbeddedTreskFilesAreFollowed()
{
    const QVector<FileSpec> files{embeddedDocument("a.TRESK", {stepByTool("in a", "t")}),
                                  embeddedDocument("b.pdf", {stepByTool("in b", "t")})};
    QCOMPARE(tree(documentWith({stepByTool("both", "t", files)})).output,
             QByteArray("some.pdf\n└─ 0  both  (t)\n"));
}

void TestCommandTree::textsAreSafeForTerminals()
{
    const FileSpec inner = embeddedDocument("x\x1b[2J.tresk", {stepByTool("", "")});
    QCOMPARE(tree(documentWith({stepByTool("a\x07", "b\nc", {inner})})).output,
             QByteArray("some.pdf\n└─ 0  a\\x07  (b\\nc)\n   └─ x\\x1b[2J.tresk\n"
                        "      └─ 1  <no title>\n"));
}

void TestCommandTree::jsonHasTheSameShape()
{
    const FileSpec inner = embeddedDocument("b.tresk", {stepByTool("two", "t2")});
    const Outcome outcome = tree(documentWith({stepByTool("one", "t1", {inner})}),
                                 {text("--json")});
    const QJsonObject object = jsonObject(outcome.output);
    QCOMPARE(object.value(text("document")).toString(), text("some.pdf"));
    const QJsonObject one = object.value(text("steps")).toArray().at(0).toObject();
    QCOMPARE(one.value(text("node")).toInt(-1), 0);
    QCOMPARE(one.value(text("title")).toString(), text("one"));
    QVERIFY(one.value(text("host")).isNull());
    const QJsonObject document = one.value(text("documents")).toArray().at(0).toObject();
    QCOMPARE(document.value(text("name")).toString(), text("b.tresk"));
    const QJsonObject two = document.value(text("steps")).toArray().at(0).toObject();
    QCOMPARE(two.value(text("node")).toInt(-1), 1);
    QCOMPARE(two.value(text("tool")).toString(), text("t2"));
    QVERIFY(two.value(text("documents")).toArray().isEmpty());
}

void TestCommandTree::dotQuotesWhatIsInIt()
{
    const FileSpec inner = embeddedDocument("b\".tresk", {stepByTool("two", "")});
    const Outcome outcome = tree(documentWith({stepByTool("a \"b\\c", "t", {inner})}),
                                 {text("--dot")});
    QCOMPARE(outcome.output,
             QByteArray("digraph history {\n  rankdir=LR;\n  node [shape=box];\n"
                        "  document [shape=note, label=\"some.pdf\"];\n"
                        "  step0 [label=\"a \\\"b\\\\c\\nt\"];\n"
                        "  document -> step0;\n"
                        "  step1 [label=\"two\\n\"];\n"
                        "  step0 -> step1 [label=\"b\\\".tresk\"];\n"
                        "}\n"));
}

void TestCommandTree::jsonAndDotExcludeEachOther()
{
    const Outcome outcome = tree(documentWith({stepByTool("one", "t")}),
                                 {text("--json"), text("--dot")});
    QCOMPARE(outcome.exitCode, 2);
    QVERIFY2(outcome.errors.contains("--json and --dot exclude each other"),
             outcome.errors.constData());
    QCOMPARE(outcome.output, QByteArray());
}

void TestCommandTree::noHistory()
{
    const Outcome outcome = tree("%PDF-1.4\n");
    QCOMPARE(outcome.exitCode, 2);
    QVERIFY2(outcome.errors.startsWith("tresk: some.pdf: has no history"),
             outcome.errors.constData());
}

void TestCommandTree::brokenDocumentsInsideAreToldOf()
{
    FileSpec broken = embeddedDocument("b.tresk", {stepByTool("in b", "t")});
    broken.stored = QByteArray("no stream");
    const QVector<FileSpec> files{broken, FileSpec::plain(text("c.tresk"), "no document"),
                                  embeddedDocument("d.tresk", {stepByTool("in d", "t")})};
    const Outcome outcome = tree(documentWith({stepByTool("one", "t", files)}));
    QCOMPARE(outcome.output,
             QByteArray("some.pdf\n└─ 0  one  (t)\n   └─ d.tresk\n      └─ 1  in d  (t)\n"));
    const QByteArray problem = "tresk: some.pdf: there is no history to be read in ";
    QCOMPARE(outcome.errors,
             problem + "\"b.tresk\", which step 0 of the tree embeds\n" + problem
                 + "\"c.tresk\", which step 0 of the tree embeds\n");
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandTree::damageIsToldOf_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("message");
    const QVector<SectionSpec> cutOff = {stepByTool("one", "t").with("size", "9999")};
    SectionSpec astray = stepByTool("one", "t").with("previousmarker", "12");
    astray.gap = QByteArray(20, '\n'); // farther than the neighbourhood that is searched
    const QVector<SectionSpec> broken = {stepByTool("lost", "t"), astray};
    const auto embedding = [](const QVector<SectionSpec>& steps) {
        return documentWith({stepByTool("outer", "t", {embeddedDocument("b.tresk", steps)})});
    };
    const QByteArray beyond = "is cut off or damaged: 1 step would reach beyond its end\n";
    const QByteArray incomplete = "the history is incomplete: the step before step 0 is not where "
                                  "its marker says\n";
    const QByteArray inside = "embedded document \"b.tresk\" (step 0 of the tree): ";
    QTest::newRow("cut off") << documentWith(cutOff) << beyond;
    QTest::newRow("broken chain") << documentWith(broken) << incomplete;
    QTest::newRow("cut off inside") << embedding(cutOff) << inside + beyond;
    QTest::newRow("broken chain inside") << embedding(broken) << inside + incomplete;
}

/// Also by `tresk diff`, which compares what there is.
void TestCommandTree::damageIsToldOf()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, message);
    const Outcome shown = tree(document);
    QCOMPARE(shown.errors, "tresk: some.pdf: " + message);
    QCOMPARE(shown.exitCode, 2);
    QVERIFY2(shown.output.contains("  one  (t)\n"), shown.output.constData());

    const Outcome compared = Command({text("diff"), text("some.pdf"), text("some.pdf")})
                                 .inDirectory(m_dir.path(QString()))
                                 .run();
    QCOMPARE(compared.errors, ("tresk: some.pdf: " + message).repeated(2));
    QCOMPARE(compared.exitCode, 2);
    QVERIFY2(compared.output.contains("the same"), compared.output.constData());
}

void TestCommandTree::nothingStaysInTheTemporaryDirectory()
{
    const QString temporary = m_dir.path(text("temporary"));
    QVERIFY(QDir().mkpath(temporary));
    const FileSpec inner = embeddedDocument("b.tresk", {stepByTool("two", "t2")});
    m_dir.write(text("some.pdf"), documentWith({stepByTool("one", "t1", {inner})}));
    const Outcome outcome =
        Command({text("tree"), m_dir.path(text("some.pdf"))}).with(text("TMPDIR"), temporary).run();
    QVERIFY2(outcome.output.contains("1  two"), outcome.output.constData());
    QCOMPARE(entriesOf(temporary), QStringList());
}

/// A document that takes long enough to unpack for a signal to come in time.
QString TestCommandTree::writeLargeNested() const
{
    FileSpec large = fileOfZeros(text("b.tresk"), qint64(200) * 1024 * 1024);
    large.with("md5cfile", md5Hex(*large.stored)); // without which it is copied as it is
    const QByteArray input = element("Filename", "b.tresk") + element("Embedded", "1")
        + element("UncompressedSize", large.raw.value("filesize"))
        + element("UncompressedMD5", md5Hex(large.content));
    const FileSpec summary = summaryWith(element("InFile", input));
    return m_dir.write(text("large.pdf"), documentWith(QVector<FileSpec>{large, summary}));
}

/// Has the shell do what @p before says, and sends the command the signal while there is a
/// temporary file. What it ended with is told as the shell has it: 128 + the number of a signal.
Outcome TestCommandTree::treeWithSignal(const QString& before, int number) const
{
    const QString temporary = m_dir.path(text("temporary"));
    QDir().mkpath(temporary);
    const auto interrupt = [this, &temporary, number](qint64) {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 30000) {
            const QStringList folders = entriesOf(temporary);
            if (!folders.isEmpty()
                && !entriesOf(temporary + QLatin1Char('/') + folders.first()).isEmpty())
                break;
            QTest::qSleep(1);
        }
        kill(readFile(m_dir.path(text("process"))).trimmed().toInt(), number);
    };
    const QString script = text("sh -c 'echo $$ >process; exec \"$@\"' sh \"$@\"; exit $?");
    return Command({text("tree"), writeLargeNested()})
        .with(text("TMPDIR"), temporary)
        .inDirectory(m_dir.path(QString()))
        .inShell(before + script)
        .runWhile(interrupt);
}

void TestCommandTree::nothingStaysBehindASignal_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("HUP") << SIGHUP;
    QTest::newRow("INT") << SIGINT;
    QTest::newRow("TERM") << SIGTERM;
}

void TestCommandTree::nothingStaysBehindASignal()
{
    QFETCH(int, number);
    const Outcome outcome = treeWithSignal(text(""), number);
    QCOMPARE(outcome.exitCode, 128 + number);
    QCOMPARE(entriesOf(m_dir.path(text("temporary"))), QStringList());
}

void TestCommandTree::ignoredSignalIsIgnored()
{
    const Outcome outcome = treeWithSignal(text("trap '' HUP; "), SIGHUP);
    QVERIFY2(outcome.errors.contains("there is no history to be read in"),
             outcome.errors.constData());
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(entriesOf(m_dir.path(text("temporary"))), QStringList());
}

QTEST_GUILESS_MAIN(TestCommandTree)
#include "tst_command_tree.moc"
