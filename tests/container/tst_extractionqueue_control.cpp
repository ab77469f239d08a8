#include "EmbeddedFiles.h"
#include "MessageCapture.h"
#include "QueueDocuments.h"
#include "QueueEvents.h"
#include "TestFiles.h"

#include <tresk/ExtractionQueue.h>
#include <tresk/TreskParser.h>

#include <QTest>

using tresk::ExtractionQueue;
using tresk::TreskParser;
using tresktest::counted;
using tresktest::finish;
using tresktest::flate;
using tresktest::nothingLeft;
using tresktest::percentages;
using tresktest::plain;
using tresktest::QueueDocuments;
using tresktest::QueueEvents;
using tresktest::readFile;
using tresktest::step;
using tresktest::steps;
using tresktest::twoLines;
using tresktest::verdicts;

/// Emptying and filling a queue while it works.
class TestExtractionQueueControl : public QObject, protected QueueDocuments {
    Q_OBJECT

private Q_SLOTS:
    void addedWhileRunning();
    void totalsAreForgottenAtTheEnd();
    void cancelAtAnyStep();
    void resetAtAnyStep();
    void resetWithAnotherDocument();
    void noParser();
    void cancelInSlot_data();
    void cancelInSlot();
    void addInSlot();
    void addInLastPercentage();
};

void TestExtractionQueueControl::addedWhileRunning()
{
    QVERIFY(open({plain(counted(200000)), plain(counted(300000))}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees(targets(1));
    QCOMPARE(percentages({step(queue, events)}), QList<int>{50});
    queue.addExtractees({{1, target(1)}});
    QCOMPARE(percentages(finish(queue, events)), (QList<int>{40, 60, 80, 100}));
}

void TestExtractionQueueControl::totalsAreForgottenAtTheEnd()
{
    QVERIFY(open({plain(counted(150000)), plain(counted(200000))}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, target(0)}});
    finish(queue, events);
    QCOMPARE(step(queue, events), nothingLeft);
    queue.addExtractees({{1, target(1)}});
    QCOMPARE(percentages(finish(queue, events)), (QList<int>{50, 100}));
}

void TestExtractionQueueControl::cancelAtAnyStep()
{
    const QByteArray content = counted(250000);
    QVERIFY(open({flate(content), plain(content)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees(targets(2));
    const QStringList whole = finish(queue, events);
    QCOMPARE(whole.size(), 5);
    for (int count = 0; count < whole.size(); ++count) {
        queue.addExtractees(targets(2));
        QCOMPARE(steps(queue, events, count), whole.mid(0, count));
        queue.cancelExtraction();
        QCOMPARE(events.take(), QString());
        QCOMPARE(step(queue, events), nothingLeft);
        if (count > 2) // what was written stays
            QVERIFY(readFile(target(1)) == content.left((count - 2) * 100000));
        queue.addExtractees(targets(2));
        QCOMPARE(finish(queue, events), whole);
        QVERIFY(readFile(target(0)) == content);
        QVERIFY(readFile(target(1)) == content);
    }
}

void TestExtractionQueueControl::resetAtAnyStep()
{
    const tresktest::MessageCapture messages;
    const QByteArray content = counted(250000);
    QVERIFY(open({flate(content), plain(content)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees(targets(2));
    const QStringList whole = finish(queue, events);
    for (int count = 0; count < whole.size(); ++count) {
        queue.addExtractees(targets(2));
        steps(queue, events, count);
        queue.reset(&m_parser);
        QCOMPARE(events.take(), QString());
        queue.addExtractees(targets(2));
        QCOMPARE(finish(queue, events), whole);
        QVERIFY(readFile(target(0)) == content);
    }
    QCOMPARE(static_cast<int>(messages.messages().size()), 0);
}

void TestExtractionQueueControl::resetWithAnotherDocument()
{
    TreskParser other;
    QVERIFY(open(other, {plain("other")}));
    QVERIFY(open({plain(counted(250000)), plain(twoLines)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees(targets(2));
    step(queue, events);
    queue.reset(&other);
    queue.addExtractees(targets(2));
    QCOMPARE(finish(queue, events),
             QStringList(QStringLiteral("written 0 | percent 100 %1 | done").arg(target(0))));
    QCOMPARE(readFile(target(0)), QByteArray("other"));
    // Cancelling keeps the document.
    queue.cancelExtraction();
    queue.addExtractees(targets(2));
    QCOMPARE(verdicts(finish(queue, events)), QStringList(QStringLiteral("written 0")));
}

void TestExtractionQueueControl::noParser()
{
    QVERIFY(open({plain(twoLines)}));
    ExtractionQueue queue(nullptr);
    QueueEvents events(queue);
    queue.addExtractees(targets(1));
    QCOMPARE(step(queue, events), nothingLeft);
    queue.cancelExtraction();
    queue.reset(&m_parser);
    queue.addExtractees(targets(1));
    queue.reset(nullptr);
    queue.addExtractees(targets(1));
    QCOMPARE(step(queue, events), nothingLeft);
}

void TestExtractionQueueControl::cancelInSlot_data()
{
    QTest::addColumn<bool>("atPercentage");
    QTest::addColumn<QString>("expected");
    QTest::newRow("percentage") << true << QStringLiteral("written 0 | percent 50 %1 | done");
    QTest::newRow("file") << false << QStringLiteral("written 0 | percent -2147483648 %1 | done");
}

void TestExtractionQueueControl::cancelInSlot()
{
    QFETCH(bool, atPercentage);
    QFETCH(QString, expected);
    QVERIFY(open({plain(twoLines), plain(twoLines)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    if (atPercentage)
        connect(&queue, &ExtractionQueue::percentFinishedChanged, &queue,
                &ExtractionQueue::cancelExtraction);
    else
        connect(&queue, &ExtractionQueue::fileProcessed, &queue,
                &ExtractionQueue::cancelExtraction);
    queue.addExtractees(targets(2));
    QCOMPARE(step(queue, events), expected.arg(target(0)));
    QCOMPARE(step(queue, events), nothingLeft);
    QCOMPARE(readFile(target(0)), twoLines);
}

void TestExtractionQueueControl::addInSlot()
{
    QVERIFY(open({plain(twoLines), plain(twoLines)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    connect(&queue, &ExtractionQueue::fileProcessed, &queue, [&](int id) {
        if (id == 0)
            queue.addExtractees({{1, target(1)}});
    });
    queue.addExtractees({{0, target(0)}});
    const QStringList lines = finish(queue, events);
    QCOMPARE(percentages(lines), (QList<int>{50, 100}));
    QCOMPARE(verdicts(lines),
             (QStringList{QStringLiteral("written 0"), QStringLiteral("written 1")}));
}

void TestExtractionQueueControl::addInLastPercentage()
{
    // The queue does not become empty, so it goes on counting.
    QVERIFY(open({plain(counted(100000)), plain(counted(200000))}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    int added = 0;
    connect(&queue, &ExtractionQueue::percentFinishedChanged, &queue, [&](int percent) {
        if (percent == 100 && added++ == 0)
            queue.addExtractees({{1, target(1)}});
    });
    queue.addExtractees({{0, target(0)}});
    QCOMPARE(percentages(finish(queue, events)), (QList<int>{100, 66, 100}));
}

QTEST_GUILESS_MAIN(TestExtractionQueueControl)

#include "tst_extractionqueue_control.moc"
