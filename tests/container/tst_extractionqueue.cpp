#include "DocumentWriter.h"
#include "EmbeddedFiles.h"
#include "QueueDocuments.h"
#include "QueueEvents.h"
#include "TestFiles.h"

#include <tresk/ExtractionQueue.h>
#include <tresk/TreskParser.h>

#include <QFileInfo>
#include <QTest>

#include <limits>

using tresk::ExtractionQueue;
using tresktest::counted;
using tresktest::deflated;
using tresktest::FileSpec;
using tresktest::finish;
using tresktest::flate;
using tresktest::isOpen;
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

namespace {

const int largest = std::numeric_limits<int>::max();

} // namespace

Q_DECLARE_METATYPE(tresktest::FileSpec)

/// Embedded files written to disk step by step.
class TestExtractionQueue : public QObject, protected QueueDocuments {
    Q_OBJECT

private Q_SLOTS:
    void written_data();
    void written();
    void carriageReturns();
    void emptyQueue();
    void plainSteps();
    void storedBytesAreCounted();
    void percentagesOverAllFiles();
    void emptyFiles();
    void orderOfTheDocument();
    void idsThatAreNotThere();
    void addedTwice();
    void targetIsReplaced();
    void targetOfTwoFiles();
    void blocksAreWrittenAtOnce();
    void targetIsClosedAtTheEnd();
};

void TestExtractionQueue::written_data()
{
    QTest::addColumn<FileSpec>("file");
    QTest::addColumn<QByteArray>("expected");
    const QByteArray stream = deflated(twoLines);
    const QByteArray large = counted(350000);
    const QByteArray other(32, 'a');
    QTest::newRow("plain") << plain(twoLines) << twoLines;
    QTest::newRow("plain, empty") << plain("") << QByteArray();
    QTest::newRow("plain, one block") << plain(large.left(100000)) << large.left(100000);
    QTest::newRow("plain, several blocks") << plain(large) << large;
    QTest::newRow("flate") << flate(twoLines) << twoLines;
    QTest::newRow("flate, empty") << flate("") << QByteArray();
    QTest::newRow("flate, several blocks") << flate(large) << large;
    QTest::newRow("flate, not compressed") << storedAs(flate(large), deflated(large, 0)) << large;
    QTest::newRow("flate, 3 MB in one block")
        << flate(QByteArray(3000000, 'x')) << QByteArray(3000000, 'x');
    QTest::newRow("flate, 1 MiB") << flate(QByteArray(1 << 20, 'x')) << QByteArray(1 << 20, 'x');
    QTest::newRow("plain, other stored size") << plain(twoLines).with("cfilesize", "1") << twoLines;
    QTest::newRow("flate, other size") << flate(twoLines).with("filesize", "1") << twoLines;
    QTest::newRow("unknown compression")
        << storedAs(plain(twoLines), stream + large).with("compression", "gzip")
        << (stream + large).left(twoLines.size());
    // Checksums are not compared.
    QTest::newRow("plain, digests that are wrong")
        << plain(twoLines).with("md5file", other).with("md5cfile", other) << twoLines;
    QTest::newRow("plain, no digest") << plain(twoLines).with("md5file", "") << twoLines;
    QTest::newRow("flate, digests that are wrong")
        << flate(twoLines).with("md5file", other).with("md5cfile", other) << twoLines;
    QTest::newRow("flate, no digest") << flate(twoLines).with("md5file", "") << twoLines;
    QTest::newRow("flate without digest of stored bytes is copied as stored")
        << flate(twoLines).with("md5cfile", "") << stream;
    QTest::newRow("no stream, without digest of stored bytes")
        << storedAs(flate(twoLines), twoLines).with("md5cfile", "") << twoLines;
    // That a stream breaks off is not noticed.
    QTest::newRow("flate, no checksum") << storedAs(flate(twoLines), stream.chopped(4)) << twoLines;
    QTest::newRow("flate, broken off")
        << storedAs(flate(large), deflated(large, 0).left(40000)) << large.left(40000 - 7);
    QTest::newRow("flate, nothing stored") << storedAs(flate(twoLines), "") << QByteArray();
    QTest::newRow("flate, stored size 0") << flate(twoLines).with("cfilesize", "0") << QByteArray();
    QTest::newRow("flate, bytes behind the stream")
        << storedAs(flate(twoLines), stream + "rest") << twoLines;
    QTest::newRow("flate, blocks behind the stream")
        << storedAs(flate(twoLines), stream + large) << twoLines;
    // Nothing can be read everywhere.
    QTest::newRow("empty, start outside the document")
        << plain("").with("offset", "100000") << QByteArray();
    QTest::newRow("empty, start beyond the range of int")
        << plain("").with("offset", QByteArray::number(largest)) << QByteArray();
}

void TestExtractionQueue::written()
{
    QFETCH(FileSpec, file);
    QFETCH(QByteArray, expected);
    QVERIFY(open({file, plain("behind")}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees(targets(2));
    const QStringList lines = finish(queue, events);
    QCOMPARE(verdicts(lines),
             (QStringList{QStringLiteral("written 0"), QStringLiteral("written 1")}));
    QCOMPARE(percentages(lines).constLast(), 100);
    QVERIFY(readFile(target(0)) == expected);
    QCOMPARE(readFile(target(1)), QByteArray("behind"));
}

void TestExtractionQueue::carriageReturns()
{
    QVERIFY(open(m_parser, {plain(twoLines), flate(twoLines)}, "\r\n"));
    ExtractionQueue queue(&m_parser);
    queue.addExtractees(targets(2));
    while (queue.process()) { }
    QCOMPARE(readFile(target(0)), twoLines);
    QCOMPARE(readFile(target(1)), twoLines);
}

void TestExtractionQueue::emptyQueue()
{
    QVERIFY(open({plain(twoLines)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    QCOMPARE(step(queue, events), nothingLeft);
    queue.addExtractees({});
    QCOMPARE(step(queue, events), nothingLeft);
}

void TestExtractionQueue::plainSteps()
{
    QVERIFY(open({plain(counted(250000))}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees(targets(1));
    QCOMPARE(finish(queue, events),
             (QStringList{QStringLiteral("percent 40 %1 | more").arg(target(0)),
                          QStringLiteral("percent 80 %1 | more").arg(target(0)),
                          QStringLiteral("written 0 | percent 100 %1 | done").arg(target(0))}));
}

void TestExtractionQueue::storedBytesAreCounted()
{
    const QByteArray content = counted(300000);
    const auto stored = static_cast<int>(deflated(content).size());
    QVERIFY(stored > 100000 && stored < 200000);
    QVERIFY(open({flate(content)}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees(targets(1));
    QCOMPARE(percentages(finish(queue, events)), (QList<int>{10000000 / stored, 100}));
}

void TestExtractionQueue::percentagesOverAllFiles()
{
    QVERIFY(open({plain(counted(150000)), plain(counted(50000)), plain(counted(100000))}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees(targets(3));
    const QStringList lines = finish(queue, events);
    QCOMPARE(percentages(lines), (QList<int>{33, 50, 66, 100}));
    QVERIFY(lines.at(2).contains(target(1)));
}

void TestExtractionQueue::emptyFiles()
{
    QVERIFY(open({plain(""), plain("ab"), plain("")}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees(targets(3));
    QCOMPARE(percentages(finish(queue, events)), (QList<int>{0, 100, 100}));
    queue.addExtractees(targets(1));
    QCOMPARE(step(queue, events),
             QStringLiteral("written 0 | percent -2147483648 %1 | done").arg(target(0)));
}

void TestExtractionQueue::orderOfTheDocument()
{
    QVector<FileSpec> files;
    QStringList expected;
    for (int id = 0; id < 40; ++id) {
        files.append(plain(QByteArray::number(id)));
        expected.append(QStringLiteral("written %1").arg(id));
    }
    QVERIFY(open(files));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees(targets(40));
    QCOMPARE(verdicts(finish(queue, events)), expected);
    for (int id = 0; id < 40; ++id)
        QCOMPARE(readFile(target(id)), QByteArray::number(id));
}

void TestExtractionQueue::idsThatAreNotThere()
{
    QVERIFY(open({plain("a"), plain("b")}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    const QString unused = m_dir.path(QStringLiteral("unused"));
    const int smallest = std::numeric_limits<int>::min();
    queue.addExtractees({{-1, unused}, {2, unused}, {largest, unused}, {smallest, unused}});
    QCOMPARE(step(queue, events), nothingLeft);
    queue.addExtractees({{-1, unused}, {1, target(1)}, {2, unused}});
    QCOMPARE(verdicts(finish(queue, events)), QStringList(QStringLiteral("written 1")));
    QVERIFY(!QFileInfo::exists(unused));
}

void TestExtractionQueue::addedTwice()
{
    QVERIFY(open({plain("a"), plain("b")}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{1, target(1)}});
    queue.addExtractees({{0, target(0)}, {1, target(2)}});
    const QStringList lines = finish(queue, events);
    QCOMPARE(verdicts(lines),
             (QStringList{QStringLiteral("written 1"), QStringLiteral("written 0"),
                          QStringLiteral("written 1")}));
    QCOMPARE(percentages(lines), (QList<int>{33, 66, 100}));
    QCOMPARE(readFile(target(2)), QByteArray("b"));
}

void TestExtractionQueue::targetIsReplaced()
{
    QVERIFY(open({plain("short")}));
    m_dir.write(QStringLiteral("target 0"), counted(5000));
    ExtractionQueue queue(&m_parser);
    queue.addExtractees(targets(1));
    queue.process();
    QCOMPARE(readFile(target(0)), QByteArray("short"));
}

void TestExtractionQueue::targetOfTwoFiles()
{
    QVERIFY(open({plain(counted(250000)), plain("last")}));
    ExtractionQueue queue(&m_parser);
    QueueEvents events(queue);
    queue.addExtractees({{0, target(0)}, {1, target(0)}});
    QCOMPARE(verdicts(finish(queue, events)),
             (QStringList{QStringLiteral("written 0"), QStringLiteral("written 1")}));
    QCOMPARE(readFile(target(0)), QByteArray("last"));
}

void TestExtractionQueue::blocksAreWrittenAtOnce()
{
    const QByteArray content = counted(200010);
    QVERIFY(open({plain(content)}));
    ExtractionQueue queue(&m_parser);
    queue.addExtractees(targets(1));
    QVERIFY(queue.process());
    QVERIFY(readFile(target(0)) == content.left(100000));
    QVERIFY(queue.process());
    QVERIFY(readFile(target(0)) == content.left(200000));
    QVERIFY(!queue.process());
    QVERIFY(readFile(target(0)) == content);
}

void TestExtractionQueue::targetIsClosedAtTheEnd()
{
    QVERIFY(open({plain(counted(200000)), plain(counted(200000))}));
    ExtractionQueue queue(&m_parser);
    queue.addExtractees(targets(2));
    queue.process();
    if (!isOpen(target(0)))
        QSKIP("open files cannot be listed here");
    QVERIFY(*isOpen(target(0)));
    queue.process();
    QVERIFY(!*isOpen(target(0)));
    queue.process();
    QVERIFY(*isOpen(target(1)));
    queue.cancelExtraction();
    QVERIFY(!*isOpen(target(1)));
}

QTEST_GUILESS_MAIN(TestExtractionQueue)

#include "tst_extractionqueue.moc"
