#include "Comparisons.h"
#include "Records.h"

#include <QTest>

using tresktest::answer;
using tresktest::compareValues;
using tresktest::fileOfSize;
using tresktest::quoted;
using tresktest::utf8;
using tresktest::yesIf;

/// What the operators say of two texts.
class TestQueryComparison : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void equality_data();
    void equality();
    void contains_data();
    void contains();
    void matchesPattern_data();
    void matchesPattern();
    void isApproximately_data();
    void isApproximately();
    void approximationOfSizes_data();
    void approximationOfSizes();
    void noNumberIsApproximatelyAnything();
    void flagsAreTheirTexts_data();
    void flagsAreTheirTexts();
};

namespace {

/// Compares the texts as constants of a query.
void compare(const QString& left, const char* op, const QString& right, bool holds)
{
    const QString comparison = QStringList{quoted(left), utf8(op), quoted(right)}.join(
        QLatin1Char(' '));
    QCOMPARE(answer(comparison), yesIf(holds));
    QCOMPARE(answer(utf8("!(%1)").arg(comparison)), yesIf(!holds));
}

void addTexts()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<bool>("holds");
}

void addRow(const char* left, const char* right, bool holds)
{
    QTest::addRow("\"%s\", \"%s\"", left, right) << utf8(left) << utf8(right) << holds;
}

} // namespace

void TestQueryComparison::equality_data()
{
    addTexts();
    addRow("", "", true);
    addRow("", " ", false);
    addRow("a", "", false);
    addRow("ANNUAL REPORT", "Annual Report", true);
    addRow("Annual Report", "Annual Reports", false);
    addRow("report", " report", false);
    addRow("\xC3\x84RGER", "\xC3\xA4rger", true);
    addRow("stra\xC3\x9F\x65", "STRASSE", false);
    addRow("\xE2\x84\xAA\x65lvin", "Kelvin", true); // the sign of the kelvin
    addRow("\xF0\x90\x90\x80", "\xF0\x90\x90\xA8", true); // letters outside the first plane
    addRow("a\\b", "A\\B", true);
    addRow("say \"x\"", "SAY \"X\"", true);
    // Only as texts: neither numbers, dates nor patterns.
    addRow("10", "10", true);
    addRow("10", "10.0", false);
    addRow("10", "+10", false);
    addRow("1kb", "1024", false);
    addRow("1kb", "1KB", true);
    addRow("2019-03-12", "2019-3-12", false);
    addRow("2019-03-12", "2019-03-12 00:00", false);
    addRow("10:00", "10:00:00", false);
    addRow("*", "a", false);
    addRow("a", "*", false);
    addRow("true", "TRUE", true);
}

void TestQueryComparison::equality()
{
    QFETCH(const QString, left);
    QFETCH(const QString, right);
    QFETCH(const bool, holds);
    compare(left, "==", right, holds);
    compare(right, "==", left, holds);
    compare(left, "!=", right, !holds);
    compareValues(left, "==", right, holds);
    compareValues(left, "!=", right, !holds);
}

void TestQueryComparison::contains_data()
{
    addTexts();
    addRow("Annual Report", "report", true);
    addRow("annual report", "REPORT", true);
    addRow("report", "report", true);
    addRow("report", "annual report", false);
    addRow("report", "reports", false);
    addRow("re port", "report", false);
    addRow("abc", "", true);
    addRow("", "", true);
    addRow("", "a", false);
    addRow("gro\xC3\x9F", "RO\xC3\x9F", true);
    addRow("\xC3\x84RGER", "\xC3\xA4", true);
    addRow("report.pdf", "*.pdf", false);
    addRow("*.pdf", "*", true);
    addRow("1024", "02", true);
    addRow("1024", "1kb", false);
    addRow("2019-03-12", "03", true);
}

void TestQueryComparison::contains()
{
    QFETCH(const QString, left);
    QFETCH(const QString, right);
    QFETCH(const bool, holds);
    compare(left, "%contains", right, holds);
}

void TestQueryComparison::matchesPattern_data()
{
    addTexts();
    addRow("Report.pdf", "*.PDF", true);
    addRow("REPORT.PDF", "report.?d?", true);
    addRow("Report.pdf", "*.pd", false);
    addRow("Report.pdf", "eport*", false);
    addRow("Report.pdf", "report.pdf", true);
    addRow("report", "", false);
    addRow("", "", true);
    addRow("", "*", true);
    addRow("", "?", false);
    addRow("a\nb", "a*b", true);
    addRow("axb", "a.b", false);
    addRow("aab", "a+b", false);
    addRow("bX", "[A-C]x", true);
    addRow("BX", "[a-c]X", true);
    addRow("dx", "[A-C]x", false);
    addRow("dx", "[^A-C]x", true);
    addRow("[", "[", false);
    addRow("*", "?", true);
    addRow("*.pdf", "Report.pdf", false);
    addRow("\xC3\x84", "[\xC3\xA4]", true);
}

void TestQueryComparison::matchesPattern()
{
    QFETCH(const QString, left);
    QFETCH(const QString, right);
    QFETCH(const bool, holds);
    compare(left, "%matches", right, holds);
}

void TestQueryComparison::isApproximately_data()
{
    addTexts();
    addRow("1000", "1000", true);
    addRow("1000", "995", true);
    addRow("1000", "1009", true);
    addRow("1000", "1011", false);
    addRow("1000", "1010", true); // 1 % of the larger one
    addRow("1kb", "1024", true);
    addRow("1mb", "1020kb", true);
    addRow("1mb", "1000kb", false);
    addRow("1e3", "1000.5", true);
    addRow("2019-03-12", "2018", true); // a date begins as a number does
    addRow("2019-03-12", "1990-01-01", false);
    // A hundredth exactly is too much. In single precision 0.99 is a little nearer.
    addRow("1000", "990", false);
    addRow("100", "99", false);
    addRow("1000", "990.1", true);
    addRow("1", "0.99", true);
    addRow("1", "0.98999995", false);
    // A quotient of zeros is no number.
    addRow("0", "0", false);
    addRow("-0", "0", false);
    addRow("0kb", "0", false);
    addRow("0", "5", false);
    addRow("0", "-5", false);
    addRow("0", "0.0001", false);
    // The larger of two negative numbers makes every quotient negative, which is small enough.
    addRow("-5", "-5", true);
    addRow("-5", "-500", true);
    addRow("-5", "5", false);
    addRow("-1000", "1000", false);
}

void TestQueryComparison::isApproximately()
{
    QFETCH(const QString, left);
    QFETCH(const QString, right);
    QFETCH(const bool, holds);
    compare(left, "%isapprox", right, holds);
    compare(right, "%isapprox", left, holds);
}

void TestQueryComparison::approximationOfSizes_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("holds");
    for (const int size : {990, 1011, 0, -1})
        QTest::addRow("%d", size) << size << false;
    for (const int size : {991, 995, 1000, 1009, 1010})
        QTest::addRow("%d", size) << size << true;
}

void TestQueryComparison::approximationOfSizes()
{
    QFETCH(const int, size);
    QFETCH(const bool, holds);
    QCOMPARE(answer(utf8("f:isfile && f:filesize %isapprox 1000"), fileOfSize(size)), yesIf(holds));
    QCOMPARE(answer(utf8("f:isfile && 1000 %isapprox f:filesize"), fileOfSize(size)), yesIf(holds));
}

void TestQueryComparison::noNumberIsApproximatelyAnything()
{
    // The size of neither is known.
    QCOMPARE(answer(utf8("f:filesize %isapprox f:cfilesize"), fileOfSize(-1)), utf8("no"));
    QCOMPARE(answer(utf8("f:filesize %isapprox 0"), fileOfSize(-1)), utf8("no"));
    QCOMPARE(answer(utf8("!(f:filesize %isapprox 0)"), fileOfSize(-1)), utf8("yes"));
}

void TestQueryComparison::flagsAreTheirTexts_data()
{
    QTest::addColumn<QString>("condition");
    QTest::addColumn<bool>("holds");
    const auto add = [](const char* condition, bool holds) {
        QTest::newRow(condition) << utf8(condition) << holds;
    };
    add("s:iswfs == 'true'", true);
    add("s:iswfs == 'TRUE'", true);
    add("s:iswfs == true", true);
    add("s:iswfs == 'false'", false);
    add("s:iswfs != 'false'", true);
    add("s:iswfs == 1", false);
    add("s:isfile == 'false'", true);
    add("s:isfile != 'false'", false);
    add("s:iswfs == s:isfile", false);
    add("s:embedded == s:isfile", true);
}

void TestQueryComparison::flagsAreTheirTexts()
{
    QFETCH(const QString, condition);
    QFETCH(const bool, holds);
    QCOMPARE(answer(condition, {tresktest::stepTitled(utf8("step"))}), yesIf(holds));
}

QTEST_APPLESS_MAIN(TestQueryComparison)
#include "tst_querycomparison.moc"
