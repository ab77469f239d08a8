#include "ArgFileFields.h"
#include "ArgFileText.h"

#include <QTest>

using tresk::WSFile;
using tresktest::fileFlagFields;
using tresktest::readOptions;
using tresktest::ReadOptions;
using tresktest::text;
using tresktest::textOf;

namespace {

QString flagMessage(int value, const QString& option = text("-f"))
{
    return text("2 \"%1\" is no valid parameter for option %2").arg(QString::number(value), option);
}

} // namespace

/// The files of an argument file, their flags, and to which of them an option applies.
class TestArgfileReaderFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyFlagWord_data();
    void everyFlagWord();
    void fileWithFlagAndAttribute();
    void optionsOfAFileWithoutOne_data();
    void optionsOfAFileWithoutOne();
    void optionsApplyToTheLatestFile();
    void pathsOfFiles_data();
    void pathsOfFiles();
};

void TestArgfileReaderFiles::everyFlagWord_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<QString>("option");
    for (int i = 0; i < int(fileFlagFields.size()); ++i) {
        for (const char* option : {"-f", "--file-flag"})
            QTest::addRow("%s %s", option, fileFlagFields[std::size_t(i)].name)
                << i << text(option);
    }
}

void TestArgfileReaderFiles::everyFlagWord()
{
    QFETCH(int, field);
    QFETCH(QString, option);
    const auto& flag = fileFlagFields[std::size_t(field)];
    const QString word = QLatin1String(flag.name);
    // All but "thumbnail" are set and nevertheless reported.
    const bool reported = word != text("thumbnail");
    for (const bool on : {true, false}) {
        WSFile before;
        before.setFilenameAndPath(text("a"));
        (before.*flag.set)(!on);
        const QString content = text("-i a ") + option + (on ? text(" no-") : text(" ")) + word;
        const ReadOptions opposite = readOptions(content);
        QCOMPARE(textOf(opposite.options), textOf(before));
        QCOMPARE(opposite.messages,
                 reported ? QStringList(flagMessage(on ? 0 : 1, option)) : QStringList());

        (before.*flag.set)(on);
        const ReadOptions read = readOptions(content + text(" ") + option
                                             + (on ? text(" ") : text(" no-")) + word);
        QCOMPARE(textOf(read.options), textOf(before));
        QCOMPARE(read.messages,
                 reported ? QStringList(
                     {flagMessage(on ? 0 : 1, option), flagMessage(on ? 1 : 0, option)})
                          : QStringList());
    }
}

void TestArgfileReaderFiles::fileWithFlagAndAttribute()
{
    const ReadOptions read = readOptions(text("-i a.pdf -f no-embed -a filetype pdf"));
    QCOMPARE(textOf(read.options),
             QStringList({text("input file: \"./\" \"a.pdf\""), text("  filetype: \"pdf\""),
                          text("  embed: false")}));
    QCOMPARE(read.messages, QStringList(text("2 \"0\" is no valid parameter for option -f")));
}

void TestArgfileReaderFiles::optionsOfAFileWithoutOne_data()
{
    QTest::addColumn<QString>("content");
    for (const char* content :
         {"-f thumbnail", "--file-flag no-embed", "-f nonsense", "-a comment x", "-a nonsense x",
          "--file-attr filetype x", "-u k v", "--file-user k v", "-u -i b", "-f -o"})
        QTest::newRow(content) << text(content);
}

void TestArgfileReaderFiles::optionsOfAFileWithoutOne()
{
    QFETCH(QString, content);
    // Passed over with its parameters, whatever these are.
    const ReadOptions read = readOptions(content + text(" -i a"));
    QCOMPARE(textOf(read.options), QStringList(text("input file: \"./\" \"a\"")));
    QCOMPARE(read.messages, QStringList());
}

void TestArgfileReaderFiles::optionsApplyToTheLatestFile()
{
    const ReadOptions read = readOptions(
        text("-i a -a comment 1 -o b -a comment 2 -s comment step -u k v -i a"
             " -u k w -f thumbnail -O out -a comment 3"));
    QCOMPARE(textOf(read.options),
             QStringList({text("comment: \"step\""), text("output document: \"out\""),
                          text("input file: \"./\" \"a\""), text("  comment: \"1\""),
                          text("output file: \"./\" \"b\""), text("  comment: \"2\""),
                          text("  user attribute: \"k\" = \"v\""), text("input file: \"./\" \"a\""),
                          text("  comment: \"3\""), text("  thumbnail: true"),
                          text("  user attribute: \"k\" = \"w\"")}));
    QCOMPARE(read.messages, QStringList());
}

void TestArgfileReaderFiles::pathsOfFiles_data()
{
    QTest::addColumn<QString>("parameter");
    QTest::addColumn<QString>("line");
    QTest::newRow("bare") << text("a") << text("\"./\" \"a\"");
    QTest::newRow("absolute") << text("/x/y/a") << text("\"/x/y/\" \"a\"");
    QTest::newRow("in the root") << text("/a") << text("\"/\" \"a\"");
    QTest::newRow("directory") << text("x/") << text("\"x/\" \"\"");
    QTest::newRow("empty") << text("''") << text("\"./\" \"\"");
    QTest::newRow("dollar sign") << text("'$x'/$a") << text("\"$$x/\" \"$a\"");
}

void TestArgfileReaderFiles::pathsOfFiles()
{
    QFETCH(QString, parameter);
    QFETCH(QString, line);
    QCOMPARE(textOf(readOptions(text("-i ") + parameter).options),
             QStringList(text("input file: ") + line));
    QCOMPARE(textOf(readOptions(text("--outfile ") + parameter).options),
             QStringList(text("output file: ") + line));
}

QTEST_GUILESS_MAIN(TestArgfileReaderFiles)

#include "tst_argfilereader_files.moc"
