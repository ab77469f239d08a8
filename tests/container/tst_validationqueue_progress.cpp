#include "DocumentWriter.h"
#include "QueueDocuments.h"
#include "QueueEvents.h"

#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QTest>

#include <algorithm>
#include <limits>

using tresk::SavedFile;
using tresk::ValidationQueue;
using tresktest::DocumentWriter;
using tresktest::fileOf;
using tresktest::FileSpec;
using tresktest::finish;
using tresktest::percentages;
using tresktest::QueueDocuments;
using tresktest::QueueEvents;
using tresktest::SectionSpec;
using tresktest::step;
using tresktest::titled;
using tresktest::verdicts;
using tresktest::WrittenSection;

namespace {

const int smallest = std::numeric_limits<int>::min();
const int largest = std::numeric_limits<int>::max();

/// What is reported after each of @p counts bytes, of which there are @p total.
QList<int> shares(const QList<int>& counts, int total)
{
    QList<int> result;
    qint64 processed = 0;
    for (const int count : counts) {
        processed += count;
        result.append(static_cast<int>(processed * 100 / total));
    }
    return result;
}

/// @p length cut into blocks.
QList<int> blocks(int length, int blockSize)
{
    QList<int> result;
    for (int rest = length; rest > 0; rest -= blockSize)
        result.append(qMin(rest, blockSize));
    return result;
}

} // namespace

Q_DECLARE_METATYPE(tresktest::SectionSpec)

/// How an entry is cut into steps, and what is reported as finished after each.
class TestValidationQueueProgress : public QObject, protected QueueDocuments {
    Q_OBJECT

private Q_SLOTS:
    void fileSteps_data();
    void fileSteps();
    void blockSizeBelowOne_data();
    void blockSizeBelowOne();
    void sectionSteps_data();
    void sectionSteps();
    void sectionsEndBelowHundred();
    void percentagesNeverDecrease();
    void compressedFileCountsStoredBytes();
    void otherFilesCountContentBytes();
    void emptyFiles();
    void savedFileSteps();
    void addedWhileRunning();
    void totalsAreForgottenAtTheEnd();
    void outsideTheRangeOfInt_data();
    void outsideTheRangeOfInt();
    void sumsBeyondTheRangeOfInt();
    void roundedTowardsZero();
};

void TestValidationQueueProgress::fileSteps_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("blockSize");
    QTest::addColumn<QList<int>>("expected");
    QTest::newRow("one block") << 10 << 10 << QList<int>{100};
    QTest::newRow("less than a block") << 10 << 11 << QList<int>{100};
    QTest::newRow("a block and a byte") << 11 << 10 << QList<int>{90, 100};
    QTest::newRow("three blocks") << 9 << 3 << QList<int>{33, 66, 100};
    QTest::newRow("bytes") << 3 << 1 << QList<int>{33, 66, 100};
    QTest::newRow("rounded down") << 1000 << 999 << QList<int>{99, 100};
    QTest::newRow("large") << 250000 << 100000 << QList<int>{40, 80, 100};
    QTest::newRow("largest block") << 250000 << largest << QList<int>{100};
}

void TestValidationQueueProgress::fileSteps()
{
    QFETCH(int, size);
    QFETCH(int, blockSize);
    QFETCH(QList<int>, expected);
    QVERIFY(open({fileOf("a", size)}));
    ValidationQueue queue(&m_parser, blockSize);
    QueueEvents events(queue);
    queue.addValidatees({0}, {});
    const QStringList lines = finish(queue, events);
    QCOMPARE(percentages(lines), expected);
    QCOMPARE(verdicts(lines), QStringList(QStringLiteral("file 0 valid")));
    QVERIFY(lines.constLast().startsWith(QStringLiteral("file 0 valid | percent 100 a | done")));
}

void TestValidationQueueProgress::blockSizeBelowOne_data()
{
    QTest::addColumn<int>("blockSize");
    QTest::newRow("0") << 0;
    QTest::newRow("-5") << -5;
    QTest::newRow("smallest") << smallest;
}

void TestValidationQueueProgress::blockSizeBelowOne()
{
    QFETCH(int, blockSize);
    QVERIFY(open({fileOf("a", 250000)}));
    ValidationQueue queue(&m_parser, blockSize);
    QueueEvents events(queue);
    queue.addValidatees({0}, {});
    QCOMPARE(percentages(finish(queue, events)), (QList<int>{40, 80, 100}));
}

void TestValidationQueueProgress::sectionSteps_data()
{
    QTest::addColumn<SectionSpec>("section");
    QTest::addColumn<int>("blockSize");
    SectionSpec middle = titled("middle");
    middle.files = {fileOf("a", 500)};
    middle.trailing = QByteArray(300, '%') + '\n';
    SectionSpec end = middle;
    end.trailing.clear();
    SectionSpec start = titled("start");
    start.trailing = middle.trailing;
    for (const int blockSize : {1, 2, 7, 100, 301, 100000}) {
        QTest::addRow("marker in the middle, %d", blockSize) << middle << blockSize;
        QTest::addRow("marker at the end, %d", blockSize) << end << blockSize;
        QTest::addRow("marker at the start, %d", blockSize) << start << blockSize;
    }
}

void TestValidationQueueProgress::sectionSteps()
{
    QFETCH(SectionSpec, section);
    QFETCH(int, blockSize);
    DocumentWriter doc;
    doc.writeHeader();
    const WrittenSection written = doc.writeSection(section);
    QVERIFY(open(doc));
    const int size = written.regionEnd - written.regionStart;
    const int left = written.lineStart + 1 - written.regionStart;
    const int rest = size - left - static_cast<int>(written.validationTag.size());

    ValidationQueue queue(&m_parser, blockSize);
    QueueEvents events(queue);
    queue.addValidatees({}, {0});
    const QStringList lines = finish(queue, events);
    QCOMPARE(percentages(lines), shares(blocks(left, blockSize) + blocks(rest, blockSize), size));
    QCOMPARE(verdicts(lines), QStringList(QStringLiteral("section 0 valid")));
}

void TestValidationQueueProgress::sectionsEndBelowHundred()
{
    DocumentWriter doc;
    doc.writeHeader();
    int total = 0;
    int tags = 0;
    for (const char* title : {"first", "second", "third"}) {
        const WrittenSection written = doc.writeSection(titled(title));
        total += written.regionEnd - written.regionStart;
        tags += static_cast<int>(written.validationTag.size());
    }
    QVERIFY(open(doc));
    ValidationQueue queue(&m_parser, 50);
    QueueEvents events(queue);
    queue.repopulate(&m_parser);
    const QList<int> numbers = percentages(finish(queue, events));
    QCOMPARE(numbers.constLast(), (total - tags) * 100 / total);
    QVERIFY(numbers.constLast() < 100);
}

void TestValidationQueueProgress::percentagesNeverDecrease()
{
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec section = titled("step");
    section.files = {fileOf("a", 300), FileSpec::flate(QStringLiteral("b"), QByteArray(9000, 'b'))};
    section.trailing = "%\n";
    doc.writeSection(section);
    doc.writeSection(section);
    QVERIFY(open(doc));
    ValidationQueue queue(&m_parser, 13);
    QueueEvents events(queue);
    queue.repopulate(&m_parser);
    const QList<int> numbers = percentages(finish(queue, events));
    QVERIFY(numbers.size() > 100);
    QVERIFY(std::is_sorted(numbers.cbegin(), numbers.cend()));
}

void TestValidationQueueProgress::compressedFileCountsStoredBytes()
{
    const QByteArray content(100000, 'x');
    const auto stored = static_cast<int>(tresktest::deflated(content).size());
    QVERIFY(open({FileSpec::flate(QStringLiteral("a"), content)}));
    ValidationQueue queue(&m_parser, 10);
    QueueEvents events(queue);
    queue.addValidatees({0}, {});
    QCOMPARE(percentages(finish(queue, events)), shares(blocks(stored, 10), stored));
}

void TestValidationQueueProgress::otherFilesCountContentBytes()
{
    // The stored size of what is not "flate" is never looked at.
    FileSpec unknown = fileOf("b", 10);
    unknown.compression = "gzip";
    QVERIFY(open({fileOf("a", 10).with("cfilesize", "3"), unknown.with("cfilesize", "")}));
    ValidationQueue queue(&m_parser, 5);
    QueueEvents events(queue);
    queue.addValidatees({0, 1}, {});
    const QStringList lines = finish(queue, events);
    QCOMPARE(percentages(lines), (QList<int>{25, 50, 75, 100}));
    QCOMPARE(verdicts(lines),
             (QStringList{QStringLiteral("file 0 valid"), QStringLiteral("file 1 valid")}));
}

void TestValidationQueueProgress::emptyFiles()
{
    QVERIFY(open({fileOf("a", 0), fileOf("b", 4), fileOf("c", 0)}));
    ValidationQueue queue(&m_parser, 10);
    QueueEvents events(queue);
    queue.addValidatees({0, 1, 2}, {});
    QCOMPARE(finish(queue, events),
             (QStringList{QStringLiteral("file 0 valid | percent 0 a | more"),
                          QStringLiteral("file 1 valid | percent 100 b | more"),
                          QStringLiteral("file 2 valid | percent 100 c | done")}));
    queue.addValidatees({0}, {});
    QCOMPARE(step(queue, events), QStringLiteral("file 0 valid | percent -2147483648 a | done"));
}

void TestValidationQueueProgress::savedFileSteps()
{
    // As many as its size takes, whatever is there.
    ValidationQueue queue(nullptr, 100000);
    QueueEvents events(queue);
    queue.addValidatees({SavedFile{m_dir.path(QStringLiteral("missing")), QString(), 250000}});
    QCOMPARE(percentages(finish(queue, events)), (QList<int>{40, 80, 100}));
}

void TestValidationQueueProgress::addedWhileRunning()
{
    QVERIFY(open({fileOf("a", 20), fileOf("b", 30)}));
    ValidationQueue queue(&m_parser, 10);
    QueueEvents events(queue);
    queue.addValidatees({0}, {});
    QCOMPARE(step(queue, events), QStringLiteral("percent 50 a | more"));
    queue.addValidatees({1}, {});
    QCOMPARE(
        finish(queue, events),
        (QStringList{QStringLiteral("file 0 valid | percent 40 a | more"),
                     QStringLiteral("percent 60 b | more"), QStringLiteral("percent 80 b | more"),
                     QStringLiteral("file 1 valid | percent 100 b | done")}));
}

void TestValidationQueueProgress::totalsAreForgottenAtTheEnd()
{
    QVERIFY(open({fileOf("a", 20), fileOf("b", 30)}));
    ValidationQueue queue(&m_parser, 10);
    QueueEvents events(queue);
    queue.addValidatees({1}, {});
    finish(queue, events);
    queue.addValidatees({0}, {});
    QCOMPARE(percentages(finish(queue, events)), (QList<int>{50, 100}));
}

void TestValidationQueueProgress::outsideTheRangeOfInt_data()
{
    QTest::addColumn<QList<int>>("sizes");
    QTest::addColumn<QList<int>>("expected");
    QTest::newRow("total 0") << QList<int>{5, -5} << QList<int>{smallest, smallest};
    QTest::newRow("nothing of nothing") << QList<int>{0} << QList<int>{smallest};
    QTest::newRow("largest") << QList<int>{21474836, -21474835} << QList<int>{2147483600, 100};
    QTest::newRow("too large") << QList<int>{21474837, -21474836} << QList<int>{smallest, 100};
    QTest::newRow("least") << QList<int>{21474836, -21474837} << QList<int>{-2147483600, 100};
    QTest::newRow("too small") << QList<int>{21474837, -21474838} << QList<int>{smallest, 100};
}

void TestValidationQueueProgress::outsideTheRangeOfInt()
{
    QFETCH(QList<int>, sizes);
    QFETCH(QList<int>, expected);
    ValidationQueue queue(nullptr, 30000000);
    QueueEvents events(queue);
    for (const int size : sizes)
        queue.addValidatees({SavedFile{m_dir.path(QStringLiteral("missing")), QString(), size}});
    QCOMPARE(percentages(finish(queue, events)), expected);
}

void TestValidationQueueProgress::sumsBeyondTheRangeOfInt()
{
    const SavedFile missing{m_dir.path(QStringLiteral("missing")), QString(), largest};
    ValidationQueue queue(nullptr, largest);
    QueueEvents events(queue);
    queue.addValidatees({missing, missing, missing, missing});
    QCOMPARE(percentages(finish(queue, events)), (QList<int>{25, 50, 75, 100}));
}

void TestValidationQueueProgress::roundedTowardsZero()
{
    // A size below 0 is done in one step and counts as it is.
    ValidationQueue queue(nullptr, 0);
    QueueEvents events(queue);
    const QString path = m_dir.path(QStringLiteral("missing"));
    queue.addValidatees({SavedFile{path, QString(), -1}, SavedFile{path, QString(), 1000}});
    QCOMPARE(percentages(finish(queue, events)), (QList<int>{0, 100}));
}

QTEST_GUILESS_MAIN(TestValidationQueueProgress)

#include "tst_validationqueue_progress.moc"
