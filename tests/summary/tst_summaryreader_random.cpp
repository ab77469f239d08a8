#include "DebugLines.h"
#include "RandomSummary.h"
#include "ReaderModel.h"
#include "SummaryText.h"

#include <tresk/SummaryReader.h>

#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

using tresk::SummaryReader;
using tresktest::ReaderModel;
using tresktest::textOf;

/// The reader beside its model, on texts put together and damaged at random.
class TestSummaryReaderRandom : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void summaries_data();
    void summaries();
    void damagedSummaries_data() { summaries_data(); }
    void damagedSummaries();
    void tags_data() { summaries_data(); }
    void tags();
    void textsReachEveryField();

private:
    void compare(const QString& text);
};

void TestSummaryReaderRandom::compare(const QString& text)
{
    ReaderModel model;
    const QStringList expected = textOf(model.readSummary(text));
    QStringList lines;
    QStringList actual;
    {
        const tresktest::MessageCapture capture;
        actual = textOf(SummaryReader().readSummary(text));
        lines = tresktest::debugLines(capture);
    }
    if (actual != expected || lines != model.debugLines())
        qWarning("the text was %s", qPrintable(tresktest::quotedOrNull(text)));
    QCOMPARE(actual, expected);
    QCOMPARE(lines, model.debugLines());
}

void TestSummaryReaderRandom::summaries_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 10; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void TestSummaryReaderRandom::summaries()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    for (int i = 0; i < 100; ++i) {
        compare(tresktest::randomSummary(random));
        if (QTest::currentTestFailed())
            return;
    }
}

void TestSummaryReaderRandom::damagedSummaries()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(1000 + seed);
    for (int i = 0; i < 150; ++i) {
        QString text = tresktest::randomSummary(random);
        tresktest::damage(text, random);
        compare(text);
        if (QTest::currentTestFailed())
            return;
    }
}

void TestSummaryReaderRandom::tags()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(2000 + seed);
    for (int i = 0; i < 700; ++i) {
        compare(tresktest::randomTags(random));
        if (QTest::currentTestFailed())
            return;
    }
}

void TestSummaryReaderRandom::textsReachEveryField()
{
    // The comparison says little about a field that the texts never set.
    const QStringList defaults = textOf(tresk::Summary()) + textOf(tresk::FileSummary());
    QStringList unset = defaults;
    bool list = false;
    int lines = 0;
    QRandomGenerator random(1);
    for (int i = 0; i < 500; ++i) {
        ReaderModel model;
        const QStringList text = textOf(model.readSummary(tresktest::randomSummary(random)));
        for (const QString& line : text) {
            const QString field = line.section(QLatin1Char(':'), 0, 0) + QLatin1Char(':');
            if (defaults.contains(line))
                continue;
            list = list || field == QLatin1String("  userAttributeUnits:");
            unset.erase(
                std::remove_if(unset.begin(), unset.end(),
                               [&](const QString& other) { return other.startsWith(field); }),
                unset.end());
        }
        lines += int(model.debugLines().size());
    }
    // What a reader does not set.
    const QStringList expected = {QStringLiteral("  tagId: -1"), QStringLiteral("  state: 1")};
    QCOMPARE(unset, expected);
    QVERIFY(list);
    QVERIFY(lines > 100);
}

QTEST_GUILESS_MAIN(TestSummaryReaderRandom)

#include "tst_summaryreader_random.moc"
