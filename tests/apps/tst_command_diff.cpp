#include "Command.h"
#include "Documents.h"
#include "SummaryXml.h"

#include <TestFiles.h>
#include <Watched.h>

#include <QJsonArray>
#include <QtTest>

using namespace tresktest;

/// What `tresk diff` says of two documents.
class TestCommandDiff : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sameHistories();
    void stepsOfOneDocumentOnly();
    void whatChangedInAStep_data();
    void whatChangedInAStep();
    void filesOfAStep();
    void movedUnderAnotherStep();
    void severalWays();
    void wrongNumbers_data();
    void wrongNumbers();
    void jsonTellsAll();
    void dotDrawsBothSides();
    void uncertainResult();
    void trouble();

private:
    Outcome diff(const QByteArray& first, const QByteArray& second,
                 const QStringList& options = {}) const;

    TestDir m_dir;
};

namespace {

/// A document with the steps under step @p parent of 60, -1 at the top, which hang under each other
/// at random; nothing if there are none. Half of them are called @p name and a number, the others
/// are of few kinds.
QByteArray tangledHistory(int parent, const char* name)
{
    QVector<SectionSpec> steps;
    for (int i = parent + 1; i < 60; ++i) {
        const int parentOfStep = i == 0 ? -1 : i * 7919 % 101 % (i + 1) - 1;
        if (parentOfStep != parent)
            continue;
        const bool isCommon = i % 4 > 1;
        const QByteArray number = QByteArray::number(isCommon ? i / 12 : i);
        const QByteArray title = (isCommon ? "common " : name) + number;
        const QByteArray below = tangledHistory(i, name);
        QVector<FileSpec> files;
        if (!below.isEmpty())
            files += FileSpec::flate(text("below.tresk"), below);
        steps += titledStep(title.constData(), files);
    }
    return steps.isEmpty() ? QByteArray() : documentWith(steps);
}

} // namespace

Outcome TestCommandDiff::diff(const QByteArray& first, const QByteArray& second,
                              const QStringList& options) const
{
    m_dir.write(text("a.pdf"), first);
    m_dir.write(text("b.pdf"), second);
    return Command(QStringList{text("diff"), text("a.pdf"), text("b.pdf")} + options)
        .inDirectory(m_dir.path(QString()))
        .run();
}

void TestCommandDiff::sameHistories()
{
    const QByteArray document = documentWith({titledStep("one"), titledStep("two")});
    const Outcome outcome = diff(document, document);
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, QByteArray("The histories are the same: 2 steps.\n"));
    QCOMPARE(outcome.exitCode, 0);
}

void TestCommandDiff::stepsOfOneDocumentOnly()
{
    const Outcome outcome = diff(documentWith({titledStep("one"), titledStep("two")}),
                                 documentWith({titledStep("one"), titledStep("three")}));
    QCOMPARE(outcome.output,
             QByteArray("Steps that correspond:\n    1 = 1  one\n"
                        "Only in a.pdf:\n    0  two\n"
                        "Only in b.pdf:\n    0  three\n"));
    QCOMPARE(outcome.exitCode, 1);
}

void TestCommandDiff::whatChangedInAStep_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("shown");
    QTest::newRow("time") << QByteArray("Timestamp") << QByteArray("time");
    QTest::newRow("description") << QByteArray("Description") << QByteArray("description");
    QTest::newRow("comment") << QByteArray("Comment") << QByteArray("comment");
    QTest::newRow("command") << QByteArray("Command") << QByteArray("command");
    QTest::newRow("user") << QByteArray("User") << QByteArray("user");
    QTest::newRow("host") << QByteArray("Host") << QByteArray("host");
}

void TestCommandDiff::whatChangedInAStep()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, shown);
    const auto document = [&name](const char* value) {
        return documentWith({toldStep(element("Title", "one") + element(name.constData(), value))});
    };
    const Outcome outcome = diff(document("before"), document("after\x1b"));
    const QByteArray end = "\n        " + shown + ": \"before\" -> \"after\\x1b\"\n";
    QVERIFY2(outcome.output.endsWith(end), outcome.output.constData());
    QCOMPARE(outcome.exitCode, 1);
}

void TestCommandDiff::filesOfAStep()
{
    const auto file = [](const char* name, const char* content) {
        return FileSpec::plain(text(name), content);
    };
    const Outcome outcome = diff(
        documentWith({titledStep("one", {file("gone", "1"), file("same", "2"), file("new", "3")})}),
        documentWith(
            {titledStep("one", {file("same", "2"), file("new", "4"), file("more", "5")})}));
    QCOMPARE(outcome.output,
             QByteArray("Steps that correspond:\n    0 = 0  one\n"
                        "        - in \"gone\"\n"
                        "        ! in \"new\": other content\n"
                        "        + in \"more\"\n"));
    QCOMPARE(outcome.exitCode, 1);
}

void TestCommandDiff::movedUnderAnotherStep()
{
    // The document with the step "inner" is an input of another step.
    const FileSpec inner = FileSpec::flate(text("in.tresk"), documentWith({titledStep("inner")}));
    const Outcome outcome = diff(documentWith({titledStep("one", {inner}), titledStep("two")}),
                                 documentWith({titledStep("one"), titledStep("two", {inner})}));
    QVERIFY2(outcome.output.contains("\nMoved under another step:\n    2 = 1  inner\n"),
             outcome.output.constData());
    QCOMPARE(outcome.exitCode, 1);
}

void TestCommandDiff::severalWays()
{
    const QByteArray document = documentWith({titledStep("one")});
    const Outcome outcome = diff(document, document, {text("-n"), text("3")});
    QCOMPARE(outcome.output,
             QByteArray("Way 1\nThe histories are the same: 1 step.\n"
                        "\nWay 2\nOnly in a.pdf:\n    0  one\nOnly in b.pdf:\n    0  one\n"));
    QCOMPARE(outcome.exitCode, 0); // the best one counts
}

void TestCommandDiff::wrongNumbers_data()
{
    QTest::addColumn<QString>("number");
    for (const char* number : {"0", "-1", "1001", "x", "", "99999999999999999999"})
        QTest::newRow(number) << text(number);
}

void TestCommandDiff::wrongNumbers()
{
    QFETCH(QString, number);
    const QByteArray document = documentWith({titledStep("one")});
    const Outcome outcome = diff(document, document, {text("--number=") + number});
    QCOMPARE(outcome.exitCode, 2);
    QVERIFY2(outcome.errors.contains("-n takes a number from 1 to 1000"),
             outcome.errors.constData());
}

void TestCommandDiff::jsonTellsAll()
{
    const FileSpec file = FileSpec::plain(text("f"), "1");
    const Outcome outcome = diff(documentWith({titledStep("one", {file}), titledStep("two")}),
                                 documentWith({titledStep("one")}), {text("--json")});
    const QJsonObject object = jsonObject(outcome.output);
    QCOMPARE(object.value(text("same")).toBool(true), false);
    QCOMPARE(object.value(text("certain")).toBool(false), true);
    QCOMPARE(object.value(text("second")).toString(), text("b.pdf"));
    const QJsonObject result = object.value(text("results")).toArray().at(0).toObject();
    QCOMPARE(result.value(text("onlyFirst")).toArray(), QJsonArray{0});
    QCOMPARE(result.value(text("onlySecond")).toArray(), QJsonArray());
    const QJsonObject pair = result.value(text("pairs")).toArray().at(0).toObject();
    QCOMPARE(pair.value(text("first")).toInt(-1), 1);
    QCOMPARE(pair.value(text("second")).toInt(-1), 0);
    QCOMPARE(pair.value(text("moved")).toBool(true), false);
    const QJsonObject change = pair.value(text("changes")).toArray().at(0).toObject();
    QCOMPARE(change.value(text("kind")).toString(), text("fileRemoved"));
    QCOMPARE(change.value(text("before")).toString(), text("f"));
    QVERIFY(change.value(text("after")).isNull());
    QCOMPARE(outcome.exitCode, 1);
}

void TestCommandDiff::dotDrawsBothSides()
{
    const Outcome outcome = diff(documentWith({titledStep("one")}),
                                 documentWith({titledStep("one")}), {text("--dot")});
    QCOMPARE(
        outcome.output,
        QByteArray("digraph diff {\n  rankdir=LR;\n  node [shape=box];\n"
                   "  subgraph cluster_a {\n    label=\"a.pdf\";\n    a0 [label=\"one\"];\n  }\n"
                   "  subgraph cluster_b {\n    label=\"b.pdf\";\n    b0 [label=\"one\"];\n  }\n"
                   "  a0 -> b0 [dir=none, constraint=false, style=solid];\n}\n"));
}

void TestCommandDiff::uncertainResult()
{
    const Outcome outcome = diff(tangledHistory(-1, "a"), tangledHistory(-1, "b"),
                                 {text("--json")});
    QVERIFY2(outcome.errors.startsWith("tresk: a.pdf, b.pdf: warning: The histories differ too "
                                       "much to be sure of the cheapest pairing: the one found "
                                       "costs "),
             outcome.errors.constData());
    QCOMPARE(outcome.errors.count('\n'), 1);
    const QJsonObject object = jsonObject(outcome.output);
    QCOMPARE(object.value(text("certain")).toBool(true), false);
    QCOMPARE(object.value(text("results")).toArray().size(), 1);
    QCOMPARE(outcome.exitCode, 1);

    if (isWatched())
        return; // that it says the same takes as long again
    const Outcome page = diff(tangledHistory(-1, "a"), tangledHistory(-1, "b"),
                              {text("--html"), text("-")});
    QVERIFY(page.output.contains("there may be better ways of pairing their steps"));
    QCOMPARE(page.errors, outcome.errors);
    QCOMPARE(page.exitCode, 1);
}

void TestCommandDiff::trouble()
{
    const Outcome outcome = diff("%PDF-1.4\n", documentWith({titledStep("one")}));
    QCOMPARE(outcome.exitCode, 2);
    QVERIFY2(outcome.errors.startsWith("tresk: a.pdf: has no history"), outcome.errors.constData());
    QCOMPARE(outcome.output, QByteArray());
    const Outcome both = diff("x", "y");
    QVERIFY2(both.errors.contains("tresk: a.pdf: ") && both.errors.contains("tresk: b.pdf: "),
             both.errors.constData());
}

QTEST_GUILESS_MAIN(TestCommandDiff)
#include "tst_command_diff.moc"
