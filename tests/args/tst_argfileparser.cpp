#include "TokenText.h"

using tresk::ArgfileParser;
using tresk::ArgfileToken;
using tresktest::addArgumentColumns;
using tresktest::listOf;
using tresktest::parsed;
using tresktest::row;
using tresktest::text;
using tresktest::VariableTable;

class TestArgfileParser : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void arguments_data();
    void arguments();
    void nothingWhereSomethingIsNotClosed_data();
    void nothingWhereSomethingIsNotClosed();
    void nullTextHasNoTokens();
    void nullCharacterIsPartOfAWord();
    void callsAreIndependent();
    void highlighterTokens_data();
    void highlighterTokens();
    void positionsCountCodeUnits();
    void tokenConstructors();
    void tokensAreValues();
};

namespace {

/// `word(text)[original text]@position`, or `gap(...)...` for a separator.
QString textOf(const ArgfileToken& token)
{
    return text("%1(%2)[%3]@%4")
        .arg(token.isSeparator() ? text("gap") : text("word"), token.str(), token.originalText(),
             QString::number(token.position()));
}

QStringList highlighted(const QString& content)
{
    QStringList lines;
    const QList<ArgfileToken> tokens = ArgfileParser().getHighlighterList(content);
    for (const ArgfileToken& token : tokens)
        lines += textOf(token);
    return lines;
}

} // namespace

void TestArgfileParser::arguments_data()
{
    addArgumentColumns();
    row("empty", "", {});
    row("white space only", " \t\r\n ", {});
    row("comments only", "#a\n \t#b", {});
    row("sharp only", "#", {});
    row("one word", "abc", {"abc"});
    row("white space around", "\r\n\t a \n", {"a"});
    row("comments around", "#x\na#y", {"a"});
    row("all kinds of white space", "a b\tc\rd\ne", {"a", "b", "c", "d", "e"});
    row("other white space is part of a word", "a\vb\fc\xc2\xa0/", {"a\vb\fc\xc2\xa0/"});
    row("other signs are part of a word", "--a=b;|&<>*?~!()[]{}", {"--a=b;|&<>*?~!()[]{}"});
    row("several separators in a row", "a  b\n\n#c\n d", {"a", "b", "d"});
    row("empty line behind a comment", "a  b\n\n#c\n\n d", {"a", "b", "d"});

    row("comment behind a word", "abc#x", {"abc"});
    row("comment behind a string", "'abc'#x", {"abc"});
    row("comment separates", "abc#x\ndef", {"abc", "def"});
    row("comment in front of CR LF", "abc#x\r\ndef", {"abc", "def"});
    row("comment in front of CR", "abc#x\rdef", {"abc", "def"});
    row("quotes and backslashes in a comment", "a #it's \"\\\nb", {"a", "b"});
    row("backslash does not continue a comment", "#x\\\nb", {"b"});
    row("sharp behind a backslash", "abc\\#x", {"abc#x"});
    row("sharp in quotes", "'#a' \"#b\"", {"#a", "#b"});

    row("touching strings", "'it''s'", {"its"});
    row("touching word and strings", "a\"b c\"'$d'", {"ab c$$d"});
    row("touching strings of both kinds and a word", "'a'\"b\"c", {"abc"});
    row("empty strings", "'' \"\"", {"", ""});
    row("touching empty strings", "''\"\"", {""});
    row("empty string among words", "a \"\" b", {"a", "", "b"});
    row("strings over several lines", "'a\nb' \"c\r\nd\"", {"a\nb", "c\r\nd"});
    row("other quotes in strings", "'a\"b' \"a'b\"", {"a\"b", "a'b"});
    row("no escapes in single quotes", "'a\\b' 'c\\'", {"a\\b", "c\\"});

    row("escaped quote in a string", "\"a\\\"b\"", {"a\"b"});
    row("escaped quotes in a word", "\\'a\\\"", {"'a\""});
    row("escaped white space", "a\\ b\\\tc", {"a b\tc"});
    row("escaped letters", "\\a\\n \"\\a\\n\"", {"an", "an"});
    row("escaped backslashes", "a\\\\b \"a\\\\\"", {"a\\b", "a\\"});
    row("backslash in front of LF", "a\\\nb", {"a\nb"});
    row("backslash in front of LF in a string", "\"a\\\nb\"", {"a\nb"});
    row("backslash in front of CR LF", "a\\\r\nb", {"a\r", "b"});
    row("backslash in front of a surrogate pair", "\\\xf0\x9f\x98\x80", {"\xf0\x9f\x98\x80"});
    row("escaped dollar sign", "\\$ \"\\$\" a\\$b", {"$$", "$$", "a$$b"});
    row("dollar sign behind a backslash", "\\\\$ \"\\\\$\"", {"\\$", "\\$"});
    row("dollar signs in single quotes", "'$' '$$' '\\$'", {"$$", "$$$$", "\\$$"});
    row("bare dollar signs", "$ $$ a$ \"$\"", {"$", "$$", "a$", "$"});
}

void TestArgfileParser::arguments()
{
    QFETCH(const QString, content);
    QTEST(parsed(content, nullptr), "arguments");
}

void TestArgfileParser::nothingWhereSomethingIsNotClosed_data()
{
    QTest::addColumn<QString>("content");
    for (const char* content :
         {"'abc", "'", "\"abc", "\"", "abc\\", "\\", "a \\", "'a'\\", "a b 'c", "a\nb\n\"c",
          "\"abc\\\"", "\"\\", "'it's'", "'a\\''", "\"a\"\"", "\\\\\\", "abc\\'d'", "#c\n'"})
        QTest::newRow(content) << text(content);
}

void TestArgfileParser::nothingWhereSomethingIsNotClosed()
{
    QFETCH(const QString, content);
    const VariableTable empty;
    QCOMPARE(parsed(content, nullptr), QStringList());
    QCOMPARE(parsed(content, &empty), QStringList());
    QCOMPARE(highlighted(content), QStringList());
}

void TestArgfileParser::nullTextHasNoTokens()
{
    const VariableTable empty;
    QCOMPARE(parsed(QString(), nullptr), QStringList());
    QCOMPARE(parsed(QString(), &empty), QStringList());
    QCOMPARE(highlighted(QString()), QStringList());
}

void TestArgfileParser::nullCharacterIsPartOfAWord()
{
    const QString word = text("a") + QChar(0) + text("b");
    QCOMPARE(parsed(word + text(" '") + word + text("'"), nullptr), QStringList({word, word}));
}

void TestArgfileParser::callsAreIndependent()
{
    const VariableTable table{{text("X"), text("1 2")}};
    ArgfileParser parser;
    QCOMPARE(parser.parseArgfile(text("a 'b"), &table), QStringList());
    QCOMPARE(parser.parseArgfile(text("c' $X"), &table), QStringList());
    QCOMPARE(parser.parseArgfile(text("$X"), &table), listOf({"1 2"}));
    QCOMPARE(parser.parseArgfile(text("$X"), nullptr), listOf({"$X"}));
    ArgfileParser other;
    other = parser;
    QCOMPARE(other.parseArgfile(text("d"), nullptr), listOf({"d"}));
}

void TestArgfileParser::highlighterTokens_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QStringList>("tokens");
    row("empty", "", {});
    row("words, strings and comments", "a 'b c'#x",
        {"word(a)[a]@0", "gap()[ ]@1", "word(b c)['b c']@2", "gap()[#x]@7"});
    row("separators at the ends", " a\n", {"gap()[ ]@0", "word(a)[a]@1", "gap()[\n]@2"});
    row("separators are not merged", "  #a\n \n#b\n#c",
        {"gap()[  ]@0", "gap()[#a\n]@2", "gap()[ \n]@5", "gap()[#b\n]@7", "gap()[#c]@10"});
    row("comment takes LF along", "#a\nb", {"gap()[#a\n]@0", "word(b)[b]@3"});
    row("comment takes CR along", "#a\rb", {"gap()[#a\r]@0", "word(b)[b]@3"});
    row("comment takes CR but not LF along", "#a\r\nb",
        {"gap()[#a\r]@0", "gap()[\n]@3", "word(b)[b]@4"});
    row("empty comment takes one line break along", "#\n\n", {"gap()[#\n]@0", "gap()[\n]@2"});
    row("sharps in a comment", "##a #b", {"gap()[##a #b]@0"});
    row("comment behind a word", "a#b", {"word(a)[a]@0", "gap()[#b]@1"});
    row("touching strings", "a'b''c'\"d\"e",
        {"word(a)[a]@0", "word(b)['b']@1", "word(c)['c']@4", "word(d)[\"d\"]@7", "word(e)[e]@10"});
    row("escapes", "\\a\\#\\ b", {"word(a# b)[\\a\\#\\ b]@0"});
    row("escapes in quotes", "\"\\\"\\a\"'\\'", {"word(\"a)[\"\\\"\\a\"]@0", "word(\\)['\\']@6"});
    row("empty strings", "''\"\"", {"word()['']@0", "word()[\"\"]@2"});
    row("variables stay", "$X${X}", {"word($X${X})[$X${X}]@0"});
    row("protected dollar signs", "\\$'$'\"\\$\"",
        {"word($$)[\\$]@0", "word($$)['$']@2", "word($$)[\"\\$\"]@5"});
    row("line breaks", "'a\n'\r\nb", {"word(a\n)['a\n']@0", "gap()[\r\n]@4", "word(b)[b]@6"});
}

void TestArgfileParser::highlighterTokens()
{
    QFETCH(const QString, content);
    QTEST(highlighted(content), "tokens");
}

void TestArgfileParser::positionsCountCodeUnits()
{
    QCOMPARE(highlighted(text("\xc3\xa9\xf0\x9f\x98\x80 b")),
             listOf({"word(\xc3\xa9\xf0\x9f\x98\x80)[\xc3\xa9\xf0\x9f\x98\x80]@0", "gap()[ ]@3",
                     "word(b)[b]@4"}));
    const QList<ArgfileToken> tokens = ArgfileParser().getHighlighterList(
        text("'\xf0\x9f\x98\x80'"));
    QCOMPARE(int(tokens.size()), 1);
    QCOMPARE(tokens.first().originalLength(), 4);
}

void TestArgfileParser::tokenConstructors()
{
    const ArgfileToken word(text("b"), 7, text("'b'"));
    QCOMPARE(textOf(word), text("word(b)['b']@7"));
    QCOMPARE(word.originalLength(), 3);

    const ArgfileToken latin1("\xe9", -1, QString());
    QCOMPARE(textOf(latin1), text("word(\xc3\xa9)[]@-1"));
    QCOMPARE(latin1.originalLength(), 0);

    const ArgfileToken separator(ArgfileToken::Separator, 3, text(" \n"));
    QCOMPARE(textOf(separator), text("gap()[ \n]@3"));
    QCOMPARE(separator.originalLength(), 2);
}

void TestArgfileParser::tokensAreValues()
{
    const ArgfileToken separator(ArgfileToken::Separator, 3, text(" "));
    ArgfileToken token(text("b"), 7, text("'b'"));
    const ArgfileToken copy(token);
    token = separator;
    QCOMPARE(textOf(token), textOf(separator));
    QCOMPARE(textOf(copy), text("word(b)['b']@7"));
}

QTEST_GUILESS_MAIN(TestArgfileParser)
#include "tst_argfileparser.moc"
