#include "Comparison.h"

#include <tresk/Dijkstra.h>
#include <tresk/Path.h>

#include <QSet>
#include <QTest>

using tresk::Dijkstra;
using tresk::FirstTree;
using tresk::Path;
using tresk::PriorityQueue;
using tresktest::Comparison;
using tresktest::debugLines;
using tresktest::flatTree;
using tresktest::MessageCapture;
using tresktest::TitleCosts;
using tresktest::treeOf;

/// The search.
class TestDijkstra : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cheapestFirst_data();
    void cheapestFirst();
    void expandsOnlyWhatIsNoGoal();
    void whatIsOpenStaysInTheQueue();
    void identicalTreesOfOneNode();
    void aFirstTreeOfTwoNodesAndAnEmptySecondTree();
    void anEmptyFirstTreeIsAGoalAtOnce();
    void emptyTrees();
    void allPathsOfTwoSmallTrees();
    void linesOfEveryGoal();
};

namespace {

/// A number whose successors are made by appending 1 and 2, and that is a goal with two digits.
class Digits {
public:
    explicit Digits(int value, int* expanded)
        : m_value(value)
        , m_expanded(expanded)
    {
    }

    int value() const { return m_value; }
    bool reachedGoal() const { return m_value > 10; }
    void printMe() const { qDebug("goal %d", m_value); }
    void expand(PriorityQueue<QSharedPointer<Digits>>& queue)
    {
        ++*m_expanded;
        for (const int digit : {1, 2}) {
            const int next = 10 * m_value + digit;
            queue.push(QSharedPointer<Digits>::create(next, m_expanded), next);
        }
    }

private:
    int m_value;
    int* m_expanded;
};

QStringList lines(const char* text)
{
    return QString::fromUtf8(text).split(QStringLiteral(", "));
}

} // namespace

void TestDijkstra::cheapestFirst_data()
{
    QTest::addColumn<int>("n");
    QTest::addColumn<QList<int>>("expected");
    QTest::addColumn<QStringList>("expectedLines");

    // Popped are 0, 1, 2, 11, 12, 21, 22.
    const char* one = "FINISHED, 4 nodes expanded, other: goal 11";
    const QByteArray two = QByteArray(one) + ", FINISHED, 5 nodes expanded, other: goal 12";
    const QByteArray all = two + ", FINISHED, 6 nodes expanded, other: goal 21"
        + ", FINISHED, 7 nodes expanded, other: goal 22";
    QTest::newRow("one") << 1 << QList<int>{11} << lines(one);
    QTest::newRow("two") << 2 << QList<int>{11, 12} << lines(two.constData());
    QTest::newRow("all") << 4 << QList<int>{11, 12, 21, 22} << lines(all.constData());
    QTest::newRow("more than there are")
        << 5 << QList<int>{11, 12, 21, 22} << lines(all.constData());
    QTest::newRow("none, which gives one") << 0 << QList<int>{11} << lines(one);
    QTest::newRow("less than none, which gives one") << -3 << QList<int>{11} << lines(one);
}

void TestDijkstra::cheapestFirst()
{
    QFETCH(const int, n);
    QFETCH(const QList<int>, expected);
    QFETCH(const QStringList, expectedLines);
    int expanded = 0;
    Dijkstra<Digits> search;
    QList<int> found;
    const MessageCapture capture;
    for (const auto& digits : search.findPaths(QSharedPointer<Digits>::create(0, &expanded), n))
        found.append(digits->value());
    QCOMPARE(found, expected);
    QCOMPARE(debugLines(capture), expectedLines);
}

void TestDijkstra::expandsOnlyWhatIsNoGoal()
{
    int expanded = 0;
    Dijkstra<Digits> search;
    const MessageCapture capture;
    search.findPaths(QSharedPointer<Digits>::create(0, &expanded), 100);
    QCOMPARE(expanded, 3);
}

void TestDijkstra::whatIsOpenStaysInTheQueue()
{
    int expanded = 0;
    Dijkstra<Digits> search;
    const MessageCapture capture;
    QCOMPARE(search.findPaths(QSharedPointer<Digits>::create(2, &expanded), 1).size(), 1);
    // A copy goes on with what the other has left, on its own.
    Dijkstra<Digits> copy(search);
    for (Dijkstra<Digits>* const goesOn : {&search, &copy}) {
        const auto found = goesOn->findPaths(QSharedPointer<Digits>::create(99, &expanded), 9);
        QCOMPARE(found.size(), 2);
        QCOMPARE(found.at(0)->value(), 99);
        QCOMPARE(found.at(1)->value(), 22);
    }
}

void TestDijkstra::identicalTreesOfOneNode()
{
    Comparison c(treeOf("a"), treeOf("a"), TitleCosts(0.0F));
    const MessageCapture capture;
    const auto found = Dijkstra<Path>().findPaths(QSharedPointer<Path>::create(c.path), 1);
    QCOMPARE(debugLines(capture), lines("FINISHED, 2 nodes expanded, -1 -> -1, 0 -> 0, Costs: 0"));
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.first()->getCosts(), 0.0F);
    QCOMPARE(found.first()->association(0, FirstTree), 0);
}

void TestDijkstra::aFirstTreeOfTwoNodesAndAnEmptySecondTree()
{
    Comparison c(treeOf("a(b)"), treeOf(""));
    const MessageCapture capture;
    const auto found = Dijkstra<Path>().findPaths(QSharedPointer<Path>::create(c.path), 2);
    QCOMPARE(found.size(), 1);
    // Node 1's flag is looked up for node 0, which counts as changed.
    QCOMPARE(debugLines(capture),
             lines("FINISHED, 3 nodes expanded, -1 -> -1, 0 -> -3, 1 -> -3, Costs: 40"));

    Comparison flat(treeOf("a,b"), treeOf(""));
    const auto ofFlat = Dijkstra<Path>().findPaths(QSharedPointer<Path>::create(flat.path), 2);
    QCOMPARE(ofFlat.size(), 1);
    QCOMPARE(ofFlat.first()->getCosts(), 30.0F);
}

void TestDijkstra::anEmptyFirstTreeIsAGoalAtOnce()
{
    Comparison c(treeOf(""), treeOf("a,b"));
    const auto start = QSharedPointer<Path>::create(c.path);
    const MessageCapture capture;
    const auto found = Dijkstra<Path>().findPaths(start, 3);
    QCOMPARE(found, QList<QSharedPointer<Path>>{start});
    QCOMPARE(debugLines(capture), lines("FINISHED, 1 nodes expanded, -1 -> -1, Costs: 0"));
}

void TestDijkstra::emptyTrees()
{
    Comparison c(treeOf(""), treeOf(""));
    const MessageCapture capture;
    const auto found = Dijkstra<Path>().findPaths(QSharedPointer<Path>::create(c.path), 1);
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.first()->getCosts(), 0.0F);
}

void TestDijkstra::allPathsOfTwoSmallTrees()
{
    // Without pairs, with one of 9, with two of 18, with three of 6.
    Comparison c(flatTree(3), flatTree(3));
    const MessageCapture capture;
    const auto found = Dijkstra<Path>().findPaths(QSharedPointer<Path>::create(c.path), 1000);
    QCOMPARE(found.size(), 34);
    QSet<QString> pairings;
    int priority = 0;
    for (const QSharedPointer<Path>& path : found) {
        QVERIFY(path->reachedGoal());
        QVERIFY(int(path->getCosts()) >= priority);
        priority = int(path->getCosts());
        QString pairing;
        for (int id = 0; id < 3; ++id)
            pairing += QString::number(path->association(id, FirstTree)) + QLatin1Char(' ');
        pairings.insert(pairing);
    }
    QCOMPARE(pairings.size(), 34);
}

void TestDijkstra::linesOfEveryGoal()
{
    Comparison c(treeOf("a"), treeOf("a"), TitleCosts(0.5F));
    const MessageCapture capture;
    const auto found = Dijkstra<Path>().findPaths(QSharedPointer<Path>::create(c.path), 5);
    QCOMPARE(found.size(), 2);
    QCOMPARE(debugLines(capture),
             lines("FINISHED, 2 nodes expanded, -1 -> -1, 0 -> 0, Costs: 0.5, "
                   "FINISHED, 3 nodes expanded, -1 -> -1, 0 -> -3, Costs: 30"));
}

QTEST_APPLESS_MAIN(TestDijkstra)
#include "tst_dijkstra.moc"
