#include "TokenText.h"

using tresktest::addArgumentColumns;
using tresktest::listOf;
using tresktest::parsed;
using tresktest::row;
using tresktest::text;
using tresktest::VariableTable;

class TestArgfileVariables : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void variables_data();
    void variables();
    void variablesBehindText_data();
    void variablesBehindText() { variables(); }
    void whatOnlyBeginsLikeAVariable_data();
    void whatOnlyBeginsLikeAVariable() { variables(); }
    void namesOutsideThePatternAreLookedUp();
    void valuesAreLiteral_data();
    void valuesAreLiteral();
    void nullTableReplacesNothing_data();
    void nullTableReplacesNothing();
};

namespace {

const VariableTable& table()
{
    static const VariableTable variables{{text("X"), text("1 2")},
                                         {text("XY"), text("both")},
                                         {text("7up"), text("drink")},
                                         {text("\xc3\xa9"), text("accent")}};
    return variables;
}

} // namespace

void TestArgfileVariables::variables_data()
{
    addArgumentColumns();
    row("alone", "$X", {"1 2"});
    row("in braces", "${X}y", {"1 2y"});
    row("in double quotes", "\"$X\" \"${X}y\"", {"1 2", "1 2y"});
    row("in single quotes", "'$X' 'a$X' 'abc${X}'", {"$$X", "a$$X", "abc$${X}"});
    row("escaped", "\\$X \"\\$X\" \\${X}", {"$$X", "$$X", "$${X}"});
    row("in a comment", "#$X", {});
    row("among words", "a $X b", {"a", "1 2", "b"});
    row("touching strings", "'abc'$X\"d\"", {"abc1 2d"});
    row("one after the other", "$X${X}$X", {"1 21 21 2"});
    row("unknown", "$Y", {""});
    row("unknown in braces", "${Y}z", {"z"});
    row("unknown in double quotes", "\"$Y\"", {""});
    row("unknown is an argument of its own", "a $Y b", {"a", "", "b"});
    row("names take all letters and digits", "$XY $XZ $7up", {"both", "", "drink"});
    row("digits count behind text", "abc$7up abcd$7up", {"abc$7up", "abcddrink"});
    row("names keep their case", "$x", {""});
    row("names end at other characters", "$X_ $X- $X.Y $X}", {"1 2_", "1 2-", "1 2.Y", "1 2}"});
    row("names are ASCII", "$X\xc3\xa9 ab$\xc3\xa9", {"1 2\xc3\xa9", "ab$\xc3\xa9"});
    row("two backslashes", "\\\\$X", {"\\1 2"});
    row("three backslashes", "\\\\\\$X", {"\\$$X"});
    row("four backslashes", "\\\\\\\\$X", {"\\\\1 2"});
    row("five backslashes", "\\\\\\\\\\$X", {"\\\\$$X"});
    row("backslashes in double quotes", "\"\\\\$X\" \"\\\\\\$X\"", {"\\1 2", "\\$$X"});
    row("backslashes and braces", "\\\\${X} \\\\\\${X}", {"\\1 2", "\\$${X}"});
}

void TestArgfileVariables::variables()
{
    QFETCH(const QString, content);
    QTEST(parsed(content, &table()), "arguments");
}

/// Text in front of a variable hides it unless it is a multiple of the variable as long.
void TestArgfileVariables::variablesBehindText_data()
{
    addArgumentColumns();
    row("1 before 2", "a$X", {"a$X"});
    row("2 before 2", "ab$X", {"ab1 2"});
    row("3 before 2", "abc$X", {"abc$X"});
    row("4 before 2", "abcd$X", {"abcd1 2"});
    row("2 before 3", "ab$XY", {"ab$XY"});
    row("3 before 3", "abc$XY", {"abcboth"});
    row("2 before 4 in braces", "ab${X}", {"ab${X}"});
    row("4 before 4 in braces", "abcd${X}", {"abcd1 2"});
    row("unknown one stays behind text", "abc$Y", {"abc$Y"});
    row("unknown one vanishes behind text", "ab$Y", {"ab"});
    row("code units count", "_\xf0\x9f\x98\x80$X \xf0\x9f\x98\x80$X \xc3\xa9$X",
        {"_\xf0\x9f\x98\x80$X", "\xf0\x9f\x98\x80\x31 2", "\xc3\xa9$X"});
    row("in double quotes", "\"abc $X\" \"ab $X\"", {"abc 1 2", "ab $X"});
    row("escapes count as they are written", "\\a$X \"a\\\"$X\"", {"a1 2", "a\"$X"});
    row("behind another variable", "$X--$X $X-$X", {"1 2--1 2", "1 2-$X"});
    row("behind a hidden one", "abc$X-$X", {"abc$X-1 2"});
    row("hidden behind a hidden one", "abc$Xabc$X", {"abc$Xabc$X"});
    row("backslashes behind text", "a\\$X a\\\\$X", {"a$$X", "a\\$X"});
    row("backslashes behind a multiple", "abcd\\\\$X", {"abcd\\1 2"});
    row("four backslashes behind text", "a\\\\\\\\$X", {"a\\\\$X"});
    row("behind an escaped one", "\\$X$X \\$XY$X", {"$$X$X", "$$XY1 2"});
    row("escaped one stays so when cut", "a\\\\\\$X$XY", {"a\\$$Xboth"});
    row("escaped one is none when cut", "a\\\\\\$X$X", {"a\\\\1 21 2"});
    row("tokens count for themselves", "abc'd'$X", {"abcd1 2"});
}

/// What begins with a dollar sign where text is cut is taken for a variable too.
void TestArgfileVariables::whatOnlyBeginsLikeAVariable_data()
{
    addArgumentColumns();
    row("dollar sign alone", "$", {""});
    row("dollar signs alone", "$$", {""});
    row("dollar sign at the end", "a$ \"a$\"", {"a$", "a$"});
    row("no name", "$- $-X \"$ \" \"$ X\"", {"", "", "", ""});
    row("name that is not ASCII", "$\xc3\xa8", {""});
    row("brace that is not closed", "${X ${X-}", {"", ""});
    row("braces around nothing", "${} ${}X", {"", ""});
    row("in front of a variable", "$-$X", {"1 2"});
    row("in front of a variable in double quotes", "\"$ $X\"", {"1 2"});
    row("dollar signs in front of a variable", "$$X $$$X", {"X", "1 2"});
    row("behind a variable", "$X$ $X$-", {"1 2", "1 2"});
    row("behind an escaped dollar sign", "\\$$", {"$$$"});
    row("backslash vanishes with it", "$\\\\$X", {"$$X"});
    row("word that then begins with a single quote", "$\\'$X $\\'ab$X", {"$$", "ab$$"});
    row("word that then begins with a double quote", "$\\\"$X $\\\"ab$X", {"$", "ab$"});
    row("string that then begins with a quote", "\"$\\\"$X\" \"$\\'$X\"", {"\"$X", "'$X"});
}

void TestArgfileVariables::namesOutsideThePatternAreLookedUp()
{
    const VariableTable odd{{QString(), text("nothing")},
                            {text("-"), text("minus")},
                            {text("{X"), text("open")},
                            {text(" "), text("blank")},
                            {text("\xc3\xa9"), text("accent")}};
    QCOMPARE(parsed(text("$ ${} $- ${-} ${X $\xc3\xa9"), &odd),
             listOf({"nothing", "nothing", "minus", "minus", "open", "accent"}));
    QCOMPARE(parsed(text("\"$ $X\" \"$ \""), &odd), listOf({"blank", "blank"}));
}

void TestArgfileVariables::valuesAreLiteral_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("replaced");
    const auto row = [](const char* name, const char* value, const char* replaced) {
        QTest::newRow(name) << text(value) << text(replaced);
    };
    row("empty", "", "");
    row("word", "abc", "abc");
    row("single quote", "it's", "it's");
    row("double quotes", "\"a\"", "\"a\"");
    row("backslashes", "\\a\\\\", "\\a\\\\");
    row("sharp", "#a", "#a");
    row("white space", " a\t\r\nb ", " a\t\r\nb ");
    row("dollar sign", "a$b", "a$$b");
    row("dollar signs", "$$", "$$$$");
    row("variables", "$X ${X}", "$$X $${X}");
    row("escaped dollar sign", "\\$", "\\$$");
    row("surrogate pair", "\xf0\x9f\x98\x80", "\xf0\x9f\x98\x80");
}

void TestArgfileVariables::valuesAreLiteral()
{
    QFETCH(const QString, value);
    QFETCH(const QString, replaced);
    const VariableTable variables{{text("X"), value}};
    for (const char* content : {"$X", "${X}", "\"$X\"", "\"${X}\""})
        QCOMPARE(parsed(text(content), &variables), QStringList(replaced));
    QCOMPARE(parsed(text("ab$X'c'"), &variables), QStringList(text("ab%1c").arg(replaced)));
    QCOMPARE(parsed(text("\"ab$X\" $X$X"), &variables),
             QStringList({text("ab") + replaced, replaced + replaced}));
}

void TestArgfileVariables::nullTableReplacesNothing_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QString>("withNull");
    QTest::addColumn<QString>("withEmpty");
    const auto row = [](const char* content, const char* withNull, const char* withEmpty) {
        QTest::newRow(content) << text(content) << text(withNull) << text(withEmpty);
    };
    row("$X", "$X", "");
    row("${X}y", "${X}y", "y");
    row("\"$X\"", "$X", "");
    row("ab$X", "ab$X", "ab");
    row("abc$X", "abc$X", "abc$X");
    row("'$X'", "$$X", "$$X");
    row("\\$X", "$$X", "$$X");
    row("\\\\$X", "\\$X", "\\");
    row("$", "$", "");
    row("$-", "$-", "");
    row("\"$ $X\"", "$ $X", "");
    row("$\\'$X", "$'$X", "$$");
}

void TestArgfileVariables::nullTableReplacesNothing()
{
    QFETCH(const QString, content);
    QFETCH(const QString, withNull);
    QFETCH(const QString, withEmpty);
    const VariableTable empty;
    QCOMPARE(parsed(content, nullptr), QStringList(withNull));
    QCOMPARE(parsed(content, &empty), QStringList(withEmpty));
}

QTEST_GUILESS_MAIN(TestArgfileVariables)
#include "tst_argfilevariables.moc"
