#include "ArgFileText.h"

#include <tresk/ArgfileReader.h>

#include <QTest>

using tresktest::readOptions;
using tresktest::ReadOptions;
using tresktest::str;
using tresktest::textOf;

namespace {

/// A row each for the long and the short form of an option, as far as there are both.
void addForms(const char* longForm, const char* shortForm, const char* parameters,
              const QStringList& lines)
{
    for (const char* option : {longForm, shortForm}) {
        if (option != nullptr)
            QTest::newRow(option) << str(option) + str(parameters) << lines;
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
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("white space") << str(" \t\r\n");
    QTest::newRow("comment") << str("# --pretend");
    QTest::newRow("open single quote") << str("--pretend -s title 'a");
    QTest::newRow("open double quote") << str("--pretend -s title \"a\\\"");
    QTest::newRow("backslash last") << str("--nonsense \\");
}

void TestArgfileReader::nothingToRead()
{
    QFETCH(QString, text);
    const QHash<QString, QString> table;
    for (const auto* variables : {static_cast<const QHash<QString, QString>*>(nullptr), &table}) {
        const ReadOptions read = readOptions(text, variables);
        QCOMPARE(textOf(read.options), QStringList());
        QCOMPARE(read.messages, QStringList());
    }
}

void TestArgfileReader::options_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("lines");
    addForms("--debug", nullptr, "", {str("debugMode: true")});
    addForms("--stdin", nullptr, "", {});
    addForms("--verbose", "-v", "", {str("verbosity: 2")});
    addForms("--quiet", "-q", "", {str("verbosity: 0")});
    addForms("--pretend", "-p", "", {str("pretend: true")});
    addForms("--version", "-V", "", {str("showVersion: true")});
    addForms("--help", "-h", "", {str("showHelp: true")});
    addForms(nullptr, "-1", " 'a b'", {str("firstpage: \"a b\"")});
    addForms(nullptr, "-r", " 'a b'", {str("readme: \"a b\"")});
    addForms("--append-to-treskfile", "-A", " out.pdf",
             {str("rootIsOptional: true"), str("rootfile: \"out.pdf\""),
              str("output document: \"out.pdf\"")});
    addForms(nullptr, "-O", " 'a b'", {str("output document: \"a b\"")});
    addForms(nullptr, "-J", " 'a b'", {str("rootIsOptional: true"), str("rootfile: \"a b\"")});
    addForms(nullptr, "-I", " 'a b'", {str("rootfile: \"a b\"")});
    addForms("--outfile", "-o", " 'x/a b'", {str("output file: \"x/\" \"a b\"")});
    addForms("--infile", "-i", " 'x/a b'", {str("input file: \"x/\" \"a b\"")});
    addForms("--file-flag", "-f", " thumbnail", {});
    addForms("-i a --file-flag", "-i a -f", " thumbnail",
             {str("input file: \"./\" \"a\""), str("  thumbnail: true")});
    addForms("-i a --file-user", "-i a -u", " k 'v w'",
             {str("input file: \"./\" \"a\""), str("  user attribute: \"k\" = \"v w\"")});
    addForms("-i a --file-attr", "-i a -a", " comment 'v w'",
             {str("input file: \"./\" \"a\""), str("  comment: \"v w\"")});
    addForms("--step-user", "-U", " k 'v w'", {str("user attribute: \"k\" = \"v w\"")});
    addForms("--step", "-s", " title 'v w'", {str("title: \"v w\"")});
    addForms("--doc", "-d", " title 'v w'", {str("pdfTitle: \"v w\"")});
}

void TestArgfileReader::options()
{
    QFETCH(QString, text);
    QFETCH(QStringList, lines);
    const ReadOptions read = readOptions(text);
    QCOMPARE(textOf(read.options), lines);
    QCOMPARE(read.messages, QStringList());
    // The next option is found behind its parameters.
    QVERIFY(readOptions(text + str(" --debug")).options.debugMode());
}

void TestArgfileReader::keys_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("line");
    const auto add = [](const char* option, const char* key, const char* field) {
        QTest::addRow("%s %s", option, key)
            << str(option) + str(" ") + str(key) << str(field) + str(": \"a value\"");
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
    QFETCH(QString, text);
    QFETCH(QString, line);
    const ReadOptions read = readOptions(text + str(" 'a value'"));
    QStringList expected(line);
    if (text.startsWith(str("-o")))
        expected = QStringList({str("output file: \"./\" \"x\""), str("  ") + line});
    QCOMPARE(textOf(read.options), expected);
    QCOMPARE(read.messages, QStringList());
    // A value may be empty.
    const ReadOptions emptied = readOptions(text + str(" 'a value' ") + text.section(str(" "), -2)
                                            + str(" ''"));
    expected.removeLast();
    QCOMPARE(textOf(emptied.options), expected);
    QCOMPARE(emptied.messages, QStringList());
}

void TestArgfileReader::repetitions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("lines");
    const auto add = [](const char* text, const QStringList& lines) {
        QTest::newRow(text) << str(text) << lines;
    };
    add("-v -q", {str("verbosity: 0")});
    add("-q --verbose", {str("verbosity: 2")});
    add("-p -p --pretend", {str("pretend: true")});
    add("-s title a -s title b", {str("title: \"b\"")});
    add("-d title a --doc title b", {str("pdfTitle: \"b\"")});
    add("-s tool a -s toolversion b", {str("tool: \"b\"")});
    add("-s toolversion a -s tool b", {str("tool: \"b\"")});
    add("-r a -r b -1 c -1 d", {str("firstpage: \"d\""), str("readme: \"b\"")});
    add("-I a -J b", {str("rootIsOptional: true"), str("rootfile: \"b\"")});
    add("-J a -I b", {str("rootfile: \"b\"")});
    add("-A a -I b", {str("rootfile: \"b\""), str("output document: \"a\"")});
    add("-I a -O b -A c -O b",
        {str("rootIsOptional: true"), str("rootfile: \"c\""), str("output document: \"b\""),
         str("output document: \"c\""), str("output document: \"b\"")});
    add("-U a 1 -U b 2 -U a 3",
        {str("user attribute: \"a\" = \"3\""), str("user attribute: \"b\" = \"2\""),
         str("user attribute: \"a\" = \"3\"")});
    add("-U '' '' -U '' 1",
        {str("user attribute: \"\" = \"1\""), str("user attribute: \"\" = \"1\"")});
    add("-i x -u a 1 -u a 2",
        {str("input file: \"./\" \"x\""), str("  user attribute: \"a\" = \"2\""),
         str("  user attribute: \"a\" = \"2\"")});
    add("-i x -a comment 1 -a comment 2",
        {str("input file: \"./\" \"x\""), str("  comment: \"2\"")});
}

void TestArgfileReader::repetitions()
{
    QFETCH(QString, text);
    const ReadOptions read = readOptions(text);
    QTEST(textOf(read.options), "lines");
    QCOMPARE(read.messages, QStringList());
}

void TestArgfileReader::parametersCanBeAnything()
{
    const ReadOptions read = readOptions(str("-O -O -s title --pretend -U -p '' -i -i -O --readme"
                                             " -I \"a\\\"b\\\\ $X\" -r '$1'"));
    QCOMPARE(textOf(read.options),
             QStringList({str("readme: \"$$1\""), str("rootfile: \"a\\\"b\\\\ $X\""),
                          str("title: \"--pretend\""), str("user attribute: \"-p\" = \"\""),
                          str("output document: \"-O\""), str("output document: \"--readme\""),
                          str("input file: \"./\" \"-i\"")}));
    QCOMPARE(read.messages, QStringList());
}

void TestArgfileReader::variables()
{
    const QHash<QString, QString> table{{str("O"), str("-O")}, {str("X"), str("1 2 -p $Y")}};
    const ReadOptions read = readOptions(str("$O $X -s title ${X}3 -s comment '$X' -I $Z"), &table);
    QCOMPARE(textOf(read.options),
             QStringList({str("title: \"1 2 -p $$Y3\""), str("comment: \"$$X\""),
                          str("output document: \"1 2 -p $$Y\"")}));
    QCOMPARE(read.messages, QStringList());
    const ReadOptions plain = readOptions(str("-s title ${X}3 -O $X $O"));
    QCOMPARE(textOf(plain.options),
             QStringList({str("title: \"${X}3\""), str("output document: \"$X\"")}));
    QCOMPARE(plain.messages, QStringList(str("2 unknown option found: $O")));
}

void TestArgfileReader::readerKeepsNothing()
{
    tresk::ArgfileReader reader;
    QCOMPARE(reader.parent(), nullptr);
    reader.readArgfile(str("-p -v -i a -U k v"), nullptr);
    QCOMPARE(textOf(reader.readArgfile(str("-f embed -a comment x -h"), nullptr)),
             QStringList(str("showHelp: true")));
}

QTEST_GUILESS_MAIN(TestArgfileReader)

#include "tst_argfilereader.moc"
