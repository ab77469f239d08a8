#include "ArgFileChecks.h"

#include <tresk/ArgFile.h>

#include <QTest>

#include <type_traits>

using tresk::ArgFile;
using tresk::WSFile;
using tresktest::checkFlags;
using tresktest::checkTexts;
using tresktest::checkUserAttributes;
using tresktest::fill;
using tresktest::filledFile;
using tresktest::filledOptions;
using tresktest::flagFields;
using tresktest::text;
using tresktest::textFields;
using tresktest::textOf;

static_assert(ArgFile::Quiet == 0 && ArgFile::Normal == 1 && ArgFile::Verbose == 2);
static_assert(std::is_copy_constructible_v<ArgFile> && std::is_copy_assignable_v<ArgFile>);

namespace {

WSFile namedFile(const char* name)
{
    WSFile file;
    file.setFilename(text(name));
    return file;
}

} // namespace

/// The options of a run as values: what they hold, in what limits, and how they are copied.
class TestArgFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void constructorWithDocumentAndRoot();
    void texts() { checkTexts<ArgFile>(textFields, {}); }
    void flags() { checkFlags<ArgFile>(flagFields, {}); }
    void verbosity();
    void clearVariablesKeepsRootAndLists();
    void clearRootTreskfiles();
    void userAttributes() { checkUserAttributes<ArgFile>(); }
    void outputTreskfiles();
    void files();
    void addedFileIsACopy();
    void indexesOutsideTheLists();
    void removeFile_data();
    void removeFile();
    void copiesAreIndependent();
    void copiesAreDeepWherePointersWereTaken();
};

void TestArgFile::defaults()
{
    const ArgFile options;
    for (const auto& field : textFields)
        QVERIFY2((options.*field.get)().isEmpty(), field.name);
    for (const auto& field : flagFields)
        QVERIFY2(!(options.*field.get)(), field.name);
    QCOMPARE(options.verbosity(), ArgFile::Normal);
    QCOMPARE(options.numOutputTreskfiles(), 0);
    QCOMPARE(options.numFiles(), 0);
    QCOMPARE(options.userAttributeKeys(), QStringList());
}

void TestArgFile::constructorWithDocumentAndRoot()
{
    const ArgFile options(text("out.pdf"), text("root.pdf"));
    QCOMPARE(textOf(options),
             QStringList({text("rootfile: \"root.pdf\""), text("output document: \"out.pdf\"")}));
    const ArgFile empty{QString(), QString()};
    QCOMPARE(textOf(empty), QStringList(text("output document: \"\"")));
}

void TestArgFile::verbosity()
{
    ArgFile options;
    for (const ArgFile::Verbosity value : {ArgFile::Quiet, ArgFile::Verbose}) {
        options.setVerbosity(value);
        QCOMPARE(options.verbosity(), value);
        QCOMPARE(textOf(options).size(), 1);
    }
    options.setVerbosity(ArgFile::Normal);
    QCOMPARE(textOf(options), QStringList());
}

void TestArgFile::clearVariablesKeepsRootAndLists()
{
    ArgFile options = filledOptions();
    options.clearVariables();

    ArgFile expected;
    expected.setRootfile(text("rootfile"));
    expected.addUserAttribute(text("key"), text("value"));
    expected.addUserAttribute(text("other"), QString());
    expected.addOutputTreskfile(text("out"));
    expected.addFile(filledFile());
    QCOMPARE(textOf(options), textOf(expected));
}

void TestArgFile::clearRootTreskfiles()
{
    ArgFile options = filledOptions();
    QStringList expected = textOf(options);
    QVERIFY(expected.removeOne(text("rootfile: \"rootfile\"")));
    options.clearRootTreskfiles();
    QCOMPARE(textOf(options), expected);
    QVERIFY(options.rootIsOptional());
}

void TestArgFile::outputTreskfiles()
{
    ArgFile options;
    options.addOutputTreskfile(text("b"));
    options.addOutputTreskfile(QString());
    options.addOutputTreskfile(text("b"));
    options.addOutputTreskfile(text("a"));
    QCOMPARE(options.numOutputTreskfiles(), 4);
    QCOMPARE(options.outputTreskfile(0), text("b"));
    QCOMPARE(options.outputTreskfile(1), QString());
    QCOMPARE(options.outputTreskfile(2), text("b"));
    QCOMPARE(options.outputTreskfile(3), text("a"));
    options.clearOutputTreskfiles();
    QCOMPARE(textOf(options), QStringList());
}

void TestArgFile::files()
{
    ArgFile options;
    QCOMPARE(options.lastFile(), nullptr);
    options.addFile(namedFile("b"));
    options.addFile(filledFile());
    options.addFile(namedFile("b"));
    QCOMPARE(options.numFiles(), 3);
    QVERIFY(options.getConstFile(0) == namedFile("b"));
    QVERIFY(options.getConstFile(1) == filledFile());
    QVERIFY(*options.getFile(1) == filledFile());
    QCOMPARE(options.lastFile(), options.getFile(2));

    options.getFile(0)->setFilename(text("c"));
    options.lastFile()->setFilename(text("d"));
    QVERIFY(options.getConstFile(0) == namedFile("c"));
    QVERIFY(options.getConstFile(1) == filledFile());
    QVERIFY(options.getConstFile(2) == namedFile("d"));

    options.clearFilelist();
    QCOMPARE(textOf(options), QStringList());
    QCOMPARE(options.lastFile(), nullptr);
}

void TestArgFile::addedFileIsACopy()
{
    ArgFile options;
    WSFile file = namedFile("a");
    WSFile* const stored = options.addFile(file);
    QCOMPARE(stored, options.getFile(0));
    file.setFilename(text("b"));
    QCOMPARE(options.getConstFile(0).filename(), text("a"));
    stored->setFilename(text("c"));
    QCOMPARE(options.getConstFile(0).filename(), text("c"));
    WSFile taken = options.getConstFile(0);
    taken.setFilename(text("d"));
    QCOMPARE(options.getConstFile(0).filename(), text("c"));
    // One that is in the list already.
    options.addFile(*options.getFile(0))->setEmbed(false);
    QVERIFY(options.getConstFile(0).embed());
    QCOMPARE(options.getConstFile(1).filename(), text("c"));
}

void TestArgFile::indexesOutsideTheLists()
{
    ArgFile options = filledOptions();
    for (const int i : {1, 2, 2147483647, -1, -2147483647 - 1}) {
        QCOMPARE(options.outputTreskfile(i), QString());
        QCOMPARE(options.getFile(i), nullptr);
        QVERIFY(options.getConstFile(i) == WSFile());
        options.removeFile(i);
    }
    QCOMPARE(textOf(options), textOf(filledOptions()));
}

void TestArgFile::removeFile_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("left");
    QTest::newRow("first") << 0 << text("bc");
    QTest::newRow("middle") << 1 << text("ac");
    QTest::newRow("last") << 2 << text("ab");
    QTest::newRow("behind the last") << 3 << text("abc");
    QTest::newRow("negative") << -1 << text("abc");
}

void TestArgFile::removeFile()
{
    QFETCH(int, index);
    ArgFile options;
    for (const char* name : {"a", "b", "c"})
        options.addFile(namedFile(name));
    options.removeFile(index);
    QString left;
    for (int i = 0; i < options.numFiles(); ++i)
        left += options.getConstFile(i).filename();
    QTEST(left, "left");
}

void TestArgFile::copiesAreIndependent()
{
    ArgFile original = filledOptions();
    const ArgFile copy = original;
    ArgFile assigned(text("x"), text("y"));
    assigned = original;

    fill(textFields, flagFields, original, text(" new"));
    original.setVerbosity(ArgFile::Quiet);
    original.setPretend(false);
    original.getFile(0)->setFilename(text("new"));
    original.getFile(0)->addUserAttribute(text("key"), text("new"));
    original.addFile(WSFile());
    original.addOutputTreskfile(text("new"));
    QCOMPARE(textOf(copy), textOf(filledOptions()));
    QCOMPARE(textOf(assigned), textOf(filledOptions()));

    const QStringList changed = textOf(original);
    QVERIFY(changed != textOf(copy));
    assigned.clearVariables();
    assigned.clearUserAttributes();
    assigned.clearFilelist();
    assigned.clearOutputTreskfiles();
    assigned.clearRootTreskfiles();
    QCOMPARE(textOf(assigned), QStringList());
    QCOMPARE(textOf(original), changed);
}

void TestArgFile::copiesAreDeepWherePointersWereTaken()
{
    ArgFile original;
    original.addFile(WSFile());
    WSFile* const added = original.addFile(namedFile("a"));
    const ArgFile copy(original);
    added->setComment(text("changed"));
    QCOMPARE(copy.getConstFile(1).comment(), QString());

    WSFile* const taken = original.getFile(0);
    ArgFile assigned;
    assigned = original;
    WSFile* const last = assigned.lastFile();
    const ArgFile second = assigned;
    taken->setComment(text("taken"));
    last->setComment(text("last"));
    QCOMPARE(assigned.getConstFile(0).comment(), QString());
    QCOMPARE(original.getConstFile(1).comment(), text("changed"));
    QCOMPARE(second.getConstFile(1).comment(), text("changed"));

    // The list of files stays, and so do the pointers into it.
    original.clearVariables();
    taken->setComment(text("kept"));
    QCOMPARE(original.getConstFile(0).comment(), text("kept"));
}

QTEST_GUILESS_MAIN(TestArgFile)

#include "tst_argfile.moc"
