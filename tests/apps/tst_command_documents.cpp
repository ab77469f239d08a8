#include "Command.h"
#include "Documents.h"

#include <TestFiles.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace tresktest;

/// What all commands do with documents that are missing, damaged or oddly named.
class TestCommandDocuments : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void badDocumentIsOneLine_data();
    void badDocumentIsOneLine();
    void unreadableDocument();
    void truncatedDocumentIsOneLineOrNone();
    void lostEndIsReported();
    void documentTruncatedMeanwhile_data();
    void documentTruncatedMeanwhile();
    void brokenChainIsReported();
    void pathsAreOdd_data();
    void pathsAreOdd();
    void pathThatIsNotUtf8();
    void relativePath();
    void quietSilencesNoError();
    void nothingDependsOnTheEnvironment();
    void nothingIsLoggedWithoutBeingAsked();
    void fullOutputIsReported();
    void closedOutputIsReported();

private:
    TestDir m_dir;
};

namespace {

QByteArray soundDocument()
{
    return documentWith({FileSpec::plain(QStringLiteral("a.txt"), "alpha"),
                         FileSpec::flate(QStringLiteral("b.txt"), QByteArray(1000, 'b'))});
}

/// The arguments that make each command read the document at @p path.
QList<QStringList> allCommands(const QString& path, const QString& target)
{
    return {
        {QStringLiteral("log"), path},
        {QStringLiteral("log"), QStringLiteral("--jsonl"), path},
        {QStringLiteral("show"), path},
        {QStringLiteral("show"), QStringLiteral("--json"), path},
        {QStringLiteral("log"), QStringLiteral("--json"), path},
        {QStringLiteral("files"), path},
        {QStringLiteral("files"), QStringLiteral("--json"), path},
        {QStringLiteral("cat"), path, QStringLiteral("0")},
        {QStringLiteral("verify"), path},
        {QStringLiteral("extract"), path, QStringLiteral("-C"), target},
        {QStringLiteral("extract"), QStringLiteral("--json"), path, QStringLiteral("-C"), target}};
}

} // namespace

void TestCommandDocuments::initTestCase()
{
    useUtf8Paths();
}

void TestCommandDocuments::badDocumentIsOneLine_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("problem");

    const auto row = [](const char* name, const QString& path, const char* problem) {
        QTest::newRow(name) << path << QByteArray(problem);
    };
    const auto document = [this](const char* name, const QByteArray& bytes) {
        return m_dir.write(QString::fromUtf8(name), bytes);
    };
    const char* const noHistory = "has no history: none of its first 10 lines is a history header";
    const char* const emptyHistory = "has an empty history: neither steps nor embedded files";
    const char* const missing = "No such file or directory";
    const QByteArray header = headerLine() + '\n';

    row("missing", m_dir.path(QStringLiteral("missing")), missing);
    row("in a missing folder", m_dir.path(QStringLiteral("missing/a")), missing);
    QFile::link(QStringLiteral("nowhere"), m_dir.path(QStringLiteral("dangling")));
    row("link to nothing", m_dir.path(QStringLiteral("dangling")), missing);
    QFile::link(QStringLiteral("loop"), m_dir.path(QStringLiteral("loop")));
    row("link to itself", m_dir.path(QStringLiteral("loop")), "Too many levels of symbolic links");
    row("below a file", document("file", "x") + QStringLiteral("/a"), "Not a directory");
    row("name too long", m_dir.path(QString(300, QLatin1Char('a'))), "File name too long");
    row("folder", QFileInfo(m_dir.path(QStringLiteral("x"))).path(),
        "is a directory; 'tresk find' searches those");
    row("pipe", m_dir.makePipe(QStringLiteral("pipe")), "is not a regular file");
    row("device", QStringLiteral("/dev/null"), "is not a regular file");
    row("standard input", QStringLiteral("-"),
        "standard input is not supported (./- is a file of that name)");
    row("empty", document("empty", ""), "is empty");
    row("no history", document("plain", "%PDF-1.4\n%%EOF\n"), noHistory);
    row("one byte", document("byte", "%"), noHistory);
    row("header in line 11", document("late", QByteArray(10, '\n') + header), noHistory);
    row("header behind NUL", document("nul", QByteArray("a\0b\n", 4) + header), noHistory);
    row("header cut", document("cut", header.left(20)), noHistory);
    row("header only", document("header", header), emptyHistory);
    row("header in line 10", document("line10", QByteArray(9, '\n') + header), emptyHistory);
    row("broken marker only", document("broken", header + "%<--! $TRESK_SECTION [version:1]-->\n"),
        emptyHistory);

    QFile large(document("large", soundDocument()));
    QVERIFY(large.resize(qint64(1) << 31));
    row("2 GiB", large.fileName(), "has 2 GiB or more, which is not supported");
    QFile larger(document("larger", soundDocument()));
    QVERIFY(larger.resize((qint64(1) << 32) + soundDocument().size()));
    row("over 4 GiB", larger.fileName(), "has 2 GiB or more, which is not supported");
}

void TestCommandDocuments::badDocumentIsOneLine()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, problem);
    const QString target = m_dir.path(QStringLiteral("target"));
    for (const QStringList& arguments : allCommands(path, target)) {
        const Outcome outcome = runTresk(arguments);
        QCOMPARE(outcome.errors, "tresk: " + path.toUtf8() + ": " + problem + '\n');
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.exitCode, 2);
        QVERIFY(!QFile::exists(target));
    }
    const Outcome outcome = runTresk({QStringLiteral("log"), QString()});
    QCOMPARE(outcome.errors, QByteArray("tresk: '': No such file or directory\n"));
}

void TestCommandDocuments::unreadableDocument()
{
    const QString path = m_dir.write(QStringLiteral("unreadable"), soundDocument());
    QVERIFY(QFile::setPermissions(path, QFile::Permissions()));
    Command command({QStringLiteral("log"), path});
    if (!command.asOrdinaryUser())
        QSKIP("the command cannot be run as another user here");
    const Outcome outcome = command.run();
    QCOMPARE(outcome.errors, "tresk: " + path.toUtf8() + ": Permission denied\n");
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandDocuments::truncatedDocumentIsOneLineOrNone()
{
    const QByteArray whole = documentWith(QVector<SectionSpec>{
        step(QStringLiteral("first"), {FileSpec::plain(QStringLiteral("a.txt"), "alpha")}),
        step(QStringLiteral("second"), {FileSpec::flate(QStringLiteral("b.txt"), "beta")})});
    int complaints = 0;
    for (int length = 0; length < whole.size(); length += 11) {
        const QString path = m_dir.write(QStringLiteral("truncated"), whole.left(length));
        const Outcome outcome = runTresk(
            {QStringLiteral("log"), QStringLiteral("--oneline"), path});
        const bool complained = !outcome.errors.isEmpty();
        QCOMPARE(outcome.exitCode, complained ? 2 : 0);
        QCOMPARE(outcome.errors.count('\n'), complained ? 1 : 0);
        // What is left of the history is shown in any case, and nothing else.
        QCOMPARE(outcome.output.isEmpty(), !outcome.output.contains("  first  "));
        QVERIFY2(complained || !outcome.output.isEmpty(), qPrintable(QString::number(length)));
        complaints += complained ? 1 : 0;
    }
    QVERIFY(complaints > 0);
}

void TestCommandDocuments::lostEndIsReported()
{
    DocumentWriter writer(headerLine() + '\n');
    writer.writeSection(
        step(QStringLiteral("first"), {FileSpec::plain(QStringLiteral("a"), "aaaa")}));
    const int kept = writer.position();
    writer.writeSection(
        step(QStringLiteral("second"), {FileSpec::plain(QStringLiteral("b"), "bbbb")}));
    const int lost = writer.files().last().dataStart + 2;
    QVERIFY(lost > kept);
    const QString path = m_dir.write(QStringLiteral("lostend"), writer.bytes().left(lost));
    const QByteArray message = "tresk: " + path.toUtf8()
        + ": is cut off or damaged: 1 embedded file would reach beyond its end\n";

    Outcome outcome = runTresk({QStringLiteral("log"), QStringLiteral("--oneline"), path});
    QVERIFY2(outcome.output.startsWith("0  -  first  (1 embedded)\n"), outcome.output.constData());
    QVERIFY2(outcome.output.endsWith("\n-  without a step  (1 file)\n"),
             outcome.output.constData());
    QCOMPARE(outcome.errors, message);
    QCOMPARE(outcome.exitCode, 2);

    outcome = runTresk({QStringLiteral("files"), path});
    QCOMPARE(outcome.output.count('\n'), 3);
    QCOMPARE(outcome.errors, message);
    QCOMPARE(outcome.exitCode, 2);

    // The file that is whole can be had without complaint.
    outcome = runTresk({QStringLiteral("cat"), path, QStringLiteral("a")});
    QCOMPARE(outcome.output, QByteArray("aaaa"));
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);

    SectionSpec beyond = step(QStringLiteral("third"),
                              {FileSpec::plain(QStringLiteral("c"), "cc")});
    beyond.regionSize = 100000;
    outcome = runTresk(
        {QStringLiteral("log"),
         m_dir.write(QStringLiteral("beyond"), documentWith(QVector<SectionSpec>{beyond}))});
    QVERIFY2(
        outcome.errors.endsWith(": is cut off or damaged: 1 step would reach beyond its end\n"),
        outcome.errors.constData());
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandDocuments::documentTruncatedMeanwhile_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("problem");
    const QByteArray shorter = "has become shorter while it was read; try again";
    for (const char* command : {"log", "show", "files"})
        QTest::newRow(command) << QStringList{text(command)} << shorter;
    QTest::newRow("log --jsonl") << QStringList{text("log"), text("--jsonl")} << shorter;
    QTest::newRow("cat") << QStringList{text("cat"), text("--"), text("1")}
                         << QByteArray("file 1 \"content\": its stored bytes cannot be read");
}

void TestCommandDocuments::documentTruncatedMeanwhile()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, problem);
    // More output than a pipe and the command's own buffer take: it waits for the reader, who
    // truncates the document first.
    const QString longText(300000, QLatin1Char('x'));
    const QString path = m_dir.write(
        text("shrinking.pdf"),
        documentWith({step(
            longText,
            {FileSpec::plain(longText, "f"), FileSpec::plain(text("content"), noise(2000000))})}));
    const QString script = text(
        "{ \"$@\"; echo $? >&2; } | { head -c 1 >&2; truncate -s 1000 shrinking.pdf; "
        "cat >/dev/null; }");
    arguments.insert(arguments.first() == text("cat") ? 2 : 1, text("shrinking.pdf"));
    const Outcome outcome =
        Command(arguments).inDirectory(QFileInfo(path).path()).inShell(script).run();
    QVERIFY2(outcome.errors.endsWith("tresk: shrinking.pdf: " + problem + "\n2\n"),
             outcome.errors.right(500).constData());
}

void TestCommandDocuments::brokenChainIsReported()
{
    SectionSpec last = step(QStringLiteral("last"));
    last.gap = QByteArray(20, '\n'); // farther than the neighbourhood that is searched
    last.with("previousmarker", "12");
    const QString path = m_dir.write(
        QStringLiteral("chain"),
        documentWith(QVector<SectionSpec>{step(QStringLiteral("first")), last}));
    const Outcome outcome = runTresk({QStringLiteral("log"), QStringLiteral("--oneline"), path});
    QVERIFY2(outcome.output.startsWith("0  -  last  (0 embedded)\n"), outcome.output.constData());
    QCOMPARE(outcome.output.count('\n'), 1);
    QCOMPARE(
        outcome.errors,
        "tresk: " + path.toUtf8()
            + ": the history is incomplete: the step before step 0 is not where its marker says\n");
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandDocuments::pathsAreOdd_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("shown");

    QTest::newRow("blank") << QStringLiteral("a b.pdf") << QByteArray("a b.pdf");
    QTest::newRow("dash") << QStringLiteral("-x.pdf") << QByteArray("-x.pdf");
    QTest::newRow("Latin") << QString::fromUtf8("gr\u00f6\u00dfe.pdf")
                           << QByteArray("gr\u00f6\u00dfe.pdf");
    QTest::newRow("Japanese") << QString::fromUtf8("\u8ef8.pdf") << QByteArray("\u8ef8.pdf");
    QTest::newRow("beyond 16 bits")
        << QString::fromUtf8("\U0001f529.pdf") << QByteArray("\U0001f529.pdf");
    QTest::newRow("line break") << QStringLiteral("a\nb.pdf") << QByteArray("a\\nb.pdf");
    QTest::newRow("escape") << QStringLiteral("a\x1b[31mb.pdf") << QByteArray("a\\x1b[31mb.pdf");
    QTest::newRow("bidi") << QString::fromUtf8("a\u202eb.pdf") << QByteArray("a\\u202eb.pdf");
    QTest::newRow("quirk of numbers") << QStringLiteral("%1%2.pdf") << QByteArray("%1%2.pdf");
}

void TestCommandDocuments::pathsAreOdd()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, shown);
    const QString present = m_dir.write(name, soundDocument());
    const QString missing = m_dir.path(QStringLiteral("none/") + name);
    const QByteArray missingShown = m_dir.path(QStringLiteral("none/")).toUtf8() + shown;
    for (const char* locale : {"C", "C.UTF-8", "POSIX", "xx_XX.ISO-8859-1", ""}) {
        const auto run = [locale](const QStringList& arguments) {
            return Command(arguments)
                .with(QStringLiteral("LC_ALL"), QString::fromUtf8(locale))
                .with(QStringLiteral("LANG"), QString::fromUtf8(locale))
                .run();
        };
        Outcome outcome = run({QStringLiteral("cat"), present, QStringLiteral("0")});
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.output, QByteArray("alpha"));
        QCOMPARE(outcome.exitCode, 0);

        outcome = run({QStringLiteral("files"), QStringLiteral("--json"), present});
        QCOMPARE(jsonObject(outcome.output).value(QStringLiteral("document")).toString(), present);

        outcome = run({QStringLiteral("log"), missing});
        QCOMPARE(outcome.errors, "tresk: " + missingShown + ": No such file or directory\n");
        QCOMPARE(outcome.exitCode, 2);
    }
}

void TestCommandDocuments::pathThatIsNotUtf8()
{
    const QString folder = m_dir.path(QStringLiteral("latin1"));
    QVERIFY(QDir().mkdir(folder));
    const QString sound = m_dir.write(QStringLiteral("sound"), soundDocument());
    // Octal 374 is "u" with two dots in ISO 8859-1.
    const QString script = QStringLiteral(
        "name=$(printf 'M\\374ller.pdf') && cp \"$3\" \"$name\" && "
        "\"$1\" \"$2\" \"$name\" 1 | tr -d '\\n' && "
        "rm \"$name\" && "
        "\"$1\" log \"none/$name\"");
    const Outcome outcome =
        Command({QStringLiteral("cat"), sound}).inDirectory(folder).inShell(script).run();
    QCOMPARE(outcome.output, QByteArray(1000, 'b'));
    QCOMPARE(outcome.errors, QByteArray("tresk: none/M\\xfcller.pdf: No such file or directory\n"));
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandDocuments::relativePath()
{
    const QString folder = m_dir.path(QStringLiteral("relative"));
    QVERIFY(QDir().mkpath(folder + QStringLiteral("/below")));
    m_dir.write(QStringLiteral("relative/a.pdf"), soundDocument());
    m_dir.write(QStringLiteral("relative/-"), soundDocument());
    const auto alphaFrom = [](const QString& directory, const QString& path) {
        const Outcome outcome = Command({QStringLiteral("cat"), path, QStringLiteral("0")})
                                    .inDirectory(directory)
                                    .run();
        return outcome.output == "alpha" && outcome.exitCode == 0;
    };
    QVERIFY(alphaFrom(folder, QStringLiteral("a.pdf")));
    QVERIFY(alphaFrom(folder, QStringLiteral("./a.pdf")));
    QVERIFY(alphaFrom(folder, QStringLiteral("./-")));
    QVERIFY(alphaFrom(folder + QStringLiteral("/below"), QStringLiteral("../a.pdf")));
}

void TestCommandDocuments::quietSilencesNoError()
{
    for (const char* option : {"-q", "--quiet", "-qv"}) {
        const Outcome outcome = runTresk(
            {QStringLiteral("files"), QString::fromUtf8(option), QStringLiteral("nowhere")});
        QCOMPARE(outcome.errors, QByteArray("tresk: nowhere: No such file or directory\n"));
        QCOMPARE(outcome.exitCode, 2);
    }
}

void TestCommandDocuments::nothingDependsOnTheEnvironment()
{
    QVector<FileSpec> files;
    for (int i = 0; i < 30; ++i)
        files += FileSpec::plain(QString::fromUtf8("Gr\u00f6\u00dfe %1.txt").arg(i % 20),
                                 noise(i * 100));
    const QString path = m_dir.write(QStringLiteral("environment.pdf"), documentWith(files));
    const QString target = m_dir.path(QStringLiteral("environment"));
    // An empty hash seed means one of its own for every process.
    const QVector<QStringList> environments = {
        {},
        {QStringLiteral("QT_HASH_SEED=0"), QStringLiteral("LC_ALL=C"),
         QStringLiteral("TZ=Pacific/Kiritimati"), QStringLiteral("TERM=dumb")},
        {QStringLiteral("QT_HASH_SEED="), QStringLiteral("LC_ALL=C.UTF-8"),
         QStringLiteral("HOME=/nowhere"), QStringLiteral("NO_COLOR=1")},
        {QStringLiteral("LC_ALL=tr_TR.UTF-8"), QStringLiteral("TZ=America/St_Johns"),
         QStringLiteral("COLUMNS=20")},
    };
    for (const QStringList& arguments : allCommands(path, target)) {
        QByteArray expected;
        for (const QStringList& environment : environments) {
            Command command(arguments);
            for (const QString& variable : environment)
                command.with(variable.section(QLatin1Char('='), 0, 0),
                             variable.section(QLatin1Char('='), 1));
            QDir(target).removeRecursively();
            const Outcome outcome = command.run();
            QCOMPARE(outcome.errors, QByteArray());
            QCOMPARE(outcome.exitCode, 0);
            if (environment.isEmpty())
                expected = outcome.output;
            QCOMPARE(outcome.output, expected);
        }
        QVERIFY(!expected.isEmpty() || arguments.first() == QLatin1String("cat"));
    }
}

void TestCommandDocuments::nothingIsLoggedWithoutBeingAsked()
{
    const QString path = m_dir.write(QStringLiteral("logged.pdf"), soundDocument());
    const QString target = m_dir.path(QStringLiteral("logged"));
    for (const QStringList& arguments : allCommands(path, target)) {
        QDir(target).removeRecursively();
        const Outcome outcome = Command(arguments)
                                    .with(QStringLiteral("QT_LOGGING_RULES"),
                                          QStringLiteral("*=true"))
                                    .with(QStringLiteral("LC_ALL"), QStringLiteral("C"))
                                    .run();
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.exitCode, 0);
    }
}

void TestCommandDocuments::fullOutputIsReported()
{
    const QString path = m_dir.write(text("full.pdf"), soundDocument());
    const QString target = m_dir.path(text("full"));
    for (const QStringList& arguments : allCommands(path, target)) {
        QDir(target).removeRecursively();
        const Outcome outcome = Command(arguments).inShell(text("\"$@\" >/dev/full")).run();
        QCOMPARE(outcome.errors, QByteArray("tresk: standard output: No space left on device\n"));
        QCOMPARE(outcome.exitCode, 2);
    }
}

void TestCommandDocuments::closedOutputIsReported()
{
    const QString path = m_dir.write(text("closed.pdf"), soundDocument());
    const QString target = m_dir.path(text("closed"));
    for (const QStringList& arguments : allCommands(path, target)) {
        for (const char* others : {"", " <&-"}) {
            QDir(target).removeRecursively();
            const Outcome outcome =
                Command(arguments).inShell(text("\"$@\" >&-") + text(others)).run();
            QCOMPARE(outcome.errors, QByteArray("tresk: standard output: Bad file descriptor\n"));
            QCOMPARE(outcome.exitCode, 2);
        }
        // Nor is there anyone to tell of it then.
        QDir(target).removeRecursively();
        QCOMPARE(Command(arguments).inShell(text("\"$@\" <&- >&- 2>&-")).run().exitCode, 2);
        QCOMPARE(readFile(path), soundDocument());
    }
}

QTEST_GUILESS_MAIN(TestCommandDocuments)
#include "tst_command_documents.moc"
