#include "ArgFileFields.h"
#include "ArgFileText.h"

#include <tresk/ArgFile.h>

#include <QTest>

using tresk::ArgFile;
using tresk::WSFile;
using tresktest::text;

namespace {

/// What every file without changed flags ends with.
const char* const defaultFlags = " -f no-optional -f no-compress -f embed -f automd5"
                                 " -f no-previewws -f no-preview -f no-thumbnail"
                                 " -f no-thumbnailonly";

WSFile fileAt(const char* path)
{
    WSFile file;
    file.setFilenameAndPath(text(path));
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
    options.setRootfile(text("my root.pdf"));
    options.setTitle(text("title"));
    QCOMPARE(options.toCommandline(false), text("-I \"my root.pdf\" -s title title"));
    options.setRootIsOptional(true);
    QCOMPARE(options.toCommandline(false), text("-J \"my root.pdf\" -s title title"));
}

void TestArgFileCommandline::everything()
{
    ArgFile options(text("o1"), QString());
    for (const auto& field : tresktest::textFields)
        (options.*field.set)(text("the ") + QLatin1String(field.name));
    for (const auto& field : tresktest::flagFields)
        (options.*field.set)(true);
    options.setVerbosity(ArgFile::Quiet);
    options.addOutputTreskfile(text("o 2"));
    options.addUserAttribute(text("k 2"), text("v"));
    options.addUserAttribute(text("k1"), text("w"));
    options.addFile(fileAt("in"));
    options.addFile(fileAt("x/out"))->setInputFile(false);
    QCOMPARE(options.toCommandline(false),
             text("--quiet --pretend --debug --help --version"
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
                 + text(defaultFlags) + text(" -o x/out") + text(defaultFlags));
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
        QTest::newRow(tresktest::textFields[std::size_t(i)].name) << i << text(words[i]);
}

void TestArgFileCommandline::eachText()
{
    QFETCH(int, field);
    QFETCH(QString, words);
    ArgFile options;
    (options.*tresktest::textFields[std::size_t(field)].set)(text("-\"x"));
    QCOMPARE(options.toCommandline(false), words + text(" -\\\"x"));
}

void TestArgFileCommandline::eachFlag_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<QString>("words");
    const char* const words[] = {"--pretend", "--debug", "--help", "--version", "-J root"};
    for (int i = 0; i < int(tresktest::flagFields.size()); ++i)
        QTest::newRow(tresktest::flagFields[std::size_t(i)].name) << i << text(words[i]);
}

void TestArgFileCommandline::eachFlag()
{
    QFETCH(int, field);
    QFETCH(QString, words);
    ArgFile options;
    if (words.startsWith(text("-J")))
        options.setRootfile(text("root"));
    (options.*tresktest::flagFields[std::size_t(field)].set)(true);
    QCOMPARE(options.toCommandline(false), words);
}

void TestArgFileCommandline::verbosity_data()
{
    QTest::addColumn<int>("verbosity");
    QTest::addColumn<QString>("words");
    QTest::newRow("quiet") << int(ArgFile::Quiet) << text("--quiet");
    QTest::newRow("normal") << int(ArgFile::Normal) << QString();
    QTest::newRow("verbose") << int(ArgFile::Verbose) << text("--verbose");
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
    options.addUserAttribute(text("b"), text("1"));
    options.addUserAttribute(text("empty"), QString());
    options.addUserAttribute(text("a"), text("2"));
    options.addUserAttribute(text("b"), text("3 4"));
    QCOMPARE(options.toCommandline(false), text("-U b \"3 4\" -U a 2 -U b \"3 4\""));
    options.addUserAttribute(text("b"), QString());
    options.addUserAttribute(QString(), text("no name"));
    QCOMPARE(options.toCommandline(false), text("-U a 2 -U  \"no name\""));
}

void TestArgFileCommandline::emptyDocumentIsWritten()
{
    ArgFile options(QString(), text("root"));
    QCOMPARE(options.toCommandline(false), text("-O  -I root"));
    options.clearRootTreskfiles();
    QCOMPARE(options.toCommandline(false), text("-O "));
}

void TestArgFileCommandline::defaultFile()
{
    QCOMPARE(WSFile().toCommandline(false), text("-i .") + text(defaultFlags));
    QCOMPARE(fileAt("x/a b.pdf").toCommandline(false),
             text("-i \"x/a b.pdf\"") + text(defaultFlags));
}

void TestArgFileCommandline::everythingOfAFile()
{
    WSFile file = fileAt("/x/$a");
    file.setInputFile(false);
    for (const auto& field : tresktest::fileTextFields)
        (file.*field.set)(text("the ") + QLatin1String(field.name));
    for (const auto& field : tresktest::fileFlagFields)
        (file.*field.set)(!(file.*field.get)());
    file.addUserAttribute(text("k"), text("v"));
    QCOMPARE(file.toCommandline(false),
             text("-o /x/\\$a -a filetype \"the filetype\" -a description \"the description\""
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
        const QString on = text(" -f ") + QLatin1String(field.name);
        const QString off = text(" -f no-") + QLatin1String(field.name);
        QStringList words = (text("-i ./a") + text(defaultFlags)).split(QLatin1Char(' '));
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
    QTest::newRow("directory and name") << text("x/y") << text("a") << text("x/y/a");
    QTest::newRow("this directory") << text(".") << text("a") << text("./a");
    QTest::newRow("root directory") << text("/") << text("a") << text("/a");
    QTest::newRow("empty directory") << QString() << text("a") << text("/a");
    QTest::newRow("no name") << text("x") << QString() << text("x");
    QTest::newRow("name with directory") << text("x") << text("y/a") << text("x/y/a");
    QTest::newRow("absolute name") << text("x") << text("/y/a") << text("/y/a");
    QTest::newRow("not cleaned") << text("x/..") << text("./a") << text("x/.././a");
}

void TestArgFileCommandline::pathOfAFile()
{
    QFETCH(QString, directory);
    QFETCH(QString, name);
    WSFile file;
    file.setFilepath(directory);
    file.setFilename(name);
    QFETCH(QString, path);
    QCOMPARE(file.toCommandline(false), text("-i ") + path + text(defaultFlags));
}

void TestArgFileCommandline::userAttributesOfAFile()
{
    WSFile file = fileAt("a");
    file.addUserAttribute(text("b"), text("1"));
    file.addUserAttribute(text("empty"), QString());
    file.addUserAttribute(text("a"), text("2"));
    file.addUserAttribute(text("b"), text("$3"));
    QCOMPARE(file.toCommandline(false),
             text("-i ./a") + text(defaultFlags) + text(" -u b \\$3 -u a 2 -u b \\$3"));
}

void TestArgFileCommandline::filesAlone()
{
    ArgFile options;
    options.addFile(fileAt("b"));
    options.addFile(fileAt("a"));
    QCOMPARE(options.toCommandline(false),
             text(" -i ./b") + text(defaultFlags) + text(" -i ./a") + text(defaultFlags));
}

void TestArgFileCommandline::variables()
{
    ArgFile options(text("$OUT"), text("$$ROOT"));
    options.setTitle(text("a $T $$"));
    options.addUserAttribute(text("$k"), text("$v"));
    WSFile file = fileAt("$DIR/$$a");
    file.setComment(text("$c"));
    file.addUserAttribute(text("$$k"), text("${v}"));
    options.addFile(file);
    QCOMPARE(options.toCommandline(true),
             text("-O $OUT -I \\$ROOT -s title \"a $T \\$\" -U $k $v"
                  " -i $DIR/\\$a -a comment $c")
                 + text(defaultFlags) + text(" -u \\$k ${v}"));
    QCOMPARE(options.toCommandline(false),
             text("-O \\$OUT -I \\$\\$ROOT -s title \"a \\$T \\$\\$\" -U \\$k \\$v"
                  " -i \\$DIR/\\$\\$a -a comment \\$c")
                 + text(defaultFlags) + text(" -u \\$\\$k \\${v}"));
}

void TestArgFileCommandline::undo_data()
{
    QTest::addColumn<QStringList>("documents");
    QTest::addColumn<QString>("request");
    QTest::newRow("none") << QStringList() << QString();
    QTest::newRow("one") << QStringList(text("a b.pdf"))
                         << text("<DelWorkflowStep>a b.pdf</DelWorkflowStep>");
    QTest::newRow("two") << QStringList({text("b"), text("a")})
                         << text("<DelWorkflowStep>b</DelWorkflowStep>"
                                 "<DelWorkflowStep>a</DelWorkflowStep>");
    QTest::newRow("empty path") << QStringList(QString())
                                << text("<DelWorkflowStep></DelWorkflowStep>");
    QTest::newRow("not escaped") << QStringList(text("<&\"$\\>"))
                                 << text("<DelWorkflowStep><&\"$\\></DelWorkflowStep>");
    QTest::newRow("placeholders")
        << QStringList({text("%1%2"), text("%1")})
        << text("<DelWorkflowStep>%1%2</DelWorkflowStep><DelWorkflowStep>%1</DelWorkflowStep>");
}

void TestArgFileCommandline::undo()
{
    QFETCH(QStringList, documents);
    ArgFile options;
    options.setRootfile(text("root"));
    options.addFile(fileAt("a"));
    for (const QString& document : documents)
        options.addOutputTreskfile(document);
    QTEST(options.getUndoWorkflowStep(), "request");
}

QTEST_GUILESS_MAIN(TestArgFileCommandline)

#include "tst_argfile_commandline.moc"
