#include "ArgFileText.h"

#include <tresk/ArgfileReader.h>

#include <QTest>

using tresktest::readOptions;
using tresktest::ReadOptions;
using tresktest::text;
using tresktest::textOf;

namespace {

void addColumns()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QStringList>("messages");
}

void addRow(const char* content, const QStringList& lines, const QStringList& messages)
{
    QTest::newRow(content) << text(content) << lines << messages;
}

QString unknown(const char* option)
{
    return text("2 unknown option found: ") + text(option);
}

QString lacking(const char* option)
{
    return text("2 not enough parameters for option: ") + text(option);
}

QString invalid(const char* option)
{
    return text("0 invalid option (") + text(option) + text(") found");
}

QString wrongKey(const char* value, const char* option)
{
    return text("2 first parameter (") + text(value) + text(") of option ") + text(option)
        + text(" is invalid");
}

QString wrongFlag(const char* value, const char* option)
{
    return text("2 \"") + text(value) + text("\" is no valid parameter for option ") + text(option);
}

const QString pretend = QStringLiteral("pretend: true");
const QString fileA = QStringLiteral("input file: \"./\" \"a\"");

/// Receives what a front end is told.
class Listener : public QObject {
    Q_OBJECT

public:
    QStringList texts;

public Q_SLOTS:
    void log(const QString& content) { texts.append(content); }
};

} // namespace

/// What is reported of an argument file that is not in order, and what of it holds nevertheless.
class TestArgfileReaderMessages : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void unknownOptions_data();
    void unknownOptions();
    void missingParameters_data();
    void missingParameters() { check(); }
    void unknownKeys_data();
    void unknownKeys() { check(); }
    void unknownFlags_data();
    void unknownFlags() { check(); }
    void syncCwd_data();
    void syncCwd() { check(); }
    void optionC_data();
    void optionC() { check(); }
    void longFormsBehindOptionC_data();
    void longFormsBehindOptionC() { check(); }
    void orderOfMessages();
    void placeholders_data();
    void placeholders() { check(); }
    void listenerGetsTheTexts();

private:
    void check();
};

void TestArgfileReaderMessages::check()
{
    QFETCH(QString, content);
    const ReadOptions read = readOptions(content);
    QTEST(read.messages, "messages");
    QTEST(textOf(read.options), "lines");
}

void TestArgfileReaderMessages::unknownOptions_data()
{
    QTest::addColumn<QString>("option");
    for (const char* option :
         {"--firstpage", "--readme", "--nonsense", "a.pdf",        "-",       "--",      "-x",
          "-P",          "-H",       "-Q",         "--Debug",      "--DEBUG", "debug",   "-debug",
          "--pretend=1", "-pv",      "-Oout",      "-O=out",       "---p",    "--step-", "--input",
          "--output",    "\u2013p",  "p",          "--sync-cwd=x", "-R",      "--1"})
        QTest::newRow(option) << text(option);
    QTest::newRow("empty") << QString();
    QTest::newRow("blank in front") << text(" -p");
    QTest::newRow("line feed behind") << text("-p\n");
}

void TestArgfileReaderMessages::unknownOptions()
{
    // It ends the reading: what is in front of it holds, also the rest of what it reports.
    QFETCH(QString, option);
    const QString message = text("2 unknown option found: ") + option;
    const ReadOptions alone = readOptions(text("'%1'").arg(option));
    QCOMPARE(alone.messages, QStringList(message));
    QCOMPARE(textOf(alone.options), QStringList());
    const ReadOptions between = readOptions(text("-s foo x -p '%1' b -v").arg(option));
    QCOMPARE(between.messages, QStringList({message, wrongKey("x", "-s")}));
    QCOMPARE(textOf(between.options), QStringList(pretend));
}

void TestArgfileReaderMessages::missingParameters_data()
{
    addColumns();
    for (const char* option : {"-c",
                               "-1",
                               "-r",
                               "-f",
                               "--file-flag",
                               "-A",
                               "--append-to-treskfile",
                               "-O",
                               "-J",
                               "-I",
                               "-o",
                               "--outfile",
                               "-i",
                               "--infile",
                               "-u",
                               "--file-user",
                               "-a",
                               "--file-attr",
                               "-U",
                               "--step-user",
                               "-s",
                               "--step",
                               "-d",
                               "--doc"})
        QTest::addRow("-p %s", option)
            << text("-p ") + text(option) << QStringList(pretend) << QStringList(lacking(option));
    for (const char* option : {"-u", "--file-user", "-a", "--file-attr", "-U", "--step-user", "-s",
                               "--step", "-d", "--doc"})
        QTest::addRow("%s title", option)
            << text(option) + text(" title") << QStringList() << QStringList(lacking(option));
    addRow("-O -p", {text("output document: \"-p\"")}, {});
    addRow("-i a -f -a comment", {fileA}, {unknown("comment"), wrongFlag("1", "-f")});
    addRow("-i a -a comment", {fileA}, {lacking("-a")});
}

void TestArgfileReaderMessages::unknownKeys_data()
{
    // The message names the value, not the key.
    addColumns();
    addRow("-s foo x -p", {pretend}, {wrongKey("x", "-s")});
    addRow("--step foo x", {}, {wrongKey("x", "--step")});
    addRow("-d foo x", {}, {wrongKey("x", "-d")});
    addRow("--doc foo 'x y'", {}, {wrongKey("x y", "--doc")});
    addRow("-i a -a foo x", {fileA}, {wrongKey("x", "-a")});
    addRow("-i a --file-attr foo ''", {fileA}, {wrongKey("", "--file-attr")});
    addRow("-s Title x -s '' y", {}, {wrongKey("x", "-s"), wrongKey("y", "-s")});
    addRow("-s title a -s foo x", {text("title: \"a\"")}, {wrongKey("x", "-s")});
    // Keys of the other options.
    addRow("-s producer x", {}, {wrongKey("x", "-s")});
    addRow("-s md5file x", {}, {wrongKey("x", "-s")});
    addRow("-s tool-path x", {}, {wrongKey("x", "-s")});
    addRow("-d tool x", {}, {wrongKey("x", "-d")});
    addRow("-d comment x", {}, {wrongKey("x", "-d")});
    addRow("-i a -a title x", {fileA}, {wrongKey("x", "-a")});
    addRow("-i a -a toolversion x", {fileA}, {wrongKey("x", "-a")});
    addRow("-i a -a embed x", {fileA}, {wrongKey("x", "-a")});
}

void TestArgfileReaderMessages::unknownFlags_data()
{
    // The message names the value of the flag, not its word.
    addColumns();
    const QString one = wrongFlag("1", "-f");
    const QString zero = wrongFlag("0", "-f");
    addRow("-i a -f foo -p", {pretend, fileA}, {one});
    addRow("-i a -f no-foo", {fileA}, {zero});
    addRow("-i a --file-flag no-foo", {fileA}, {wrongFlag("0", "--file-flag")});
    addRow("-i a -f ''", {fileA}, {one});
    addRow("-i a -f no-", {fileA}, {zero});
    addRow("-i a -f no", {fileA}, {one});
    addRow("-i a -f no-no-embed", {fileA}, {zero});
    addRow("-i a -f NO-embed", {fileA}, {one});
    addRow("-i a -f Compress", {fileA}, {one});
    addRow("-i a -f Thumbnail", {fileA}, {one});
    addRow("-i a -f noembed", {fileA}, {one});
    addRow("-i a -f ' no-embed'", {fileA}, {one});
    addRow("-i a -f thumbnails -f no-thumbnail-only", {fileA}, {one, zero});
    addRow("-i a -f thumbnail -f no-thumbnail", {fileA}, {});
}

void TestArgfileReaderMessages::syncCwd_data()
{
    addColumns();
    addRow("--sync-cwd", {}, {invalid("--sync-cwd")});
    addRow("--sync-cwd -p --sync-cwd", {pretend}, {invalid("--sync-cwd"), invalid("--sync-cwd")});
    addRow("-O --sync-cwd", {text("output document: \"--sync-cwd\"")}, {});
    addRow("--sync-cwd x", {}, {unknown("x"), invalid("--sync-cwd")});
}

void TestArgfileReaderMessages::optionC_data()
{
    // It is let pass with a parameter, and then its parameter is read as the next option.
    addColumns();
    const QString c = invalid("-c");
    addRow("-c", {}, {lacking("-c")});
    addRow("-c x", {}, {c, invalid("x")});
    addRow("-c x -p", {pretend}, {c, invalid("x")});
    addRow("-c ''", {}, {c, invalid("")});
    addRow("-c -p", {pretend}, {c});
    addRow("-c --stdin -v", {text("verbosity: 2")}, {c});
    addRow("-c --sync-cwd", {}, {c, invalid("--sync-cwd")});
    addRow("-c -c", {}, {c, c});
    addRow("-c -c -p", {pretend}, {c, c});
    addRow("-c -c -c x", {}, {c, c, c, invalid("x")});
    addRow("-O -c", {text("output document: \"-c\"")}, {});
    addRow("-c x y", {}, {unknown("y"), c, invalid("x")});
    // An option behind it takes its parameters from what was checked as further options.
    addRow("-c -O -p", {text("output document: \"-p\"")}, {c});
    addRow("-c -s -p -O a -v", {text("verbosity: 2")}, {c, wrongKey("-O", "-s"), invalid("a")});
    addRow("-c -U -p -v -h", {text("showHelp: true"), text("user attribute: \"-p\" = \"-v\"")},
           {c});
    addRow("-c -i -f embed -f thumbnail",
           {text("input file: \"./\" \"-f\""), text("  thumbnail: true")}, {c, invalid("embed")});
    addRow("-c -i -f embed -f", {text("input file: \"./\" \"-f\"")},
           {lacking("-f"), c, invalid("embed")});
    addRow("-c -f -p -v", {text("verbosity: 2")}, {c});
    addRow("-c -O -O a", {text("output document: \"-O\"")}, {c, invalid("a")});
    // None are left for it.
    for (const char* option : {"-1", "-r", "-f", "-A", "-O", "-J", "-I", "-o", "-i", "-u", "-a",
                               "-U", "-s", "-d", "--step", "--outfile"})
        QTest::addRow("-p -c %s", option) << text("-p -c ") + text(option) << QStringList(pretend)
                                          << QStringList({c, lacking(option)});
    addRow("-c -s -p", {}, {c, lacking("-s")});
    addRow("-i a -c -a -p", {fileA}, {c, lacking("-a")});
    addRow("-i a -c -f", {fileA}, {c, lacking("-f")});
    addRow("-c -s title x", {}, {unknown("title"), c, lacking("-s")});
    // Its parameter is none of an option's that is not known to the check.
    addRow("-c --nonsense -p", {pretend}, {c, invalid("--nonsense")});
}

void TestArgfileReaderMessages::longFormsBehindOptionC_data()
{
    // Only here is anything left of these two: the check does not see them as options.
    addColumns();
    const QString c = invalid("-c");
    addRow("-c --readme -p", {text("readme: \"-p\"")}, {c});
    addRow("-c --firstpage -p -v", {text("verbosity: 2"), text("firstpage: \"-p\"")}, {c});
    addRow("-c --readme -r a", {text("readme: \"-r\"")}, {c, invalid("a")});
    addRow("-c --readme", {}, {c, lacking("--readme")});
    addRow("-c --firstpage", {}, {c, lacking("--firstpage")});
}

void TestArgfileReaderMessages::orderOfMessages()
{
    // The check comes first; then the options speak in their order.
    const ReadOptions read = readOptions(
        text("-i a -f embed --sync-cwd -s x y -f no-preview -c z -d x y -O"));
    QCOMPARE(read.messages,
             QStringList({lacking("-O"), wrongFlag("1", "-f"), invalid("--sync-cwd"),
                          wrongKey("y", "-s"), wrongFlag("0", "-f"), invalid("-c"), invalid("z"),
                          wrongKey("y", "-d")}));
    QCOMPARE(textOf(read.options), QStringList(fileA));
}

void TestArgfileReaderMessages::placeholders_data()
{
    // A text that itself holds a placeholder comes out as it is.
    addColumns();
    addRow("%1", {}, {unknown("%1")});
    addRow("'%2%1%L1'", {}, {unknown("%2%1%L1")});
    addRow("-c %1", {}, {invalid("-c"), invalid("%1")});
    addRow("-s foo %1", {}, {wrongKey("%1", "-s")});
    addRow("-s foo %2", {}, {wrongKey("%2", "-s")});
    addRow("--doc %1 '%2 %1 %3'", {}, {wrongKey("%2 %1 %3", "--doc")});
    addRow("-i a -a %2 %2", {fileA}, {wrongKey("%2", "-a")});
    addRow("-i a -f %2 -f no-%1", {fileA}, {wrongFlag("1", "-f"), wrongFlag("0", "-f")});
    addRow("-O %1 -U %1 %2",
           {text("user attribute: \"%1\" = \"%2\""), text("output document: \"%1\"")}, {});
}

void TestArgfileReaderMessages::listenerGetsTheTexts()
{
    Listener listener;
    tresk::ArgfileReader reader;
    reader.readArgfile(text("before"), nullptr);
    reader.publishToLogSlot(&listener);
    reader.readArgfile(text("--sync-cwd after"), nullptr);
    QCOMPARE(listener.texts,
             QStringList(
                 {text("unknown option found: after"), text("invalid option (--sync-cwd) found")}));
}

QTEST_GUILESS_MAIN(TestArgfileReaderMessages)

#include "tst_argfilereader_messages.moc"
