#include "DocumentWriter.h"
#include "TestFiles.h"
#include "Watched.h"

#include <tresk/TreskParser.h>

#include <QFile>
#include <QProcess>
#include <QtTest>

#include <cstdio>
#include <cstdlib>
#include <functional>

#include <sys/resource.h>

using tresk::TreskParser;
using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::isWatched;
using tresktest::SectionSpec;
using tresktest::TestDir;

namespace {

constexpr qint64 mebibyte = 1024 * 1024;
/// What reading may take besides what grows with the number of records and the longest line.
constexpr qint64 basis = 16 * mebibyte;
constexpr int records = 100000;
constexpr int sections = 300000; // of which the basis takes but a part of each
/// What a record takes of which all texts are short. Those of files are held as UTF-16.
/// The lists of Qt 6 hold them one behind the other, and for a while twice as they grow.
constexpr qint64 bytesPerSection = 200;
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
constexpr qint64 bytesPerFile = 500;
#else
constexpr qint64 bytesPerFile = 1200;
#endif

/// A value of this process in /proc, in bytes.
qint64 statusValue(const QByteArray& name)
{
    const QList<QByteArray> lines =
        tresktest::readFile(QStringLiteral("/proc/self/status")).split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(name + ':'))
            return line.mid(name.size() + 1).simplified().split(' ').constFirst().toLongLong()
                * 1024;
    }
    qFatal("there is no %s", name.constData());
}

/// What a child process does with a document under the limit; it returns what it found.
using Job = std::function<QByteArray(const QString& path)>;

QByteArray count(const TreskParser& parser)
{
    return QByteArray::number(parser.getNumSections()) + " sections, "
        + QByteArray::number(parser.getNumFiles()) + " files";
}

QByteArray openDocument(const QString& path)
{
    TreskParser parser;
    return parser.open(path) ? count(parser) : QByteArray("not opened");
}

QByteArray readRecords(const QString& path)
{
    TreskParser parser;
    parser.open(path);
    const auto files = parser.getFiles(); // shared with the parser
    int inSections = 0;
    for (int id = 0; id < parser.getNumSections() && parser.getSection(id)->id == id; ++id)
        inSections += int(parser.getFilesInSection(id).size());
    return count(parser) + ", " + QByteArray::number(inSections) + " in sections";
}

QByteArray checksums(const QString& path)
{
    TreskParser parser;
    parser.open(path);
    return parser.calcChecksumsForFile(0).first.toLatin1();
}

QByteArray extract(const QString& path)
{
    TreskParser parser;
    parser.open(path);
    return parser.writeFileToDisk(0, path + QStringLiteral(".extracted")) ? "written" : "failed";
}

const QHash<QString, Job>& jobs()
{
    static const QHash<QString, Job> all = {{QStringLiteral("open"), openDocument},
                                            {QStringLiteral("records"), readRecords},
                                            {QStringLiteral("checksums"), checksums},
                                            {QStringLiteral("extract"), extract}};
    return all;
}

DocumentWriter newDocument()
{
    DocumentWriter document("%PDF-1.4\n");
    document.writeHeader();
    return document;
}

/// In the child: what @p job finds in the document at @p path with no more than @p allowed bytes
/// of address space beyond what the process takes when it has read a small document.
int runLimited(const QString& job, const QString& path, const QString& small, qint64 allowed)
{
    for (const Job& each : jobs())
        each(small);
    const rlim_t limit = rlim_t(statusValue("VmSize") + allowed);
    const rlimit both = {limit, limit};
    const rlimit noCore = {0, 0};
    if (setrlimit(RLIMIT_CORE, &noCore) != 0 || setrlimit(RLIMIT_AS, &both) != 0)
        return EXIT_FAILURE;
    std::puts(jobs().value(job)(path).constData());
    return EXIT_SUCCESS;
}

} // namespace

/// What reading takes of memory: each job runs in a process of its own that can get no more.
class TestMemory : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void theLimitIsEnforced();
    void largeDocument_data();
    void largeDocument();
    void manySections();
    void manyFiles();
    void longLine_data();
    void longLine();
    void longTitle();

private:
    QString writeWithHole(const QString& name, int size) const;
    QString writeLines(int first, int middle, int last) const;
    QByteArray run(const char* job, const QString& path, qint64 allowed) const;

    TestDir m_dir;
    QString m_small;
};

/// A document with a file of @p size zeros, which take no space on the disk.
QString TestMemory::writeWithHole(const QString& name, int size) const
{
    DocumentWriter document = newDocument();
    FileSpec zeros = FileSpec::plain(QStringLiteral("zeros"), "");
    zeros.with("filesize", QByteArray::number(size)).with("cfilesize", QByteArray::number(size));
    zeros.with("blocksize", QByteArray::number(size + 2));
    const int holeStart = document.writeFile(zeros).dataStart;
    SectionSpec section;
    section.files = {FileSpec::flate(QStringLiteral("behind"), "behind")};
    document.writeSection(section);
    QFile file(m_dir.write(name, document.bytes().left(holeStart)));
    const QByteArray rest = document.bytes().mid(holeStart);
    if (!file.open(QIODevice::ReadWrite) || !file.seek(qint64(holeStart) + size)
        || file.write(rest) != rest.size())
        qFatal("the document could not be written");
    return file.fileName();
}

/// A document with lines of so many bytes in front of its header, inside and at its end.
QString TestMemory::writeLines(int first, int middle, int last) const
{
    DocumentWriter document(QByteArray(first, 'a') + '\n');
    document.writeHeader();
    document.write(QByteArray(middle, 'b'));
    document.endLine();
    SectionSpec section;
    section.files = {FileSpec::plain(QStringLiteral("some"), "abc")};
    document.writeSection(section);
    document.write(QByteArray(last, 'c'));
    return m_dir.write(QStringLiteral("lines"), document.bytes());
}

void TestMemory::initTestCase()
{
    if (isWatched())
        QSKIP("what watches takes memory of its own");
    DocumentWriter small = newDocument();
    SectionSpec section;
    section.title = QStringLiteral("small");
    section.files = {FileSpec::plain(QStringLiteral("small"), "abc")};
    small.writeSection(section);
    m_small = m_dir.write(QStringLiteral("small"), small.bytes());
}

/// What the child prints, or how it ended.
QByteArray TestMemory::run(const char* job, const QString& path, qint64 allowed) const
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(),
                  {QLatin1String(job), path, m_small, QString::number(allowed)});
    process.waitForFinished(60000);
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return "failed";
    return process.readAll().trimmed();
}

void TestMemory::theLimitIsEnforced()
{
    // A line of that length cannot be read with less.
    const QString path = writeLines(int(64 * mebibyte), 0, 0);
    QCOMPARE(run("open", path, 32 * mebibyte), QByteArray("failed"));
}

void TestMemory::largeDocument_data()
{
    QTest::addColumn<QByteArray>("job");
    QTest::addColumn<int>("mebibytes");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("opened") << QByteArray("open") << 1024 << QByteArray("1 sections, 2 files");
    QTest::newRow("records") << QByteArray("records") << 1024
                             << QByteArray("1 sections, 2 files, 1 in sections");
    QTest::newRow("checksums") << QByteArray("checksums") << 256
                               << QByteArray("1f5039e50bd66b290c56684d8550c6c2");
    QTest::newRow("extracted") << QByteArray("extract") << 256 << QByteArray("written");
}

void TestMemory::largeDocument()
{
    QFETCH(QByteArray, job);
    QFETCH(int, mebibytes);
    QFETCH(QByteArray, expected);
    const QString path = writeWithHole(QStringLiteral("large"), int(mebibytes * mebibyte));
    QCOMPARE(run(job.constData(), path, basis), expected);
    if (job == "extract")
        QCOMPARE(QFileInfo(path + QStringLiteral(".extracted")).size(), mebibytes * mebibyte);
}

void TestMemory::manySections()
{
    // All lines are of one length, so that the distance between them is the same everywhere.
    const QByteArray line =
        "%<--! $TRESK_SECTION [version:1.0][creator:writer][title:a title of usual length, NUMBER]"
        "[left:1][size:100][index:NUMBER][md5section:0123456789abcdef0123456789NUMBER]"
        "[previousmd5:0123456789abcdef0123456789NUMBER][previousmarker:LEN]-->\n";
    const QByteArray distance = QByteArray::number(line.size());
    QCOMPARE(distance.size(), QByteArray("LEN").size());
    QByteArray document = newDocument().bytes();
    document.reserve(document.size() + sections * line.size());
    for (int i = 0; i < sections; ++i) {
        QByteArray written = line;
        written.replace("NUMBER", QByteArray::number(100000 + i));
        document += written.replace("LEN", i > 0 ? distance : QByteArray());
    }
    const QString path = m_dir.write(QStringLiteral("sections"), document);
    QCOMPARE(run("records", path, basis + sections * bytesPerSection),
             QByteArray("300000 sections, 0 files, 0 in sections"));
}

void TestMemory::manyFiles()
{
    DocumentWriter document = newDocument();
    SectionSpec section;
    for (int i = 0; i < records; ++i)
        section.files += FileSpec::plain(QStringLiteral("folder/file_%1.dat").arg(i), "x");
    document.writeSection(section);
    const QString path = m_dir.write(QStringLiteral("files"), document.bytes());
    QCOMPARE(run("records", path, basis + records * bytesPerFile),
             QByteArray("1 sections, 100000 files, 100000 in sections"));
}

void TestMemory::longLine_data()
{
    QTest::addColumn<bool>("first");
    QTest::addColumn<bool>("middle");
    QTest::addColumn<bool>("last");
    QTest::newRow("before the header") << true << false << false;
    QTest::newRow("in the document") << false << true << false;
    QTest::newRow("behind the last section") << false << false << true;
    QTest::newRow("all three") << true << true << true;
}

void TestMemory::longLine()
{
    QFETCH(bool, first);
    QFETCH(bool, middle);
    QFETCH(bool, last);
    const int length = int(64 * mebibyte);
    const QString path = writeLines(first * length, middle * length, last * length);
    QCOMPARE(run("records", path, basis + length),
             QByteArray("1 sections, 1 files, 1 in sections"));
}

void TestMemory::longTitle()
{
    // The line, the part of it that checksums are made of, and the title as UTF-16.
    DocumentWriter document = newDocument();
    SectionSpec section;
    section.title = QString(int(32 * mebibyte), QLatin1Char('t'));
    document.writeSection(section);
    const QString path = m_dir.write(QStringLiteral("title"), document.bytes());
    QCOMPARE(run("records", path, basis + 4 * section.title.size()),
             QByteArray("1 sections, 0 files, 0 in sections"));
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 5 && jobs().contains(arguments.at(1)))
        return runLimited(arguments.at(1), arguments.at(2), arguments.at(3),
                          arguments.at(4).toLongLong());
    TestMemory test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_memory.moc"
