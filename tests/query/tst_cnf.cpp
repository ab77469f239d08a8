#include <tresk/ConjunctiveNormalForm.h>
#include <tresk/QueryError.h>

#include <QTest>

#include <algorithm>

using tresk::CNFDisjunction;
using tresk::CNFLiteral;
using tresk::CNFLiteralIndex;
using tresk::CNFOperand;
using tresk::ConjunctiveNormalForm;
using tresk::QueryError;

class TestCnf : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void operands();
    void operandsAreValues();
    void predicate();
    void boolVariable();
    void invalidLiteral();
    void negationIsSet();
    void variableNamesOfALiteral();
    void disjunctionKeepsCopiesInOrder();
    void locationsInADisjunction();
    void formKeepsCopiesInOrder();
    void lastDisjunctionCanBeAddedTo();
    void literalAtAnIndex_data();
    void literalAtAnIndex();
    void locationsInAForm();
    void clear();
    void copiesOfFormsAreIndependent();
    void errorIsWhatItWasMadeOf();
    void kindsOfErrors_data();
    void kindsOfErrors();
};

namespace {

const QString file = QStringLiteral("f");
const QString step = QStringLiteral("w");

CNFOperand variable(const QString& name)
{
    return CNFOperand::fromVariable(name, QStringLiteral("title"));
}

CNFOperand text()
{
    return CNFOperand::fromString(QStringLiteral("text"));
}

CNFLiteral comparison(const CNFOperand& left, const CNFOperand& right)
{
    return {false, left, QStringLiteral("=="), right};
}

QList<int> sorted(QList<int> values)
{
    std::sort(values.begin(), values.end());
    return values;
}

/// A form of 2 disjunctions: w | f w, and f = w.
ConjunctiveNormalForm sample()
{
    CNFDisjunction first;
    first.addLiteral(CNFLiteral(false, variable(step)));
    first.addLiteral(comparison(variable(file), variable(step)));
    CNFDisjunction second;
    second.addLiteral(comparison(variable(file), text()));
    ConjunctiveNormalForm form;
    form.addDisjunction(first);
    form.addDisjunction(second);
    return form;
}

} // namespace

void TestCnf::operands()
{
    const CNFOperand invalid = CNFOperand::fromInvalid();
    QVERIFY(invalid.isInvalid() && !invalid.isString() && !invalid.isVariable());
    QCOMPARE(invalid.string(), QString());
    QCOMPARE(invalid.variableName(), QString());
    QCOMPARE(invalid.variableAttribute(), QString());

    const CNFOperand string = CNFOperand::fromString(QStringLiteral("it's"));
    QVERIFY(!string.isInvalid() && string.isString() && !string.isVariable());
    QCOMPARE(string.string(), QStringLiteral("it's"));
    QCOMPARE(string.variableName(), QString());
    QCOMPARE(string.variableAttribute(), QString());

    const CNFOperand variable = CNFOperand::fromVariable(QStringLiteral("@unnamed-1"),
                                                         QStringLiteral("user:key"));
    QVERIFY(!variable.isInvalid() && !variable.isString() && variable.isVariable());
    QCOMPARE(variable.string(), QString());
    QCOMPARE(variable.variableName(), QStringLiteral("@unnamed-1"));
    QCOMPARE(variable.variableAttribute(), QStringLiteral("user:key"));
}

void TestCnf::operandsAreValues()
{
    CNFOperand operand = text();
    const CNFOperand copy = operand;
    operand = variable(file);
    QVERIFY(operand.isVariable());
    QCOMPARE(operand.string(), QString());
    QVERIFY(copy.isString());
    QCOMPARE(copy.string(), QStringLiteral("text"));
    QVERIFY(CNFOperand::fromString(QString()).isString()); // also an empty one
}

void TestCnf::predicate()
{
    const CNFLiteral literal(true, variable(file), QStringLiteral("%contains"), text());
    QVERIFY(literal.isPredicate() && !literal.isBoolVariable());
    QVERIFY(literal.isNegated());
    QCOMPARE(literal.op(), QStringLiteral("%contains"));
    QCOMPARE(literal.left().variableName(), file);
    QCOMPARE(literal.right().string(), QStringLiteral("text"));
    QCOMPARE(literal.boolVariable().variableName(), file); // the left operand
}

void TestCnf::boolVariable()
{
    const CNFLiteral literal(false, variable(file));
    QVERIFY(!literal.isPredicate() && literal.isBoolVariable());
    QVERIFY(!literal.isNegated());
    QCOMPARE(literal.op(), QString());
    QCOMPARE(literal.boolVariable().variableName(), file);
    QCOMPARE(literal.left().variableName(), file);
    QVERIFY(literal.right().isInvalid());
    QVERIFY(CNFLiteral(true, variable(file)).isNegated());
}

void TestCnf::invalidLiteral()
{
    const CNFLiteral literal = CNFLiteral::fromInvalid();
    QVERIFY(literal.isPredicate() && !literal.isBoolVariable());
    QVERIFY(!literal.isNegated());
    QCOMPARE(literal.op(), QStringLiteral("invalid"));
    QVERIFY(literal.left().isInvalid());
    QVERIFY(literal.right().isInvalid());
    QVERIFY(literal.boolVariable().isInvalid());
    QVERIFY(literal.variableNames().isEmpty());
}

void TestCnf::negationIsSet()
{
    CNFLiteral literal = comparison(variable(file), text());
    const CNFLiteral copy = literal;
    literal.setNegated(true);
    literal.setNegated(true); // not toggled
    QVERIFY(literal.isNegated());
    QVERIFY(!copy.isNegated());
    literal.setNegated(false);
    QVERIFY(!literal.isNegated());
    QCOMPARE(literal.op(), QStringLiteral("=="));
}

void TestCnf::variableNamesOfALiteral()
{
    QCOMPARE(comparison(variable(file), variable(step)).variableNames(),
             QSet<QString>({file, step}));
    QCOMPARE(comparison(variable(file), variable(file)).variableNames(), QSet<QString>({file}));
    QCOMPARE(comparison(text(), variable(step)).variableNames(), QSet<QString>({step}));
    QCOMPARE(comparison(variable(file), text()).variableNames(), QSet<QString>({file}));
    QVERIFY(comparison(text(), CNFOperand::fromInvalid()).variableNames().isEmpty());
    QCOMPARE(CNFLiteral(true, variable(step)).variableNames(), QSet<QString>({step}));
    QCOMPARE(CNFLiteral(false, variable(QString())).variableNames(), QSet<QString>({QString()}));
}

void TestCnf::disjunctionKeepsCopiesInOrder()
{
    CNFDisjunction disjunction;
    QCOMPARE(disjunction.numLiterals(), 0);
    CNFLiteral literal(false, variable(file));
    disjunction.addLiteral(literal);
    literal.setNegated(true);
    disjunction.addLiteral(literal);
    QCOMPARE(disjunction.numLiterals(), 2);
    QVERIFY(!disjunction.literalAt(0)->isNegated());
    QVERIFY(disjunction.literalAt(1)->isNegated());
    QVERIFY(!disjunction.literalAt(-1));
    QVERIFY(!disjunction.literalAt(2));
}

void TestCnf::locationsInADisjunction()
{
    CNFDisjunction disjunction;
    QVERIFY(disjunction.variableLocations().isEmpty());
    disjunction.addLiteral(comparison(variable(file), variable(step)));
    disjunction.addLiteral(comparison(text(), text()));
    disjunction.addLiteral(CNFLiteral(true, variable(step)));
    disjunction.addLiteral(comparison(variable(step), variable(step))); // once only
    disjunction.addLiteral(CNFLiteral::fromInvalid());
    const QMultiHash<QString, int> locations = disjunction.variableLocations();
    QCOMPARE(locations.size(), 4);
    QCOMPARE(locations.values(file), QList<int>({0}));
    QCOMPARE(sorted(locations.values(step)), QList<int>({0, 2, 3}));
}

void TestCnf::formKeepsCopiesInOrder()
{
    ConjunctiveNormalForm form;
    QCOMPARE(form.numDisjunctions(), 0);
    QVERIFY(!form.disjunctionAt(0));
    CNFDisjunction disjunction;
    form.addDisjunction(disjunction);
    disjunction.addLiteral(CNFLiteral(false, variable(file)));
    form.addDisjunction(disjunction);
    QCOMPARE(form.numDisjunctions(), 2);
    QCOMPARE(form.disjunctionAt(0)->numLiterals(), 0);
    QCOMPARE(form.disjunctionAt(1)->numLiterals(), 1);
    QVERIFY(!form.disjunctionAt(-1));
    QVERIFY(!form.disjunctionAt(2));
}

void TestCnf::lastDisjunctionCanBeAddedTo()
{
    ConjunctiveNormalForm form;
    QVERIFY(!form.lastDisjunction());
    form.addDisjunction(CNFDisjunction());
    form.addDisjunction(CNFDisjunction());
    form.lastDisjunction()->addLiteral(CNFLiteral(false, variable(file)));
    QCOMPARE(form.disjunctionAt(0)->numLiterals(), 0);
    QCOMPARE(form.disjunctionAt(1)->numLiterals(), 1);
}

void TestCnf::literalAtAnIndex_data()
{
    QTest::addColumn<int>("disjunction");
    QTest::addColumn<int>("literal");
    QTest::addColumn<bool>("exists");
    QTest::newRow("first") << 0 << 0 << true;
    QTest::newRow("last of the first") << 0 << 1 << true;
    QTest::newRow("last") << 1 << 0 << true;
    QTest::newRow("literal out of range") << 1 << 1 << false;
    QTest::newRow("disjunction out of range") << 2 << 0 << false;
    QTest::newRow("literal negative") << 0 << -1 << false;
    QTest::newRow("disjunction negative") << -1 << 0 << false;
    QTest::newRow("both negative") << -1 << -1 << false;
}

void TestCnf::literalAtAnIndex()
{
    QFETCH(int, disjunction);
    QFETCH(int, literal);
    const ConjunctiveNormalForm form = sample();
    const CNFLiteralIndex index(disjunction, literal);
    const CNFLiteralIndex copy = index;
    QCOMPARE(copy.disjunctionIndex, disjunction);
    QCOMPARE(copy.literalIndex, literal);
    QTEST(form.literalAt(copy) != nullptr, "exists");
    if (form.literalAt(copy))
        QCOMPARE(form.literalAt(copy), form.disjunctionAt(disjunction)->literalAt(literal));
}

void TestCnf::locationsInAForm()
{
    QVERIFY(ConjunctiveNormalForm().variableLocations().isEmpty());
    const QMultiHash<QString, CNFLiteralIndex> locations = sample().variableLocations();
    const auto places = [&locations](const QString& name) {
        QList<int> found;
        const QList<CNFLiteralIndex> indexes = locations.values(name);
        for (const CNFLiteralIndex& index : indexes)
            found += 10 * index.disjunctionIndex + index.literalIndex;
        return sorted(found);
    };
    QCOMPARE(locations.size(), 4);
    QCOMPARE(places(file), QList<int>({1, 10}));
    QCOMPARE(places(step), QList<int>({0, 1}));
    QVERIFY(places(QStringLiteral("other")).isEmpty());
}

void TestCnf::clear()
{
    ConjunctiveNormalForm form = sample();
    form.clear();
    QCOMPARE(form.numDisjunctions(), 0);
    QVERIFY(!form.lastDisjunction());
    QVERIFY(!form.literalAt(CNFLiteralIndex(0, 0)));
}

void TestCnf::copiesOfFormsAreIndependent()
{
    ConjunctiveNormalForm form = sample();
    ConjunctiveNormalForm copy = form;
    copy.lastDisjunction()->addLiteral(CNFLiteral::fromInvalid());
    copy.addDisjunction(CNFDisjunction());
    QCOMPARE(form.numDisjunctions(), 2);
    QCOMPARE(form.disjunctionAt(1)->numLiterals(), 1);
    QCOMPARE(copy.numDisjunctions(), 3);
    QCOMPARE(copy.disjunctionAt(1)->numLiterals(), 2);
}

void TestCnf::errorIsWhatItWasMadeOf()
{
    const QueryError error(QStringLiteral("message"), tresk::QueryErrorTypeError, 7,
                           QStringLiteral("text"));
    QueryError copy(QString(), tresk::QueryErrorTypeWarning, -1, QString());
    QVERIFY(!copy.isError() && copy.isWarning());
    QCOMPARE(copy.length(), 0);
    copy = error;
    QVERIFY(copy.isError() && !copy.isWarning());
    QCOMPARE(copy.errorMessage(), QStringLiteral("message"));
    QCOMPARE(copy.position(), 7);
    QCOMPARE(copy.originalText(), QStringLiteral("text"));
    QCOMPARE(copy.length(), 4);
    QCOMPARE(int(tresk::QueryErrorTypeError), 0);
    QCOMPARE(int(tresk::QueryErrorTypeWarning), 1);
}

void TestCnf::kindsOfErrors_data()
{
    QTest::addColumn<QString>("kinds");
    QTest::addColumn<bool>("errors");
    QTest::addColumn<bool>("warnings");
    QTest::newRow("none") << QString() << false << false;
    QTest::newRow("error") << QStringLiteral("e") << true << false;
    QTest::newRow("warning") << QStringLiteral("w") << false << true;
    QTest::newRow("errors") << QStringLiteral("ee") << true << false;
    QTest::newRow("error last") << QStringLiteral("wwe") << true << true;
    QTest::newRow("warning last") << QStringLiteral("eew") << true << true;
}

void TestCnf::kindsOfErrors()
{
    QFETCH(QString, kinds);
    QList<QueryError> errors;
    for (const QChar kind : kinds)
        errors += QueryError(QString(),
                             kind == QLatin1Char('e') ? tresk::QueryErrorTypeError
                                                      : tresk::QueryErrorTypeWarning,
                             0, QString());
    QTEST(tresk::containsErrors(errors), "errors");
    QTEST(tresk::containsWarnings(errors), "warnings");
}

QTEST_GUILESS_MAIN(TestCnf)
#include "tst_cnf.moc"
