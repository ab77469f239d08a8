#include "QueryText.h"

#include <QTest>

using tresktest::compile;
using tresktest::CompiledQuery;
using tresktest::str;
using tresktest::textOf;

/// Queries that are too large or too deep for anything but a guard, and those just within it.
class TestQueryGuards : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tooComplex_data();
    void tooComplex();
    void complexEnough_data();
    void complexEnough();
    void literalsAreCountedAsTheNormalFormHoldsThem_data();
    void literalsAreCountedAsTheNormalFormHoldsThem();
    void manyFindings_data();
    void manyFindings();
};

namespace {

QString times(int count, const char* text)
{
    return str(text).repeated(count);
}

/// @p count times @p text with @p separator between.
QString list(int count, const char* text, const char* separator)
{
    return (str(text) + str(separator)).repeated(count - 1) + str(text);
}

QString nested(int count, const char* opening, const char* closing = "")
{
    return times(count, opening) + str("a") + times(count, closing);
}

QString bracketed(const QString& text)
{
    return str("(") + text + str(")");
}

/// 250 times 200 disjunctions of 2 literals.
QString hundredThousandLiterals()
{
    return bracketed(list(250, "a", " ")) + str("||") + bracketed(list(200, "b", " "));
}

int literalsIn(const tresk::ConjunctiveNormalForm& form)
{
    int count = 0;
    for (int i = 0; i < form.numDisjunctions(); ++i)
        count += form.disjunctionAt(i)->numLiterals();
    return count;
}

} // namespace

void TestQueryGuards::tooComplex_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<int>("position"); // -1 for the whole query
    const auto row = [](const char* name, const QString& query, int position) {
        QTest::newRow(name) << query << position;
    };
    row("1001 brackets", nested(1001, "(", ")"), 1000);
    row("100000 brackets", nested(100000, "(", ")"), 1000);
    row("100000 open brackets", times(100000, "("), 1000);
    row("1001 negations", nested(1001, "!"), 1000);
    row("100000 negations", nested(100000, "!"), 1000);
    row("negations of brackets", nested(501, "!(", ")"), 1000);
    row("brackets of negations", nested(501, "(!", ")"), 1000);
    row("negations before and in a bracket", times(500, "!") + bracketed(nested(500, "!")), 1000);
    row("behind another operand", str("b ") + nested(1001, "(", ")"), 1002);
    row("before a fault", nested(1001, "(") + str(" && &&"), 1000);

    row("100001 words", list(100001, "a", " "), -1);
    row("100001 literals", hundredThousandLiterals() + str(" c"), -1);
    row("100001 literals, the word first", str("c ") + hundredThousandLiterals(), -1);
    row("40 alternatives of conjunctions", list(40, "(a b)", "||"), -1);
    row("40 negated conjunctions of alternatives", str("!") + bracketed(list(40, "(a || b)", " ")),
        -1);
    row("3000 alternatives of conjunctions", list(3000, "(a b)", "||"), -1);
    row("400 alternatives in each other", nested(400, "((a b)||", ")"), -1);
}

void TestQueryGuards::tooComplex()
{
    QFETCH(QString, query);
    QFETCH(int, position);
    const CompiledQuery compiled = compile(query);
    QCOMPARE(compiled.errors.size(), 1);
    const tresk::QueryError& error = compiled.errors.first();
    QCOMPARE(error.errorMessage(), str("query is too complex"));
    QVERIFY(error.isError());
    QCOMPARE(error.position(), qMax(0, position));
    QVERIFY(error.originalText() == (position < 0 ? query : query.mid(position, 1)));
    QCOMPARE(compiled.form.numDisjunctions(), 0);
}

void TestQueryGuards::complexEnough_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("form");
    const QString word = str("(@unnamed-1:any %contains \"a\")");
    const QString negated = str("!") + word;
    QTest::newRow("1000 brackets") << nested(1000, "(", ")") << word;
    QTest::newRow("1000 negations") << nested(1000, "!") << word;
    QTest::newRow("999 negations") << nested(999, "!") << negated;
    QTest::newRow("negations of brackets") << nested(500, "!(", ")") << word;
    QTest::newRow("999 brackets of a negation")
        << nested(999, "(", ")").replace(str("a"), str("!a")) << negated;
    QTest::newRow("negations before and in a bracket")
        << times(499, "!") + bracketed(nested(500, "!")) << negated;
}

void TestQueryGuards::complexEnough()
{
    QFETCH(QString, query);
    QCOMPARE(textOf(compile(query).errors), QStringList());
    QTEST(tresktest::normalFormOf(query).join(QLatin1Char('\n')), "form");
}

void TestQueryGuards::literalsAreCountedAsTheNormalFormHoldsThem_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<int>("disjunctions");
    QTest::addColumn<int>("literals");
    const auto row = [](const char* name, const QString& query, int disjunctions, int literals) {
        QTest::newRow(name) << query << disjunctions << literals;
    };
    row("words", list(20000, "a", " "), 20000, 20000);
    row("alternatives", list(20000, "a", "||"), 1, 20000);
    row("negated words", str("!") + bracketed(list(20000, "a", " ")), 1, 20000);
    row("products", hundredThousandLiterals(), 50000, 100000);
    row("alternatives of conjunctions", list(12, "(a b)", "||"), 4096, 12 * 4096);
    row("brackets one after the other", list(3000, "(((a)))", " "), 3000, 3000);
    row("negated brackets one after the other", list(3000, "!(a)", " "), 3000, 3000);
    row("negations one after the other", list(3000, "!!!a", "||"), 1, 3000);
    row("operands of comparisons do not count",
        list(40, "(a b)", "||").prepend(str("x == (")) + str(")"), 1, 1);
}

void TestQueryGuards::literalsAreCountedAsTheNormalFormHoldsThem()
{
    QFETCH(QString, query);
    const CompiledQuery compiled = compile(query);
    QCOMPARE(textOf(compiled.errors), QStringList());
    QTEST(compiled.form.numDisjunctions(), "disjunctions");
    QTEST(literalsIn(compiled.form), "literals");
}

void TestQueryGuards::manyFindings_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<int>("findings");
    // One for each attribute and one for each operator.
    QTest::newRow("unknown attributes") << list(1000, ":nosuch", " ") << 1999;
    // Each repeats all that stands to its left.
    QTest::newRow("few that grow") << list(100, "a", " %contains ") << 98;
}

void TestQueryGuards::manyFindings()
{
    QFETCH(QString, query);
    QTEST(int(compile(query).errors.size()), "findings");
}

QTEST_GUILESS_MAIN(TestQueryGuards)
#include "tst_queryguards.moc"
