#include "../summary/SummaryXml.h"
#include "Histories.h"
#include "Latin1.h"
#include "ProcessLimit.h"

#include <tresk/TreskParser.h>
#include <tresk/WorkflowTree.h>

#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <csignal>

using tresk::TreskParser;
using tresk::WorkflowTree;
using tresk::WorkflowTreeLimits;
using tresk::WorkflowTreeOmission;
using tresktest::deflated;
using tresktest::DocumentWriter;
using tresktest::embedded;
using tresktest::FileSpec;
using tresktest::history;
using tresktest::latin1;
using tresktest::LogLines;
using tresktest::lowestFreeDescriptor;
using tresktest::nested;
using tresktest::ProcessLimit;
using tresktest::SectionSpec;
using tresktest::step;
using tresktest::TemporaryFolder;
using tresktest::TestDir;
using tresktest::textOf;

namespace {

const QByteArray twoSteps = history({step("old"), step("new")});

FileSpec plain(const QByteArray& content)
{
    return FileSpec::plain(latin1("x.tresk"), content);
}

FileSpec flate(const QByteArray& content)
{
    return embedded("x.tresk", content);
}

/// A step without a summary.
SectionSpec marked(const QVector<FileSpec>& files)
{
    SectionSpec section;
    section.title = latin1("marker");
    section.files = files;
    return section;
}

/// A step that embeds two documents, the second of which embeds a third.
SectionSpec outerStep()
{
    const QByteArray third = history({step("old"), step("new", {embedded("c.tresk", twoSteps)})});
    return step("outer", {embedded("a.tresk", twoSteps), embedded("b.tresk", third)});
}

FileSpec storedAs(FileSpec file, const QByteArray& bytes)
{
    file.stored = bytes;
    return file;
}

} // namespace

Q_DECLARE_METATYPE(tresk::WorkflowTreeLimits)
Q_DECLARE_METATYPE(tresktest::FileSpec)

/// Documents that are broken or too much, and systems that lack what a tree needs.
class TestWorkflowTreeHostile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void brokenDocument_data();
    void brokenDocument();
    void documentInItself();
    void deepestLevel();
    void tooDeep_data();
    void tooDeep();
    void deepDocumentsWithFewDescriptors();
    void eachTooDeepIsNamed();
    void manyDocuments();
    void limits_data();
    void limits();
    void storedBytesCount();
    void limitsAreKept();
    void recordsAreLimited_data();
    void recordsAreLimited();
    void noDescriptorLeft();
    void noTemporaryFolder_data();
    void noTemporaryFolder();
    void noSpace();

private:
    QString save(const QByteArray& document) { return m_dir.write(latin1("document"), document); }

    TestDir m_dir;
    std::unique_ptr<TemporaryFolder> m_temporary;
};

void TestWorkflowTreeHostile::initTestCase()
{
    std::signal(SIGXFSZ, SIG_IGN); // files that grow too large are to be met with an error
}

void TestWorkflowTreeHostile::init()
{
    m_temporary.reset();
    m_temporary = std::make_unique<TemporaryFolder>();
}

void TestWorkflowTreeHostile::brokenDocument_data()
{
    const QByteArray stream = deflated(twoSteps);
    QTest::addColumn<FileSpec>("file");
    QTest::addColumn<QString>("under"); // what the tree has of it
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("opened");
    const QString nothing;
    const QString unread = latin1("Could not read from file ");
    const QString undecoded = latin1("Could not decompress data from file ");

    QTest::newRow("no document") << flate("some text\n") << nothing << nothing << false;
    QTest::newRow("empty") << flate("") << nothing << nothing << false;
    QTest::newRow("empty, stored as it is") << plain("") << nothing << nothing << false;
    QTest::newRow("binary") << flate(QByteArray(5000, '\0')) << nothing << nothing << false;
    QTest::newRow("no stream") << storedAs(flate(twoSteps), twoSteps) << nothing << undecoded
                               << false;
    QTest::newRow("wrong checksum in the stream")
        << storedAs(flate(twoSteps), stream.chopped(4) + "abcd") << nothing << undecoded << false;
    QTest::newRow("no stream header")
        << storedAs(flate(twoSteps), stream.mid(2)) << nothing << undecoded << false;
    // An early end of a stream is no fault: here it comes behind the document's header.
    QTest::newRow("stream cut") << storedAs(flate(twoSteps), deflated(twoSteps, 0).left(60))
                                << nothing << nothing << true;
    QTest::newRow("stored size beyond the end")
        << flate(twoSteps).with("cfilesize", "1000000") << nothing << unread << false;
    QTest::newRow("no stored size")
        << flate(twoSteps).with("cfilesize", "") << nothing << unread << false;
    QTest::newRow("size beyond the end")
        << plain(twoSteps).with("filesize", "1000000") << nothing << unread << false;
    QTest::newRow("size that covers the header alone")
        << plain(twoSteps).with("filesize", "60") << nothing << nothing << true;
    QTest::newRow("offset beyond the end")
        << plain(twoSteps).with("offset", "1000000") << nothing << unread << false;
    QTest::newRow("last marker cut")
        << flate(twoSteps.chopped(40)) << latin1("<unmatched files> old") << nothing << true;
    QTest::newRow("header cut") << flate(twoSteps.mid(20)) << nothing << nothing << false;
    // What is not known to be compressed is copied as it is, and digests are not compared.
    FileSpec unknown = plain(twoSteps);
    unknown.compression = "zip";
    QTest::newRow("unknown compression") << unknown << latin1("new old") << nothing << true;
    QTest::newRow("stream without a digest")
        << flate(twoSteps).with("md5cfile", "") << nothing << nothing << false;
    QTest::newRow("wrong digest") << plain(twoSteps).with("md5file", QByteArray(32, '0'))
                                  << latin1("new old") << nothing << true;
}

void TestWorkflowTreeHostile::brokenDocument()
{
    QFETCH(FileSpec, file);
    QFETCH(QString, under);
    QFETCH(QString, message);
    QFETCH(bool, opened);
    const QString path = save(history(
        {step("older", {flate(twoSteps)}),
         step("outer", {embedded("a.tresk", twoSteps), file, embedded("z.tresk", twoSteps)})}));
    {
        WorkflowTree tree;
        const LogLines log(tree);
        tree.treeFromTreskFile(path);
        QCOMPARE(textOf(tree),
                 QStringLiteral("outer(%1) older(new old)")
                     .arg(QStringList({latin1("new old"), under, latin1("new old")})
                              .join(QLatin1Char(' '))
                              .simplified()));
        QCOMPARE(log.lines.size(), message.isEmpty() ? 0 : 1);
        QVERIFY(message.isEmpty() || log.lines.constFirst().contains(message));
        QCOMPARE(m_temporary->files().size(), opened ? 4 : 3);
    }
    QCOMPARE(m_temporary->files(), QStringList());
}

void TestWorkflowTreeHostile::documentInItself()
{
    // The file's data go on to the end of the document, so they hold its own section.
    const QByteArray content = tresktest::headerLine() + '\n';
    const auto documentWith = [&](int size) {
        const QByteArray padded = QByteArray::number(size).rightJustified(8, '0');
        DocumentWriter document("%PDF-1.4\n");
        document.writeHeader();
        document.writeSection(step("outer", {plain(content).with("filesize", padded)}));
        return document;
    };
    const DocumentWriter draft = documentWith(0);
    const int size = draft.position() - draft.files().constFirst().dataStart;
    WorkflowTree tree;
    const LogLines log(tree);
    tree.treeFromTreskFile(save(documentWith(size).bytes()));
    QCOMPARE(textOf(tree), latin1("outer(outer)"));
    QCOMPARE(log.lines, QStringList());
}

void TestWorkflowTreeHostile::deepestLevel()
{
    {
        WorkflowTree tree;
        const LogLines log(tree);
        tree.treeFromTreskFile(save(nested(101)));
        QCOMPARE(tree.serializedTree().size(), 101);
        QCOMPARE(tree.workflowStep(100)->title, latin1("level 0"));
        QCOMPARE(tree.parent(100), 99);
        QCOMPARE(log.lines, QStringList());
        QCOMPARE(m_temporary->files().size(), 100);
    }
    QCOMPARE(m_temporary->files(), QStringList());
}

void TestWorkflowTreeHostile::tooDeep_data()
{
    QTest::addColumn<int>("levels");
    QTest::addColumn<QString>("leftOut");
    QTest::newRow("101 levels below") << 102 << latin1("level 0.tresk");
    QTest::newRow("200 levels below") << 201 << latin1("level 99.tresk");
}

void TestWorkflowTreeHostile::tooDeep()
{
    QFETCH(int, levels);
    QFETCH(QString, leftOut);
    WorkflowTree tree;
    const LogLines log(tree);
    tree.treeFromTreskFile(save(nested(levels)));
    QCOMPARE(tree.serializedTree().size(), 101);
    QCOMPARE(log.lines.size(), 1);
    QVERIFY(log.lines.constFirst().startsWith(latin1("1 ")));
    QVERIFY(log.lines.constFirst().contains(leftOut));
    QCOMPARE(m_temporary->files().size(), 100);
}

void TestWorkflowTreeHostile::deepDocumentsWithFewDescriptors()
{
    const QString path = save(nested(101));
    WorkflowTree tree;
    const LogLines log(tree);
    {
        const ProcessLimit few(RLIMIT_NOFILE, 64);
        tree.treeFromTreskFile(path);
    }
    QCOMPARE(log.lines, QStringList());
    QCOMPARE(tree.serializedTree().size(), 101);
}

void TestWorkflowTreeHostile::eachTooDeepIsNamed()
{
    // What stands beside it is read all the same.
    QByteArray document = history(
        {step("older", {embedded("c.tresk", twoSteps)}),
         step("newer", {embedded("a.tresk", twoSteps), embedded("b.tresk", twoSteps)})});
    for (int level = 0; level < 100; ++level)
        document = history({step("level", {flate(document)})});
    WorkflowTree tree;
    const LogLines log(tree);
    tree.treeFromTreskFile(save(document));
    QCOMPARE(tree.nodeIds().size(), 102);
    QCOMPARE(tree.children(99).size(), 2);
    QCOMPARE(log.lines.size(), 3);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(log.lines.at(i).count(QStringLiteral("%1.tresk").arg(QLatin1Char("abc"[i]))), 1);
}

void TestWorkflowTreeHostile::manyDocuments()
{
    // Far more than files may be open, and one more than are followed.
    const int count = 10000;
    const QByteArray inner = history({step("i")});
    QVector<FileSpec> files;
    files.reserve(count + 1);
    for (int i = 0; i <= count; ++i)
        files += FileSpec::plain(QString::number(i) + latin1(".tresk"), inner);
    const QString path = save(history({step("outer", files)}));
    {
        WorkflowTree tree;
        const LogLines log(tree);
        {
            const ProcessLimit few(RLIMIT_NOFILE, 64);
            tree.treeFromTreskFile(path);
        }
        QCOMPARE(log.lines.size(), 1);
        QVERIFY2(log.lines.first().contains(latin1("10000.tresk")), qPrintable(log.lines.first()));
        QCOMPARE(tree.nodeIds().size(), count + 1);
        QCOMPARE(tree.children(0).size(), count);
        QCOMPARE(tree.treskfile(count), QString::number(count - 1) + latin1(".tresk"));
        QVERIFY(!tree.treskParser(count)->getBytes(0, 1).isEmpty());
        QCOMPARE(m_temporary->files().size(), count);
    }
    QCOMPARE(m_temporary->files(), QStringList());
}

void TestWorkflowTreeHostile::limits_data()
{
    const int size = int(twoSteps.size());
    const WorkflowTreeLimits usual;
    QTest::addColumn<WorkflowTreeLimits>("limits");
    QTest::addColumn<QString>("nodes");
    QTest::addColumn<QString>("omissions");
    const auto row = [](const char* name, const WorkflowTreeLimits& limits, const char* nodes,
                        const char* omissions) {
        QTest::newRow(name) << limits << latin1(nodes) << latin1(omissions);
    };
    const auto with = [usual](auto field, auto value) {
        WorkflowTreeLimits limits = usual;
        limits.*field = value;
        return limits;
    };
    using Limits = WorkflowTreeLimits;
    row("usual", usual, "outer(new old new(new old) old)", "");
    row("no level", with(&Limits::depth, 0), "outer", "0:0:a.tresk 0:0:b.tresk");
    row("below 0", with(&Limits::depth, -1), "outer", "0:0:a.tresk 0:0:b.tresk");
    row("a level", with(&Limits::depth, 1), "outer(new old new old)", "0:3:c.tresk");
    row("no document", with(&Limits::documents, 0), "outer", "1:0:a.tresk 1:0:b.tresk");
    row("one document", with(&Limits::documents, 1), "outer(new old)", "1:0:b.tresk");
    row("two documents", with(&Limits::documents, 2), "outer(new old new old)", "1:3:c.tresk");
    row("no byte", with(&Limits::bytes, qint64(0)), "outer", "3:0:");
    // For the summary of the step and the first document, not for the summaries in that.
    const qint64 first = outerStep().files.constLast().content.size() + size;
    row("one byte less", with(&Limits::bytes, first - 1), "outer", "2:0:a.tresk 2:0:b.tresk");
    row("just enough", with(&Limits::bytes, first), "outer(outer outer)", "3:1: 3:2: 2:0:b.tresk");
    row("summary", with(&Limits::summaryBytes, qint64(10)), "outer", "3:0:");
    row("no record", with(&Limits::records, qint64(0)), "outer", "4:0:");
    row("files of the step", with(&Limits::records, qint64(3)), "outer", "4:0:a.tresk 4:0:b.tresk");
    row("first document", with(&Limits::records, qint64(9)), "outer(new old)", "4:0:b.tresk");
}

void TestWorkflowTreeHostile::limits()
{
    QFETCH(WorkflowTreeLimits, limits);
    QFETCH(QString, nodes);
    QFETCH(QString, omissions);
    const QString path = save(history({outerStep()}));
    {
        WorkflowTree tree;
        tree.setLimits(limits);
        const LogLines log(tree);
        tree.treeFromTreskFile(path);
        const QList<WorkflowTreeOmission> left = tree.omissions();
        QStringList texts;
        for (const WorkflowTreeOmission& one : left) {
            texts +=
                QStringLiteral("%1:%2:%3").arg(int(one.limit)).arg(one.nodeId).arg(one.document);
            QCOMPARE(one.document.isNull(), one.document.isEmpty());
        }
        QCOMPARE(texts.join(QLatin1Char(' ')), omissions);
        QCOMPARE(textOf(tree).replace(latin1("marker"), latin1("outer")), nodes);
        QCOMPARE(log.lines.size(), left.size());
        for (const QString& line : log.lines)
            QVERIFY2(line.startsWith(latin1("1 ")), qPrintable(line));
        QCOMPARE(WorkflowTree(tree).omissions().size(), left.size());
        tree.clear();
        QVERIFY(tree.omissions().isEmpty());
    }
    QCOMPARE(m_temporary->files(), QStringList());
}

void TestWorkflowTreeHostile::storedBytesCount()
{
    // What stands behind the end of a stream is read, too.
    const FileSpec padded = storedAs(flate(twoSteps), deflated(twoSteps) + QByteArray(50000, 'x'));
    const QString path = save(history({step("outer", {padded, embedded("b.tresk", twoSteps)})}));
    for (const int enough : {0, 1}) {
        WorkflowTreeLimits limits;
        limits.bytes = 50000 + enough * 50000;
        WorkflowTree tree;
        tree.setLimits(limits);
        tree.treeFromTreskFile(path);
        const QList<WorkflowTreeOmission> left = tree.omissions();
        const auto isSecond = [](const WorkflowTreeOmission& one) {
            return one.limit == WorkflowTreeOmission::Bytes && one.document == latin1("b.tresk");
        };
        QCOMPARE(std::any_of(left.begin(), left.end(), isSecond), enough == 0);
        QCOMPARE(tree.children(0).size(), enough == 1 ? 4 : 2);
    }
}

void TestWorkflowTreeHostile::limitsAreKept()
{
    // They are for each filling, and go with a copy.
    const QString path = save(history({outerStep()}));
    WorkflowTree tree;
    WorkflowTreeLimits limits;
    limits.documents = 1;
    tree.setLimits(limits);
    WorkflowTree copy(tree);
    WorkflowTree assigned;
    assigned = tree;
    for (WorkflowTree* const each : {&tree, &tree, &copy, &assigned}) {
        each->treeFromTreskFile(path);
        QCOMPARE(textOf(*each), latin1("outer(new old)"));
        QCOMPARE(each->omissions().size(), 1);
        QCOMPARE(each->limits().documents, 1);
    }

    // There is no tree of any depth, whatever is asked for.
    limits.documents = 1000;
    limits.depth = 1000;
    tree.setLimits(limits);
    QByteArray deep = twoSteps;
    for (int level = 0; level < 201; ++level)
        deep = history({step("level", {plain(deep)})});
    tree.treeFromTreskFile(save(deep));
    QCOMPARE(tree.serializedTree().size(), 201);
    QCOMPARE(tree.omissions().size(), 1);
}

void TestWorkflowTreeHostile::recordsAreLimited_data()
{
    QTest::addColumn<qint64>("records");
    QTest::addColumn<int>("nodes");
    QTest::addColumn<int>("withoutFiles");
    // 40 steps, of which the last has all files, 40, and 40 files; 2 in the document around it.
    QTest::newRow("all") << qint64(2 + 80 + 820) << 41 << 0;
    QTest::newRow("one less") << qint64(2 + 80 + 819) << 41 << 1;
    QTest::newRow("none for their files") << qint64(2 + 80) << 41 << 40;
    QTest::newRow("not for the steps") << qint64(2 + 79) << 1 << 0;
}

void TestWorkflowTreeHostile::recordsAreLimited()
{
    QFETCH(qint64, records);
    QFETCH(int, nodes);
    QFETCH(int, withoutFiles);
    DocumentWriter writer("%PDF-1.4\n");
    writer.writeHeader();
    writer.endLine();
    const int start = writer.position();
    for (int i = 0; i < 40; ++i) {
        SectionSpec shared = marked({FileSpec::plain(latin1("f"), "x")});
        shared.regionStart = start;
        writer.writeSection(shared);
    }
    WorkflowTreeLimits limits;
    limits.records = records;
    WorkflowTree tree;
    tree.setLimits(limits);
    tree.treeFromTreskFile(save(history({step("outer", {flate(writer.bytes())})})));
    QCOMPARE(tree.nodeIds().size(), nodes);
    int without = 0;
    for (const int id : tree.children(0))
        without += tree.workflowStep(id)->files.isEmpty() ? 1 : 0;
    QCOMPARE(without, withoutFiles);
    const int omitted = int(tree.omissions().size());
    QCOMPARE(omitted, nodes == 1 ? 1 : withoutFiles);
    QCOMPARE(m_temporary->files().size(), nodes == 1 ? 0 : 1);
}

void TestWorkflowTreeHostile::noDescriptorLeft()
{
    const auto parser = QSharedPointer<TreskParser>::create(tresk::ParseTolerant);
    QVERIFY(parser->open(save(history({step("older"), step("newer", {flate(twoSteps)})}))));
    WorkflowTree tree;
    const LogLines log(tree);
    {
        const ProcessLimit none(RLIMIT_NOFILE, lowestFreeDescriptor());
        tree.treeFromTreskFile(parser, latin1("document"));
    }
    QCOMPARE(textOf(tree), latin1("newer older"));
    QCOMPARE(log.lines.size(), 1);
    QVERIFY(log.lines.constFirst().startsWith(latin1("1 Could not create a temporary file: ")));
}

void TestWorkflowTreeHostile::noTemporaryFolder_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << m_dir.path(latin1("missing"));
    QTest::newRow("no folder") << m_dir.write(latin1("plain"), "x");
    if (QFileInfo(latin1("/proc")).isDir())
        QTest::newRow("folder for reading alone") << latin1("/proc");
}

void TestWorkflowTreeHostile::noTemporaryFolder()
{
    QFETCH(QString, path);
    const QString document = save(
        history({step("older", {flate(twoSteps)}),
                 step("newer", {flate(twoSteps), embedded("y.tresk", twoSteps)})}));
    const TemporaryFolder folder(path);
    WorkflowTree tree;
    const LogLines log(tree);
    tree.treeFromTreskFile(document);
    QCOMPARE(textOf(tree), latin1("newer older"));
    QCOMPARE(log.lines.size(), 3);
    const QRegularExpression clear(latin1("^1 Could not create a temporary file: \\w+"));
    for (const QString& line : log.lines)
        QVERIFY2(clear.match(line).hasMatch(), qPrintable(line));
}

void TestWorkflowTreeHostile::noSpace()
{
    const FileSpec data = FileSpec::plain(latin1("data"), QByteArray(50000, 'x'));
    const QByteArray large = history({step("large", {data})});
    const QString path = save(
        history({step("outer", {embedded("large.tresk", large), embedded("x.tresk", twoSteps)})}));
    {
        WorkflowTree tree;
        const LogLines log(tree);
        {
            const ProcessLimit small(RLIMIT_FSIZE, 20000);
            tree.treeFromTreskFile(path);
        }
        QCOMPARE(textOf(tree), latin1("outer(new old)"));
        QCOMPARE(log.lines.size(), 1);
        QVERIFY(log.lines.constFirst().contains(latin1("Could not write to file file ")));
        QCOMPARE(m_temporary->files().size(), 1);
    }
    QCOMPARE(m_temporary->files(), QStringList());
}

QTEST_GUILESS_MAIN(TestWorkflowTreeHostile)

#include "tst_workflowtree_hostile.moc"
