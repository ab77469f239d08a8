#include <tresk/PriorityQueue.h>

#include <QList>
#include <QRandomGenerator>
#include <QSharedPointer>
#include <QTest>

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

using tresk::PriorityQueue;

/// The queue of open paths.
class TestPriorityQueue : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theSmallestPriorityComesFirst();
    void equalPrioritiesAreNotInTheOrderOfPushingNorItsReverse();
    void equalPrioritiesAreInTheOrderOfTheHeap_data();
    void equalPrioritiesAreInTheOrderOfTheHeap();
    void allPrioritiesOfAnInt();
    void sharesItsItems();
    void copiesAreIndependent();
};

namespace {

/// A heap in a vector, kept by the standard algorithms.
class Heap {
public:
    using Entry = std::pair<int, int>;

    bool isEmpty() const { return m_entries.empty(); }
    void push(int item, int priority)
    {
        m_entries.push_back({item, priority});
        std::push_heap(m_entries.begin(), m_entries.end(), isGreater);
    }
    Entry pop()
    {
        std::pop_heap(m_entries.begin(), m_entries.end(), isGreater);
        const Entry top = m_entries.back();
        m_entries.pop_back();
        return top;
    }

private:
    static bool isGreater(const Entry& a, const Entry& b) { return a.second > b.second; }

    std::vector<Entry> m_entries;
};

} // namespace

void TestPriorityQueue::theSmallestPriorityComesFirst()
{
    PriorityQueue<int> queue;
    QVERIFY(queue.isEmpty());
    const QList<int> priorities{5, -2, 9, 0, 7, -8, 3};
    for (const int priority : priorities)
        queue.push(10 * priority, priority);
    QCOMPARE(queue.size(), 7);
    const QList<int> ascending{-8, -2, 0, 3, 5, 7, 9};
    for (const int priority : ascending) {
        QVERIFY(!queue.isEmpty());
        QCOMPARE(queue.pop(), std::make_pair(10 * priority, priority));
    }
    QVERIFY(queue.isEmpty());
    QCOMPARE(queue.size(), 0);
}

void TestPriorityQueue::equalPrioritiesAreNotInTheOrderOfPushingNorItsReverse()
{
    PriorityQueue<int> queue;
    QList<int> pushed;
    for (int item = 0; item < 8; ++item) {
        queue.push(item, 30);
        pushed.append(item);
    }
    QList<int> popped;
    while (!queue.isEmpty())
        popped.append(queue.pop().first);
    // An equal priority does not rise above what is there.
    QCOMPARE(popped.first(), 0);
    QVERIFY(popped != pushed);
    std::sort(popped.begin(), popped.end());
    QCOMPARE(popped, pushed);
}

void TestPriorityQueue::equalPrioritiesAreInTheOrderOfTheHeap_data()
{
    QTest::addColumn<int>("priorities");
    QTest::newRow("one priority") << 1;
    QTest::newRow("two priorities") << 2;
    QTest::newRow("five priorities") << 5;
    QTest::newRow("many priorities") << 1000;
}

void TestPriorityQueue::equalPrioritiesAreInTheOrderOfTheHeap()
{
    QFETCH(const int, priorities);
    QRandomGenerator random(5);
    for (int round = 0; round < 100; ++round) {
        PriorityQueue<int> queue;
        Heap heap;
        int item = 0;
        for (int step = 0; step < 150; ++step) {
            // Grows at first, then shrinks.
            if (random.bounded(150) >= step) {
                const int priority = random.bounded(priorities) - priorities / 2;
                queue.push(item, priority);
                heap.push(item++, priority);
            } else if (!heap.isEmpty()) {
                QCOMPARE(queue.pop(), heap.pop());
            }
            QCOMPARE(queue.isEmpty(), heap.isEmpty());
        }
        while (!heap.isEmpty())
            QCOMPARE(queue.pop(), heap.pop());
        QVERIFY(queue.isEmpty());
    }
}

void TestPriorityQueue::allPrioritiesOfAnInt()
{
    const int lowest = std::numeric_limits<int>::min();
    const int highest = std::numeric_limits<int>::max();
    PriorityQueue<char> queue;
    queue.push('h', highest);
    queue.push('l', lowest);
    queue.push('0', 0);
    QCOMPARE(queue.pop().first, 'l');
    QCOMPARE(queue.pop().first, '0');
    QCOMPARE(queue.pop().second, highest);
}

void TestPriorityQueue::sharesItsItems()
{
    const auto item = QSharedPointer<int>::create(1);
    PriorityQueue<QSharedPointer<int>> queue;
    queue.push(item, 2);
    queue.push(QSharedPointer<int>::create(2), 1);
    const QWeakPointer<int> second = queue.pop().first;
    // What was taken out is held by no one else.
    QVERIFY(second.isNull());
    *item = 3;
    QCOMPARE(*queue.pop().first, 3);
}

void TestPriorityQueue::copiesAreIndependent()
{
    PriorityQueue<int> queue;
    queue.push(1, 1);
    PriorityQueue<int> copy(queue);
    copy.push(0, 0);
    QCOMPARE(queue.size(), 1);
    QCOMPARE(queue.pop().first, 1);
    QCOMPARE(copy.pop().first, 0);
    QCOMPARE(copy.pop().first, 1);
}

QTEST_APPLESS_MAIN(TestPriorityQueue)
#include "tst_priorityqueue.moc"
