#include "DocumentWriter.h"
#include "QueueDocuments.h"
#include "QueueEvents.h"

#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QTest>

#include <limits>

using tresk::SavedFile;
using tresk::ValidationQueue;
using tresktest::DocumentWriter;
using tresktest::fileOf;
using tresktest::finish;
using tresktest::md5Hex;
using tresktest::percentages;
using tresktest::percentEvent;
using tresktest::QueueDocuments;
using tresktest::QueueEvents;
using tresktest::SectionSpec;
using tresktest::step;
using tresktest::titled;
using tresktest::verdicts;

namespace {

const int smallest = std::numeric_limits<int>::min();
const int largest = std::numeric_limits<int>::max();

} // namespace

/// What is queued, and in which order.
class TestValidationQueue : public QObject, protected QueueDocuments {
    Q_OBJECT

private Q_SLOTS:
    void emptyQueue();
    void sectionsThenFiles();
    void names();
    void chosenIds_data();
    void chosenIds();
    void chosenTwice();
    void savedFiles();
    void documentAndSavedFiles();
};

void TestValidationQueue::emptyQueue()
{
    ValidationQueue queue(&m_parser, 0);
    QueueEvents events(queue);
    const QString expected = percentEvent(smallest, QString()) + QStringLiteral(" | done");
    QCOMPARE(step(queue, events), expected);
    QCOMPARE(step(queue, events), expected);
}

void TestValidationQueue::sectionsThenFiles()
{
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec first = titled("first");
    first.files = {fileOf("a", 10)};
    doc.writeSection(first);
    doc.writeSection(titled("second"));
    SectionSpec third = titled("third");
    third.files = {fileOf("b", 20)};
    doc.writeSection(third);
    QVERIFY(open(doc));

    ValidationQueue queue(&m_parser, 100000);
    QueueEvents events(queue);
    queue.repopulate(&m_parser);
    QCOMPARE(events.take(), QString());
    const QStringList lines = finish(queue, events);
    QCOMPARE(verdicts(lines),
             (QStringList{QStringLiteral("section 2 valid"), QStringLiteral("section 1 valid"),
                          QStringLiteral("section 0 valid"), QStringLiteral("file 0 valid"),
                          QStringLiteral("file 1 valid"),
                          QStringLiteral("log 0 validation finished: TIME")}));
    QCOMPARE(lines.size(), 5); // all markers end their regions
}

void TestValidationQueue::names()
{
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec untitled;
    untitled.files = {fileOf("b]c\\d", 10)};
    doc.writeSection(untitled);
    doc.writeSection(titled("a]\nb"));
    QVERIFY(open(doc));
    const QString path = m_dir.write(QStringLiteral("saved"), "abc");

    ValidationQueue queue(&m_parser, 0);
    QueueEvents events(queue);
    queue.addValidatees({0}, {0, 1});
    queue.addValidatees({SavedFile{path, QString(), 3}});
    const QStringList lines = finish(queue, events);
    const QStringList names = {QStringLiteral("<no title>"), QStringLiteral("a\\]\\nb"),
                               QStringLiteral("b\\]c\\\\d"), path};
    QCOMPARE(lines.size(), names.size());
    for (int i = 0; i < names.size(); ++i) {
        const QString event = percentEvent(percentages(lines).at(i), names.at(i));
        QVERIFY2(lines.at(i).contains(event + QStringLiteral(" | ")), qPrintable(lines.at(i)));
    }
}

void TestValidationQueue::chosenIds_data()
{
    QTest::addColumn<QList<int>>("fileIds");
    QTest::addColumn<QList<int>>("sectionIds");
    QTest::addColumn<QString>("expected");
    const QList<int> none;
    const auto row = [](const char* name, const QList<int>& files, const QList<int>& sections,
                        const char* expected) {
        QTest::newRow(name) << files << sections << QString::fromLatin1(expected);
    };
    row("nothing", none, none, "");
    row("files", {0, 2}, none, "file 0 valid,file 2 valid");
    row("files in another order", {2, 0, 1}, none, "file 0 valid,file 1 valid,file 2 valid");
    row("sections", none, {0, 1}, "section 1 valid,section 0 valid");
    row("one section", none, {0}, "section 0 valid");
    row("both", {1}, {1}, "section 1 valid,file 1 valid");
    row("repeated", {1, 1, 1}, {0, 0}, "section 0 valid,file 1 valid");
    row("not there", {3, -1, largest, smallest}, {2, -1, largest, smallest}, "");
    row("some not there", {3, 2, -1}, {-1, 1, 2}, "section 1 valid,file 2 valid");
}

void TestValidationQueue::chosenIds()
{
    QFETCH(QList<int>, fileIds);
    QFETCH(QList<int>, sectionIds);
    QFETCH(QString, expected);
    DocumentWriter doc;
    doc.writeHeader();
    SectionSpec section = titled("step");
    section.files = {fileOf("a", 10)};
    doc.writeSection(section);
    section.files = {fileOf("b", 10), fileOf("c", 10)};
    doc.writeSection(section);
    QVERIFY(open(doc));
    ValidationQueue queue(&m_parser, 0);
    QueueEvents events(queue);
    queue.addValidatees(fileIds, sectionIds);
    QCOMPARE(verdicts(finish(queue, events)).join(QLatin1Char(',')), expected);
}

void TestValidationQueue::chosenTwice()
{
    QVERIFY(open({fileOf("a", 10)}));
    ValidationQueue queue(&m_parser, 0);
    QueueEvents events(queue);
    queue.addValidatees({0}, {});
    queue.addValidatees({0}, {});
    QCOMPARE(finish(queue, events),
             (QStringList{QStringLiteral("file 0 valid | percent 50 a | more"),
                          QStringLiteral("file 0 valid | percent 100 a | done")}));
}

void TestValidationQueue::savedFiles()
{
    const QString good = m_dir.write(QStringLiteral("good"), "abc");
    const QString bad = m_dir.write(QStringLiteral("100%1"), "abd");
    const QString md5 = QString::fromLatin1(md5Hex("abc"));
    ValidationQueue queue(nullptr, 2);
    QueueEvents events(queue);
    queue.addValidatees({SavedFile{bad, md5, 3}, SavedFile{good, md5, 3}});
    const QStringList lines = finish(queue, events);
    QCOMPARE(lines,
             (QStringList{QStringLiteral("percent 33 ") + bad + QStringLiteral(" | more"),
                          QStringLiteral("saved ") + bad
                              + QStringLiteral(" invalid | log 0 Checksum of file ") + bad
                              + QStringLiteral(" is incorrect | percent 50 ") + bad
                              + QStringLiteral(" | more"),
                          QStringLiteral("percent 83 ") + good + QStringLiteral(" | more"),
                          QStringLiteral("saved ") + good
                              + QStringLiteral(" valid | log 0 Checksum of file ") + good
                              + QStringLiteral(" is correct | percent 100 ") + good
                              + QStringLiteral(" | done")}));
}

void TestValidationQueue::documentAndSavedFiles()
{
    QVERIFY(open({fileOf("a", 60)}));
    const QString path = m_dir.write(QStringLiteral("saved"), QByteArray(40, 'y'));
    const QString md5 = QString::fromLatin1(md5Hex(QByteArray(40, 'y')));
    ValidationQueue queue(&m_parser, 0);
    QueueEvents events(queue);
    queue.addValidatees({SavedFile{path, md5, 40}});
    queue.addValidatees({0}, {});
    const QStringList lines = finish(queue, events);
    QCOMPARE(percentages(lines), (QList<int>{40, 100}));
    QCOMPARE(verdicts(lines).constFirst(),
             QStringLiteral("saved ") + path + QStringLiteral(" valid"));
    QCOMPARE(verdicts(lines).constLast(), QStringLiteral("file 0 valid"));
}

QTEST_GUILESS_MAIN(TestValidationQueue)

#include "tst_validationqueue.moc"
