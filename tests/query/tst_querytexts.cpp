#include "QueryText.h"

#include <QTest>

using tresktest::compile;
using tresktest::CompiledQuery;
using tresktest::str;
using tresktest::textOf;

/// Texts that nobody writes.
class TestQueryTexts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void longTexts_data();
    void longTexts();
    void unpairedSurrogates_data();
    void unpairedSurrogates();
};

namespace {

QString times(int count, const char* text)
{
    return str(text).repeated(count);
}

/// @p count times @p text with @p separator between.
QString list(int count, const char* text, const char* separator)
{
    return (str(text) + str(separator)).repeated(count - 1) + str(text);
}

} // namespace

void TestQueryTexts::longTexts_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("finding"); // the begin of the first message; empty for a valid query
    const auto row = [](const char* name, const QString& query, const char* finding) {
        QTest::newRow(name) << query << str(finding);
    };
    const int size = 1000000;
    const int dense = 50000; // of texts that are nearly all tokens
    const char* invalid = "Error while reading text at position ";
    const char* complex = "query is too complex";
    row("a word", times(size, "a"), "");
    row("a word of letters and digits", times(size / 2, "a1"), "");
    row("control characters", times(size, "\x01"), "");
    row("a text", str("'") + times(size, "a") + str("'"), "");
    row("a text of escapes", str("'") + times(size / 2, "\\\\") + str("'"), "");
    row("a text of escaped quotes", str("\"") + times(size / 2, "\\\"") + str("\""), "");
    row("a text that is not closed", str("'") + times(size, "a"), invalid);
    row("escapes that are not closed", str("'") + times(size / 2, "\\'"), invalid);
    row("empty texts", times(dense / 5, "''"), "");
    row("long alternatives", list(size / 40, "'a text of thirty-six characters, ok'", " || "), "");
    row("blanks", times(size, " "), "Error after position 0:\n query is empty.");
    row("blanks and a word", times(size, "\t") + str("a"), "");
    row("words", times(dense / 5, "a "), "");
    row("alternatives", list(dense / 5, "a", "||"), "");
    row("conjunctions of alternatives", list(dense / 10, "a||a", "&&"), "");
    row("open brackets", times(dense, "("), complex);
    row("closing brackets", times(dense, ")"), "Error at position 0:\n expected a string");
    row("pairs of brackets", times(dense / 2, "()"), "Error at position 1:\n expected a string");
    row("negations", times(dense, "!"), complex);
    row("operators", times(dense / 2, "&&"), "Error at position 0:\n expected a string");
    row("operators that are words", times(size / 10, "%contains "),
        "Error at position 0:\n expected a string");
    row("signs of operators", times(dense, "<"), "Error at position 0:\n expected a string");
    row("percent signs", times(size, "%"), invalid);
    row("colons", times(size, ":"), invalid);
    row("names without attributes", times(size / 2, "a:"), invalid);
    row("a long name", times(size, "a") + str(":iswfs"), "");
    row("a long attribute", str(":") + times(size, "a") + str(" == x"),
        "error at pos 0: attribute aaa");
    row("a long key", str(":user{") + times(size, "a") + str("} == x"), "");
    row("a key of escapes", str(":user{") + times(size / 2, "\\}") + str("} == x"), "");
    row("keys that are not closed", times(dense / 2, ":user{"),
        "error at pos 5: operator implizit &&");
    row("keys that hold a single backslash", times(dense / 6, ":user{") + str("\\x}"),
        "error at pos 5: operator implizit &&");
    row("equalities", list(dense / 3, "a", "=="), "");
    row("equalities of negations", list(dense / 4, "!a", "!="), "");
    row("comparisons", list(dense / 2, "1", "<"), complex);
    row("words looked for in each other", list(dense / 12, "a", " %contains "), complex);
    row("unknown attributes", times(dense / 8, ":nosuch "), "error at pos 0: attribute nosuch");
    row("numbers that are too large", times(size, "1") + str(" < 5"), "error at pos 1000001: ");
    row("white space that is no blank", times(size, "\xc2\xa0"), invalid);
}

void TestQueryTexts::longTexts()
{
    QFETCH(QString, query);
    QFETCH(QString, finding);
    const CompiledQuery compiled = compile(query);
    QCOMPARE(compiled.errors.isEmpty(), finding.isEmpty());
    QCOMPARE(compiled.form.numDisjunctions() > 0, finding.isEmpty());
    if (!finding.isEmpty())
        QCOMPARE(compiled.errors.first().errorMessage().left(finding.size()), finding);
}

void TestQueryTexts::unpairedSurrogates_data()
{
    QTest::addColumn<QString>("query"); // with the surrogate for the "?"
    QTest::addColumn<QString>("outcome");
    const auto row = [](const char* query, const char* outcome) {
        QTest::newRow(query) << str(query) << str(outcome);
    };
    row("?", "(@unnamed-1:any %contains \"?\")");
    row("a?b", "(@unnamed-1:any %contains \"a?b\")");
    row("'?'", "(@unnamed-1:any %contains \"?\")");
    row("f:user{?} == '\\'?'", "(f:user:? == \"'?\")");
    row("f?:hash == x", "(@unnamed-2:hash == \"x\")");
    row("f:?", "[:?] Error while reading text at position 1 (:?):");
    row("'?", "['?] Error while reading text at position 0 ('?):");
    row("%?", "[%?] Error while reading text at position 0 (%?):");
    row("%contains?", "[%contains?] Error while reading text at position 0 (%contains?):");
    row("? &&", "[&&] Error after position 4:");
    row("(?", "[?] Error after position 2:\n premature end of query  after ?.");
    row("? < 5", "[<] error at pos 2");
    row("= 345678901234567890?2", "(= 345678901234567890...)");
    row("= 34567890123456789?12", "(= 34567890123456789?...)");
    row("= 3456789012345678?012", "(= 3456789012345678?0...)");
}

void TestQueryTexts::unpairedSurrogates()
{
    QFETCH(QString, query);
    QFETCH(QString, outcome);
    for (const QChar surrogate : {QChar(0xd83d), QChar(0xde00)}) {
        const QString text = QString(query).replace(QLatin1Char('?'), surrogate);
        const QString expected = QString(outcome).replace(QLatin1Char('?'), surrogate);
        const CompiledQuery compiled = compile(text);
        const QStringList lines = textOf(compiled.form) + textOf(compiled.errors);
        QVERIFY2(lines.join(QLatin1Char('\n')).contains(expected),
                 qPrintable(lines.join(QLatin1Char('\n'))));
    }
}

QTEST_GUILESS_MAIN(TestQueryTexts)
#include "tst_querytexts.moc"
