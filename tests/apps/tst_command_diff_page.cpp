#include "Command.h"
#include "Documents.h"
#include "HtmlPage.h"
#include "SummaryXml.h"

#include <TestFiles.h>

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QtTest>

using namespace tresktest;

/// What the pages say that `tresk diff --html` makes, and where it writes them to. How a browser
/// shows them is looked at elsewhere.
class TestCommandDiffPage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sameHistories();
    void changes();
    void filesOfAStep();
    void whatDiffersIsMarked_data();
    void whatDiffersIsMarked();
    void movedUnderAnotherStep();
    void stepsOfOneDocumentOnly();
    void everyStepOnce();
    void manyOfTheSameAreFolded();
    void textsStayTexts_data();
    void textsStayTexts();
    void policyFits();
    void whatIsMissingIsSaid();
    void toStandardOutput();
    void replacesFile();
    void notWritten_data();
    void notWritten();
    void documentsStay_data();
    void documentsStay();
    void noPageWithoutHistories();
    void excludedOptions_data();
    void excludedOptions();

private:
    Outcome diff(const QByteArray& first, const QByteArray& second,
                 const QStringList& options = {text("--html"), text("page.html")}) const;
    HtmlPage page() const;

    TestDir m_dir;
};

namespace {

/// A document with one step that has this comment.
QByteArray commented(const QByteArray& comment)
{
    return documentWith({toldStep(element("Title", "one") + element("Comment", comment))});
}

} // namespace

Outcome TestCommandDiffPage::diff(const QByteArray& first, const QByteArray& second,
                                  const QStringList& options) const
{
    m_dir.write(text("a.pdf"), first);
    m_dir.write(text("b.pdf"), second);
    return Command(QStringList{text("diff"), text("a.pdf"), text("b.pdf")} + options)
        .inDirectory(m_dir.path(QString()))
        .run();
}

HtmlPage TestCommandDiffPage::page() const
{
    return HtmlPage(readFile(m_dir.path(text("page.html"))));
}

void TestCommandDiffPage::sameHistories()
{
    const QByteArray document = documentWith({titledStep("one"), titledStep("two")});
    const Outcome outcome = diff(document, document);
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    const HtmlPage made = page();
    QCOMPARE(made.error(), QString());
    QCOMPARE(made.texts("title"), QStringList{text("a.pdf and b.pdf compared")});
    QVERIFY(made.text().contains(text("The histories are the same.")));
    QVERIFY(made.text().contains(text("a.pdf (2 steps) and b.pdf (2 steps)")));
    QCOMPARE(made.textsIn(text("same"), "td"),
             (QStringList{text("0 two"), text("0 two"), text("1 one"), text("1 one")}));
    QCOMPARE(made.texts("article"), QStringList());
}

void TestCommandDiffPage::changes()
{
    const auto document = [](const QByteArray& value) {
        QByteArray content = element("Title", "one");
        for (const char* name : {"Timestamp", "Tool", "Comment", "Command", "User", "Host"})
            content += element(name, name + value);
        return documentWith({toldStep(content)});
    };
    const Outcome outcome = diff(document(" before"), document(" after"));
    QCOMPARE(outcome.exitCode, 1);
    const HtmlPage made = page();
    QCOMPARE(made.textsIn(text("pair-0"), "th"),
             (QStringList{text("What"), text("a.pdf"), text("b.pdf"), text("time"), text("tool"),
                          text("comment"), text("command"), text("user"), text("host")}));
    const QStringList cells = made.textsIn(text("pair-0"), "td");
    QCOMPARE(cells.size(), 12);
    QCOMPARE(cells.at(0), text("Timestamp before"));
    QCOMPARE(cells.at(1), text("Timestamp after"));
    QCOMPARE(cells.at(11), text("Host after"));
    QVERIFY(!made.text().contains(text("are the same.")));
}

void TestCommandDiffPage::filesOfAStep()
{
    const auto file = [](const char* name, const char* content) {
        return FileSpec::plain(text(name), content);
    };
    diff(
        documentWith({titledStep("one", {file("gone", "1"), file("same", "2"), file("new", "3")})}),
        documentWith(
            {titledStep("one", {file("same", "2"), file("new", "4"), file("more", "5")})}));
    QCOMPARE(page().textsIn(text("pair-0"), "td"),
             (QStringList{text("gone"), text("none"), text("new"), text("new, with other content"),
                          text("none"), text("more")}));
}

void TestCommandDiffPage::whatDiffersIsMarked_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QStringList>("marked");
    const auto row = [](const char* first, const char* second, const QStringList& marked) {
        QTest::newRow(first) << QByteArray(first) << QByteArray(second) << marked;
    };
    row("all of it", "nothing", {text("all of it"), text("nothing")});
    row("run -n 12 in", "run -n 345 in", {text("12"), text("345")});
    row("beginning", "beginning and end", {text(" and end")});
    row("aa", "aaa", {text("a")}); // what both ends have in common is counted once
    row("abab", "ab", {text("ab")});
    // Characters of two units, and ones that are put together, stay whole.
    row("x\U0001F529y", "x\U0001F528y", {text("\U0001F529"), text("\U0001F528")});
    row("xe\u0301y", "xey", {text("e\u0301"), text("e")});
    row("\U0001F529", "\U0001F929", {text("\U0001F529"), text("\U0001F929")});
}

void TestCommandDiffPage::whatDiffersIsMarked()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(QStringList, marked);
    diff(commented(first), commented(second));
    const HtmlPage made = page();
    QCOMPARE(made.texts("mark"), marked);
    QCOMPARE(made.textsIn(text("pair-0"), "td"),
             (QStringList{QString::fromUtf8(first), QString::fromUtf8(second)}));
}

void TestCommandDiffPage::movedUnderAnotherStep()
{
    const FileSpec inner = FileSpec::flate(text("in.tresk"), documentWith({titledStep("inner")}));
    const Outcome outcome = diff(documentWith({titledStep("one", {inner}), titledStep("two")}),
                                 documentWith({titledStep("one"), titledStep("two", {inner})}));
    QCOMPARE(outcome.exitCode, 1);
    const HtmlPage made = page();
    QCOMPARE(made.textsIn(text("pair-2"), "th").last(), text("hangs under"));
    QCOMPARE(made.textsIn(text("pair-2"), "td"), (QStringList{text("1 one"), text("0 two")}));
    QCOMPARE(made.withId(text("pair-2")).attributes.value(text("class")), text("moved"));
    // The first of these steps is the third row on one side, the second one on the other.
    QStringList targets;
    for (const HtmlElement& link : made.named("a"))
        targets += link.attributes.value(text("href")).mid(1);
    QCOMPARE(targets.mid(targets.indexOf(text("pair-0"))),
             (QStringList{text("pair-0"), text("pair-1"), text("pair-2"), text("pair-0"),
                          text("pair-2"), text("pair-1"), text("pair-1"), text("pair-0")}));
}

void TestCommandDiffPage::stepsOfOneDocumentOnly()
{
    diff(documentWith({titledStep("one"), titledStep("two")}),
         documentWith({titledStep("one"),
                       toldStep(element("Title", "three") + element("Tool", "t")
                                + element("User", "u") + element("Host", "h"))}));
    const HtmlPage made = page();
    QCOMPARE(made.textsIn(text("only-first"), "li"), QStringList{text("0 two")});
    QCOMPARE(made.textsIn(text("only-second"), "li"), QStringList{text("0 three  (t, u@h)")});
    QCOMPARE(made.withId(text("first-0")).text, text("0 two"));
    QVERIFY(made.withId(text("different")).name.isEmpty());
    for (const char* entry : {"1 only in a.pdf", "1 only in b.pdf", "1 the same"})
        QVERIFY2(made.texts("a").contains(text(entry)), entry);
}

/// Every step stands once on its side, and once below, in its pair or alone.
void TestCommandDiffPage::everyStepOnce()
{
    QVector<SectionSpec> first;
    QVector<SectionSpec> second;
    for (int i = 0; i < 30; ++i) {
        const QByteArray title = "step " + QByteArray::number(i);
        first += toldStep(element("Title", i % 7 == 0 ? "first " + title : title));
        second += toldStep(element("Title", i % 7 == 0 ? "second " + title : title)
                           + element("Comment", i % 3 == 0 ? "other" : ""));
    }
    diff(documentWith(first), documentWith(second));
    const HtmlPage made = page();
    QStringList entries;
    QStringList targets;
    int lines = 0;
    for (const HtmlElement& element : made.elements()) {
        if (element.attributes.contains(text("data-item")))
            entries += element.attributes.value(text("id"));
        if (element.attributes.contains(text("data-pair")))
            targets += element.attributes.value(text("data-pair"));
        lines += element.name == text("path") ? 1 : 0;
    }
    QStringList expected;
    QStringList pairs;
    for (int id = 0; id < 30; ++id) {
        const int i = 29 - id;
        if (i % 7 == 0)
            expected << text("first-%1").arg(id) << text("second-%1").arg(id);
        else
            pairs += text("pair-%1").arg(id);
    }
    expected += pairs;
    entries.sort();
    expected.sort();
    QCOMPARE(entries, expected);
    targets.sort();
    pairs += pairs;
    pairs.sort();
    QCOMPARE(targets, pairs);
    QCOMPARE(lines, int(pairs.size() / 2));
}

void TestCommandDiffPage::manyOfTheSameAreFolded()
{
    for (const int count : {20, 21}) {
        const QByteArray document = documentWith(QVector<SectionSpec>(count, titledStep("again")));
        diff(document, document);
        const QVector<HtmlElement> folds = page().named("details");
        QCOMPARE(folds.size(), 1);
        QCOMPARE(folds.first().attributes.contains(text("open")), count == 20);
        QCOMPARE(page().texts("summary"), QStringList{text("%1 pairs").arg(count)});
    }
}

void TestCommandDiffPage::textsStayTexts_data()
{
    QTest::addColumn<QByteArray>("hostile");
    for (const char* hostile : {"<script>alert(1)</script>", "\"><img src=x onerror=alert(1)>",
                                "' onload='alert(1)", "</title><script>alert(1)</script>",
                                "&lt;b&gt; &amp; &#60;", "<!-- x --", "]]>", "javascript:alert(1)"})
        QTest::newRow(hostile) << QByteArray(hostile);
}

void TestCommandDiffPage::textsStayTexts()
{
    QFETCH(QByteArray, hostile);
    const QString name = QString::fromUtf8(hostile);
    const auto document = [&](const QByteArray& more) {
        QByteArray content = element("Title", hostile);
        for (const char* field : {"Timestamp", "Comment", "Command", "User", "Host"})
            content += element(field, more + hostile);
        const FileSpec file = FileSpec::plain(name, hostile + more);
        return documentWith(
            {toldStep(content + fileElement("InFile", file), {file}),
             toldStep(element("Title", more + hostile + more) + element("Tool", more + hostile))});
    };
    diff(document("1"), document("2"));
    const HtmlPage hostilePage = page();
    QCOMPARE(hostilePage.error(), QString());
    QVERIFY(hostilePage.withId(text("pair-1")).text.contains(name));
    QCOMPARE(hostilePage.textsIn(text("pair-1"), "td").first(), QLatin1Char('1') + name);
    QCOMPARE(
        hostilePage.withId(text("first-0")).text.section(QLatin1Char(' '), 1).left(name.size() + 2),
        QLatin1Char('1') + name + QLatin1Char('1'));
    QStringList attributes;
    for (const HtmlElement& element : hostilePage.elements())
        attributes += element.attributes.keys();
    QCOMPARE(attributes.filter(text("on")).filter(QRegularExpression(text("^on"))), QStringList());
    QCOMPARE(hostilePage.named("img").size(), 0);
}

/// The policy allows the style and the script that are on the page.
void TestCommandDiffPage::policyFits()
{
    diff(commented("1"), commented("2"));
    const HtmlPage made = page();
    QString policy;
    for (const HtmlElement& meta : made.named("meta")) {
        if (meta.attributes.value(text("http-equiv")) == text("Content-Security-Policy"))
            policy += meta.attributes.value(text("content"));
    }
    const auto hash = [](const QByteArray& content) {
        return QString::fromLatin1(
            QCryptographicHash::hash(content, QCryptographicHash::Sha256).toBase64());
    };
    QVERIFY(made.script().size() > 100);
    QVERIFY(made.style().size() > 100);
    QVERIFY(policy.contains(text("script-src 'sha256-%1';").arg(hash(made.script()))));
    QVERIFY(policy.contains(text("style-src 'sha256-%1';").arg(hash(made.style()))));
    QVERIFY(policy.contains(text("default-src 'none';")));
    for (const HtmlElement& link : made.named("a"))
        QVERIFY(link.attributes.value(text("href")).startsWith(QLatin1Char('#')));
}

void TestCommandDiffPage::whatIsMissingIsSaid()
{
    const FileSpec inner = FileSpec::flate(text("in.tresk"), documentWith({titledStep("inner")}));
    const QByteArray document = documentWith({titledStep("one", {inner})});
    const Outcome outcome = diff(document, document,
                                 {text("--max-depth=0"), text("--html"), text("page.html")});
    QCOMPARE(outcome.exitCode, 2);
    const HtmlPage made = page();
    const QList<QByteArray> messages = outcome.errors.trimmed().split('\n');
    QCOMPARE(messages.size(), 2);
    for (const QByteArray& message : messages) {
        const QString said = QString::fromUtf8(message.mid(int(strlen("tresk: "))));
        QVERIFY2(made.text().contains(said), message.constData());
    }
}

void TestCommandDiffPage::toStandardOutput()
{
    diff(commented("1"), commented("2"));
    const QByteArray html = readFile(m_dir.path(text("page.html")));
    const Outcome outcome = diff(commented("1"), commented("2"), {text("--html"), text("-")});
    QCOMPARE(outcome.output, html);
    QCOMPARE(outcome.exitCode, 1);
}

void TestCommandDiffPage::replacesFile()
{
    m_dir.write(text("page.html"), QByteArray(1000000, 'x'));
    diff(commented("1"), commented("2"));
    QVERIFY(readFile(m_dir.path(text("page.html"))).endsWith("</html>\n"));
    QStringList entries = entriesOf(m_dir.path(QString()));
    entries.sort();
    QCOMPARE(entries, (QStringList{text("a.pdf"), text("b.pdf"), text("page.html")}));
}

void TestCommandDiffPage::notWritten_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QByteArray>("problem");
    QTest::newRow("full") << text("/dev/full") << QByteArray("No space left on device");
    QTest::newRow("missing directory")
        << text("none/page.html") << QByteArray("No such file or directory");
    QTest::newRow("directory") << text(".") << QByteArray("Is a directory");
    QTest::newRow("under a file") << text("a.pdf/page.html") << QByteArray("Not a directory");
}

void TestCommandDiffPage::notWritten()
{
    QFETCH(QString, target);
    QFETCH(QByteArray, problem);
    const QStringList before = entriesOf(m_dir.path(QString()));
    const Outcome outcome = diff(commented("1"), commented("2"), {text("--html=") + target});
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.errors,
             "tresk: " + target.toUtf8() + ": cannot be written: " + problem + "\n");
    QCOMPARE(entriesOf(m_dir.path(QString())), before);
}

void TestCommandDiffPage::documentsStay_data()
{
    QTest::addColumn<QString>("target");
    for (const char* target : {"a.pdf", "b.pdf", "./b.pdf", "link", "hard"})
        QTest::newRow(target) << text(target);
}

void TestCommandDiffPage::documentsStay()
{
    QFETCH(QString, target);
    const QByteArray first = commented("1");
    const QByteArray second = commented("2");
    m_dir.write(text("b.pdf"), second);
    QFile::remove(m_dir.path(text("link")));
    QFile::remove(m_dir.path(text("hard")));
    QVERIFY(QFile::link(text("b.pdf"), m_dir.path(text("link"))));
    m_dir.write(text("a.pdf"), first);
    const Outcome linked = Command(
                               {text("diff"), text("a.pdf"), text("b.pdf"), text("--html"), target})
                               .inDirectory(m_dir.path(QString()))
                               .inShell(text("ln -f a.pdf hard && \"$@\""))
                               .run();
    QCOMPARE(linked.exitCode, 2);
    QVERIFY2(linked.errors.startsWith("tresk: " + target.toUtf8() + ": is the document itself"),
             linked.errors.constData());
    QCOMPARE(readFile(m_dir.path(text("a.pdf"))), first);
    QCOMPARE(readFile(m_dir.path(text("b.pdf"))), second);
}

void TestCommandDiffPage::noPageWithoutHistories()
{
    m_dir.write(text("page.html"), "as it was");
    const Outcome outcome = diff("%PDF-1.4\n", commented("1"));
    QCOMPARE(outcome.exitCode, 2);
    QVERIFY2(outcome.errors.startsWith("tresk: a.pdf: has no history"), outcome.errors.constData());
    QCOMPARE(readFile(m_dir.path(text("page.html"))), QByteArray("as it was"));
}

void TestCommandDiffPage::excludedOptions_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("problem");
    const auto row = [](const char* name, const QStringList& options, const char* problem) {
        QTest::newRow(name) << options << QByteArray(problem);
    };
    row("json", {text("--json")}, "--json and --html exclude each other");
    row("dot", {text("--dot")}, "--dot and --html exclude each other");
    row("both", {text("--dot"), text("--json")}, "--json and --dot and --html exclude each other");
    row("number", {text("-n"), text("1")},
        "--html shows the best way only, so that -n is of no use with it");
}

void TestCommandDiffPage::excludedOptions()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, problem);
    m_dir.write(text("page.html"), "as it was");
    const Outcome outcome = diff(commented("1"), commented("2"),
                                 options + QStringList{text("--html"), text("page.html")});
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(outcome.errors, "tresk: diff: " + problem + "; see 'tresk diff --help'\n");
    QCOMPARE(readFile(m_dir.path(text("page.html"))), QByteArray("as it was"));
}

QTEST_GUILESS_MAIN(TestCommandDiffPage)
#include "tst_command_diff_page.moc"
