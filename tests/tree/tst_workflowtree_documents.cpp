#include "../summary/SummaryXml.h"
#include "Histories.h"
#include "Latin1.h"

#include <tresk/WorkflowTree.h>

#include <QTest>

using tresk::Workflowstep;
using tresk::WorkflowTree;
using tresktest::DocumentWriter;
using tresktest::element;
using tresktest::embedded;
using tresktest::FileElement;
using tresktest::FileSpec;
using tresktest::history;
using tresktest::latin1;
using tresktest::LogLines;
using tresktest::nested;
using tresktest::SectionSpec;
using tresktest::step;
using tresktest::stepThatSays;
using tresktest::TemporaryFolder;
using tresktest::TestDir;
using tresktest::textOf;

namespace {

const QByteArray oneStep = history({step("embedded")});

} // namespace

/// Trees of documents, and what is followed.
class TestWorkflowTreeDocuments : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void newestFirst();
    void withoutSteps();
    void stepOfANode();
    void unmatchedFilesFirst();
    void embeddedDocument();
    void documentStoredAsItIs();
    void purposes_data();
    void purposes();
    void names_data();
    void names();
    void notSaidToBeEmbedded();
    void stepWithoutSummary();
    void listedButNotThere();
    void listedTwice();
    void severalInOneStep();
    void numberedDepthFirst();
    void sameDocumentInTwoSteps();
    void nestedLevels();
    void cannotBeOpened_data();
    void cannotBeOpened();

private:
    /// The path of @p document on disk.
    QString save(const QByteArray& document, const char* name = "document")
    {
        return m_dir.write(latin1(name), document);
    }

    /// The tree of @p document, as text. Nothing may be logged.
    QString treeOf(const QByteArray& document)
    {
        WorkflowTree tree;
        const LogLines log(tree);
        tree.treeFromTreskFile(save(document));
        return log.lines.isEmpty() ? textOf(tree) : log.lines.join(QLatin1Char('\n'));
    }

    TestDir m_dir;
    std::unique_ptr<TemporaryFolder> m_temporary;
};

void TestWorkflowTreeDocuments::init()
{
    m_temporary.reset();
    m_temporary = std::make_unique<TemporaryFolder>();
}

void TestWorkflowTreeDocuments::newestFirst()
{
    WorkflowTree tree;
    tree.treeFromTreskFile(save(history({step("older"), step("newer")})));
    QCOMPARE(tree.nodeIds(), (QList<int>{0, 1}));
    QCOMPARE(tree.workflowStep(0)->title, latin1("newer"));
    QCOMPARE(tree.workflowStep(1)->title, latin1("older"));
    QCOMPARE(tree.parent(0), -1);
    QCOMPARE(tree.parent(1), -1);
    QCOMPARE(tree.children(-1), (QList<int>{0, 1}));
    QVERIFY(tree.children(0).isEmpty());
    QCOMPARE(tree.root(), 0);
    QCOMPARE(tree.serializedTree(), QList<int>{0});
}

void TestWorkflowTreeDocuments::withoutSteps()
{
    WorkflowTree tree;
    tree.treeFromTreskFile(save(history({})));
    QCOMPARE(tree.root(), -2);
    QVERIFY(tree.nodeIds().isEmpty());
}

void TestWorkflowTreeDocuments::stepOfANode()
{
    const FileSpec data = FileSpec::plain(latin1("data"), "bytes");
    const SectionSpec newer = stepThatSays(
        element("Title", "a title") + element("Tool", "a tool") + FileElement(data).xml(), {data});
    WorkflowTree tree;
    tree.treeFromTreskFile(save(history({step("older"), newer})));
    const Workflowstep* const found = tree.workflowStep(0);
    QCOMPARE(found->title, latin1("a title"));
    QCOMPARE(found->tool, latin1("a tool"));
    QCOMPARE(found->tagId, 0);
    QCOMPARE(found->files.size(), 1);
    QCOMPARE(found->files.at(0).filename, latin1("data"));
    QCOMPARE(found->files.at(0).tagId, 1); // behind the summary of the older step
    QCOMPARE(tree.workflowStep(1)->tagId, 1);
}

void TestWorkflowTreeDocuments::unmatchedFilesFirst()
{
    DocumentWriter document("%PDF-1.4\n");
    document.writeHeader();
    document.writeFile(embedded("stray.tresk", oneStep));
    document.writeSection(step("older"));
    document.writeSection(step("newer"));
    WorkflowTree tree;
    tree.treeFromTreskFile(save(document.bytes()));
    QCOMPARE(tree.nodeIds(), (QList<int>{0, 1, 2}));
    QCOMPARE(tree.workflowStep(0)->title, latin1("<unmatched files>"));
    QCOMPARE(tree.workflowStep(0)->files.at(0).filename, latin1("stray.tresk"));
    QCOMPARE(tree.workflowStep(1)->title, latin1("newer"));
    QCOMPARE(tree.workflowStep(2)->title, latin1("older"));
    QCOMPARE(tree.children(-1), (QList<int>{0, 1, 2}));
    QCOMPARE(tree.root(), 0);
}

void TestWorkflowTreeDocuments::embeddedDocument()
{
    const QByteArray inner = history({step("old"), step("new")});
    WorkflowTree tree;
    tree.treeFromTreskFile(save(history({step("outer", {embedded("in.tresk", inner)})})));
    QCOMPARE(textOf(tree), latin1("outer(new old)"));
    QCOMPARE(tree.parent(0), -1);
    QCOMPARE(tree.parent(1), 0);
    QCOMPARE(tree.parent(2), 0);
    QCOMPARE(tree.children(0), (QList<int>{1, 2}));
    QCOMPARE(tree.serializedTree(), (QList<int>{0, 1, 2}));
}

void TestWorkflowTreeDocuments::documentStoredAsItIs()
{
    const FileSpec inner = FileSpec::plain(latin1("in.tresk"), oneStep);
    QCOMPARE(treeOf(history({step("outer", {inner})})), latin1("outer(embedded)"));
}

void TestWorkflowTreeDocuments::purposes_data()
{
    QTest::addColumn<QByteArray>("purpose");
    QTest::newRow("input") << QByteArray("InFile");
    QTest::newRow("output") << QByteArray("OutFile");
}

void TestWorkflowTreeDocuments::purposes()
{
    QFETCH(QByteArray, purpose);
    QCOMPARE(treeOf(history({step("outer", {embedded("x.tresk", oneStep)}, purpose)})),
             latin1("outer(embedded)"));
}

void TestWorkflowTreeDocuments::names_data()
{
    QTest::addColumn<bool>("followed");
    for (const char* name : {"in.tresk", ".tresk", "a.pdf.tresk", "a.tresk.tresk", "A B.tresk"})
        QTest::newRow(name) << true;
    for (const char* name : {"IN.TRESK", "in.Tresk", "in.tresK", "tresk", "intresk", "in.tresk.pdf",
                             "in.tresk ", "in.tres", "in.tresk/"})
        QTest::newRow(name) << false;
}

void TestWorkflowTreeDocuments::names()
{
    QFETCH(bool, followed);
    const QByteArray document = history(
        {step("outer", {embedded(QTest::currentDataTag(), oneStep)})});
    QCOMPARE(treeOf(document), followed ? latin1("outer(embedded)") : latin1("outer"));
}

void TestWorkflowTreeDocuments::notSaidToBeEmbedded()
{
    const FileSpec file = embedded("in.tresk", oneStep);
    const QByteArray says = FileElement(file).with("Embedded", "0").xml();
    const QByteArray nothing = FileElement(file).with("Embedded", "yes").xml(); // no number
    QCOMPARE(treeOf(history({stepThatSays(element("Title", "a") + says, {file}),
                             stepThatSays(element("Title", "b") + nothing, {file})})),
             latin1("b a"));
}

void TestWorkflowTreeDocuments::stepWithoutSummary()
{
    // Markers do not say that a file is to be followed.
    SectionSpec section;
    section.title = latin1("from markers");
    section.files = {embedded("in.tresk", oneStep)};
    QCOMPARE(treeOf(history({section})), latin1("from markers"));
}

void TestWorkflowTreeDocuments::listedButNotThere()
{
    const FileSpec there = embedded("there.tresk", oneStep);
    const QByteArray missing = FileElement(embedded("missing.tresk", oneStep)).xml();
    QCOMPARE(treeOf(history({stepThatSays(
                 element("Title", "outer") + missing + FileElement(there).xml(), {there})})),
             latin1("outer(embedded)"));
    QCOMPARE(m_temporary->files(), QStringList());
}

void TestWorkflowTreeDocuments::listedTwice()
{
    // There is one file, which the first entry takes.
    const FileSpec file = embedded("in.tresk", oneStep);
    const QByteArray entry = FileElement(file).xml();
    QCOMPARE(treeOf(history({stepThatSays(element("Title", "outer") + entry + entry, {file})})),
             latin1("outer(embedded)"));
}

void TestWorkflowTreeDocuments::severalInOneStep()
{
    // In the order in which the summary lists them.
    const FileSpec a = embedded("a.tresk", history({step("a")}));
    const FileSpec b = embedded("b.tresk", history({step("b1"), step("b2")}));
    const FileSpec c = embedded("c.tresk", history({step("c")}));
    const QByteArray listed = FileElement(c).xml() + FileElement(a, "OutFile").xml()
        + FileElement(b).xml();
    QCOMPARE(treeOf(history({stepThatSays(element("Title", "outer") + listed, {a, b, c})})),
             latin1("outer(c a b2 b1)"));
}

void TestWorkflowTreeDocuments::numberedDepthFirst()
{
    const QByteArray middle = history(
        {step("older"), step("newer", {embedded("x.tresk", oneStep)})});
    WorkflowTree tree;
    tree.treeFromTreskFile(
        save(history({step("oldest"), step("newest", {embedded("y.tresk", middle)})})));
    QCOMPARE(textOf(tree), latin1("newest(newer(embedded) older) oldest"));
    QStringList titles;
    for (int id = 0; id < 5; ++id)
        titles += tree.workflowStep(id)->title;
    QCOMPARE(titles.join(QLatin1Char(' ')), latin1("newest newer embedded older oldest"));
    QCOMPARE(tree.serializedTree(), (QList<int>{0, 1, 3, 2}));
}

void TestWorkflowTreeDocuments::sameDocumentInTwoSteps()
{
    const FileSpec file = embedded("in.tresk", oneStep);
    WorkflowTree tree;
    tree.treeFromTreskFile(save(history({step("a", {file}), step("b", {file})})));
    QCOMPARE(textOf(tree), latin1("b(embedded) a(embedded)"));
    QVERIFY(tree.fileOnDisk(1) != tree.fileOnDisk(3));
    QVERIFY(tree.treskParser(1) != tree.treskParser(3));
    QCOMPARE(m_temporary->files().size(), 2);
}

void TestWorkflowTreeDocuments::nestedLevels()
{
    QCOMPARE(treeOf(nested(5)), latin1("level 4(level 3(level 2(level 1(level 0))))"));
}

void TestWorkflowTreeDocuments::cannotBeOpened_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << m_dir.path(latin1("missing"));
    QTest::newRow("folder") << m_dir.path(latin1("."));
    QTest::newRow("no path") << QString();
    QTest::newRow("without a header") << save("%PDF-1.4\n%%EOF\n", "plain");
    QTest::newRow("empty") << save("", "empty");
}

void TestWorkflowTreeDocuments::cannotBeOpened()
{
    QFETCH(QString, path);
    WorkflowTree tree;
    tree.treeFromTreskFile(save(nested(2), "good"));
    tree.treeFromTreskFile(path);
    QCOMPARE(tree.root(), -2);
    QVERIFY(tree.nodeIds().isEmpty());
    QVERIFY(tree.serializedTree().isEmpty());
    QVERIFY(tree.children(-1).isEmpty());
    QCOMPARE(m_temporary->files(), QStringList());
}

QTEST_GUILESS_MAIN(TestWorkflowTreeDocuments)

#include "tst_workflowtree_documents.moc"
