#include "QueryModel.h"
#include "QueryText.h"
#include "RandomQuery.h"
#include "Records.h"

#include <tresk/TreskFindQuery.h>

#include <QTest>

#include <algorithm>

using tresk::CNFLiteral;
using tresk::ConjunctiveNormalForm;
using tresk::Summary;
using tresk::TreskFindQuery;
using tresktest::ModelBindings;
using tresktest::ModelCondition;
using tresktest::ModelForm;
using tresktest::ModelPlaces;
using tresktest::namesOf;
using tresktest::QueryModel;
using tresktest::RandomQuery;

/// Compares the search with plain ones, by the record of each name.
class TestQueryBruteForce : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void conjunctionsOfDisjunctions_data();
    void conjunctionsOfDisjunctions();
    void conditionsInAllCombinations_data();
    void conditionsInAllCombinations();
    void normalFormsMeanTheSame();
};

namespace {

QString textOf(const std::optional<ModelBindings>& bindings)
{
    return tresktest::textOf(bindings.has_value(), bindings.value_or(ModelBindings()));
}

QString found(const TreskFindQuery& query, const QList<Summary>& records)
{
    if (!query.isValid())
        return query.getErrors().at(0).errorMessage();
    ModelBindings bindings;
    return tresktest::textOf(query.matches(records, &bindings), bindings);
}

QString found(const QString& query, const QList<Summary>& records)
{
    return found(TreskFindQuery(query), records);
}

/// A query whose normal form is @p form.
QString queryOf(const ConjunctiveNormalForm& form)
{
    QStringList disjunctions;
    for (int i = 0; i < form.numDisjunctions(); ++i) {
        QStringList literals;
        for (int j = 0; j < form.disjunctionAt(i)->numLiterals(); ++j)
            literals += tresktest::textOf(*form.disjunctionAt(i)->literalAt(j));
        disjunctions += literals.join(QStringLiteral(" || "));
    }
    return disjunctions.join(QStringLiteral(" && "));
}

void addSeeds()
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= 4; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

} // namespace

void TestQueryBruteForce::conjunctionsOfDisjunctions_data()
{
    addSeeds();
}

void TestQueryBruteForce::conjunctionsOfDisjunctions()
{
    QFETCH(const int, seed);
    RandomQuery random(static_cast<quint32>(seed));
    int matches = 0;
    const int count = 200;
    for (int i = 0; i < count; ++i) {
        const ModelForm form = random.form();
        const QString query = random.textOf(form);
        const TreskFindQuery findQuery(query);
        for (int j = 0; j < 3; ++j) {
            const QList<Summary> records = random.records();
            const QueryModel model(records);
            const QString result = found(findQuery, records);
            QVERIFY2(result == textOf(model.search(form)),
                     qPrintable(query + QLatin1Char('\n') + result));
            QVERIFY2(result == textOf(model.tryAll(form)),
                     qPrintable(query + QLatin1Char('\n') + result));
            matches += int(result != QLatin1String("no"));
        }
    }
    QVERIFY2(matches > count && matches < 2 * count, qPrintable(QString::number(matches)));
}

void TestQueryBruteForce::conditionsInAllCombinations_data()
{
    addSeeds();
}

void TestQueryBruteForce::conditionsInAllCombinations()
{
    QFETCH(const int, seed);
    RandomQuery random(static_cast<quint32>(seed));
    for (int i = 0; i < 150; ++i) {
        const ModelCondition tree = random.tree(false);
        const QString query = random.textOf(tree);
        const TreskFindQuery findQuery(query);
        const QStringList names = namesOf(tresktest::modelFormOf(tresktest::compile(query).form));
        for (int j = 0; j < 3; ++j) {
            const QList<Summary> records = random.records();
            const QueryModel model(records);
            const auto expected = model.tryAll(
                names, [&](const ModelPlaces& places) { return holds(model, tree, places); });
            const QString result = found(findQuery, records);
            QVERIFY2(result == textOf(expected), qPrintable(query + QLatin1Char('\n') + result));
        }
    }
}

void TestQueryBruteForce::normalFormsMeanTheSame()
{
    RandomQuery random(7);
    for (int i = 0; i < 400; ++i) {
        const QString query = random.textOf(random.tree(true));
        const ConjunctiveNormalForm form = tresktest::compile(query).form;
        const QString other = queryOf(form);
        QCOMPARE(tresktest::normalFormOf(other), tresktest::textOf(form));
        const QList<Summary> records = random.records();
        QCOMPARE(found(other, records), found(query, records));
    }
}

QTEST_APPLESS_MAIN(TestQueryBruteForce)
#include "tst_query_bruteforce.moc"
