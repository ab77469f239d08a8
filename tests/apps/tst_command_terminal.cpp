#include "Command.h"
#include "Documents.h"

#include <TestFiles.h>

#include <QDir>
#include <QtTest>

using namespace tresktest;

/// What is different when a person looks on: colour and progress.
class TestCommandTerminal : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void outputIsColoured_data();
    void outputIsColoured();
    void onlyTheOutputDecidesOnColour();
    void progressIsShownAndCleared();
    void progressNeedsATerminal_data();
    void progressNeedsATerminal();
    void linesOfFilesStayWhole();
    void errorsStayWhole();

private:
    Command extract(const QStringList& arguments = {}) const;

    TestDir m_dir;
    QString m_document;
    QString m_target;
};

namespace {

const QByteArray clearLine = "\r\x1b[K";

/// What is left on the terminal after the cleared lines are gone. Terminals get "\r\n" for
/// every line break.
QByteArray remaining(QByteArray shown)
{
    shown.replace("\r\n", "\n");
    for (auto clear = shown.indexOf(clearLine); clear != -1; clear = shown.indexOf(clearLine)) {
        const auto lineStart = clear == 0 ? 0 : shown.lastIndexOf('\n', clear - 1) + 1;
        shown.remove(lineStart, clear + clearLine.size() - lineStart);
    }
    return shown;
}

} // namespace

void TestCommandTerminal::initTestCase()
{
    m_document = m_dir.write(text("some.pdf"),
                             documentWith({FileSpec::plain(text("a.txt"), "alpha"),
                                           FileSpec::flate(text("b\x1b[2J"), "beta")}));
    m_target = m_dir.path(text("out"));
}

Command TestCommandTerminal::extract(const QStringList& arguments) const
{
    QDir(m_target).removeRecursively();
    return Command(QStringList{text("extract"), m_document, text("-C"), m_target} + arguments);
}

void TestCommandTerminal::outputIsColoured_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("coloured");

    const QStringList none;
    const QString unused = text("TRESK_TEST_UNUSED");
    QTest::newRow("by itself") << none << unused << text("1") << true;
    QTest::newRow("auto") << QStringList{text("--color=auto")} << unused << text("1") << true;
    QTest::newRow("never") << QStringList{text("--color=never")} << unused << text("1") << false;
    QTest::newRow("NO_COLOR") << none << text("NO_COLOR") << text("1") << false;
    QTest::newRow("empty NO_COLOR") << none << text("NO_COLOR") << text("") << true;
    QTest::newRow("NO_COLOR and auto")
        << QStringList{text("--color=auto")} << text("NO_COLOR") << text("1") << false;
    QTest::newRow("NO_COLOR and always")
        << QStringList{text("--color=always")} << text("NO_COLOR") << text("1") << true;
    QTest::newRow("dumb terminal") << none << text("TERM") << text("dumb") << false;
}

void TestCommandTerminal::outputIsColoured()
{
    QFETCH(QStringList, options);
    QFETCH(QString, variable);
    QFETCH(QString, value);
    QFETCH(bool, coloured);
    for (const char* command : {"log", "files"}) {
        const Outcome outcome = Command(QStringList{text(command), m_document} + options)
                                    .with(variable, value)
                                    .runOnTerminal(true, false);
        QCOMPARE(outcome.exitCode, 0);
        QVERIFY(outcome.output.contains("step") || outcome.output.contains("a.txt"));
        QCOMPARE(outcome.output.contains("\x1b[33m"), coloured);
        // The file's own escape sequence never gets through.
        QVERIFY(!outcome.output.contains("\x1b[2J"));
    }
}

void TestCommandTerminal::onlyTheOutputDecidesOnColour()
{
    const Outcome outcome = Command({text("log"), m_document}).runOnTerminal(false, true);
    QCOMPARE(outcome.errors, QByteArray());
    QVERIFY(outcome.output.startsWith("step 0  step\n"));
}

void TestCommandTerminal::progressIsShownAndCleared()
{
    const Outcome outcome = extract().runOnTerminal(false, true);
    QCOMPARE(outcome.exitCode, 0);
    const QByteArray first = clearLine + "[....................]   0%  a.txt";
    QVERIFY2(outcome.errors.startsWith(first), outcome.errors.constData());
    QVERIFY(outcome.errors.endsWith(clearLine));
    QCOMPARE(remaining(outcome.errors), QByteArray());
    QVERIFY(!outcome.errors.contains("\x1b[2J"));
    QCOMPARE(outcome.output.count('\n'), 2);
}

void TestCommandTerminal::progressNeedsATerminal_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("terminal");
    QTest::addColumn<bool>("shown");
    QTest::newRow("by itself") << QStringList() << text("xterm") << true;
    QTest::newRow("with --json") << QStringList{text("--json")} << text("xterm") << true;
    QTest::newRow("quiet") << QStringList{text("-q")} << text("xterm") << false;
    QTest::newRow("dumb terminal") << QStringList() << text("dumb") << false;
}

void TestCommandTerminal::progressNeedsATerminal()
{
    QFETCH(QStringList, options);
    QFETCH(QString, terminal);
    QFETCH(bool, shown);
    const QString variable = text("TERM");
    const Outcome seen = extract(options).with(variable, terminal).runOnTerminal(false, true);
    QCOMPARE(seen.exitCode, 0);
    QCOMPARE(seen.errors.isEmpty(), !shown);
    const Outcome unseen = extract(options).with(variable, terminal).run();
    QCOMPARE(unseen.errors, QByteArray());
    QCOMPARE(unseen.output, seen.output);
}

void TestCommandTerminal::linesOfFilesStayWhole()
{
    const Outcome outcome = extract({text("--color=never")}).runOnTerminal(true, true);
    const QByteArray target = m_target.toUtf8();
    QCOMPARE(remaining(outcome.output),
             "0  " + target + "/a.txt\n1  " + target
                 + "/b_[2J  (in the document: \"b\\x1b[2J\")\n");
}

void TestCommandTerminal::errorsStayWhole()
{
    Command first = extract();
    QCOMPARE(first.run().exitCode, 0);
    const Outcome again = Command({text("extract"), m_document, text("-C"), m_target, text("0")})
                              .runOnTerminal(true, true);
    QCOMPARE(again.exitCode, 2);
    QCOMPARE(remaining(again.output),
             "tresk: " + m_document.toUtf8() + ": file 0 \"a.txt\": cannot write "
                 + m_target.toUtf8() + "/a.txt: it exists already (--force replaces it)\n");
}

QTEST_GUILESS_MAIN(TestCommandTerminal)
#include "tst_command_terminal.moc"
