#include "Records.h"

#include "query/QuerySearch.h"

#include <QTest>

using tresk::CNFDisjunction;
using tresk::CNFLiteral;
using tresk::CNFOperand;
using tresk::ConjunctiveNormalForm;
using tresk::Summary;
using tresktest::found;
using tresktest::stepsWithFiles;
using tresktest::stepTitled;
using tresktest::utf8;

/// Which records the names of a query come to stand for.
class TestQueryBindings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keysAndOrder_data();
    void keysAndOrder();
    void writtenNamesHoldDifferentRecords();
    void unnamedRecordsMayBeAny();
    void goesBackToEarlierNames();
    void namesInOrderOfTheirFirstAppearance_data();
    void namesInOrderOfTheirFirstAppearance();
    void conditionsWithoutNames_data();
    void conditionsWithoutNames();
    void contradictions_data();
    void contradictions();
    void whatCannotBeEvaluatedIsAccepted_data();
    void whatCannotBeEvaluatedIsAccepted();
    void withoutRecords_data();
    void withoutRecords();
    void literalThatIsInvalidNeverHolds();
    void emptyFormHolds();
};

namespace {

void addColumns()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("result");
}

void addRow(const char* query, const char* result)
{
    QTest::newRow(query) << utf8(query) << utf8(result);
}

} // namespace

void TestQueryBindings::keysAndOrder_data()
{
    addColumns();
    addRow("x:any != ''", "yes x=wfs:0");
    addRow("x:iswfs", "yes x=wfs:0");
    addRow("x:isfile", "yes x=file:0:0");
    addRow("!x:isfile", "yes x=wfs:0");
    addRow("x:title == 2", "yes x=wfs:2");
    addRow("x:filename == 0.1", "yes x=file:0:1");
    addRow("x:filename == 2.1", "yes x=file:2:1");
    addRow("x:filename %matches '?.1' && x:filename > ''", "invalid");
    addRow("x:filename %matches '?.1'", "yes x=file:0:1");
    addRow("x:any %contains 1", "yes x=file:0:0"); // an id that is not known is -1
    addRow("x:any %contains .1", "yes x=file:0:1");
    addRow("x:any == 1", "yes x=wfs:1");
    addRow("x:iswfs && y:iswfs && z:iswfs", "yes x=wfs:0 y=wfs:1 z=wfs:2");
    addRow("x:isfile && y:iswfs && z:isfile", "yes x=file:0:0 y=wfs:0 z=file:0:1");
    addRow("x:title == 1 && X:title == 0", "yes X=wfs:0 x=wfs:1"); // names are told apart by case
    addRow("x:iswfs || y:title == 2", "yes x=wfs:0 y=file:0:0");
}

void TestQueryBindings::keysAndOrder()
{
    QFETCH(const QString, query);
    QFETCH(const QString, result);
    const QString actual = found(query, stepsWithFiles(3, 2));
    if (result == utf8("invalid"))
        QVERIFY(actual.startsWith(result));
    else
        QCOMPARE(actual, result);
}

void TestQueryBindings::writtenNamesHoldDifferentRecords()
{
    const QString two = utf8("a:iswfs && b:iswfs");
    QCOMPARE(found(two, stepsWithFiles(1, 3)), utf8("no"));
    QCOMPARE(found(two, stepsWithFiles(2, 0)), utf8("yes a=wfs:0 b=wfs:1"));
    const QString anyTwo = utf8("a:any %contains '' && b:any %contains ''");
    QCOMPARE(found(anyTwo, stepsWithFiles(1, 0)), utf8("no"));
    QCOMPARE(found(anyTwo, stepsWithFiles(1, 1)), utf8("yes a=wfs:0 b=file:0:0"));
    // Also where nothing is asked of them any more.
    QCOMPARE(found(utf8("a:iswfs || b:iswfs"), stepsWithFiles(1, 0)), utf8("no"));
    QCOMPARE(found(utf8("a:iswfs || b:iswfs"), stepsWithFiles(1, 1)),
             utf8("yes a=wfs:0 b=file:0:0"));
    QCOMPARE(found(utf8("a:iswfs && b:title == c:title && b:iswfs && c:iswfs"),
                   {stepTitled(utf8("x")), stepTitled(utf8("y")), stepTitled(utf8("y"))}),
             utf8("yes a=wfs:0 b=wfs:1 c=wfs:2"));
    // One name is one record.
    QCOMPARE(found(utf8("a:iswfs && a:isfile"), stepsWithFiles(2, 2)), utf8("no"));
}

void TestQueryBindings::unnamedRecordsMayBeAny()
{
    const QList<Summary> one = stepsWithFiles(1, 0);
    QCOMPARE(found(utf8(":iswfs && :iswfs && :title == 0"), one), utf8("yes"));
    QCOMPARE(found(utf8("a:iswfs && :iswfs"), one), utf8("yes a=wfs:0"));
    QCOMPARE(found(utf8(":iswfs && a:iswfs"), one), utf8("yes a=wfs:0"));
    QCOMPARE(found(utf8(":iswfs && :isfile"), stepsWithFiles(1, 1)), utf8("yes"));
    QCOMPARE(found(utf8(":title == :title"), one), utf8("yes"));
    // Two references, which the same words join to one record only if a name does.
    const QList<Summary> steps = {stepTitled(utf8("red")), stepTitled(utf8("green"))};
    QCOMPARE(found(utf8("red green"), steps), utf8("yes"));
    QCOMPARE(found(utf8(":title == red && :title == green"), steps), utf8("yes"));
    QCOMPARE(found(utf8("s:title == red && s:title == green"), steps), utf8("no"));
}

void TestQueryBindings::goesBackToEarlierNames()
{
    const QList<Summary> steps = {stepTitled(utf8("a")), stepTitled(utf8("b")),
                                  stepTitled(utf8("c")), stepTitled(utf8("b"))};
    QCOMPARE(found(utf8("x:iswfs && y:title == x:title"), steps), utf8("yes x=wfs:1 y=wfs:3"));
    QCOMPARE(found(utf8("x:iswfs && y:title == x:title && z:title == c"), steps),
             utf8("yes x=wfs:1 y=wfs:3 z=wfs:2"));
    QCOMPARE(found(utf8("x:iswfs && y:iswfs && x:title == b && y:title == b && z:title != x:title"
                        " && z:title != a"),
                   steps),
             utf8("yes x=wfs:1 y=wfs:3 z=wfs:2"));
    QCOMPARE(found(utf8("x:iswfs && y:title == x:title && z:title == x:title"), steps), utf8("no"));
    // Holding a record that another name needs is given up.
    QCOMPARE(found(utf8("x:iswfs && y:title == a"), steps), utf8("yes x=wfs:1 y=wfs:0"));
    QCOMPARE(found(utf8("w:iswfs && x:iswfs && y:title == a && z:title == c"), steps),
             utf8("yes w=wfs:1 x=wfs:3 y=wfs:0 z=wfs:2"));
}

/// Where it matters which name takes the first record.
void TestQueryBindings::namesInOrderOfTheirFirstAppearance_data()
{
    addColumns();
    addRow("b:iswfs && a:iswfs", "yes a=wfs:1 b=wfs:0");
    addRow("a:iswfs && b:iswfs", "yes a=wfs:0 b=wfs:1");
    addRow("b:iswfs || a:iswfs", "yes a=file:0:0 b=wfs:0");
    addRow("b:tool == a:tool && a:iswfs && b:iswfs", "yes a=wfs:1 b=wfs:0");
    addRow("'' == b:tool && a:iswfs && b:iswfs", "yes a=wfs:1 b=wfs:0");
    addRow("c:tool == b:tool || a:iswfs", "yes a=file:0:1 b=file:0:0 c=wfs:0");
    addRow("(c:isfile || a:isfile) && (b:iswfs || a:isfile)", "yes a=file:0:0 b=file:0:1 c=wfs:0");
    addRow("!(c:isfile && a:iswfs) && b:iswfs", "yes a=file:0:0 b=wfs:1 c=wfs:0");
    addRow("zeta:iswfs && Alpha:iswfs && m:isfile", "yes Alpha=wfs:1 m=file:0:0 zeta=wfs:0");
}

void TestQueryBindings::namesInOrderOfTheirFirstAppearance()
{
    QFETCH(const QString, query);
    QFETCH(const QString, result);
    QCOMPARE(found(query, stepsWithFiles(2, 2)), result);
}

void TestQueryBindings::conditionsWithoutNames_data()
{
    addColumns();
    addRow("a == A", "yes");
    addRow("a == b", "no");
    addRow("!(a == b)", "yes");
    addRow("0 %isapprox 0", "no");
    addRow("!(0 %isapprox 0)", "yes");
    addRow("a == b || 1 < 2", "yes");
    addRow("a == b || 2 < 1", "no");
    addRow("a == b || x:iswfs", "yes x=wfs:0");
    addRow("a == b || x:title == 7", "no");
    addRow("a == b && x:iswfs", "no");
    addRow("a == a && x:isfile", "yes x=file:0:0");
    // A name stands for a record also where the rest decides.
    addRow("a == a || x:title == 7", "yes x=wfs:0");
    addRow("a == a || x:title == 7 || y:title == 8", "yes x=wfs:0 y=file:0:0");
}

void TestQueryBindings::conditionsWithoutNames()
{
    QFETCH(const QString, query);
    QFETCH(const QString, result);
    QCOMPARE(found(query, stepsWithFiles(2, 1)), result);
}

void TestQueryBindings::contradictions_data()
{
    addColumns();
    addRow("x:iswfs && !x:iswfs", "no");
    addRow("x:iswfs && x:isfile", "no");
    addRow("x:title == 0 && x:title == 1", "no");
    addRow("x:title == 0 && x:title != 0", "no");
    addRow("x:title != x:title", "no");
    addRow("x:iswfs == x:isfile", "no");
    addRow("x:title == 0 && y:title == 0", "no");
    addRow("x:iswfs && (y:iswfs && !y:iswfs || z:isfile && !z:isfile)", "no");
    addRow(":any == ''", "no");
}

void TestQueryBindings::contradictions()
{
    QFETCH(const QString, query);
    QFETCH(const QString, result);
    QCOMPARE(found(query, stepsWithFiles(3, 3)), result);
}

/// A condition is no value to be compared. That such a comparison has no outcome counts as if it
/// held, negated or not.
void TestQueryBindings::whatCannotBeEvaluatedIsAccepted_data()
{
    addColumns();
    addRow("(x:iswfs && x:isfile) == 'a'", "yes");
    addRow("(x:iswfs && x:isfile) != 'a'", "yes");
    addRow("!((x:iswfs && x:isfile) == 'a')", "yes");
    addRow("'a' == (x:iswfs || x:isfile)", "yes");
    addRow("(x:title == 'a') == 'true'", "yes");
    addRow("(x:title == 'a') == (y:title == 'b')", "yes");
    addRow("(!x:iswfs) == 'a'", "yes");
    // It keeps the disjunction alive in which it stands, and no other.
    addRow("(x:iswfs && x:isfile) == 'a' || 'a' == 'b'", "yes");
    addRow("(x:iswfs && x:isfile) == 'a' && 'a' == 'b'", "no");
    addRow("(x:iswfs && x:isfile) == 'a' || y:title == 7", "yes y=wfs:0");
    addRow("y:title == 7 || (x:iswfs && x:isfile) == 'a'", "yes y=wfs:0");
    addRow("(x:iswfs && x:isfile) == 'a' && y:title == 7", "no");
    addRow("(x:iswfs && x:isfile) == 'a' && y:title == 1", "yes y=wfs:1");
    // A name beside it still stands for a record.
    addRow("(x:iswfs && x:isfile) == y:title", "yes y=wfs:0");
    addRow("y:title != (x:iswfs && x:isfile) && z:iswfs", "yes y=wfs:0 z=wfs:1");
    addRow("!(y:title == (x:iswfs && x:isfile)) && y:isfile", "yes y=file:0:0");
}

void TestQueryBindings::whatCannotBeEvaluatedIsAccepted()
{
    QFETCH(const QString, query);
    QFETCH(const QString, result);
    QCOMPARE(found(query, stepsWithFiles(2, 1)), result);
}

void TestQueryBindings::withoutRecords_data()
{
    addColumns();
    addRow("report", "no");
    addRow("x:iswfs", "no");
    addRow("!x:iswfs", "no");
    addRow("x:title == x:title", "no");
    addRow("a == a", "yes");
    addRow("a == b", "no");
    addRow("a == a || x:iswfs", "no"); // there is none for the name
    addRow("a == b || x:iswfs", "no");
    addRow("(x:iswfs && x:isfile) == 'a'", "yes");
    addRow("(x:iswfs && x:isfile) == y:title", "no");
}

void TestQueryBindings::withoutRecords()
{
    QFETCH(const QString, query);
    QFETCH(const QString, result);
    QCOMPARE(found(query, {}), result);
}

void TestQueryBindings::literalThatIsInvalidNeverHolds()
{
    const CNFLiteral isStep(false, CNFOperand::fromVariable(utf8("x"), utf8("iswfs")));
    for (const bool negated : {false, true}) {
        CNFLiteral invalid = CNFLiteral::fromInvalid();
        invalid.setNegated(negated);
        ConjunctiveNormalForm form;
        form.addDisjunction(CNFDisjunction());
        form.lastDisjunction()->addLiteral(invalid);
        QVERIFY(!searchBindings(form, {}));
        QVERIFY(!searchBindings(form, stepsWithFiles(1, 1)));
        form.lastDisjunction()->addLiteral(isStep);
        QVERIFY(searchBindings(form, stepsWithFiles(1, 1)));
        form.addDisjunction(CNFDisjunction());
        form.lastDisjunction()->addLiteral(isStep);
        form.lastDisjunction()->addLiteral(invalid);
        QVERIFY(searchBindings(form, stepsWithFiles(1, 1)));
        form.addDisjunction(CNFDisjunction());
        form.lastDisjunction()->addLiteral(invalid);
        QVERIFY(!searchBindings(form, stepsWithFiles(1, 1)));
    }
}

void TestQueryBindings::emptyFormHolds()
{
    for (const QList<Summary>& records : {QList<Summary>(), stepsWithFiles(2, 2)}) {
        const auto bindings = searchBindings(ConjunctiveNormalForm(), records);
        QVERIFY(bindings.has_value());
        QVERIFY(bindings->isEmpty());
    }
}

QTEST_APPLESS_MAIN(TestQueryBindings)
#include "tst_querybindings.moc"
