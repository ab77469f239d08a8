#include "ArgFileFields.h"
#include "ArgFileText.h"
#include "ExpectedArgFile.h"
#include "RandomArgFile.h"

#include <tresk/ArgfileReader.h>

#include <QHash>
#include <QMap>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <array>

using tresk::ArgFile;
using tresk::WSFile;
using tresktest::Dollars;
using tresktest::expectedFile;
using tresktest::fileFlagFields;
using tresktest::fileTextFields;
using tresktest::flagFields;
using tresktest::readOptions;
using tresktest::ReadOptions;
using tresktest::text;
using tresktest::textFields;
using tresktest::textOf;

Q_DECLARE_METATYPE(tresk::ArgFile)

namespace {

void compare(const ArgFile& written, bool expandVariables, Dollars dollars,
             const QHash<QString, QString>* variables)
{
    const QString line = written.toCommandline(expandVariables);
    const QStringList expected = textOf(tresktest::expectedOptions(written, dollars));
    const ReadOptions read = readOptions(line, variables);
    const QStringList actual = textOf(read.options);
    if (actual != expected && line.size() < 10000)
        qWarning("the command line was %s", qPrintable(tresktest::quotedAscii(line)));
    QCOMPARE(actual, expected);
    QCOMPARE(read.messages, tresktest::expectedMessages(written));
}

ArgFile randomArgFile(QRandomGenerator& random)
{
    return tresktest::randomArgFile([&random](int count) { return random.bounded(count); });
}

const QStringList signs{text("$"), text("\\"), text("\""), text("`"),
                        text("'"), text("#"),  text("\n"), QString(QChar(0))};

/// The names of the lines by which textOf() shows random options, each with a zero.
QMap<QString, int> namesOfLines()
{
    QMap<QString, int> names{{text("verbosity"), 0},       {text("user attribute"), 0},
                             {text("output document"), 0}, {text("input file"), 0},
                             {text("output file"), 0},     {text("  user attribute"), 0}};
    for (const auto& field : textFields)
        names.insert(text(field.name), 0);
    names.remove(text("firstpage"));
    names.remove(text("readme"));
    for (const auto& field : flagFields)
        names.insert(text(field.name), 0);
    for (const auto& field : fileTextFields)
        names.insert(text("  ") + text(field.name), 0);
    for (const auto& field : fileFlagFields)
        names.insert(text("  ") + text(field.name), 0);
    return names;
}

ArgFile withTitle(const char* title, const char* description = "")
{
    ArgFile options;
    options.setTitle(text(title));
    options.setDescription(text(description));
    return options;
}

} // namespace

/// Options that are written to a command line and read again are the same, but for deviations that
/// are all named in ExpectedArgFile.h and RandomArgFile.h.
class TestArgFileRoundTrip : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void literal_data();
    void literal();
    void withVariables_data() { literal_data(); }
    void withVariables();
    void optionsReachEverything();
    void notKept_data();
    void notKept();
    void manyWords();
    void longWord();
    void manyMessages();
};

void TestArgFileRoundTrip::literal_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 10; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void TestArgFileRoundTrip::literal()
{
    // Every dollar sign is protected, so it makes no difference which variables there are.
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    const QHash<QString, QString> empty;
    const QHash<QString, QString> table{{text("X"), text("value")}, {text("a"), QString()}};
    const std::array<const QHash<QString, QString>*, 3> tables = {&empty, &table, nullptr};
    for (std::size_t i = 0; i < 200; ++i) {
        const ArgFile written = randomArgFile(random);
        compare(written, false, Dollars::Doubled, tables[i % tables.size()]);
        if (QTest::currentTestFailed())
            return;
    }
}

void TestArgFileRoundTrip::withVariables()
{
    // "$$" is written as a protected dollar sign, and "$" as it is: both are the same when they
    // are read without a table.
    QFETCH(quint32, seed);
    QRandomGenerator random(1000 + seed);
    for (int i = 0; i < 200; ++i) {
        compare(randomArgFile(random), true, Dollars::Kept, nullptr);
        if (QTest::currentTestFailed())
            return;
    }
}

void TestArgFileRoundTrip::optionsReachEverything()
{
    // The comparisons say little about what the options never hold.
    QMap<QString, int> counts = namesOfLines();
    QRandomGenerator random(1);
    for (int i = 0; i < 400; ++i) {
        const ArgFile written = randomArgFile(random);
        const QStringList lines = textOf(written);
        for (const QString& line : lines)
            ++counts[line.section(QLatin1Char(':'), 0, 0)];
        const QString title = written.title();
        for (const QString& sign : signs)
            counts[sign] += title.contains(sign) ? 1 : 0;
        counts[text("quoted")] += tresktest::isQuoted(title) ? 1 : 0;
        const QStringList keys = written.userAttributeKeys();
        for (const QString& key : keys) {
            counts[text("no value")] += written.userAttribute(key).isEmpty() ? 1 : 0;
            counts[text("repeated key")] += keys.count(key) > 1 ? 1 : 0;
        }
        counts[text("lost flag")] += written.rootIsOptional() && written.rootfile().isEmpty() ? 1
                                                                                              : 0;
        for (int file = 0; file < written.numFiles(); ++file) {
            const WSFile before = written.getConstFile(file);
            const WSFile after = expectedFile(before, Dollars::Kept);
            counts[text("divided anew")] += before.filepath() != after.filepath() ? 1 : 0;
        }
    }
    for (auto count = counts.cbegin(); count != counts.cend(); ++count)
        QVERIFY2(count.value() >= 10, qPrintable(count.key()));
}

void TestArgFileRoundTrip::notKept_data()
{
    QTest::addColumn<ArgFile>("options");
    QTest::addColumn<QString>("commandline"); // its beginning
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QStringList>("messages");
    const auto add = [](const char* row, const ArgFile& options, const char* commandline,
                        const QStringList& lines, const QStringList& messages = {}) {
        QTest::newRow(row) << options << text(commandline) << lines << messages;
    };

    ArgFile options = withTitle("t");
    options.setPretend(true);
    options.setReadme(text("a"));
    add("read-me file", options, "--pretend --readme a -s title t", {text("pretend: true")},
        {text("2 unknown option found: --readme")});
    options = withTitle("t");
    options.setFirstpage(text("a"));
    add("first page", options, "--firstpage a -s title t", {},
        {text("2 unknown option found: --firstpage")});

    add("single quote", withTitle("it's", "d"), "-s title it's -s description d", {});
    add("single quotes", withTitle("'a'b"), "-s title 'a'b", {text("title: \"ab\"")});
    add("single quotes over words", withTitle("'a", "b'"), "-s title 'a -s description b'",
        {text("title: \"a -s description b\"")});
    add("escapes in single quotes", withTitle("'$\"\\`'"), "-s title '\\$\\\"\\\\\\`'",
        {text("title: \"\\\\$$\\\\\\\"\\\\\\\\\\\\`\"")});
    add("number sign", withTitle("a#b", "c"), "-s title a#b -s description c",
        {text("title: \"a\"")});
    add("number sign first", withTitle("#1", "c"), "-s title #1 -s description c", {},
        {text("2 not enough parameters for option: -s")});
    add("backslash and number sign", withTitle("a\\#b"), "-s title a\\\\#b",
        {text("title: \"a\\\\\"")});
    add("number sign up to a line break", withTitle("a#b", "c\nd"),
        "-s title a#b -s description \"c\nd\"", {});
    options = ArgFile();
    options.addFile(WSFile())->setFilenameAndPath(text("x#y"));
    add("number sign in a file's name", options, " -i ./x#y -f no-optional",
        {text("input file: \"./\" \"x\"")});

    add("empty document", ArgFile(QString(), text("root")), "-O  -I root",
        {text("output document: \"-I\"")}, {text("2 unknown option found: root")});
    add("empty document last", ArgFile(QString(), QString()), "-O ", {},
        {text("2 not enough parameters for option: -O")});
    options = ArgFile();
    options.addUserAttribute(QString(), text("v"));
    add("empty name last", options, "-U  v", {}, {text("2 not enough parameters for option: -U")});
    options.addUserAttribute(text("k"), text("w"));
    add("empty name", options, "-U  v -U k w", {text("user attribute: \"v\" = \"-U\"")},
        {text("2 unknown option found: k")});
}

void TestArgFileRoundTrip::notKept()
{
    QFETCH(ArgFile, options);
    QFETCH(QString, commandline);
    const QString line = options.toCommandline(false);
    QCOMPARE(line.left(commandline.size()), commandline);
    const QHash<QString, QString> table;
    const ReadOptions read = readOptions(line, &table);
    QTEST(textOf(read.options), "lines");
    QTEST(read.messages, "messages");
}

void TestArgFileRoundTrip::manyWords()
{
    ArgFile options;
    for (int i = 0; i < 10000; ++i) {
        options.addOutputTreskfile(text("$X %1").arg(i));
        options.addUserAttribute(QString::number(i), text("a\\\"b"));
    }
    for (int i = 0; i < 2000; ++i)
        options.addFile(WSFile())->setFilenameAndPath(QString::number(i));
    for (int i = 0; i < 2000; ++i)
        options.lastFile()->addUserAttribute(text("k"), QString::number(i));
    const QHash<QString, QString> table;
    compare(options, false, Dollars::Doubled, &table);
    compare(options, true, Dollars::Kept, nullptr);
}

void TestArgFileRoundTrip::longWord()
{
    const QString words = text("a \"$X\" '\\ # $$ `b`\r\n").repeated(10000);
    QString word = words;
    word.remove(QRegularExpression(text("[ '#\r\n]")));
    ArgFile options(word, words);
    options.setTitle(words);
    const QHash<QString, QString> table;
    compare(options, false, Dollars::Doubled, &table);
    compare(options, true, Dollars::Kept, nullptr);
}

void TestArgFileRoundTrip::manyMessages()
{
    const ReadOptions read = readOptions(text("-c --sync-cwd ").repeated(50000) + text("-p x"));
    QCOMPARE(read.messages.size(), 100001);
    QCOMPARE(read.messages.constFirst(), text("2 unknown option found: x"));
    QCOMPARE(read.messages.constLast(), text("0 invalid option (--sync-cwd) found"));
    QCOMPARE(textOf(read.options), QStringList(text("pretend: true")));
}

QTEST_GUILESS_MAIN(TestArgFileRoundTrip)

#include "tst_argfile_roundtrip.moc"
