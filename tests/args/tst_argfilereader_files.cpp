#include "ArgFileFields.h"
#include "ArgFileText.h"

#include <QTest>

using tresk::WSFile;
using tresktest::fileFlagFields;
using tresktest::readOptions;
using tresktest::ReadOptions;
using tresktest::str;
using tresktest::textOf;

namespace {

QString flagMessage(int value, const QString& option = str("-f"))
{
    return str("2 \"%1\" is no valid parameter for option %2").arg(QString::number(value), option);
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
            QTest::addRow("%s %s", option, fileFlagFields[std::size_t(i)].name) << i << str(option);
    }
}

void TestArgfileReaderFiles::everyFlagWord()
{
    QFETCH(int, field);
    QFETCH(QString, option);
    const auto& flag = fileFlagFields[std::size_t(field)];
    const QString word = QLatin1String(flag.name);
    // All but "thumbnail" are set and nevertheless reported.
    const bool reported = word != str("thumbnail");
    for (const bool on : {true, false}) {
        WSFile before;
        before.setFilenameAndPath(str("a"));
        (before.*flag.set)(!on);
        const QString text = str("-i a ") + option + (on ? str(" no-") : str(" ")) + word;
        const ReadOptions opposite = readOptions(text);
        QCOMPARE(textOf(opposite.options), textOf(before));
        QCOMPARE(opposite.messages,
                 reported ? QStringList(flagMessage(on ? 0 : 1, option)) : QStringList());

        (before.*flag.set)(on);
        const ReadOptions read = readOptions(text + str(" ") + option
                                             + (on ? str(" ") : str(" no-")) + word);
        QCOMPARE(textOf(read.options), textOf(before));
        QCOMPARE(read.messages,
                 reported ? QStringList(
                     {flagMessage(on ? 0 : 1, option), flagMessage(on ? 1 : 0, option)})
                          : QStringList());
    }
}

void TestArgfileReaderFiles::fileWithFlagAndAttribute()
{
    const ReadOptions read = readOptions(str("-i a.pdf -f no-embed -a filetype pdf"));
    QCOMPARE(textOf(read.options),
             QStringList({str("input file: \"./\" \"a.pdf\""), str("  filetype: \"pdf\""),
                          str("  embed: false")}));
    QCOMPARE(read.messages, QStringList(str("2 \"0\" is no valid parameter for option -f")));
}

void TestArgfileReaderFiles::optionsOfAFileWithoutOne_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text :
         {"-f thumbnail", "--file-flag no-embed", "-f nonsense", "-a comment x", "-a nonsense x",
          "--file-attr filetype x", "-u k v", "--file-user k v", "-u -i b", "-f -o"})
        QTest::newRow(text) << str(text);
}

void TestArgfileReaderFiles::optionsOfAFileWithoutOne()
{
    QFETCH(QString, text);
    // Passed over with its parameters, whatever these are.
    const ReadOptions read = readOptions(text + str(" -i a"));
    QCOMPARE(textOf(read.options), QStringList(str("input file: \"./\" \"a\"")));
    QCOMPARE(read.messages, QStringList());
}

void TestArgfileReaderFiles::optionsApplyToTheLatestFile()
{
    const ReadOptions read = readOptions(
        str("-i a -a comment 1 -o b -a comment 2 -s comment step -u k v -i a"
            " -u k w -f thumbnail -O out -a comment 3"));
    QCOMPARE(textOf(read.options),
             QStringList({str("comment: \"step\""), str("output document: \"out\""),
                          str("input file: \"./\" \"a\""), str("  comment: \"1\""),
                          str("output file: \"./\" \"b\""), str("  comment: \"2\""),
                          str("  user attribute: \"k\" = \"v\""), str("input file: \"./\" \"a\""),
                          str("  comment: \"3\""), str("  thumbnail: true"),
                          str("  user attribute: \"k\" = \"w\"")}));
    QCOMPARE(read.messages, QStringList());
}

void TestArgfileReaderFiles::pathsOfFiles_data()
{
    QTest::addColumn<QString>("parameter");
    QTest::addColumn<QString>("line");
    QTest::newRow("bare") << str("a") << str("\"./\" \"a\"");
    QTest::newRow("absolute") << str("/x/y/a") << str("\"/x/y/\" \"a\"");
    QTest::newRow("in the root") << str("/a") << str("\"/\" \"a\"");
    QTest::newRow("directory") << str("x/") << str("\"x/\" \"\"");
    QTest::newRow("empty") << str("''") << str("\"./\" \"\"");
    QTest::newRow("dollar sign") << str("'$x'/$a") << str("\"$$x/\" \"$a\"");
}

void TestArgfileReaderFiles::pathsOfFiles()
{
    QFETCH(QString, parameter);
    QFETCH(QString, line);
    QCOMPARE(textOf(readOptions(str("-i ") + parameter).options),
             QStringList(str("input file: ") + line));
    QCOMPARE(textOf(readOptions(str("--outfile ") + parameter).options),
             QStringList(str("output file: ") + line));
}

QTEST_GUILESS_MAIN(TestArgfileReaderFiles)

#include "tst_argfilereader_files.moc"
