#include "QueryText.h"

#include "query/QueryCompiler.h"

#include <tresk/TreskFindQuery.h>

#include <QTest>

using tresktest::findingsOf;
using tresktest::normalFormOf;
using tresktest::str;

class TestNormalForm : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void forms_data();
    void forms();
    void sameForms_data();
    void sameForms();
    void bareStrings_data();
    void bareStrings();
    void unnamedReferences_data();
    void unnamedReferences();
    void literalKinds();
    void invalidQueryHasNoTree();
    void queryIsReplaced();
};

namespace {

void row(const char* query, std::initializer_list<const char*> disjunctions)
{
    QStringList form;
    for (const char* disjunction : disjunctions)
        form += str(disjunction);
    QTest::newRow(query) << str(query) << form;
}

void addColumns()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QStringList>("form");
}

} // namespace

void TestNormalForm::forms_data()
{
    addColumns();
    // Flags stand for conditions here; a name each.
    row("a:isfile", {"a:isfile"});
    row("!a:isfile", {"!a:isfile"});
    row("a:isfile && b:isfile && c:isfile", {"a:isfile", "b:isfile", "c:isfile"});
    row("a:isfile || b:isfile || c:isfile", {"a:isfile || b:isfile || c:isfile"});
    row("a:isfile || b:isfile && c:isfile || d:isfile",
        {"a:isfile || b:isfile", "c:isfile || d:isfile"});
    row("a:isfile && (b:isfile && (c:isfile || d:isfile))",
        {"a:isfile", "b:isfile", "c:isfile || d:isfile"});
    // Comparisons.
    row("f:filesize > 10kb", {"(f:filesize > \"10kb\")"});
    row("a:md5 == b:md5", {"(a:md5 == b:md5)"});
    row("'x' != \"y\"", {"(\"x\" != \"y\")"});
    row("!(a:title %matches '*.pdf')", {"!(a:title %matches \"*.pdf\")"});
    row("a:user{k l} %contains x", {"(a:user:k l %contains \"x\")"});
    row("a:user:k == x", {"(a:user:k == \"x\")"});
    // Negations.
    row("!!a:isfile", {"a:isfile"});
    row("!!!a:isfile", {"!a:isfile"});
    row("!(!(!(!a:isfile)))", {"a:isfile"});
    row("!(f:iswfs && f:isfile)", {"!f:iswfs || !f:isfile"});
    row("!(f:iswfs f:isfile)", {"!f:iswfs || !f:isfile"});
    row("!(f:iswfs || f:isfile)", {"!f:iswfs", "!f:isfile"});
    row("!(!a:isfile && b:isfile)", {"a:isfile || !b:isfile"});
    row("!(!(a:isfile && b:isfile) || c:isfile)", {"a:isfile", "b:isfile", "!c:isfile"});
    row("!(a:isfile || b:isfile && c:isfile)",
        {"!a:isfile || !c:isfile", "!b:isfile || !c:isfile"});
    // They move inwards first: nothing is multiplied out that need not be.
    row("!((a:isfile && b:isfile) || c:isfile)", {"!a:isfile || !b:isfile", "!c:isfile"});
    row("!(!(a:isfile || b:isfile) || c:isfile)", {"a:isfile || b:isfile", "!c:isfile"});
    // Disjunctions are multiplied out, in the order of the text.
    row("a:isfile || (b:isfile && c:isfile)", {"a:isfile || b:isfile", "a:isfile || c:isfile"});
    row("(b:isfile && c:isfile) || a:isfile", {"b:isfile || a:isfile", "c:isfile || a:isfile"});
    row("(a:isfile b:isfile) || (c:isfile d:isfile)",
        {"a:isfile || c:isfile", "a:isfile || d:isfile", "b:isfile || c:isfile",
         "b:isfile || d:isfile"});
    row("(a:isfile && b:isfile) || c:isfile || (d:isfile && e:isfile)",
        {"a:isfile || c:isfile || d:isfile", "a:isfile || c:isfile || e:isfile",
         "b:isfile || c:isfile || d:isfile", "b:isfile || c:isfile || e:isfile"});
    row("a:isfile || (b:isfile && (c:isfile || (d:isfile && e:isfile)))",
        {"a:isfile || b:isfile", "a:isfile || c:isfile || d:isfile",
         "a:isfile || c:isfile || e:isfile"});
    row("(a:isfile || (b:isfile && c:isfile)) && d:isfile",
        {"a:isfile || b:isfile", "a:isfile || c:isfile", "d:isfile"});
    row("a:isfile || !(b:isfile || c:isfile)", {"a:isfile || !b:isfile", "a:isfile || !c:isfile"});
    // Nothing is left out or joined.
    row("a:isfile && a:isfile", {"a:isfile", "a:isfile"});
    row("a:isfile || !a:isfile", {"a:isfile || !a:isfile"});
    // What is neither a text nor an attribute is no operand.
    row("!a == b", {"(invalid == \"b\")"});
    row("a != (:isfile && b)", {"(\"a\" != invalid)"});
    row("(a || b) == !c", {"(invalid == invalid)"});
    row("a == b == c", {"(invalid == \"c\")"});
    row("!((a == b) == c)", {"!(invalid == \"c\")"});
    // But two negations are none, wherever they stand.
    row("!!a == b", {"(\"a\" == \"b\")"});
    row("b:isfile != !(!(a:iswfs))", {"(b:isfile != a:iswfs)"});
    row("!!!!a == !!!b", {"(\"a\" == invalid)"});
    row("!!(!!a == b)", {"(\"a\" == \"b\")"});
}

void TestNormalForm::forms()
{
    QFETCH(QString, query);
    QTEST(normalFormOf(query), "form");
}

void TestNormalForm::sameForms_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    const auto row = [](const char* first, const char* second) {
        QTest::addRow("%s, %s", first, second) << str(first) << str(second);
    };
    row("a b", "a && b");
    row("(a)(b)", "(a) && (b)");
    row("a (b || c)", "a && (b || c)");
    row("a !b", "a && !b");
    row("a || b c", "(a || b) && c");
    row("((a))", "a");
    row("a b c", "a (b (c))");
    row("'a' \"b\"", "a b");
    row("f:user{k} == x", "f:user:k == x");
    row("!(a b)", "!a || !b");
    row("!a:isfile", "!(a:isfile)");
    row("a\t||\n\rb", "a||b");
}

void TestNormalForm::sameForms()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QCOMPARE(findingsOf(first), QStringList());
    QVERIFY(!normalFormOf(first).isEmpty());
    QCOMPARE(normalFormOf(first), normalFormOf(second));
}

void TestNormalForm::bareStrings_data()
{
    addColumns();
    row("report", {"(@unnamed-1:any %contains \"report\")"});
    row("'annual report'", {"(@unnamed-1:any %contains \"annual report\")"});
    row("''", {"(@unnamed-1:any %contains \"\")"});
    row("5", {"(@unnamed-1:any %contains \"5\")"});
    row("true", {"(@unnamed-1:any %contains \"true\")"});
    row("((report))", {"(@unnamed-1:any %contains \"report\")"});
    row("!report", {"!(@unnamed-1:any %contains \"report\")"});
    row("!!report", {"(@unnamed-1:any %contains \"report\")"});
    row("a || b && c || d",
        {"(@unnamed-1:any %contains \"a\") || (@unnamed-2:any %contains \"b\")",
         "(@unnamed-3:any %contains \"c\") || (@unnamed-4:any %contains \"d\")"});
    row("a b", {"(@unnamed-1:any %contains \"a\")", "(@unnamed-2:any %contains \"b\")"});
    row("a && (f:iswfs || !(!b && c))",
        {"(@unnamed-1:any %contains \"a\")",
         "f:iswfs || (@unnamed-2:any %contains \"b\") || !(@unnamed-3:any %contains \"c\")"});
    // The same text twice is looked for in a record each.
    row("a a", {"(@unnamed-1:any %contains \"a\")", "(@unnamed-2:any %contains \"a\")"});
    // Operands of comparisons are texts, nothing else.
    row("a == b", {"(\"a\" == \"b\")"});
    row("f:title %contains a && b",
        {"(f:title %contains \"a\")", "(@unnamed-1:any %contains \"b\")"});
    row("a %contains b", {"(\"a\" %contains \"b\")"});
    row("(a && b) == c", {"(invalid == \"c\")"});
}

void TestNormalForm::bareStrings()
{
    QFETCH(QString, query);
    QCOMPARE(findingsOf(query), QStringList());
    QTEST(normalFormOf(query), "form");
}

void TestNormalForm::unnamedReferences_data()
{
    addColumns();
    row(":iswfs", {"@unnamed-1:iswfs"});
    row(":user{a key} == x", {"(@unnamed-1:user:a key == \"x\")"});
    row(":hash == \"x\" && :hash == \"y\"",
        {"(@unnamed-1:hash == \"x\")", "(@unnamed-2:hash == \"y\")"});
    row(":hash == :md5", {"(@unnamed-1:hash == @unnamed-2:md5)"});
    row("x == :hash", {"(\"x\" == @unnamed-1:hash)"});
    row(":any %contains x", {"(@unnamed-1:any %contains \"x\")"});
    // References that share a written name share a record.
    row("f:filepath == x && f:compressed", {"(f:filepath == \"x\")", "f:compressed"});
    // Only the unnamed count, from left to right, whatever the tree.
    row("f:iswfs && :isfile && g:iswfs && a",
        {"f:iswfs", "@unnamed-1:isfile", "g:iswfs", "(@unnamed-2:any %contains \"a\")"});
    row("f:hash == f:md5 && :hash == f:md5", {"(f:hash == f:md5)", "(@unnamed-1:hash == f:md5)"});
    row("f:iswfs || f:isfile || :iswfs || f:embedded || :isfile",
        {"f:iswfs || f:isfile || @unnamed-1:iswfs || f:embedded || @unnamed-2:isfile"});
    row(":iswfs && (:isfile && (:embedded && :compressed))",
        {"@unnamed-1:iswfs", "@unnamed-2:isfile", "@unnamed-3:embedded", "@unnamed-4:compressed"});
    row("!(a && :iswfs) b",
        {"!(@unnamed-1:any %contains \"a\") || !@unnamed-2:iswfs",
         "(@unnamed-3:any %contains \"b\")"});
    // They are numbered before anything is multiplied out, so what comes to stand twice keeps its
    // name.
    row(":iswfs || (:isfile && :embedded)",
        {"@unnamed-1:iswfs || @unnamed-2:isfile", "@unnamed-1:iswfs || @unnamed-3:embedded"});
    row("(a && b) || c",
        {"(@unnamed-1:any %contains \"a\") || (@unnamed-3:any %contains \"c\")",
         "(@unnamed-2:any %contains \"b\") || (@unnamed-3:any %contains \"c\")"});
    // Also those that the normal form does not show.
    row("(:iswfs && :isfile) == :hash && a",
        {"(invalid == @unnamed-3:hash)", "(@unnamed-4:any %contains \"a\")"});
}

void TestNormalForm::unnamedReferences()
{
    bareStrings();
}

void TestNormalForm::literalKinds()
{
    const tresk::ConjunctiveNormalForm form =
        tresktest::compile(str("!f:iswfs || !(f:title == x) || y")).form;
    QCOMPARE(form.numDisjunctions(), 1);
    QCOMPARE(form.disjunctionAt(0)->numLiterals(), 3);
    const tresk::CNFLiteral* flag = form.disjunctionAt(0)->literalAt(0);
    QVERIFY(flag->isBoolVariable() && flag->isNegated());
    QCOMPARE(flag->op(), QString());
    QVERIFY(flag->right().isInvalid());
    const tresk::CNFLiteral* comparison = form.disjunctionAt(0)->literalAt(1);
    QVERIFY(comparison->isPredicate() && comparison->isNegated());
    QCOMPARE(comparison->op(), str("=="));
    QVERIFY(comparison->left().isVariable() && comparison->right().isString());
    const tresk::CNFLiteral* word = form.disjunctionAt(0)->literalAt(2);
    QVERIFY(word->isPredicate() && !word->isNegated());
    QCOMPARE(word->op(), str("%contains"));
    QCOMPARE(word->left().variableAttribute(), str("any"));
    QCOMPARE(word->right().string(), str("y"));
}

void TestNormalForm::invalidQueryHasNoTree()
{
    for (const char* query : {"'", "a &&", ":title", ":nosuch == x", "a || :any", ""}) {
        QList<tresk::QueryError> errors;
        QVERIFY(tresk::compileQuery(str(query), errors).nodes.empty());
        QVERIFY(!errors.isEmpty());
        QCOMPARE(normalFormOf(str(query)), QStringList());
    }
}

void TestNormalForm::queryIsReplaced()
{
    tresk::TreskFindQuery query(str("a &&"));
    QCOMPARE(query.query(), str("a &&"));
    QVERIFY(!query.isValid());
    const tresk::TreskFindQuery copy = query;
    QVERIFY(query.setQuery(str("a")));
    QCOMPARE(query.query(), str("a"));
    QVERIFY(query.isValid());
    QVERIFY(query.getErrors().isEmpty());
    QVERIFY(!copy.isValid());
    QCOMPARE(copy.getErrors().size(), 1);
    QVERIFY(!query.setQuery(str(")")));
    QVERIFY(!query.setQuery(str("(")));
    QCOMPARE(query.getErrors().size(), 1); // those of the last one only
    QCOMPARE(query.getErrors().first().originalText(), str("("));
}

QTEST_GUILESS_MAIN(TestNormalForm)
#include "tst_normalform.moc"
