#include "Command.h"
#include "Documents.h"

#include <TestFiles.h>

#include <tresk/ExtractionQueue.h>
#include <tresk/FileIterator.h>
#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtTest>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

using namespace tresktest;
using tresk::ExtractionQueue;
using tresk::FileIterator;
using tresk::TreskParser;
using tresk::ValidationQueue;

/// Files that others change while they are read, and places where nothing can be written.
class TestChangedFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void filesThatCannotBeRead_data();
    void filesThatCannotBeRead();
    void changeDuringValidation_data();
    void changeDuringValidation();
    void changeDuringExtraction_data();
    void changeDuringExtraction();
    void changeBetweenCalls_data();
    void changeBetweenCalls();
    void targetThatCannotBeEmptied();
    void fullOutputIsReported_data();
    void fullOutputIsReported();
    void fullTemporaryFolder_data();
    void fullTemporaryFolder();
    void fullDisk();

private:
    QString writeDocument();
    void change(const QString& how) const;

    TestDir m_dir;
    QByteArray m_content; ///< of each embedded file
    QByteArray m_document;
    QString m_path;
};

namespace {

/// More steps than any queue takes for the document.
const int mostSteps = 1000;

void addChanges()
{
    QTest::addColumn<QString>("how");
    for (const char* how : {"emptied", "cut", "grown", "replaced", "removed"})
        QTest::newRow(how) << text(how);
}

/// Works @p queue off, with a call of @p inFront in front of each step, and counts these.
template <typename Queue, typename Function>
int stepsOf(Queue& queue, const Function& inFront)
{
    int done = 0;
    do {
        inFront(done++);
    } while (queue.process() && done < mostSteps);
    return done;
}

/// Whether a file that is held open does not notice the change.
bool isHarmless(const QString& how)
{
    return how != text("emptied") && how != text("cut");
}

} // namespace

void TestChangedFiles::initTestCase()
{
    m_content = noise(250000);
    m_document = documentWith(
        {FileSpec::plain(text("plain"), m_content), FileSpec::flate(text("flate"), m_content)});
}

QString TestChangedFiles::writeDocument()
{
    m_path = m_dir.write(text("document.pdf"), m_document);
    return m_path;
}

/// Does to the document what somebody else might.
void TestChangedFiles::change(const QString& how) const
{
    QFile file(m_path);
    if (how == text("emptied")) {
        QVERIFY(file.resize(0));
    } else if (how == text("cut")) {
        QVERIFY(file.resize(m_document.size() / 3));
    } else if (how == text("grown")) {
        QVERIFY(file.open(QIODevice::Append));
        QCOMPARE(file.write(m_document), qint64(m_document.size()));
    } else if (how == text("replaced")) {
        const QString other = m_dir.write(text("other"), QByteArray(m_document).replace('a', 'b'));
        QCOMPARE(::rename(qPrintable(other), qPrintable(m_path)), 0);
    } else {
        QVERIFY(file.remove());
    }
}

void TestChangedFiles::filesThatCannotBeRead_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("failed");
    QTest::newRow("missing") << m_dir.path(text("missing")) << true;
    QTest::newRow("folder") << m_dir.path(QString()) << true;
    QTest::newRow("pipe") << m_dir.makePipe(text("pipe")) << true;
    // Nothing is mapped at the beginning of memory, so that reading there is an error.
    if (QFile::exists(text("/proc/self/mem")))
        QTest::newRow("error") << text("/proc/self/mem") << true;
    QTest::newRow("empty") << m_dir.write(text("empty"), "") << false;
    QTest::newRow("no document") << m_dir.write(text("none"), "text\n") << false;
}

void TestChangedFiles::filesThatCannotBeRead()
{
    QFETCH(QString, path);
    QFETCH(bool, failed);
    FileIterator iterator;
    QVERIFY(!iterator.readFailed());
    iterator.open(path);
    iterator.lastLine();
    QCOMPARE(iterator.readFailed(), failed);
    TreskParser parser;
    QVERIFY(!parser.open(path));
    QCOMPARE(parser.readFailed(), failed);
    QVERIFY(parser.open(writeDocument()));
    QVERIFY(!parser.readFailed());
}

void TestChangedFiles::changeDuringValidation_data()
{
    addChanges();
}

void TestChangedFiles::changeDuringValidation()
{
    QFETCH(QString, how);
    int steps = 0;
    for (int before = 0; before <= steps; ++before) {
        TreskParser parser;
        QVERIFY(parser.open(writeDocument()));
        ValidationQueue queue(&parser, 60000);
        int right = 0;
        int wrong = 0;
        const auto note = [&](int, bool valid) { ++(valid ? right : wrong); };
        connect(&queue, &ValidationQueue::fileProcessed, this, note);
        connect(&queue, &ValidationQueue::sectionProcessed, this, note);
        queue.repopulate(&parser);
        const int done = stepsOf(queue, [&](int step) {
            if (step == before)
                change(how);
        });
        QVERIFY(done < mostSteps);
        steps = std::max(steps, done);
        QCOMPARE(right + wrong, 3);
        // What was read before the change was right, and the last bytes were not all there then.
        QCOMPARE(wrong > 0, !isHarmless(how) && before < done);
        QVERIFY(!parser.readFailed());
    }
    QVERIFY(steps > 10);
}

void TestChangedFiles::changeDuringExtraction_data()
{
    addChanges();
}

void TestChangedFiles::changeDuringExtraction()
{
    QFETCH(QString, how);
    int steps = 0;
    for (int before = 0; before <= steps; ++before) {
        TreskParser parser;
        QVERIFY(parser.open(writeDocument()));
        ExtractionQueue queue(&parser);
        QMap<int, bool> results;
        connect(&queue, &ExtractionQueue::fileProcessed, this,
                [&results](int id, bool valid) { results.insert(id, valid); });
        const QStringList targets = {m_dir.path(text("first")), m_dir.path(text("second"))};
        queue.addExtractees({{0, targets[0]}, {1, targets[1]}});
        const int done = stepsOf(queue, [&](int step) {
            if (step == before)
                change(how);
        });
        QVERIFY(done < mostSteps);
        steps = std::max(steps, done);
        QCOMPARE(results.keys(), QList<int>({0, 1}));
        for (int id = 0; id < 2; ++id) {
            QVERIFY(!results.value(id) || readFile(targets[id]) == m_content);
            QVERIFY(results.value(id) || !isHarmless(how));
        }
        QCOMPARE(results.value(1), isHarmless(how) || before >= done);
    }
    QVERIFY(steps > 4);
}

void TestChangedFiles::changeBetweenCalls_data()
{
    addChanges();
}

void TestChangedFiles::changeBetweenCalls()
{
    QFETCH(QString, how);
    TreskParser parser;
    QVERIFY(parser.open(writeDocument()));
    change(how);
    // The lists were taken before.
    QCOMPARE(parser.getNumFiles(), 2);
    QCOMPARE(parser.getNumSections(), 1);
    const QString target = m_dir.path(text("target"));
    for (int id = 0; id < 2; ++id) {
        const QSharedPointer<QByteArray> content = parser.getFileContent(id);
        parser.writeFileToDisk(id, target);
        if (isHarmless(how)) {
            QVERIFY(content && *content == m_content);
            QVERIFY(readFile(target) == m_content);
        } else {
            QVERIFY(!content || content->size() < m_content.size());
            QVERIFY(m_content.startsWith(readFile(target)));
        }
    }
    QVERIFY(!parser.readFailed());
    parser.releaseFile();
    parser.getBytes(0, 1);
    QCOMPARE(parser.readFailed(), how == text("removed"));
}

void TestChangedFiles::targetThatCannotBeEmptied()
{
#ifdef MFD_ALLOW_SEALING
    const int fd = memfd_create("target", MFD_ALLOW_SEALING);
    if (fd == -1 || ::write(fd, "old", 3) != 3 || fcntl(fd, F_ADD_SEALS, F_SEAL_SHRINK) != 0)
        QSKIP("there are no files here that cannot be made shorter");
    TreskParser parser;
    QVERIFY(parser.open(writeDocument()));
    ExtractionQueue queue(&parser);
    bool isValid = true;
    connect(&queue, &ExtractionQueue::fileProcessed, this,
            [&isValid](int, bool valid) { isValid = valid; });
    const QString path = QStringLiteral("/proc/self/fd/%1").arg(fd);
    queue.addExtractees({{0, path}});
    while (queue.process()) { }
    QVERIFY(!isValid);
    QCOMPARE(readFile(path), QByteArray("old"));
    close(fd);
#else
    QSKIP("there are no files here that cannot be made shorter");
#endif
}

void TestChangedFiles::fullOutputIsReported_data()
{
    QTest::addColumn<QString>("arguments");
    // Also where the exit code would otherwise tell something else.
    for (const char* arguments : {"tree DOC", "tree --dot DOC", "tree --json DOC", "diff DOC DOC",
                                  "diff DOC OTHER", "diff --json DOC OTHER", "find label DOC",
                                  "find nowhere --count DOC", "find label --json DOC", "args ARGS",
                                  "args --json ARGS", "help", "verify --json DAMAGED", "--version"})
        QTest::newRow(arguments) << text(arguments);
}

void TestChangedFiles::fullOutputIsReported()
{
    QFETCH(QString, arguments);
    const QString samples = QStringLiteral(TRESK_SOURCE_DIR "/samples/");
    const QString all = QString(arguments)
                            .replace(text("DOC"), samples + text("minimal.pdf"))
                            .replace(text("OTHER"), samples + text("nested.pdf"))
                            .replace(text("DAMAGED"), samples + text("damaged.pdf"))
                            .replace(text("ARGS"), samples + text("report.args"));
    const Outcome outcome =
        Command(all.split(QLatin1Char(' '))).inShell(text("exec \"$@\" >/dev/full")).run();
    QVERIFY2(outcome.errors.endsWith("tresk: standard output: No space left on device\n"),
             outcome.errors.constData());
    QCOMPARE(outcome.exitCode, 2);
}

void TestChangedFiles::fullTemporaryFolder_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("tree") << text("tree");
    QTest::newRow("diff") << text("diff");
}

void TestChangedFiles::fullTemporaryFolder()
{
    QFETCH(QString, command);
    const QString nested = QStringLiteral(TRESK_SOURCE_DIR "/samples/nested.pdf");
    const QString folder = m_dir.path(text("temporary"));
    QDir().mkpath(folder);
    QStringList arguments = {command, nested};
    if (command == text("diff"))
        arguments += nested;
    // In blocks of 512 or 1024 bytes: room for one of the embedded documents.
    const Outcome outcome = Command(arguments)
                                .with(text("TMPDIR"), folder)
                                .inShell(text("ulimit -f 8; exec \"$@\""))
                                .run();
    QVERIFY2(outcome.errors.contains("there is no history to be read in"),
             outcome.errors.constData());
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(entriesOf(folder), QStringList());
}

void TestChangedFiles::fullDisk()
{
    writeDocument();
    const QString target = m_dir.path(text("full"));
    QDir().mkpath(target);
    // A disk with room for the first of the two files, of which nobody else knows.
    const QString script = QStringLiteral("mount -t tmpfs -o size=400k none '%1' || exit 77\n"
                                          "\"$@\"; code=$?; ls -A '%1'; exit $code")
                               .arg(target);
    const Outcome outcome =
        Command({text("extract"), text("--quiet"), m_path, text("-C"), target})
            .inShell(QStringLiteral(
                         "unshare -rm true || exit 77; exec unshare -rm sh -c \"$0\" sh \"$@\"")
                         .replace(text("$0"),
                                  QString(script)
                                      .replace(text("\""), text("\\\""))
                                      .replace(text("$"), text("\\$"))))
            .run();
    if (outcome.exitCode == 77)
        QSKIP("nothing can be mounted here");
    QCOMPARE(outcome.errors,
             "tresk: " + m_path.toUtf8() + ": file 1 \"flate\": cannot write " + target.toUtf8()
                 + "/flate: No space left on device\n");
    QCOMPARE(outcome.output, QByteArray("plain\n"));
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(readFile(m_path), m_document);
}

QTEST_GUILESS_MAIN(TestChangedFiles)
#include "tst_changed_files.moc"
