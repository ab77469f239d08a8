#include "Command.h"
#include "Documents.h"
#include "Watched.h"

#include <TestFiles.h>

#include <QtTest>

using namespace tresktest;

/// `tresk cat`.
class TestCommandCat : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fileIsFound_data();
    void fileIsFound();
    void fileIsNotFound_data();
    void fileIsNotFound();
    void manyIdsAreCut();
    void bytesComeThrough_data();
    void bytesComeThrough();
    void damageIsReported_data();
    void damageIsReported();
    void contradictingSizes();
    void contentIsNotHeldInMemory();
    void bombIsDefused();
    void closedPipeIsQuiet();
    void fullDeviceIsReported();
    void closedOutputIsReported();

private:
    Outcome cat(const QVector<FileSpec>& files, const QString& file) const;

    TestDir m_dir;
};

namespace {

/// Files whose contents are their ids.
QVector<FileSpec> namedFiles()
{
    QVector<FileSpec> files;
    for (const char* name : {"a.txt", "twin", "0", "twin", "a]b\\c\nd", "", "dir/e.txt", "-f",
                             "\u00e4", "a\u0308", " ", "a]", "a\\]", "007"})
        files += FileSpec::plain(text(name), QByteArray::number(files.size()));
    return files;
}

} // namespace

void TestCommandCat::initTestCase()
{
    useUtf8Paths();
}

Outcome TestCommandCat::cat(const QVector<FileSpec>& files, const QString& file) const
{
    return runTresk(
        {text("cat"), m_dir.write(text("some.pdf"), documentWith(files)), text("--"), file});
}

void TestCommandCat::fileIsFound_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<int>("id");

    const auto row = [](const char* name, const char* argument, int id) {
        QTest::newRow(name) << text(argument) << id;
    };
    row("id", "0", 0);
    row("last id", "13", 13);
    row("id with zeros in front", "0003", 3);
    row("digits are an id, not a name", "007", 7);
    row("name", "a.txt", 0);
    row("name as shown", "a]b\\c\nd", 4);
    row("name as stored", R"(a\]b\\c\nd)", 4);
    row("no name", "", 5);
    row("name with a folder", "dir/e.txt", 6);
    row("name like an option", "-f", 7);
    row("composed", "\u00e4", 8);
    row("decomposed", "a\u0308", 9);
    row("blank", " ", 10);
    row("stored with two escapes", R"(a\\\])", 12);
}

void TestCommandCat::fileIsFound()
{
    QFETCH(QString, argument);
    QFETCH(int, id);
    const Outcome outcome = cat(namedFiles(), argument);
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, QByteArray::number(id));
    QCOMPARE(outcome.exitCode, 0);
}

void TestCommandCat::fileIsNotFound_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QByteArray>("problem");

    const auto row = [](const char* argument, const char* problem) {
        QTest::newRow(argument) << text(argument) << QByteArray(problem);
    };
    row("14", "there is no file 14 (the ids are 0 to 13)");
    row("99999999999999999999", "there is no file 99999999999999999999 (the ids are 0 to 13)");
    row("4294967296", "there is no file 4294967296 (the ids are 0 to 13)");
    row("-1", "there is no file \"-1\"; 'tresk files' lists all");
    row("+1", "there is no file \"+1\"; 'tresk files' lists all");
    row("1x", "there is no file \"1x\"; 'tresk files' lists all");
    row("\u0661", "there is no file \"\u0661\"; 'tresk files' lists all");
    row("A.TXT", "there is no file \"A.TXT\"; 'tresk files' lists all");
    row("e.txt", "there is no file \"e.txt\"; 'tresk files' lists all");
    row("a.txt ", "there is no file \"a.txt \"; 'tresk files' lists all");
    row("*", "there is no file \"*\"; 'tresk files' lists all");
    row("x\n\x1b", R"(there is no file "x\n\x1b"; 'tresk files' lists all)");
    row("twin", "\"twin\" is the name of several files, give the id: 1, 3");
    // Stored that way in one file, shown that way in another.
    row("a\\]", R"("a\]" is the name of several files, give the id: 11, 12)");
}

void TestCommandCat::fileIsNotFound()
{
    QFETCH(QString, argument);
    QFETCH(QByteArray, problem);
    const Outcome outcome = cat(namedFiles(), argument);
    QCOMPARE(outcome.errors,
             "tresk: " + m_dir.path(text("some.pdf")).toUtf8() + ": " + problem + '\n');
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 2);

    const Outcome single = cat({FileSpec::plain(text("a"), "x")}, text("1"));
    QVERIFY(single.errors.endsWith(": there is no file 1 (the only one has the id 0)\n"));
    const Outcome none = cat({}, text("0"));
    QVERIFY(none.errors.endsWith(": there is no file 0 (it has none)\n"));
}

void TestCommandCat::manyIdsAreCut()
{
    const Outcome outcome = cat(QVector<FileSpec>(25, FileSpec::plain(text("x"), "x")), text("x"));
    QVERIFY2(
        outcome.errors.endsWith(": \"x\" is the name of several files, give the id: 0, 1, 2, 3, 4, "
                                "5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, ...\n"),
        outcome.errors.constData());
}

void TestCommandCat::bytesComeThrough_data()
{
    QTest::addColumn<QByteArray>("content");
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("one byte") << QByteArray(1, '\0');
    QTest::newRow("all bytes") << all;
    QTest::newRow("line ends") << QByteArray("\r\n\n\r");
    for (int size : {65535, 65536, 65537, 262143, 262144, 262145, 1048576, 3000000})
        QTest::addRow("%d bytes", size) << noise(size);
    QTest::newRow("zeros") << QByteArray(5000000, '\0');
}

void TestCommandCat::bytesComeThrough()
{
    QFETCH(QByteArray, content);
    for (const FileSpec& file :
         {FileSpec::plain(text("f"), content), FileSpec::flate(text("f"), content)}) {
        const Outcome outcome = cat({file}, text("0"));
        QCOMPARE(outcome.errors, QByteArray());
        QVERIFY(outcome.output == content);
        QCOMPARE(outcome.exitCode, 0);
    }
}

void TestCommandCat::damageIsReported_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("problem");
    for (const DamagedFile& damaged : damagedFiles())
        QTest::newRow(damaged.name) << documentWith({damaged.file}) << damaged.problem;

    const QByteArray stream = deflated(damagedContent());
    FileSpec cut = FileSpec::flate(text("f"), damagedContent());
    cut.stored = stream.left(stream.size() - 1);
    FileSpec nothing = FileSpec::flate(text("f"), "");
    nothing.stored = "";
    const QByteArray problem = "its compressed stream breaks off";
    QTest::newRow("cut by a byte") << documentWith({cut}) << problem;
    QTest::newRow("nothing stored of nothing") << documentWith({nothing}) << problem;
}

void TestCommandCat::damageIsReported()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, problem);
    const QString path = m_dir.write(text("damaged.pdf"), document);
    const Outcome outcome = runTresk({text("cat"), path, text("f")});
    QCOMPARE(outcome.errors, "tresk: " + path.toUtf8() + ": file 0 \"f\": " + problem + '\n');
    QVERIFY(damagedContent().startsWith(outcome.output));
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandCat::contradictingSizes()
{
    const FileSpec file = FileSpec::plain(text("f"), "0123456789").with("cfilesize", "4");
    const QByteArray document = documentWith({file});
    const QString path = m_dir.write(text("sizes.pdf"), document);
    Outcome outcome = runTresk({text("cat"), path, text("0")});
    QCOMPARE(outcome.output, QByteArray("0123456789"));
    QCOMPARE(outcome.errors,
             "tresk: " + path.toUtf8()
                 + ": warning: file 0 \"f\": it is stored plain, but its marker gives two sizes, "
                   "10 and 4; "
                   "the first is taken\n");
    QCOMPARE(outcome.exitCode, 0);
    outcome = runTresk({text("cat"), text("-q"), path, text("0")});
    QCOMPARE(outcome.output, QByteArray("0123456789"));
    QCOMPARE(outcome.errors, QByteArray());
}

void TestCommandCat::contentIsNotHeldInMemory()
{
    if (isWatched())
        QSKIP("what watches needs more memory than the limit allows");
    const QString path = m_dir.write(
        text("large.pdf"), documentWith({fileOfZeros(text("zeros"), qint64(256) * 1024 * 1024)}));
    // In KiB: less than the content.
    const Outcome outcome = Command({text("cat"), path, text("zeros")})
                                .inShell(text("ulimit -v 249856 && \"$@\" | wc -c"))
                                .run();
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output.trimmed(), QByteArray("268435456"));
}

void TestCommandCat::bombIsDefused()
{
    FileSpec bomb = fileOfZeros(text("bomb"), qint64(2000) * 1024 * 1024);
    bomb.with("filesize", "1000");
    const QString path = m_dir.write(text("bomb.pdf"), documentWith({bomb}));
    const Outcome outcome = runTresk({text("cat"), path, text("bomb")});
    QCOMPARE(outcome.errors,
             "tresk: " + path.toUtf8()
                 + ": file 0 \"bomb\": its content is longer than the 1000 bytes that its marker "
                   "says\n");
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandCat::closedPipeIsQuiet()
{
    const QString path = m_dir.write(text("pipe.pdf"),
                                     documentWith({FileSpec::plain(text("f"), noise(3000000))}));
    const Outcome outcome = Command({text("cat"), path, text("0")})
                                .inShell(text("{ \"$@\"; echo $? >&2; } | head -c 10"))
                                .run();
    QCOMPARE(outcome.output, noise(10));
    QCOMPARE(outcome.errors, QByteArray("141\n"));
}

void TestCommandCat::fullDeviceIsReported()
{
    for (int size : {10, 3000000}) {
        const QString path = m_dir.write(text("full.pdf"),
                                         documentWith({FileSpec::plain(text("f"), noise(size))}));
        const Outcome outcome =
            Command({text("cat"), path, text("0")}).inShell(text("\"$@\" >/dev/full")).run();
        QCOMPARE(outcome.errors, QByteArray("tresk: standard output: No space left on device\n"));
        QCOMPARE(outcome.exitCode, 2);
    }
}

void TestCommandCat::closedOutputIsReported()
{
    const QString path = m_dir.write(text("closed.pdf"),
                                     documentWith({FileSpec::plain(text("f"), "content")}));
    const Outcome outcome =
        Command({text("cat"), path, text("0")}).inShell(text("\"$@\" <&- >&-")).run();
    QCOMPARE(outcome.errors, QByteArray("tresk: standard output: Bad file descriptor\n"));
    QCOMPARE(outcome.exitCode, 2);
}

QTEST_GUILESS_MAIN(TestCommandCat)
#include "tst_command_cat.moc"
