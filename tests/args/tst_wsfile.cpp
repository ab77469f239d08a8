#include "ArgFileChecks.h"

#include <tresk/ArgFile.h>

#include <QTest>

#include <type_traits>

using tresk::WSFile;
using tresktest::checkFlags;
using tresktest::checkTexts;
using tresktest::checkUserAttributes;
using tresktest::fileFlagFields;
using tresktest::fileTextFields;
using tresktest::fill;
using tresktest::filledFile;
using tresktest::text;
using tresktest::textOf;

static_assert(WSFile::Input == 0 && WSFile::Output == 1);
static_assert(std::is_copy_constructible_v<WSFile> && std::is_copy_assignable_v<WSFile>);

/// A file of a workflow step as a value: its fields, its path, when two are the same.
class TestWSFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void texts() { checkTexts<WSFile>(fileTextFields, textOf(WSFile())); }
    void flags() { checkFlags<WSFile>(fileFlagFields, textOf(WSFile())); }
    void purpose();
    void userAttributes() { checkUserAttributes<WSFile>(); }
    void filepath_data();
    void filepath();
    void filenameAndPath_data();
    void filenameAndPath();
    void eachFieldMakesADifference();
    void userAttributesMakeADifference();
    void copiesAreIndependent();
};

void TestWSFile::defaults()
{
    const WSFile file;
    for (const auto& field : fileTextFields)
        QVERIFY2((file.*field.get)().isEmpty(), field.name);
    QVERIFY(file.autoMD5());
    QVERIFY(file.embed());
    QVERIFY(!file.optional());
    QVERIFY(!file.compress());
    QVERIFY(!file.previewWS());
    QVERIFY(!file.preview());
    QVERIFY(!file.thumbnail());
    QVERIFY(!file.thumbnailOnly());
    QCOMPARE(file.filePurpose(), WSFile::Input);
    QCOMPARE(file.filename(), QString());
    QCOMPARE(file.filepath(), QString());
    QCOMPARE(file.userAttributeKeys(), QStringList());
}

void TestWSFile::purpose()
{
    WSFile file;
    QVERIFY(file.inputFile());
    file.setFilePurpose(WSFile::Output);
    QCOMPARE(file.filePurpose(), WSFile::Output);
    QVERIFY(!file.inputFile());
    file.setInputFile(true);
    QCOMPARE(file.filePurpose(), WSFile::Input);
    QVERIFY(file.inputFile());
    file.setInputFile(false);
    QCOMPARE(file.filePurpose(), WSFile::Output);
    file.setFilePurpose(WSFile::Input);
    QVERIFY(file == WSFile());
}

void TestWSFile::filepath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("stored");
    QTest::newRow("empty") << QString() << text("/");
    QTest::newRow("root") << text("/") << text("/");
    QTest::newRow("without slash") << text("a") << text("a/");
    QTest::newRow("with slash") << text("a/") << text("a/");
    QTest::newRow("with two") << text("a//") << text("a//");
    QTest::newRow("backslash") << text("a\\") << text("a\\/");
    QTest::newRow("not cleaned") << text("/a/../b/./c") << text("/a/../b/./c/");
    QTest::newRow("blank") << text(" ") << text(" /");
}

void TestWSFile::filepath()
{
    QFETCH(QString, path);
    WSFile file;
    file.setFilename(text("name"));
    file.setFilepath(path);
    QTEST(file.filepath(), "stored");
    QFETCH(QString, stored);
    QCOMPARE(file.filename(), stored + text("name"));
    file.setFilename(text("x/y"));
    QCOMPARE(file.filepath(), stored);
    QCOMPARE(file.filename(), stored + text("x/y"));
}

void TestWSFile::filenameAndPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QString>("name");
    QTest::newRow("bare name") << text("a.pdf") << text("./") << text("a.pdf");
    QTest::newRow("relative") << text("x/a.pdf") << text("x/") << text("a.pdf");
    QTest::newRow("deeper") << text("x/y z/a b") << text("x/y z/") << text("a b");
    QTest::newRow("absolute") << text("/x/a.pdf") << text("/x/") << text("a.pdf");
    QTest::newRow("in the root") << text("/a.pdf") << text("/") << text("a.pdf");
    QTest::newRow("the root") << text("/") << text("/") << QString();
    QTest::newRow("directory alone") << text("x/y/") << text("x/y/") << QString();
    QTest::newRow("dots stay") << text("./../x/./a") << text("./../x/./") << text("a");
    QTest::newRow("parent") << text("..") << text("./") << text("..");
    QTest::newRow("double slash") << text("x//a") << text("x/") << text("a");
    QTest::newRow("empty") << text("") << text("./") << QString();
    QTest::newRow("non-ASCII") << text("ä/😀") << text("ä/") << text("😀");
}

void TestWSFile::filenameAndPath()
{
    QFETCH(QString, path);
    QFETCH(QString, directory);
    QFETCH(QString, name);
    WSFile file = filledFile();
    file.setFilenameAndPath(path);
    WSFile expected = filledFile();
    expected.setFilepath(directory);
    expected.setFilename(name);
    QCOMPARE(textOf(file), textOf(expected));
    QCOMPARE(file.filepath(), directory);
    QCOMPARE(file.filename(), directory + name);
}

void TestWSFile::eachFieldMakesADifference()
{
    const WSFile file = filledFile();
    const auto differs = [&file](const WSFile& other) {
        return file != other && other != file && !(file == other) && !(other == file);
    };
    QVERIFY(file == filledFile() && !(file != filledFile()));
    for (const auto& field : fileTextFields) {
        WSFile other = file;
        (other.*field.set)(text("changed"));
        QVERIFY2(differs(other), field.name);
    }
    for (const auto& field : fileFlagFields) {
        WSFile other = file;
        (other.*field.set)(!(file.*field.get)());
        QVERIFY2(differs(other), field.name);
    }
    WSFile other = file;
    other.setInputFile(true);
    QVERIFY(differs(other));
    other = file;
    other.setFilename(text("changed"));
    QVERIFY(differs(other));
    other = file;
    other.setFilepath(text("changed"));
    QVERIFY(differs(other));
    // The same whole, divided elsewhere.
    other = file;
    other.setFilepath(text("a/"));
    other.setFilename(text("b/c"));
    WSFile divided = other;
    divided.setFilepath(text("a/b/"));
    divided.setFilename(text("c"));
    QCOMPARE(divided.filename(), other.filename());
    QVERIFY(divided != other);
}

void TestWSFile::userAttributesMakeADifference()
{
    const auto make = [](const QStringList& keys, const QString& lastValue) {
        WSFile file;
        for (const QString& key : keys)
            file.addUserAttribute(key, text("1"));
        file.addUserAttribute(text("z"), lastValue);
        return file;
    };
    const WSFile file = make({text("a"), text("b")}, text("2"));
    QVERIFY(file == make({text("a"), text("b")}, text("2")));
    QVERIFY(file != make({text("a"), text("b")}, text("3")));
    QVERIFY(file != make({text("b"), text("a")}, text("2")));
    QVERIFY(file != make({text("a"), text("b"), text("a")}, text("2")));
    QVERIFY(file != make({text("a")}, text("2")));
    QVERIFY(file != make({text("A"), text("b")}, text("2")));
}

void TestWSFile::copiesAreIndependent()
{
    WSFile original = filledFile();
    const WSFile copy = original;
    WSFile assigned;
    assigned = original;
    fill(fileTextFields, fileFlagFields, original, text(" new"));
    original.setFilenameAndPath(text("a/b"));
    original.setInputFile(true);
    QVERIFY(copy == filledFile());
    QVERIFY(assigned == filledFile());
    assigned.clearUserAttributes();
    QVERIFY(copy == filledFile());
    QCOMPARE(original.userAttributeKeys().size(), 4);
}

QTEST_GUILESS_MAIN(TestWSFile)

#include "tst_wsfile.moc"
