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
using tresktest::str;
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
    QTest::newRow("empty") << QString() << str("/");
    QTest::newRow("root") << str("/") << str("/");
    QTest::newRow("without slash") << str("a") << str("a/");
    QTest::newRow("with slash") << str("a/") << str("a/");
    QTest::newRow("with two") << str("a//") << str("a//");
    QTest::newRow("backslash") << str("a\\") << str("a\\/");
    QTest::newRow("not cleaned") << str("/a/../b/./c") << str("/a/../b/./c/");
    QTest::newRow("blank") << str(" ") << str(" /");
}

void TestWSFile::filepath()
{
    QFETCH(QString, path);
    WSFile file;
    file.setFilename(str("name"));
    file.setFilepath(path);
    QTEST(file.filepath(), "stored");
    QFETCH(QString, stored);
    QCOMPARE(file.filename(), stored + str("name"));
    file.setFilename(str("x/y"));
    QCOMPARE(file.filepath(), stored);
    QCOMPARE(file.filename(), stored + str("x/y"));
}

void TestWSFile::filenameAndPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QString>("name");
    QTest::newRow("bare name") << str("a.pdf") << str("./") << str("a.pdf");
    QTest::newRow("relative") << str("x/a.pdf") << str("x/") << str("a.pdf");
    QTest::newRow("deeper") << str("x/y z/a b") << str("x/y z/") << str("a b");
    QTest::newRow("absolute") << str("/x/a.pdf") << str("/x/") << str("a.pdf");
    QTest::newRow("in the root") << str("/a.pdf") << str("/") << str("a.pdf");
    QTest::newRow("the root") << str("/") << str("/") << QString();
    QTest::newRow("directory alone") << str("x/y/") << str("x/y/") << QString();
    QTest::newRow("dots stay") << str("./../x/./a") << str("./../x/./") << str("a");
    QTest::newRow("parent") << str("..") << str("./") << str("..");
    QTest::newRow("double slash") << str("x//a") << str("x/") << str("a");
    QTest::newRow("non-ASCII") << str("ä/😀") << str("ä/") << str("😀");
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
        (other.*field.set)(str("changed"));
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
    other.setFilename(str("changed"));
    QVERIFY(differs(other));
    other = file;
    other.setFilepath(str("changed"));
    QVERIFY(differs(other));
    // The same whole, divided elsewhere.
    other = file;
    other.setFilepath(str("a/"));
    other.setFilename(str("b/c"));
    WSFile divided = other;
    divided.setFilepath(str("a/b/"));
    divided.setFilename(str("c"));
    QCOMPARE(divided.filename(), other.filename());
    QVERIFY(divided != other);
}

void TestWSFile::userAttributesMakeADifference()
{
    const auto make = [](const QStringList& keys, const QString& lastValue) {
        WSFile file;
        for (const QString& key : keys)
            file.addUserAttribute(key, str("1"));
        file.addUserAttribute(str("z"), lastValue);
        return file;
    };
    const WSFile file = make({str("a"), str("b")}, str("2"));
    QVERIFY(file == make({str("a"), str("b")}, str("2")));
    QVERIFY(file != make({str("a"), str("b")}, str("3")));
    QVERIFY(file != make({str("b"), str("a")}, str("2")));
    QVERIFY(file != make({str("a"), str("b"), str("a")}, str("2")));
    QVERIFY(file != make({str("a")}, str("2")));
    QVERIFY(file != make({str("A"), str("b")}, str("2")));
}

void TestWSFile::copiesAreIndependent()
{
    WSFile original = filledFile();
    const WSFile copy = original;
    WSFile assigned;
    assigned = original;
    fill(fileTextFields, fileFlagFields, original, str(" new"));
    original.setFilenameAndPath(str("a/b"));
    original.setInputFile(true);
    QVERIFY(copy == filledFile());
    QVERIFY(assigned == filledFile());
    assigned.clearUserAttributes();
    QVERIFY(copy == filledFile());
    QCOMPARE(original.userAttributeKeys().size(), 4);
}

QTEST_GUILESS_MAIN(TestWSFile)

#include "tst_wsfile.moc"
