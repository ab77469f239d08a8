#include "Command.h"
#include "Documents.h"
#include "SummaryXml.h"
#include "Watched.h"

#include <TestFiles.h>

#include <QJsonArray>
#include <QtTest>

using namespace tresktest;

/// `tresk show`.
class TestCommandShow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everythingThatIsSet();
    void nothingThatIsNotSet();
    void filesInFull();
    void whetherFilesAreEmbedded();
    void attributesInReadingOrder();
    void textsStandAsTheyAre();
    void stepWithoutSummary();
    void summaryWithoutStepElement();
    void verboseShowsTheMarker();
    void allStepsNewestFirst();
    void stepIsFound_data();
    void stepIsFound();
    void stepIsNotFound_data();
    void stepIsNotFound();
    void jsonHasEverything();
    void jsonTellsMissingFromEmpty();
    void sameFileAThousandTimes();
    void largeSummaryTakesLittleMemory();
    void colourIsTakenWhenAskedFor();

private:
    QString run(const QByteArray& document, const QStringList& arguments = {}) const;
    QString runOn(const QVector<FileSpec>& files, const QStringList& arguments = {}) const;
    QJsonObject jsonOf(const QVector<FileSpec>& files) const;

    TestDir m_dir;
};

namespace {

const QByteArray allStepElements = element("TreskRootFile", "root.pdf")
    + element("Timestamp", "2024-03-05 09:12:44") + element("Title", "Record")
    + element("Description", "A description") + element("Comment", "A comment")
    + element("Command", "record -o run.csv") + element("Tool", "recorder")
    + element("ToolPath", "/opt/recorder") + element("Host", "rig4") + element("User", "asato")
    + element("Creator", "writer 1") + element("PDFTitle", "t") + element("PDFAuthor", "a")
    + element("PDFSubject", "s") + element("PDFKeywords", "k") + element("PDFProducer", "p")
    + element("PDFCreator", "c");

/// The part of @p shown that is about the step's own summary document, which is always last.
QString withoutSummaryFile(const QString& shown)
{
    const auto place = shown.indexOf(text("  other: ws_summary.xml\n"));
    if (place < 0)
        QTest::qFail("the summary document is not shown", __FILE__, __LINE__);
    return shown.left(place);
}

} // namespace

void TestCommandShow::initTestCase()
{
    useUtf8Paths();
}

QString TestCommandShow::run(const QByteArray& document, const QStringList& arguments) const
{
    const Outcome outcome = runTresk(
        QStringList{text("show"), m_dir.write(text("some.pdf"), document)} + arguments);
    if (outcome.exitCode != 0 || !outcome.errors.isEmpty())
        QTest::qFail(outcome.errors.constData(), __FILE__, __LINE__);
    return QString::fromUtf8(outcome.output);
}

/// What is shown of a document with one step that has these files.
QString TestCommandShow::runOn(const QVector<FileSpec>& files, const QStringList& arguments) const
{
    return run(documentWith(files), arguments);
}

/// What programs are told of the only step that has these files.
QJsonObject TestCommandShow::jsonOf(const QVector<FileSpec>& files) const
{
    const QJsonObject json = jsonObject(runOn(files, {text("--json")}).toUtf8());
    return json.value(text("steps")).toArray()[0].toObject();
}

void TestCommandShow::everythingThatIsSet()
{
    FileSpec summary = summaryWith(
        allStepElements
        + element("UserAttributes",
                  attribute("speed", "25.0", "Hz") + attribute("bearing", "6205")));
    summary.content.replace("</trxchange>", element("MD5Signature", "abc") + "</trxchange>");
    QCOMPARE(withoutSummaryFile(runOn({summary})),
             text("step 0  Record\n"
                  "  time:         2024-03-05 09:12:44\n"
                  "  description:  A description\n"
                  "  comment:      A comment\n"
                  "  command:      record -o run.csv\n"
                  "  tool:         recorder\n"
                  "  tool path:    /opt/recorder\n"
                  "  user:         asato\n"
                  "  host:         rig4\n"
                  "  creator:      writer 1\n"
                  "  root file:    root.pdf\n"
                  "  PDF title:    t\n"
                  "  PDF author:   a\n"
                  "  PDF subject:  s\n"
                  "  PDF keywords: k\n"
                  "  PDF producer: p\n"
                  "  PDF creator:  c\n"
                  "  signature:    abc\n"
                  "  attributes:\n"
                  "    speed = 25.0 Hz\n"
                  "    bearing = 6205\n"));
}

void TestCommandShow::nothingThatIsNotSet()
{
    QCOMPARE(
        withoutSummaryFile(runOn({summaryWith(element("Tool", "t") + element("Comment", ""))})),
        text("step 0  step\n"
             "  tool:         t\n"));
}

void TestCommandShow::filesInFull()
{
    const QByteArray content = QByteArray("0123456789").repeated(500);
    const FileSpec out = FileSpec::flate(text("run.csv"), content);
    const QByteArray more = element("Filepath", "/data/run.csv") + element("Description", "The run")
        + element("Comment", "Sensor 2") + element("LastModified", "2024-03-05")
        + element("GenerateMD5", "1") + element("Preview", "1") + element("PreviewWS", "1")
        + element("Thumbnail", "1") + element("ThumbnailOnly", "1")
        + element("UserAttributes", attribute("rate", "1024", "Hz"));
    const QByteArray stored = deflated(content);
    QString expected = QStringLiteral("step 0  step\n"
                                      "  in:    small\n"
                                      "    embedded:    file 1\n"
                                      "    type:        data\n"
                                      "    size:        2 bytes\n"
                                      "    md5:         %4\n"
                                      "    compression: none\n"
                                      "    stored size: 2 bytes\n"
                                      "  out:   run.csv\n"
                                      "    embedded:    file 0\n"
                                      "    path:        /data/run.csv\n"
                                      "    type:        data\n"
                                      "    description: The run\n"
                                      "    comment:     Sensor 2\n"
                                      "    modified:    2024-03-05\n"
                                      "    size:        4.9 KiB (5000 bytes)\n"
                                      "    md5:         %1\n"
                                      "    compression: flate\n"
                                      "    stored size: %2 bytes\n"
                                      "    stored md5:  %3\n"
                                      "    flags:       generate MD5, preview, preview of the "
                                      "step, thumbnail, thumbnail only\n"
                                      "    attributes:\n"
                                      "      rate = 1024 Hz\n")
                           .arg(QString::fromLatin1(md5Hex(content)),
                                QString::number(stored.size()), QString::fromLatin1(md5Hex(stored)),
                                QString::fromLatin1(md5Hex("ab")));
    const FileSpec small = FileSpec::plain(text("small"), "ab");
    const FileSpec summary = summaryWith(fileElement("InFile", small)
                                         + fileElement("OutFile", out, true, more));
    QCOMPARE(withoutSummaryFile(runOn({out, small, summary})), expected);
}

void TestCommandShow::whetherFilesAreEmbedded()
{
    const FileSpec here = FileSpec::plain(text("here"), "h");
    const FileSpec there = FileSpec::plain(text("there"), "t");
    const FileSpec unnamed = FileSpec::plain(text("un\\named]"), "u");
    const QString shown = runOn(
        {unnamed, here,
         summaryWith(fileElement("InFile", here) + fileElement("InFile", there)
                     + fileElement("OutFile", there, false))});
    QVERIFY2(shown.contains(text("  in:    here\n    embedded:    file 1\n")), qPrintable(shown));
    QVERIFY2(shown.contains(
                 text("  in:    there\n    embedded:    yes, but it is not found in this step\n")),
             qPrintable(shown));
    QVERIFY2(shown.contains(text("  out:   there\n    embedded:    no\n")), qPrintable(shown));
    // What the summary does not name is shown as its marker has it, and comes last.
    const auto last = shown.indexOf(text("  other: un\\named]\n    embedded:    file 0\n"));
    QVERIFY2(last > shown.indexOf(text("  out:   there\n")), qPrintable(shown));
}

void TestCommandShow::attributesInReadingOrder()
{
    const QByteArray attributes = attribute("zeta", "1", "mm") + attribute("alpha", "2")
        + attribute("", "nameless") + attribute("mu", "", "kg") + attribute("zeta", "3")
        + attribute("beta", "a = b");
    const FileSpec file = FileSpec::plain(text("f"), "f");
    const FileSpec summary = summaryWith(
        element("UserAttributes", attributes)
        + fileElement("InFile", file, true, element("UserAttributes", attributes)));
    const QString shown = runOn({file, summary});
    // A name that was read twice stands once, where it came first, with its last value.
    const QStringList lines = {text("zeta = 3 mm"), text("alpha = 2"), text("<no name> = nameless"),
                               text("mu =  kg"), text("beta = a = b")};
    for (const char* indent : {"    ", "      "}) {
        const QString separator = QLatin1Char('\n') + text(indent);
        QVERIFY2(shown.contains(text("attributes:") + separator + lines.join(separator)
                                + QLatin1Char('\n')),
                 qPrintable(shown));
    }
    const QJsonArray json = jsonOf({file, summary})
                                .value(text("summary"))
                                .toObject()
                                .value(text("attributes"))
                                .toArray();
    QCOMPARE(json.size(), 5);
    const QJsonObject first = {
        {text("name"), text("zeta")}, {text("value"), text("3")}, {text("unit"), text("mm")}};
    QCOMPARE(json[0].toObject(), first);
    QVERIFY(json[1].toObject().value(text("unit")).isNull());
}

void TestCommandShow::textsStandAsTheyAre()
{
    // Entities are not decoded, and what a terminal may act on is written out.
    const FileSpec file = FileSpec::plain(text("in"), "i");
    const QString shown = runOn(
        {file,
         summaryWith(element("Title", "a &amp; \x1b[2J") + element("Command", "x\\n\ty\nz")
                     + element("Comment", "\xe2\x80\xae")
                     + element("UserAttributes", attribute("k\x07", "v\x1b", "u\x9b"))
                     + fileElement("InFile", file, false, element("Filepath", "\x1b]0;")))});
    QVERIFY2(shown.startsWith(text("step 0  a &amp; \\x1b[2J\n")), qPrintable(shown));
    QVERIFY2(shown.contains(text("  command:      x\\n\\ty\\nz\n")), qPrintable(shown));
    QVERIFY2(shown.contains(text("  comment:      \\u202e\n")), qPrintable(shown));
    QVERIFY2(shown.contains(text("    k\\x07 = v\\x1b u\ufffd\n")), qPrintable(shown));
    QVERIFY2(shown.contains(text("    path:        \\x1b]0;\n")), qPrintable(shown));
    QVERIFY(!shown.contains(QLatin1Char('\x1b')));
}

void TestCommandShow::stepWithoutSummary()
{
    FileSpec file = FileSpec::plain(text("a]b"), "x");
    file.desc = text("d]");
    SectionSpec section = step(text("t]"), {file});
    section.creator = text("c]");
    const QString shown = run(documentWith(QVector<SectionSpec>{section}));
    QCOMPARE(shown,
             QStringLiteral("step 0  t]\n"
                            "  creator:      c]\n"
                            "  summary:      none; this is what the marker says\n"
                            "  other: a]b\n"
                            "    embedded:    file 0\n"
                            "    type:        data\n"
                            "    description: d]\n"
                            "    size:        1 byte\n"
                            "    md5:         %1\n"
                            "    compression: none\n"
                            "    stored size: 1 byte\n")
                 .arg(QString::fromLatin1(md5Hex("x"))));
}

void TestCommandShow::summaryWithoutStepElement()
{
    // Its only text is the signature; the files of other steps are none of it.
    const FileSpec summary = summaryOf(element("trxchange", element("MD5Signature", "abc")));
    const QString shown = run(documentWith({step(text("old"), {summary}),
                                            step(text("new"), {FileSpec::plain(text("f"), "f")})}),
                              {text("1")});
    QCOMPARE(withoutSummaryFile(shown), text("step 1  old\n  signature:    abc\n"));
}

void TestCommandShow::verboseShowsTheMarker()
{
    DocumentWriter writer(headerLine() + '\n');
    const WrittenSection written = writer.writeSection(step(text("t")));
    QCOMPARE(run(writer.bytes(), {text("-v")}),
             QStringLiteral("step 0  t\n"
                            "  creator:      writer\n"
                            "  summary:      none; this is what the marker says\n"
                            "  marker:\n"
                            "    creator: writer\n"
                            "    version: 1.0\n"
                            "    index:   0\n"
                            "    marker:  at byte %1\n"
                            "    md5:     %2\n"
                            "    size:    %3 bytes\n")
                 .arg(QString::number(written.lineStart), QString::fromLatin1(written.md5section),
                      QString::number(written.regionEnd - written.regionStart)));
}

void TestCommandShow::allStepsNewestFirst()
{
    DocumentWriter writer(headerLine() + '\n');
    writer.writeFile(FileSpec::plain(text("stray"), "stray"));
    writer.writeSection(step(text("first"), {summaryWith(element("Tool", "t"))}));
    writer.writeSection(step(text("second")));
    const QString shown = run(writer.bytes());
    QVERIFY2(shown.startsWith(text("step 0  second\n"
                                   "  creator:      writer\n"
                                   "  summary:      none; this is what the marker says\n"
                                   "\n"
                                   "step 1  first\n"
                                   "  tool:         t\n")),
             qPrintable(shown));
    QVERIFY2(
        shown.contains(text("\n\n-  without a step\n  other: stray\n    embedded:    file 0\n")),
        qPrintable(shown));
    // Of one step just that is shown.
    const QString one = run(writer.bytes(), {text("1")});
    QVERIFY(one.startsWith(text("step 1  first\n")));
    QVERIFY(!one.contains(text("stray")) && !one.contains(text("\n\n")));
}

void TestCommandShow::stepIsFound_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("title");
    QTest::newRow("newest") << text("0") << text("third");
    QTest::newRow("oldest") << text("2") << text("first");
    QTest::newRow("zeros in front") << text("001") << text("second");
}

void TestCommandShow::stepIsFound()
{
    QFETCH(QString, argument);
    QFETCH(QString, title);
    const QByteArray document = documentWith(
        {step(text("first")), step(text("second")), step(text("third"))});
    QCOMPARE(run(document, {argument}).section(QLatin1Char('\n'), 0, 0),
             QStringLiteral("step %1  %2").arg(QString::number(argument.toInt()), title));
    const QJsonArray steps = jsonObject(run(document, {text("--json"), argument}).toUtf8())
                                 .value(text("steps"))
                                 .toArray();
    QCOMPARE(steps.size(), 1);
    QCOMPARE(steps[0].toObject().value(text("title")).toString(), title);
}

void TestCommandShow::stepIsNotFound_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QByteArray>("shown");
    const auto row = [](const char* argument, const char* shown) {
        QTest::newRow(argument) << text(argument) << QByteArray(shown);
    };
    row("2", "2");
    row("-1", "\"-1\"");
    row("+1", "\"+1\"");
    row("99999999999999999999", "99999999999999999999");
    row("first", "\"first\"");
    row("", "\"\"");
    row("1\x1b", "\"1\\x1b\"");
    row("\u0661", "\"\u0661\"");
}

void TestCommandShow::stepIsNotFound()
{
    QFETCH(QString, argument);
    QFETCH(QByteArray, shown);
    const QString path = m_dir.write(text("some.pdf"),
                                     documentWith({step(text("first")), step(text("second"))}));
    const Outcome outcome = runTresk({text("show"), path, text("--"), argument});
    QCOMPARE(outcome.errors,
             "tresk: " + path.toUtf8() + ": there is no step " + shown + " (the ids are 0 to 1)\n");
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 2);

    m_dir.write(text("some.pdf"), documentWith(QVector<SectionSpec>{step(text("only"))}));
    QVERIFY(runTresk({text("show"), path, text("7")})
                .errors.endsWith(": there is no step 7 (the only one has the id 0)\n"));
}

void TestCommandShow::jsonHasEverything()
{
    const FileSpec in = FileSpec::flate(text("a]"), QByteArray(3000, 'i'));
    FileSpec summary = summaryWith(allStepElements
                                   + element("UserAttributes", attribute("k", "v", "u"))
                                   + fileElement("InFile", in));
    // A summary repeats the name as the marker has it.
    summary.content.replace("a]", "a\\]");
    summary.content.replace("</trxchange>", element("MD5Signature", "abc") + "</trxchange>");
    const QJsonObject json = jsonOf({in, summary});
    QCOMPARE(json.value(text("title")).toString(), text("step"));
    QCOMPARE(json.value(text("inFileCount")).toInt(), 1);
    const QJsonArray attributes = {QJsonObject{
        {text("name"), text("k")}, {text("value"), text("v")}, {text("unit"), text("u")}}};
    const QJsonObject expected = {
        {text("rootFile"), text("root.pdf")}, {text("time"), text("2024-03-05 09:12:44")},
        {text("title"), text("Record")},      {text("description"), text("A description")},
        {text("comment"), text("A comment")}, {text("command"), text("record -o run.csv")},
        {text("tool"), text("recorder")},     {text("toolPath"), text("/opt/recorder")},
        {text("host"), text("rig4")},         {text("user"), text("asato")},
        {text("creator"), text("writer 1")},  {text("pdfTitle"), text("t")},
        {text("pdfAuthor"), text("a")},       {text("pdfSubject"), text("s")},
        {text("pdfKeywords"), text("k")},     {text("pdfProducer"), text("p")},
        {text("pdfCreator"), text("c")},      {text("md5Signature"), text("abc")},
        {text("attributes"), attributes}};
    QCOMPARE(json.value(text("summary")).toObject(), expected);
    const QByteArray stored = deflated(in.content);
    const QJsonObject file = {{text("id"), 0},
                              {text("name"), text("a\\]")},
                              {text("nameUnescaped"), text("a]")},
                              {text("purpose"), text("InFile")},
                              {text("path"), QJsonValue::Null},
                              {text("type"), text("data")},
                              {text("description"), QJsonValue::Null},
                              {text("comment"), QJsonValue::Null},
                              {text("lastModified"), QJsonValue::Null},
                              {text("generateMd5"), false},
                              {text("embedded"), true},
                              {text("preview"), false},
                              {text("previewWs"), false},
                              {text("thumbnail"), false},
                              {text("thumbnailOnly"), false},
                              {text("size"), 3000},
                              {text("md5"), QString::fromLatin1(md5Hex(in.content))},
                              {text("compression"), text("flate")},
                              {text("storedSize"), static_cast<int>(stored.size())},
                              {text("storedMd5"), QString::fromLatin1(md5Hex(stored))},
                              {text("attributes"), QJsonArray()}};
    const QJsonArray files = json.value(text("files")).toArray();
    QCOMPARE(files.size(), 2);
    QCOMPARE(files[0].toObject(), file);
    QCOMPARE(files[1].toObject().value(text("name")).toString(), text("ws_summary.xml"));
    QCOMPARE(files[1].toObject().value(text("purpose")).toString(), text("Undefined"));
}

void TestCommandShow::jsonTellsMissingFromEmpty()
{
    const QByteArray unknownSize = element("InFile", element("UncompressedSize", "12k"));
    const QJsonObject json = jsonOf({summaryWith(element("Comment", "") + unknownSize)});
    const QJsonObject summary = json.value(text("summary")).toObject();
    QCOMPARE(summary.value(text("comment")), QJsonValue(QString()));
    QVERIFY(summary.value(text("tool")).isNull());
    const QJsonObject file = json.value(text("files")).toArray()[0].toObject();
    for (const char* name : {"id", "name", "size", "storedSize", "md5"})
        QVERIFY2(file.contains(text(name)) && file.value(text(name)).isNull(), name);

    const QJsonObject none = jsonOf({FileSpec::plain(text("f"), "f")});
    QVERIFY(none.contains(text("summary")) && none.value(text("summary")).isNull());
}

void TestCommandShow::sameFileAThousandTimes()
{
    const FileSpec file = FileSpec::plain(text("f"), "f");
    const FileSpec summary = summaryWith(fileElement("InFile", file).repeated(1000));
    const QString path = m_dir.write(text("repeated.pdf"), documentWith({file, file, summary}));
    for (const char* command : {"show", "log", "files"}) {
        const Outcome outcome = runTresk({text(command), path});
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.exitCode, 0);
    }
    // Each embedded file is given away once.
    const QString shown = QString::fromUtf8(runTresk({text("show"), path}).output);
    QCOMPARE(shown.count(text("  in:    f\n")), 1000);
    QCOMPARE(shown.count(text("  in:    f\n    embedded:    file ")), 2);
    QVERIFY(runTresk({text("log"), path}).output.contains("1000 in, 0 out, 3 embedded"));
}

void TestCommandShow::largeSummaryTakesLittleMemory()
{
    if (isWatched())
        QSKIP("what watches needs more memory than the limit allows");
    // 24 MiB, of which no more than two copies as UTF-16 fit.
    const int mebibyte = 1024 * 1024;
    const FileSpec summary = summaryWith(element("Description", QByteArray(4 * mebibyte, 'd'))
                                         + element("Unknown", QByteArray(20 * mebibyte, 'u')));
    const QString path = m_dir.write(text("large.pdf"), documentWith({summary}));
    for (const QStringList& arguments :
         {QStringList{text("show"), path}, QStringList{text("show"), text("--json"), path},
          QStringList{text("log"), path}}) {
        const Outcome outcome =
            Command(arguments).inShell(text("ulimit -v 220000; \"$@\" | wc -c")).run();
        QCOMPARE(outcome.errors, QByteArray());
        const int size = outcome.output.trimmed().toInt();
        QVERIFY(arguments.first() == text("log") ? size < 1000 : size > 4 * mebibyte);
    }
}

void TestCommandShow::colourIsTakenWhenAskedFor()
{
    const QString shown = runOn(
        {summaryWith(element("Tool", "t") + element("UserAttributes", attribute("k", "v")))},
        {text("--color=always")});
    QVERIFY2(shown.startsWith(text("\x1b[33mstep 0\x1b[0m  \x1b[1mstep\x1b[0m\n"
                                   "  \x1b[2mtool:        \x1b[0m t\n"
                                   "  \x1b[2mattributes:\x1b[0m\n"
                                   "    k = v\n")),
             qPrintable(shown));
}

QTEST_GUILESS_MAIN(TestCommandShow)
#include "tst_command_show.moc"
