#include "QueryText.h"

#include <tresk/TreskFindQuery.h>

#include <QTest>

using tresktest::findingsOf;
using tresktest::str;

class TestQueryTypes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void attributes_data();
    void attributes();
    void unknownAttributes_data();
    void unknownAttributes();
    void literals_data();
    void literals();
    void operatorsOnTexts_data();
    void operatorsOnTexts() { compareFindings(); }
    void operatorsOnNumbers_data();
    void operatorsOnNumbers() { compareFindings(); }
    void operatorsOnNumbersOrDates_data();
    void operatorsOnNumbersOrDates() { compareFindings(); }
    void connectives_data();
    void connectives() { compareFindings(); }
    void otherQueries_data();
    void otherQueries() { compareFindings(); }
    void warningsAreErrors();
    void manyFindingsKeepTheirOrder();

private:
    void compareFindings();
};

namespace {

void addColumns()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QStringList>("findings");
}

void row(const QString& query, const QStringList& findings)
{
    QTest::newRow(qPrintable(query)) << query << findings;
}

/// A query with one finding, at @p position about @p text.
void one(const QString& query, int position, const QString& text, const QString& message)
{
    row(query, {str("%1 [%2] %3").arg(QString::number(position), text, message)});
}

} // namespace

void TestQueryTypes::attributes_data()
{
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<QString>("grades"); // in the order of the queries in attributes()
    const auto rows = [](const char* grades, std::initializer_list<const char*> attributes) {
        for (const char* attribute : attributes)
            QTest::newRow(attribute) << str(attribute) << str(grades);
    };
    // A text, and nothing else.
    rows("- error error error error error error", {"hash", "filepurpose", "md5", "cmd5"});
    // A text and a number.
    rows("- - error error - - error", {"tagid", "filesize", "cfilesize", "parentid"});
    // A text and a date.
    rows("- error error error error - error", {"timestamp", "lastmodified"});
    // A text that may be a number or a date.
    rows("- warning error error warning warning error",
         {"treskrootfile", "title", "description", "comment", "command", "tool", "toolpath", "host",
          "user", "creator", "userattrs", "filename", "filepath", "filetype"});
    // A flag.
    rows("error error - - error error -",
         {"iswfs", "isfile", "embedded", "compressed", "isinfile", "isoutfile"});
    // A text that may be anything.
    rows("- warning warning warning warning warning -", {"any", "user:key", "user{a key}"});
}

void TestQueryTypes::attributes()
{
    QFETCH(QString, attribute);
    QStringList grades;
    for (const char* query : {"f:%1 %contains abc", "f:%1 %isapprox 5", "f:%1 && abc", "!f:%1",
                              "f:%1 < 5", "f:%1 >= '2019-03-12'", "f:%1"}) {
        const QStringList findings = findingsOf(str(query).arg(attribute));
        QVERIFY(findings.size() <= 1);
        if (findings.isEmpty())
            grades += str("-");
        else
            grades += findings.first().contains(str("] warning at pos ")) ? str("warning")
                                                                          : str("error");
    }
    QTEST(grades.join(QLatin1Char(' ')), "grades");
}

void TestQueryTypes::unknownAttributes_data()
{
    QTest::addColumn<QString>("attribute");
    for (const char* attribute :
         {"nosuch", "Hash", "HASH", "hashes", "has", "username", "users", "USER:key", "hash:x",
          "any:x", "title:user", "use", "1", "filename2", "compresse", "wfs"})
        QTest::newRow(attribute) << str(attribute);
}

void TestQueryTypes::unknownAttributes()
{
    QFETCH(QString, attribute);
    const QString original = str("f:") + attribute;
    QCOMPARE(
        findingsOf(original + str(" == 'x'")),
        QStringList(
            str("0 [%1] error at pos 0: attribute %2 does not exist.").arg(original, attribute)));
    // It is of no type.
    QCOMPARE(
        findingsOf(str("a && (") + original + str(" < 3)")),
        QStringList(
            {str("6 [%1] error at pos 6: attribute %2 does not exist.").arg(original, attribute),
             str("%1 [<] error at pos %1: operator < requires either two numbers or "
                 "two dates as arguments.\n'%2' is not a number or date.\n'3' is not "
                 "a date.")
                 .arg(QString::number(original.size() + 7), original)}));
}

void TestQueryTypes::literals_data()
{
    QTest::addColumn<QString>("literal");
    QTest::addColumn<bool>("isNumber");
    QTest::addColumn<bool>("isDate");
    const auto row = [](const char* literal, bool isNumber, bool isDate) {
        QTest::newRow(literal) << str(literal) << isNumber << isDate;
    };
    row("5", true, false);
    row("'5'", true, false);
    row("-1.5", true, false);
    row("+2", true, false);
    row("10kb", true, false);
    row("1.5MB", true, false);
    row("1e3", true, false);
    row("5x", true, false);
    row("''", false, false);
    row("' 5'", false, false);
    row("abc", false, false);
    row("kb", false, false);
    row("x5", false, false);
    row("'1,5'", false, false);
    row("2019-03-12", true, true); // a date begins like a number
    row("19-3-1", true, true);
    row("'2019-03-12 14:30'", true, true);
    row("'2019-03-12 14:30:59'", true, true);
    row("'14:30'", true, true);
    row("'9:05:00'", true, true);
    row("2019-02-30", true, false); // not in the calendar
    row("'25:00'", true, false);
    row("' 2019-03-12'", false, false);
}

void TestQueryTypes::literals()
{
    QFETCH(QString, literal);
    QFETCH(bool, isNumber);
    QFETCH(bool, isDate);
    QCOMPARE(findingsOf(str("f:filesize %isapprox ") + literal).isEmpty(), isNumber);
    QCOMPARE(findingsOf(literal + str(" %isapprox ") + literal).isEmpty(), isNumber);
    for (const char* op : {"<", "<=", ">", ">="}) {
        QCOMPARE(findingsOf(str("f:filesize") + str(op) + literal).isEmpty(), isNumber);
        QCOMPARE(findingsOf(literal + str(op) + str("f:timestamp")).isEmpty(), isDate);
        QCOMPARE(findingsOf(literal + str(op) + literal).isEmpty(), isNumber || isDate);
    }
    // Anywhere else, a text can stand whatever it reads as.
    for (const char* query : {"%1", "%1 && %1", "%1 %1", "%1 || %1", "!%1", "%1 %contains %1",
                              "%1 %matches %1", "%1 == %1", "%1 != %1", "!!(%1 || !%1) %1"})
        QCOMPARE(findingsOf(str(query).arg(literal)), QStringList());
}

void TestQueryTypes::operatorsOnTexts_data()
{
    addColumns();
    // %1 is the operator; it stands at the position given.
    const auto twoTexts = [](const char* query, int position, const char* grade,
                             const char* lines) {
        for (const char* op : {"%contains", "%matches"})
            one(str(query).arg(str(op)), position, str(op) + QLatin1Char(' '),
                str("%1 at pos %2: operator %3 requires two strings as arguments.%4")
                    .arg(str(grade), QString::number(position), str(op), str(lines)));
    };
    twoTexts("f:iswfs %1 'x'", 8, "error", "\n'f:iswfs' is not a string.");
    twoTexts("'x' %1 f:iswfs", 4, "error", "\n'f:iswfs' is not a string.");
    twoTexts(":embedded %1 :isfile", 10, "error",
             "\n':embedded' is not a string.\n':isfile' is not a string.");
    twoTexts("(a && b) %1 'x'", 9, "warning", "\n'a && b' may not be a string.");
    twoTexts("'x' %1 !a", 4, "warning", "\n'a' may not be a string.");
    twoTexts("(a == b) %1 (c d)", 9, "warning",
             "\n'a == b' may not be a string.\n'c d' may not be a string.");
    twoTexts("f:iswfs %1 (c d)", 8, "error", "\n'f:iswfs' is not a string.");
    twoTexts("!a %1 f:iswfs", 3, "error", "\n'f:iswfs' is not a string.");
}

void TestQueryTypes::operatorsOnNumbers_data()
{
    addColumns();
    const auto twoNumbers = [](const char* query, int position, const char* grade,
                               const char* lines) {
        one(str(query), position, str("%isapprox "),
            str("%1 at pos %2: operator %3 requires two numbers as arguments.%4")
                .arg(str(grade), QString::number(position), str("%isapprox"), str(lines)));
    };
    twoNumbers(":hash %isapprox 5", 6, "error", "\n':hash' is not a number.");
    twoNumbers(":filesize %isapprox \"abc\"", 10, "error", "\n'\"abc\"' is not a number.");
    twoNumbers(":iswfs %isapprox :timestamp", 7, "error",
               "\n':iswfs' is not a number.\n':timestamp' is not a number.");
    twoNumbers(":title %isapprox 5", 7, "warning", "\n':title' may not be a number.");
    twoNumbers("5 %isapprox :any", 2, "warning", "\n':any' may not be a number.");
    twoNumbers(":user{k} %isapprox (a b)", 9, "warning",
               "\n':user{k}' may not be a number.\n'a b' may not be a number.");
    twoNumbers(":title %isapprox :hash", 7, "error", "\n':hash' is not a number.");
    twoNumbers(":hash %isapprox :title", 6, "error", "\n':hash' is not a number.");
    twoNumbers("'%1' %isapprox 5", 5, "error", "\n''%1'' is not a number.");
}

void TestQueryTypes::operatorsOnNumbersOrDates_data()
{
    addColumns();
    const auto ordered = [](const char* query, int position, const char* grade, const char* lines) {
        for (const char* op : {"<", "<=", ">", ">="})
            one(str(query).arg(str(op)), position, str(op),
                str("%1 at pos %2: operator %3 requires either two numbers or two dates as "
                    "arguments.%4")
                    .arg(str(grade), QString::number(position), str(op), str(lines)));
    };
    ordered("f:hash %1 3", 7, "error", "\n'f:hash' is not a number or date.\n'3' is not a date.");
    ordered("f:hash %1 2019-03-12", 7, "error", "\n'f:hash' is not a number or date.");
    ordered("3 %1 f:iswfs", 2, "error", "\n'3' is not a date.\n'f:iswfs' is not a number or date.");
    ordered(":hash %1 :md5", 6, "error",
            "\n':hash' is not a number or date.\n':md5' is not a number or date.");
    ordered(":filesize %1 :timestamp", 10, "error",
            "\n':filesize' is not a date.\n':timestamp' is not a number.");
    ordered(":timestamp %1 5", 11, "error", "\n':timestamp' is not a number.\n'5' is not a date.");
    ordered(":title %1 abc", 7, "error", "\n'abc' is not a number or date.");
    ordered(":title %1 5", 7, "warning",
            "\n':title' may not be a number.\n':title' may not be a date.");
    ordered("2019-03-12 %1 :title", 11, "warning",
            "\n':title' may not be a number.\n':title' may not be a date.");
    ordered(":title %1 :timestamp", 7, "warning",
            "\n':title' may not be a number.\n':title' may not be a date.");
    ordered(":any %1 (a b)", 5, "warning",
            "\n':any' may not be a number.\n':any' may not be a date."
            "\n'a b' may not be a number.\n'a b' may not be a date.");
    for (const char* passing : {"f:filesize < 10", ":filesize >= :cfilesize", ":tagid > -1",
                                ":timestamp <= :lastmodified", ":timestamp > '2019-01-01 10:00'",
                                ":filesize < 2019-03-12"})
        row(str(passing), {});
}

void TestQueryTypes::connectives_data()
{
    addColumns();
    const auto twoBooleans = [](const char* query, int position, const char* grade,
                                const char* lines) {
        for (const char* op : {"&&", "||"})
            one(str(query).arg(str(op)), position, str(op),
                str("%1 at pos %2: operator %3 requires two booleans as arguments.%4")
                    .arg(str(grade), QString::number(position), str(op), str(lines)));
    };
    twoBooleans(":title %1 :iswfs", 7, "error", "\n':title' is not a boolean.");
    twoBooleans("a %1 :hash", 2, "error", "\n':hash' is not a boolean.");
    twoBooleans(":title %1 :hash", 7, "error",
                "\n':title' is not a boolean.\n':hash' is not a boolean.");
    twoBooleans(":any %1 a", 5, "warning", "\n':any' may not be a boolean.");
    twoBooleans("a %1 f:user{k}", 2, "warning", "\n'f:user{k}' may not be a boolean.");
    twoBooleans(":any %1 :user:k", 5, "warning",
                "\n':any' may not be a boolean.\n':user:k' may not be a boolean.");
    twoBooleans(":any %1 :title", 5, "error", "\n':title' is not a boolean.");
    one(str("f:hash f:title"), 7, QString(),
        str("error at pos 7: operator implizit && requires two booleans as arguments."
            "\n'f:hash' is not a boolean.\n'f:title' is not a boolean."));
    one(str("a :any"), 2, QString(),
        str("warning at pos 2: operator implizit && requires two booleans as arguments."
            "\n':any' may not be a boolean."));

    one(str("! :title"), 0, str("!"),
        str("error at pos 0: operator ! requires a boolean as argument."
            "\n':title' is not a boolean."));
    one(str("a || !:any"), 5, str("!"),
        str("warning at pos 5: operator ! requires a boolean as argument."
            "\n':any' may not be a boolean."));
}

void TestQueryTypes::otherQueries_data()
{
    addColumns();
    // "==" and "!=" take anything.
    for (const char* left :
         {":hash", ":iswfs", ":any", ":title", "5", "'x'", "(a b)", "!:isfile"}) {
        for (const char* right : {"5", ":iswfs", ":filesize", "!a", "(:timestamp == b)", "''"}) {
            for (const char* op : {"==", "!="})
                row(QStringList({str(left), str(op), str(right)}).join(QLatin1Char(' ')), {});
        }
    }
    row(str("f:user{project} %contains \"x\""), {});
    row(str(":any %matches x"), {});

    // The whole query has to be a condition.
    one(str(":title"), 0, str(":title"), str("Result of query :title is not a boolean value"));
    one(str(" ((f:filesize))"), 3, str("f:filesize"),
        str("Result of query f:filesize is not a boolean value"));
    for (const char* passing : {"report", "'%1'", "5", ":iswfs", ":any", ":user{k}", "a == b",
                                ":title %contains a", "!a", "1 < 2"})
        row(str(passing), {});
}

void TestQueryTypes::compareFindings()
{
    QFETCH(QString, query);
    QTEST(findingsOf(query), "findings");
    const tresk::TreskFindQuery compiled(query);
    QTEST(tresktest::textOf(compiled.getErrors()), "findings");
    QCOMPARE(compiled.isValid(), compiled.getErrors().isEmpty());
}

void TestQueryTypes::warningsAreErrors()
{
    tresk::TreskFindQuery query(str("a || :any"));
    QCOMPARE(query.getErrors().size(), 1);
    QVERIFY(query.getErrors().first().errorMessage().startsWith(str("warning at pos 2: ")));
    QVERIFY(query.getErrors().first().isError());
    QVERIFY(!query.getErrors().first().isWarning());
    QVERIFY(tresk::containsErrors(query.getErrors()));
    QVERIFY(!tresk::containsWarnings(query.getErrors()));
    QVERIFY(!query.isValid());
    QVERIFY(!query.setQuery(str("!:any")));
    QVERIFY(query.setQuery(str("!:iswfs")));
    QVERIFY(query.isValid());
}

void TestQueryTypes::manyFindingsKeepTheirOrder()
{
    // Operands in front of their operator, the whole query last.
    QCOMPARE(findingsOf(str("f:nosuch")),
             QStringList({str("0 [f:nosuch] error at pos 0: attribute nosuch does not exist."),
                          str("0 [f:nosuch] Result of query f:nosuch is not a boolean value")}));
    QCOMPARE(findingsOf(str(":title && f:no || !(:filesize < x) :any")),
             QStringList(
                 {str("10 [f:no] error at pos 10: attribute no does not exist."),
                  str("30 [<] error at pos 30: operator < requires either two numbers or two dates "
                      "as arguments.\n':filesize' is not a date.\n'x' is not a number or date."),
                  str("15 [||] error at pos 15: operator || requires two booleans as arguments."
                      "\n'f:no' is not a boolean."),
                  str("7 [&&] error at pos 7: operator && requires two booleans as arguments."
                      "\n':title' is not a boolean."),
                  str("35 [] warning at pos 35: operator implizit && requires two booleans as "
                      "arguments.\n':any' may not be a boolean.")}));
}

QTEST_GUILESS_MAIN(TestQueryTypes)
#include "tst_querytypes.moc"
