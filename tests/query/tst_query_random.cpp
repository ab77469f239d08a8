#include "LanguageModel.h"
#include "QueryText.h"
#include "RandomText.h"

#include "query/QueryTokenizer.h"

#include <QTest>

using tresktest::compile;
using tresktest::CompiledQuery;
using tresktest::str;
using tresktest::textOf;

/// The compiler beside a model of it, on random queries.
class TestQueryRandom : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pieces_data();
    void pieces();
    void expressions_data() { pieces_data(); }
    void expressions();
    void damagedExpressions_data() { pieces_data(); }
    void damagedExpressions();
    void normalFormIsAQueryOfItself_data() { pieces_data(); }
    void normalFormIsAQueryOfItself();

private:
    /// Compares what becomes of @p query; whether it is valid.
    bool compare(const QString& query);
};

namespace {

/// A name as it can be written, for one that cannot.
QString writable(QString name)
{
    name.replace(str("@unnamed-"), str("unnamed"));
    for (QChar& c : name) {
        if (c.isDigit())
            c = QChar(c.unicode() - '0' + 'A');
    }
    return name;
}

tresk::CNFOperand withWritableName(const tresk::CNFOperand& operand)
{
    return operand.isVariable() ? tresk::CNFOperand::fromVariable(writable(operand.variableName()),
                                                                  operand.variableAttribute())
                                : operand;
}

tresk::ConjunctiveNormalForm withWritableNames(const tresk::ConjunctiveNormalForm& form)
{
    tresk::ConjunctiveNormalForm renamed;
    for (int i = 0; i < form.numDisjunctions(); ++i) {
        renamed.addDisjunction(tresk::CNFDisjunction());
        for (int j = 0; j < form.disjunctionAt(i)->numLiterals(); ++j) {
            const tresk::CNFLiteral& literal = *form.disjunctionAt(i)->literalAt(j);
            const tresk::CNFOperand left = withWritableName(literal.left());
            renamed.lastDisjunction()->addLiteral(
                literal.isBoolVariable()
                    ? tresk::CNFLiteral(literal.isNegated(), left)
                    : tresk::CNFLiteral(literal.isNegated(), left, literal.op(),
                                        withWritableName(literal.right())));
        }
    }
    return renamed;
}

QString written(const tresk::CNFOperand& operand)
{
    if (operand.isInvalid())
        return str("!x"); // a condition is no operand
    if (operand.isString()) {
        QString text = operand.string();
        text.replace(str("\\"), str("\\\\")).replace(str("\""), str("\\\""));
        return str("\"%1\"").arg(text);
    }
    QString attribute = operand.variableAttribute();
    if (attribute.startsWith(str("user:")))
        attribute = str("user{%1}").arg(attribute.mid(5));
    return operand.variableName() + str(":") + attribute;
}

QString written(const tresk::CNFLiteral& literal)
{
    QString text = written(literal.left());
    if (literal.isPredicate())
        text = str("(%1) %2 (%3)").arg(text, literal.op(), written(literal.right()));
    return literal.isNegated() ? str("!(%1)").arg(text) : text;
}

/// The query that @p form is, a conjunction of disjunctions in brackets.
QString written(const tresk::ConjunctiveNormalForm& form)
{
    QStringList disjunctions;
    for (int i = 0; i < form.numDisjunctions(); ++i) {
        QStringList literals;
        for (int j = 0; j < form.disjunctionAt(i)->numLiterals(); ++j)
            literals += written(*form.disjunctionAt(i)->literalAt(j));
        disjunctions += str("(%1)").arg(literals.join(str(" || ")));
    }
    return disjunctions.join(str(" && "));
}

} // namespace

bool TestQueryRandom::compare(const QString& query)
{
    QList<tresk::QueryError> modelErrors;
    const QStringList modelTokens = textOf(tresktest::modelTokenize(query, modelErrors));
    modelErrors.clear();
    const QStringList modelForm = textOf(tresktest::modelCompile(query, modelErrors));

    QList<tresk::QueryError> errors;
    const QStringList tokens = textOf(tresk::tokenize(query, errors));
    const CompiledQuery compiled = compile(query);
    const bool isSame = tokens == modelTokens && textOf(compiled.errors) == textOf(modelErrors)
        && textOf(compiled.form) == modelForm;
    if (!isSame)
        qWarning("the query was [%s]", qPrintable(query));
    [&] { QCOMPARE(tokens, modelTokens); }();
    [&] { QCOMPARE(textOf(compiled.errors), textOf(modelErrors)); }();
    [&] { QCOMPARE(textOf(compiled.form), modelForm); }();
    return compiled.errors.isEmpty();
}

void TestQueryRandom::pieces_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 8; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void TestQueryRandom::pieces()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    for (int i = 0; i < 200 && !QTest::currentTestFailed(); ++i)
        compare(tresktest::randomPieces(random));
}

void TestQueryRandom::expressions()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(100 + seed);
    int valid = 0;
    for (int i = 0; i < 200 && !QTest::currentTestFailed(); ++i)
        valid += compare(tresktest::randomExpression(random));
    QVERIFY2(valid > 50 && valid < 190, qPrintable(QString::number(valid)));
}

void TestQueryRandom::damagedExpressions()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(200 + seed);
    for (int i = 0; i < 200 && !QTest::currentTestFailed(); ++i) {
        QString query = tresktest::randomExpression(random);
        tresktest::damageQuery(query, random);
        compare(query);
    }
}

void TestQueryRandom::normalFormIsAQueryOfItself()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(300 + seed);
    int valid = 0;
    for (int i = 0; i < 200; ++i) {
        const QString query = tresktest::randomExpression(random);
        const CompiledQuery compiled = compile(query);
        if (!compiled.errors.isEmpty())
            continue;
        ++valid;
        const tresk::ConjunctiveNormalForm form = withWritableNames(compiled.form);
        const CompiledQuery again = compile(written(form));
        if (!again.errors.isEmpty() || textOf(again.form) != textOf(form))
            qWarning("the query was [%s]", qPrintable(query));
        QCOMPARE(textOf(again.errors), QStringList());
        QCOMPARE(textOf(again.form), textOf(form));
    }
    QVERIFY2(valid > 50, qPrintable(QString::number(valid)));
}

QTEST_GUILESS_MAIN(TestQueryRandom)
#include "tst_query_random.moc"
