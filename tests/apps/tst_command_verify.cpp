#include "Command.h"
#include "Documents.h"
#include "Watched.h"

#include <TestFiles.h>

#include <QFile>
#include <QJsonArray>
#include <QtTest>

#include <csignal>

using namespace tresktest;

/// `tresk verify`.
class TestCommandVerify : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void allRight();
    void quietSaysNothing();
    void faultsOfFiles_data();
    void faultsOfFiles();
    void faultsOfSteps_data();
    void faultsOfSteps();
    void checksumOfStrangeCompressionMayBeRight();
    void everyFaultIsTold();
    void allDocumentsAreChecked();
    void noHistoryIsNotAllRight_data();
    void noHistoryIsNotAllRight();
    void incompleteHistoryFails();
    void jsonTellsOfEverything();
    void jsonOfDocumentsThatCannotBeChecked();
    void textsAreSafeForTerminals();
    void bombIsDefused();
    void claimsBeyondTheDocumentAreNotFollowed();
    void contentIsNotHeldInMemory();
    void documentTruncatedMeanwhile();
    void signalEndsIt_data();
    void signalEndsIt();
    void progressIsShownAndCleared();
    void fullOutputIsReported();

private:
    Outcome verify(const QByteArray& document, const QStringList& options = {}) const;
    void compareFault(const QByteArray& document, const QByteArray& item, const QByteArray& problem,
                      const QByteArray& status) const;

    TestDir m_dir;
    QString m_path;
    QByteArray m_name;
};

namespace {

FileSpec damaged(FileSpec file, const char* key, const QByteArray& value)
{
    return file.with(key, value);
}

/// @p document with the first @p before, which must be in it, replaced by @p after.
QByteArray changed(const QByteArray& document, const QByteArray& before, const QByteArray& after)
{
    const auto place = document.indexOf(before);
    if (place < 0)
        qFatal("no \"%s\" to be changed", before.constData());
    return QByteArray(document).replace(place, before.size(), after);
}

} // namespace

void TestCommandVerify::initTestCase()
{
    useUtf8Paths();
    m_path = m_dir.path(text("some.pdf"));
    m_name = m_path.toUtf8();
}

Outcome TestCommandVerify::verify(const QByteArray& document, const QStringList& options) const
{
    m_dir.write(text("some.pdf"), document);
    return runTresk(QStringList{text("verify"), m_path} + options);
}

void TestCommandVerify::allRight()
{
    const QByteArray document = documentWith(
        {step(text("first"),
              {FileSpec::plain(text("a"), noise(250000)), FileSpec::plain(text("b"), "")}),
         step(text("second")),
         step(QString(),
              {FileSpec::flate(text("c"), noise(250000)), FileSpec::flate(text("d"), "")})});
    const Outcome outcome = verify(document);
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, m_name + ": all right\n1 document, 3 steps, 4 files: all right\n");
    QCOMPARE(outcome.exitCode, 0);
}

void TestCommandVerify::quietSaysNothing()
{
    const FileSpec file = FileSpec::plain(text("a"), "alpha");
    const Outcome right = verify(documentWith({file}), {text("-q")});
    QCOMPARE(right.output + right.errors, QByteArray());
    QCOMPARE(right.exitCode, 0);
    const Outcome wrong = verify(documentWith({damaged(file, "md5file", "")}), {text("-q")});
    QCOMPARE(wrong.output, QByteArray());
    QCOMPARE(wrong.errors, "tresk: " + m_name + ": file 0 \"a\": its checksum is missing\n");
    QCOMPARE(wrong.exitCode, 1);
}

/// Compares what is said of the only item that fails, to people and to programs.
void TestCommandVerify::compareFault(const QByteArray& document, const QByteArray& item,
                                     const QByteArray& problem, const QByteArray& status) const
{
    const Outcome outcome = verify(document);
    QCOMPARE(outcome.errors, "tresk: " + m_name + ": " + item + ": " + problem + '\n');
    QVERIFY2(outcome.output.startsWith(m_name + ": 1 of "), outcome.output.constData());
    QCOMPARE(outcome.exitCode, 1);

    const QJsonObject json = jsonObject(verify(document, {text("--json")}).output);
    const QJsonObject checked = json.value(text("documents")).toArray()[0].toObject();
    QCOMPARE(checked.value(text("status")).toString(), text("failed"));
    QJsonArray items = checked.value(text("steps")).toArray();
    for (const auto& file : checked.value(text("files")).toArray())
        items += file;
    int failed = 0;
    for (const auto& value : items) {
        const QJsonObject object = value.toObject();
        if (object.value(text("status")).toString() == text("right"))
            continue;
        ++failed;
        QCOMPARE(object.value(text("status")).toString().toUtf8(), status);
        QCOMPARE(object.value(text("error")).toString().toUtf8(), problem);
    }
    QCOMPARE(failed, 1);
    const QJsonObject counts = json.value(text("counts")).toObject();
    QCOMPARE(counts.value(QString::fromUtf8(status)).toInt(), 1);
    QCOMPARE(counts.value(text("right")).toInt(), static_cast<int>(items.size()) - 1);
}

void TestCommandVerify::faultsOfFiles_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("problem");
    QTest::addColumn<QByteArray>("status");

    // The section's checksum is that of what is written, so the file alone is wrong.
    const auto row = [](const char* name, const FileSpec& file, const QByteArray& problem,
                        const char* status) {
        QTest::newRow(name) << documentWith({file}) << problem << QByteArray(status);
    };
    const FileSpec plain = FileSpec::plain(text("f"), noise(300000));
    const FileSpec squeezed = FileSpec::flate(text("f"), noise(300000));
    const QByteArray other = md5Hex("something else");
    const QByteArray differs = "its checksum differs";
    const QByteArray missing = "its checksum is missing";
    row("content", damaged(plain, "md5file", other), differs, "differs");
    row("inflated content", damaged(squeezed, "md5file", other), differs, "differs");
    row("stored bytes", damaged(squeezed, "md5cfile", other), differs, "differs");
    row("of no content", damaged(FileSpec::plain(text("f"), ""), "md5file", other), differs,
        "differs");
    row("size", damaged(plain, "filesize", "299999"), differs, "differs");
    row("no checksum", damaged(plain, "md5file", ""), missing, "noChecksum");
    row("no checksum of content", damaged(squeezed, "md5file", ""), missing, "noChecksum");
    row("no checksum of stored bytes", damaged(squeezed, "md5cfile", ""), missing, "noChecksum");
    FileSpec cut = squeezed;
    cut.stored = deflated(squeezed.content);
    cut.stored->chop(1);
    row("cut by a byte", cut, "its compressed stream breaks off", "brokenStream");
    for (const DamagedFile& file : damagedFiles()) {
        const QByteArray& problem = file.problem;
        // That sizes contradict each other is no matter of checksums.
        if (problem.startsWith("its content") || QByteArray(file.name) == "no size")
            continue;
        // Stored plain and compressed in the same way, but with another word for it.
        const bool plainly = problem.contains("is unknown") && file.file.compression == "none";
        if (plainly)
            continue;
        row(file.name, file.file, problem,
            problem.contains("stream")           ? "brokenStream"
                : problem.contains("is unknown") ? "unknownCompression"
                                                 : "outsideDocument");
    }
}

void TestCommandVerify::faultsOfFiles()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, problem);
    QFETCH(QByteArray, status);
    compareFault(document, "file 0 \"f\"", problem, status);
}

void TestCommandVerify::faultsOfSteps_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("problem");
    QTest::addColumn<QByteArray>("status");

    const auto row = [](const char* name, const QByteArray& document, const char* problem,
                        const char* status) {
        QTest::newRow(name) << document << QByteArray(problem) << QByteArray(status);
    };
    SectionSpec section = step(text("s"));
    section.gap = "% some remark\n";
    const auto with = [&section](const char* key, const char* value) {
        return documentWith(QVector<SectionSpec>{SectionSpec(section).with(key, value)});
    };
    const QByteArray sound = documentWith(QVector<SectionSpec>{section});
    const char* const unknown = "its marker does not say which bytes belong to it";
    row("bytes before the marker", changed(sound, "remark", "Remark"), "its checksum differs",
        "differs");
    row("marker", changed(sound, "[creator:writer]", "[creator:Writer]"), "its checksum differs",
        "differs");
    row("no checksum", with("md5section", ""), "its checksum is missing", "noChecksum");
    row("no start", with("left", ""), unknown, "outsideDocument");
    row("no size", with("size", ""), unknown, "outsideDocument");
    row("before the start", with("left", "2000"), "it reaches beyond the start of the document",
        "outsideDocument");
}

void TestCommandVerify::faultsOfSteps()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, problem);
    QFETCH(QByteArray, status);
    compareFault(document, "step 0 \"s\"", problem, status);
}

void TestCommandVerify::checksumOfStrangeCompressionMayBeRight()
{
    const FileSpec file = FileSpec::plain(text("f"), "content").with("compression", "stored");
    QCOMPARE(verify(documentWith({file})).exitCode, 0);
}

void TestCommandVerify::everyFaultIsTold()
{
    const FileSpec file = FileSpec::plain(text("a"), "alpha");
    const QByteArray document = documentWith(
        {step(text("one"), {file, damaged(file, "md5file", "")}),
         step(text("two"), {damaged(file, "compression", "x").with("md5file", ""), file})
             .with("md5section", "")});
    const Outcome outcome = verify(document);
    const QByteArray start = "tresk: " + m_name + ": ";
    QCOMPARE(outcome.errors,
             start + "step 0 \"two\": its checksum is missing\n" + start
                 + "file 1 \"a\": its checksum is missing\n" + start
                 + "file 2 \"a\": its compression \"x\" is unknown\n");
    QCOMPARE(outcome.output,
             m_name
                 + ": 3 of 6 failed\n1 document, 2 steps, 4 files: 3 right, 2 without checksum, "
                   "1 of unknown compression\n");
    QCOMPARE(outcome.exitCode, 1);
}

void TestCommandVerify::allDocumentsAreChecked()
{
    const FileSpec file = FileSpec::plain(text("a"), "alpha");
    const QString right = m_dir.write(text("right.pdf"), documentWith({file}));
    const QString wrong = m_dir.write(text("wrong.pdf"),
                                      documentWith({damaged(file, "md5file", md5Hex("x"))}));
    const QString missing = m_dir.path(text("missing.pdf"));

    Outcome outcome = runTresk({text("verify"), wrong, right});
    QCOMPARE(outcome.errors, "tresk: " + wrong.toUtf8() + ": file 0 \"a\": its checksum differs\n");
    QCOMPARE(outcome.output,
             wrong.toUtf8() + ": 1 of 2 failed\n" + right.toUtf8()
                 + ": all right\n2 documents, 2 steps, 2 files: 3 right, 1 differs\n");
    QCOMPARE(outcome.exitCode, 1);

    outcome = runTresk({text("verify"), missing, wrong, right});
    QVERIFY2(outcome.output.endsWith(
                 "2 documents, 2 steps, 2 files: 3 right, 1 differs; 1 document not checked\n"),
             outcome.output.constData());
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(runTresk({text("verify"), right, missing}).exitCode, 2);
    QCOMPARE(runTresk({text("verify"), right, right}).exitCode, 0);
}

void TestCommandVerify::noHistoryIsNotAllRight_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("problem");
    const QByteArray header = headerLine() + '\n';
    DocumentWriter files(header);
    files.writeFile(FileSpec::plain(text("a"), "alpha"));
    QTest::newRow("no header") << QByteArray("%PDF-1.4\n")
                               << QByteArray("has no history: none of its first 10 lines is a "
                                             "history header");
    QTest::newRow("nothing behind the header")
        << header << QByteArray("has an empty history: neither steps nor embedded files");
    QTest::newRow("no step left")
        << files.bytes()
        << QByteArray("has no history: no step is left in it, only 1 embedded file");
}

void TestCommandVerify::noHistoryIsNotAllRight()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, problem);
    const Outcome outcome = verify(document);
    QCOMPARE(outcome.errors, "tresk: " + m_name + ": " + problem + '\n');
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 2);

    const QJsonObject json = jsonObject(verify(document, {text("--json")}).output);
    const QJsonObject only = json.value(text("documents")).toArray()[0].toObject();
    QCOMPARE(only.value(text("status")).toString(), text("noHistory"));
    QCOMPARE(only.value(text("error")).toString().toUtf8(), problem);
}

void TestCommandVerify::incompleteHistoryFails()
{
    SectionSpec last = step(text("last"));
    last.gap = QByteArray(20, '\n'); // farther than the neighbourhood that is searched
    last.with("previousmarker", "12");
    const QByteArray document = documentWith({step(text("first")), last});
    const Outcome outcome = verify(document);
    QCOMPARE(outcome.errors,
             "tresk: " + m_name
                 + ": the history is incomplete: the step before step 0 is not where its marker "
                   "says\n");
    QCOMPARE(outcome.output,
             m_name
                 + ": incomplete\n1 document, 1 step, 0 files: all right; 1 document incomplete\n");
    QCOMPARE(outcome.exitCode, 1);
    const QJsonObject json = jsonObject(verify(document, {text("--json")}).output);
    const QJsonObject only = json.value(text("documents")).toArray()[0].toObject();
    QCOMPARE(only.value(text("status")).toString(), text("incomplete"));

    // A document that has lost its end.
    SectionSpec beyond = step(text("s"));
    beyond.regionSize = 100000;
    const Outcome lost = verify(documentWith(QVector<SectionSpec>{beyond}));
    QCOMPARE(lost.errors,
             "tresk: " + m_name + ": step 0 \"s\": it reaches beyond the end of the document\n");
    QCOMPARE(lost.exitCode, 1);

    // A block that reaches beyond it, behind content that is whole.
    const Outcome block = verify(
        documentWith({FileSpec::plain(text("f"), "x").with("blocksize", "100000")}));
    QCOMPARE(block.errors,
             "tresk: " + m_name
                 + ": is cut off or damaged: 1 embedded file would reach beyond its end\n");
    QVERIFY(block.output.startsWith(m_name + ": incomplete\n"));
    QCOMPARE(block.exitCode, 1);
}

void TestCommandVerify::jsonTellsOfEverything()
{
    const FileSpec file = FileSpec::plain(text("a]"), "alpha");
    const QByteArray document = documentWith({file, damaged(file, "md5file", "")});
    const Outcome outcome = verify(document, {text("--json")});
    QCOMPARE(outcome.errors, "tresk: " + m_name + ": file 1 \"a]\": its checksum is missing\n");
    QCOMPARE(outcome.exitCode, 1);
    const QJsonObject right = {{text("id"), 0},
                               {text("name"), text("a\\]")},
                               {text("nameUnescaped"), text("a]")},
                               {text("status"), text("right")}};
    const QJsonObject wrong = {{text("id"), 1},
                               {text("name"), text("a\\]")},
                               {text("nameUnescaped"), text("a]")},
                               {text("status"), text("noChecksum")},
                               {text("error"), text("its checksum is missing")}};
    const QJsonObject section = {
        {text("id"), 0}, {text("title"), text("step")}, {text("status"), text("right")}};
    const QJsonObject only = {{text("document"), m_path},
                              {text("status"), text("failed")},
                              {text("steps"), QJsonArray{section}},
                              {text("files"), QJsonArray{right, wrong}}};
    const QJsonObject counts = {
        {text("documents"), 1},       {text("incomplete"), 0}, {text("notChecked"), 0},
        {text("steps"), 1},           {text("files"), 2},      {text("right"), 2},
        {text("differs"), 0},         {text("noChecksum"), 1}, {text("brokenStream"), 0},
        {text("outsideDocument"), 0}, {text("unreadable"), 0}, {text("unknownCompression"), 0}};
    const QJsonObject expected = {{text("schema"), text("tresk-verify/1")},
                                  {text("documents"), QJsonArray{only}},
                                  {text("counts"), counts}};
    QCOMPARE(jsonObject(outcome.output), expected);
}

void TestCommandVerify::jsonOfDocumentsThatCannotBeChecked()
{
    const QString missing = m_dir.path(text("missing"));
    const Outcome outcome = runTresk({text("verify"), text("--json"), missing});
    QCOMPARE(outcome.exitCode, 2);
    const QJsonObject only =
        jsonObject(outcome.output).value(text("documents")).toArray()[0].toObject();
    const QJsonObject expected = {{text("document"), missing},
                                  {text("status"), text("unreadable")},
                                  {text("error"), text("No such file or directory")},
                                  {text("steps"), QJsonArray()},
                                  {text("files"), QJsonArray()}};
    QCOMPARE(only, expected);
}

void TestCommandVerify::textsAreSafeForTerminals()
{
    const SectionSpec section = step(text("a\x1b[2J\u202e"),
                                     {FileSpec::plain(text("b\nc"), "x").with("md5file", "")});
    const Outcome outcome = verify(
        documentWith(QVector<SectionSpec>{SectionSpec(section).with("md5section", "")}));
    const QByteArray start = "tresk: " + m_name + ": ";
    QCOMPARE(outcome.errors,
             start + "step 0 \"a\\x1b[2J\\u202e\": its checksum is missing\n" + start
                 + "file 0 \"b\\nc\": its checksum is missing\n");
}

void TestCommandVerify::bombIsDefused()
{
    // To be inflated once, for the checksum; the diagnosis stops at the size.
    const qint64 size = qint64(100) * 1024 * 1024;
    const Outcome outcome = verify(
        documentWith({fileOfZeros(text("bomb"), size).with("filesize", "1000")}));
    QVERIFY2(outcome.errors.endsWith(
                 ": its content is longer than the 1000 bytes that its marker says\n"),
             outcome.errors.constData());
    QCOMPARE(outcome.exitCode, 1);
}

void TestCommandVerify::claimsBeyondTheDocumentAreNotFollowed()
{
    // Reading in steps what is not there would take minutes.
    QVector<FileSpec> files{FileSpec::plain(text("first"), "content")};
    for (int i = 0; i < 20000; ++i)
        files.append(FileSpec::plain(text("f"), "x").with("filesize", "2147483647"));
    files.append(FileSpec::plain(text("last"), "content").with("md5file", ""));
    const Outcome outcome = verify(documentWith(files));
    QVERIFY2(outcome.errors.endsWith(": file 20001 \"last\": its checksum is missing\n"),
             outcome.errors.right(200).constData());
    QVERIFY2(outcome.output.endsWith(" 20002 files: 2 right, 1 without checksum, 20000 outside the "
                                     "document\n"),
             outcome.output.constData());
    QCOMPARE(outcome.exitCode, 1);
}

void TestCommandVerify::contentIsNotHeldInMemory()
{
    if (isWatched())
        QSKIP("what watches needs more memory than the limit allows");
    m_dir.write(text("some.pdf"),
                documentWith({fileOfZeros(text("zeros"), qint64(512) * 1024 * 1024)}));
    const Outcome outcome =
        Command({text("verify"), m_path}).inShell(text("ulimit -v 460800; exec \"$@\"")).run();
    // The content's checksum is not that of the 512 MiB, but this is what was compared.
    QCOMPARE(outcome.errors, "tresk: " + m_name + ": file 0 \"zeros\": its checksum differs\n");
    QCOMPARE(outcome.exitCode, 1);
}

void TestCommandVerify::documentTruncatedMeanwhile()
{
    const QString path = writeWithHole(m_dir, text("large.pdf"), 400 * 1024 * 1024);
    const auto truncate = [&path](qint64 process) {
        waitUntilRead(process, 5 * 1024 * 1024);
        QVERIFY(QFile::resize(path, 4 * 1024 * 1024));
    };
    for (const QStringList& options : {QStringList(), QStringList{text("--json")}}) {
        writeWithHole(m_dir, text("large.pdf"), 400 * 1024 * 1024);
        const Outcome outcome =
            Command(QStringList{text("verify"), path} + options).runWhile(truncate);
        const QByteArray start = "tresk: " + path.toUtf8() + ": ";
        QCOMPARE(outcome.errors,
                 start + "file 0 \"zeros\": its stored bytes cannot be read\n" + start
                     + "has become shorter while it was read; try again\n");
        QCOMPARE(outcome.exitCode, 2);
        if (options.isEmpty())
            continue;
        const QJsonObject only =
            jsonObject(outcome.output).value(text("documents")).toArray()[0].toObject();
        QCOMPARE(only.value(text("status")).toString(), text("unreadable"));
        const QJsonArray files = only.value(text("files")).toArray();
        QCOMPARE(files[0].toObject().value(text("status")).toString(), text("unreadable"));
    }
}

void TestCommandVerify::signalEndsIt_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("HUP") << SIGHUP;
    QTest::newRow("INT") << SIGINT;
    QTest::newRow("TERM") << SIGTERM;
}

void TestCommandVerify::signalEndsIt()
{
    QFETCH(int, number);
    const QString path = writeWithHole(m_dir, text("large.pdf"), 1000 * 1024 * 1024,
                                       {FileSpec::plain(text("first"), "x")});
    const auto interrupt = [number](qint64 process) {
        waitUntilRead(process, 5 * 1024 * 1024);
        kill(static_cast<pid_t>(process), number);
    };
    const QString next = m_dir.write(text("next.pdf"),
                                     documentWith({FileSpec::plain(text("a"), "")}));
    const Outcome outcome =
        Command({text("verify"), text("--json"), path, next}).runWhile(interrupt);
    QCOMPARE(outcome.errors, "tresk: " + path.toUtf8() + ": interrupted\n");
    QCOMPARE(outcome.exitCode, 128 + number);
    // What had been done until then is told.
    const QJsonArray documents = jsonObject(outcome.output).value(text("documents")).toArray();
    QCOMPARE(documents.size(), 1);
    const QJsonObject only = documents[0].toObject();
    QCOMPARE(only.value(text("status")).toString(), text("interrupted"));
    QCOMPARE(only.value(text("steps")).toArray().size(), 1);
    QCOMPARE(only.value(text("files")).toArray().size(), 1);
}

void TestCommandVerify::progressIsShownAndCleared()
{
    const QString path = writeWithHole(m_dir, text("large.pdf"), 300 * 1024 * 1024);
    const Outcome outcome = Command({text("verify"), path}).runOnTerminal(false, true);
    QCOMPARE(outcome.exitCode, 1);
    const QByteArray clearLine = "\r\x1b[K";
    QVERIFY2(outcome.errors.startsWith(clearLine + "[....................]   0%  step"),
             outcome.errors.constData());
    // Later on with a speed and the time left, up to which the text is not quite certain.
    const QRegularExpression line(
        text("\\[#+\\.*\\] +[0-9]+%  [0-9.]+ [KMG]iB/s  0:[0-9][0-9] left  zeros"));
    QVERIFY2(QString::fromUtf8(outcome.errors).contains(line), outcome.errors.constData());
    QVERIFY(outcome.errors.endsWith(clearLine + "tresk: " + path.toUtf8()
                                    + ": file 0 \"zeros\": its checksum differs\r\n"));
    QVERIFY(
        Command({text("verify"), text("-q"),
                 m_dir.write(text("right.pdf"), documentWith({FileSpec::plain(text("a"), "")}))})
            .runOnTerminal(false, true)
            .errors.isEmpty());
}

void TestCommandVerify::fullOutputIsReported()
{
    m_dir.write(text("some.pdf"), documentWith({FileSpec::plain(text("a"), "alpha")}));
    for (const QString& option : {text("--color=auto"), text("--json")}) {
        const Outcome outcome =
            Command({text("verify"), option, m_path}).inShell(text("\"$@\" >/dev/full")).run();
        QCOMPARE(outcome.errors, QByteArray("tresk: standard output: No space left on device\n"));
        QCOMPARE(outcome.exitCode, 2);
    }
}

QTEST_GUILESS_MAIN(TestCommandVerify)
#include "tst_command_verify.moc"
