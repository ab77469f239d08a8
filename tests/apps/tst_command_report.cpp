#include "Command.h"
#include "Documents.h"
#include "HtmlPage.h"
#include "SummaryXml.h"

#include <TestFiles.h>

#include <QCryptographicHash>
#include <QJsonArray>
#include <QRegularExpression>
#include <QSet>
#include <QtTest>

using namespace tresktest;

/// What `tresk report` writes of a document.
class TestCommandReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void allThatStepsSay();
    void filesInATable();
    void embeddedDocumentsInFull();
    void filesWithoutAStep();
    void limitsAreThoseOfTree_data();
    void limitsAreThoseOfTree();
    void textsStayTexts_data();
    void textsStayTexts();
    void controlCharactersAreVisible();
    void policyFits();
    void nothingIsLoaded();
    void readableWithoutEyesAndScripts_data();
    void readableWithoutEyesAndScripts();
    void checksAreThoseOfVerify();
    void failedChecksAreShown();
    void damageIsToldOf_data();
    void damageIsToldOf();
    void brokenSummaryIsToldOf();
    void sameTwice();

private:
    Outcome report(const QByteArray& document, const QStringList& options = {}) const;

    TestDir m_dir;
};

namespace {

const QByteArray header = "%PDF-1.4\n";

/// Two documents deep.
QByteArray nestedDocument()
{
    const FileSpec innermost = embeddedDocument("c.tresk", {stepByTool("three", "t3")});
    const FileSpec inner = embeddedDocument(
        "b.tresk", {stepByTool("two", "t2", {innermost}), stepByTool("two again", "t2")});
    return documentWith({stepByTool("one", "t1", {inner}), stepByTool("last", "t1")});
}

/// A document in which @p hostile stands wherever a text can stand.
QByteArray hostileDocument(const QByteArray& hostile)
{
    const QString text = QString::fromUtf8(hostile.constData()); // markers hold no zero byte
    FileSpec file = FileSpec::plain(text, "abc");
    file.filetype = text;
    file.desc = text;
    file.comment = text;
    FileSpec inner = FileSpec::flate(text + QStringLiteral(".tresk"),
                                     documentWith({step(text, {FileSpec::plain(text, "x")})}));
    QByteArray content;
    for (const char* name :
         {"Title", "Timestamp", "Description", "Comment", "Command", "Tool", "ToolPath", "User",
          "Host", "Creator", "RootFile", "PDFTitle", "PDFAuthor"})
        content += element(name, hostile);
    content += element("UserAttributes",
                       attribute(hostile.constData(), hostile.constData(), hostile.constData()));
    const QByteArray more = element("Filepath", hostile) + element("Description", hostile)
        + element("Comment", hostile) + element("LastModified", hostile)
        + element("UserAttributes", attribute(hostile.constData(), hostile.constData()));
    content += fileElement("InFile", file, true, more) + fileElement("OutFile", inner, true);
    SectionSpec told = step(text, {file, inner, summaryWith(content)});
    SectionSpec plain = step(text, {FileSpec::plain(text, "xyz")});
    plain.creator = text;
    return documentWith({plain, told});
}

/// The names of the elements and attributes of a page, which are the program's own.
QSet<QString> vocabulary(const HtmlPage& page)
{
    QSet<QString> names;
    for (const HtmlElement& element : page.elements()) {
        names.insert(element.name);
        for (auto it = element.attributes.begin(); it != element.attributes.end(); ++it)
            names.insert(element.name + QLatin1Char(' ') + it.key());
    }
    return names;
}

QByteArray policyHash(const QByteArray& content)
{
    return "'sha256-" + QCryptographicHash::hash(content, QCryptographicHash::Sha256).toBase64()
        + "'";
}

} // namespace

Outcome TestCommandReport::report(const QByteArray& document, const QStringList& options) const
{
    m_dir.write(text("some.pdf"), document);
    return Command(QStringList{text("report"), text("some.pdf")} + options)
        .inDirectory(m_dir.path(QString()))
        .run();
}

void TestCommandReport::allThatStepsSay()
{
    const QByteArray content = element("Title", "Solve") + element("Timestamp", "2024-03-05 14:20")
        + element("Tool", "solver") + element("User", "mv") + element("Host", "ws17")
        + element("Command", "solve --all a < b")
        + element("UserAttributes", attribute("mass", "3.5", "kg") + attribute("note", "dry"));
    const Outcome outcome = report(
        documentWith({step(text("marked")), step(text("Solve"), {summaryWith(content)})}));
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    const HtmlPage page(outcome.output);
    QCOMPARE(page.error(), QString());
    QCOMPARE(page.texts("h1"), QStringList{text("some.pdf")});
    QCOMPARE(page.texts("h3"), (QStringList{text("Step 0: Solve"), text("Step 1: marked")}));

    const QStringList names =
        page.textsIn(text("step-0"), "dt").replaceInStrings(text("\n"), QString());
    const QStringList values = page.textsIn(text("step-0"), "dd");
    const auto valueOf = [&](const char* name) { return values.value(names.indexOf(text(name))); };
    QCOMPARE(valueOf("time"), text("2024-03-05 14:20"));
    QCOMPARE(valueOf("tool"), text("solver"));
    QCOMPARE(valueOf("user"), text("mv"));
    QCOMPARE(valueOf("host"), text("ws17"));
    QCOMPARE(valueOf("command"), text("solve --all a < b"));
    QCOMPARE(valueOf("attribute mass"), text("3.5 kg"));
    QCOMPARE(valueOf("attribute note"), text("dry"));
    QVERIFY(page.withId(text("step-1")).text.contains(text("none; this is what the marker says")));

    const QStringList timeline = page.textsIn(text("timeline"), "li");
    QCOMPARE(timeline.size(), 2);
    QCOMPARE(timeline.at(0).simplified(), text("2024-03-05 14:20 Solve solver, mv@ws17"));
    QCOMPARE(timeline.at(1).simplified(), text("time unknown marked"));
}

void TestCommandReport::filesInATable()
{
    const FileSpec in = FileSpec::plain(text("in.txt"), "abc");
    const FileSpec out = FileSpec::flate(text("out.txt"), QByteArray(2048, 'x'));
    FileSpec lost = FileSpec::plain(text("lost.txt"), "lost");
    const QByteArray content = fileElement("InFile", in)
        + fileElement("OutFile", out, true, element("UserAttributes", attribute("pages", "7")))
        + fileElement("OutFile", lost, false);
    const HtmlPage page(
        report(documentWith({step(text("s"), {in, out, summaryWith(content)})})).output);
    QCOMPARE(page.error(), QString());
    QStringList rows = page.textsIn(text("step-0"), "tr");
    for (QString& row : rows)
        row = row.simplified();
    QCOMPARE(rows.size(), 5);
    QCOMPARE(rows.at(0), text("Purpose File Size Check"));
    QVERIFY2(rows.at(1).startsWith(text("Input in.txt")), qPrintable(rows.at(1)));
    QVERIFY2(rows.at(1).endsWith(text(" 3 bytes ✓ right")), qPrintable(rows.at(1)));
    QVERIFY2(rows.at(2).startsWith(text("Output out.txt")), qPrintable(rows.at(2)));
    QVERIFY2(rows.at(2).contains(text("attribute pages 7")), qPrintable(rows.at(2)));
    QVERIFY2(rows.at(2).endsWith(text(" 2.0 KiB ✓ right")), qPrintable(rows.at(2)));
    QVERIFY2(rows.at(3).endsWith(text(" 4 bytes not embedded")), qPrintable(rows.at(3)));
    QVERIFY2(rows.at(4).startsWith(text("Other ws_summary.xml")), qPrintable(rows.at(4)));
}

void TestCommandReport::embeddedDocumentsInFull()
{
    const Outcome outcome = report(nestedDocument());
    QCOMPARE(outcome.errors, QByteArray());
    const HtmlPage page(outcome.output);
    QCOMPARE(page.error(), QString());
    const QStringList tree = page.textsIn(text("tree"), "li");
    QCOMPARE(tree.size(), 5);
    QCOMPARE(tree.at(0).simplified(), text("last (t1)"));
    QCOMPARE(tree.at(1).simplified(),
             text("one (t1) embeds b.tresk two again (t2) two (t2) embeds c.tresk three (t3)"));
    QCOMPARE(tree.at(3).simplified(), text("two (t2) embeds c.tresk three (t3)"));
    QCOMPARE(page.textsIn(text("embedded"), "h3"), (QStringList{text("b.tresk"), text("c.tresk")}));
    QCOMPARE(page.texts("h4"), (QStringList{text("two again"), text("two"), text("three")}));
    QCOMPARE(page.withId(text("document-4")).name, text("section"));
    QVERIFY(page.withId(text("document-4"))
                .text.simplified()
                .contains(text("Embedded in the step two of b.tresk")));
    QCOMPARE(page.textsIn(text("node-4"), "dd").first(), text("t3"));
}

void TestCommandReport::filesWithoutAStep()
{
    DocumentWriter writer(header);
    writer.writeHeader();
    writer.endLine();
    writer.writeFile(FileSpec::plain(text("stray.txt"), "abc"));
    writer.write(QByteArray(100, '\n'));
    writer.writeSection(step(text("one"), {FileSpec::plain(text("a.txt"), "abc")}));
    const HtmlPage page(report(writer.bytes()).output);
    QCOMPARE(page.error(), QString());
    QVERIFY(page.withId(text("without-step")).text.contains(text("stray.txt")));
    QVERIFY(!page.withId(text("without-step")).text.contains(text("a.txt")));
    QVERIFY(!page.withId(text("step-0")).text.contains(text("stray.txt")));
    // Each link of the tree leads to its own article.
    QStringList links;
    for (const HtmlElement& link : page.named("a"))
        links += link.text + link.attributes.value(text("href"));
    QVERIFY2(links.contains(text("<unmatched files>#without-step")),
             qPrintable(links.join(QLatin1Char(' '))));
    QVERIFY2(links.count(text("one#step-0")) == 2, qPrintable(links.join(QLatin1Char(' '))));
}

void TestCommandReport::limitsAreThoseOfTree_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::newRow("depth") << QStringList{text("--max-depth"), text("1")};
    QTest::newRow("documents") << QStringList{text("--max-documents=1")};
    QTest::newRow("nothing unpacked") << QStringList{text("--max-unpacked=0")};
}

void TestCommandReport::limitsAreThoseOfTree()
{
    QFETCH(QStringList, options);
    const Outcome outcome = report(nestedDocument(), options);
    const Outcome tree = Command(QStringList{text("tree"), text("some.pdf")} + options)
                             .inDirectory(m_dir.path(QString()))
                             .run();
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(tree.exitCode, 2);
    QCOMPARE(outcome.errors, tree.errors);
    const HtmlPage page(outcome.output);
    QCOMPARE(page.error(), QString());
    const QString problems = page.withId(text("problems")).text;
    QVERIFY(!outcome.errors.isEmpty());
    for (const QByteArray& line : outcome.errors.trimmed().split('\n')) {
        const QString problem = QString::fromUtf8(line.mid(int(qstrlen("tresk: some.pdf: "))));
        QVERIFY2(problems.contains(problem), qPrintable(problem));
    }
    QVERIFY(!page.texts("h4").contains(text("three")));
    // Nor are the summaries of the document itself unpacked beyond that.
    QCOMPARE(page.withId(text("step-0")).text.contains(text("t1")),
             !options.contains(text("--max-unpacked=0")));

    const Outcome wrong = report(nestedDocument(), {text("--max-depth=x")});
    QCOMPARE(wrong.exitCode, 2);
    QCOMPARE(wrong.output, QByteArray());
}

void TestCommandReport::textsStayTexts_data()
{
    QTest::addColumn<QByteArray>("hostile");
    QTest::newRow("script") << QByteArray("<script>alert(1)</script>");
    QTest::newRow("end of style") << QByteArray("</style><script>alert(1)</script>");
    QTest::newRow("end of title") << QByteArray("</title></head><body onload=alert(1)>");
    QTest::newRow("image") << QByteArray("\"><img src=x onerror=\"alert(1)\">");
    QTest::newRow("double quote") << QByteArray("\" onmouseover=\"alert(1)");
    QTest::newRow("single quote") << QByteArray("' onmouseover='alert(1)");
    QTest::newRow("scheme") << QByteArray("javascript:alert(1)");
    QTest::newRow("network") << QByteArray("https://example.org/x.png");
    QTest::newRow("comment") << QByteArray("<!-- --!> <! <?");
    QTest::newRow("CDATA") << QByteArray("<![CDATA[ x ]]>");
    QTest::newRow("references") << QByteArray("&lt;b&gt; &amp; &#60;b&#62; &quot;");
    QTest::newRow("escape sequence") << QByteArray("\x1b]0;x\x07 \x1b[2J");
    QTest::newRow("override") << QByteArray("a\xe2\x80\xae"
                                            "b\xe2\x81\xa6"
                                            "c\xe2\x80\xa9");
    QTest::newRow("no UTF-8") << QByteArray("a\xff\xed\xa0\x80z");
    QTest::newRow("no character") << QByteArray("a\xef\xbf\xbf"
                                                "b\xef\xbf\xbe");
    QTest::newRow("zero byte") << QByteArray("a\0b", 3);
    QTest::newRow("long") << QByteArray(20000, '<');
}

void TestCommandReport::textsStayTexts()
{
    QFETCH(QByteArray, hostile);
    const QByteArray document = hostileDocument("harmless");
    const HtmlPage harmless(report(document).output);
    QCOMPARE(harmless.error(), QString());
    const QSet<QString> known = vocabulary(harmless)
        + vocabulary(HtmlPage(report(document, {text("--max-depth=0")}).output));
    const Outcome outcome = report(hostileDocument(hostile));
    const HtmlPage page(outcome.output);
    QCOMPARE(page.error(), QString());
    // A text that the summary's reader takes for elements may be missing, but adds nothing.
    const QSet<QString> added = vocabulary(page) - known;
    QVERIFY2(added.isEmpty(), qPrintable(added.values().join(QLatin1Char(' '))));
    QCOMPARE(page.style(), harmless.style());
    QCOMPARE(page.script(), harmless.script());
    QCOMPARE(outcome.output.count("<script"), 1);
    QCOMPARE(outcome.output.count("<img"), 0);
    for (const HtmlElement& link : page.named("a"))
        QVERIFY(QRegularExpression(text("^#[a-z]+-?[a-z0-9]*$"))
                    .match(link.attributes.value(text("href")))
                    .hasMatch());
    // No character that is unfit to be shown, whatever the document holds.
    for (const QChar c : QString::fromUtf8(outcome.output)) {
        const bool fit = c == QLatin1Char('\n')
            || (c.category() != QChar::Other_Control && c.category() != QChar::Other_Format
                && c.category() != QChar::Separator_Line
                && c.category() != QChar::Separator_Paragraph && c != QChar::ReplacementCharacter);
        if (!fit && !hostile.contains('\xff'))
            QFAIL(qPrintable(text("character %1").arg(int(c.unicode()), 4, 16)));
    }
    // What the markers say, of which nothing is left out, is there to be read.
    const QString title = page.texts("h3").value(1);
    if (!hostile.contains('\0') && !hostile.contains('\xff') && !hostile.contains('\x1b')
        && !hostile.contains('\xe2') && !hostile.contains('\xef'))
        QCOMPARE(title, text("Step 1: ") + QString::fromUtf8(hostile));
}

void TestCommandReport::controlCharactersAreVisible()
{
    const QByteArray name = "a\x1b[2J\x07";
    const QByteArray content = element("Title", "x\xe2\x80\xaey") + element("Tool", "b\nc")
        + element("User", "\xc2\x9b");
    const Outcome outcome = report(documentWith({step(
        text("t"), {FileSpec::plain(QString::fromUtf8(name), "abc"), summaryWith(content)})}));
    const HtmlPage page(outcome.output);
    QCOMPARE(page.error(), QString());
    QCOMPARE(page.texts("h3"), QStringList{text("Step 0: x\\u202ey")});
    const QStringList values = page.textsIn(text("step-0"), "dd");
    QVERIFY(values.contains(text("b\\nc")));
    QVERIFY(values.contains(text("\\x9b")));
    QVERIFY(page.withId(text("step-0")).text.contains(text("a\\x1b[2J\\x07")));

    // So are those in the name of the document, which need not be UTF-8.
    const QString script = text("name=$(printf '<b>\\033\\377.pdf'); cp some.pdf \"$name\"; "
                                "\"$@\" \"$name\"; code=$?; rm \"$name\"; exit $code");
    const Outcome named =
        Command({text("report")}).inDirectory(m_dir.path(QString())).inShell(script).run();
    QCOMPARE(named.errors, QByteArray());
    QCOMPARE(HtmlPage(named.output).texts("h1"), QStringList{text("<b>\\x1b\\xff.pdf")});
}

/// The content security policy allows the style and the script of the page and nothing else.
void TestCommandReport::policyFits()
{
    const Outcome outcome = report(nestedDocument());
    const HtmlPage page(outcome.output);
    QCOMPARE(page.error(), QString());
    QVERIFY(page.script().size() > 100);
    QVERIFY(page.style().size() > 100);
    QString policy;
    int policies = 0;
    for (const HtmlElement& meta : page.named("meta")) {
        if (meta.attributes.value(text("http-equiv")) == text("Content-Security-Policy")) {
            policy = meta.attributes.value(text("content"));
            ++policies;
        }
    }
    QCOMPARE(policies, 1);
    QStringList directives;
    for (const QString& directive : policy.split(QLatin1Char(';')))
        directives += directive.trimmed();
    directives.sort();
    QStringList expected = {text("base-uri 'none'"),
                            text("default-src 'none'"),
                            text("form-action 'none'"),
                            text("img-src data:"),
                            text("script-src ") + QString::fromLatin1(policyHash(page.script())),
                            text("style-src ") + QString::fromLatin1(policyHash(page.style()))};
    QCOMPARE(directives, expected);
    // It stands in front of all that it is about.
    QVERIFY(outcome.output.indexOf("Content-Security-Policy") < outcome.output.indexOf("<style>"));
    // What it would forbid is not there.
    for (const HtmlElement& element : page.elements()) {
        for (auto it = element.attributes.begin(); it != element.attributes.end(); ++it)
            QVERIFY2(it.key() != text("style") && !it.key().startsWith(text("on")),
                     qPrintable(element.name + it.key()));
    }
}

void TestCommandReport::nothingIsLoaded()
{
    for (const char* sample : {"report.pdf", "nested.pdf", "names.pdf", "damaged.pdf"}) {
        const HtmlPage page(
            runTresk({text("report"), text(TRESK_SOURCE_DIR "/samples/") + text(sample)}).output);
        QCOMPARE(page.error(), QString());
        for (const HtmlElement& element : page.elements()) {
            const QString source = element.attributes.value(text("src"), text("data:image/"));
            QVERIFY2(source.startsWith(text("data:image/")), qPrintable(source));
            const QString link = element.attributes.value(text("href"), text("#"));
            QVERIFY2(link.startsWith(QLatin1Char('#')), qPrintable(link));
            for (const char* other : {"srcset", "action", "formaction", "data", "background",
                                      "poster", "ping", "cite", "manifest"})
                QVERIFY(!element.attributes.contains(text(other)));
            QVERIFY(element.name != text("link") && element.name != text("iframe")
                    && element.name != text("object") && element.name != text("embed"));
        }
        for (const char* word : {"url(", "@import", "http", "src("})
            QVERIFY(!page.style().contains(word));
        for (const char* word : {"http", "fetch", "import", "XMLHttp", "innerHTML", "eval"})
            QVERIFY(!page.script().contains(word));
    }
}

void TestCommandReport::readableWithoutEyesAndScripts_data()
{
    QTest::addColumn<QString>("sample");
    for (const char* sample : {"report.pdf", "nested.pdf", "minimal.pdf", "damaged.pdf"})
        QTest::newRow(sample) << text(sample);
}

void TestCommandReport::readableWithoutEyesAndScripts()
{
    QFETCH(QString, sample);
    const Outcome outcome = runTresk({text("report"), text(TRESK_SOURCE_DIR "/samples/") + sample});
    QVERIFY(outcome.output.startsWith("<!DOCTYPE html>\n"));
    const HtmlPage page(outcome.output);
    QCOMPARE(page.error(), QString());
    QCOMPARE(page.elements().first().attributes.value(text("lang")), text("en"));
    for (const char* landmark : {"header", "main", "h1", "title"})
        QVERIFY2(page.named(landmark).size() == 1, landmark);
    QVERIFY(!page.texts("title").first().isEmpty());

    QSet<QString> ids;
    for (const HtmlElement& element : page.elements()) {
        const QString id = element.attributes.value(text("id"));
        QVERIFY2(id.isEmpty() || !ids.contains(id), qPrintable(id));
        ids.insert(id);
    }
    int level = 1;
    for (const HtmlElement& element : page.elements()) {
        for (const char* attribute : {"for", "aria-labelledby", "data-of"})
            QVERIFY2(ids.contains(element.attributes.value(text(attribute))),
                     qPrintable(element.name));
        if (element.name == text("a"))
            QVERIFY(ids.contains(element.attributes.value(text("href")).mid(1)));
        if (element.name == text("section"))
            QVERIFY(element.attributes.contains(text("aria-labelledby")));
        if (element.name == text("img"))
            QVERIFY(element.attributes.value(text("alt")).size() > 5);
        if (element.name == text("th"))
            QVERIFY(element.attributes.contains(text("scope")));
        if (element.name == text("details"))
            QVERIFY(element.attributes.contains(text("open")));
        // What is of no use without the script, and nothing else, is hidden.
        QCOMPARE(element.attributes.contains(text("hidden")),
                 element.attributes.value(text("role")) == text("search"));
        if (QRegularExpression(text("^h[1-6]$")).match(element.name).hasMatch()) {
            const int here = element.name.mid(1).toInt();
            QVERIFY2(here <= level + 1, qPrintable(element.text));
            level = here;
        }
    }
    QVERIFY(page.named("label").size() == page.named("input").size());
    QVERIFY(page.named("table").size() == page.named("caption").size());
}

void TestCommandReport::checksAreThoseOfVerify()
{
    const QString path = text(TRESK_SOURCE_DIR "/samples/damaged.pdf");
    const Outcome outcome = runTresk({text("report"), path});
    const Outcome verified = runTresk({text("verify"), text("--json"), path});
    QCOMPARE(outcome.exitCode, verified.exitCode);
    const HtmlPage page(outcome.output);
    QCOMPARE(page.error(), QString());
    const QJsonObject result = jsonObject(verified.output);
    const QJsonObject document = result.value(text("documents")).toArray().at(0).toObject();
    int failed = 0;
    for (const QJsonValue& value : document.value(text("steps")).toArray()) {
        const QJsonObject step = value.toObject();
        const QString state =
            page.textsIn(text("step-%1").arg(step.value(text("id")).toInt()), "dd").value(0);
        const bool right = step.value(text("status")).toString() == text("right");
        failed += right ? 0 : 1;
        QCOMPARE(state,
                 right ? text("✓ right")
                       : text("✗ failed: ") + step.value(text("error")).toString());
    }
    QStringList states;
    for (const QString& cell : page.texts("td")) {
        if (cell.startsWith(text("✗ failed: ")))
            states += cell;
    }
    for (const QJsonValue& value : document.value(text("files")).toArray()) {
        const QJsonObject file = value.toObject();
        if (file.value(text("status")).toString() == text("right"))
            continue;
        ++failed;
        QVERIFY(states.removeOne(text("✗ failed: ") + file.value(text("error")).toString()));
    }
    QCOMPARE(states, QStringList());
    QVERIFY(failed > 1);
    QVERIFY(page.text().contains(text("✗ %1 of 9 checks failed: 3 differ, 1 broken.").arg(failed)));
    QVERIFY(!page.text().contains(text("All checksums are right")));
}

void TestCommandReport::failedChecksAreShown()
{
    const FileSpec wrong = FileSpec::plain(text("wrong.txt"), "abc").with("md5file", md5Hex("x"));
    const Outcome outcome = report(documentWith(QVector<FileSpec>{wrong}));
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(outcome.errors,
             QByteArray("tresk: some.pdf: 1 of 2 checks failed: 1 differs ('tresk verify' lists "
                        "them)\n"));
    const HtmlPage page(outcome.output);
    QVERIFY(page.texts("td").contains(text("✗ failed: its checksum differs")));
    QVERIFY(page.textsIn(text("step-0"), "dd").contains(text("✓ right")));

    const Outcome right = report(documentWith({step(text("one"))}));
    QCOMPARE(right.exitCode, 0);
    QVERIFY(
        HtmlPage(right.output).text().contains(text("✓ All checksums are right: 1 item checked.")));
}

void TestCommandReport::damageIsToldOf_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("message");
    SectionSpec longer = stepByTool("one", "t");
    longer.raw.insert("size", "100000");
    SectionSpec astray = stepByTool("one", "t").with("previousmarker", "12");
    astray.gap = QByteArray(20, '\n');
    const FileSpec noDocument = FileSpec::flate(text("b.tresk"), "nothing");
    QTest::newRow("cut off") << documentWith({longer})
                             << QByteArray("is cut off or damaged: 1 step would reach beyond its "
                                           "end");
    QTest::newRow("broken chain")
        << documentWith({stepByTool("lost", "t"), astray})
        << QByteArray("the history is incomplete: the step before step 0 is not where its marker "
                      "says");
    QTest::newRow("no document inside")
        << documentWith({stepByTool("one", "t", {noDocument})})
        << QByteArray("there is no history to be read in \"b.tresk\", which step 0 of the tree "
                      "embeds");
}

void TestCommandReport::damageIsToldOf()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, message);
    const Outcome outcome = report(document);
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(outcome.errors.count("tresk: some.pdf: " + message + "\n"), 1);
    const HtmlPage page(outcome.output);
    QCOMPARE(page.error(), QString());
    QVERIFY(page.textsIn(text("problems"), "li").contains(QString::fromUtf8(message)));
    QVERIFY(page.texts("h3").contains(text("Step 0: one")));

    const HtmlPage sound(report(documentWith({stepByTool("one", "t")})).output);
    QCOMPARE(sound.withId(text("problems")).name, QString());
}

void TestCommandReport::brokenSummaryIsToldOf()
{
    FileSpec summary = summaryWith(element("Title", "told"));
    summary.stored = QByteArray("no zlib stream");
    const Outcome outcome = report(documentWith(QVector<FileSpec>{summary}));
    QVERIFY2(
        outcome.errors.contains("warning: step 0 \"step\": its summary document cannot be read"),
        outcome.errors.constData());
    const HtmlPage page(outcome.output);
    QVERIFY(page.withId(text("step-0"))
                .text.contains(text("✗ The summary of this step cannot be read.")));
    QCOMPARE(page.texts("h3"), QStringList{text("Step 0: step")});
    QCOMPARE(outcome.exitCode, 1); // for its checksum

    const HtmlPage sound(report(documentWith({stepByTool("one", "t")})).output);
    QVERIFY(!sound.text().contains(text("cannot be read")));
}

void TestCommandReport::sameTwice()
{
    const QByteArray once = report(nestedDocument()).output;
    QVERIFY(!once.isEmpty());
    const Outcome again = Command({text("report"), text("some.pdf")})
                              .inDirectory(m_dir.path(QString()))
                              .with(text("QT_HASH_SEED"), text("0"))
                              .with(text("LC_ALL"), text("C"))
                              .with(text("TZ"), text("Asia/Tokyo"))
                              .run();
    QCOMPARE(again.output, once);
}

QTEST_GUILESS_MAIN(TestCommandReport)
#include "tst_command_report.moc"
