#include "Runners.h"
#include "Watched.h"

#include <tresk/TreskaddRunner.h>
#include <tresk/TreskdelRunner.h>

#include <QCoreApplication>
#include <QFile>
#include <QTest>
#include <QTranslator>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QTextCodec>
#endif

#include <cerrno>

#include <sys/wait.h>

using tresk::TreskaddRunner;
using tresk::TreskdelRunner;
using tresk::TreskRunner;
using tresktest::err;
using tresktest::exitMessage;
using tresktest::inPieces;
using tresktest::isUnderValgrind;
using tresktest::out;
using tresktest::RunnerLog;
using tresktest::standIn;
using tresktest::text;
using tresktest::ToolFolder;

namespace {

/// Translates one text of one context.
class OneText : public QTranslator {
public:
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        const bool match = qstrcmp(context, "QObject") == 0
            && qstrcmp(source, "Programm exited with error code: %1\n\n") == 0;
        return match ? text("over: %1") : QString();
    }
    bool isEmpty() const override { return false; }
};

/// What the stand-in prints of @p bytes that it got.
QString printed(const char* what, const QByteArray& bytes)
{
    return QStringLiteral("0 %1 %2\n").arg(text(what), QString::fromLatin1(bytes.toHex()));
}

} // namespace

/// What tools are given, and what comes of what they print.
class TestTreskRunnerRun : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void argumentOfTreskadd();
    void requestIsOneArgument_data();
    void requestIsOneArgument();
    void requestTooLong();
    void input_data();
    void input();
    void inputInOtherEncoding();
    void inputWhileItPrints();
    void inputOfTreskdelIsEmpty();
    void exitCode_data();
    void exitCode();
    void exitMessageIsTranslatedAsObject();
    void errorsInOrder();
    void messagesByKind();
    void piecesAreIntercepted();
    void borderBetweenPieces();
    void silentToolIsNotIntercepted();
    void isReusable();
    void restIsNotCarriedOver();
    void restStaysAfterRun();
    void restIsForgottenWithoutTool_data();
    void restIsForgottenWithoutTool();
    void nestedRuns();
    void eventsWhileIntercepted();
    void lastPieceIsInterceptedToo();

private:
    const ToolFolder m_tools;
    TreskaddRunner m_add{nullptr};
    TreskdelRunner m_del{nullptr};
};

void TestTreskRunnerRun::init()
{
    tresktest::useUtf8();
    standIn("");
    m_add.setSearchPaths({m_tools.relative()});
    m_del.setSearchPaths({m_tools.relative()});
}

void TestTreskRunnerRun::argumentOfTreskadd()
{
    const RunnerLog log(m_add);
    standIn("arguments\n");
    QCOMPARE(m_add.runProcess(text("input")), 0);
    QCOMPARE(log.messages, QStringList({printed("argument", "--stdin"), exitMessage(0)}));
}

void TestTreskRunnerRun::requestIsOneArgument_data()
{
    QTest::addColumn<QString>("request");
    QTest::newRow("word") << text("word");
    QTest::newRow("empty") << QString(text(""));
    QTest::newRow("null") << QString();
    QTest::newRow("blanks") << text("  two  words ");
    QTest::newRow("quotes") << text("\"a\" 'b' \"");
    QTest::newRow("line breaks") << text("a\nb\r\nc\r\n");
    QTest::newRow("backslashes") << text("a\\b\\\\ \\\"c");
    QTest::newRow("option") << text("--stdin");
    QTest::newRow("for a shell") << text("$HOME `id` *; exit 1 & # ~");
    QTest::newRow("placeholders") << text("%1 %2 %%");
    QTest::newRow("not ASCII") << text("Größe \xe2\x82\xac \xf0\x9f\x8c\xb3");
    QTest::newRow("long") << QString(100000, QLatin1Char('x'));
}

void TestTreskRunnerRun::requestIsOneArgument()
{
    QFETCH(QString, request);
    const RunnerLog log(m_del);
    standIn("arguments\n");
    QCOMPARE(m_del.runProcess(request), 0);
    QCOMPARE(log.messages, QStringList({printed("argument", request.toUtf8()), exitMessage(0)}));
}

void TestTreskRunnerRun::requestTooLong()
{
    if (isUnderValgrind())
        QSKIP("valgrind ends where a program cannot be started");
    // For the system.
    const RunnerLog log(m_del);
    QCOMPARE(m_del.runProcess(QString(10000000, QLatin1Char('x'))), -1001);
    const QString path = m_tools.found(text("treskdel"));
    QCOMPARE(log.messages, QStringList(text("2 ") + path + text(" failed to start\n")));
}

void TestTreskRunnerRun::input_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("line") << text("a line\n");
    QTest::newRow("no line feed at the end") << text("--title x");
    QTest::newRow("line breaks as they are") << text("a\nb\r\nc\r\n\n");
    QTest::newRow("NUL") << QString(QChar(0)) + text("a");
    QTest::newRow("not ASCII") << text("Größe \xe2\x82\xac \xf0\x9f\x8c\xb3\n");
    QTest::newRow("more than a pipe holds") << text("0123456789\n").repeated(30000);
}

void TestTreskRunnerRun::input()
{
    QFETCH(QString, text);
    const RunnerLog log(m_add);
    standIn("input\n");
    QCOMPARE(m_add.runProcess(text), 0);
    QCOMPARE(log.messages, QStringList({printed("input", text.toUtf8()), exitMessage(0)}));
}

void TestTreskRunnerRun::inputInOtherEncoding()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    const RunnerLog log(m_add);
    standIn("input\n");
    QCOMPARE(m_add.runProcess(text("Größe")), 0);
    QCOMPARE(log.messages,
             QStringList({printed("input",
                                  "Gr\xf6\xdf"
                                  "e"),
                          exitMessage(0)}));
    const RunnerLog requestLog(m_del);
    standIn("arguments\n");
    QCOMPARE(m_del.runProcess(text("Größe")), 0);
    QCOMPARE(requestLog.messages,
             QStringList({printed("argument",
                                  "Gr\xf6\xdf"
                                  "e"),
                          exitMessage(0)}));
#else
    QSKIP("the encoding is always UTF-8");
#endif
}

void TestTreskRunnerRun::inputWhileItPrints()
{
    // Both would wait for each other if one of them only wrote.
    QString input;
    QStringList lines;
    for (int i = 0; i < 200000; ++i) {
        lines += QStringLiteral("0 line %1\n").arg(i);
        input += lines.constLast().mid(2);
    }
    const RunnerLog log(m_add);
    standIn("copy\n");
    QCOMPARE(m_add.runProcess(input), 0);
    QVERIFY(log.messages == lines << exitMessage(0));
}

void TestTreskRunnerRun::inputOfTreskdelIsEmpty()
{
    const RunnerLog log(m_del);
    standIn("input\n");
    QCOMPARE(m_del.runProcess(text("request")), 0);
    QCOMPARE(log.messages, QStringList({printed("input", ""), exitMessage(0)}));
}

void TestTreskRunnerRun::exitCode_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {0, 1, 2, 127, 128, 255})
        QTest::newRow(QByteArray::number(code).constData()) << code;
}

void TestTreskRunnerRun::exitCode()
{
    QFETCH(int, code);
    standIn(out("***ERROR: a\nb") + "exit " + QByteArray::number(code) + '\n');
    for (TreskRunner* const runner : QList<TreskRunner*>({&m_add, &m_del})) {
        const RunnerLog log(*runner);
        QCOMPARE(runner->runProcess(text("x")), code);
        QCOMPARE(log.messages, QStringList({text("2 : a\n"), text("0 b\n"), exitMessage(code)}));
    }
}

void TestTreskRunnerRun::exitMessageIsTranslatedAsObject()
{
    OneText translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const RunnerLog log(m_add);
    standIn("exit 5\n");
    QCOMPARE(m_add.runProcess(QString()), 5);
    QCOMPARE(log.messages, QStringList(text("0 over: 5")));
}

void TestTreskRunnerRun::errorsInOrder()
{
    const RunnerLog log(m_del);
    standIn(out("a\n") + err("b\n") + out("c") + err("d\n***ERROR e\n") + out("f\n") + err("g"));
    QCOMPARE(m_del.runProcess(QString()), 0);
    QCOMPARE(log.messages,
             QStringList({text("0 a\n"), text("0 b\n"), text("0 cd\n"), text("2  e\n"),
                          text("0 f\n"), text("0 g\n"), exitMessage(0)}));
}

void TestTreskRunnerRun::messagesByKind()
{
    const RunnerLog log(m_del);
    standIn(out("a\n***WARNING: b\r\n***ERROR: c\r**ERROR d\n***WARNINGe"));
    QCOMPARE(m_del.runProcess(QString()), 0);
    QCOMPARE(log.messages,
             QStringList({text("0 a\n"), text("1 : b\n"), text("2 : c\n"), text("0 **ERROR d\n"),
                          text("1 e\n"), exitMessage(0)}));
}

void TestTreskRunnerRun::piecesAreIntercepted()
{
    const QString intercept = text("intercept");
    const RunnerLog log(m_add);
    standIn(inPieces({"a\n", "b", "c\nd\ne", "\n"}));
    QCOMPARE(m_add.runProcess(QString()), 0);
    QCOMPARE(log.events,
             QStringList({text("0 a\n"), intercept, intercept, text("0 bc\n"), text("0 d\n"),
                          intercept, text("0 e\n"), intercept, exitMessage(0)}));
}

void TestTreskRunnerRun::borderBetweenPieces()
{
    const RunnerLog log(m_add);
    standIn(inPieces({"a\r", "\nb"}));
    QCOMPARE(m_add.runProcess(QString()), 0);
    QCOMPARE(log.messages,
             QStringList({text("0 a\n"), text("0 \n"), text("0 b\n"), exitMessage(0)}));
}

void TestTreskRunnerRun::silentToolIsNotIntercepted()
{
    const RunnerLog log(m_add);
    QCOMPARE(m_add.runProcess(text("input")), 0);
    QCOMPARE(log.events, QStringList(exitMessage(0)));
}

void TestTreskRunnerRun::isReusable()
{
    const RunnerLog log(m_add);
    standIn("input\nexit 3\n");
    QCOMPARE(m_add.runProcess(text("a")), 3);
    m_add.setSearchPaths({});
    QCOMPARE(m_add.runProcess(text("b")), -1000);
    m_add.setSearchPaths({m_tools.relative()});
    QCOMPARE(m_add.runProcess(text("c")), 3);
    QCOMPARE(log.messages,
             QStringList({printed("input", "a"), exitMessage(3),
                          text("2 could not find any  executable\n"), printed("input", "c"),
                          exitMessage(3)}));
}

void TestTreskRunnerRun::restIsNotCarriedOver()
{
    const RunnerLog log(m_add);
    standIn(inPieces({"***ERROR: a"}));
    QCOMPARE(m_add.runProcess(QString()), 0);
    standIn(inPieces({"b\n"}));
    QCOMPARE(m_add.runProcess(QString()), 0);
    m_add.processOutput(QString(), true);
    QCOMPARE(log.messages,
             QStringList({text("2 : a\n"), exitMessage(0), text("0 b\n"), exitMessage(0)}));
}

void TestTreskRunnerRun::restStaysAfterRun()
{
    const RunnerLog log(m_add);
    standIn(out("a\nb"));
    QCOMPARE(m_add.runProcess(QString()), 0);
    m_add.processOutput(QString(), true);
    QCOMPARE(log.messages,
             QStringList({text("0 a\n"), text("0 b\n"), exitMessage(0), text("0 b\n")}));
}

void TestTreskRunnerRun::restIsForgottenWithoutTool_data()
{
    QTest::addColumn<bool>("isThere");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("not found") << false << -1000;
    QTest::newRow("not started") << true << -1001;
}

void TestTreskRunnerRun::restIsForgottenWithoutTool()
{
    QFETCH(bool, isThere);
    QFETCH(int, exitCode);
    if (isThere && isUnderValgrind())
        QSKIP("valgrind ends where a program cannot be started");
    m_tools.makeFolder(text("no tools"));
    if (isThere)
        m_tools.write(text("no tools/treskadd"), "not executable");
    m_add.setSearchPaths({m_tools.relative(text("no tools"))});
    const RunnerLog log(m_add);
    m_add.processOutput(text("a"), false);
    QCOMPARE(m_add.runProcess(QString()), exitCode);
    m_add.processOutput(text("b\n"), true);
    QCOMPARE(log.messages.size(), 2);
    QCOMPARE(log.messages.constLast(), text("0 b\n"));
}

void TestTreskRunnerRun::nestedRuns()
{
    const RunnerLog log(m_add);
    const RunnerLog innerLog(m_del);
    QList<int> results;
    QObject context;
    connect(&m_add, &TreskRunner::intercept, &context, [&] {
        standIn(out("inner ***ERROR\n***ERROR inner") + "exit " + QByteArray::number(results.size())
                + '\n');
        results += m_del.runProcess(QString());
    });
    standIn(inPieces({"a\nb", "c\n***ERR", "OR\nd"}) + "exit 9\n");
    QCOMPARE(m_add.runProcess(text("input")), 9);
    QCOMPARE(results, QList<int>({0, 1, 2}));
    QCOMPARE(
        log.messages,
        QStringList({text("0 a\n"), text("0 bc\n"), text("2 \n"), text("0 d\n"), exitMessage(9)}));
    QStringList expected;
    for (int i = 0; i < 3; ++i)
        expected += {text("0 inner ***ERROR\n"), text("2  inner\n"), exitMessage(i)};
    QCOMPARE(innerLog.messages, expected);
}

void TestTreskRunnerRun::eventsWhileIntercepted()
{
    // Handling events may read what comes next, which is not to wait for what comes after it.
    const QString printedB = m_tools.path(text("printed"));
    const QString goOn = m_tools.path(text("go on"));
    const RunnerLog log(m_add);
    QObject context;
    connect(&m_add, &TreskRunner::intercept, &context, [&] {
        while (!QFile::exists(printedB))
            QCoreApplication::processEvents(QEventLoop::AllEvents);
    });
    connect(&m_add, &TreskRunner::log, &context, [&](const QString& message) {
        if (message == text("b\n"))
            m_tools.write(text("go on"), "");
    });
    standIn(inPieces({"a\n", "b\n"}) + "makefile " + QFile::encodeName(printedB) + "\nawaitfile "
            + QFile::encodeName(goOn) + '\n' + out("c\n"));
    QCOMPARE(m_add.runProcess(text("input")), 0);
    QCOMPARE(log.messages,
             QStringList({text("0 a\n"), text("0 b\n"), text("0 c\n"), exitMessage(0)}));
}

void TestTreskRunnerRun::lastPieceIsInterceptedToo()
{
    // The tool prints it and ends while the piece before it is dealt with.
    const RunnerLog log(m_add);
    QObject context;
    connect(&m_add, &TreskRunner::intercept, &context, [] {
        siginfo_t info = {};
        while (waitid(P_ALL, 0, &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) { }
    });
    const QString intercept = text("intercept");
    standIn(inPieces({"a\n"}) + out("b\nc"));
    QCOMPARE(m_add.runProcess(QString()), 0);
    QCOMPARE(log.events,
             QStringList({text("0 a\n"), intercept, text("0 b\n"), intercept, text("0 c\n"),
                          exitMessage(0)}));
}

QTEST_GUILESS_MAIN(TestTreskRunnerRun)

#include "tst_treskrunner_run.moc"
