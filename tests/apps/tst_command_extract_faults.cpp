#include "Command.h"
#include "Documents.h"

#include <TestFiles.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QtTest>

#include <csignal>

using namespace tresktest;

/// `tresk extract` where content is damaged, room runs out or somebody interrupts it. Whatever
/// happens, nothing unfinished stays behind, and what can be written is.
class TestCommandExtractFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void damagedFileIsNotWritten_data();
    void damagedFileIsNotWritten();
    void damageKeepsWhatForceWouldReplace();
    void fullDiskIsReported_data();
    void fullDiskIsReported();
    void bombIsDefused();
    void contradictingSizes();
    void contentIsNotHeldInMemory();
    void signalEndsIt_data();
    void signalEndsIt();
    void ignoredSignalIsIgnored();
    void brokenPipeStopsNothing();
    void fullOutputIsReported();
    void nameTakenMeanwhileIsKept();
    void movedDirectoryIsFollowed();

private:
    QString write(const QVector<FileSpec>& files);
    Command extract(const QStringList& arguments = {}) const;
    QString target(const char* name) const;
    QStringList entries() const;
    void waitForEntries(int count) const;

    QScopedPointer<TestDir> m_dir;
    QString m_document;
    QString m_target;
};

namespace {

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

const qint64 mebibyte = qint64(1024) * 1024;

/// A script that gives way to everything else, so that what happens meanwhile comes in time.
const QString slowly = QStringLiteral("exec nice -n 19 \"$@\"");

} // namespace

void TestCommandExtractFaults::init()
{
    m_dir.reset(new TestDir);
    m_document = m_dir->path(text("some.pdf"));
    m_target = m_dir->path(text("out"));
}

QString TestCommandExtractFaults::write(const QVector<FileSpec>& files)
{
    return m_dir->write(text("some.pdf"), documentWith(files));
}

Command TestCommandExtractFaults::extract(const QStringList& arguments) const
{
    return Command(QStringList{text("extract"), m_document, text("-C"), m_target} + arguments);
}

/// The path of that name in the target directory.
QString TestCommandExtractFaults::target(const char* name) const
{
    return m_target + QLatin1Char('/') + text(name);
}

/// Everything in the target directory.
QStringList TestCommandExtractFaults::entries() const
{
    return QDir(m_target).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

/// Waits until so many files are in the target directory: the last one has been begun then.
void TestCommandExtractFaults::waitForEntries(int count) const
{
    QElapsedTimer timer;
    timer.start();
    while (entries().size() < count && timer.elapsed() < 30000)
        QTest::qSleep(1);
}

void TestCommandExtractFaults::damagedFileIsNotWritten_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("problem");

    const auto row = [](const char* name, const FileSpec& file, const char* problem) {
        QTest::newRow(name) << documentWith({FileSpec::plain(text("before"), "before"), file,
                                             FileSpec::flate(text("behind"), "behind")})
                            << QByteArray(problem);
    };
    const QByteArray content = noise(300000);
    const FileSpec plain = FileSpec::plain(text("f"), content);
    const FileSpec squeezed = FileSpec::flate(text("f"), content);
    const auto changed = [](FileSpec file, const char* key, const char* value) {
        return file.with(key, value);
    };
    const auto storing = [](FileSpec file, const QByteArray& stored) {
        file.stored = stored;
        return file;
    };
    row("unknown compression", changed(plain, "compression", "lzma"),
        "its compression \"lzma\" is unknown");
    row("no size", changed(plain, "filesize", ""), "its marker does not say how large it is");
    row("no stored size", changed(squeezed, "cfilesize", ""),
        "its marker does not say where it is stored");
    row("beyond the end", changed(plain, "filesize", "400000"),
        "its stored bytes reach beyond the end of the document");
    row("longer", changed(squeezed, "filesize", "299999"),
        "its content is longer than the 299999 bytes that its marker says");
    row("shorter", changed(squeezed, "filesize", "300001"),
        "its content has 300000 bytes, but its marker says 300001");
    row("cut", storing(squeezed, deflated(content).left(200000)),
        "its compressed stream breaks off");
    QByteArray broken = deflated(content);
    broken[broken.size() - 1] = static_cast<char>(~broken[broken.size() - 1]);
    row("broken", storing(squeezed, broken), "its compressed stream is broken");
    row("no stream", storing(squeezed, content), "its compressed stream is broken");
}

void TestCommandExtractFaults::damagedFileIsNotWritten()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, problem);
    m_dir->write(text("some.pdf"), document);
    const Outcome outcome = extract().run();
    QCOMPARE(outcome.errors, "tresk: " + m_document.toUtf8() + ": file 1 \"f\": " + problem + '\n');
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(entries(), QStringList({text("before"), text("behind")}));
    QCOMPARE(readFile(target("before")), QByteArray("before"));
    QCOMPARE(readFile(target("behind")), QByteArray("behind"));
}

void TestCommandExtractFaults::damageKeepsWhatForceWouldReplace()
{
    write({FileSpec::flate(text("f"), noise(300000)).with("filesize", "299999")});
    QVERIFY(QDir().mkdir(m_target));
    m_dir->write(text("out/f"), "mine");
    QCOMPARE(extract({text("--force")}).run().exitCode, 2);
    QCOMPARE(readFile(target("f")), QByteArray("mine"));
    QCOMPARE(entries(), QStringList{text("f")});
}

void TestCommandExtractFaults::fullDiskIsReported_data()
{
    QTest::addColumn<bool>("compressed");
    QTest::newRow("plain") << false;
    QTest::newRow("compressed") << true;
}

void TestCommandExtractFaults::fullDiskIsReported()
{
    QFETCH(bool, compressed);
    const QByteArray large = noise(3000000);
    write(
        {FileSpec::plain(text("before"), "before"),
         compressed ? FileSpec::flate(text("large"), large) : FileSpec::plain(text("large"), large),
         FileSpec::plain(text("behind"), "behind")});
    // In blocks of 512 or 1024 bytes, as the shell has it.
    const Outcome outcome = extract().inShell(text("ulimit -f 1000; exec \"$@\"")).run();
    QCOMPARE(outcome.errors,
             "tresk: " + m_document.toUtf8() + ": file 1 \"large\": cannot write "
                 + target("large").toUtf8() + ": File too large\n");
    QCOMPARE(QString::fromUtf8(outcome.output),
             QStringLiteral("0  %1/before\n2  %1/behind\n").arg(m_target));
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(entries(), QStringList({text("before"), text("behind")}));
    QCOMPARE(readFile(target("behind")), QByteArray("behind"));
}

void TestCommandExtractFaults::bombIsDefused()
{
    write({fileOfZeros(text("bomb"), 2000 * mebibyte).with("filesize", "1000")});
    const Outcome outcome = extract().run();
    QVERIFY2(outcome.errors.endsWith(
                 ": its content is longer than the 1000 bytes that its marker says\n"),
             outcome.errors.constData());
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(entries(), QStringList());
}

void TestCommandExtractFaults::contradictingSizes()
{
    write({FileSpec::plain(text("f"), "0123456789").with("cfilesize", "")});
    const QByteArray warning = "tresk: " + m_document.toUtf8()
        + ": warning: file 0 \"f\": it is stored plain, but its marker gives two sizes, 10 and -; "
          "the first is taken\n";
    const Outcome outcome = extract().run();
    QCOMPARE(outcome.errors, warning);
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(readFile(target("f")), QByteArray("0123456789"));
    QCOMPARE(extract({text("-qf")}).run().errors, QByteArray());
}

void TestCommandExtractFaults::contentIsNotHeldInMemory()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("the address sanitizer needs more memory than the limit allows");
#endif
    const qint64 size = 256 * mebibyte;
    write({fileOfZeros(text("zeros"), size)});
    const Outcome outcome = extract().inShell(text("ulimit -v 249856; exec \"$@\"")).run();
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(QFile(target("zeros")).size(), size);
}

void TestCommandExtractFaults::signalEndsIt_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("HUP") << SIGHUP;
    QTest::newRow("INT") << SIGINT;
    QTest::newRow("TERM") << SIGTERM;
}

void TestCommandExtractFaults::signalEndsIt()
{
    QFETCH(int, number);
    write({FileSpec::plain(text("done"), "done"), fileOfZeros(text("zeros"), 2000 * mebibyte),
           FileSpec::plain(text("behind"), "behind")});
    // Once the second file has been begun, it takes a second at least until it is complete.
    const auto interrupt = [this, number](qint64 process) {
        waitForEntries(2);
        kill(static_cast<pid_t>(process), number);
    };
    const Outcome outcome = extract({text("--json")}).inShell(slowly).runWhile(interrupt);
    QCOMPARE(outcome.errors, "tresk: " + m_document.toUtf8() + ": interrupted\n");
    QCOMPARE(outcome.exitCode, 128 + number);
    QCOMPARE(entries(), QStringList{text("done")});
    // What had been done until then is told.
    const QJsonArray files = jsonObject(outcome.output).value(text("files")).toArray();
    QCOMPARE(files.size(), 1);
    QCOMPARE(files[0].toObject().value(text("path")).toString(), target("done"));
}

void TestCommandExtractFaults::ignoredSignalIsIgnored()
{
    write({fileOfZeros(text("zeros"), 100 * mebibyte)});
    const auto hangUp = [this](qint64 process) {
        waitForEntries(1);
        kill(static_cast<pid_t>(process), SIGHUP);
    };
    const Outcome outcome = extract().inShell(text("trap '' HUP; exec \"$@\"")).runWhile(hangUp);
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(entries(), QStringList{text("zeros")});
}

void TestCommandExtractFaults::brokenPipeStopsNothing()
{
    QVector<FileSpec> files;
    for (int i = 0; i < 1200; ++i)
        files += FileSpec::plain(QStringLiteral("some name %1").arg(i), "x");
    write(files);
    const Outcome outcome = extract().inShell(text("{ \"$@\"; echo $? >&2; } | true")).run();
    QCOMPARE(outcome.errors, QByteArray("141\n"));
    QCOMPARE(entries().size(), 1200);
}

void TestCommandExtractFaults::fullOutputIsReported()
{
    write({FileSpec::plain(text("f"), "x")});
    const Outcome outcome = extract().inShell(text("\"$@\" >/dev/full")).run();
    QCOMPARE(outcome.errors, QByteArray("tresk: standard output: No space left on device\n"));
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(entries(), QStringList{text("f")});
}

void TestCommandExtractFaults::nameTakenMeanwhileIsKept()
{
    write({fileOfZeros(text("zeros"), 200 * mebibyte)});
    m_dir->write(text("outside"), "mine");
    const auto takeName = [this](qint64) {
        waitForEntries(1);
        QVERIFY(QFile::link(text("../outside"), target("zeros")));
    };
    const Outcome outcome = extract().inShell(slowly).runWhile(takeName);
    QVERIFY2(outcome.errors.endsWith(": it exists already (--force replaces it)\n"),
             outcome.errors.constData());
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(entries(), QStringList{text("zeros")});
    QCOMPARE(readFile(target("zeros")), QByteArray("mine"));
}

void TestCommandExtractFaults::movedDirectoryIsFollowed()
{
    write({fileOfZeros(text("zeros"), 200 * mebibyte), FileSpec::plain(text("behind"), "x")});
    // What has the directory's name afterwards is none of the command's business.
    const QString moved = m_dir->path(text("moved"));
    const auto move = [this, &moved](qint64) {
        waitForEntries(1);
        QVERIFY(QDir().rename(m_target, moved));
        QVERIFY(QDir().mkdir(m_target));
    };
    const Outcome outcome = extract().runWhile(move);
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(entries(), QStringList());
    QCOMPARE(QDir(moved).entryList(QDir::Files | QDir::Hidden, QDir::Name),
             QStringList({text("behind"), text("zeros")}));
}

QTEST_GUILESS_MAIN(TestCommandExtractFaults)
#include "tst_command_extract_faults.moc"
