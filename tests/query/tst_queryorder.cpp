#include "Comparisons.h"
#include "Records.h"

#include <QDateTime>
#include <QTest>

using tresktest::answer;
using tresktest::compareValues;
using tresktest::fileOfSize;
using tresktest::quoted;
using tresktest::utf8;
using tresktest::yesIf;

/// What is less or greater: dates, and numbers otherwise.
class TestQueryOrder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void order_data();
    void order();
    void orderOfSizes_data();
    void orderOfSizes();
    void timesAreOfToday();
};

/// How the texts stand to each other: "<", "=" or ">", or "none" where all four are false.
void TestQueryOrder::order_data()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<QString>("order");
    const auto add = [](const char* left, const char* order, const char* right) {
        QTest::addRow("\"%s\" %s \"%s\"", left, order, right)
            << utf8(left) << utf8(right) << utf8(order);
    };
    // Numbers.
    add("9", "<", "10");
    add("10", "=", "10");
    add("10", "=", "10.0");
    add("-5", "<", "5");
    add("-5", ">", "-6");
    add("0", "=", "-0");
    add("1kb", "=", "1024");
    add("1025", ">", "1KB");
    add("1mb", "=", "1024kb");
    add("1gb", ">", "1023mb");
    add("1e3", "=", "1000");
    add("5 files", "<", "6");
    add("16777216", "=", "16777217"); // the same in single precision
    add("16777216", "<", "16777218");
    // Dates and times.
    add("2019-03-12", "<", "2019-03-13");
    add("2019-03-12", "=", "2019-3-12");
    add("2019-03-12", "=", "2019-03-12 00:00");
    add("2019-03-12", "<", "2019-03-12 00:00:01");
    add("2019-03-12 10:00", ">", "2019-03-12 9:59:59");
    add("2019-03-12 10:00", "=", "2019-03-12   10:0:0");
    add("2019-03-12T23:00", "=", "2019-03-12");
    add("2019-12-31 23:59:59", "<", "2020-01-01");
    add("19-03-12", "<", "2019-03-12");
    add("99-12-31", "<", "0100-01-01");
    add("10:30", ">", "9:45");
    add("10:30", "=", "10:30:00");
    add("10:30", "<", "10:30:01");
    add("10:30", ">", "2019-03-12 23:00"); // which was before today
    add("10:30", "<", "9999-03-12");
    // Dates come first: as numbers these would be equal.
    add("2019-03-12", "<", "2019-12-01");
    add("10:30", "<", "10:45");
    // A date and a number are two numbers; so are two texts that are no dates of the calendar.
    add("2019-03-12", ">", "2018");
    add("2019-03-12", "=", "2019");
    add("2019-03-12", "<", "1mb");
    add("10:30", "=", "10");
    add("2019-02-30", "=", "2019-03-01");
    add("2019-02-30", "<", "2020-03-01");
    add("2019-03-12 24:00", "=", "2019-03-12");
    add("25:00", ">", "10:00");
    // Neither.
    for (const char* text : {"", "abc", "1,5", "1.2.3", " 5", "-", "kb", "true", " 2019-03-12"}) {
        add(text, "none", "5");
        add("2019-03-12", "none", text);
        add(text, "none", text);
    }
    add("abc", "none", "abd");
}

void TestQueryOrder::order()
{
    QFETCH(const QString, left);
    QFETCH(const QString, right);
    QFETCH(const QString, order);
    const bool isLess = order == utf8("<");
    const bool isGreater = order == utf8(">");
    const bool isEqual = order == utf8("=");
    compareValues(left, "<", right, isLess);
    compareValues(left, "<=", right, isLess || isEqual);
    compareValues(left, ">", right, isGreater);
    compareValues(left, ">=", right, isGreater || isEqual);
    compareValues(right, "<", left, isGreater);
    compareValues(right, "<=", left, isGreater || isEqual);
    compareValues(right, ">", left, isLess);
    compareValues(right, ">=", left, isLess || isEqual);
}

void TestQueryOrder::orderOfSizes_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("condition");
    QTest::addColumn<bool>("holds");
    const auto add = [](int size, const char* condition, bool holds) {
        QTest::addRow("%d %s", size, condition) << size << utf8(condition) << holds;
    };
    add(1048577, "> 1mb", true);
    add(1048576, "> 1mb", false);
    add(1048576, ">= 1mb", true);
    add(1048575, "< '1.0MB'", true);
    add(10, "< 9", false);
    add(10, "<= 10", true);
    add(0, "< 1", true);
    add(2147483647, ">= 2gb", true); // in single precision
    add(-1, "< 5", false); // not known
    add(-1, ">= 0", false);
    add(500, "> '10:30'", true); // no two dates, so two numbers
    add(5, "> '10:30'", false);
}

void TestQueryOrder::orderOfSizes()
{
    QFETCH(const int, size);
    QFETCH(const QString, condition);
    QFETCH(const bool, holds);
    QCOMPARE(answer(utf8("f:isfile && f:filesize ") + condition, fileOfSize(size)), yesIf(holds));
    // In front of a constant as behind it.
    const QStringList parts = condition.split(QLatin1Char(' '));
    QString mirrored = parts.at(0);
    mirrored.replace(QLatin1Char('<'), QLatin1Char('~'));
    mirrored.replace(QLatin1Char('>'), QLatin1Char('<'));
    mirrored.replace(QLatin1Char('~'), QLatin1Char('>'));
    QCOMPARE(
        answer(utf8("f:isfile && %1 %2 f:filesize").arg(parts.at(1), mirrored), fileOfSize(size)),
        yesIf(holds));
}

void TestQueryOrder::timesAreOfToday()
{
    for (;;) {
        const QDate today = QDateTime::currentDateTimeUtc().date();
        const QString date = today.toString(Qt::ISODate);
        const QString yesterday = today.addDays(-1).toString(Qt::ISODate);
        const QString equal = answer(quoted(utf8("10:30")) + utf8(" <= ")
                                     + quoted(date + utf8(" 10:30")));
        const QString isGreater = answer(quoted(utf8("0:00")) + utf8(" > ")
                                         + quoted(yesterday + utf8(" 23:59:59")));
        if (QDateTime::currentDateTimeUtc().date() != today)
            continue; // midnight passed
        QCOMPARE(equal, utf8("yes"));
        QCOMPARE(isGreater, utf8("yes"));
        return;
    }
}

QTEST_APPLESS_MAIN(TestQueryOrder)
#include "tst_queryorder.moc"
