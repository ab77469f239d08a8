#include "Latin1.h"
#include "SplitModel.h"

#include <tresk/TreskRunner.h>

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

using tresk::TreskRunner;
using tresktest::latin1;
using tresktest::SplitModel;

namespace {

/// A runner that runs nothing.
class Runner : public TreskRunner {
public:
    explicit Runner(QObject* listener = nullptr)
        : TreskRunner(QStringLiteral("tool"), listener)
    {
    }

    int runProcess(const QString&) override { return 0; }
};

class TextListener : public QObject {
    Q_OBJECT

public:
    QStringList texts;

public Q_SLOTS:
    void log(const QString& text) { texts.append(text); }
};

/// What a log signal was emitted with, each time as its type, a blank and the text.
QStringList linesOf(const QSignalSpy& spy)
{
    QStringList lines;
    for (const QVariantList& arguments : spy)
        lines += arguments.at(1).toString() + QLatin1Char(' ') + arguments.at(0).toString();
    return lines;
}

QString randomText(QRandomGenerator& random)
{
    static const QStringList pieces = {latin1("\r"),     latin1("\n"),       latin1("\r\n"),
                                       latin1("a"),      latin1("***ERROR"), latin1("***WARNING"),
                                       latin1("***ERR"), QString(QChar(0)),  QString(QChar(0x2028)),
                                       latin1(" "),      latin1("\v\f"),     latin1("\x85")};
    QString text;
    for (quint32 left = random.bounded(14U); left > 0; --left)
        text += pieces.at(random.bounded(int(pieces.size())));
    return text;
}

} // namespace

/// How a runner makes messages of what a tool prints.
class TestTreskRunnerOutput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void line_data();
    void line();
    void pieces_data();
    void pieces();
    void flush_data();
    void flush();
    void restStaysAfterFlush();
    void restIsForgotten();
    void emptyRestIsForgotten();
    void listenerReceivesTexts();
    void outputDoesNotIntercept();
    void randomTexts();
    void longLine();
};

void TestTreskRunnerOutput::line_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, const char* line, const char* message) {
        QTest::newRow(name) << latin1(line) << latin1(message);
    };
    row("plain", "text\n", "0 text\n");
    row("empty", "", "0 ");
    row("line feed", "\n", "0 \n");
    row("no line feed", "text", "0 text");
    row("blanks", "  text \n", "0   text \n");
    row("error", "***ERROR: text\n", "2 : text\n");
    row("error, blank", "***ERROR text\n", "2  text\n");
    row("error, nothing between", "***ERRORtext\n", "2 text\n");
    row("error, longer word", "***ERRORS\n", "2 S\n");
    row("error alone", "***ERROR\n", "2 \n");
    row("error without line feed", "***ERROR", "2 ");
    row("warning", "***WARNING: text\n", "1 : text\n");
    row("warning, nothing between", "***WARNINGtext\n", "1 text\n");
    row("warning alone", "***WARNING\n", "1 \n");
    row("warning without line feed", "***WARNING", "1 ");
    row("error behind error", "***ERROR***ERROR\n", "2 ***ERROR\n");
    row("error behind warning", "***WARNING***ERROR: x\n", "1 ***ERROR: x\n");
    row("two asterisks", "**ERROR: text\n", "0 **ERROR: text\n");
    row("two asterisks, warning", "**WARNING: text\n", "0 **WARNING: text\n");
    row("four asterisks", "****ERROR: text\n", "0 ****ERROR: text\n");
    row("small letters", "***error: text\n", "0 ***error: text\n");
    row("mixed letters", "***Warning: text\n", "0 ***Warning: text\n");
    row("blank in front", " ***ERROR: text\n", "0  ***ERROR: text\n");
    row("not in front", "text ***WARNING: text\n", "0 text ***WARNING: text\n");
    row("cut error", "***ERRO\n", "0 ***ERRO\n");
    row("cut warning", "***WARNIN\n", "0 ***WARNIN\n");
    row("placeholder", "%1 %2\n", "0 %1 %2\n");
    row("line breaks inside", "a\r\nb\n", "0 a\r\nb\n");
}

void TestTreskRunnerOutput::line()
{
    QFETCH(QString, line);
    QFETCH(QString, message);
    Runner runner;
    const QSignalSpy spy(&runner, SIGNAL(log(QString, int)));
    runner.processOutputLine(line);
    QCOMPARE(linesOf(spy), QStringList(message));
}

void TestTreskRunnerOutput::pieces_data()
{
    QTest::addColumn<QStringList>("pieces");
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QString>("rest"); // what a flush finds
    const auto row = [](const char* name, const char* pieces, const char* messages,
                        const char* rest) {
        const QString list = latin1(messages);
        QTest::newRow(name) << latin1(pieces).split(QLatin1Char('|'))
                            << (list.isEmpty() ? QStringList() : list.split(QLatin1Char('|')))
                            << latin1(rest);
    };
    row("nothing", "", "", "");
    row("no line break", "a", "", "a");
    row("line feed", "a\n", "0 a\n", "");
    row("carriage return", "a\r", "0 a\n", "");
    row("both", "a\r\n", "0 a\n", "");
    row("other order", "a\n\r", "0 a\n|0 \n", "");
    row("two lines", "a\nb\n", "0 a\n|0 b\n", "");
    row("one of each", "a\nb\rc\r\nd", "0 a\n|0 b\n|0 c\n", "d");
    row("empty lines", "\n\n\n", "0 \n|0 \n|0 \n", "");
    row("empty lines, carriage returns", "\r\r", "0 \n|0 \n", "");
    row("empty lines, both", "\r\n\r\n", "0 \n|0 \n", "");
    row("carriage return before both", "a\r\r\nb", "0 a\n|0 \n", "b");
    row("empty line between", "a\n\nb\n", "0 a\n|0 \n|0 b\n", "");
    row("pair across the border", "a\r|\nb", "0 a\n|0 \n", "b");
    row("pair across, nothing between", "a\r||\nb", "0 a\n|0 \n", "b");
    row("line across the border", "a|b\n", "0 ab\n", "");
    row("line across many borders", "a|b|c||d|\n|e", "0 abcd\n", "e");
    row("line break in its own piece", "a|\r\n|b|\n", "0 a\n|0 b\n", "");
    row("blanks stay", " a \n b", "0  a \n", " b");
    row("other separators stay",
        "a\v\f\x85"
        "b\n",
        "0 a\v\f\x85"
        "b\n",
        "");
    row("error", "x\n***ERROR: a\ny\n", "0 x\n|2 : a\n|0 y\n", "");
    row("warning", "***WARNINGword\r\n", "1 word\n", "");
    row("error across the border", "***ER|ROR a\n", "2  a\n", "");
    row("error not at the line's begin", "a|***ERROR\n", "0 a***ERROR\n", "");
    row("error behind a carriage return", "a\r|***ERROR\n", "0 a\n|2 \n", "");
    row("two asterisks", "**ERROR\n", "0 **ERROR\n", "");
}

void TestTreskRunnerOutput::pieces()
{
    QFETCH(QStringList, pieces);
    QFETCH(QStringList, messages);
    QFETCH(QString, rest);
    Runner runner;
    const QSignalSpy spy(&runner, SIGNAL(log(QString, int)));
    for (const QString& piece : qAsConst(pieces))
        runner.processOutput(piece, false);
    QCOMPARE(linesOf(spy), messages);
    runner.processOutput(QString(), true);
    if (!rest.isEmpty())
        messages += QStringLiteral("0 %1\n").arg(rest);
    QCOMPARE(linesOf(spy), messages);
}

void TestTreskRunnerOutput::flush_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("nothing") << QString() << QStringList();
    QTest::newRow("rest") << latin1("a") << QStringList({latin1("0 a\n")});
    QTest::newRow("line") << latin1("a\n") << QStringList({latin1("0 a\n")});
    QTest::newRow("line, carriage return") << latin1("a\r") << QStringList({latin1("0 a\n")});
    QTest::newRow("line and rest")
        << latin1("a\nb") << QStringList({latin1("0 a\n"), latin1("0 b\n")});
    QTest::newRow("blank") << latin1(" ") << QStringList({latin1("0  \n")});
    QTest::newRow("error") << latin1("***ERROR: a") << QStringList({latin1("2 : a\n")});
    QTest::newRow("warning") << latin1("***WARNING") << QStringList({latin1("1 \n")});
    QTest::newRow("two asterisks") << latin1("**ERROR") << QStringList({latin1("0 **ERROR\n")});
}

void TestTreskRunnerOutput::flush()
{
    QFETCH(QString, text);
    QFETCH(QStringList, messages);
    Runner runner;
    const QSignalSpy spy(&runner, SIGNAL(log(QString, int)));
    runner.processOutput(text, true);
    QCOMPARE(linesOf(spy), messages);
}

void TestTreskRunnerOutput::restStaysAfterFlush()
{
    Runner runner;
    const QSignalSpy spy(&runner, SIGNAL(log(QString, int)));
    runner.processOutput(latin1("a"), true);
    runner.processOutput(latin1("b\nc"), true);
    runner.processOutput(QString(), true);
    QCOMPARE(linesOf(spy),
             QStringList({latin1("0 a\n"), latin1("0 ab\n"), latin1("0 c\n"), latin1("0 c\n")}));
}

void TestTreskRunnerOutput::restIsForgotten()
{
    Runner runner;
    const QSignalSpy spy(&runner, SIGNAL(log(QString, int)));
    runner.processOutput(latin1("***ERR"), false);
    runner.clearOutputRest();
    QCOMPARE(linesOf(spy), QStringList());
    runner.processOutput(latin1("OR\n"), true);
    QCOMPARE(linesOf(spy), QStringList(latin1("0 OR\n")));
}

void TestTreskRunnerOutput::emptyRestIsForgotten()
{
    // A carriage return has ended its line, so there is nothing to forget.
    Runner runner;
    const QSignalSpy spy(&runner, SIGNAL(log(QString, int)));
    runner.clearOutputRest();
    runner.processOutput(latin1("a\r"), false);
    runner.clearOutputRest();
    runner.processOutput(latin1("\n"), true);
    QCOMPARE(linesOf(spy), QStringList({latin1("0 a\n"), latin1("0 \n")}));
}

void TestTreskRunnerOutput::listenerReceivesTexts()
{
    TextListener listener;
    Runner runner(&listener);
    runner.processOutput(latin1("a\n***ERROR: b\n***WARNING: c\nd"), true);
    QCOMPARE(listener.texts,
             QStringList({latin1("a\n"), latin1(": b\n"), latin1(": c\n"), latin1("d\n")}));
}

void TestTreskRunnerOutput::outputDoesNotIntercept()
{
    Runner runner;
    const QSignalSpy spy(&runner, SIGNAL(intercept()));
    QVERIFY(spy.isValid());
    runner.processOutput(latin1("a\nb"), true);
    QCOMPARE(spy.count(), 0);
}

void TestTreskRunnerOutput::randomTexts()
{
    QRandomGenerator random(54);
    for (int i = 0; i < 3000; ++i) {
        Runner runner;
        const QSignalSpy spy(&runner, SIGNAL(log(QString, int)));
        SplitModel model;
        QStringList pieces;
        while (random.bounded(5) != 0) {
            const bool flush = random.bounded(8) == 0;
            pieces += randomText(random);
            runner.processOutput(pieces.constLast(), flush);
            model.process(pieces.constLast(), flush);
            if (random.bounded(10) == 0) {
                runner.clearOutputRest();
                model.rest.clear();
            }
        }
        runner.processOutput(QString(), true);
        model.process(QString(), true);
        if (linesOf(spy) != model.lines)
            qWarning() << pieces;
        QCOMPARE(linesOf(spy), model.lines);
    }
}

void TestTreskRunnerOutput::longLine()
{
    const int size = 65536;
    const int count = 306; // 20 million characters
    const QString piece(size, QLatin1Char('x'));
    Runner runner;
    QStringList lines;
    connect(&runner, &TreskRunner::log, this, [&lines](const QString& text) { lines += text; });
    for (int i = 0; i < count; ++i)
        runner.processOutput(piece, false);
    QCOMPARE(lines.size(), 0);
    runner.processOutput(latin1("\nend"), true);
    QCOMPARE(lines.size(), 2);
    QVERIFY(lines.constFirst() == QString(size * count, QLatin1Char('x')) + QLatin1Char('\n'));
    QCOMPARE(lines.constLast(), latin1("end\n"));
}

QTEST_GUILESS_MAIN(TestTreskRunnerOutput)

#include "tst_treskrunner_output.moc"
