#include "ArgFileText.h"

#include <tresk/ArgfileReader.h>

#include <QTest>

using tresktest::readOptions;
using tresktest::ReadOptions;
using tresktest::text;
using tresktest::textOf;

namespace {

/// A row each for the long and the short form of an option, as far as there are both.
void addForms(const char* longForm, const char* shortForm, const char* parameters,
              const QStringList& lines)
{
    for (const char* option : {longForm, shortForm}) {
        if (option != nullptr)
            QTest::newRow(option) << text(option) + text(parameters) << lines;
    }
}

} // namespace

/// What each option and key of an argument file sets.
class TestArgfileReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingToRead_data();
    void nothingToRead();
    void options_data();
    void options();
    void keys_data();
    void keys();
    void repetitions_data();
    void repetitions();
    void parametersCanBeAnything();
    void variables();
    void readerKeepsNothing();
};

void TestArgfileReader::nothingToRead_data()
{
    QTest::addColumn<QString>("content");
    QTest::newRow("empty") << QString();
    QTest::newRow("white space") << text(" \t\r\n");
    QTest::newRow("comment") << text("# --pretend");
    QTest::newRow("open single quote") << text("--pretend -s title 'a");
    QTest::newRow("open double quote") << text("--pretend -s title \"a\\\"");
    QTest::newRow("backslash last") << text("--nonsense \\");
}

void TestArgfileReader::nothingToRead()
{
    QFETCH(QString, content);
    const QHash<QString, QString> table;
    for (const auto* variables : {static_cast<const QHash<QString, QString>*>(nullptr), &table}) {
        const ReadOptions read = readOptions(content, variables);
        QCOMPARE(textOf(read.options), QStringList());
        QCOMPARE(read.messages, QStringList());
    }
}

void TestArgfileReader::options_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QStringList>("lines");
    addForms("--debug", nullptr, "", {text("debugMode: true")});
    addForms("--stdin", nullptr, "", {});
    addForms("--verbose", "-v", "", {text("verbosity: 2")});
    addForms("--quiet", "-q", "", {text("verbosity: 0")});
    addForms("--pretend", "-p", "", {text("pretend: true")});
    addForms("--version", "-V", "", {text("showVersion: true")});
    addForms("--help", "-h", "", {text("showHelp: true")});
    addForms(nullptr, "-1", " 'a b'", {text("firstpage: \"a b\"")});
    addForms(nullptr, "-r", " 'a b'", {text("readme: \"a b\"")});
    addForms("--append-to-treskfile", "-A", " out.pdf",
             {text("rootIsOptional: true"), text("rootfile: \"out.pdf\""),
              text("output document: \"out.pdf\"")});
    addForms(nullptr, "-O", " 'a b'", {text("output document: \"a b\"")});
    addForms(nullptr, "-J", " 'a b'", {text("rootIsOptional: true"), text("rootfile: \"a b\"")});
    addForms(nullptr, "-I", " 'a b'", {text("rootfile: \"a b\"")});
    addForms("--outfile", "-o", " 'x/a b'", {text("output file: \"x/\" \"a b\"")});
    addForms("--infile", "-i", " 'x/a b'", {text("input file: \"x/\" \"a b\"")});
    addForms("--file-flag", "-f", " thumbnail", {});
    addForms("-i a --file-flag", "-i a -f", " thumbnail",
             {text("input file: \"./\" \"a\""), text("  thumbnail: true")});
    addForms("-i a --file-user", "-i a -u", " k 'v w'",
             {text("input file: \"./\" \"a\""), text("  user attribute: \"k\" = \"v w\"")});
    addForms("-i a --file-attr", "-i a -a", " comment 'v w'",
             {text("input file: \"./\" \"a\""), text("  comment: \"v w\"")});
    addForms("--step-user", "-U", " k 'v w'", {text("user attribute: \"k\" = \"v w\"")});
    addForms("--step", "-s", " title 'v w'", {text("title: \"v w\"")});
    addForms("--doc", "-d", " title 'v w'", {text("pdfTitle: \"v w\"")});
}

void TestArgfileReader::options()
{
    QFETCH(QString, content);
    QFETCH(QStringList, lines);
    const ReadOptions read = readOptions(content);
    QCOMPARE(textOf(read.options), lines);
    QCOMPARE(read.messages, QStringList());
    // The next option is found behind its parameters.
    QVERIFY(readOptions(content + text(" --debug")).options.debugMode());
}

void TestArgfileReader::keys_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QString>("line");
    const auto add = [](const char* option, const char* key, const char* field) {
        QTest::addRow("%s %s", option, key)
            << text(option) + text(" ") + text(key) << text(field) + text(": \"a value\"");
    };
    for (const char* option : {"-d", "--doc"}) {
        add(option, "producer", "pdfProducer");
        add(option, "creator", "pdfCreator");
        add(option, "author", "pdfAuthor");
        add(option, "keywords", "pdfKeywords");
        add(option, "title", "pdfTitle");
        add(option, "subject", "pdfSubject");
    }
    for (const char* option : {"-s", "--step"}) {
        for (const char* key :
             {"comment", "description", "title", "tool", "toolpath", "host", "command", "user"})
            add(option, key, key);
        add(option, "toolversion", "tool");
    }
    for (const char* option : {"-o x -a", "-o x --file-attr"}) {
        for (const char* key : {"comment", "md5file", "filetype", "description"})
            add(option, key, key);
    }
}

void TestArgfileReader::keys()
{
    QFETCH(QString, content);
    QFETCH(QString, line);
    const ReadOptions read = readOptions(content + text(" 'a value'"));
    QStringList expected(line);
    if (content.startsWith(text("-o")))
        expected = QStringList({text("output file: \"./\" \"x\""), text("  ") + line});
    QCOMPARE(textOf(read.options), expected);
    QCOMPARE(read.messages, QStringList());
    // A value may be empty.
    const ReadOptions emptied = readOptions(content + text(" 'a value' ")
                                            + content.section(text(" "), -2) + text(" ''"));
    expected.removeLast();
    QCOMPARE(textOf(emptied.options), expected);
    QCOMPARE(emptied.messages, QStringList());
}

void TestArgfileReader::repetitions_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QStringList>("lines");
    const auto add = [](const char* content, const QStringList& lines) {
        QTest::newRow(content) << text(content) << lines;
    };
    add("-v -q", {text("verbosity: 0")});
    add("-q --verbose", {text("verbosity: 2")});
    add("-p -p --pretend", {text("pretend: true")});
    add("-s title a -s title b", {text("title: \"b\"")});
    add("-d title a --doc title b", {text("pdfTitle: \"b\"")});
    add("-s tool a -s toolversion b", {text("tool: \"b\"")});
    add("-s toolversion a -s tool b", {text("tool: \"b\"")});
    add("-r a -r b -1 c -1 d", {text("firstpage: \"d\""), text("readme: \"b\"")});
    add("-I a -J b", {text("rootIsOptional: true"), text("rootfile: \"b\"")});
    add("-J a -I b", {text("rootfile: \"b\"")});
    add("-A a -I b", {text("rootfile: \"b\""), text("output document: \"a\"")});
    add("-I a -O b -A c -O b",
        {text("rootIsOptional: true"), text("rootfile: \"c\""), text("output document: \"b\""),
         text("output document: \"c\""), text("output document: \"b\"")});
    add("-U a 1 -U b 2 -U a 3",
        {text("user attribute: \"a\" = \"3\""), text("user attribute: \"b\" = \"2\""),
         text("user attribute: \"a\" = \"3\"")});
    add("-U '' '' -U '' 1",
        {text("user attribute: \"\" = \"1\""), text("user attribute: \"\" = \"1\"")});
    add("-i x -u a 1 -u a 2",
        {text("input file: \"./\" \"x\""), text("  user attribute: \"a\" = \"2\""),
         text("  user attribute: \"a\" = \"2\"")});
    add("-i x -a comment 1 -a comment 2",
        {text("input file: \"./\" \"x\""), text("  comment: \"2\"")});
}

void TestArgfileReader::repetitions()
{
    QFETCH(QString, content);
    const ReadOptions read = readOptions(content);
    QTEST(textOf(read.options), "lines");
    QCOMPARE(read.messages, QStringList());
}

void TestArgfileReader::parametersCanBeAnything()
{
    const ReadOptions read = readOptions(text("-O -O -s title --pretend -U -p '' -i -i -O --readme"
                                              " -I \"a\\\"b\\\\ $X\" -r '$1'"));
    QCOMPARE(textOf(read.options),
             QStringList({text("readme: \"$$1\""), text("rootfile: \"a\\\"b\\\\ $X\""),
                          text("title: \"--pretend\""), text("user attribute: \"-p\" = \"\""),
                          text("output document: \"-O\""), text("output document: \"--readme\""),
                          text("input file: \"./\" \"-i\"")}));
    QCOMPARE(read.messages, QStringList());
}

void TestArgfileReader::variables()
{
    const QHash<QString, QString> table{{text("O"), text("-O")}, {text("X"), text("1 2 -p $Y")}};
    const ReadOptions read = readOptions(text("$O $X -s title ${X}3 -s comment '$X' -I $Z"),
                                         &table);
    QCOMPARE(textOf(read.options),
             QStringList({text("title: \"1 2 -p $$Y3\""), text("comment: \"$$X\""),
                          text("output document: \"1 2 -p $$Y\"")}));
    QCOMPARE(read.messages, QStringList());
    const ReadOptions plain = readOptions(text("-s title ${X}3 -O $X $O"));
    QCOMPARE(textOf(plain.options),
             QStringList({text("title: \"${X}3\""), text("output document: \"$X\"")}));
    QCOMPARE(plain.messages, QStringList(text("2 unknown option found: $O")));
}

void TestArgfileReader::readerKeepsNothing()
{
    tresk::ArgfileReader reader;
    QCOMPARE(reader.parent(), nullptr);
    reader.readArgfile(text("-p -v -i a -U k v"), nullptr);
    QCOMPARE(textOf(reader.readArgfile(text("-f embed -a comment x -h"), nullptr)),
             QStringList(text("showHelp: true")));
}

QTEST_GUILESS_MAIN(TestArgfileReader)

#include "tst_argfilereader.moc"
