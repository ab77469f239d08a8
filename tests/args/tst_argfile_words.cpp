#include "ArgFileText.h"

#include <tresk/ArgFile.h>

#include <QTest>

using tresk::appendAttributeToList;
using tresk::appendFlagToList;
using tresk::quoteString;
using tresk::quoteStringList;
using tresktest::text;

/// The words of a command line: how they are listed and how they are quoted.
class TestArgFileWords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void attributesOfAList();
    void flagsOfAList();
    void quotedString_data();
    void quotedString();
    void quotedList();
};

void TestArgFileWords::attributesOfAList()
{
    QStringList list{text("before")};
    appendAttributeToList(text("a value"), text("-x"), text("key"), list);
    QCOMPARE(list, QStringList({text("before"), text("-x"), text("key"), text("a value")}));
    appendAttributeToList(QString(), text("-y"), text("key"), list);
    QCOMPARE(list.size(), 4);
    appendAttributeToList(text(" "), QString(), QString(), list);
    QCOMPARE(list.mid(4), QStringList({QString(), QString(), text(" ")}));
}

void TestArgFileWords::flagsOfAList()
{
    QStringList list{text("before")};
    appendFlagToList(true, text("-x"), text("flag"), list);
    appendFlagToList(false, text("-y"), text("flag"), list);
    appendFlagToList(false, QString(), QString(), list);
    QCOMPARE(list,
             QStringList({text("before"), text("-x"), text("flag"), text("-y"), text("no-flag"),
                          QString(), text("no-")}));
}

void TestArgFileWords::quotedString_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("literal");
    QTest::addColumn<QString>("expanding");
    const auto add = [](const char* row, const char* word, const char* literal,
                        const char* expanding) {
        QTest::newRow(row) << text(word) << text(literal) << text(expanding);
    };
    const auto addSame = [&add](const char* row, const char* word, const char* both) {
        add(row, word, both, both);
    };
    addSame("empty", "", "");
    addSame("plain", "abc-1/2.pdf", "abc-1/2.pdf");
    addSame("blank", "a b", "\"a b\"");
    addSame("blank alone", " ", "\" \"");
    addSame("tab", "a\tb", "\"a\tb\"");
    addSame("carriage return", "a\rb", "\"a\rb\"");
    addSame("line feed", "a\n", "\"a\n\"");
    addSame("other white space", "a\u00a0b\x0b\x0c\u2003", "a\u00a0b\x0b\x0c\u2003");
    addSame("backslash", "a\\b", "a\\\\b");
    addSame("backslashes", "\\\\", "\\\\\\\\");
    addSame("backslash and blank", "\\ ", "\"\\\\ \"");
    addSame("double quote", "\"", "\\\"");
    addSame("double quotes and blank", "\"a b\"", "\"\\\"a b\\\"\"");
    addSame("backslash and double quote", "\\\"", "\\\\\\\"");
    addSame("backquotes", "`a`", "\\`a\\`");
    addSame("backquote and blank", "` b", "\"\\` b\"");
    addSame("single quote", "it's", "it's");
    addSame("number sign", "a#b", "a#b");
    addSame("shell's signs", "a;b&c|d*e?(f)<g>~!{}[]", "a;b&c|d*e?(f)<g>~!{}[]");
    addSame("non-ASCII", "ä\u20ac😀", "ä\u20ac😀");
    addSame("placeholder", "%1 %2", "\"%1 %2\"");
    add("variable", "$NAME", "\\$NAME", "$NAME");
    add("variable in braces", "a${NAME}b c", "\"a\\${NAME}b c\"", "\"a${NAME}b c\"");
    add("dollar sign", "$", "\\$", "$");
    add("dollar sign last", "a $", "\"a \\$\"", "\"a $\"");
    add("two dollar signs", "$$", "\\$\\$", "\\$");
    add("three", "$$$", "\\$\\$\\$", "\\$$");
    add("four", "$$$$", "\\$\\$\\$\\$", "\\$\\$");
    add("five and a name", "$$$$$A", "\\$\\$\\$\\$\\$A", "\\$\\$$A");
    add("two apart", "$a$", "\\$a\\$", "$a$");
    add("protected name", "a$$NAME", "a\\$\\$NAME", "a\\$NAME");
    add("backslash and dollar sign", "\\$", "\\\\\\$", "\\\\$");
    add("backslash and two", "\\$$", "\\\\\\$\\$", "\\\\\\$");
    add("backslash between two", "$\\$", "\\$\\\\\\$", "$\\\\$");
    add("quote between two", "$\"$", "\\$\\\"\\$", "$\\\"$");
    add("all together", "\\\"`$ $$", "\"\\\\\\\"\\`\\$ \\$\\$\"", "\"\\\\\\\"\\`$ \\$\"");
}

void TestArgFileWords::quotedString()
{
    QFETCH(QString, word);
    QTEST(quoteString(word, false), "literal");
    QTEST(quoteString(word, true), "expanding");
}

void TestArgFileWords::quotedList()
{
    const QStringList list{text("$a"), QString(), text("b c"), text("$a")};
    QCOMPARE(quoteStringList(list, false),
             QStringList({text("\\$a"), QString(), text("\"b c\""), text("\\$a")}));
    QCOMPARE(quoteStringList(list, true),
             QStringList({text("$a"), QString(), text("\"b c\""), text("$a")}));
    QCOMPARE(quoteStringList({}, false), QStringList());
}

QTEST_GUILESS_MAIN(TestArgFileWords)

#include "tst_argfile_words.moc"
