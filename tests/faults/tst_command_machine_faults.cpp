#include "Command.h"
#include "Documents.h"

#include <TestFiles.h>
#include <Watched.h>

#include <QDir>
#include <QDirIterator>
#include <QMap>
#include <QtTest>

#include <algorithm>
#include <limits>

using namespace tresktest;

/// The command on a machine on which one call of the system after the other fails.
///
/// Each command is run once for each call that it makes, which fails or comes short then. Either
/// that makes no difference at all, or the command says so and its exit code is 2; it never
/// crashes, leaves anything unfinished behind or changes a document. Only some of the calls are
/// tried unless the environment variable TRESK_FAULTS says how many, or "all".
class TestCommandMachineFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void faults_data();
    void faults();
    void toolsHaveACodeOfTheirOwn();
    void cleanupTestCase();

private:
    /// What a run has written to the folders for results and for temporary files, by path.
    using Files = QMap<QString, QByteArray>;
    struct Result {
        Outcome outcome;
        Files files;
        Files temporary;
    };
    /// A way for calls of one kind to fail.
    struct Fault {
        const char* kind;
        const char* error;
        const char* times = ""; ///< "+" if all calls from that one on fail
    };

    Result run(const QStringList& arguments, const QString& direction);
    QMap<QByteArray, int> countCalls(const QStringList& arguments, Result& faultless);
    QByteArray problemOf(const Result& result, const Result& faultless, const Fault& fault) const;
    QByteArray problemOfFiles(const Result& result, const Result& faultless) const;
    static QVector<Fault> allFaults();
    static QVector<int> callsToTry(const Fault& fault, int count, int salt);
    static Files filesIn(const QString& path);

    TestDir m_dir;
    Files m_documents;
    Files m_existing; ///< what is in the folder for results before each run
    QMap<QByteArray, int> m_tried;
};

namespace {

/// How many calls of each kind are made to fail in each way. All of them are too many for every
/// day, when each case has some, other ones for each @p salt.
int mostCalls(bool areAllocations, int salt)
{
    const QByteArray wanted = qgetenv("TRESK_FAULTS");
    if (wanted == "all")
        return std::numeric_limits<int>::max();
    return wanted.isEmpty() ? (areAllocations ? 3 : salt % 2) : wanted.toInt();
}

/// @p arguments with the names of folders and documents, which all begin with "@", as paths.
QStringList withPaths(QStringList arguments, const TestDir& dir)
{
    for (QString& argument : arguments) {
        if (argument.startsWith(QLatin1Char('@')))
            argument = dir.path(argument.mid(1));
    }
    return arguments;
}

/// Whether @p content is a whole page that says that something could not be read.
bool isPageOfMissing(const QByteArray& content)
{
    return content.startsWith("<!DOCTYPE html>") && content.endsWith("</html>\n")
        && content.contains(" class=\"wrong\"");
}

bool isMessage(const QByteArray& errors)
{
    if (!errors.endsWith('\n'))
        return false;
    const QList<QByteArray> lines = errors.chopped(1).split('\n');
    return std::all_of(lines.begin(), lines.end(),
                       [](const QByteArray& line) { return line.startsWith("tresk: "); });
}

} // namespace

void TestCommandMachineFaults::initTestCase()
{
    const QDir folder(m_dir.path(QString()));
    for (const char* name : {"documents", "results", "temporary"})
        QVERIFY(folder.mkdir(text(name)));
    const QString samples = QStringLiteral(TRESK_SOURCE_DIR "/samples/");
    for (const char* name : {"minimal.pdf", "nested.pdf", "report.args"})
        m_dir.write(text("documents/") + text(name), readFile(samples + text(name)));
    // More than is moved at a time.
    const QByteArray content = noise(300000);
    m_dir.write(text("documents/large.pdf"),
                documentWith({FileSpec::plain(text("plain"), content),
                              FileSpec::flate(text("flate"), content)}));
    m_documents = filesIn(m_dir.path(text("documents")));
    m_existing = {{text("label.svg"), "what was there before"}};
}

void TestCommandMachineFaults::faults_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::newRow("log") << "log @documents/minimal.pdf";
    QTest::newRow("log of two") << "log --oneline @documents/minimal.pdf @documents/nested.pdf";
    QTest::newRow("log --json") << "log --json @documents/minimal.pdf";
    QTest::newRow("show") << "show @documents/nested.pdf 1";
    QTest::newRow("files") << "files @documents/nested.pdf";
    QTest::newRow("cat") << "cat @documents/large.pdf flate";
    QTest::newRow("extract") << "extract @documents/large.pdf -C @results";
    QTest::newRow("extract to new folders") << "extract @documents/minimal.pdf -C @results/a/b";
    QTest::newRow("extract --force") << "extract --force @documents/minimal.pdf -C @results";
    QTest::newRow("extract --verify") << "extract --verify @documents/large.pdf -C @results";
    QTest::newRow("extract --json") << "extract --json -f @documents/nested.pdf -C @results";
    QTest::newRow("verify") << "verify @documents/large.pdf";
    QTest::newRow("verify of two") << "verify @documents/minimal.pdf @documents/nested.pdf";
    QTest::newRow("find") << "find label @documents";
    QTest::newRow("find in vain") << "find nowhere @documents";
    QTest::newRow("tree") << "tree @documents/nested.pdf";
    QTest::newRow("diff") << "diff @documents/minimal.pdf @documents/nested.pdf";
    QTest::newRow("diff of the same") << "diff @documents/minimal.pdf @documents/minimal.pdf";
    QTest::newRow("report") << "report @documents/nested.pdf";
    QTest::newRow("report to a file") << "report @documents/nested.pdf -o @results/page.html";
    QTest::newRow("report over a file") << "report @documents/nested.pdf -o @results/label.svg";
    QTest::newRow("diff to a page")
        << "diff @documents/minimal.pdf @documents/nested.pdf --html @results/page.html";
    QTest::newRow("args") << "args @documents/report.args";
    QTest::newRow("args --json") << "args --json @documents/report.args";
    QTest::newRow("help") << "help extract";
}

void TestCommandMachineFaults::faults()
{
    QFETCH(QString, arguments);
    const QStringList list = withPaths(arguments.split(QLatin1Char(' ')), m_dir);
    Result faultless;
    const QMap<QByteArray, int> counts = countCalls(list, faultless);
    QVERIFY(counts.value("alloc") > 0 || isUnderValgrind()); // which has allocations of its own
    QCOMPARE(faultless.temporary, Files());
    for (const QByteArray& content : faultless.files)
        QVERIFY(!isPageOfMissing(content));
    int salt = int(arguments.size());
    for (const Fault& fault : allFaults()) {
        const QVector<int> calls = callsToTry(fault, counts.value(fault.kind), salt++);
        for (const int call : calls) {
            const QString direction = QStringLiteral("%1 %2 %3%4")
                                          .arg(text(fault.kind), text(fault.error),
                                               QString::number(call), text(fault.times));
            const Result result = run(list, direction);
            const QByteArray problem = problemOf(result, faultless, fault);
            QVERIFY2(problem.isEmpty(),
                     (direction.toUtf8() + ": " + problem + ": exit code "
                      + QByteArray::number(result.outcome.exitCode) + ", "
                      + result.outcome.errors.left(500))
                         .constData());
        }
        m_tried[QByteArray(fault.kind) + ' ' + fault.error + fault.times] += int(calls.size());
    }
}

/// From the time on when it is known that it is one that runs a tool.
void TestCommandMachineFaults::toolsHaveACodeOfTheirOwn()
{
    if (QT_VERSION_MAJOR > 5)
        QSKIP("the lists of Qt 6 do not look whether they got memory, and crash");
    if (isUnderValgrind())
        QSKIP("the allocations are those of valgrind, which cannot be made to fail");
    const QStringList arguments = {text("add"), text("--no-such-option")};
    Result faultless;
    const int count = countCalls(arguments, faultless).value("alloc");
    QCOMPARE(faultless.outcome.exitCode, 124);
    int ended = 0;
    for (int call = count - 20; call <= count; call += 5) {
        const Outcome outcome =
            run(arguments, QStringLiteral("alloc ENOMEM %1+").arg(call)).outcome;
        if (!outcome.errors.endsWith("tresk: out of memory\n"))
            continue;
        ++ended;
        QCOMPARE(outcome.exitCode, 125);
    }
    QVERIFY(ended > 0);
}

void TestCommandMachineFaults::cleanupTestCase()
{
    for (auto tried = m_tried.cbegin(); tried != m_tried.cend(); ++tried)
        qInfo("%6d calls: %s", tried.value(), tried.key().constData());
}

/// Runs the command with one call that fails as @p direction has it.
TestCommandMachineFaults::Result TestCommandMachineFaults::run(const QStringList& arguments,
                                                               const QString& direction)
{
    for (const char* name : {"results", "temporary"}) {
        QDir(m_dir.path(text(name))).removeRecursively();
        QDir().mkdir(m_dir.path(text(name)));
    }
    for (auto file = m_existing.cbegin(); file != m_existing.cend(); ++file)
        m_dir.write(text("results/") + file.key(), file.value());
    Result result;
    result.outcome = Command(arguments)
                         .with(text("LD_PRELOAD"), text(TRESK_FAULT_INJECTION))
                         .with(text("TRESK_FAULT"), direction)
                         .with(text("TMPDIR"), m_dir.path(text("temporary")))
                         .run();
    result.files = filesIn(m_dir.path(text("results")));
    result.temporary = filesIn(m_dir.path(text("temporary")));
    return result;
}

/// Runs the command without a fault. Returns how many calls of each kind it makes.
QMap<QByteArray, int> TestCommandMachineFaults::countCalls(const QStringList& arguments,
                                                           Result& faultless)
{
    const QString report = m_dir.path(text("counts"));
    faultless = run(arguments, text("count ") + report);
    QMap<QByteArray, int> counts;
    const QList<QByteArray> lines = readFile(report).split('\n');
    for (const QByteArray& line : lines) {
        const QList<QByteArray> parts = line.split(' ');
        counts[parts.first()] = parts.last().toInt();
    }
    return counts;
}

/// What is wrong with what became of a run in which something failed; nothing if all is well.
QByteArray TestCommandMachineFaults::problemOf(const Result& result, const Result& faultless,
                                               const Fault& fault) const
{
    const Outcome& outcome = result.outcome;
    if (outcome.exitCode == -1)
        return "crashed, or did not end";
    if (filesIn(m_dir.path(text("documents"))) != m_documents)
        return "a document has changed";
    // What cannot be removed stays.
    const bool mayLeave = qstrcmp(fault.kind, "unlink") == 0;
    if (!mayLeave && !result.temporary.isEmpty())
        return "temporary files are left";
    const bool isSame = outcome.exitCode == faultless.outcome.exitCode
        && outcome.output == faultless.outcome.output && outcome.errors == faultless.outcome.errors;
    if (isSame)
        return mayLeave || result.files == faultless.files ? "" : "the files differ";
    if (outcome.exitCode != 2)
        return "has another result, but does not say so";
    if (!isMessage(outcome.errors))
        return "says nothing, or something else than messages";
    return mayLeave ? QByteArray() : problemOfFiles(result, faultless);
}

/// Each file is what it was before, or what it would be without a fault, or a page that tells of
/// it.
QByteArray TestCommandMachineFaults::problemOfFiles(const Result& result,
                                                    const Result& faultless) const
{
    for (auto file = result.files.cbegin(); file != result.files.cend(); ++file) {
        const bool isRight = faultless.files.contains(file.key())
            && faultless.files.value(file.key()) == file.value();
        const bool isOld = m_existing.contains(file.key())
            && m_existing.value(file.key()) == file.value();
        if (!isRight && !isOld && !isPageOfMissing(file.value()))
            return "wrong or unfinished: " + file.key().toUtf8();
    }
    for (auto file = m_existing.cbegin(); file != m_existing.cend(); ++file) {
        if (!result.files.contains(file.key()))
            return "lost: " + file.key().toUtf8();
    }
    return {};
}

QVector<TestCommandMachineFaults::Fault> TestCommandMachineFaults::allFaults()
{
    QVector<Fault> faults = {
        {"read", "EIO"},         {"read", "EIO", "+"},      {"read", "EINTR"},
        {"read", "short"},       {"read", "short", "+"},    {"read", "torn"},
        {"read", "torn", "+"},   {"write", "ENOSPC"},       {"write", "ENOSPC", "+"},
        {"write", "EIO"},        {"write", "EINTR"},        {"write", "short"},
        {"write", "short", "+"}, {"open", "EACCES"},        {"open", "EMFILE"},
        {"open", "EMFILE", "+"}, {"close", "EIO"},          {"close", "EINTR"},
        {"stat", "EIO"},         {"stat", "EIO", "+"},      {"seek", "EIO"},
        {"link", "EPERM"},       {"link", "EIO", "+"},      {"rename", "EIO"},
        {"unlink", "EACCES"},    {"unlink", "EACCES", "+"}, {"makedir", "EACCES"},
        {"makedir", "ENOSPC"},   {"readdir", "EACCES"},     {"mode", "EPERM"},
        {"entropy", "EIO"}};
    // The lists of Qt 6 do not look whether they got memory, and crash.
    if (QT_VERSION_MAJOR == 5)
        faults += {{"alloc", "ENOMEM"}, {"alloc", "ENOMEM", "+"}};
    return faults;
}

/// The numbers of the calls, of @p count, that are made to fail in turn: spread evenly, and in
/// other places for each @p salt.
QVector<int> TestCommandMachineFaults::callsToTry(const Fault& fault, int count, int salt)
{
    const int most = std::min(count, mostCalls(qstrcmp(fault.kind, "alloc") == 0, salt));
    QVector<int> calls;
    for (int i = 0; i < most; ++i) {
        const int first = int(qint64(count) * i / most);
        const int next = int(qint64(count) * (i + 1) / most);
        calls += first + 1 + salt % (next - first);
    }
    return calls;
}

TestCommandMachineFaults::Files TestCommandMachineFaults::filesIn(const QString& path)
{
    Files files;
    const QDir folder(path);
    QDirIterator entries(path, QDir::Files | QDir::Hidden | QDir::System,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString entry = entries.next();
        files.insert(folder.relativeFilePath(entry), readFile(entry));
    }
    return files;
}

QTEST_GUILESS_MAIN(TestCommandMachineFaults)
#include "tst_command_machine_faults.moc"
