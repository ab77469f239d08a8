#include "Command.h"
#include "Documents.h"

#include <TestFiles.h>

#include <QJsonArray>
#include <QtTest>

using namespace tresktest;

/// What `tresk find` says of queries that are not right.
class TestCommandFindQuery : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void caretStandsUnderThePlace_data();
    void caretStandsUnderThePlace();
    void allFindingsAreShown();
    void longQueryIsCutAroundThePlace_data();
    void longQueryIsCutAroundThePlace();
    void pairsAreNotCut();
    void nothingIsSearched();
    void findingsAreJson();
    void tooComplexQuery_data();
    void tooComplexQuery();
    void missingArgumentsAreExplained_data();
    void missingArgumentsAreExplained();

private:
    Outcome find(const QString& query, const QStringList& options = {}) const;

    TestDir m_dir;
};

void TestCommandFindQuery::initTestCase()
{
    m_dir.write(text("a.pdf"), documentWith(QVector<SectionSpec>{step(text("word"))}));
}

Outcome TestCommandFindQuery::find(const QString& query, const QStringList& options) const
{
    const QStringList arguments = QStringList{text("find")} + options + QStringList{text("--")};
    return Command(arguments + QStringList{query, text("a.pdf")})
        .inDirectory(m_dir.path(QString()))
        .run();
}

void TestCommandFindQuery::caretStandsUnderThePlace_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<QByteArray>("marked");
    const auto row = [](const char* query, const char* message, const char* marked) {
        QByteArray name(query);
        for (char& c : name)
            c = c >= 0 && c < ' ' ? '?' : c;
        QTest::newRow(name.constData()) << text(query) << QByteArray(message) << QByteArray(marked);
    };
    const char* const expected = "expected a string, a variable, an open bracket '(' or an unary "
                                 "operator (e.g. !), but found ";
    const auto found = [expected](int position, const char* token) {
        return "Error at position " + QByteArray::number(position) + ": " + expected + '\''
            + QByteArray(token) + "'.";
    };
    row("", "Error after position 0: query is empty.", "  \n  ^\n");
    row("a)", "Error at position 1: found a closing  bracket ) but did not except one.",
        "  a)\n   ^\n");
    row("a || && b", found(5, "&&").constData(), "  a || && b\n       ^\n");
    row("a &&", "Error after position 4: premature end of query  after &&.", "  a &&\n    ^\n");
    row("'abc", "Error while reading text at position 0 ('abc): input seems to be invalid",
        "  'abc\n  ^\n");
    row(":nosuch == x", "error at pos 0: attribute nosuch does not exist.",
        "  :nosuch == x\n  ^\n");
    row(":title < 5",
        "warning at pos 7: operator < requires either two numbers or two dates as arguments. "
        "':title' may not be a number. ':title' may not be a date.",
        "  :title < 5\n         ^\n");
    row("f:filesize", "Result of query f:filesize is not a boolean value", "  f:filesize\n  ^\n");
    // What takes two columns of a terminal, or none, and what is written out.
    row("\u8ef8\u53d7 )", "Error at position 3: found a closing  bracket ) but did not except one.",
        "  \u8ef8\u53d7 )\n       ^\n");
    row("\U0001f529 )", "Error at position 3: found a closing  bracket ) but did not except one.",
        "  \U0001f529 )\n     ^\n");
    row("a\u0301 )", "Error at position 3: found a closing  bracket ) but did not except one.",
        "  a\u0301 )\n    ^\n");
    row("a\nb )", "Error at position 4: found a closing  bracket ) but did not except one.",
        "  a\\nb )\n       ^\n");
    row("a\tb )", "Error at position 4: found a closing  bracket ) but did not except one.",
        "  a\\tb )\n       ^\n");
    row("a\x1b[2J )", "Error at position 6: found a closing  bracket ) but did not except one.",
        "  a\\x1b[2J )\n           ^\n");
}

void TestCommandFindQuery::caretStandsUnderThePlace()
{
    QFETCH(QString, query);
    QFETCH(QByteArray, message);
    QFETCH(QByteArray, marked);
    const Outcome outcome = find(query);
    QCOMPARE(outcome.errors, "tresk: query: " + message + '\n' + marked);
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandFindQuery::allFindingsAreShown()
{
    const QByteArray rest = "operator < requires either two numbers or two dates as arguments. ";
    const QByteArray query = "  :nosuch == x && :hash < 3 && f:iswfs %contains y\n";
    QCOMPARE(find(text(":nosuch == x && :hash < 3 && f:iswfs %contains y")).errors,
             "tresk: query: error at pos 0: attribute nosuch does not exist.\n" + query
                 + "  ^\n"
                   "tresk: query: error at pos 22: "
                 + rest + "':hash' is not a number or date. '3' is not a date.\n" + query
                 + "                        ^\n"
                   "tresk: query: error at pos 37: operator %contains requires two strings as "
                   "arguments. 'f:iswfs' is not a string.\n"
                 + query + "                                       ^\n");
}

void TestCommandFindQuery::longQueryIsCutAroundThePlace_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("behind");
    QTest::addColumn<QByteArray>("marked");
    const QByteArray fifty(50, 'a');
    const QByteArray twenty(24, 'b');
    QTest::newRow("fits") << 50 << 24 << "  " + fifty + ')' + twenty + '\n';
    QTest::newRow("before") << 51 << 24 << "  ..." + fifty + ')' + twenty + '\n';
    QTest::newRow("behind") << 50 << 25 << "  " + fifty + ')' + twenty + "...\n";
    QTest::newRow("at the end") << 76 << 0 << "  ..." + QByteArray(74, 'a') + ")\n";
    QTest::newRow("both") << 100000 << 20000 << "  ..." + fifty + ')' + twenty + "...\n";
}

void TestCommandFindQuery::longQueryIsCutAroundThePlace()
{
    QFETCH(int, before);
    QFETCH(int, behind);
    QFETCH(QByteArray, marked);
    const QString query = QString(before, QLatin1Char('a')) + QLatin1Char(')')
        + QString(behind, QLatin1Char('b'));
    const QByteArray caret = QByteArray(marked.indexOf(')'), ' ') + "^\n";
    QCOMPARE(find(query).errors,
             "tresk: query: Error at position " + QByteArray::number(before)
                 + ": found a closing  bracket ) but did not except one.\n" + marked + caret);
}

void TestCommandFindQuery::pairsAreNotCut()
{
    // Two units each, so that a cut at a number of units would go through one of them.
    const QByteArray wrench = "\U0001f529";
    for (const char* shift : {"", "a"}) {
        const QString query = text(shift) + text(wrench.repeated(40).constData()) + text(")")
            + text(shift) + text(wrench.repeated(40).constData());
        const QByteArray errors = find(query).errors;
        const QList<QByteArray> lines = errors.split('\n');
        QCOMPARE(lines.size(), 4);
        QVERIFY2(!lines[1].contains('\\'), lines[1].constData());
        QVERIFY2(lines[1].startsWith("  ..." + wrench), lines[1].constData());
        QVERIFY2(lines[1].endsWith(wrench + "..."), lines[1].constData());
        QCOMPARE(lines[2], "     " + QByteArray(50, ' ') + '^');
    }
}

void TestCommandFindQuery::nothingIsSearched()
{
    const QByteArray forDocument = find(text("a)")).errors;
    QCOMPARE(runTresk({text("find"), text("a)"), text("missing.pdf")}).errors, forDocument);
    QVERIFY(!forDocument.contains("missing"));
}

void TestCommandFindQuery::findingsAreJson()
{
    const QString query = text(":nosuch == x && :hash < 3");
    const Outcome outcome = find(query, {text("--json")});
    const QJsonObject object = jsonObject(outcome.output);
    QCOMPARE(object.value(text("query")).toString(), query);
    QCOMPARE(object.value(text("errors")).toArray(),
             (QJsonArray{QJsonObject{{text("message"),
                                      text("error at pos 0: attribute nosuch does not exist.")},
                                     {text("position"), 0},
                                     {text("length"), 7},
                                     {text("text"), text(":nosuch")}},
                         QJsonObject{{text("message"),
                                      text("error at pos 22: operator < requires either two "
                                           "numbers or two dates as arguments.\n"
                                           "':hash' is not a number or date.\n"
                                           "'3' is not a date.")},
                                     {text("position"), 22},
                                     {text("length"), 1},
                                     {text("text"), text("<")}}}));
    QCOMPARE(object.keys(), (QStringList{text("errors"), text("query"), text("schema")}));
    QCOMPARE(object.value(text("schema")).toString(), text("tresk-find-errors/1"));
    // People are told as ever.
    QCOMPARE(outcome.errors, find(query).errors);
    QCOMPARE(outcome.exitCode, 2);
    for (const char* option : {"--jsonl", "--count", "--null", "--bindings"})
        QCOMPARE(find(query, {text(option)}).output, QByteArray());
}

void TestCommandFindQuery::tooComplexQuery_data()
{
    QTest::addColumn<QString>("query");
    QTest::newRow("brackets") << QString(60000, QLatin1Char('(')) + QLatin1Char('a')
            + QString(60000, QLatin1Char(')'));
    QTest::newRow("negations") << QString(100000, QLatin1Char('!')) + QLatin1Char('a');
    QStringList alternatives;
    for (int i = 0; i < 40; ++i)
        alternatives += text("(a && b)");
    QTest::newRow("alternatives") << alternatives.join(text(" || "));
}

void TestCommandFindQuery::tooComplexQuery()
{
    QFETCH(QString, query);
    const Outcome outcome = find(query);
    QVERIFY2(outcome.errors.startsWith("tresk: query: query is too complex\n"),
             outcome.errors.left(300).constData());
    QCOMPARE(outcome.errors.count('\n'), 3);
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandFindQuery::missingArgumentsAreExplained_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("problem");
    QTest::newRow("all") << QStringList() << QByteArray("no QUERY given");
    QTest::newRow("documents") << QStringList{text("word")} << QByteArray("no DOC or DIR given");
    QTest::newRow("documents, invalid query")
        << QStringList{text("a)")} << QByteArray("no DOC or DIR given");
    QTest::newRow("unknown option") << QStringList{text("--oneline"), text("word"), text("a.pdf")}
                                    << QByteArray("unknown option '--oneline'");
}

void TestCommandFindQuery::missingArgumentsAreExplained()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, problem);
    const Outcome outcome = runTresk(QStringList{text("find")} + arguments);
    QCOMPARE(outcome.errors, "tresk: find: " + problem + "; see 'tresk find --help'\n");
    QCOMPARE(outcome.exitCode, 2);
}

QTEST_GUILESS_MAIN(TestCommandFindQuery)
#include "tst_command_find_query.moc"
