#include "Records.h"

#include <QTest>

using tresk::Summary;
using tresktest::answer;
using tresktest::ofStepAndFile;
using tresktest::quoted;
using tresktest::utf8;

/// What is read of the attributes that users gave to steps and files.
class TestQueryUserAttributes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void valuesAsConditions();
    void lines_data();
    void lines();
};

void TestQueryUserAttributes::values_data()
{
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("answers");
    const auto add = [](const char* condition, const char* answers) {
        QTest::newRow(condition) << utf8(condition) << utf8(answers);
    };
    add("x:user{project code} == 'of step'", "yes yes");
    add("x:user{both} == 'OF STEP'", "yes no");
    add("x:user{both} == 'of file'", "no yes");
    add("x:user:both == 'of file'", "no yes");
    add("x:user{own} == 'of file'", "no yes");
    add("x:user{own} == ''", "yes no");
    add("x:user{emptied} == ''", "no yes"); // what the file says counts, also if it is empty
    add("x:user{Both} == ''", "yes yes"); // names are told apart by case
    add("x:user{a\\}b} == 'brace'", "yes yes"); // the backslash is part of the name
    add("x:user{title} == ''", "yes yes"); // not the attribute of that name
    add("x:user == ''", "yes yes");
    add("x:user{:} == 'colon'", "yes yes");
}

void TestQueryUserAttributes::values()
{
    QFETCH(const QString, condition);
    QFETCH(const QString, answers);
    Summary step = tresktest::stepTitled(utf8("title"), {tresktest::fileNamed(utf8("file"))});
    step.userAttributes = {{utf8("project code"), utf8("of step")}, {utf8("both"), utf8("of step")},
                           {utf8("emptied"), utf8("of step")},      {utf8("a\\}b"), utf8("brace")},
                           {utf8("a}b"), utf8("no brace")},         {utf8(":"), utf8("colon")}};
    step.files[0].userAttributes = {{utf8("both"), utf8("of file")},
                                    {utf8("own"), utf8("of file")},
                                    {utf8("emptied"), QString()}};
    QCOMPARE(ofStepAndFile(condition, step), answers);
}

/// They are true if their text is just that.
void TestQueryUserAttributes::valuesAsConditions()
{
    const auto holds = [](const char* value) {
        Summary step = tresktest::stepTitled(utf8("title"));
        step.userAttributes = {{utf8("done"), utf8(value)}};
        return answer(utf8("x:user{done}"), {step});
    };
    QCOMPARE(holds("true"), utf8("yes"));
    for (const char* value : {"TRUE", "True", "false", "1", "yes", " true", ""})
        QCOMPARE(holds(value), utf8("no"));
}

void TestQueryUserAttributes::lines_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("text");
    const QString a = utf8("a");
    const QString b = utf8("b");
    QTest::newRow("none") << QStringList() << QString();
    QTest::newRow("one") << QStringList{a} << utf8("a=1");
    QTest::newRow("two") << QStringList{a, b} << utf8("a=1\nb=2");
    QTest::newRow("as they were read") << QStringList{b, a} << utf8("b=2\na=1");
    QTest::newRow("read twice") << QStringList{b, a, b, a} << utf8("b=2\na=1");
    QTest::newRow("without a value") << QStringList{utf8("c"), a} << utf8("c=\na=1");
}

void TestQueryUserAttributes::lines()
{
    QFETCH(const QStringList, names);
    QFETCH(const QString, text);
    Summary step = tresktest::stepTitled(utf8("title"), {tresktest::fileNamed(utf8("file"))});
    const auto set = [&](auto& record) {
        for (const QString& name : names)
            record.userAttributes.insert(name, QString());
        if (names.contains(utf8("a")))
            record.userAttributes.insert(utf8("a"), utf8("1"));
        if (names.contains(utf8("b")))
            record.userAttributes.insert(utf8("b"), utf8("2"));
        record.userAttributeNames = names;
    };
    const QString condition = utf8("x:userattrs == ") + quoted(text);
    const QString other = names.isEmpty() ? utf8("yes") : utf8("no");
    set(step);
    QCOMPARE(ofStepAndFile(condition, step), utf8("yes ") + other);
    step.userAttributes.clear();
    step.userAttributeNames.clear();
    set(step.files[0]);
    QCOMPARE(ofStepAndFile(condition, step), other + utf8(" yes"));
}

QTEST_APPLESS_MAIN(TestQueryUserAttributes)
#include "tst_queryuserattributes.moc"
