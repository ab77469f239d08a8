#include "QueryText.h"

#include "query/QueryParser.h"
#include "query/QueryTokenizer.h"

#include <QTest>

using tresktest::str;
using tresktest::textOf;

class TestQueryPrecedence : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void trees_data();
    void trees();
    void everyPairOfOperators_data();
    void everyPairOfOperators();
    void coveredTexts_data();
    void coveredTexts();
    void operandsComeInTextOrder();
    void precedenceRisesWithBrackets();
};

namespace {

tresk::QueryTree parse(const QString& query)
{
    QList<tresk::QueryError> errors;
    return tresk::parseTokens(query, tresk::checkStructure(tresk::tokenize(query, errors), errors));
}

} // namespace

void TestQueryPrecedence::trees_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("tree");
    const auto row = [](const char* query, const char* tree) {
        QTest::newRow(query) << str(query) << str(tree);
    };
    row("a", "\"a\"");
    row("f:iswfs", "f:iswfs");
    row("((a))", "\"a\"");
    row("a && b", "(\"a\" && \"b\")");
    // A disjunction binds tighter than a conjunction.
    row(":a || :b && :c || :d", "((:a || :b) && (:c || :d))");
    row(":a && :b || :c && :d", "((:a && (:b || :c)) && :d)");
    row(":a || :b :c || :d", "((:a || :b) implizit && (:c || :d))");
    row(":a :b || :c", "(:a implizit && (:b || :c))");
    // Written and implied conjunctions are alike.
    row(":a :b && :c", "((:a implizit && :b) && :c)");
    row(":a && :b :c", "((:a && :b) implizit && :c)");
    row(":a :b :c", "((:a implizit && :b) implizit && :c)");
    // From left to right.
    row(":a && :b && :c && :d", "(((:a && :b) && :c) && :d)");
    row(":a || :b || :c", "((:a || :b) || :c)");
    row(":a == :b != :c == :d", "(((:a == :b) != :c) == :d)");
    row(":a < :b <= :c > :d >= :e", "((((:a < :b) <= :c) > :d) >= :e)");
    row(":a %contains :b %matches :c %isapprox :d",
        "(((:a %contains :b) %matches :c) %isapprox :d)");
    // From the tightest to the loosest, and back.
    row(":a %contains :b < :c == :d || :e && :f",
        "(((((:a %contains :b) < :c) == :d) || :e) && :f)");
    row(":a && :b || :c == :d < :e %contains :f",
        "(:a && (:b || (:c == (:d < (:e %contains :f)))))");
    row(":a == :b < :c == :d", "((:a == (:b < :c)) == :d)");
    row(":a || :b == :c || :d", "((:a || (:b == :c)) || :d)");
    // A negation takes the operand behind it alone.
    row("!:a", "(! :a)");
    row("!!:a", "(! (! :a))");
    row("!!!:a", "(! (! (! :a)))");
    row("!:a && :b", "((! :a) && :b)");
    row("!:a == :b", "((! :a) == :b)");
    row("!:a %contains :b", "((! :a) %contains :b)");
    row("!!:a == !:b", "((! (! :a)) == (! :b))");
    row(":a == !:b", "(:a == (! :b))");
    row(":a < !:b %contains :c", "(:a < ((! :b) %contains :c))");
    row(":a !:b", "(:a implizit && (! :b))");
    row("!:a !:b", "((! :a) implizit && (! :b))");
    row(":a || !:b && !!:c", "((:a || (! :b)) && (! (! :c)))");
    // Brackets.
    row("(:a && :b) || :c", "((:a && :b) || :c)");
    row(":a || (:b && :c)", "(:a || (:b && :c))");
    row(":a && (:b && :c)", "(:a && (:b && :c))");
    row(":a || (:b || :c) || :d", "((:a || (:b || :c)) || :d)");
    row("(:a :b) (:c || :d)", "((:a implizit && :b) implizit && (:c || :d))");
    row("(:a)(:b)", "(:a implizit && :b)");
    row("(((:a && :b)) || :c) == :d", "(((:a && :b) || :c) == :d)");
    row(":a %contains (:b && :c)", "(:a %contains (:b && :c))");
    row("!(:a)", "(! :a)");
    row("!(:a && :b)", "(! (:a && :b))");
    row("!(!(:a) :b)", "(! ((! :a) implizit && :b))");
    row("!(:a == :b) && :c", "((! (:a == :b)) && :c)");
    row("(!:a) == :b", "((! :a) == :b)");
    row("!(:a) == :b", "((! :a) == :b)");
    row("(:a || :b && :c) || :d", "(((:a || :b) && :c) || :d)");
    row("((((:a && :b) || :c) && :d) || :e) && :f", "(((((:a && :b) || :c) && :d) || :e) && :f)");
    row(":a && (:b || (:c && (:d || :e)))", "(:a && (:b || (:c && (:d || :e))))");
}

void TestQueryPrecedence::trees()
{
    QFETCH(QString, query);
    QTEST(textOf(parse(query)), "tree");
}

void TestQueryPrecedence::everyPairOfOperators_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<bool>("firstBinds");
    const QList<QStringList> fromLooseToTight{
        {str("&&")},
        {str("||")},
        {str("=="), str("!=")},
        {str("<"), str("<="), str(">"), str(">=")},
        {str("%contains"), str("%matches"), str("%isapprox")}};
    for (int i = 0; i < fromLooseToTight.size(); ++i) {
        for (int j = 0; j < fromLooseToTight.size(); ++j) {
            for (const QString& first : fromLooseToTight.at(i)) {
                for (const QString& second : fromLooseToTight.at(j))
                    QTest::addRow("%s, %s", qPrintable(first), qPrintable(second))
                        << first << second << (i >= j);
            }
        }
    }
}

void TestQueryPrecedence::everyPairOfOperators()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(bool, firstBinds);
    const QString written = str("%3:a %1 %4:b%5 %2 :c%6").arg(first, second);
    const QString plain = written.arg(QString(), QString(), QString(), QString());
    const QString firstInBrackets = written.arg(str("("), QString(), str(")"), QString());
    const QString secondInBrackets = written.arg(QString(), str("("), QString(), str(")"));
    QCOMPARE(textOf(parse(plain)), textOf(parse(firstBinds ? firstInBrackets : secondInBrackets)));
    QVERIFY(textOf(parse(firstInBrackets)) != textOf(parse(secondInBrackets)));
}

void TestQueryPrecedence::coveredTexts_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QStringList>("covered"); // children before their parents
    const auto row = [](const char* query, std::initializer_list<const char*> covered) {
        QStringList texts;
        for (const char* text : covered)
            texts += str(text);
        QTest::newRow(query) << str(query) << texts;
    };
    row("a", {"0 a"});
    row("  'a b'  ", {"2 'a b'"});
    row("(f:hash)", {"1 f:hash"});
    row("a && b", {"0 a", "5 b", "0 a && b"});
    row("a  b", {"0 a", "3 b", "0 a  b"});
    row("!a", {"1 a", "1 a"}); // without its own sign
    row(" ! ! a", {"5 a", "5 a", "5 a"});
    row("!a && !b", {"1 a", "1 a", "7 b", "7 b", "1 a && !b"});
    row("(a && b)", {"1 a", "6 b", "1 a && b"});
    row("(a) == (b)", {"1 a", "8 b", "1 a) == (b"}); // brackets only between operands
    row("((a) b) c", {"2 a", "5 b", "2 a) b", "8 c", "2 a) b) c"});
    row("!(a || b) c", {"2 a", "7 b", "2 a || b", "2 a || b", "10 c", "2 a || b) c"});
    row("f:user{x y} %contains \"b\\\"c\"",
        {"0 f:user{x y}", "22 \"b\\\"c\"", "0 f:user{x y} %contains \"b\\\"c\""});
    row("a\n||\tb", {"0 a", "5 b", "0 a\n||\tb"});
}

void TestQueryPrecedence::coveredTexts()
{
    QFETCH(QString, query);
    const tresk::QueryTree tree = parse(query);
    QStringList covered;
    for (const tresk::QueryNode& node : tree.nodes)
        covered += str("%1 %2").arg(QString::number(node.begin), tree.textOf(node));
    QTEST(covered, "covered");
}

void TestQueryPrecedence::operandsComeInTextOrder()
{
    const tresk::QueryTree tree = parse(str("a < b == c || !d"));
    const tresk::QueryNode& root = tree.nodes.back();
    QCOMPARE(root.token.operatorText(), str("||"));
    const tresk::QueryNode& left = tree.nodes.at(std::size_t(root.left));
    const tresk::QueryNode& right = tree.nodes.at(std::size_t(root.right));
    QCOMPARE(left.token.operatorText(), str("=="));
    QCOMPARE(tree.nodes.at(std::size_t(left.right)).token.value(), str("c"));
    QCOMPARE(right.token.operatorText(), str("!"));
    QCOMPARE(tree.nodes.at(std::size_t(right.left)).token.value(), str("d"));
    QCOMPARE(right.right, -1);
    const tresk::QueryNode& leaf = tree.nodes.at(std::size_t(right.left));
    QCOMPARE(leaf.left, -1);
    QCOMPARE(leaf.right, -1);
}

void TestQueryPrecedence::precedenceRisesWithBrackets()
{
    const tresk::QueryTree tree = parse(str("a && (b && (c && !d))"));
    QList<int> precedences;
    for (const tresk::QueryNode& node : tree.nodes) {
        if (node.token.isOperator())
            precedences += node.token.precedence();
    }
    QCOMPARE(precedences, QList<int>({29, 22, 12, 2}));
}

QTEST_GUILESS_MAIN(TestQueryPrecedence)
#include "tst_queryprecedence.moc"
