#include "Trees.h"

#include <tresk/CostMatrix.h>
#include <tresk/WorkflowTree.h>
#include <tresk/WorkflowstepCosts.h>

#include <QTest>

#include <memory>
#include <type_traits>
#include <vector>

using tresk::CostMatrix;
using tresk::Workflowstep;
using tresk::WorkflowstepCosts;
using tresk::WorkflowTree;
using tresktest::debugLines;
using tresktest::flatTree;
using tresktest::MessageCapture;
using tresktest::stepOf;
using tresktest::TitleCosts;
using tresktest::treeOf;

/// What pairs of steps cost.
class TestCosts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pairsOfSteps_data();
    void pairsOfSteps();
    void nullIsEmpty();
    void nothingElseIsLookedAt();
    void defaultPenalties();
    void aPricingCanBeCopiedAndDestroyedThroughItsBase();
    void everyPairIsStored();
    void unknownPairsCostAsMuchAsAnUnmatchedNode_data();
    void unknownPairsCostAsMuchAsAnUnmatchedNode();
    void aSubclassPricesPairsButNotPenalties();
    void pairsArePricedOnceInTheOrderOfTheTrees();
    void pairsOfTreesThatWereFilledBefore();
    void theMatrixOutlivesTreesAndPricing();
    void copiesAndAssigns();
    void printsAllPairs();
};

namespace {

/// Writes down what it is asked.
class RecordedCosts : public WorkflowstepCosts {
public:
    float costs(const Workflowstep& a, const Workflowstep& b) const override
    {
        m_asked.append(a.title + b.title);
        return 1.5F;
    }
    float wrongParentCosts() const override { return 1000.0F; }
    float unmatchedNodeCosts() const override { return 2000.0F; }

    QStringList asked() const { return m_asked; }

private:
    mutable QStringList m_asked;
};

} // namespace

void TestCosts::pairsOfSteps_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<float>("expected");

    const auto row = [](const char* a, const char* b, float expected) {
        QTest::addRow("%s and %s", a, b)
            << QString::fromUtf8(a) << QString::fromUtf8(b) << expected;
    };
    row("t:o:d", "t:o:d", 0.0F);
    row("t:o:d", "t:o:e", 20.0F);
    row("t:o:d", "t:p:d", 30.0F);
    row("t:o:d", "u:o:d", 50.0F);
    row("t:o:d", "t:p:e", 50.0F);
    row("t:o:d", "u:o:e", 70.0F);
    row("t:o:d", "u:p:d", 80.0F);
    row("t:o:d", "u:p:e", 100.0F);
    row("t:o:d", "T:o:d", 50.0F);
    row("t:o:d", "t:O:d", 30.0F);
    row("t:o:d", "t:o:D", 20.0F);
    row("t:o:d", "t :o:d", 50.0F);
    row("t:o:d", ":o:d", 50.0F);
    row("o:t:d", "t:o:d", 80.0F);
    row("", "", 0.0F);
    row("", "t:o:d", 100.0F);
}

void TestCosts::pairsOfSteps()
{
    QFETCH(const QString, a);
    QFETCH(const QString, b);
    QFETCH(const float, expected);
    QCOMPARE(WorkflowstepCosts().costs(stepOf(a), stepOf(b)), expected);
    QCOMPARE(WorkflowstepCosts().costs(stepOf(b), stepOf(a)), expected);
}

void TestCosts::nullIsEmpty()
{
    Workflowstep empty;
    empty.title = empty.tool = empty.description = QStringLiteral("");
    QVERIFY(!empty.title.isNull() && Workflowstep().title.isNull());
    QCOMPARE(WorkflowstepCosts().costs(Workflowstep(), empty), 0.0F);
    QCOMPARE(WorkflowstepCosts().costs(Workflowstep(), Workflowstep()), 0.0F);
}

void TestCosts::nothingElseIsLookedAt()
{
    Workflowstep other = stepOf(QStringLiteral("t:o:d"));
    other.tagId = 7;
    const std::vector<QString Workflowstep::*> texts{
        &Workflowstep::treskRootFile, &Workflowstep::timestamp,  &Workflowstep::comment,
        &Workflowstep::command,       &Workflowstep::toolPath,   &Workflowstep::host,
        &Workflowstep::user,          &Workflowstep::creator,    &Workflowstep::pdfTitle,
        &Workflowstep::pdfAuthor,     &Workflowstep::pdfSubject, &Workflowstep::pdfKeywords,
        &Workflowstep::pdfProducer,   &Workflowstep::pdfCreator};
    for (QString Workflowstep::*const text : texts)
        other.*text = QStringLiteral("x");
    other.files.append(tresk::FileSummary());
    other.userAttributes.insert(QStringLiteral("n"), QStringLiteral("v"));
    other.userAttributeUnits.insert(QStringLiteral("n"), QStringLiteral("u"));
    other.userAttributeNames.append(QStringLiteral("n"));
    QCOMPARE(WorkflowstepCosts().costs(stepOf(QStringLiteral("t:o:d")), other), 0.0F);
}

void TestCosts::defaultPenalties()
{
    QCOMPARE(WorkflowstepCosts().wrongParentCosts(), 18.0F);
    QCOMPARE(WorkflowstepCosts().unmatchedNodeCosts(), 15.0F);
    const CostMatrix matrix(WorkflowTree(), WorkflowTree(), nullptr);
    QCOMPARE(matrix.costsWrongParent(), 10.0F);
    QCOMPARE(matrix.costsUnmatchedNode(), 15.0F);
}

void TestCosts::aPricingCanBeCopiedAndDestroyedThroughItsBase()
{
    static_assert(std::has_virtual_destructor<WorkflowstepCosts>::value, "it is derived from");
    const WorkflowstepCosts costs;
    WorkflowstepCosts copy(costs);
    copy = costs;
    QCOMPARE(copy.costs(stepOf(QStringLiteral("t")), stepOf(QStringLiteral("u"))), 50.0F);
    const std::unique_ptr<WorkflowstepCosts> base = std::make_unique<TitleCosts>(3.0F);
    QCOMPARE(base->costs({}, {}), 3.0F);
}

void TestCosts::everyPairIsStored()
{
    const WorkflowstepCosts costs;
    const CostMatrix matrix(treeOf("a(b:o)"), treeOf("b,a::d(b:o:d)"), &costs);
    QCOMPARE(matrix.costs(0, 0), 50.0F);
    QCOMPARE(matrix.costs(0, 1), 20.0F);
    QCOMPARE(matrix.costs(0, 2), 100.0F);
    QCOMPARE(matrix.costs(1, 0), 30.0F);
    QCOMPARE(matrix.costs(1, 1), 100.0F);
    QCOMPARE(matrix.costs(1, 2), 20.0F);
}

void TestCosts::unknownPairsCostAsMuchAsAnUnmatchedNode_data()
{
    QTest::addColumn<int>("i");
    QTest::addColumn<int>("j");

    QTest::newRow("no such second node") << 0 << 2;
    QTest::newRow("no such first node") << 2 << 0;
    QTest::newRow("neither") << 5 << 5;
    QTest::newRow("paired with nothing") << 0 << -3;
    QTest::newRow("nothing paired") << -3 << 0;
    QTest::newRow("the parents of the roots") << -1 << -1;
    QTest::newRow("none") << -2 << 1;
}

void TestCosts::unknownPairsCostAsMuchAsAnUnmatchedNode()
{
    QFETCH(const int, i);
    QFETCH(const int, j);
    const TitleCosts costs(1.0F);
    QCOMPARE(CostMatrix(treeOf("a,b"), treeOf("a,b"), &costs).costs(i, j), 15.0F);
    QCOMPARE(CostMatrix(treeOf("a,b"), treeOf("a,b"), &costs).costs(0, 1), 1.0F);
    QCOMPARE(CostMatrix(WorkflowTree(), WorkflowTree(), &costs).costs(i, j), 15.0F);
    QCOMPARE(CostMatrix(treeOf("a,b"), WorkflowTree(), &costs).costs(i, j), 15.0F);
    QCOMPARE(CostMatrix(WorkflowTree(), treeOf("a,b"), &costs).costs(i, j), 15.0F);
}

void TestCosts::aSubclassPricesPairsButNotPenalties()
{
    const RecordedCosts costs;
    const CostMatrix matrix(treeOf("a,b"), treeOf("a,b,c"), &costs);
    for (int i = 0; i < 2; ++i) {
        for (int j = 0; j < 3; ++j)
            QCOMPARE(matrix.costs(i, j), 1.5F);
    }
    QCOMPARE(matrix.costs(2, 0), 15.0F);
    QCOMPARE(matrix.costsUnmatchedNode(), 15.0F);
    QCOMPARE(matrix.costsWrongParent(), 10.0F);
}

void TestCosts::pairsArePricedOnceInTheOrderOfTheTrees()
{
    const RecordedCosts costs;
    const CostMatrix matrix(treeOf("a(b),c"), treeOf("x,y"), &costs);
    const QStringList expected = QStringLiteral("ax ay bx by cx cy").split(QLatin1Char(' '));
    QCOMPARE(costs.asked(), expected);
    matrix.costs(1, 1);
    matrix.costs(1, 7);
    QCOMPARE(costs.asked(), expected);

    const RecordedCosts ofShifted;
    // The nodes 16, 17 and 18 stand as 17, 18, 16.
    const CostMatrix shifted(treeOf("a,b,c", 16), treeOf("x"), &ofShifted);
    QCOMPARE(ofShifted.asked(), QStringLiteral("bx cx ax").split(QLatin1Char(' ')));
}

void TestCosts::pairsOfTreesThatWereFilledBefore()
{
    const TitleCosts costs = TitleCosts(7.0F).set("b", "y", 0.25F);
    const CostMatrix matrix(treeOf("a,b,c", 16), treeOf("x,y", 33), &costs);
    QCOMPARE(matrix.costs(17, 34), 0.25F);
    QCOMPARE(matrix.costs(16, 34), 7.0F);
    QCOMPARE(matrix.costs(18, 33), 7.0F);
    QCOMPARE(matrix.costs(0, 33), 15.0F);
    QCOMPARE(matrix.costs(1, 1), 15.0F);
}

void TestCosts::theMatrixOutlivesTreesAndPricing()
{
    auto tree1 = std::make_unique<WorkflowTree>(treeOf("a"));
    auto tree2 = std::make_unique<WorkflowTree>(treeOf("b"));
    auto costs = std::make_unique<TitleCosts>(4.0F);
    const CostMatrix matrix(*tree1, *tree2, costs.get());
    tree1->clear();
    tree1.reset();
    tree2.reset();
    costs.reset();
    QCOMPARE(matrix.costs(0, 0), 4.0F);
}

void TestCosts::copiesAndAssigns()
{
    const TitleCosts costs(4.0F);
    const CostMatrix matrix(treeOf("a"), treeOf("a"), &costs);
    CostMatrix copy(matrix);
    QCOMPARE(copy.costs(0, 0), 4.0F);
    copy = CostMatrix(WorkflowTree(), WorkflowTree(), &costs);
    QCOMPARE(copy.costs(0, 0), 15.0F);
    QCOMPARE(matrix.costs(0, 0), 4.0F);
    copy = matrix;
    QCOMPARE(copy.costs(0, 0), 4.0F);
}

void TestCosts::printsAllPairs()
{
    const TitleCosts costs = TitleCosts(20.0F).set("a", "y", 0.5F).set("b", "x", -3.0F);
    const CostMatrix matrix(treeOf("a,b"), treeOf("x,y"), &costs);
    MessageCapture capture;
    matrix.printMe();
    QCOMPARE(debugLines(capture),
             (QStringList{QStringLiteral("QPair(0,0) 20"), QStringLiteral("QPair(0,1) 0.5"),
                          QStringLiteral("QPair(1,0) -3"), QStringLiteral("QPair(1,1) 20")}));
    CostMatrix(WorkflowTree(), treeOf("x"), &costs).printMe();
    QCOMPARE(capture.messages().size(), 4);
}

QTEST_APPLESS_MAIN(TestCosts)
#include "tst_costs.moc"
