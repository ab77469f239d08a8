#include "Command.h"
#include "Documents.h"
#include "SummaryXml.h"

#include <TestFiles.h>
#include <tresk/TreskParser.h>

#include <QJsonArray>
#include <QtTest>

using namespace tresktest;

/// `tresk files`.
class TestCommandFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void filesAreListed();
    void columnsAreAlignedByWidth();
    void missingAndStrangeValuesAreShown();
    void stepsThatHoldAFile();
    void stepsAreThoseOfTheParser();
    void purposeIsThatOfTheSummary();
    void purposeIsThatOfTheOldestStep();
    void verboseShowsMore();
    void documentWithoutFiles();
    void jsonHasWhatTheMarkerSays();
    void jsonHasStoredAndUnescapedText();
    void colourIsTakenWhenAskedFor();

private:
    QString run(const QByteArray& document, QStringList options = {}) const;

    TestDir m_dir;
};

void TestCommandFiles::initTestCase()
{
    useUtf8Paths();
}

QString TestCommandFiles::run(const QByteArray& document, QStringList options) const
{
    options.prepend(text("files"));
    const Outcome outcome = runTresk(options << m_dir.write(text("some.pdf"), document));
    if (outcome.exitCode != 0 || !outcome.errors.isEmpty())
        QTest::qFail(outcome.errors.constData(), __FILE__, __LINE__);
    return QString::fromUtf8(outcome.output);
}

void TestCommandFiles::filesAreListed()
{
    const FileSpec squeezed = FileSpec::flate(text("b.txt"), QByteArray(10000, 'b'));
    const QByteArray document = documentWith(
        {FileSpec::plain(text("a.txt"), "alpha"), squeezed, FileSpec::plain(text("c"), "")});
    const QString stored = QString::number(deflated(squeezed.content).size());
    const QString expected = QStringLiteral("ID  STEP   SIZE  STORED  COMPRESSION  PURPOSE  NAME\n"
                                            " 0  0         5       5  none         -        a.txt\n"
                                            " 1  0     10000  %1  flate        -        b.txt\n"
                                            " 2  0         0       0  none         -        c\n")
                                 .arg(stored, 6);
    QCOMPARE(run(document), expected);
    QCOMPARE(run(document, {text("-q")}), expected);
}

void TestCommandFiles::columnsAreAlignedByWidth()
{
    // The compression is free text, and in front of the name.
    FileSpec wide = FileSpec::plain(text("wide"), "x");
    wide.compression =
        "\xe8\xbb\xb8\xe5\x8f\x97\xe8\xa9\xa6\xe9\xa8\x93\xe6\xa9\x9f\xe6\xa2\xb0\xe5\xad\xa6";
    FileSpec marks = FileSpec::plain(text("marks"), "x");
    marks.compression = "e\xcc\x81"
                        "e\xcc\x81";
    FileSpec pictures = FileSpec::plain(text("pictures"), "x");
    pictures.compression = "\xf0\x9f\x94\xa9\xf0\x9f\x94\xa9";
    QCOMPARE(
        run(documentWith({wide, marks, pictures, FileSpec::plain(text("plain"), "x")})),
        text("ID  STEP  SIZE  STORED  COMPRESSION     PURPOSE  NAME\n"
             " 0  0        1       1  \u8ef8\u53d7\u8a66\u9a13\u6a5f\u68b0\u5b66  -        wide\n"
             " 1  0        1       1  e\u0301e\u0301              -        marks\n"
             " 2  0        1       1  \U0001f529\U0001f529            -        pictures\n"
             " 3  0        1       1  none            -        plain\n"));
}

void TestCommandFiles::missingAndStrangeValuesAreShown()
{
    FileSpec empty = FileSpec::plain(QString(), "");
    empty.with("filesize", "").with("cfilesize", "").with("compression", "");
    const FileSpec strange =
        FileSpec::plain(text("a]b\\c\nd\x1b[31m\u202e"), "x").with("compression", "x\\]\x07");
    QCOMPARE(run(documentWith({empty, strange})),
             text("ID  STEP  SIZE  STORED  COMPRESSION  PURPOSE  NAME\n"
                  " 0  0        -       -               -        \n"
                  " 1  0        1       1  x]\\x07       -        a]b\\c\\nd\\x1b[31m\\u202e\n"));
}

void TestCommandFiles::stepsThatHoldAFile()
{
    DocumentWriter writer(headerLine() + '\n');
    writer.writeFile(FileSpec::plain(text("stray"), "x"));
    const int start = writer.position();
    writer.writeSection(step(text("a"), {FileSpec::plain(text("four"), "x")}));
    const auto reachingBack = [start](const char* name) {
        SectionSpec section = step(text(name), {FileSpec::plain(text(name), "x")});
        section.regionStart = start;
        return section;
    };
    writer.writeSection(reachingBack("three"));
    writer.writeSection(step(text("c"), {FileSpec::plain(text("own"), "x")}));
    writer.writeSection(reachingBack("two"));
    writer.writeSection(reachingBack("last"));
    QCOMPARE(run(writer.bytes()),
             text("ID  STEP     SIZE  STORED  COMPRESSION  PURPOSE  NAME\n"
                  " 0  -           1       1  none         -        stray\n"
                  " 1  0,1,3,4     1       1  none         -        four\n"
                  " 2  0,1,3       1       1  none         -        three\n"
                  " 3  0-2         1       1  none         -        own\n"
                  " 4  0,1         1       1  none         -        two\n"
                  " 5  0           1       1  none         -        last\n"));
    const QJsonArray files =
        jsonObject(run(writer.bytes(), {text("--json")}).toUtf8()).value(text("files")).toArray();
    QCOMPARE(files[0].toObject().value(text("steps")).toArray(), QJsonArray());
    QCOMPARE(files[1].toObject().value(text("steps")).toArray(), QJsonArray({0, 1, 3, 4}));
    QCOMPARE(files[3].toObject().value(text("steps")).toArray(), QJsonArray({0, 1, 2}));
}

void TestCommandFiles::stepsAreThoseOfTheParser()
{
    // Regions and blocks with all kinds of extents, some of them impossible.
    DocumentWriter writer(headerLine() + '\n');
    quint32 state = 1;
    const auto random = [&state](int limit) {
        state = state * 1664525 + 1013904223;
        return static_cast<int>((state >> 8) % static_cast<quint32>(limit));
    };
    for (int i = 0; i < 25; ++i) {
        SectionSpec section = step(QString::number(i));
        for (int j = random(4); j > 0; --j) {
            FileSpec file = FileSpec::plain(text("f"), QByteArray(random(50), 'x'));
            if (random(5) == 0)
                file.with("blocksize", QByteArray::number(random(3) == 0 ? 0 : random(300)));
            section.files += file;
        }
        if (random(3) == 0)
            section.regionStart = random(writer.position());
        if (random(4) == 0)
            section.with("size", random(3) == 0 ? QByteArray() : QByteArray::number(random(600)));
        if (random(6) == 0)
            section.with("left", random(2) == 0 ? QByteArray() : QByteArray::number(random(900)));
        writer.writeSection(section);
    }

    const QString path = m_dir.write(text("random.pdf"), writer.bytes());
    tresk::TreskParser parser;
    QVERIFY(parser.open(path));
    QCOMPARE(parser.getNumSections(), 25);
    // What reaches beyond the end is complained about, but listed.
    const Outcome outcome = runTresk({text("files"), text("--json"), path});
    const QJsonArray files = jsonObject(outcome.output).value(text("files")).toArray();
    QCOMPARE(static_cast<int>(files.size()), parser.getNumFiles());
    QVector<QJsonArray> expected(parser.getNumFiles());
    int memberships = 0;
    for (int i = 0; i < parser.getNumSections(); ++i) {
        for (const tresk::FileTag& file : parser.getFilesInSection(i)) {
            expected[file.id].append(i);
            ++memberships;
        }
    }
    QVERIFY(memberships > parser.getNumFiles());
    for (int i = 0; i < parser.getNumFiles(); ++i)
        QCOMPARE(files[i].toObject().value(text("steps")).toArray(), expected[i]);
}

void TestCommandFiles::purposeIsThatOfTheSummary()
{
    const FileSpec in = FileSpec::plain(text("in"), "i");
    const FileSpec out = FileSpec::flate(text("out"), "o");
    const FileSpec other = FileSpec::plain(text("other"), "x");
    const FileSpec summary = summaryWith(fileElement("OutFile", out) + fileElement("InFile", in)
                                         + fileElement("InFile", other, false));
    const QByteArray document = documentWith({in, out, other, summary});
    const QString listed = run(document);
    QVERIFY2(listed.contains(text("  none         in       in\n")), qPrintable(listed));
    QVERIFY2(listed.contains(text("  flate        out      out\n")), qPrintable(listed));
    QVERIFY2(listed.contains(text("  none         -        other\n")), qPrintable(listed));
    QVERIFY2(listed.contains(text("  flate        -        ws_summary.xml\n")), qPrintable(listed));

    const QJsonArray files =
        jsonObject(run(document, {text("--json")}).toUtf8()).value(text("files")).toArray();
    QStringList purposes;
    for (const auto& file : files)
        purposes += file.toObject().value(text("purpose")).toString();
    QCOMPARE(purposes,
             QStringList({text("InFile"), text("OutFile"), text("Undefined"), text("Undefined")}));
}

void TestCommandFiles::purposeIsThatOfTheOldestStep()
{
    // The second step reaches back to the file, which is an output of the first.
    const FileSpec file = FileSpec::plain(text("passed on"), "content");
    DocumentWriter writer(headerLine() + '\n');
    const int start = writer.position();
    writer.writeSection(step(text("a"), {file, summaryWith(fileElement("OutFile", file))}));
    SectionSpec second = step(text("b"), {summaryWith(fileElement("InFile", file))});
    second.regionStart = start;
    writer.writeSection(second);
    const QString listed = run(writer.bytes());
    QVERIFY2(listed.contains(text("  none         out      passed on\n")), qPrintable(listed));
}

void TestCommandFiles::verboseShowsMore()
{
    FileSpec first = FileSpec::plain(text("a.txt"), "alpha");
    first.filetype = text("text/plain");
    first.desc = text("the first\nletter");
    FileSpec second = FileSpec::plain(text("beta.csv"), "beta");
    second.filetype = text("t]");
    QCOMPARE(
        run(documentWith({first, second}), {text("-v")}),
        text("ID  STEP  SIZE  STORED  COMPRESSION  PURPOSE  TYPE        NAME      DESCRIPTION\n"
             " 0  0        5       5  none         -        text/plain  a.txt     the "
             "first\\nletter\n"
             " 1  0        4       4  none         -        t]          beta.csv  \n"));
}

void TestCommandFiles::documentWithoutFiles()
{
    const QByteArray document = documentWith(QVector<SectionSpec>{step(text("nothing"))});
    QCOMPARE(run(document), QString());
    const QJsonObject json = jsonObject(run(document, {text("--json")}).toUtf8());
    QCOMPARE(json.value(text("files")), QJsonValue(QJsonArray()));
}

void TestCommandFiles::jsonHasWhatTheMarkerSays()
{
    DocumentWriter writer(headerLine() + '\n');
    FileSpec file = FileSpec::flate(text("plot.svg"), QByteArray(5000, 's'));
    file.filetype = text("image/svg+xml");
    file.desc = text("the plot");
    file.comment = text("drawn twice");
    writer.writeSection(step(text("draw"),
                             {file,
                              FileSpec::plain(text("x"), "x")
                                  .with("filesize", "")
                                  .with("cfilesize", "")
                                  .with("md5file", "")}));
    const WrittenFile& written = writer.files().first();

    const QJsonObject json = jsonObject(run(writer.bytes(), {text("--json")}).toUtf8());
    QCOMPARE(json.keys(), QStringList({text("document"), text("files"), text("schema")}));
    QCOMPARE(json.value(text("schema")).toString(), text("tresk-files/1"));
    QCOMPARE(json.value(text("document")).toString(), m_dir.path(text("some.pdf")));
    const QJsonArray files = json.value(text("files")).toArray();
    QCOMPARE(files.size(), 2);
    const QJsonObject expected = {{text("id"), 0},
                                  {text("steps"), QJsonArray{0}},
                                  {text("purpose"), text("Undefined")},
                                  {text("name"), text("plot.svg")},
                                  {text("type"), text("image/svg+xml")},
                                  {text("description"), text("the plot")},
                                  {text("comment"), text("drawn twice")},
                                  {text("compression"), text("flate")},
                                  {text("size"), 5000},
                                  {text("storedSize"), static_cast<int>(written.stored.size())},
                                  {text("md5"), QString::fromLatin1(written.md5file)},
                                  {text("storedMd5"), QString::fromLatin1(written.md5cfile)},
                                  {text("position"), written.lineStart}};
    QCOMPARE(files[0].toObject(), expected);
    const QJsonObject second = files[1].toObject();
    QVERIFY(second.value(text("size")).isNull());
    QVERIFY(second.value(text("storedSize")).isNull());
    QCOMPARE(second.value(text("md5")), QJsonValue(QString()));
    QCOMPARE(second.value(text("storedMd5")), QJsonValue(QString()));
}

void TestCommandFiles::jsonHasStoredAndUnescapedText()
{
    FileSpec file = FileSpec::plain(text("a]b\\c\nd"), "x");
    file.filetype = text("t]");
    file.desc = text("d\n");
    file.comment = text("c\\");
    file.with("compression", "x\\]");
    const QJsonObject json = jsonObject(run(documentWith({file}), {text("--json")}).toUtf8());
    const QJsonObject only = json.value(text("files")).toArray()[0].toObject();
    const auto check = [&only](const char* name, const char* stored, const char* unescaped) {
        QCOMPARE(only.value(text(name)).toString(), text(stored));
        QCOMPARE(only.value(text(name) + text("Unescaped")).toString(), text(unescaped));
    };
    check("name", R"(a\]b\\c\nd)", "a]b\\c\nd");
    check("type", "t\\]", "t]");
    check("description", "d\\n", "d\n");
    check("comment", "c\\\\", "c\\");
    check("compression", "x\\]", "x]");
}

void TestCommandFiles::colourIsTakenWhenAskedFor()
{
    QCOMPARE(run(documentWith({FileSpec::plain(text("a"), "x")}), {text("--color=always")}),
             text("\x1b[2mID  STEP  SIZE  STORED  COMPRESSION  PURPOSE  NAME\x1b[0m\n"
                  "\x1b[33m 0\x1b[0m  0        1       1  none         -        a\n"));
}

QTEST_GUILESS_MAIN(TestCommandFiles)
#include "tst_command_files.moc"
