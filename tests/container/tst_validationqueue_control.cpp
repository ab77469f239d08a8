#include "MessageCapture.h"
#include "QueueDocuments.h"
#include "QueueEvents.h"
#include "TestFiles.h"

#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QTest>

#include <memory>

using tresk::SavedFile;
using tresk::ValidationQueue;
using tresktest::finish;
using tresktest::isOpen;
using tresktest::nothingLeft;
using tresktest::percentages;
using tresktest::QueueEvents;
using tresktest::step;
using tresktest::steps;
using tresktest::timeLogged;
using tresktest::ValidatedDocuments;
using tresktest::verdicts;

/// Emptying and filling a queue while it works, and the time that it logs.
class TestValidationQueueControl : public QObject, protected ValidatedDocuments {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void cancelAtAnyStep();
    void cancelForgetsTheProgress();
    void cancelInSavedFile();
    void savedFileIsClosedAtTheEnd();
    void repopulateAtAnyStep();
    void repopulateWithAnotherDocument();
    void timeIsLoggedOnce();
    void timeIsNotTakenForEntriesThatAreAdded();
    void timeOfAnEmptyQueue();
    void timeAtTheEndOfTheObject();
    void noParser();
    void parserTakenAway();
    void cancelInSlot_data();
    void cancelInSlot();
    void addInSlot();
    void addInLastPercentage();
    void repopulateInSlot();
};

void TestValidationQueueControl::initTestCase()
{
    QVERIFY(openBoth());
}

void TestValidationQueueControl::cancelAtAnyStep()
{
    ValidationQueue queue(&m_parser, 20);
    QueueEvents events(queue);
    queue.repopulate(&m_parser);
    const QStringList whole = finish(queue, events);
    QVERIFY(whole.size() > 20);
    for (int count = 0; count < whole.size(); ++count) {
        queue.repopulate(&m_parser);
        QCOMPARE(steps(queue, events, count), whole.mid(0, count));
        queue.cancelValidation();
        QCOMPARE(events.take(), timeLogged);
        QCOMPARE(step(queue, events), nothingLeft);
        queue.addValidatees({0}, {0});
        QCOMPARE(verdicts(finish(queue, events)),
                 (QStringList{QStringLiteral("section 0 valid"), QStringLiteral("file 0 valid")}));
    }
}

void TestValidationQueueControl::cancelForgetsTheProgress()
{
    ValidationQueue queue(&m_parser, 10);
    QueueEvents events(queue);
    for (int count = 0; count < 3; ++count) {
        queue.addValidatees({0}, {});
        steps(queue, events, count);
        queue.cancelValidation();
        QCOMPARE(events.take(), QString());
        queue.addValidatees({0}, {});
        QCOMPARE(percentages(finish(queue, events)), (QList<int>{40, 80, 100}));
    }
}

void TestValidationQueueControl::cancelInSavedFile()
{
    const tresktest::MessageCapture messages;
    ValidationQueue queue(nullptr, 10);
    QueueEvents events(queue);
    queue.addValidatees({saved(30)});
    step(queue, events);
    queue.cancelValidation();
    queue.addValidatees({saved(40), saved(30)});
    const QStringList lines = finish(queue, events);
    QCOMPARE(lines.size(), 7);
    QCOMPARE(verdicts(lines).filter(QStringLiteral(" valid")).size(), 2);
    QCOMPARE(static_cast<int>(messages.messages().size()), 0);
}

void TestValidationQueueControl::savedFileIsClosedAtTheEnd()
{
    const SavedFile file = saved(30);
    ValidationQueue queue(nullptr, 20);
    queue.addValidatees({file, saved(40)});
    queue.process();
    if (!isOpen(file.path))
        QSKIP("open files cannot be listed here");
    QVERIFY(*isOpen(file.path));
    queue.process();
    QVERIFY(!*isOpen(file.path));
}

void TestValidationQueueControl::repopulateAtAnyStep()
{
    ValidationQueue queue(&m_parser, 20);
    QueueEvents events(queue);
    queue.repopulate(&m_parser);
    const QStringList whole = finish(queue, events);
    for (int count = 0; count < whole.size(); ++count) {
        queue.repopulate(&m_parser);
        steps(queue, events, count);
        queue.repopulate(&m_parser);
        QCOMPARE(events.take(), timeLogged);
        QCOMPARE(finish(queue, events), whole);
    }
}

void TestValidationQueueControl::repopulateWithAnotherDocument()
{
    ValidationQueue queue(&m_parser, 20);
    QueueEvents events(queue);
    queue.addValidatees({0, 1, 2}, {0});
    steps(queue, events, 3);
    queue.repopulate(&m_other);
    QCOMPARE(finish(queue, events),
             QStringList(QStringLiteral("file 0 valid | percent 100 d | ") + timeLogged
                         + QStringLiteral(" | done")));
    queue.addValidatees({0, 1, 2}, {0});
    QCOMPARE(finish(queue, events),
             QStringList(QStringLiteral("file 0 valid | percent 100 d | done")));
}

void TestValidationQueueControl::timeIsLoggedOnce()
{
    ValidationQueue queue(&m_other, 0);
    QueueEvents events(queue);
    queue.reset(&m_other);
    QCOMPARE(events.take(), QString());
    queue.reset(&m_other);
    QCOMPARE(events.take(), timeLogged);
    queue.addValidatees({0}, {});
    QVERIFY(
        step(queue, events)
            .endsWith(QStringLiteral("percent 100 d | ") + timeLogged + QStringLiteral(" | done")));
    QCOMPARE(step(queue, events), nothingLeft);
    queue.cancelValidation();
    QCOMPARE(events.take(), QString());
    queue.reset(&m_other);
    QCOMPARE(events.take(), QString());
    queue.cancelValidation();
    QCOMPARE(events.take(), timeLogged);
    queue.cancelValidation();
    QCOMPARE(events.take(), QString());
}

void TestValidationQueueControl::timeIsNotTakenForEntriesThatAreAdded()
{
    ValidationQueue queue(&m_parser, 0);
    QueueEvents events(queue);
    queue.addValidatees({0, 1}, {0});
    queue.addValidatees({saved(30)});
    QVERIFY(verdicts(finish(queue, events)).filter(QStringLiteral("finished")).isEmpty());
}

void TestValidationQueueControl::timeOfAnEmptyQueue()
{
    ValidationQueue queue(&m_parser, 0);
    QueueEvents events(queue);
    queue.reset(&m_parser);
    QCOMPARE(step(queue, events),
             QStringLiteral("percent -2147483648  | ") + timeLogged + QStringLiteral(" | done"));
}

void TestValidationQueueControl::timeAtTheEndOfTheObject()
{
    auto queue = std::make_unique<ValidationQueue>(&m_parser, 0);
    QueueEvents events(*queue);
    queue->repopulate(&m_parser);
    queue.reset();
    QCOMPARE(events.take(), timeLogged);
}

void TestValidationQueueControl::noParser()
{
    ValidationQueue queue(nullptr, 0);
    QueueEvents events(queue);
    queue.addValidatees({0, -1}, {0, -1});
    QCOMPARE(step(queue, events), nothingLeft);
    queue.repopulate(nullptr);
    queue.addValidatees({0}, {0});
    queue.addValidatees({saved(30)});
    const QStringList lines = finish(queue, events);
    QCOMPARE(percentages(lines), QList<int>{100});
    QCOMPARE(verdicts(lines).constLast(), timeLogged);
    queue.reset(&m_other);
    queue.addValidatees({0}, {0});
    QVERIFY(step(queue, events).startsWith(QStringLiteral("file 0 valid | percent 100 d")));
}

void TestValidationQueueControl::parserTakenAway()
{
    ValidationQueue queue(&m_parser, 10);
    QueueEvents events(queue);
    queue.repopulate(&m_parser);
    steps(queue, events, 3);
    queue.repopulate(nullptr);
    QCOMPARE(events.take(), timeLogged);
    queue.addValidatees({0}, {0});
    queue.addValidatees({saved(30)});
    const QStringList lines = finish(queue, events);
    QCOMPARE(percentages(lines), (QList<int>{33, 66, 100}));
    QVERIFY(lines.constLast().contains(QStringLiteral("saved 30 valid")));
}

void TestValidationQueueControl::cancelInSlot_data()
{
    QTest::addColumn<int>("blockSize");
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QString>("expected");
    const QString end = QStringLiteral(" | done");
    const QString none = QStringLiteral("percent -2147483648 ");
    QTest::newRow("percentage, first of three")
        << 10 << QStringLiteral("percent") << QStringLiteral("percent 20 a") + end;
    QTest::newRow("percentage, first of two")
        << 100 << QStringLiteral("percent") << QStringLiteral("file 0 valid | percent 50 a") + end;
    QTest::newRow("file") << 100 << QStringLiteral("file")
                          << QStringLiteral("file 0 valid | ") + none + QLatin1Char('a') + end;
}

void TestValidationQueueControl::cancelInSlot()
{
    QFETCH(int, blockSize);
    QFETCH(QString, signal);
    QFETCH(QString, expected);
    ValidationQueue queue(&m_parser, blockSize);
    QueueEvents events(queue);
    if (signal == QLatin1String("file"))
        connect(&queue, &ValidationQueue::fileProcessed, &queue,
                &ValidationQueue::cancelValidation);
    else
        connect(&queue, &ValidationQueue::percentFinishedChanged, &queue,
                &ValidationQueue::cancelValidation);
    queue.addValidatees({0, 2}, {});
    QCOMPARE(step(queue, events), expected);
    QCOMPARE(step(queue, events), nothingLeft);
}

void TestValidationQueueControl::addInSlot()
{
    ValidationQueue queue(&m_parser, 100);
    QueueEvents events(queue);
    connect(&queue, &ValidationQueue::fileProcessed, &queue, [&queue](int id) {
        if (id == 0)
            queue.addValidatees({2}, {});
    });
    queue.addValidatees({0}, {});
    QCOMPARE(finish(queue, events),
             (QStringList{QStringLiteral("file 0 valid | percent 50 a | more"),
                          QStringLiteral("file 2 valid | percent 100 c | done")}));
}

void TestValidationQueueControl::addInLastPercentage()
{
    // The queue does not become empty, so it goes on counting and timing.
    ValidationQueue queue(&m_other, 100);
    QueueEvents events(queue);
    int added = 0;
    connect(&queue, &ValidationQueue::percentFinishedChanged, &queue, [&](int percent) {
        if (percent == 100 && added++ == 0)
            queue.addValidatees({saved(10)});
    });
    queue.repopulate(&m_other);
    QCOMPARE(step(queue, events), QStringLiteral("file 0 valid | percent 100 d | more"));
    const QStringList lines = finish(queue, events);
    QCOMPARE(percentages(lines), QList<int>{100});
    QCOMPARE(verdicts(lines).constLast(), timeLogged);
}

void TestValidationQueueControl::repopulateInSlot()
{
    // The entry that is dropped after the signal is then the first of the new ones.
    ValidationQueue queue(&m_parser, 100000);
    QueueEvents events(queue);
    int filled = 0;
    connect(&queue, &ValidationQueue::fileProcessed, &queue, [&] {
        if (filled++ == 0)
            queue.repopulate(&m_parser);
    });
    queue.addValidatees({0}, {});
    QCOMPARE(
        verdicts(finish(queue, events)),
        (QStringList{QStringLiteral("file 0 valid"), QStringLiteral("file 0 valid"),
                     QStringLiteral("file 1 valid"), QStringLiteral("file 2 valid"), timeLogged}));
}

QTEST_GUILESS_MAIN(TestValidationQueueControl)

#include "tst_validationqueue_control.moc"
