#include "Records.h"

#include <tresk/TreskFindQuery.h>

#include <QHash>
#include <QStringList>
#include <QTest>

using tresk::FileSummary;
using tresk::Summary;
using tresktest::found;
using tresktest::quoted;
using tresktest::stepsWithFiles;
using tresktest::stepTitled;
using tresktest::utf8;

/// Many records, names and conditions, and long texts.
class TestFindQueryLimits : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void manyRecords_data();
    void manyRecords();
    void joins_data();
    void joins();
    void joinOfMoreThanIsKept();
    void manyNames();
    void manyUnnamedRecords();
    void moreNamesThanRecords();
    void longValues_data();
    void longValues();
    void longConstants();
    void hostilePatterns_data();
    void hostilePatterns();
    void manyUserAttributes();
    void unpairedSurrogates();
    void alternativesThatAreNowhere();
    void moreNamesThanRecordsForThem();
    void lastNameNeedsTheFirstRecord();
};

namespace {

/// What @p query finds, as found() has it, but searched for once.
QString answerTo(const QString& query, const QList<Summary>& records)
{
    const tresk::TreskFindQuery findQuery(query);
    QHash<QString, QString> bindings;
    if (!findQuery.isValid())
        return utf8("invalid");
    return tresktest::textOf(findQuery.matches(records, &bindings), bindings);
}

/// Names that a query can give: "aaa", "aab", ...
QString name(int number)
{
    QString text;
    for (int i = 0; i < 3; ++i, number /= 26)
        text.prepend(QLatin1Char(char('a' + number % 26)));
    return text;
}

QString longText(const char* part)
{
    const QString unit = utf8(part);
    return unit.repeated(1000000 / int(unit.size()));
}

} // namespace

/// 5000 steps with eleven files each, so 60000 records.
void TestFindQueryLimits::manyRecords_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("result");
    const auto add = [](const char* query, const char* result) {
        QTest::newRow(query) << utf8(query) << utf8(result);
    };
    add("4999.10", "yes");
    add("nothing", "no");
    add("f:filename %matches '*9.12'", "no");
    add("s:title == 4999 && f:filename == 4999.10", "yes f=file:4999:10 s=wfs:4999");
    add("!f:isfile && f:title == 4999", "yes f=wfs:4999");
}

void TestFindQueryLimits::manyRecords()
{
    static const QList<Summary> records = stepsWithFiles(5000, 11);
    QFETCH(const QString, query);
    QFETCH(const QString, result);
    QCOMPARE(answerTo(query, records), result);
}

/// Of 200 steps with five files each only the last have the text that is looked for.
void TestFindQueryLimits::joins_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("result");
    const auto add = [](const char* query, const char* result) {
        QTest::newRow(query) << utf8(query) << utf8(result);
    };
    add("s:iswfs && f:isfile && s:tool == f:filepath", "yes f=file:199:4 s=wfs:199");
    add("f:isfile && s:iswfs && s:tool == f:filepath", "yes f=file:199:4 s=wfs:199");
    add("s:iswfs && f:isfile && s:tool == f:filetype", "no");
}

void TestFindQueryLimits::joins()
{
    static const QList<Summary> records = [] {
        QList<Summary> steps = stepsWithFiles(200, 5);
        for (int i = 0; i < steps.size(); ++i) {
            steps[i].tool = utf8("tool %1").arg(i);
            for (FileSummary& file : steps[i].files)
                file.filepath = file.filename;
        }
        steps.last().files.last().filepath = steps.last().tool;
        return steps;
    }();
    QFETCH(const QString, query);
    QFETCH(const QString, result);
    QCOMPARE(answerTo(query, records), result);
}

/// With so many conditions on so many records not all that is worked out is kept.
void TestFindQueryLimits::joinOfMoreThanIsKept()
{
    const QList<Summary> records = stepsWithFiles(60000, 0);
    QString query = utf8("a:title == 59998 && b:title == 59999");
    for (int i = 0; i < 40; ++i)
        query += utf8(" && a:title != b:title");
    QCOMPARE(answerTo(query + utf8(" && c:title == 7"), records),
             utf8("yes a=wfs:59998 b=wfs:59999 c=wfs:7"));
}

void TestFindQueryLimits::manyNames()
{
    const int count = 200;
    const QList<Summary> records = stepsWithFiles(count, 0);
    QStringList all;
    QStringList backwards;
    for (int i = 0; i < count; ++i) {
        all += name(i) + utf8(":iswfs");
        backwards += utf8("%1:title == %2").arg(name(i)).arg(count - 1 - i);
    }
    QString expected = utf8("yes");
    QString reverse = utf8("yes");
    for (int i = 0; i < count; ++i) {
        expected += utf8(" %1=wfs:%2").arg(name(i)).arg(i);
        reverse += utf8(" %1=wfs:%2").arg(name(i)).arg(count - 1 - i);
    }
    QCOMPARE(answerTo(all.join(QLatin1Char(' ')), records), expected);
    QCOMPARE(answerTo(backwards.join(QLatin1Char(' ')), records), reverse);
}

void TestFindQueryLimits::manyUnnamedRecords()
{
    const QList<Summary> records = stepsWithFiles(2, 2);
    QString query = utf8(":iswfs ").repeated(3000);
    QCOMPARE(answerTo(query, records), utf8("yes"));
    QCOMPARE(answerTo(query + utf8("nothing"), records), utf8("no"));
    query = utf8("1.1 ").repeated(3000);
    QCOMPARE(answerTo(query, records), utf8("yes"));
}

void TestFindQueryLimits::moreNamesThanRecords()
{
    QStringList names;
    for (int i = 0; i < 7; ++i)
        names += name(i) + utf8(":iswfs");
    QCOMPARE(answerTo(names.join(QLatin1Char(' ')), stepsWithFiles(6, 0)), utf8("no"));
    QCOMPARE(answerTo(names.join(QLatin1Char(' ')), stepsWithFiles(6, 2)), utf8("no"));
}

void TestFindQueryLimits::longValues_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("result");
    const auto add = [](const char* part, const char* query, const char* result) {
        QTest::addRow("%s... %s", part, query) << longText(part) << utf8(query) << utf8(result);
    };
    add("a", "a", "yes");
    add("a", "b", "no");
    add("a", "s:timestamp %contains aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaab", "no");
    add("a", "s:timestamp %matches '*a*a*a*a*a*a*a*b*'", "no");
    add("ab", "s:timestamp %matches '*a*b*a*b*'", "yes s=wfs:0");
    add("a", "s:timestamp == s:timestamp", "yes s=wfs:0");
    add("1", "s:timestamp < 2019-03-12", "no"); // too large for a number
    add("0", "s:timestamp < 2019-03-12", "yes s=wfs:0");
    add(",", "s:timestamp < 2019-03-12", "no");
    add("1-", "s:timestamp < 2019-03-12", "yes s=wfs:0");
    add("2019-03-11 ", "s:timestamp < 2019-03-12", "yes s=wfs:0");
    add("2019-03-13 ", "s:timestamp < 2019-03-12", "no");
    add(" ", "s:timestamp < 2019-03-12", "no");
}

void TestFindQueryLimits::longValues()
{
    QFETCH(const QString, value);
    QFETCH(const QString, query);
    QFETCH(const QString, result);
    Summary step = stepTitled(utf8("step"));
    step.timestamp = value;
    QCOMPARE(answerTo(query, {step}), result);
}

void TestFindQueryLimits::longConstants()
{
    const QString text = longText("long ");
    const QList<Summary> records = {stepTitled(text + QLatin1Char('x')), stepTitled(text)};
    QCOMPARE(answerTo(utf8("s:title == ") + quoted(text), records), utf8("yes s=wfs:1"));
    QCOMPARE(answerTo(utf8("s:title %contains ") + quoted(text + QLatin1Char('x')), records),
             utf8("yes s=wfs:0"));
    QCOMPARE(answerTo(utf8("s:title %matches ") + quoted(text), records), utf8("yes s=wfs:1"));
    QCOMPARE(answerTo(quoted(longText("\\")), records), utf8("no"));
    QCOMPARE(answerTo(longText("word"), records), utf8("no"));
}

void TestFindQueryLimits::hostilePatterns_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("result");
    QTest::newRow("stars") << utf8("*").repeated(10000) << utf8("yes f=wfs:0");
    QTest::newRow("stars and a character") << utf8("*").repeated(10000) + utf8("b") << utf8("no");
    QTest::newRow("starred characters") << utf8("*a").repeated(5000) + utf8("*b") << utf8("no");
    QTest::newRow("open sets") << utf8("[").repeated(10000) << utf8("no");
    QTest::newRow("closed sets") << utf8("]").repeated(10000) << utf8("no");
    QTest::newRow("starred open sets") << utf8("*[").repeated(10000) << utf8("no");
    QTest::newRow("starred ranges") << utf8("*[a-c]").repeated(2000) + utf8("b") << utf8("no");
    QTest::newRow("any ones") << utf8("?").repeated(10000) << utf8("no");
}

void TestFindQueryLimits::hostilePatterns()
{
    QFETCH(const QString, pattern);
    QFETCH(const QString, result);
    QList<Summary> records = stepsWithFiles(20, 5);
    for (Summary& step : records) {
        for (FileSummary& file : step.files)
            file.filename = utf8("a").repeated(500);
    }
    QCOMPARE(answerTo(utf8("f:filename %matches ") + quoted(pattern), records), result);
}

void TestFindQueryLimits::manyUserAttributes()
{
    Summary step = stepTitled(utf8("step"));
    for (int i = 0; i < 20000; ++i) {
        const QString number = QString::number(i);
        step.userAttributeNames += number;
        step.userAttributes.insert(number, utf8("value ") + number);
    }
    QCOMPARE(answerTo(utf8("s:user:19999 == 'value 19999'"), {step}), utf8("yes s=wfs:0"));
    QCOMPARE(answerTo(utf8("s:userattrs %contains '\n19999=value 19999'"), {step}),
             utf8("yes s=wfs:0"));
    QCOMPARE(answerTo(utf8("s:any == 'value 19999'"), {step}), utf8("yes s=wfs:0"));
    QCOMPARE(answerTo(utf8("s:any == 'value 20000'"), {step}), utf8("no"));
}

void TestFindQueryLimits::unpairedSurrogates()
{
    const QString smile = utf8("\xF0\x9F\x99\x82");
    const QString high = smile.left(1);
    const QString low = smile.right(1);
    const QList<Summary> records = {stepTitled(high), stepTitled(low), stepTitled(low + high)};
    QCOMPARE(found(utf8("s:title == ") + quoted(low), records), utf8("yes s=wfs:1"));
    QCOMPARE(found(utf8("s:title == ") + quoted(low + high), records), utf8("yes s=wfs:2"));
    QCOMPARE(found(utf8("s:title %contains ") + quoted(smile), records), utf8("no"));
    QCOMPARE(found(utf8("s:title %matches ") + quoted(utf8("?") + high), records),
             utf8("yes s=wfs:2"));
    QCOMPARE(found(high, records), utf8("yes"));
    QCOMPARE(found(quoted(high + high), records), utf8("no"));
}

void TestFindQueryLimits::alternativesThatAreNowhere()
{
    const QList<Summary> records = stepsWithFiles(2, 2);
    QStringList words;
    for (int i = 0; i < 3000; ++i)
        words += utf8("nothing");
    QCOMPARE(answerTo(words.join(utf8(" || ")), records), utf8("no"));
    words += utf8("f:filename == 1.1");
    QCOMPARE(answerTo(words.join(utf8(" || ")), records), utf8("yes f=file:1:1"));
    QCOMPARE(answerTo(utf8("nothing || never || nowhere"), stepsWithFiles(5000, 11)), utf8("no"));
    QCOMPARE(answerTo(utf8("a:title == x || b:title == y"), stepsWithFiles(5000, 11)), utf8("no"));
    QCOMPARE(answerTo(utf8("a:isfile b:isfile c:iswfs d:iswfs c:title == d:tool"),
                      stepsWithFiles(200, 5)),
             utf8("no"));
}

void TestFindQueryLimits::moreNamesThanRecordsForThem()
{
    // Trying all orders of the records would take hours.
    const int count = 14;
    QStringList conditions;
    for (int i = 0; i < count; ++i)
        conditions += name(i) + utf8(":title == x");
    QList<Summary> records = stepsWithFiles(20, 0);
    for (int i = 1; i < count; ++i)
        records += stepTitled(utf8("x"));
    QCOMPARE(answerTo(conditions.join(utf8(" && ")), records), utf8("no"));
    records += stepTitled(utf8("x"));
    QVERIFY(answerTo(conditions.join(utf8(" && ")), records).startsWith(utf8("yes")));
}

void TestFindQueryLimits::lastNameNeedsTheFirstRecord()
{
    const int count = 14;
    QList<Summary> records;
    QStringList conditions;
    for (int i = 0; i < count; ++i) {
        records += stepTitled(utf8("x%1").arg(i));
        conditions += name(i) + (i < count - 1 ? utf8(":title %contains x") : utf8(":title == x0"));
    }
    const QString answer = answerTo(conditions.join(utf8(" && ")), records);
    QVERIFY2(answer.contains(name(count - 1) + utf8("=wfs:0")), qPrintable(answer));
    QVERIFY2(answer.contains(name(0) + utf8("=wfs:1 ")), qPrintable(answer));
}

QTEST_APPLESS_MAIN(TestFindQueryLimits)
#include "tst_findquery_limits.moc"
