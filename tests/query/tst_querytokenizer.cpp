#include "QueryText.h"

#include "query/QueryTokenizer.h"

#include <QTest>

using tresktest::str;
using tresktest::textOf;

class TestQueryTokenizer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tokens_data();
    void tokens();
    void bareWords_data();
    void bareWords();
    void invalidInput_data();
    void invalidInput();
    void shownTextEndsAfterTwentyCharacters_data();
    void shownTextEndsAfterTwentyCharacters();
    void shownTextIsCountedInCodeUnits();
    void placeholdersInTheQueryStayAsTheyAre();
    void errorIsAddedToThoseBefore();
    void errorsBeforeDoNotStopTheReading();
    void nullQueryHasNoTokens();
};

void TestQueryTokenizer::tokens_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QStringList>("tokens");
    const auto row = [](const char* query, std::initializer_list<const char*> tokens) {
        QStringList lines;
        for (const char* token : tokens)
            lines += str(token);
        QTest::newRow(query) << str(query) << lines;
    };
    // Blanks.
    row("", {});
    row(" ", {});
    row(" \t\r\n ", {});
    row("\ta\r\n b", {"string(a)[a]@1", "string(b)[b]@5"});

    // Attributes.
    row("file:hash", {"variable(file,hash)[file:hash]@0"});
    row(":hash", {"variable(,hash)[:hash]@0"});
    row("FiLe:Hash1", {"variable(FiLe,Hash1)[FiLe:Hash1]@0"}); // case stays
    row(":7", {"variable(,7)[:7]@0"});
    row("file:user:key", {"variable(file,user:key)[file:user:key]@0"});
    row("f:a:b:c", {"variable(f,a:b)[f:a:b]@0", "variable(,c)[:c]@5"});
    row("f:a f:b", {"variable(f,a)[f:a]@0", "variable(f,b)[f:b]@4"});
    row("f:a-b", {"variable(f,a)[f:a]@0", "string(-b)[-b]@3"});
    row("f:a_b", {"variable(f,a)[f:a]@0", "string(_b)[_b]@3"});
    row("a1:b", {"string(a1)[a1]@0", "variable(,b)[:b]@2"}); // no digits in names
    row("1a:b", {"string(1a)[1a]@0", "variable(,b)[:b]@2"});
    row("\xc3\xa4:b", {"string(\xc3\xa4)[\xc3\xa4]@0", "variable(,b)[:b]@1"});
    row("f:a\xc3\xa4", {"variable(f,a)[f:a]@0", "string(\xc3\xa4)[\xc3\xa4]@3"});

    // User attributes. The key keeps its escapes.
    row("file:user{project code}", {"variable(file,user:project code)[file:user{project code}]@0"});
    row(":user{k}", {"variable(,user:k)[:user{k}]@0"});
    row("file:user{a}b}", {"variable(file,user:a)[file:user{a}]@0", "string(b})[b}]@12"});
    row(":user{a\\}b}", {"variable(,user:a\\}b)[:user{a\\}b}]@0"});
    row(":user{a\\\\}", {"variable(,user:a\\\\)[:user{a\\\\}]@0"});
    row(":user{a\\\\}b}", {"variable(,user:a\\\\)[:user{a\\\\}]@0", "string(b})[b}]@10"});
    row(":user{\"(x) && :y'\n{}", {"variable(,user:\"(x) && :y'\n{)[:user{\"(x) && :y'\n{}]@0"});
    row(":user{ }", {"variable(,user: )[:user{ }]@0"});
    row(":user{}", {"variable(,user)[:user]@0", "string({})[{}]@5"}); // a key is not empty
    row(":user{k", {"variable(,user)[:user]@0", "string({k)[{k]@5"});
    row(":user{k\\}", {"variable(,user)[:user]@0", "string({k\\})[{k\\}]@5"});
    row(":user{a\\b}", {"variable(,user)[:user]@0", "string({a\\b})[{a\\b}]@5"});
    row(":USER{k}", {"variable(,USER)[:USER]@0", "string({k})[{k}]@5"});
    row(":user {k}", {"variable(,user)[:user]@0", "string({k})[{k}]@6"});
    row("f:user{k}:hash", {"variable(f,user:k)[f:user{k}]@0", "variable(,hash)[:hash]@9"});
    row("f:user:user{k}", {"variable(f,user:user)[f:user:user]@0", "string({k})[{k}]@11"});
    row(":user{:user{k}", {"variable(,user::user{k)[:user{:user{k}]@0"});
    row(":user{\\x :user{k}",
        {"variable(,user)[:user]@0", "string({\\x)[{\\x]@5", "variable(,user:k)[:user{k}]@9"});

    // Quoted texts.
    row("'it\\'s'", {"string(it's)['it\\'s']@0"});
    row("\"a\\\\b\"", {"string(a\\b)[\"a\\\\b\"]@0"});
    row("\"say \\\"x\\\"\"", {"string(say \"x\")[\"say \\\"x\\\"\"]@0"});
    row("''", {"string()['']@0"});
    row("\"\"", {"string()[\"\"]@0"});
    row("'a\"b' \"c'd\"", {"string(a\"b)['a\"b']@0", "string(c'd)[\"c'd\"]@6"});
    row("'\\\\\\''", {"string(\\')['\\\\\\'']@0"});
    row("'\\\\\\\\'", {"string(\\\\)['\\\\\\\\']@0"});
    row("'a\n\x0b\x0c&& b'", {"string(a\n\x0b\x0c&& b)['a\n\x0b\x0c&& b']@0"});
    row("'a''b'", {"string(a)['a']@0", "string(b)['b']@3"});
    row("a'b'", {"string(a)[a]@0", "string(b)['b']@1"});
    row("'a'b", {"string(a)['a']@0", "string(b)[b]@3"});

    // Operators.
    row("a <= b", {"string(a)[a]@0", "operator(<=)[<=]@2", "string(b)[b]@5"});
    row("a<=b", {"string(a)[a]@0", "operator(<=)[<=]@1", "string(b)[b]@3"});
    row("<>", {"operator(<)[<]@0", "operator(>)[>]@1"});
    row("<=>=", {"operator(<=)[<=]@0", "operator(>=)[>=]@2"});
    row("<<", {"operator(<)[<]@0", "operator(<)[<]@1"});
    row("a==b!=c",
        {"string(a)[a]@0", "operator(==)[==]@1", "string(b)[b]@3", "operator(!=)[!=]@4",
         "string(c)[c]@6"});
    row("a&&b||c",
        {"string(a)[a]@0", "operator(&&)[&&]@1", "string(b)[b]@3", "operator(||)[||]@4",
         "string(c)[c]@6"});
    row("a != b", {"string(a)[a]@0", "operator(!=)[!=]@2", "string(b)[b]@5"});
    row("!a", {"operator(!)[!]@0", "string(a)[a]@1"});
    row("!!a", {"operator(!)[!]@0", "operator(!)[!]@1", "string(a)[a]@2"});
    row("! !=", {"operator(!)[!]@0", "operator(!=)[!=]@2"});
    row("()", {"operator(()[(]@0", "operator())[)]@1"});
    row("(a)", {"operator(()[(]@0", "string(a)[a]@1", "operator())[)]@2"});

    // Operators that are words take the white space behind them into their text.
    row("x %contains", {"string(x)[x]@0", "operator(%contains)[%contains]@2"});
    row("x %contains ", {"string(x)[x]@0", "operator(%contains)[%contains ]@2"});
    row("x %contains  y",
        {"string(x)[x]@0", "operator(%contains)[%contains ]@2", "string(y)[y]@13"});
    row("x%matches\ty", {"string(x)[x]@0", "operator(%matches)[%matches\t]@1", "string(y)[y]@10"});
    row("%isapprox\r\n1", {"operator(%isapprox)[%isapprox\r]@0", "string(1)[1]@11"});
    row("%matches", {"operator(%matches)[%matches]@0"});
    row("%isapprox", {"operator(%isapprox)[%isapprox]@0"});
}

void TestQueryTokenizer::tokens()
{
    QFETCH(QString, query);
    QList<tresk::QueryError> errors;
    QTEST(textOf(tresk::tokenize(query, errors)), "tokens");
    QVERIFY(errors.isEmpty());
}

void TestQueryTokenizer::bareWords_data()
{
    QTest::addColumn<QString>("word");
    for (const char* word :
         {"report", "report.pdf", "a-b_c+d*e/f", "{}", "[a]", "\\", "a\\b", "#$^~?;,.@`",
          "\xc3\xa4\xc3\xb6", "\xe6\x97\xa5\xe6\x9c\xac", "\xf0\x9f\x98\x80", "10kb", "2019-03-12",
          "\x01", "\x7f", "\xe2\x80\x8b"})
        QTest::newRow(word) << str(word);
    QTest::newRow("null character") << QString(QChar(0));
    QTest::newRow("high surrogate") << QString(QChar(0xd83d));
    QTest::newRow("low surrogates") << QString(2, QChar(0xde00));
}

void TestQueryTokenizer::bareWords()
{
    QFETCH(QString, word);
    QList<tresk::QueryError> errors;
    const std::vector<tresk::QueryToken> tokens = tresk::tokenize(
        QLatin1Char(' ') + word + QLatin1Char('<'), errors);
    QVERIFY(errors.isEmpty());
    QCOMPARE(int(tokens.size()), 2);
    QVERIFY(tokens.front().isString());
    QCOMPARE(tokens.front().value(), word);
    QCOMPARE(tokens.front().originalText(), word);
    QCOMPARE(tokens.front().position(), 1);
    QCOMPARE(tokens.back().position(), int(word.size()) + 1);
}

void TestQueryTokenizer::invalidInput_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<int>("position");
    const auto row = [](const char* query, int position) {
        QTest::newRow(query) << str(query) << position;
    };
    // Quotes that are not closed, or hold a backslash in front of something else.
    row("'", 0);
    row("a 'b", 2);
    row("a \"b", 2);
    row("'a\\'", 0);
    row("'a\\b'", 0);
    row("\"a\\'b\"", 0); // the other quote is not escaped
    row("'a\\\"b'", 0);
    row("'a\\", 0);
    row("'it's'", 5);
    row("a\"", 1);
    // Colons.
    row(":", 0);
    row("f:", 1); // "f" is a word, ":" is nothing
    row("f: a", 1);
    row("::a", 0);
    row("f:a:", 3);
    row("f:-", 1);
    row(":\xc3\xa4", 0);
    // Halves of operators.
    row("a & b", 2);
    row("a | b", 2);
    row("a = b", 2);
    row("a < = b", 4);
    row("a &&& b", 4);
    row("a === b", 4);
    row("!!==", 3);
    row("a =< b", 2);
    // Operators that are words.
    row("x %containsy", 2);
    row("x %contains(y)", 2);
    row("%contains'y'", 0);
    row("%CONTAINS y", 0);
    row("% contains y", 0);
    row("%", 0);
    row("50%", 2);
    row("%contain s", 0);
    row("%matches%contains ", 0);
    row("%isapprox:filesize", 0);
    // White space that is no blank, and is in no word either.
    row("a\x0b"
        "b",
        1);
    row("a \x0c", 2);
    row("a\xc2\xa0"
        "b",
        1); // no-break space
    row("a\xc2\x85"
        "b",
        1); // next line
    row("\xe2\x80\x83", 0); // em space
    row("\xe3\x80\x80", 0); // ideographic space
    row("\xe2\x80\xa8", 0); // line separator
    row("x %contains\xc2\xa0y", 11); // ends the operator, but is read again
    row("x %matches\x0by", 10);
}

void TestQueryTokenizer::invalidInput()
{
    QFETCH(QString, query);
    QFETCH(int, position);
    QList<tresk::QueryError> errors;
    const std::vector<tresk::QueryToken> tokens = tresk::tokenize(query, errors);
    QVERIFY(tokens.empty());
    QCOMPARE(errors.size(), 1);
    const QString rest = query.mid(position);
    QVERIFY(rest.size() <= 20);
    QCOMPARE(errors.first().errorMessage(),
             str("Error while reading text at position %1 (%2):\n input seems to be invalid")
                 .arg(QString::number(position), rest));
    QCOMPARE(errors.first().position(), position);
    QCOMPARE(errors.first().originalText(), rest);
    QVERIFY(errors.first().isError());
}

void TestQueryTokenizer::shownTextEndsAfterTwentyCharacters_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("shown");
    QTest::newRow("4") << 4 << str("'");
    QTest::newRow("22") << 22 << str("'bcdefghijklmnopqrs");
    QTest::newRow("23") << 23 << str("'bcdefghijklmnopqrst");
    QTest::newRow("24") << 24 << str("'bcdefghijklmnopqrst...");
    QTest::newRow("30") << 30 << str("'bcdefghijklmnopqrst...");
}

void TestQueryTokenizer::shownTextEndsAfterTwentyCharacters()
{
    QFETCH(int, size);
    QFETCH(QString, shown);
    const QString query = str("ab 'bcdefghijklmnopqrstuvwxyz.").left(size);
    QCOMPARE(int(query.size()), size);
    QList<tresk::QueryError> errors;
    QVERIFY(tresk::tokenize(query, errors).empty());
    QCOMPARE(errors.size(), 1);
    QCOMPARE(errors.first().errorMessage(),
             str("Error while reading text at position 3 (") + shown
                 + str("):\n input seems to be invalid"));
    QCOMPARE(errors.first().position(), 3);
    QCOMPARE(errors.first().originalText(), query.mid(3)); // all of it
}

void TestQueryTokenizer::shownTextIsCountedInCodeUnits()
{
    const QString query = str("= 34567890123456789\xf0\x9f\x98\x80");
    QCOMPARE(int(query.size()), 21);
    QList<tresk::QueryError> errors;
    tresk::tokenize(query, errors);
    QVERIFY(errors.first().errorMessage().contains(QLatin1Char('(') + query.left(20)
                                                   + str("...):"))); // half of the pair
    QCOMPARE(errors.first().originalText(), query);
}

void TestQueryTokenizer::placeholdersInTheQueryStayAsTheyAre()
{
    QList<tresk::QueryError> errors;
    tresk::tokenize(str("a %1 %2"), errors);
    QCOMPARE(textOf(errors),
             QStringList(str("2 [%1 %2] Error while reading text at position 2 (%1 %2):\n input "
                             "seems to be invalid")));
}

void TestQueryTokenizer::errorIsAddedToThoseBefore()
{
    QList<tresk::QueryError> errors{
        tresk::QueryError(str("before"), tresk::QueryErrorTypeWarning, 7, str("x"))};
    QVERIFY(tresk::tokenize(str("a ="), errors).empty());
    QCOMPARE(errors.size(), 2);
    QCOMPARE(errors.first().errorMessage(), str("before"));
    QVERIFY(errors.first().isWarning());
    QCOMPARE(errors.last().position(), 2);
}

void TestQueryTokenizer::errorsBeforeDoNotStopTheReading()
{
    QList<tresk::QueryError> errors{
        tresk::QueryError(str("before"), tresk::QueryErrorTypeError, 7, str("x"))};
    QCOMPARE(textOf(tresk::tokenize(str("a"), errors)), QStringList(str("string(a)[a]@0")));
    QCOMPARE(errors.size(), 1);
}

void TestQueryTokenizer::nullQueryHasNoTokens()
{
    QList<tresk::QueryError> errors;
    QVERIFY(tresk::tokenize(QString(), errors).empty());
    QVERIFY(errors.isEmpty());
}

QTEST_GUILESS_MAIN(TestQueryTokenizer)
#include "tst_querytokenizer.moc"
