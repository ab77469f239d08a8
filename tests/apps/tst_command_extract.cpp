#include "Command.h"
#include "Documents.h"

#include <TestFiles.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QtTest>

#include <unistd.h>

using namespace tresktest;

/// `tresk extract`: what is written where. Its names and faults have tests of their own.
class TestCommandExtract : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void allFilesAreWritten();
    void selectedFilesAreWritten();
    void wrongSelectionWritesNothing();
    void directoryIsMade_data();
    void directoryIsMade();
    void directoryMayBeALink();
    void directoryThatCannotBe_data();
    void directoryThatCannotBe();
    void directoryNameEndsWithSeparator();
    void existingFileIsKept();
    void forceReplacesFile();
    void linkIsNotFollowed_data();
    void linkIsNotFollowed();
    void forceReplacesLinkItself_data();
    void forceReplacesLinkItself();
    void whatIsNoFileStays_data();
    void whatIsNoFileStays();
    void modeFollowsTheUmask();
    void quietPrintsNothing();
    void jsonTellsWhatWasWritten();
    void documentWithoutFiles();
    void documentMayBeReplacedByItsFile();

private:
    Outcome extract(const QStringList& arguments) const;
    QString target(const char* name) const;
    QStringList entries() const; ///< everything in the target directory

    QScopedPointer<TestDir> m_dir;
    QString m_document;
    QString m_target;
};

namespace {

const QByteArray plainContent = noise(600000);
const QByteArray squeezedContent = QByteArray("all work and no play ").repeated(50000);

} // namespace

void TestCommandExtract::init()
{
    m_dir.reset(new TestDir);
    m_document = m_dir->write(text("some.pdf"),
                              documentWith({FileSpec::plain(text("plain.bin"), plainContent),
                                            FileSpec::flate(text("squeezed.txt"), squeezedContent),
                                            FileSpec::plain(text("empty"), ""),
                                            FileSpec::flate(text("squeezed empty"), "")}));
    m_target = m_dir->path(text("out"));
}

Outcome TestCommandExtract::extract(const QStringList& arguments) const
{
    return runTresk(QStringList{text("extract"), m_document, text("-C"), m_target} + arguments);
}

/// The path of that name in the target directory.
QString TestCommandExtract::target(const char* name) const
{
    return m_target + QLatin1Char('/') + text(name);
}

QStringList TestCommandExtract::entries() const
{
    return entriesOf(m_target);
}

void TestCommandExtract::allFilesAreWritten()
{
    const Outcome outcome = extract({});
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(
        QString::fromUtf8(outcome.output),
        QStringLiteral("0  %1/plain.bin\n1  %1/squeezed.txt\n2  %1/empty\n3  %1/squeezed empty\n")
            .arg(m_target));
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(entries(),
             QStringList(
                 {text("empty"), text("plain.bin"), text("squeezed empty"), text("squeezed.txt")}));
    QVERIFY(readFile(target("plain.bin")) == plainContent);
    QVERIFY(readFile(target("squeezed.txt")) == squeezedContent);
    QCOMPARE(readFile(target("empty")), QByteArray());
    QCOMPARE(readFile(target("squeezed empty")), QByteArray());
}

void TestCommandExtract::selectedFilesAreWritten()
{
    const Outcome outcome = extract({text("squeezed.txt"), text("2"), text("1")});
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(QString::fromUtf8(outcome.output),
             QStringLiteral("1  %1/squeezed.txt\n2  %1/empty\n").arg(m_target));
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(entries(), QStringList({text("empty"), text("squeezed.txt")}));
}

void TestCommandExtract::wrongSelectionWritesNothing()
{
    const Outcome outcome = extract({text("0"), text("7"), text("empty"), text("nothing")});
    const QByteArray name = m_document.toUtf8();
    QCOMPARE(outcome.errors,
             "tresk: " + name + ": there is no file 7 (the ids are 0 to 3)\ntresk: " + name
                 + ": there is no file \"nothing\"; 'tresk files' lists all\n");
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 2);
    QVERIFY(!QFile::exists(m_target));
}

void TestCommandExtract::directoryIsMade_data()
{
    QTest::addColumn<QString>("below");
    QTest::newRow("one level") << QString();
    QTest::newRow("three levels") << text("/a/b");
    QTest::newRow("odd separators") << text("//a///b//");
}

void TestCommandExtract::directoryIsMade()
{
    QFETCH(QString, below);
    m_target += below;
    QCOMPARE(extract({}).exitCode, 0);
    QCOMPARE(entries().size(), 4);
    // A relative path counts from the current directory.
    const QString relative = text("r") + below;
    const Outcome outcome = Command({text("extract"), m_document, text("-C"), relative})
                                .inDirectory(QFileInfo(m_document).path())
                                .run();
    QCOMPARE(outcome.exitCode, 0);
    m_target = m_dir->path(relative);
    QCOMPARE(entries().size(), 4);
}

void TestCommandExtract::directoryMayBeALink()
{
    const QString real = m_dir->path(text("real"));
    QVERIFY(QDir().mkdir(real));
    QVERIFY(QFile::link(real, m_target));
    QCOMPARE(extract({}).exitCode, 0);
    QVERIFY(QFile::exists(real + text("/plain.bin")));
    QVERIFY(QFileInfo(m_target).isSymLink());
}

void TestCommandExtract::directoryThatCannotBe_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("problem");
    QTest::newRow("file") << text("file") << QByteArray("Not a directory");
    QTest::newRow("below a file") << text("file/a") << QByteArray("Not a directory");
    QTest::newRow("link to nothing") << text("dangling") << QByteArray("No such file or directory");
    QTest::newRow("name too long")
        << QString(300, QLatin1Char('a')) << QByteArray("File name too long");
}

void TestCommandExtract::directoryThatCannotBe()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, problem);
    m_dir->write(text("file"), "x");
    QVERIFY(QFile::link(text("nowhere"), m_dir->path(text("dangling"))));
    m_target = path.isEmpty() ? path : m_dir->path(path);
    const Outcome outcome = extract({});
    const QByteArray shown = path.isEmpty() ? QByteArray("''") : m_target.toUtf8();
    QCOMPARE(outcome.errors, "tresk: " + shown + ": " + problem + '\n');
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 2);
    QVERIFY(!QFile::exists(m_dir->path(text("nowhere"))));
}

void TestCommandExtract::directoryNameEndsWithSeparator()
{
    m_target += QLatin1Char('/');
    const Outcome outcome = extract({text("2")});
    QCOMPARE(QString::fromUtf8(outcome.output), text("2  ") + m_target + text("empty\n"));
}

void TestCommandExtract::existingFileIsKept()
{
    QVERIFY(QDir().mkdir(m_target));
    m_dir->write(text("out/plain.bin"), "mine");
    const Outcome outcome = extract({});
    QCOMPARE(outcome.errors,
             "tresk: " + m_document.toUtf8() + ": file 0 \"plain.bin\": cannot write "
                 + target("plain.bin").toUtf8() + ": it exists already (--force replaces it)\n");
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(readFile(target("plain.bin")), QByteArray("mine"));
    // The other ones are written nevertheless.
    QCOMPARE(outcome.output.count('\n'), 3);
    QCOMPARE(entries().size(), 4);
    QVERIFY(readFile(target("squeezed.txt")) == squeezedContent);
}

void TestCommandExtract::forceReplacesFile()
{
    QVERIFY(QDir().mkdir(m_target));
    m_dir->write(text("out/plain.bin"), "mine");
    // Another name of the old file keeps its content: the file is replaced, not overwritten.
    const QString other = m_dir->path(text("other"));
    QCOMPARE(link(QFile::encodeName(target("plain.bin")).constData(),
                  QFile::encodeName(other).constData()),
             0);
    const Outcome outcome = extract({text("--force")});
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY(readFile(target("plain.bin")) == plainContent);
    QCOMPARE(readFile(other), QByteArray("mine"));
    QCOMPARE(entries().size(), 4);
    QCOMPARE(extract({text("-f")}).exitCode, 0);
    QCOMPARE(entries().size(), 4);
}

void TestCommandExtract::linkIsNotFollowed_data()
{
    QTest::addColumn<QString>("destination");
    QTest::newRow("to a file outside") << text("../outside");
    QTest::newRow("to nothing") << text("../nowhere");
    QTest::newRow("to a directory") << text("..");
    QTest::newRow("to itself") << text("plain.bin");
}

void TestCommandExtract::linkIsNotFollowed()
{
    QFETCH(QString, destination);
    QVERIFY(QDir().mkdir(m_target));
    m_dir->write(text("outside"), "mine");
    QVERIFY(QFile::link(destination, target("plain.bin")));
    const Outcome outcome = extract({});
    QVERIFY2(outcome.errors.endsWith(": it exists already (--force replaces it)\n"),
             outcome.errors.constData());
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(readFile(m_dir->path(text("outside"))), QByteArray("mine"));
    QVERIFY(!QFile::exists(m_dir->path(text("nowhere"))));
    QVERIFY(QFileInfo(target("plain.bin")).isSymLink());
}

void TestCommandExtract::forceReplacesLinkItself_data()
{
    linkIsNotFollowed_data();
}

void TestCommandExtract::forceReplacesLinkItself()
{
    QFETCH(QString, destination);
    QVERIFY(QDir().mkdir(m_target));
    m_dir->write(text("outside"), "mine");
    QVERIFY(QFile::link(destination, target("plain.bin")));
    const Outcome outcome = extract({text("--force")});
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(readFile(m_dir->path(text("outside"))), QByteArray("mine"));
    QVERIFY(!QFile::exists(m_dir->path(text("nowhere"))));
    QVERIFY(!QFileInfo(target("plain.bin")).isSymLink());
    QVERIFY(readFile(target("plain.bin")) == plainContent);
}

void TestCommandExtract::whatIsNoFileStays_data()
{
    QTest::addColumn<bool>("force");
    QTest::newRow("without --force") << false;
    QTest::newRow("with --force") << true;
}

void TestCommandExtract::whatIsNoFileStays()
{
    QFETCH(bool, force);
    QVERIFY(QDir().mkpath(target("plain.bin")));
    m_dir->makePipe(text("out/squeezed.txt"));
    const Outcome outcome = extract(force ? QStringList{text("--force")} : QStringList());
    const QByteArray start = "tresk: " + m_document.toUtf8();
    const QByteArray pipeProblem = force ? "it is not a regular file"
                                         : "it exists already (--force replaces it)";
    QCOMPARE(outcome.errors,
             start + ": file 0 \"plain.bin\": cannot write " + target("plain.bin").toUtf8()
                 + ": it is a directory\n" + start + ": file 1 \"squeezed.txt\": cannot write "
                 + target("squeezed.txt").toUtf8() + ": " + pipeProblem + '\n');
    QCOMPARE(outcome.exitCode, 2);
    QVERIFY(QFileInfo(target("plain.bin")).isDir());
    QCOMPARE(entries().size(), 4);
}

void TestCommandExtract::modeFollowsTheUmask()
{
    const Outcome outcome = Command({text("extract"), m_document, text("-C"), m_target, text("0")})
                                .inShell(text("umask 027; exec \"$@\""))
                                .run();
    QCOMPARE(outcome.exitCode, 0);
    const auto permissions = QFile::permissions(target("plain.bin"));
    QVERIFY(permissions.testFlag(QFile::ReadOwner) && permissions.testFlag(QFile::WriteOwner));
    QVERIFY(permissions.testFlag(QFile::ReadGroup) && !permissions.testFlag(QFile::WriteGroup));
    QVERIFY(!permissions.testFlag(QFile::ReadOther) && !permissions.testFlag(QFile::ExeOwner));
}

void TestCommandExtract::quietPrintsNothing()
{
    const Outcome outcome = extract({text("-q")});
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(entries().size(), 4);
}

void TestCommandExtract::jsonTellsWhatWasWritten()
{
    QVERIFY(QDir().mkdir(m_target));
    m_dir->write(text("out/squeezed.txt"), "mine");
    const Outcome outcome = extract({text("--json"), text("0"), text("1")});
    QCOMPARE(outcome.exitCode, 2);
    const QJsonArray files = {
        QJsonObject{{text("id"), 0},
                    {text("name"), text("plain.bin")},
                    {text("path"), target("plain.bin")},
                    {text("status"), text("written")},
                    {text("size"), 600000}},
        QJsonObject{{text("id"), 1},
                    {text("name"), text("squeezed.txt")},
                    {text("path"), target("squeezed.txt")},
                    {text("status"), text("failed")},
                    {text("error"),
                     text("cannot write ") + target("squeezed.txt")
                         + text(": it exists already (--force replaces it)")}}};
    const QJsonObject expected = {{text("schema"), text("tresk-extract/1")},
                                  {text("document"), m_document},
                                  {text("directory"), m_target},
                                  {text("files"), files}};
    QCOMPARE(jsonObject(outcome.output), expected);
    QVERIFY(outcome.errors.endsWith(": it exists already (--force replaces it)\n"));
}

void TestCommandExtract::documentWithoutFiles()
{
    m_document = m_dir->write(text("none.pdf"),
                              documentWith(QVector<SectionSpec>{step(text("x"))}));
    Outcome outcome = extract({});
    QCOMPARE(outcome.output + outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    outcome = extract({text("--json")});
    QCOMPARE(jsonObject(outcome.output).value(text("files")), QJsonValue(QJsonArray()));
}

void TestCommandExtract::documentMayBeReplacedByItsFile()
{
    QVERIFY(QDir().mkdir(m_target));
    const QByteArray document = documentWith({FileSpec::plain(text("self.pdf"), plainContent),
                                              FileSpec::flate(text("later"), squeezedContent)});
    m_document = m_dir->write(text("out/self.pdf"), document);
    QCOMPARE(extract({text("--force")}).exitCode, 0);
    // What was open goes on being read.
    QVERIFY(readFile(target("self.pdf")) == plainContent);
    QVERIFY(readFile(target("later")) == squeezedContent);
}

QTEST_GUILESS_MAIN(TestCommandExtract)
#include "tst_command_extract.moc"
