#include "Histories.h"
#include "Latin1.h"

#include <tresk/TreskParser.h>
#include <tresk/WorkflowTree.h>

#include <QFileInfo>
#include <QTest>

using tresk::TreskParser;
using tresk::WorkflowTree;
using tresktest::embedded;
using tresktest::FileSpec;
using tresktest::history;
using tresktest::isOpen;
using tresktest::latin1;
using tresktest::LogLines;
using tresktest::nested;
using tresktest::readFile;
using tresktest::step;
using tresktest::TemporaryFolder;
using tresktest::TestDir;
using tresktest::textOf;

/// The files that a tree has opened.
class TestWorkflowTreeFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void filesOfNodes();
    void parsersStayUsable();
    void nothingEmbeddedIsKeptOpen();
    void temporaryFilesArePrivate();
    void temporaryFilesGoWithTheTree();
    void temporaryFilesGoWhenCleared();
    void parsersOutliveTheTree_data();
    void parsersOutliveTheTree();
    void filledAgain();
    void openedParser();
    void nullParser();
    void embeddedDocumentOfTheSameTree();
    void logsAreRelayed();
    void copiesShareTheDocuments();
    void assignedTreeLetsGo();
    void assignedToItself();

private:
    /// The path of @p document on disk.
    QString save(const QByteArray& document, const char* name = "document")
    {
        return m_dir.write(latin1(name), document);
    }

    TestDir m_dir;
    std::unique_ptr<TemporaryFolder> m_temporary;
};

void TestWorkflowTreeFiles::init()
{
    m_temporary.reset();
    m_temporary = std::make_unique<TemporaryFolder>();
}

void TestWorkflowTreeFiles::filesOfNodes()
{
    const QByteArray inner = history({step("old"), step("new")});
    const QString path = save(history({step("outer", {embedded("in.tresk", inner)})}));
    WorkflowTree tree;
    tree.treeFromTreskFile(path);
    QCOMPARE(tree.treskfile(0), path);
    QCOMPARE(tree.fileOnDisk(0), path);
    QVERIFY(tree.treskParser(0));
    for (const int id : {1, 2}) {
        QCOMPARE(tree.treskfile(id), latin1("in.tresk"));
        QCOMPARE(QFileInfo(tree.fileOnDisk(id)).canonicalFilePath(),
                 QFileInfo(m_temporary->files().constFirst()).canonicalFilePath());
        QVERIFY(readFile(tree.fileOnDisk(id)) == inner);
    }
    QVERIFY(tree.treskParser(1));
    QVERIFY(tree.treskParser(1) == tree.treskParser(2));
    QVERIFY(tree.treskParser(1) != tree.treskParser(0));
}

void TestWorkflowTreeFiles::parsersStayUsable()
{
    const FileSpec data = FileSpec::flate(latin1("data"), QByteArray(200000, 'd'));
    const QByteArray inner = history({step("inner", {data})});
    WorkflowTree tree;
    tree.treeFromTreskFile(save(history({step("outer", {embedded("in.tresk", inner)})})));
    for (int round = 0; round < 2; ++round) {
        const QSharedPointer<TreskParser> outer = tree.treskParser(0);
        QVERIFY(outer->getFileContent(0));
        QVERIFY(*outer->getFileContent(0) == inner);
        const QSharedPointer<TreskParser> opened = tree.treskParser(1);
        QCOMPARE(opened->getNumSections(), 1);
        QVERIFY(opened->getFileContent(0));
        QVERIFY(*opened->getFileContent(0) == data.content);
        QVERIFY(opened->getBytes(0, int(inner.size())) == inner);
    }
}

void TestWorkflowTreeFiles::nothingEmbeddedIsKeptOpen()
{
    const QString path = save(nested(3));
    if (!isOpen(path))
        QSKIP("The system does not tell which files are open.");
    WorkflowTree tree;
    tree.treeFromTreskFile(path);
    QVERIFY(QFileInfo::exists(tree.fileOnDisk(1)));
    QVERIFY(!*isOpen(tree.fileOnDisk(1)));
    QVERIFY(!*isOpen(tree.fileOnDisk(2)));
}

void TestWorkflowTreeFiles::temporaryFilesArePrivate()
{
    WorkflowTree tree;
    tree.treeFromTreskFile(save(nested(3)));
    const QStringList files = m_temporary->files();
    QCOMPARE(files.size(), 2);
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
        | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    for (const QString& file : files) {
        QCOMPARE(QFile::permissions(file) & others, QFile::Permissions());
        QVERIFY(QFile::permissions(file) & QFile::ReadOwner);
        QVERIFY(!(QFile::permissions(file) & QFile::ExeOwner));
    }
}

void TestWorkflowTreeFiles::temporaryFilesGoWithTheTree()
{
    const QString path = save(nested(4));
    {
        WorkflowTree tree;
        tree.treeFromTreskFile(path);
        QCOMPARE(m_temporary->files().size(), 3);
    }
    QCOMPARE(m_temporary->files(), QStringList());
    QVERIFY(QFileInfo::exists(path));
}

void TestWorkflowTreeFiles::temporaryFilesGoWhenCleared()
{
    const QString path = save(nested(4));
    WorkflowTree tree;
    tree.treeFromTreskFile(path);
    tree.clear();
    QCOMPARE(m_temporary->files(), QStringList());
    QVERIFY(QFileInfo::exists(path));
    QVERIFY(!tree.treskParser(0));
}

void TestWorkflowTreeFiles::parsersOutliveTheTree_data()
{
    QTest::addColumn<bool>("isUsedBefore");
    QTest::newRow("used before") << true;
    QTest::newRow("not used before") << false;
}

void TestWorkflowTreeFiles::parsersOutliveTheTree()
{
    QFETCH(bool, isUsedBefore);
    const FileSpec data = FileSpec::flate(latin1("data"), QByteArray(200000, 'd'));
    const QByteArray inner = history({step("inner", {data})});
    auto tree = std::make_unique<WorkflowTree>();
    tree->treeFromTreskFile(save(history({step("outer", {embedded("in.tresk", inner)})})));
    const QSharedPointer<TreskParser> parser = tree->treskParser(1);
    if (isUsedBefore)
        QVERIFY(parser->getFileContent(0));
    tree.reset();
    QCOMPARE(m_temporary->files(), QStringList());
    QVERIFY(parser->getFileContent(0));
    QVERIFY(*parser->getFileContent(0) == data.content);
    QVERIFY(parser->getBytes(0, int(inner.size())) == inner);
}

void TestWorkflowTreeFiles::filledAgain()
{
    WorkflowTree tree;
    tree.treeFromTreskFile(save(nested(3)));
    const QStringList before = m_temporary->files();
    tree.treeFromTreskFile(save(nested(2), "other"));
    QCOMPARE(textOf(tree), latin1("level 1(level 0)"));
    QCOMPARE(tree.nodeIds(), (QList<int>{3, 4}));
    QCOMPARE(tree.root(), 3);
    QCOMPARE(m_temporary->files().size(), 1);
    QVERIFY(!QFileInfo::exists(before.at(0)) || !QFileInfo::exists(before.at(1)));
}

void TestWorkflowTreeFiles::openedParser()
{
    const auto parser = QSharedPointer<TreskParser>::create(tresk::ParseTolerant);
    QVERIFY(parser->open(save(nested(2))));
    WorkflowTree tree;
    tree.treeFromTreskFile(parser, latin1("a name"));
    QCOMPARE(textOf(tree), latin1("level 1(level 0)"));
    QCOMPARE(tree.treskfile(0), latin1("a name"));
    QCOMPARE(tree.fileOnDisk(0), latin1("a name"));
    QVERIFY(tree.treskParser(0) == parser);
    tree.clear();
    QCOMPARE(parser->getNumSections(), 1);
    QVERIFY(!parser->getBytes(0, 1).isEmpty());
}

void TestWorkflowTreeFiles::nullParser()
{
    WorkflowTree tree;
    tree.treeFromTreskFile(save(nested(2)));
    tree.treeFromTreskFile(QSharedPointer<TreskParser>(), latin1("a name"));
    QVERIFY(tree.nodeIds().isEmpty());
    QCOMPARE(tree.root(), -2);
    QCOMPARE(m_temporary->files(), QStringList());
}

void TestWorkflowTreeFiles::embeddedDocumentOfTheSameTree()
{
    // Its file goes with the others, while it is being read.
    WorkflowTree tree;
    const LogLines log(tree);
    tree.treeFromTreskFile(save(nested(3)));
    tree.treeFromTreskFile(tree.treskParser(1), tree.fileOnDisk(1));
    QCOMPARE(log.lines, QStringList());
    QCOMPARE(textOf(tree), latin1("level 1(level 0)"));
    QCOMPARE(m_temporary->files().size(), 1);
    QVERIFY(!tree.treskParser(3)->getBytes(0, 1).isEmpty());
}

void TestWorkflowTreeFiles::logsAreRelayed()
{
    WorkflowTree tree;
    tree.treeFromTreskFile(save(nested(2)));
    WorkflowTree copy(tree);
    WorkflowTree assigned;
    assigned = tree;
    for (WorkflowTree* const each : {&tree, &copy, &assigned}) {
        const LogLines log(*each);
        Q_EMIT tree.treskParser(0)->log(latin1("of the document"), 2);
        Q_EMIT tree.treskParser(1)->log(latin1("of the embedded one"), 1);
        QCOMPARE(log.lines.join(QLatin1Char('\n')),
                 latin1("0 of the document\n0 of the embedded one")); // types are not relayed
    }
}

void TestWorkflowTreeFiles::copiesShareTheDocuments()
{
    auto tree = std::make_unique<WorkflowTree>();
    tree->treeFromTreskFile(save(nested(3)));
    auto copy = std::make_unique<WorkflowTree>(*tree);
    QCOMPARE(m_temporary->files().size(), 2);
    QVERIFY(copy->treskParser(1) == tree->treskParser(1));
    tree.reset();
    QCOMPARE(m_temporary->files().size(), 2);
    QCOMPARE(textOf(*copy), latin1("level 2(level 1(level 0))"));
    QVERIFY(!copy->treskParser(1)->getBytes(0, 1).isEmpty());
    WorkflowTree last = *copy;
    copy->clear();
    QCOMPARE(m_temporary->files().size(), 2);
    copy.reset();
    QVERIFY(!last.treskParser(2)->getBytes(0, 1).isEmpty());
    last.treeFromTreskFile(m_dir.path(latin1("missing")));
    QCOMPARE(m_temporary->files(), QStringList());
}

void TestWorkflowTreeFiles::assignedTreeLetsGo()
{
    WorkflowTree tree;
    tree.treeFromTreskFile(save(nested(3)));
    WorkflowTree other;
    other.treeFromTreskFile(save(nested(6), "other"));
    QCOMPARE(m_temporary->files().size(), 7);
    other = tree;
    QCOMPARE(m_temporary->files().size(), 2);
    tree = WorkflowTree();
    QCOMPARE(tree.root(), -2);
    QCOMPARE(m_temporary->files().size(), 2);
    QVERIFY(!other.treskParser(2)->getBytes(0, 1).isEmpty());
}

void TestWorkflowTreeFiles::assignedToItself()
{
    WorkflowTree tree;
    tree.treeFromTreskFile(save(nested(3)));
    const WorkflowTree& same = tree;
    tree = same;
    QCOMPARE(textOf(tree), latin1("level 2(level 1(level 0))"));
    QCOMPARE(m_temporary->files().size(), 2);
    QVERIFY(!tree.treskParser(1)->getBytes(0, 1).isEmpty());
}

QTEST_GUILESS_MAIN(TestWorkflowTreeFiles)

#include "tst_workflowtree_files.moc"
