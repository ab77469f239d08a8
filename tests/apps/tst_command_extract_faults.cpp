#include "Command.h"
#include "Documents.h"
#include "Watched.h"

#include <TestFiles.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QtTest>

#include <csignal>
#include <sys/stat.h>

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
    void streamWithoutItsEndIsTaken();
    void streamWithoutChecksumIsInflated();
    void contentIsNotHeldInMemory();
    void signalEndsIt_data();
    void signalEndsIt();
    void ignoredSignalIsIgnored();
    void brokenPipeStopsNothing();
    void fullOutputIsReported();
    void nameTakenMeanwhileIsKept();
    void movedDirectoryIsFollowed();
    void documentTruncatedMeanwhile();
    void readOnlyDirectory();

private:
    QString write(const QVector<FileSpec>& files);
    Command extract(const QStringList& arguments = {}) const;
    QString target(const char* name) const;
    QStringList entries() const; ///< everything in the target directory
    void waitForEntries(int count) const;

    QScopedPointer<TestDir> m_dir;
    QString m_document;
    QString m_target;
};

namespace {

const qint64 mebibyte = qint64(1024) * 1024;

/// Long enough to write for what happens meanwhile to come in time.
const int largeSize = 300 * 1024 * 1024;

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

QStringList TestCommandExtractFaults::entries() const
{
    return entriesOf(m_target);
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

    for (const DamagedFile& damaged : damagedFiles()) {
        QTest::newRow(damaged.name)
            << documentWith({FileSpec::plain(text("before"), "before"), damaged.file,
                             FileSpec::flate(text("behind"), "behind")})
            << damaged.problem;
    }
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
    // It is given up long before it has inflated to more than may be written.
    const Outcome outcome = extract().inShell(text("ulimit -f 262144; exec \"$@\"")).run();
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

void TestCommandExtractFaults::streamWithoutItsEndIsTaken()
{
    // Only the checksum inside of the stream is cut, so the content is whole.
    const QByteArray content = noise(300000);
    FileSpec file = FileSpec::flate(text("f"), content);
    file.stored = deflated(content);
    file.stored->chop(1);
    write({file});
    const Outcome outcome = extract().run();
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY(readFile(target("f")) == content);
}

void TestCommandExtractFaults::streamWithoutChecksumIsInflated()
{
    const QByteArray content = noise(300000);
    write({FileSpec::flate(text("f"), content).with("md5cfile", "")});
    const Outcome outcome = extract({text("--verify")}).run();
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY(readFile(target("f")) == content);
}

void TestCommandExtractFaults::contentIsNotHeldInMemory()
{
    if (isWatched())
        QSKIP("what watches needs more memory than the limit allows");
    const qint64 size = 400 * mebibyte;
    write({fileOfZeros(text("zeros"), size)});
    const Outcome outcome = extract().inShell(text("ulimit -v 390000; exec \"$@\"")).run();
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
    m_document = writeWithHole(*m_dir, text("large.pdf"), largeSize,
                               {FileSpec::plain(text("done"), "done")},
                               {FileSpec::plain(text("behind"), "behind")});
    const auto interrupt = [this, number](qint64 process) {
        waitForEntries(2);
        kill(static_cast<pid_t>(process), number);
    };
    const Outcome outcome = extract({text("--json")}).runWhile(interrupt);
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
    m_document = writeWithHole(*m_dir, text("large.pdf"), largeSize);
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
    m_document = writeWithHole(*m_dir, text("large.pdf"), largeSize);
    m_dir->write(text("outside"), "mine");
    const auto takeName = [this](qint64) {
        waitForEntries(1);
        QVERIFY(QFile::link(text("../outside"), target("zeros")));
    };
    const Outcome outcome = extract().runWhile(takeName);
    QVERIFY2(outcome.errors.endsWith(": it exists already (--force replaces it)\n"),
             outcome.errors.constData());
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(entries(), QStringList{text("zeros")});
    QCOMPARE(readFile(target("zeros")), QByteArray("mine"));
}

void TestCommandExtractFaults::movedDirectoryIsFollowed()
{
    m_document = writeWithHole(*m_dir, text("large.pdf"), largeSize, {},
                               {FileSpec::plain(text("behind"), "x")});
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

void TestCommandExtractFaults::documentTruncatedMeanwhile()
{
    m_document = writeWithHole(*m_dir, text("large.pdf"), largeSize);
    const auto truncate = [this](qint64) {
        waitForEntries(1);
        QVERIFY(QFile::resize(m_document, 1000));
    };
    const Outcome outcome = extract().runWhile(truncate);
    QCOMPARE(outcome.errors,
             "tresk: " + m_document.toUtf8()
                 + ": file 0 \"zeros\": its stored bytes cannot be read\n");
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(entries(), QStringList());
}

void TestCommandExtractFaults::readOnlyDirectory()
{
    write({FileSpec::plain(text("f"), "x")});
    QVERIFY(QDir().mkdir(m_target));
    const QString folder = QFileInfo(m_document).path();
    QCOMPARE(chmod(QFile::encodeName(folder).constData(), 0755), 0);
    QCOMPARE(chmod(QFile::encodeName(m_target).constData(), 0555), 0);
    Command command = extract();
    if (!command.asOrdinaryUser())
        QSKIP("the command cannot be run as another user here");
    const Outcome outcome = command.run();
    QCOMPARE(outcome.errors,
             "tresk: " + m_document.toUtf8() + ": file 0 \"f\": cannot write "
                 + target("f").toUtf8() + ": Permission denied\n");
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(entries(), QStringList());
}

QTEST_GUILESS_MAIN(TestCommandExtractFaults)
#include "tst_command_extract_faults.moc"
