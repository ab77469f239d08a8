#include "QueryText.h"

#include "query/QueryToken.h"

#include <QTest>

using tresk::QueryToken;
using tresktest::str;

class TestQueryToken : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void newTokenIsOfNoKind();
    void variables();
    void strings();
    void operators_data();
    void operators();
    void implicitConjunctionHasNoTextOfItsOwn();
    void endMarkerStandsNowhere();
    void lengthIsThatOfTheOriginalText();
    void connectives_data();
    void connectives();
    void precedenceOfOperatorsOnly();
    void nameOfVariablesOnly();
    void copiesAreIndependent();
};

namespace {

QueryToken variableToken()
{
    return QueryToken::variable(str("file"), str("hash"), str("file:hash"), 3);
}

QueryToken stringToken()
{
    return QueryToken::string(str("it's"), str("'it\\'s'"), 4);
}

QueryToken operatorToken(const char* text)
{
    return QueryToken::op(str(text), str(text), 5);
}

} // namespace

void TestQueryToken::newTokenIsOfNoKind()
{
    QueryToken token;
    QVERIFY(!token.isVariable() && !token.isString() && !token.isOperator());
    token.setPrecedence(4);
    token.setVariableName(str("file"));
    QCOMPARE(token.variableName(), QString());
    QCOMPARE(token.variableAttribute(), QString());
    QCOMPARE(token.value(), QString());
    QCOMPARE(token.operatorText(), QString());
    QCOMPARE(token.precedence(), -1);
    QCOMPARE(token.associativity(), 'x');
    QCOMPARE(token.arity(), -1);
    QCOMPARE(token.originalText(), QString());
    QCOMPARE(token.length(), 0);
    QCOMPARE(token.position(), -1);
}

void TestQueryToken::variables()
{
    const QueryToken token = variableToken();
    QVERIFY(token.isVariable() && !token.isString() && !token.isOperator());
    QCOMPARE(token.variableName(), str("file"));
    QCOMPARE(token.variableAttribute(), str("hash"));
    QCOMPARE(token.originalText(), str("file:hash"));
    QCOMPARE(token.position(), 3);
    QCOMPARE(token.value(), QString());
    QCOMPARE(token.operatorText(), QString());
    QCOMPARE(token.precedence(), -1);
    QCOMPARE(token.associativity(), 'x');
    QCOMPARE(token.arity(), -1);
}

void TestQueryToken::strings()
{
    const QueryToken token = stringToken();
    QVERIFY(!token.isVariable() && token.isString() && !token.isOperator());
    QCOMPARE(token.value(), str("it's"));
    QCOMPARE(token.originalText(), str("'it\\'s'"));
    QCOMPARE(token.position(), 4);
    QCOMPARE(token.variableName(), QString());
    QCOMPARE(token.variableAttribute(), QString());
    QCOMPARE(token.operatorText(), QString());
    QCOMPARE(token.precedence(), -1);
    QCOMPARE(token.associativity(), 'x');
    QCOMPARE(token.arity(), -1);
}

void TestQueryToken::operators_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("precedence");
    QTest::addColumn<char>("associativity");
    QTest::addColumn<int>("arity");
    const auto row = [](const char* text, int precedence, char associativity, int arity) {
        QTest::newRow(text) << str(text) << precedence << associativity << arity;
    };
    row("!", 9, 'r', 1);
    row("&&", 2, 'l', 2);
    row("implizit &&", 2, 'l', 2);
    row("||", 3, 'l', 2); // tighter than "&&"
    row("==", 4, 'l', 2);
    row("!=", 4, 'l', 2);
    row("<", 5, 'l', 2);
    row("<=", 5, 'l', 2);
    row(">", 5, 'l', 2);
    row(">=", 5, 'l', 2);
    row("%contains", 6, 'l', 2);
    row("%matches", 6, 'l', 2);
    row("%isapprox", 6, 'l', 2);
    row("(", 0, 'x', 0);
    row(")", 0, 'x', 0);
    row("EOS", -100, 'x', 0);
    row("=", -1, 'x', -1);
    row("%CONTAINS", -1, 'x', -1);
    row("eos", -1, 'x', -1);
    row("fakeRoot", -1, 'x', -1);
}

void TestQueryToken::operators()
{
    QFETCH(QString, text);
    const QueryToken token = QueryToken::op(text, QStringLiteral("as written"), 7);
    QVERIFY(!token.isVariable() && !token.isString() && token.isOperator());
    QCOMPARE(token.operatorText(), text);
    QVERIFY(token.isOperator(QLatin1String(text.toLatin1())));
    QVERIFY(!token.isOperator(QLatin1String("another")));
    QTEST(token.precedence(), "precedence");
    QTEST(token.associativity(), "associativity");
    QTEST(token.arity(), "arity");
    QCOMPARE(token.originalText(), QStringLiteral("as written"));
    QCOMPARE(token.position(), 7);
    QCOMPARE(token.variableName(), QString());
    QCOMPARE(token.variableAttribute(), QString());
    QCOMPARE(token.value(), QString());
}

void TestQueryToken::implicitConjunctionHasNoTextOfItsOwn()
{
    const QueryToken token = QueryToken::implicitConjunction(12);
    QCOMPARE(token.operatorText(), str("implizit &&"));
    QCOMPARE(token.originalText(), QString());
    QCOMPARE(token.length(), 0);
    QCOMPARE(token.position(), 12);
    QCOMPARE(token.precedence(), 2);
    QCOMPARE(token.associativity(), 'l');
    QCOMPARE(token.arity(), 2);
}

void TestQueryToken::endMarkerStandsNowhere()
{
    const QueryToken token = QueryToken::endMarker();
    QCOMPARE(token.operatorText(), str("EOS"));
    QCOMPARE(token.originalText(), QString());
    QCOMPARE(token.position(), -1);
    QCOMPARE(token.precedence(), -100);
    QCOMPARE(token.associativity(), 'x');
    QCOMPARE(token.arity(), 0);
}

void TestQueryToken::lengthIsThatOfTheOriginalText()
{
    QCOMPARE(variableToken().length(), 9);
    QCOMPARE(stringToken().length(), 7); // not of its value
    QCOMPARE(QueryToken::op(str("%contains"), str("%contains "), 0).length(), 10);
}

void TestQueryToken::connectives_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("kind");
    const auto row = [](const char* text, const char* kind) {
        QTest::newRow(text) << str(text) << str(kind);
    };
    row("&&", "conjunction");
    row("implizit &&", "conjunction");
    row("||", "disjunction");
    row("!", "negation");
    row("!=", "");
    row("==", "");
    row("(", "");
}

void TestQueryToken::connectives()
{
    QFETCH(QString, text);
    QFETCH(QString, kind);
    const QueryToken token = QueryToken::op(text, text, 0);
    QCOMPARE(token.isConjunction(), kind == str("conjunction"));
    QCOMPARE(token.isDisjunction(), kind == str("disjunction"));
    QCOMPARE(token.isNegation(), kind == str("negation"));
    const QueryToken word = QueryToken::string(text, text, 0);
    QVERIFY(!word.isConjunction() && !word.isDisjunction() && !word.isNegation());
}

void TestQueryToken::precedenceOfOperatorsOnly()
{
    QueryToken token = operatorToken("<");
    token.setPrecedence(25);
    QCOMPARE(token.precedence(), 25);
    for (QueryToken other : {variableToken(), stringToken()}) {
        other.setPrecedence(25);
        QCOMPARE(other.precedence(), -1);
    }
}

void TestQueryToken::nameOfVariablesOnly()
{
    QueryToken token = variableToken();
    token.setVariableName(str("@unnamed-1"));
    QCOMPARE(token.variableName(), str("@unnamed-1"));
    QCOMPARE(token.variableAttribute(), str("hash"));
    QCOMPARE(token.originalText(), str("file:hash"));

    QueryToken word = stringToken();
    word.setVariableName(str("name"));
    QCOMPARE(word.variableName(), QString());
    QCOMPARE(word.value(), str("it's"));
    QueryToken sign = operatorToken("<");
    sign.setVariableName(str("name"));
    QCOMPARE(sign.variableName(), QString());
    QCOMPARE(sign.operatorText(), str("<"));
}

void TestQueryToken::copiesAreIndependent()
{
    const QueryToken original = operatorToken("==");
    QueryToken copy = original;
    copy.setPrecedence(14);
    QCOMPARE(original.precedence(), 4);
    QCOMPARE(copy.operatorText(), original.operatorText());
}

QTEST_GUILESS_MAIN(TestQueryToken)
#include "tst_querytoken.moc"
