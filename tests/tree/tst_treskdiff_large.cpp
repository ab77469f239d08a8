#include "LargeHistories.h"
#include "MessageCapture.h"
#include "Watched.h"

#include <tresk/CostMatrix.h>
#include <tresk/Path.h>
#include <tresk/TreskDiff.h>
#include <tresk/WorkflowstepCosts.h>

#include <QRegularExpression>
#include <QSet>
#include <QSignalSpy>
#include <QStringList>
#include <QTest>

#include <sys/resource.h>

using tresk::FirstTree;
using tresk::SecondTree;
using tresk::TreskDiff;
using tresk::TreskDiffResult;
using tresk::Workflowstep;
using tresk::WorkflowstepCosts;
using tresk::WorkflowTree;
using namespace tresktest;

Q_DECLARE_METATYPE(tresktest::Histories)

/// Compares histories whose pairings are too many for the search by paths.
class TestTreskDiffLarge : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fewStepsAgainstMany(); // before others have used more memory
    void unrelatedSteps_data();
    void unrelatedSteps();
    void equalHistoriesCostNothing_data();
    void equalHistoriesCostNothing();
    void noDearerThanThePairingByHand_data();
    void noDearerThanThePairingByHand();
    void severalBestInAscendingOrder();
    void whatIsNotSureIsSaid();
};

namespace {

/// The most memory that this process has used so far.
qint64 peakMebibytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

struct Outcome {
    QList<TreskDiffResult> results;
    QStringList messages; ///< those of type 1
    bool hasOthers = false; ///< messages of other types
};

Outcome compare(const Histories& histories, int n = 1)
{
    const MessageCapture capture; // a search that finishes writes debug lines
    WorkflowstepCosts costs;
    const TreskDiff diff(histories.first, histories.second, &costs);
    QSignalSpy spy(&diff, &TreskDiff::log);
    Outcome outcome;
    outcome.results = diff.findBestMatches(n);
    for (const QList<QVariant>& signal : spy) {
        outcome.hasOthers = outcome.hasOthers || signal.at(1).toInt() != 1;
        outcome.messages += signal.at(0).toString();
    }
    return outcome;
}

/// What is wrong with @p result as a pairing of @p histories; empty if nothing is.
QString flaw(const Histories& histories, const TreskDiffResult& result)
{
    QSet<int> partners;
    const QList<int> ids1 = histories.first.nodeIds();
    for (const int id : ids1) {
        const int partner = result.association(id, FirstTree);
        if (partner == -3)
            continue;
        if (!histories.second.workflowStep(partner) || partners.contains(partner))
            return QStringLiteral("%1 has the partner %2").arg(id).arg(partner);
        if (result.association(partner, SecondTree) != id)
            return QStringLiteral("%1 is not the partner of %2").arg(id).arg(partner);
        partners.insert(partner);
    }
    int marked = 0;
    int open = 0;
    const QList<int> ids2 = histories.second.nodeIds();
    for (const int id : ids2) {
        const int partner = result.association(id, SecondTree);
        marked += int(partner == -3);
        open += int(partner == -2);
        if (partner >= 0 && !partners.contains(id))
            return QStringLiteral("%1 has a partner of its own").arg(id);
    }
    if (marked + open + partners.size() != ids2.size() || marked - open < 0 || marked - open > 1)
        return QStringLiteral("%1 marked, %2 open").arg(marked).arg(open);
    return {};
}

/// The costs of pairing each node of the first tree as @p partnerOf says.
template <typename PartnerOf>
int priorityOf(const Histories& histories, PartnerOf partnerOf)
{
    const WorkflowstepCosts costs;
    const tresk::CostMatrix matrix(histories.first, histories.second, &costs);
    tresk::PathExpander expander(&histories.first, &histories.second, &matrix);
    tresk::Path path(&expander);
    const QList<int> ids = histories.first.nodeIds();
    for (const int id : ids)
        path.associate(id, partnerOf(id));
    return int(path.getCosts());
}

int priorityOf(const Histories& histories, const TreskDiffResult& result)
{
    return priorityOf(histories, [&](int id) { return result.association(id, FirstTree); });
}

/// The pairs of steps with the same title that have the same id, all others alone.
int priorityByHand(const Histories& histories)
{
    return priorityOf(histories, [&](int id) {
        const Workflowstep* const other = histories.second.workflowStep(id);
        return other && other->title == histories.first.workflowStep(id)->title ? id : -3;
    });
}

/// The numbers in @p text.
std::vector<int> numbersIn(const QString& text)
{
    std::vector<int> numbers;
    QRegularExpressionMatchIterator matches =
        QRegularExpression(QStringLiteral("-?[0-9]+")).globalMatch(text);
    while (matches.hasNext())
        numbers.push_back(matches.next().captured().toInt());
    return numbers;
}

} // namespace

void TestTreskDiffLarge::unrelatedSteps_data()
{
    QTest::addColumn<int>("count");

    QTest::newRow("40") << 40;
    QTest::newRow("200") << 200;
}

void TestTreskDiffLarge::unrelatedSteps()
{
    QFETCH(const int, count);

    const Histories histories = unrelatedHistories(count);
    const Outcome outcome = compare(histories);
    QCOMPARE(outcome.messages, QStringList());
    QCOMPARE(outcome.results.size(), 1);
    const TreskDiffResult& result = outcome.results.first();
    QCOMPARE(flaw(histories, result), QString());
    for (int id = 0; id < count; ++id)
        QCOMPARE(result.association(id, FirstTree), -3);
    // Both histories, and once more the half that stays open.
    QCOMPARE(priorityOf(histories, result), 15 * count + 15 * count + 15 * (count / 2));
}

void TestTreskDiffLarge::equalHistoriesCostNothing_data()
{
    QTest::addColumn<Histories>("histories");

    const auto addRow = [](const char* name, const Parents& parents) {
        QTest::newRow(name) << equalSteps(parents, parents);
    };
    addRow("at the top", flatParents(50));
    addRow("three under each", branchingParents(50, 3));
}

void TestTreskDiffLarge::equalHistoriesCostNothing()
{
    QFETCH(const Histories, histories);

    const Outcome outcome = compare(histories);
    QCOMPARE(outcome.messages, QStringList());
    QCOMPARE(outcome.results.size(), 1);
    QCOMPARE(flaw(histories, outcome.results.first()), QString());
    QCOMPARE(priorityOf(histories, outcome.results.first()), 0);
}

void TestTreskDiffLarge::noDearerThanThePairingByHand_data()
{
    QTest::addColumn<Histories>("histories");

    const auto addRow = [](const char* name, const Parents& parents) {
        QTest::newRow(name) << mixedHistories(parents, parents);
    };
    addRow("in groups", groupedParents(200, 5));
    addRow("one under the other", chainedParents(200));
}

void TestTreskDiffLarge::noDearerThanThePairingByHand()
{
    QFETCH(const Histories, histories);

    const Outcome outcome = compare(histories);
    QCOMPARE(outcome.messages, QStringList());
    QCOMPARE(outcome.results.size(), 1);
    const TreskDiffResult& result = outcome.results.first();
    QCOMPARE(flaw(histories, result), QString());
    const int priority = priorityOf(histories, result);
    const int byHand = priorityByHand(histories);
    QVERIFY2(priority <= byHand, qPrintable(QStringLiteral("%1 > %2").arg(priority).arg(byHand)));
}

void TestTreskDiffLarge::severalBestInAscendingOrder()
{
    const Histories histories = unrelatedHistories(40);
    const Outcome outcome = compare(histories, 3);
    QCOMPARE(outcome.messages, QStringList());
    std::vector<int> priorities;
    QSet<QString> pairings;
    for (const TreskDiffResult& result : outcome.results) {
        QCOMPARE(flaw(histories, result), QString());
        priorities.push_back(priorityOf(histories, result));
        QString pairing;
        for (int id = 0; id < 40; ++id)
            pairing += QString::number(result.association(id, FirstTree)) + QLatin1Char(' ');
        pairings.insert(pairing);
    }
    // All alone; or one pair, and of what is left one less stays open than is marked.
    const int onePair = 50 + 15 * 39 + 15 * 39 + 15 * 19;
    QCOMPARE(priorities, (std::vector<int>{15 * 40 + 15 * 40 + 15 * 20, onePair, onePair}));
    QCOMPARE(pairings.size(), 3);
}

void TestTreskDiffLarge::whatIsNotSureIsSaid()
{
    if (isWatched())
        QSKIP("this takes much longer where it is watched");
    const Histories histories = mixedHistories(randomParents(80, 1), randomParents(80, 2));
    const Outcome outcome = compare(histories);
    QCOMPARE(outcome.results.size(), 1);
    QCOMPARE(flaw(histories, outcome.results.first()), QString());
    QCOMPARE(outcome.messages.size(), 1);
    QVERIFY(!outcome.hasOthers);
    const std::vector<int> numbers = numbersIn(outcome.messages.first());
    QCOMPARE(int(numbers.size()), 2);
    QCOMPARE(numbers[0], priorityOf(histories, outcome.results.first()));
    QVERIFY(numbers[1] < numbers[0]);
    // Half of the steps have no counterpart, and a quarter another description.
    const int atLeast = 40 * 15 + 40 * 15 + 20 * 15 + 20 * 20;
    QVERIFY2(numbers[1] >= atLeast, qPrintable(outcome.messages.first()));
}

/// All that is left over of the second history is known of each of many paths.
void TestTreskDiffLarge::fewStepsAgainstMany()
{
    const Histories few{unrelatedHistories(3).first, unrelatedHistories(120).second};
    const Histories fewer{unrelatedHistories(1).first, unrelatedHistories(20000).second};
    const qint64 before = peakMebibytes();
    for (const Histories& histories : {few, fewer}) {
        const Outcome outcome = compare(histories);
        QCOMPARE(outcome.results.size(), 1);
        QCOMPARE(flaw(histories, outcome.results.first()), QString());
        QCOMPARE(outcome.messages, QStringList());
    }
    QVERIFY2(isWatched() || peakMebibytes() - before < 150,
             qPrintable(QString::number(peakMebibytes())));
}

QTEST_GUILESS_MAIN(TestTreskDiffLarge)
#include "tst_treskdiff_large.moc"
