#include "QueryText.h"

#include "query/QueryParser.h"
#include "query/QueryTokenizer.h"

#include <tresk/TreskFindQuery.h>

#include <QTest>

using tresktest::findingsOf;
using tresktest::str;
using tresktest::textOf;

class TestQueryStructure : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keptTokens_data();
    void keptTokens();
    void impliedConjunctionsStandInFrontOfTheirOperand();
    void findings_data();
    void findings();
    void findingLeavesNoTokens();
    void findingIsAddedToThoseBefore();
    void onlyTheFirstFaultIsFound();
    void placeholdersInTheQueryStayAsTheyAre();
};

void TestQueryStructure::keptTokens_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("kept");
    const auto row = [](const char* query, const char* kept) {
        QTest::newRow(query) << str(query) << str(kept);
    };
    row("a", "a");
    row(":iswfs", ":iswfs");
    row("a && b || c", "a&&b||c");
    row("a == b", "a==b");
    row("alpha beta", "alpha^beta");
    row("a b c", "a^b^c");
    row("a 'b' :c", "a^'b'^:c");
    row("a (b || c)", "a^(b||c)");
    row("(a)(b)", "(a)^(b)");
    row("(a) b", "(a)^b");
    row("(a b) (c d)", "(a^b)^(c^d)");
    row("a !b", "a^!b");
    row("a !!b", "a^!!b");
    row("a !(b)", "a^!(b)");
    row("(a) !b c", "(a)^!b^c");
    row("!a !b", "!a^!b");
    row("!!!a", "!!!a");
    row("!(!(a))", "!(!(a))");
    row("((a))", "((a))");
    row("a && !b", "a&&!b");
    row("a && (b)", "a&&(b)");
    row("a || b c || d", "a||b^c||d");
    row("a < b c", "a<b^c");
    row("a <= b >= c", "a<=b>=c"); // operators are not looked at
    row("a %contains b", "a%contains b");
    row("((a)(b))((c))", "((a)^(b))^((c))");
    row("((a) && (b)) || c", "((a)&&(b))||c");
}

void TestQueryStructure::keptTokens()
{
    QFETCH(QString, query);
    QList<tresk::QueryError> errors;
    QString kept;
    for (const tresk::QueryToken& token :
         tresk::checkStructure(tresk::tokenize(query, errors), errors)) {
        const bool implied = token.operatorText() == str("implizit &&");
        kept += implied ? str("^") : token.originalText();
    }
    QTEST(kept, "kept");
    QVERIFY(errors.isEmpty());
}

void TestQueryStructure::impliedConjunctionsStandInFrontOfTheirOperand()
{
    QList<tresk::QueryError> errors;
    const QStringList tokens = textOf(
        tresk::checkStructure(tresk::tokenize(str("a b  (c) !d :e"), errors), errors));
    QCOMPARE(tokens,
             QStringList({str("string(a)[a]@0"), str("operator(implizit &&)[]@2"),
                          str("string(b)[b]@2"), str("operator(implizit &&)[]@5"),
                          str("operator(()[(]@5"), str("string(c)[c]@6"), str("operator())[)]@7"),
                          str("operator(implizit &&)[]@9"), str("operator(!)[!]@9"),
                          str("string(d)[d]@10"), str("operator(implizit &&)[]@12"),
                          str("variable(,e)[:e]@12")}));
}

void TestQueryStructure::findings_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("originalText");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* query, int position, const char* originalText,
                        const QString& message) {
        QTest::newRow(query) << str(query) << position << str(originalText) << message;
    };
    const auto unexpected = [row](const char* query, int position, const char* found) {
        row(query, position, found,
            str("Error at position %1:\n expected a string, a variable, an open bracket '(' or an "
                "unary operator (e.g. !), but found '%2'.")
                .arg(QString::number(position), str(found)));
    };
    unexpected("&& a", 0, "&&");
    unexpected("|| a", 0, "||");
    unexpected("a && && b", 5, "&&");
    unexpected("a && || b", 5, "||");
    unexpected("a == != b", 5, "!=");
    unexpected("! == b", 2, "==");
    unexpected("a (< b)", 3, "<");
    unexpected(")", 0, ")");
    unexpected("()", 1, ")");
    unexpected("a ()", 3, ")");
    unexpected("(a &&)", 5, ")");
    unexpected("(a !)", 4, ")");
    unexpected("%contains a", 0, "%contains "); // with the white space behind it
    unexpected("a && %isapprox", 5, "%isapprox");
    unexpected("a %matches\t%matches\tb", 11, "%matches\t");

    const auto closing = [row](const char* query, int position) {
        row(query, position, ")",
            str("Error at position %1:\n found a closing  bracket ) but did not except one.")
                .arg(position));
    };
    closing("a)", 1);
    closing("a )", 2);
    closing("(a))", 3);
    closing("(a) b) c", 5);
    closing(":iswfs) && &&", 6);

    row("", 0, "", str("Error after position 0:\n query is empty."));
    row(" \t\r\n", 0, "", str("Error after position 0:\n query is empty."));

    const auto premature = [row](const char* query, int position, const char* last, int after) {
        row(query, position, last,
            str("Error after position %1:\n premature end of query  after %2.")
                .arg(QString::number(after), str(last)));
    };
    premature("(a", 1, "a", 2);
    premature("(a  ", 1, "a", 2);
    premature("a &&", 2, "&&", 4);
    premature("a && ", 2, "&&", 4);
    premature("(", 0, "(", 1);
    premature("!", 0, "!", 1);
    premature("a !", 2, "!", 3);
    premature("a (", 2, "(", 3);
    premature("((a)", 3, ")", 4);
    premature("(a) && (b == 'c d'", 13, "'c d'", 18);
    premature("a %contains", 2, "%contains", 11);
    premature("a %contains ", 2, "%contains ", 12);
    premature("a %contains   ", 2, "%contains ", 12);
    premature("(a ==", 3, "==", 5);
    premature("(:user{k}", 1, ":user{k}", 9);
}

void TestQueryStructure::findings()
{
    QFETCH(QString, query);
    QFETCH(int, position);
    QFETCH(QString, originalText);
    QFETCH(QString, message);
    const tresk::TreskFindQuery compiled(query);
    QVERIFY(!compiled.isValid());
    QCOMPARE(compiled.getErrors().size(), 1);
    const tresk::QueryError error = compiled.getErrors().first();
    QCOMPARE(error.errorMessage(), message);
    QCOMPARE(error.position(), position);
    QCOMPARE(error.originalText(), originalText);
    QCOMPARE(error.length(), int(originalText.size()));
    QVERIFY(error.isError());
}

void TestQueryStructure::findingLeavesNoTokens()
{
    for (const char* query : {"a && (b", "a b )", "a b && &&", ""}) {
        QList<tresk::QueryError> errors;
        QVERIFY(tresk::checkStructure(tresk::tokenize(str(query), errors), errors).empty());
        QCOMPARE(errors.size(), 1);
    }
}

void TestQueryStructure::findingIsAddedToThoseBefore()
{
    QList<tresk::QueryError> errors{
        tresk::QueryError(str("before"), tresk::QueryErrorTypeWarning, 7, str("x"))};
    tresk::checkStructure({}, errors);
    QCOMPARE(textOf(errors),
             QStringList({str("warning 7 [x] before"),
                          str("0 [] Error after position 0:\n query is empty.")}));
}

void TestQueryStructure::onlyTheFirstFaultIsFound()
{
    // What the later stages would have to say is not reached either.
    QCOMPARE(findingsOf(str(":nosuch) && && (")).size(), 1);
    QCOMPARE(findingsOf(str(":nosuch (")).size(), 1);
    QCOMPARE(findingsOf(str("&& :title < (\"")).size(), 1);
    QVERIFY(findingsOf(str("&& :title < (\"")).first().contains(str("seems to be invalid")));
}

void TestQueryStructure::placeholdersInTheQueryStayAsTheyAre()
{
    QCOMPARE(findingsOf(str("('%1%2'")),
             QStringList(str("1 ['%1%2'] Error after position 7:\n premature end of query  after "
                             "'%1%2'.")));
}

QTEST_GUILESS_MAIN(TestQueryStructure)
#include "tst_querystructure.moc"
