#include "Runners.h"
#include "Watched.h"

#include <tresk/BinaryDir.h>
#include <tresk/TreskaddRunner.h>
#include <tresk/TreskdelRunner.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTest>

#include <memory>

using tresk::getBinaryDir;
using tresk::TreskaddRunner;
using tresk::TreskdelRunner;
using tresk::TreskRunner;
using tresktest::exitMessage;
using tresktest::isUnderValgrind;
using tresktest::RunnerLog;
using tresktest::standIn;
using tresktest::text;
using tresktest::ToolFolder;
using tresktest::Variable;

namespace {

/// A runner of a tool that is called otherwise.
class NamedRunner : public TreskRunner {
public:
    using TreskRunner::TreskRunner;

    int runProcess(const QString&) override { return runTool({}, {}); }
};

/// What the stand-in prints of an argument.
QString printed(const QString& argument)
{
    const QString hex = QString::fromLatin1(argument.toLocal8Bit().toHex());
    return text("0 argument ") + hex + QLatin1Char('\n');
}

void setExecutable(const QString& path, bool executable)
{
    const QFile::Permissions plain = QFile::ReadOwner | QFile::WriteOwner;
    if (!QFile::setPermissions(path, executable ? plain | QFile::ExeOwner : plain))
        qFatal("the permissions of %s could not be set", qPrintable(path));
}

} // namespace

/// How runners find the tools and start them.
class TestTreskRunner : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void settings();
    void defaultSearchPath();
    void search_data();
    void search();
    void noFile_data();
    void noFile();
    void notFound_data();
    void notFound();
    void absolutePathIsRelative();
    void emptyPathIsTheApplicationsDirectory();
    void environmentIsNotSearched();
    void notStarted_data();
    void notStarted();
    void pathIsNoTemplate();
    void noInterpreter();
    void interpreterGetsScript();
    void scriptRuns();

private:
    std::unique_ptr<ToolFolder> m_tools;
};

void TestTreskRunner::initTestCase()
{
    tresktest::useUtf8();
}

void TestTreskRunner::init()
{
    m_tools = std::make_unique<ToolFolder>();
    standIn("");
}

void TestTreskRunner::settings()
{
    TreskaddRunner runner(nullptr);
    QCOMPARE(runner.metaObject()->className(), "tresk::TreskaddRunner");
    QCOMPARE(runner.metaObject()->superClass()->className(), "tresk::TreskRunner");
    QCOMPARE(TreskdelRunner(nullptr).metaObject()->className(), "tresk::TreskdelRunner");
    QCOMPARE(runner.parent(), nullptr);
    QVERIFY(runner.getUsePy2Exe());
    QCOMPARE(runner.findPython(), QString());
    runner.setUsePy2Exe(false);
    QVERIFY(!runner.getUsePy2Exe());
    QCOMPARE(runner.findPython(), text("python3"));
    runner.setUsePy2Exe(true);
    QVERIFY(runner.getUsePy2Exe());
    QCOMPARE(runner.findPython(), QString());
}

void TestTreskRunner::defaultSearchPath()
{
    // Beside the application, where the application itself is.
    NamedRunner runner(text("tst_treskrunner"), nullptr);
    QCOMPARE(runner.findTreskrun(), getBinaryDir() + text("/./tst_treskrunner"));
}

void TestTreskRunner::search_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<bool>("packaged");
    QTest::addColumn<QString>("found");
    const auto row = [](const char* name, const char* files, const char* paths, bool packaged,
                        const char* found) {
        const auto list = [](const char* names) { return text(names).split(QLatin1Char(' ')); };
        QTest::newRow(name) << list(files) << list(paths) << packaged << text(found);
    };
    row("executable", "a/treskadd", "a", true, "a/treskadd");
    row("script", "a/treskadd.py", "a", false, "a/treskadd.py");
    row("both, executable", "a/treskadd a/treskadd.py", "a", true, "a/treskadd");
    row("both, script", "a/treskadd a/treskadd.py", "a", false, "a/treskadd.py");
    row("no executable", "a/treskadd.py", "a", true, "");
    row("no script", "a/treskadd", "a", false, "");
    row("other tool", "a/treskdel", "a", true, "");
    row("first of two", "a/treskadd b/treskadd", "a b", true, "a/treskadd");
    row("first of two, other order", "a/treskadd b/treskadd", "b a", true, "b/treskadd");
    row("second", "b/treskadd", "a b c", true, "b/treskadd");
    row("last", "c/treskadd", "a missing c", true, "c/treskadd");
    row("not below", "a/b/treskadd", "a", true, "");
    row("deeper", "a/b/treskadd", "a a/b", true, "a/b/treskadd");
    row("kept as it is", "a/treskadd", "a/../a/.", true, "a/../a/./treskadd");
    row("other letters", "a/Treskadd a/treskadd.PY", "a", true, "");
}

void TestTreskRunner::search()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, paths);
    QFETCH(bool, packaged);
    QFETCH(QString, found);
    for (const QString& file : qAsConst(files)) {
        m_tools->makeFolder(QFileInfo(file).path());
        m_tools->write(file, "");
    }
    for (QString& path : paths)
        path = m_tools->relative(path);
    TreskaddRunner runner(nullptr);
    runner.setSearchPaths(paths);
    runner.setUsePy2Exe(packaged);
    QCOMPARE(runner.findTreskrun(), found.isEmpty() ? QString() : m_tools->found(found));
}

void TestTreskRunner::noFile_data()
{
    QTest::addColumn<bool>("isTool");
    QTest::addColumn<QString>("target"); // of a link
    QTest::newRow("folder") << false << QString();
    QTest::newRow("pipe") << false << text("|");
    QTest::newRow("link to a folder") << false << text("b");
    QTest::newRow("link to nothing") << false << text("missing");
    QTest::newRow("link to itself") << false << text("a/treskadd");
    QTest::newRow("link to a file") << true << text("treskdel");
}

void TestTreskRunner::noFile()
{
    QFETCH(bool, isTool);
    QFETCH(QString, target);
    m_tools->makeFolder(text("a"));
    m_tools->makeFolder(text("b"));
    m_tools->write(text("b/treskadd"), "");
    const QString tool = text("a/treskadd");
    if (target.isEmpty())
        m_tools->makeFolder(tool);
    else if (target == text("|"))
        m_tools->makePipe(tool);
    else
        QVERIFY(QFile::link(m_tools->path(target), m_tools->path(tool)));
    TreskaddRunner runner(nullptr);
    runner.setSearchPaths({m_tools->relative(text("a")), m_tools->relative(text("b"))});
    // The search goes on behind what is no file.
    QCOMPARE(runner.findTreskrun(), m_tools->found(isTool ? tool : text("b/treskadd")));
}

void TestTreskRunner::notFound_data()
{
    QTest::addColumn<QStringList>("folders");
    QTest::newRow("no search paths") << QStringList();
    QTest::newRow("empty folder") << QStringList(text("empty"));
    QTest::newRow("missing folder") << QStringList(text("missing"));
    QTest::newRow("two folders") << QStringList({text("missing"), text("empty")});
}

void TestTreskRunner::notFound()
{
    QFETCH(QStringList, folders);
    m_tools->makeFolder(text("empty"));
    for (QString& folder : folders)
        folder = m_tools->relative(folder);
    TreskaddRunner add(nullptr);
    TreskdelRunner del(nullptr);
    for (TreskRunner* const runner : QList<TreskRunner*>({&add, &del})) {
        const RunnerLog log(*runner);
        runner->setSearchPaths(folders);
        for (const bool packaged : {true, false}) {
            runner->setUsePy2Exe(packaged);
            QCOMPARE(runner->findTreskrun(), QString());
            QCOMPARE(runner->runProcess(text("input")), -1000);
        }
        const QString message = text("2 could not find any  executable\n");
        QCOMPARE(log.events, QStringList({message, message}));
    }
}

void TestTreskRunner::absolutePathIsRelative()
{
    TreskaddRunner runner(nullptr);
    runner.setSearchPaths({m_tools->path(text("."))});
    QCOMPARE(runner.findTreskrun(), QString());
    QCOMPARE(runner.runProcess(QString()), -1000);
}

void TestTreskRunner::emptyPathIsTheApplicationsDirectory()
{
    // Where this program is.
    NamedRunner runner(QFileInfo(QCoreApplication::applicationFilePath()).fileName(), nullptr);
    runner.setSearchPaths({text("no tools"), text("")});
    QCOMPARE(runner.findTreskrun(), QCoreApplication::applicationFilePath());
}

void TestTreskRunner::environmentIsNotSearched()
{
    m_tools->makeFolder(text("empty"));
    const Variable path("PATH", QFile::encodeName(m_tools->path(text("."))));
    TreskaddRunner runner(nullptr);
    runner.setSearchPaths({m_tools->relative(text("empty"))});
    QCOMPARE(runner.runProcess(QString()), -1000);
}

void TestTreskRunner::notStarted_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("executable");
    QTest::newRow("not executable") << QByteArray("#!/bin/sh\nexit 0\n") << false;
    QTest::newRow("no interpreter line") << QByteArray("exit 0\n") << true;
    if (!isUnderValgrind())
        QTest::newRow("missing interpreter") << QByteArray("#!/missing/interpreter\n") << true;
    QTest::newRow("empty") << QByteArray() << true;
    QTest::newRow("cut executable") << QByteArray("\x7f"
                                                  "ELF\2\1\1")
                                    << true;
}

void TestTreskRunner::notStarted()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, executable);
    m_tools->makeFolder(text("a"));
    TreskaddRunner add(nullptr);
    TreskdelRunner del(nullptr);
    for (TreskRunner* const runner : QList<TreskRunner*>({&add, &del})) {
        const QString name = text(runner == &add ? "a/treskadd" : "a/treskdel");
        setExecutable(m_tools->write(name, content), executable);
        const RunnerLog log(*runner);
        // Only the first one counts, also if it cannot be started.
        runner->setSearchPaths({m_tools->relative(text("a")), m_tools->relative()});
        QCOMPARE(runner->runProcess(text("input")), -1001);
        const QString path = m_tools->found(name);
        QCOMPARE(log.events, QStringList(text("2 ") + path + text(" failed to start\n")));
    }
}

void TestTreskRunner::pathIsNoTemplate()
{
    const QString folder = text("%1 100% %2 %L1");
    m_tools->makeFolder(folder);
    setExecutable(m_tools->write(folder + text("/treskadd"), "x"), false);
    TreskaddRunner runner(nullptr);
    const RunnerLog log(runner);
    runner.setSearchPaths({m_tools->relative(folder)});
    QCOMPARE(runner.runProcess(QString()), -1001);
    const QString path = m_tools->found(folder + text("/treskadd"));
    QCOMPARE(log.messages, QStringList(text("2 ") + path + text(" failed to start\n")));
}

void TestTreskRunner::noInterpreter()
{
    m_tools->makeFolder(text("empty"));
    const Variable path("PATH", QFile::encodeName(m_tools->path(text("empty"))));
    // Whether it could be run by itself makes no difference.
    m_tools->addTool(text("treskadd.py"));
    TreskaddRunner runner(nullptr);
    const RunnerLog log(runner);
    runner.setSearchPaths({m_tools->relative()});
    runner.setUsePy2Exe(false);
    QCOMPARE(runner.runProcess(text("input")), -1001);
    const QString script = m_tools->found(text("treskadd.py"));
    QCOMPARE(log.events, QStringList(text("2 ") + script + text(" failed to start\n")));
    // Nor is it needed for an executable.
    runner.setUsePy2Exe(true);
    QCOMPARE(runner.runProcess(QString()), 0);
}

void TestTreskRunner::interpreterGetsScript()
{
    m_tools->makeFolder(text("bin"));
    m_tools->addTool(text("bin/python3"));
    const Variable path("PATH", QFile::encodeName(m_tools->path(text("bin"))));
    standIn("arguments\n");
    TreskaddRunner add(nullptr);
    TreskdelRunner del(nullptr);
    for (TreskRunner* const runner : QList<TreskRunner*>({&add, &del})) {
        const QString name = text(runner == &add ? "treskadd.py" : "treskdel.py");
        m_tools->write(name, "no script, and not executable");
        const RunnerLog log(*runner);
        runner->setSearchPaths({m_tools->relative()});
        runner->setUsePy2Exe(false);
        QCOMPARE(runner->runProcess(text("the request")), 0);
        const QString argument = text(runner == &add ? "--stdin" : "the request");
        QCOMPARE(log.messages,
                 QStringList({printed(m_tools->found(name)), printed(argument), exitMessage(0)}));
    }
}

void TestTreskRunner::scriptRuns()
{
    if (QStandardPaths::findExecutable(text("python3")).isEmpty())
        QSKIP("no interpreter to be had");
    m_tools->write(text("treskadd.py"),
                   "import sys\n"
                   "print(*sys.argv[1:])\n"
                   "print(sys.stdin.read())\n"
                   "print('***ERROR no more')\n"
                   "sys.exit(7)\n");
    TreskaddRunner runner(nullptr);
    const RunnerLog log(runner);
    runner.setSearchPaths({m_tools->relative()});
    runner.setUsePy2Exe(false);
    QCOMPARE(runner.runProcess(text("some input")), 7);
    QCOMPARE(log.messages,
             QStringList({text("0 --stdin\n"), text("0 some input\n"), text("2  no more\n"),
                          exitMessage(7)}));
}

QTEST_GUILESS_MAIN(TestTreskRunner)

#include "tst_treskrunner.moc"
