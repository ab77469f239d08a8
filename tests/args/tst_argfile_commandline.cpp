#include "ArgFileFields.h"
#include "ArgFileText.h"

#include <tresk/ArgFile.h>

#include <QTest>

using tresk::ArgFile;
using tresk::WSFile;
using tresktest::str;

namespace {

/// What every file without changed flags ends with.
const char* const defaultFlags = " -f no-optional -f no-compress -f embed -f automd5"
                                 " -f no-previewws -f no-preview -f no-thumbnail"
                                 " -f no-thumbnailonly";

WSFile fileAt(const char* path)
{
    WSFile file;
    file.setFilenameAndPath(str(path));
    return file;
}

} // namespace

/// The command lines that options are written to, and the request that undoes their step.
class TestArgFileCommandline : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void defaultsAreEmpty();
    void rootAndTitle();
    void everything();
    void eachText_data();
    void eachText();
    void eachFlag_data();
    void eachFlag();
    void verbosity_data();
    void verbosity();
    void userAttributes();
    void emptyDocumentIsWritten();
    void defaultFile();
    void everythingOfAFile();
    void eachFlagOfAFile();
    void pathOfAFile_data();
    void pathOfAFile();
    void userAttributesOfAFile();
    void filesAlone();
    void variables();
    void undo_data();
    void undo();
};

void TestArgFileCommandline::defaultsAreEmpty()
{
    QCOMPARE(ArgFile().toCommandline(false), QString());
    QCOMPARE(ArgFile().toCommandline(true), QString());
    ArgFile options;
    options.setRootIsOptional(true);
    QCOMPARE(options.toCommandline(false), QString());
}

void TestArgFileCommandline::rootAndTitle()
{
    ArgFile options;
    options.setRootfile(str("my root.pdf"));
    options.setTitle(str("title"));
    QCOMPARE(options.toCommandline(false), str("-I \"my root.pdf\" -s title title"));
    options.setRootIsOptional(true);
    QCOMPARE(options.toCommandline(false), str("-J \"my root.pdf\" -s title title"));
}

void TestArgFileCommandline::everything()
{
    ArgFile options(str("o1"), QString());
    for (const auto& field : tresktest::textFields)
        (options.*field.set)(str("the ") + QLatin1String(field.name));
    for (const auto& field : tresktest::flagFields)
        (options.*field.set)(true);
    options.setVerbosity(ArgFile::Quiet);
    options.addOutputTreskfile(str("o 2"));
    options.addUserAttribute(str("k 2"), str("v"));
    options.addUserAttribute(str("k1"), str("w"));
    options.addFile(fileAt("in"));
    options.addFile(fileAt("x/out"))->setInputFile(false);
    QCOMPARE(options.toCommandline(false),
             str("--quiet --pretend --debug --help --version"
                 " --firstpage \"the firstpage\" --readme \"the readme\""
                 " -O o1 -O \"o 2\" -J \"the rootfile\""
                 " -s title \"the title\" -s description \"the description\""
                 " -s comment \"the comment\" -s tool \"the tool\""
                 " -s toolpath \"the toolpath\" -s host \"the host\" -s user \"the user\""
                 " -s command \"the command\""
                 " -d title \"the pdfTitle\" -d producer \"the pdfProducer\""
                 " -d creator \"the pdfCreator\" -d author \"the pdfAuthor\""
                 " -d keywords \"the pdfKeywords\" -d subject \"the pdfSubject\""
                 " -U \"k 2\" v -U k1 w -i ./in")
                 + str(defaultFlags) + str(" -o x/out") + str(defaultFlags));
}

void TestArgFileCommandline::eachText_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<QString>("words");
    const char* const words[] = {
        "--firstpage", "--readme",    "-I",        "-s title",    "-s description", "-s comment",
        "-s tool",     "-s toolpath", "-s host",   "-s user",     "-s command",     "-d title",
        "-d producer", "-d creator",  "-d author", "-d keywords", "-d subject"};
    for (int i = 0; i < int(tresktest::textFields.size()); ++i)
        QTest::newRow(tresktest::textFields[std::size_t(i)].name) << i << str(words[i]);
}

void TestArgFileCommandline::eachText()
{
    QFETCH(int, field);
    QFETCH(QString, words);
    ArgFile options;
    (options.*tresktest::textFields[std::size_t(field)].set)(str("-\"x"));
    QCOMPARE(options.toCommandline(false), words + str(" -\\\"x"));
}

void TestArgFileCommandline::eachFlag_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<QString>("words");
    const char* const words[] = {"--pretend", "--debug", "--help", "--version", "-J root"};
    for (int i = 0; i < int(tresktest::flagFields.size()); ++i)
        QTest::newRow(tresktest::flagFields[std::size_t(i)].name) << i << str(words[i]);
}

void TestArgFileCommandline::eachFlag()
{
    QFETCH(int, field);
    QFETCH(QString, words);
    ArgFile options;
    if (words.startsWith(str("-J")))
        options.setRootfile(str("root"));
    (options.*tresktest::flagFields[std::size_t(field)].set)(true);
    QCOMPARE(options.toCommandline(false), words);
}

void TestArgFileCommandline::verbosity_data()
{
    QTest::addColumn<int>("verbosity");
    QTest::addColumn<QString>("words");
    QTest::newRow("quiet") << int(ArgFile::Quiet) << str("--quiet");
    QTest::newRow("normal") << int(ArgFile::Normal) << QString();
    QTest::newRow("verbose") << int(ArgFile::Verbose) << str("--verbose");
}

void TestArgFileCommandline::verbosity()
{
    QFETCH(int, verbosity);
    ArgFile options;
    options.setVerbosity(ArgFile::Verbosity(verbosity));
    QTEST(options.toCommandline(false), "words");
}

void TestArgFileCommandline::userAttributes()
{
    ArgFile options;
    options.addUserAttribute(str("b"), str("1"));
    options.addUserAttribute(str("empty"), QString());
    options.addUserAttribute(str("a"), str("2"));
    options.addUserAttribute(str("b"), str("3 4"));
    QCOMPARE(options.toCommandline(false), str("-U b \"3 4\" -U a 2 -U b \"3 4\""));
    options.addUserAttribute(str("b"), QString());
    options.addUserAttribute(QString(), str("no name"));
    QCOMPARE(options.toCommandline(false), str("-U a 2 -U  \"no name\""));
}

void TestArgFileCommandline::emptyDocumentIsWritten()
{
    ArgFile options(QString(), str("root"));
    QCOMPARE(options.toCommandline(false), str("-O  -I root"));
    options.clearRootTreskfiles();
    QCOMPARE(options.toCommandline(false), str("-O "));
}

void TestArgFileCommandline::defaultFile()
{
    QCOMPARE(WSFile().toCommandline(false), str("-i .") + str(defaultFlags));
    QCOMPARE(fileAt("x/a b.pdf").toCommandline(false), str("-i \"x/a b.pdf\"") + str(defaultFlags));
}

void TestArgFileCommandline::everythingOfAFile()
{
    WSFile file = fileAt("/x/$a");
    file.setInputFile(false);
    for (const auto& field : tresktest::fileTextFields)
        (file.*field.set)(str("the ") + QLatin1String(field.name));
    for (const auto& field : tresktest::fileFlagFields)
        (file.*field.set)(!(file.*field.get)());
    file.addUserAttribute(str("k"), str("v"));
    QCOMPARE(file.toCommandline(false),
             str("-o /x/\\$a -a filetype \"the filetype\" -a description \"the description\""
                 " -a comment \"the comment\" -a md5file \"the md5file\""
                 " -f optional -f compress -f no-embed -f no-automd5 -f previewws -f preview"
                 " -f thumbnail -f thumbnailonly -u k v"));
}

void TestArgFileCommandline::eachFlagOfAFile()
{
    for (const auto& field : tresktest::fileFlagFields) {
        WSFile file = fileAt("a");
        const bool byDefault = (file.*field.get)();
        (file.*field.set)(!byDefault);
        const QString on = str(" -f ") + QLatin1String(field.name);
        const QString off = str(" -f no-") + QLatin1String(field.name);
        QStringList words = (str("-i ./a") + str(defaultFlags)).split(QLatin1Char(' '));
        const int index = int(words.indexOf((byDefault ? on : off).mid(4)));
        QVERIFY(index > 0);
        words[index] = (byDefault ? off : on).mid(4);
        QCOMPARE(file.toCommandline(false), words.join(QLatin1Char(' ')));
    }
}

void TestArgFileCommandline::pathOfAFile_data()
{
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("path");
    QTest::newRow("directory and name") << str("x/y") << str("a") << str("x/y/a");
    QTest::newRow("this directory") << str(".") << str("a") << str("./a");
    QTest::newRow("root directory") << str("/") << str("a") << str("/a");
    QTest::newRow("empty directory") << QString() << str("a") << str("/a");
    QTest::newRow("no name") << str("x") << QString() << str("x");
    QTest::newRow("name with directory") << str("x") << str("y/a") << str("x/y/a");
    QTest::newRow("absolute name") << str("x") << str("/y/a") << str("/y/a");
    QTest::newRow("not cleaned") << str("x/..") << str("./a") << str("x/.././a");
}

void TestArgFileCommandline::pathOfAFile()
{
    QFETCH(QString, directory);
    QFETCH(QString, name);
    WSFile file;
    file.setFilepath(directory);
    file.setFilename(name);
    QFETCH(QString, path);
    QCOMPARE(file.toCommandline(false), str("-i ") + path + str(defaultFlags));
}

void TestArgFileCommandline::userAttributesOfAFile()
{
    WSFile file = fileAt("a");
    file.addUserAttribute(str("b"), str("1"));
    file.addUserAttribute(str("empty"), QString());
    file.addUserAttribute(str("a"), str("2"));
    file.addUserAttribute(str("b"), str("$3"));
    QCOMPARE(file.toCommandline(false),
             str("-i ./a") + str(defaultFlags) + str(" -u b \\$3 -u a 2 -u b \\$3"));
}

void TestArgFileCommandline::filesAlone()
{
    ArgFile options;
    options.addFile(fileAt("b"));
    options.addFile(fileAt("a"));
    QCOMPARE(options.toCommandline(false),
             str(" -i ./b") + str(defaultFlags) + str(" -i ./a") + str(defaultFlags));
}

void TestArgFileCommandline::variables()
{
    ArgFile options(str("$OUT"), str("$$ROOT"));
    options.setTitle(str("a $T $$"));
    options.addUserAttribute(str("$k"), str("$v"));
    WSFile file = fileAt("$DIR/$$a");
    file.setComment(str("$c"));
    file.addUserAttribute(str("$$k"), str("${v}"));
    options.addFile(file);
    QCOMPARE(options.toCommandline(true),
             str("-O $OUT -I \\$ROOT -s title \"a $T \\$\" -U $k $v"
                 " -i $DIR/\\$a -a comment $c")
                 + str(defaultFlags) + str(" -u \\$k ${v}"));
    QCOMPARE(options.toCommandline(false),
             str("-O \\$OUT -I \\$\\$ROOT -s title \"a \\$T \\$\\$\" -U \\$k \\$v"
                 " -i \\$DIR/\\$\\$a -a comment \\$c")
                 + str(defaultFlags) + str(" -u \\$\\$k \\${v}"));
}

void TestArgFileCommandline::undo_data()
{
    QTest::addColumn<QStringList>("documents");
    QTest::addColumn<QString>("request");
    QTest::newRow("none") << QStringList() << QString();
    QTest::newRow("one") << QStringList(str("a b.pdf"))
                         << str("<DelWorkflowStep>a b.pdf</DelWorkflowStep>");
    QTest::newRow("two") << QStringList({str("b"), str("a")})
                         << str("<DelWorkflowStep>b</DelWorkflowStep>"
                                "<DelWorkflowStep>a</DelWorkflowStep>");
    QTest::newRow("empty path") << QStringList(QString())
                                << str("<DelWorkflowStep></DelWorkflowStep>");
    QTest::newRow("not escaped") << QStringList(str("<&\"$\\>"))
                                 << str("<DelWorkflowStep><&\"$\\></DelWorkflowStep>");
    QTest::newRow("placeholders")
        << QStringList({str("%1%2"), str("%1")})
        << str("<DelWorkflowStep>%1%2</DelWorkflowStep><DelWorkflowStep>%1</DelWorkflowStep>");
}

void TestArgFileCommandline::undo()
{
    QFETCH(QStringList, documents);
    ArgFile options;
    options.setRootfile(str("root"));
    options.addFile(fileAt("a"));
    for (const QString& document : documents)
        options.addOutputTreskfile(document);
    QTEST(options.getUndoWorkflowStep(), "request");
}

QTEST_GUILESS_MAIN(TestArgFileCommandline)

#include "tst_argfile_commandline.moc"
