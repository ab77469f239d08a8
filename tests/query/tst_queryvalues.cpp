#include "Records.h"

#include "query/QueryValues.h"

#include <QTest>

using tresk::readDate;
using tresk::readNumber;
using tresktest::InTimeZone;
using tresktest::utf8;

class TestQueryValues : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void numbers_data();
    void numbers();
    void noNumbers_data();
    void noNumbers();
    void numbersAreOfSinglePrecision();
    void manyDigits();
    void dates_data();
    void dates();
    void noDates_data();
    void noDates();
    void timesAreOnTheDayGiven_data();
    void timesAreOnTheDayGiven();
    void sameInEveryTimeZone_data();
    void sameInEveryTimeZone();
};

namespace {

const QDate someDay(2021, 6, 15);

void addTexts(std::initializer_list<const char*> texts)
{
    for (const char* text : texts)
        QTest::newRow(*text ? text : "empty") << utf8(text);
}

void addZones()
{
    QTest::addColumn<QByteArray>("zone");
    for (const char* zone :
         {"UTC", "Europe/Berlin", "America/New_York", "Asia/Kolkata", "Pacific/Kiritimati",
          "Pacific/Pago_Pago", "America/Sao_Paulo", "Australia/Lord_Howe", "XXX-14", "YYY+12"})
        QTest::newRow(zone) << QByteArray(zone);
}

} // namespace

void TestQueryValues::numbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("number");

    const auto add = [](const char* text, double number) {
        QTest::newRow(text) << utf8(text) << float(number);
    };
    add("0", 0);
    add("10", 10);
    add("007", 7);
    add("1.5", 1.5);
    add(".5", 0.5);
    add("5.", 5);
    add("+5", 5);
    add("-5", -5);
    add("-0.25", -0.25);
    add("2147483648", 2147483648.0);
    // Exponents, in either case; what is no whole exponent is not part of the number.
    add("1e3", 1000);
    add("1E3", 1000);
    add("1e+3", 1000);
    add("25e-2", 0.25);
    add("-1.5e2", -150);
    add("1e", 1);
    add("1e+", 1);
    add("2ex", 2);
    add("1e2e3", 100);
    // Factors, in either case, only at the very end and only one of them.
    add("10kb", 10240);
    add("10KB", 10240);
    add("10Kb", 10240);
    add("1.5mb", 1572864);
    add("1MB", 1048576);
    add("2gb", 2147483648.0);
    add("-1kb", -1024);
    add("1e1kb", 10240);
    add("1 kb", 1024);
    add("1 and a few mb", 1048576);
    add("1kbkb", 1024);
    add("1kb ", 1);
    add("1kbs", 1);
    add("1k", 1);
    add("1b", 1);
    add("1tb", 1);
    add("1mbkb", 1024);
    add("10\xE2\x84\xAA\x62", 10240); // the sign of the kelvin is a "k" in lower case
    // What follows is ignored.
    add("12 files", 12);
    add("12files", 12);
    add("3-4", 3);
    add("3+4", 3);
    add("10:30", 10);
    add("2019-03-12", 2019);
    add("1\n2", 1);
    add("7\xD9\xA3", 7); // an Arabic digit is none
}

void TestQueryValues::numbers()
{
    QFETCH(const QString, text);
    QFETCH(const float, number);
    const std::optional<float> read = readNumber(text);
    QVERIFY(read.has_value());
    QVERIFY2(*read == number, qPrintable(QString::number(double(*read))));
}

void TestQueryValues::noNumbers_data()
{
    QTest::addColumn<QString>("text");
    addTexts({"",    " ",  "abc",   "kb",  "mb",  "gb",   "kbkb",     " 5",
              "\n5", "e5", "+",     "-",   "+-5", "--5",  "+ 5",      "x5",
              "$5",  "#5", "\"5\"", "inf", "nan", "true", "\xD9\xA3", "\xC2\xBD"});
    // The comma belongs to the number and spoils it, as a second point does.
    addTexts({"1,5", "1,000", "1,", ",", ",5", "1.5,", "1,5kb", "1,e5", ".", "..", "1.2.3", "1..2",
              "1.2.3kb", ".e5", "+.", "-,"});
    // Larger than any float.
    addTexts({"1e39", "-1e39", "1e400", "1e99999", "1e99999999999999999999"});
    QTest::newRow("null") << QString();
    QTest::newRow("400 digits") << QString(400, QLatin1Char('9'));
}

void TestQueryValues::noNumbers()
{
    QFETCH(const QString, text);
    const std::optional<float> read = readNumber(text);
    QVERIFY2(!read, qPrintable(QString::number(double(read.value_or(0)))));
}

void TestQueryValues::numbersAreOfSinglePrecision()
{
    QVERIFY(readNumber(utf8("16777217")) == 16777216.0F);
    QVERIFY(readNumber(utf8("16777217kb")) == 16777216.0F * 1024);
    QVERIFY(readNumber(utf8("0.1")) == 0.1F);
    QVERIFY(readNumber(utf8("3e38")) == 3e38F);
}

void TestQueryValues::manyDigits()
{
    const QString zeros(100000, QLatin1Char('0'));
    QVERIFY(readNumber(zeros + utf8("12")) == 12.0F);
    QVERIFY(readNumber(utf8("12.") + zeros) == 12.0F);
    QVERIFY(readNumber(utf8("12e") + zeros) == 12.0F);
    QVERIFY(readNumber(utf8("12x") + zeros) == 12.0F);
}

void TestQueryValues::dates_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QTime>("time");

    const QTime midnight(0, 0);
    const auto add = [](const char* text, const QDate& date, const QTime& time) {
        QTest::newRow(text) << utf8(text) << date << time;
    };
    const QDate day(2019, 3, 12);
    add("2019-03-12", day, midnight);
    add("2019-3-12", day, midnight);
    add("2019-3-2", QDate(2019, 3, 2), midnight);
    add("2019-12-31", QDate(2019, 12, 31), midnight);
    add("2020-02-29", QDate(2020, 2, 29), midnight);
    add("2000-02-29", QDate(2000, 2, 29), midnight);
    add("0001-01-01", QDate(1, 1, 1), midnight);
    add("9999-12-31", QDate(9999, 12, 31), midnight);
    add("19-03-12", QDate(19, 3, 12), midnight); // no century is added
    add("99-1-1", QDate(99, 1, 1), midnight);
    add("2019-03-12 14:33", day, QTime(14, 33));
    add("2019-03-12 14:33:05", day, QTime(14, 33, 5));
    add("2019-03-12 4:3", day, QTime(4, 3));
    add("2019-03-12 4:3:5", day, QTime(4, 3, 5));
    add("2019-03-12 00:00:00", day, midnight);
    add("2019-03-12 23:59:59", day, QTime(23, 59, 59));
    add("2019-03-12     14:33", day, QTime(14, 33));
    add("19-3-2 1:2", QDate(19, 3, 2), QTime(1, 2));
    // Only blanks make a time that follows part of it.
    add("2019-03-12T14:33", day, midnight);
    add("2019-03-12\t14:33", day, midnight);
    add("2019-03-12\n14:33", day, midnight);
    add("2019-03-12, 14:33", day, midnight);
    add("2019-03-12 at 14:33", day, midnight);
    add("2019-03-12 123:00", day, midnight);
    // What follows is ignored.
    add("2019-03-12 ", day, midnight);
    add("2019-03-123", day, midnight);
    add("2019-03-12-13", day, midnight);
    add("2019-03-12 x", day, midnight);
    add("2019-03-12 14", day, midnight);
    add("2019-03-12 14:", day, midnight);
    add("2019-03-12 14:33:", day, QTime(14, 33));
    add("2019-03-12 14:33:x", day, QTime(14, 33));
    add("2019-03-12 14:33:051", day, QTime(14, 33, 5));
    add("2019-03-12 14:33:05.999", day, QTime(14, 33, 5));
    add("2019-03-12 14:333", day, QTime(14, 33));
    add("2019-03-12 14:33 UTC", day, QTime(14, 33));
}

void TestQueryValues::dates()
{
    QFETCH(const QString, text);
    QFETCH(const QDate, date);
    QFETCH(const QTime, time);
    const std::optional<QDateTime> read = readDate(text, someDay);
    QVERIFY(read.has_value());
    QVERIFY(read->isValid());
    QCOMPARE(read->date(), date);
    QCOMPARE(read->time(), time);
}

void TestQueryValues::noDates_data()
{
    QTest::addColumn<QString>("text");
    addTexts({"",           "abc",       " 2019-03-12", "x2019-03-12", "\n10:00",    "2019",
              "2019-",      "2019-03",   "2019-03-",    "2019/03/12",  "12.03.2019", "2019-x-12",
              "1-03-12",    "201-03-12", "20190-03-12", "-2019-03-12", "+19-03-12",  "10",
              "10:",        ":30",       "123:00",      "10.30",       "10 :30",     "2019 -03-12",
              "2019-003-12"});
    addTexts({"\xEF\xBC\x92\xEF\xBC\x90-03-12"}); // digits of another script
    // Not in the calendar.
    addTexts({"2019-02-30", "2019-02-29", "1900-02-29", "2019-04-31", "2019-13-01", "2019-00-01",
              "2019-01-00", "2019-01-32", "0000-01-01", "00-01-01", "20-19-03-12",
              "2019-02-30 10:00", "2019-02-30 25:00"});
    // No time of the day, which the date in front of it does not save.
    addTexts({"24:00", "25:00", "10:60", "10:00:60", "99:99:99", "10:61:00", "2019-03-12 24:00",
              "2019-03-12 10:60", "2019-03-12 10:00:60", "2019-03-12 10:00:99"});
    QTest::newRow("null") << QString();
}

void TestQueryValues::noDates()
{
    QFETCH(const QString, text);
    const std::optional<QDateTime> read = readDate(text, someDay);
    QVERIFY2(!read, read ? qPrintable(read->toString(Qt::ISODate)) : "");
}

void TestQueryValues::timesAreOnTheDayGiven_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QTime>("time");
    QTest::newRow("minutes") << utf8("14:33") << QTime(14, 33);
    QTest::newRow("seconds") << utf8("14:33:05") << QTime(14, 33, 5);
    QTest::newRow("short") << utf8("4:3") << QTime(4, 3);
    QTest::newRow("short seconds") << utf8("4:3:5") << QTime(4, 3, 5);
    QTest::newRow("midnight") << utf8("0:0") << QTime(0, 0);
    QTest::newRow("last second") << utf8("23:59:59") << QTime(23, 59, 59);
    QTest::newRow("digits follow") << utf8("10:0099") << QTime(10, 0);
    QTest::newRow("text follows") << utf8("10:05 o'clock") << QTime(10, 5);
    QTest::newRow("date follows") << utf8("10:05 2019-03-12") << QTime(10, 5);
}

void TestQueryValues::timesAreOnTheDayGiven()
{
    QFETCH(const QString, text);
    QFETCH(const QTime, time);
    for (const QDate& day : {someDay, QDate(2024, 2, 29), QDate(1969, 12, 31)}) {
        const std::optional<QDateTime> read = readDate(text, day);
        QVERIFY(read.has_value());
        QCOMPARE(read->date(), day);
        QCOMPARE(read->time(), time);
    }
}

void TestQueryValues::sameInEveryTimeZone_data()
{
    addZones();
}

/// Also of times that clocks there skip, or show twice.
void TestQueryValues::sameInEveryTimeZone()
{
    QFETCH(const QByteArray, zone);
    const InTimeZone inZone(zone);

    const QDateTime epoch = readDate(utf8("1970-01-01"), someDay).value();
    QCOMPARE(epoch.toMSecsSinceEpoch(), 0);
    for (const QDate& day : {QDate(2019, 3, 31), QDate(2019, 3, 10), QDate(2019, 10, 27),
                             QDate(2019, 10, 6), QDate(2018, 11, 4), QDate(1994, 12, 31)}) {
        const QDateTime midnight = readDate(day.toString(Qt::ISODate), someDay).value();
        QCOMPARE(midnight.toMSecsSinceEpoch() / 1000, QDate(1970, 1, 1).daysTo(day) * 86400);
        for (int minute = 0; minute < 24 * 60; minute += 15) {
            const QTime time = QTime(0, 0).addSecs(minute * 60);
            const QString text = day.toString(Qt::ISODate) + time.toString(QStringLiteral(" h:mm"));
            const std::optional<QDateTime> read = readDate(text, someDay);
            QVERIFY2(read.has_value(), qPrintable(text));
            QCOMPARE(midnight.secsTo(*read), minute * 60);
            QCOMPARE(readDate(time.toString(QStringLiteral("h:mm")), day), read);
        }
    }
    const QDate before = QDateTime::currentDateTimeUtc().date();
    const QDate today = tresk::today();
    QVERIFY(before <= today && today <= QDateTime::currentDateTimeUtc().date());
}

QTEST_APPLESS_MAIN(TestQueryValues)
#include "tst_queryvalues.moc"
