#include "DamageDocuments.h"
#include "DocumentWriter.h"
#include "Examination.h"
#include "Expectation.h"
#include "Mutation.h"
#include "Repair.h"
#include "TestFiles.h"

#include <QLoggingCategory>
#include <QSet>
#include <QTest>

#include <numeric>

using tresktest::DamageDocument;
using tresktest::damageDocuments;
using tresktest::Examination;
using tresktest::ExpectedDocument;
using tresktest::ExpectedFile;
using tresktest::fileMarkers;
using tresktest::MarkerText;
using tresktest::Mutation;
using tresktest::repaired;
using tresktest::sectionMarkers;
using tresktest::TestDir;

namespace {

#ifdef TRESK_SANITIZED
constexpr int damagesEach = 100; // each takes ten times as long
#else
constexpr int damagesEach = 250;
#endif

QByteArray documentNamed(const char* name)
{
    const QVector<DamageDocument> documents = damageDocuments();
    for (const DamageDocument& document : documents) {
        if (document.name == QLatin1String(name))
            return document.bytes;
    }
    return QByteArray();
}

/// Between @p count or a few less of the numbers below @p end. It shares no factor with the number
/// of mutations for each place, so that all kinds of them have their turn.
int distance(int end, int count)
{
    int distance = qMax(1, end / count);
    while (std::gcd(distance, Mutation::count(1)) != 1)
        ++distance;
    return distance;
}

} // namespace

/// Some of the damages that scripts/damage tries all of, and the means by which it does.
class TestDamageLoops : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void mutations();
    void names();
    void documents();
    void repairLeavesSoundDocuments();
    void repairReachesContents_data();
    void repairReachesContents();
    void repairFitsSizes();
    void damagedNumbers_data();
    void damagedNumbers();
    void damages_data();
    void damages();

private:
    QStringList failures(Examination& examination, const Mutation& mutation);

    TestDir m_dir;
};

void TestDamageLoops::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
}

void TestDamageLoops::mutations()
{
    const QByteArray document = "xyz";
    const QByteArray expected[] = {"x",    "xxz",  "x{z", "x}z",    "xqz",
                                   "xiz",  "xYz",  "x9z", "x\xf9z", QByteArray("x\0z", 3),
                                   "x\nz", "x\rz", "x-z", "x9z",    "x\xffz"};
    const int first = Mutation::count(1);
    QCOMPARE(first, 30);
    QCOMPARE(Mutation::count(3), 90);
    for (int i = 0; i < 15; ++i) {
        const Mutation plain = Mutation::numbered(first + 2 * i);
        const Mutation repairing = Mutation::numbered(first + 2 * i + 1);
        QCOMPARE(plain.applied(document), expected[i]);
        QCOMPARE(repairing.applied(document), expected[i]);
        QVERIFY(!plain.repairs() && repairing.repairs());
        QCOMPARE(plain.place(), 1);
        QCOMPARE(plain.cuts(), i == 0);
    }
    QCOMPARE(Mutation::numbered(3 * first).applied(document), document);
}

void TestDamageLoops::names()
{
    QCOMPARE(Mutation::numbered(0).name(), QStringLiteral("cut@0"));
    QCOMPARE(Mutation::numbered(30 * 12 + 2 * 8 + 1).name(), QStringLiteral("bit7@12+repair"));
    QCOMPARE(Mutation::numbered(30 * 7 + 2 * 10).name(), QStringLiteral("byte0a@7"));
    QSet<QString> all;
    for (int i = 0; i < Mutation::count(3); ++i) {
        const QString name = Mutation::numbered(i).name();
        const std::optional<Mutation> again = Mutation::named(name);
        QVERIFY(again);
        QCOMPARE(again->name(), name);
        all.insert(name);
    }
    QCOMPARE(int(all.size()), Mutation::count(3));
    for (const char* name :
         {"", "cut", "cut@", "cut@-1", "cut@x", "bit8@1", "byte41@1", "cut@1+repai", "plain"})
        QVERIFY2(!Mutation::named(QLatin1String(name)), name);
}

void TestDamageLoops::documents()
{
    QSet<QString> names;
    const QVector<DamageDocument> documents = damageDocuments();
    for (const DamageDocument& document : documents) {
        QVERIFY(document.bytes.size() >= 512);
        QVERIFY(document.bytes.size() <= tresktest::largestDamageDocument);
        QVERIFY(!sectionMarkers(document.bytes).isEmpty());
        names.insert(document.name);
    }
    QCOMPARE(int(names.size()), int(documents.size()));
    QVERIFY(names.contains(QStringLiteral("minimal.pdf")));
    QVERIFY(names.contains(QStringLiteral("damaged.pdf")));
}

void TestDamageLoops::repairLeavesSoundDocuments()
{
    for (const char* name : {"plain", "flate", "steps", "summaries", "nested", "names", "lines"})
        QCOMPARE(repaired(documentNamed(name)), documentNamed(name));
}

void TestDamageLoops::repairReachesContents_data()
{
    QTest::addColumn<QByteArray>("document");
    for (const char* name : {"plain", "flate", "summaries", "nested"})
        QTest::newRow(name) << documentNamed(name);
}

/// Each file can be changed so that it is right again after the repair, with another content.
void TestDamageLoops::repairReachesContents()
{
    QFETCH(QByteArray, document);
    const QVector<MarkerText> markers = fileMarkers(document);
    for (const MarkerText& marker : markers) {
        const ExpectedFile before(document, marker);
        QVERIFY(before.isValid());
        const int start = marker.pos + marker.tagLength + marker.number("offset");
        bool reached = false;
        for (int i = 0; i < marker.number("cfilesize") && !reached; ++i) {
            QByteArray damaged = document;
            damaged[start + i] = static_cast<char>(damaged.at(start + i) ^ 1);
            QVERIFY(!ExpectedFile(damaged, marker).isValid());
            const QByteArray fitting = repaired(damaged);
            ExpectedDocument expected(fitting);
            const ExpectedFile* after = expected.file(marker.pos - 1);
            reached = after && after->isValid()
                && after->checkedContent() != before.checkedContent();
            const QVector<MarkerText> sections = sectionMarkers(fitting);
            for (const MarkerText& section : sections)
                reached = reached && expected.section(section.pos - 1)->valid;
        }
        QVERIFY(reached);
    }
}

void TestDamageLoops::repairFitsSizes()
{
    // Breaks off in the middle of the second file, which has four bytes.
    const QByteArray document = documentNamed("plain");
    const MarkerText last = fileMarkers(document).constLast();
    const int start = last.pos + last.tagLength + last.number("offset");
    const QByteArray fitting = repaired(document.left(start + 2));
    QCOMPARE(fitting.size(), start + 2);
    ExpectedDocument expected(fitting);
    const ExpectedFile* file = expected.file(last.pos - 1);
    QVERIFY(file && file->isValid());
    QCOMPARE(file->marker().number("filesize"), 2);
    QCOMPARE(*file->content(), document.mid(start, 2));
}

/// What is wrong, with the name of the mutation in front.
QStringList TestDamageLoops::failures(Examination& examination, const Mutation& mutation)
{
    QStringList failures = examination.examine(mutation).value_or(QStringList());
    if (!failures.isEmpty())
        failures.prepend(mutation.name());
    return failures;
}

void TestDamageLoops::damagedNumbers_data()
{
    QTest::addColumn<QByteArray>("document");
    for (const char* name : {"flate", "empty"})
        QTest::newRow(name) << documentNamed(name);
}

/// All damages of what says how long files are and where: the rarest of them do most.
void TestDamageLoops::damagedNumbers()
{
    QFETCH(QByteArray, document);
    Examination examination(document, m_dir.path(QString()));
    const QVector<MarkerText> markers = fileMarkers(document);
    for (const MarkerText& marker : markers) {
        for (const char* key : {"filesize", "cfilesize", "offset"}) {
            const MarkerText::Field& field = marker.field(key);
            const int first = Mutation::count(field.place);
            const int end = Mutation::count(field.place + int(field.value.size()));
            for (int i = first; i < end; ++i)
                QCOMPARE(failures(examination, Mutation::numbered(i)), QStringList());
        }
    }
    QVERIFY(examination.numValid() > 0);
    QVERIFY(examination.numInvalid() > 0);
}

void TestDamageLoops::damages_data()
{
    QTest::addColumn<QByteArray>("document");
    const QVector<DamageDocument> documents = damageDocuments();
    for (const DamageDocument& document : documents)
        QTest::newRow(qPrintable(document.name)) << document.bytes;
}

void TestDamageLoops::damages()
{
    QFETCH(QByteArray, document);
    Examination examination(document, m_dir.path(QString()));
    const int end = Mutation::count(int(document.size()));
    for (int i = 0; i < end; i += distance(end, damagesEach))
        QCOMPARE(failures(examination, Mutation::numbered(i)), QStringList());
    QVERIFY(examination.numValid() > 0);
    QVERIFY(examination.numInvalid() > 0);
}

QTEST_GUILESS_MAIN(TestDamageLoops)

#include "tst_damageloops.moc"
