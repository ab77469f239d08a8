#include "Command.h"
#include "Documents.h"

#include <TestFiles.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QtTest>

#include <csignal>
#include <sys/stat.h>

using namespace tresktest;

/// `tresk extract --verify`: what was written is read back and compared.
class TestCommandExtractVerify : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void verifiedFilesAreWritten();
    void wrongChecksumIsNotWritten_data();
    void wrongChecksumIsNotWritten();
    void worstFailureDecides();
    void signalEndsVerification();
    void umaskMayKeepTheOwnerOut();

private:
    void write(const QVector<FileSpec>& files);
    Command extract(const QStringList& arguments = {}) const;
    QString target(const char* name) const;
    QStringList entries() const; ///< everything in the target directory

    QScopedPointer<TestDir> m_dir;
    QString m_document;
    QString m_target;
};

void TestCommandExtractVerify::init()
{
    m_dir.reset(new TestDir);
    m_document = m_dir->path(text("some.pdf"));
    m_target = m_dir->path(text("out"));
}

void TestCommandExtractVerify::write(const QVector<FileSpec>& files)
{
    m_document = m_dir->write(text("some.pdf"), documentWith(files));
}

Command TestCommandExtractVerify::extract(const QStringList& arguments) const
{
    return Command(QStringList{text("extract"), text("--verify"), m_document, text("-C"), m_target}
                   + arguments);
}

/// The path of that name in the target directory.
QString TestCommandExtractVerify::target(const char* name) const
{
    return m_target + QLatin1Char('/') + text(name);
}

QStringList TestCommandExtractVerify::entries() const
{
    return entriesOf(m_target);
}

void TestCommandExtractVerify::verifiedFilesAreWritten()
{
    const QByteArray content = noise(300000);
    write({FileSpec::plain(text("plain"), content), FileSpec::flate(text("squeezed"), content),
           FileSpec::plain(text("empty"), "")});
    const Outcome outcome = extract({text("--json")}).run();
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    const QJsonArray files = jsonObject(outcome.output).value(text("files")).toArray();
    QCOMPARE(files.size(), 3);
    for (const auto& file : files)
        QCOMPARE(file.toObject().value(text("verified")), QJsonValue(true));
    QVERIFY(readFile(target("plain")) == content);
    QVERIFY(readFile(target("squeezed")) == content);
}

void TestCommandExtractVerify::wrongChecksumIsNotWritten_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("problem");
    const QByteArray other = md5Hex("something else");
    const auto row = [](const char* name, FileSpec file, const QByteArray& checksum,
                        const char* problem) {
        QTest::newRow(name) << documentWith(
            {file.with("md5file", checksum), FileSpec::plain(text("behind"), "behind")})
                            << QByteArray(problem);
    };
    for (const int size : {0, 300, 300000}) {
        const QByteArray number = QByteArray::number(size);
        const FileSpec plain = FileSpec::plain(text("f"), noise(size));
        const FileSpec squeezed = FileSpec::flate(text("f"), noise(size));
        row("plain, " + number, plain, other, "its checksum differs");
        row("compressed, " + number, squeezed, other, "its checksum differs");
        row("missing, " + number, plain, "", "its checksum is missing");
    }
}

void TestCommandExtractVerify::wrongChecksumIsNotWritten()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, problem);
    m_dir->write(text("some.pdf"), document);
    QVERIFY(QDir().mkdir(m_target));
    m_dir->write(text("out/f"), "mine");
    const Outcome outcome = extract({text("--force")}).run();
    QCOMPARE(outcome.errors, "tresk: " + m_document.toUtf8() + ": file 0 \"f\": " + problem + '\n');
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(entries(), QStringList({text("behind"), text("f")}));
    QCOMPARE(readFile(target("f")), QByteArray("mine"));
    // Nobody looks at checksums without being asked.
    const QStringList plainly = {text("extract"), m_document, text("-fC"), m_target};
    QCOMPARE(runTresk(plainly).exitCode, 0);
    QVERIFY(readFile(target("f")) != "mine");
}

void TestCommandExtractVerify::worstFailureDecides()
{
    write({FileSpec::plain(text("broken"), "x").with("compression", "unknown"),
           FileSpec::plain(text("wrong"), "x").with("md5file", md5Hex("y"))});
    QCOMPARE(extract().run().exitCode, 2);
    QCOMPARE(extract({text("wrong")}).run().exitCode, 1);
}

void TestCommandExtractVerify::signalEndsVerification()
{
    const int size = 400 * 1024 * 1024;
    m_document = writeWithHole(*m_dir, text("large.pdf"), size);
    const auto interrupt = [](qint64 process) {
        // It has read the document to write the file, and reads that one back.
        waitUntilRead(process, size + 10 * 1024 * 1024);
        kill(static_cast<pid_t>(process), SIGINT);
    };
    const Outcome outcome = extract().runWhile(interrupt);
    QCOMPARE(outcome.errors, "tresk: " + m_document.toUtf8() + ": interrupted\n");
    QCOMPARE(outcome.exitCode, 128 + SIGINT);
    QCOMPARE(entries(), QStringList());
}

void TestCommandExtractVerify::umaskMayKeepTheOwnerOut()
{
    const QByteArray content = noise(300000);
    write({FileSpec::plain(text("f"), content)});
    const QByteArray folder = QFile::encodeName(QFileInfo(m_document).path());
    QVERIFY(QDir().mkdir(m_target));
    QCOMPARE(chmod(folder.constData(), 0755), 0);
    QCOMPARE(chmod(QFile::encodeName(m_target).constData(), 0777), 0);
    Command command = extract();
    if (!command.asOrdinaryUser(text("umask 0666; ")))
        QSKIP("the command cannot be run as another user here");
    const Outcome outcome = command.run();
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    struct stat status = {};
    const QByteArray path = QFile::encodeName(target("f"));
    QCOMPARE(stat(path.constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 0777U), 0);
    QCOMPARE(chmod(path.constData(), 0600), 0);
    QVERIFY(readFile(target("f")) == content);
}

QTEST_GUILESS_MAIN(TestCommandExtractVerify)
#include "tst_command_extract_verify.moc"
