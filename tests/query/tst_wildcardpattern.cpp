#include "Records.h"

#include "query/WildcardPattern.h"

#include <QTest>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QRandomGenerator>
#include <QRegExp>
#endif

using tresk::WildcardPattern;
using tresktest::utf8;

class TestWildcardPattern : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void patterns_data();
    void patterns();
    void surrogatesAreTwoCharacters();
    void largePatterns_data();
    void largePatterns();
    void matchesAsTheRegularExpressionsOfQt_data();
    void matchesAsTheRegularExpressionsOfQt();
};

namespace {

bool matches(const QString& pattern, const QString& text)
{
    return WildcardPattern(pattern).matches(text);
}

void addRow(const char* pattern, const char* text, bool isMatch)
{
    QTest::addRow("%s of %s", pattern, text) << utf8(pattern) << utf8(text) << isMatch;
}

} // namespace

void TestWildcardPattern::patterns_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isMatch");

    addRow("", "", true);
    addRow("", "a", false);
    addRow("a", "", false);
    addRow("a", "a", true);
    addRow("a", "A", false);
    addRow("abc", "ab", false);
    addRow("ab", "abc", false);
    addRow("bc", "abc", false);
    // Any characters.
    addRow("*", "", true);
    addRow("*", "abc", true);
    addRow("*", "a\nb\r\n", true);
    addRow("*.pdf", "report.pdf", true);
    addRow("*.pdf", ".pdf", true);
    addRow("*.pdf", "report.pdf.txt", false);
    addRow("*.pd", "report.pdf", false);
    addRow("report*", "report.pdf", true);
    addRow("port*", "report.pdf", false);
    addRow("a*b*c", "abc", true);
    addRow("a*b*c", "a-b-b-c", true);
    addRow("a*b*c", "acb", false);
    addRow("**a**", "a", true);
    addRow("*a*", "bcb", false);
    addRow("*ab", "aab", true);
    addRow("*aab*b", "aaabab", true);
    // Any one character.
    addRow("?", "", false);
    addRow("?", "a", true);
    addRow("?", "\n", true);
    addRow("?", "ab", false);
    addRow("r?port", "report", true);
    addRow("r??port", "report", false);
    addRow("*?", "", false);
    addRow("?*?", "ab", true);
    addRow("?*?", "a", false);
    // Sets.
    addRow("[abc]", "b", true);
    addRow("[abc]", "d", false);
    addRow("[abc]", "ab", false);
    addRow("[a-c]", "b", true);
    addRow("[a-c]", "d", false);
    addRow("[a-c]", "-", false);
    addRow("[a-cx-z]", "y", true);
    addRow("[^a-c]", "d", true);
    addRow("[^a-c]", "b", false);
    addRow("[^a]", "", false);
    addRow("[a^]", "^", true);
    addRow("[-a]", "-", true);
    addRow("[a-]", "-", true);
    addRow("[]a]", "]", true);
    addRow("[]a]", "a", true);
    addRow("[^]a]", "]", false);
    addRow("[^]a]", "b", true);
    addRow("[*]", "*", true);
    addRow("[*]", "a", false);
    addRow("[?]", "?", true);
    addRow("[?]", "a", false);
    addRow("[[]", "[", true);
    addRow("x[0-9]*.pdf", "x7final.pdf", true);
    addRow("*[0-9]", "abc7", true);
    addRow("*[0-9]", "abc", false);
    // Sets that are not closed, and an end without a start, match nothing.
    addRow("[", "[", false);
    addRow("[", "", false);
    addRow("[a", "a", false);
    addRow("[a", "[a", false);
    addRow("[]", "]", false);
    addRow("[^", "^", false);
    addRow("a[", "a", false);
    addRow("*[", "", false);
    addRow("]", "]", false);
    addRow("a]", "a]", false);
    // All else stands for itself.
    addRow("a.b", "a.b", true);
    addRow("a.b", "axb", false);
    addRow("a+", "a+", true);
    addRow("a+", "aa", false);
    addRow("(a|b)", "(a|b)", true);
    addRow("(a|b)", "a", false);
    addRow("a{2}", "a{2}", true);
    addRow("^a$", "^a$", true);
    addRow("^a$", "a", false);
    addRow("a\\b", "a\\b", true);
    addRow("\\*", "\\anything", true);
    addRow("\\d", "5", false);
    addRow("\xC3\xA4?", "\xC3\xA4\xC3\xB6", true);
    addRow("[\xC3\xA0-\xC3\xA9]", "\xC3\xA4", true);
}

void TestWildcardPattern::patterns()
{
    QFETCH(const QString, pattern);
    QFETCH(const QString, text);
    QFETCH(const bool, isMatch);
    QCOMPARE(matches(pattern, text), isMatch);
}

void TestWildcardPattern::surrogatesAreTwoCharacters()
{
    const QString smile = utf8("\xF0\x9F\x99\x82");
    QVERIFY(matches(smile, smile));
    QVERIFY(!matches(utf8("?"), smile));
    QVERIFY(matches(utf8("??"), smile));
    const QString half = smile.left(1);
    QVERIFY(matches(half, half));
    QVERIFY(matches(utf8("?"), half));
    QVERIFY(matches(utf8("[") + half + utf8("]"), half));
    QVERIFY(matches(half + utf8("?"), smile));
}

void TestWildcardPattern::largePatterns_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isMatch");

    const QString many(10000, QLatin1Char('a'));
    const QString b = utf8("b");
    QTest::newRow("stars") << QString(10000, QLatin1Char('*')) << many << true;
    QTest::newRow("stars, then another") << QString(10000, QLatin1Char('*')) + b << many << false;
    QTest::newRow("stars and characters") << utf8("*a").repeated(5000) << many << true;
    QTest::newRow("stars and characters, then another")
        << utf8("*a").repeated(1000) + utf8("*b") << many << false;
    QTest::newRow("one star, long tail")
        << utf8("*") + QString(2500, QLatin1Char('a')) + b << many.left(5000) << false;
    QTest::newRow("stars and sets") << utf8("*[a-c]").repeated(1000) + b << many << false;
    QTest::newRow("any ones") << QString(10000, QLatin1Char('?')) << many << true;
    QTest::newRow("one too few") << QString(9999, QLatin1Char('?')) << many << false;
    QTest::newRow("opened sets") << QString(10000, QLatin1Char('[')) << many << false;
    QTest::newRow("opened sets, closed")
        << QString(10000, QLatin1Char('[')) + utf8("]") << utf8("[") << true;
    QTest::newRow("closed sets") << QString(10000, QLatin1Char(']')) << many << false;
    QTest::newRow("many sets") << utf8("[a-c]").repeated(10000) << many << true;
    QTest::newRow("one large set")
        << utf8("*[") + utf8("x-z").repeated(3000) + utf8("]") << many << false;
    QTest::newRow("brackets") << QString(10000, QLatin1Char('(')) << many << false;
    QTest::newRow("itself") << many << many << true;
    const QString megabyte(1000000, QLatin1Char('a'));
    QTest::newRow("long text") << utf8("*a*a*a*b*") << megabyte << false;
    QTest::newRow("long pattern") << megabyte << many << false;
}

void TestWildcardPattern::largePatterns()
{
    QFETCH(const QString, pattern);
    QFETCH(const QString, text);
    QFETCH(const bool, isMatch);
    QCOMPARE(matches(pattern, text), isMatch);
}

void TestWildcardPattern::matchesAsTheRegularExpressionsOfQt_data()
{
    QTest::addColumn<QString>("characters");
    QTest::newRow("stars") << utf8("ab**?");
    QTest::newRow("sets") << utf8("abc[[]]^-");
    QTest::newRow("all") << utf8("ab[]^-*?.");
    QTest::newRow("special characters") << utf8("ab[]*?+(){}|$.^-");
}

void TestWildcardPattern::matchesAsTheRegularExpressionsOfQt()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QFETCH(const QString, characters);
    QRandomGenerator random(20191103);
    const auto randomText = [&](const QString& from, int longest) {
        QString text;
        for (int i = random.bounded(longest + 1); i > 0; --i)
            text += from.at(random.bounded(int(from.size())));
        return text;
    };
    int found = 0;
    for (int i = 0; i < 2000; ++i) {
        const QString pattern = randomText(characters, 8);
        const QRegExp expression(pattern, Qt::CaseSensitive, QRegExp::Wildcard);
        for (int j = 0; j < 8; ++j) {
            const QString text = randomText(j % 2 == 0 ? utf8("ab") : characters, 5);
            const bool isMatch = expression.indexIn(text) >= 0
                && expression.matchedLength() == text.size();
            found += int(isMatch);
            QVERIFY2(matches(pattern, text) == isMatch,
                     qPrintable(QStringLiteral("%1 of %2: %3").arg(pattern, text).arg(isMatch)));
        }
    }
    QVERIFY(found > 200);
#else
    QSKIP("this Qt does not have them");
#endif
}

QTEST_APPLESS_MAIN(TestWildcardPattern)
#include "tst_wildcardpattern.moc"
