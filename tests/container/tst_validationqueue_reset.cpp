#include "DocumentWriter.h"
#include "QueueDocuments.h"
#include "QueueEvents.h"

#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QTest>

using tresk::TreskParser;
using tresk::ValidationQueue;
using tresktest::DocumentWriter;
using tresktest::finish;
using tresktest::percentages;
using tresktest::QueueEvents;
using tresktest::SectionSpec;
using tresktest::step;
using tresktest::steps;
using tresktest::timeLogged;
using tresktest::ValidatedDocuments;
using tresktest::verdicts;

/// reset() in the middle of an entry keeps the place that was reached.
class TestValidationQueueReset : public QObject, protected ValidatedDocuments {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void resetEmptiesTheQueue();
    void resetKeepsThePlaceInAFile();
    void resetKeepsThePlaceForOtherEntries();
    void resetKeepsThePlaceBeyondTheEnd();
    void resetKeepsThePlaceInASection_data();
    void resetKeepsThePlaceInASection();
    void resetForgetsThatATagWasFed();
    void resetKeepsThePlaceInASavedFile();
    void resetThenEmptyStep();
};

void TestValidationQueueReset::initTestCase()
{
    QVERIFY(openBoth());
}

void TestValidationQueueReset::resetEmptiesTheQueue()
{
    ValidationQueue queue(&m_parser, 10);
    QueueEvents events(queue);
    queue.addValidatees({0, 1, 2}, {0});
    queue.reset(&m_parser);
    queue.addValidatees({2}, {});
    const QStringList lines = finish(queue, events);
    QCOMPARE(percentages(lines), (QList<int>{40, 80, 100}));
    QCOMPARE(verdicts(lines), (QStringList{QStringLiteral("file 2 valid"), timeLogged}));
}

void TestValidationQueueReset::resetKeepsThePlaceInAFile()
{
    // What was hashed of it counts, but not as progress.
    ValidationQueue queue(&m_parser, 10);
    QueueEvents events(queue);
    queue.addValidatees({0}, {});
    step(queue, events);
    queue.reset(&m_parser);
    queue.addValidatees({0, 2}, {});
    const QStringList lines = finish(queue, events);
    QCOMPARE(percentages(lines), (QList<int>{20, 30, 50, 70, 80}));
    QCOMPARE(
        verdicts(lines),
        (QStringList{QStringLiteral("file 0 valid"), QStringLiteral("file 2 valid"), timeLogged}));
}

void TestValidationQueueReset::resetKeepsThePlaceForOtherEntries()
{
    ValidationQueue queue(&m_parser, 10);
    QueueEvents events(queue);
    queue.addValidatees({0}, {});
    step(queue, events);
    queue.reset(&m_parser);
    queue.addValidatees({saved(30)});
    queue.addValidatees({0}, {});
    const QStringList lines = finish(queue, events);
    QCOMPARE(lines.size(), 5);
    QVERIFY(lines.at(1).contains(QStringLiteral("saved 30 invalid")));
    QVERIFY(lines.at(4).contains(QStringLiteral("file 0 valid")));

    // The digest that is expected is still that of the first, and so are its bytes.
    queue.addValidatees({0}, {});
    step(queue, events);
    queue.reset(&m_parser);
    queue.addValidatees({2}, {});
    QCOMPARE(verdicts(finish(queue, events)).constFirst(), QStringLiteral("file 2 valid"));
}

void TestValidationQueueReset::resetKeepsThePlaceBeyondTheEnd()
{
    ValidationQueue queue(&m_parser, 20);
    QueueEvents events(queue);
    queue.addValidatees({0}, {});
    step(queue, events);
    queue.reset(&m_other);
    queue.addValidatees({0}, {});
    QVERIFY(step(queue, events).startsWith(QStringLiteral("file 0 invalid | percent -100 d | ")));
}

void TestValidationQueueReset::resetKeepsThePlaceInASection_data()
{
    QTest::addColumn<int>("blockSize");
    QTest::newRow("small blocks") << 20;
    QTest::newRow("one block on each side of the marker") << 100000;
}

void TestValidationQueueReset::resetKeepsThePlaceInASection()
{
    QFETCH(int, blockSize);
    ValidationQueue queue(&m_parser, blockSize);
    QueueEvents events(queue);
    queue.addValidatees({}, {0});
    const auto whole = static_cast<int>(finish(queue, events).size());
    QVERIFY(whole > 1);
    for (int count = 1; count < whole; ++count) {
        queue.addValidatees({}, {0});
        steps(queue, events, count);
        queue.reset(&m_parser);
        queue.addValidatees({}, {0});
        const QStringList lines = finish(queue, events);
        QCOMPARE(static_cast<int>(lines.size()), whole - count);
        QCOMPARE(verdicts(lines), (QStringList{QStringLiteral("section 0 valid"), timeLogged}));
    }
}

void TestValidationQueueReset::resetForgetsThatATagWasFed()
{
    // A region that ends at the place of its tag comes back there from behind it.
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec section;
    section.regionStart = 0;
    section.regionSize = doc.position() + 1;
    doc.writeSection(section);
    TreskParser parser;
    QVERIFY(parser.open(m_dir.write(QStringLiteral("region"), doc.bytes())));
    ValidationQueue queue(&parser, 0);
    QueueEvents events(queue);
    queue.addValidatees({}, {0});
    QCOMPARE(static_cast<int>(finish(queue, events).size()), 2);
    queue.addValidatees({}, {0});
    step(queue, events);
    queue.reset(&parser);
    queue.addValidatees({}, {0});
    const QStringList lines = finish(queue, events);
    QCOMPARE(static_cast<int>(lines.size()), 2);
    QVERIFY(lines.constLast().startsWith(QStringLiteral("section 0 invalid")));
}

void TestValidationQueueReset::resetKeepsThePlaceInASavedFile()
{
    // The file stays open and is read on.
    ValidationQueue queue(nullptr, 10);
    QueueEvents events(queue);
    queue.addValidatees({saved(30)});
    step(queue, events);
    queue.reset(nullptr);
    queue.addValidatees({saved(30)});
    const QStringList lines = finish(queue, events);
    QCOMPARE(percentages(lines), (QList<int>{33, 66}));
    QVERIFY(lines.constLast().contains(QStringLiteral("saved 30 valid")));
}

void TestValidationQueueReset::resetThenEmptyStep()
{
    ValidationQueue queue(&m_parser, 10);
    QueueEvents events(queue);
    queue.addValidatees({0}, {});
    step(queue, events);
    queue.reset(&m_parser);
    step(queue, events);
    queue.addValidatees({0}, {});
    QCOMPARE(percentages(finish(queue, events)), (QList<int>{40, 80, 100}));
}

QTEST_GUILESS_MAIN(TestValidationQueueReset)

#include "tst_validationqueue_reset.moc"
