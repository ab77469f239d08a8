#include "DocumentWriter.h"
#include "EmbeddedFiles.h"
#include "MessageCapture.h"
#include "QueueDocuments.h"
#include "QueueEvents.h"
#include "TestFiles.h"

#include <tresk/ExtractionQueue.h>
#include <tresk/TreskParser.h>

#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <limits>

using tresk::ExtractionQueue;
using tresktest::counted;
using tresktest::deflated;
using tresktest::FileSpec;
using tresktest::finish;
using tresktest::flate;
using tresktest::MessageCapture;
using tresktest::nothingLeft;
using tresktest::percentages;
using tresktest::plain;
using tresktest::QueueDocuments;
using tresktest::QueueEvents;
using tresktest::readFile;
using tresktest::step;
using tresktest::storedAs;
using tresktest::twoLines;
using tresktest::verdicts;
using tresktest::withWrongChecksum;

Q_DECLARE_METATYPE(tresktest::FileSpec)

/// What fails, what is said of it, and how the queue goes on.
class TestExtractionQueueFaults : public QObject, protected QueueDocuments {
    Q_OBJECT

private Q_SLOTS:
    void notReadable_data();
    void notReadable();
    void notReadableFromTheSecondBlock();
    void damagedStream_data();
    void damagedStream();
    void damageInTheSecondBlock();
    void notWritable_data();
    void notWritable();
    void emptyFileIsNotWritable();
    void firstFaultIsReported();
    void nextFileIsExtracted();
    void restOfAFailedFileCounts();
    void lastFailureLeavesTheTotals();
    void addedAfterTheLastFailure();
    void cancelAfterTheLastFailure();
    void onlyFailures();
    void cancelInSlot_data();
    void cancelInSlot();
    void pathWithPlaceholders();

private:
    QString unwritable() const { return m_dir.path(QStringLiteral("missing/target")); }
};

void TestExtractionQueueFaults::notReadable_data()
{
    QTest::addColumn<FileSpec>("file");
    const QByteArray largest = QByteArray::number(std::numeric_limits<int>::max());
    QTest::newRow("size beyond the document") << plain(twoLines).with("filesize", "1000");
    QTest::newRow("largest size") << plain(twoLines).with("filesize", largest);
    QTest::newRow("no size") << plain(twoLines).with("filesize", "");
    QTest::newRow("no size, no content") << plain("").with("filesize", "");
    QTest::newRow("start outside the document") << plain(twoLines).with("offset", "100000");
    QTest::newRow("start beyond the range of int") << plain(twoLines).with("offset", largest);
    QTest::newRow("largest offset and size")
        << plain(twoLines).with("offset", largest).with("filesize", largest);
    QTest::newRow("stored size beyond the document") << flate(twoLines).with("cfilesize", "1000");
    QTest::newRow("no stored size") << flate(twoLines).with("cfilesize", "");
}

void TestExtractionQueueFaults::notReadable()
{
    QFETCH(FileSpec, file);
    QVERIFY(open({file}));
    m_dir.write(QStringLiteral("target 0"), "there before");
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, target(0)}});
    QCOMPARE(
        finish(queue, events),
        QStringList(
            QStringLiteral("log 2 Could not read from file %1 | failed 0 | done").arg(target(0))));
    QCOMPARE(readFile(target(0)), QByteArray());
}

void TestExtractionQueueFaults::notReadableFromTheSecondBlock()
{
    const QByteArray content = counted(150000);
    QVERIFY(open({plain(content).with("filesize", "200000")}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, target(0)}});
    QCOMPARE(
        finish(queue, events),
        (QStringList{
            QStringLiteral("percent 50 %1 | more").arg(target(0)),
            QStringLiteral("log 2 Could not read from file %1 | failed 0 | done").arg(target(0))}));
    QVERIFY(readFile(target(0)) == content.left(100000));
}

void TestExtractionQueueFaults::damagedStream_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("no stream") << twoLines;
    QTest::newRow("two bytes") << QByteArray("xx");
    QTest::newRow("wrong checksum") << withWrongChecksum(twoLines);
    QTest::newRow("raw deflate data") << deflated(twoLines).mid(2).chopped(4);
    QTest::newRow("fault behind 3 MB") << withWrongChecksum(QByteArray(3000000, 'x'));
}

void TestExtractionQueueFaults::damagedStream()
{
    // Of the block with the fault nothing is written, however late in it the fault is.
    QFETCH(QByteArray, stored);
    QVERIFY(open({storedAs(flate(twoLines), stored)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, target(0)}});
    QCOMPARE(
        finish(queue, events),
        QStringList(QStringLiteral("log 2 Could not decompress data from file %1 | failed 0 | done")
                        .arg(target(0))));
    QCOMPARE(readFile(target(0)), QByteArray());
}

void TestExtractionQueueFaults::damageInTheSecondBlock()
{
    const QByteArray content = counted(300000);
    const QByteArray stored = withWrongChecksum(content);
    QVERIFY(stored.size() > 100000 && stored.size() < 200000);
    QVERIFY(open({storedAs(flate(content), stored)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, target(0)}});
    QVERIFY(step(queue, events).endsWith(QStringLiteral("more")));
    const QByteArray before = readFile(target(0));
    QVERIFY(!before.isEmpty() && content.startsWith(before));
    QCOMPARE(step(queue, events),
             QStringLiteral("log 2 Could not decompress data from file %1 | failed 0 | done")
                 .arg(target(0)));
    QVERIFY(readFile(target(0)) == before);
}

void TestExtractionQueueFaults::notWritable_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing folder") << unwritable();
    QTest::newRow("folder") << QDir(m_dir.path(QStringLiteral("."))).absolutePath();
    QTest::newRow("no name") << QString();
    if (QFileInfo::exists(QStringLiteral("/dev/full")))
        QTest::newRow("full disk") << QStringLiteral("/dev/full");
}

void TestExtractionQueueFaults::notWritable()
{
    QFETCH(QString, path);
    const MessageCapture quiet;
    QVERIFY(open({plain(counted(150000)), flate(twoLines)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, path}, {1, path}});
    const QString message = QStringLiteral("log 2 Could not write to file file %1 | ").arg(path);
    QCOMPARE(finish(queue, events),
             (QStringList{message + QStringLiteral("failed 0 | more"),
                          message + QStringLiteral("failed 1 | done")}));
}

void TestExtractionQueueFaults::emptyFileIsNotWritable()
{
    const MessageCapture quiet;
    QVERIFY(open({plain("")}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, unwritable()}});
    QCOMPARE(step(queue, events),
             QStringLiteral("log 2 Could not write to file file %1 | failed 0 | done")
                 .arg(unwritable()));
}

void TestExtractionQueueFaults::firstFaultIsReported()
{
    const MessageCapture quiet;
    QVERIFY(open({storedAs(flate(twoLines), twoLines),
                  storedAs(flate(twoLines), twoLines).with("offset", "99999")}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, unwritable()}, {1, unwritable()}});
    QCOMPARE(finish(queue, events),
             (QStringList{
                 QStringLiteral("log 2 Could not decompress data from file %1 | failed 0 | more")
                     .arg(unwritable()),
                 QStringLiteral("log 2 Could not read from file %1 | failed 1 | done")
                     .arg(unwritable())}));
}

void TestExtractionQueueFaults::nextFileIsExtracted()
{
    const MessageCapture quiet;
    const QByteArray content = counted(150000);
    QVERIFY(open({storedAs(flate(twoLines), twoLines), plain(twoLines).with("filesize", "900000"),
                  plain(twoLines), flate(content)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, target(0)}, {1, target(1)}, {2, unwritable()}, {3, target(3)}});
    const QStringList lines = finish(queue, events);
    QCOMPARE(verdicts(lines).filter(QStringLiteral("failed")).size(), 3);
    QCOMPARE(verdicts(lines).constLast(), QStringLiteral("written 3"));
    QCOMPARE(percentages(lines), QList<int>{100});
    QVERIFY(readFile(target(3)) == content);
}

void TestExtractionQueueFaults::restOfAFailedFileCounts()
{
    const QByteArray content = counted(250000);
    QVERIFY(open({storedAs(flate(content), content), plain(content)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, target(0)}, {1, target(1)}});
    const QStringList lines = finish(queue, events);
    QCOMPARE(percentages(lines), (QList<int>{70, 90, 100}));
    QVERIFY(!lines.constFirst().contains(QStringLiteral("percent")));
    QVERIFY(readFile(target(1)) == content);
}

void TestExtractionQueueFaults::lastFailureLeavesTheTotals()
{
    QVERIFY(open({plain(twoLines), storedAs(flate(twoLines), twoLines)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, target(0)}, {1, target(1)}});
    QCOMPARE(step(queue, events),
             QStringLiteral("written 0 | percent 50 %1 | more").arg(target(0)));
    QCOMPARE(step(queue, events),
             QStringLiteral("log 2 Could not decompress data from file %1 | failed 1 | done")
                 .arg(target(1)));
    QCOMPARE(step(queue, events), QStringLiteral("percent 100  | done"));
    QCOMPARE(step(queue, events), nothingLeft);
}

void TestExtractionQueueFaults::addedAfterTheLastFailure()
{
    const QByteArray content = counted(250000);
    QVERIFY(open({storedAs(flate(content), content), plain(content)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, target(0)}});
    finish(queue, events);
    queue.addExtractees({{1, target(1)}});
    QCOMPARE(percentages(finish(queue, events)), (QList<int>{70, 90, 100}));
    queue.addExtractees({{1, target(1)}});
    QCOMPARE(percentages(finish(queue, events)), (QList<int>{40, 80, 100}));
}

void TestExtractionQueueFaults::cancelAfterTheLastFailure()
{
    QVERIFY(open({storedAs(flate(twoLines), twoLines)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, target(0)}});
    finish(queue, events);
    queue.cancelExtraction();
    QCOMPARE(step(queue, events), nothingLeft);
}

void TestExtractionQueueFaults::onlyFailures()
{
    QVERIFY(open({storedAs(flate(twoLines), twoLines), storedAs(flate(twoLines), twoLines)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, target(0)}, {1, target(1)}});
    QCOMPARE(percentages(finish(queue, events)), QList<int>());
    QCOMPARE(step(queue, events), QStringLiteral("percent 100  | done"));
}

void TestExtractionQueueFaults::cancelInSlot_data()
{
    QTest::addColumn<bool>("isOfMessage");
    QTest::newRow("of the message") << true;
    QTest::newRow("of the result") << false;
}

void TestExtractionQueueFaults::cancelInSlot()
{
    QFETCH(bool, isOfMessage);
    QVERIFY(open({storedAs(flate(twoLines), twoLines), plain(twoLines)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    if (isOfMessage)
        connect(&queue, &ExtractionQueue::log, &queue, &ExtractionQueue::cancelExtraction);
    else
        connect(&queue, &ExtractionQueue::fileProcessed, &queue,
                &ExtractionQueue::cancelExtraction);
    const QString path = m_dir.path(QStringLiteral("never written"));
    queue.addExtractees({{0, target(0)}, {1, path}});
    QVERIFY(step(queue, events).endsWith(QStringLiteral("failed 0 | done")));
    QCOMPARE(step(queue, events), nothingLeft);
    QVERIFY(!QFileInfo::exists(path));
}

void TestExtractionQueueFaults::pathWithPlaceholders()
{
    const MessageCapture quiet;
    const QString path = unwritable() + QStringLiteral("100%1%2");
    QVERIFY(open({plain(twoLines)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, path}});
    QCOMPARE(verdicts({step(queue, events)}).constFirst(),
             QStringLiteral("log 2 Could not write to file file ") + path);
}

QTEST_GUILESS_MAIN(TestExtractionQueueFaults)

#include "tst_extractionqueue_faults.moc"
