#include "Arguments.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

using namespace tresktest;

/// What `tresk args` shows of argument files.
class TestCommandArgs : public QObject, protected ArgsRuns {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void allIsShown();
    void allIsInTheJson();
    void nothingIsShownAsNothing();
    void filesHaveTheirDefaults();
    void switchesAreNamed_data();
    void switchesAreNamed();
    void attributesKeepTheirOrder();
    void variablesAreReplaced_data();
    void variablesAreReplaced();
    void valuesMustBeUtf8();
    void jsonIsLaidOutAsEver_data();
    void jsonIsLaidOutAsEver();
    void tokensAreListed();
    void manyTokensAreAligned();
    void tokensCoverTheText();
};

namespace {

const char* const everything = "-O a.pdf -O 'b c.pdf' -J root.pdf -1 cover.pdf -r notes.txt\n"
                               "-v -p --debug -h -V # all switches\n"
                               "-s title T -s description D -s comment C -s command 'x y'\n"
                               "-s tool tool -s toolpath /bin/tool -s user U -s host H -U k v\n"
                               "-d title PT -d author PA -d subject PS -d keywords PK\n"
                               "-d producer PP -d creator PC\n"
                               "-i in/f.csv -a filetype text/csv -a description FD\n"
                               "-a comment FC -a md5file f.md5 -u n 'v w'\n"
                               "-o /out/g.png -f thumbnail\n";

const char* const everythingAsLine =
    "--verbose --pretend --debug --help --version --firstpage cover.pdf --readme notes.txt "
    "-O a.pdf -O \"b c.pdf\" -J root.pdf -s title T -s description D -s comment C -s tool tool "
    "-s toolpath /bin/tool -s host H -s user U -s command \"x y\" -d title PT -d producer PP "
    "-d creator PC -d author PA -d keywords PK -d subject PS -U k v -i in/f.csv "
    "-a filetype text/csv -a description FD -a comment FC -a md5file f.md5 -f no-optional "
    "-f no-compress -f embed -f automd5 -f no-previewws -f no-preview -f no-thumbnail "
    "-f no-thumbnailonly -u n \"v w\" -o /out/g.png -f no-optional -f no-compress -f embed "
    "-f automd5 -f no-previewws -f no-preview -f thumbnail -f no-thumbnailonly";

} // namespace

void TestCommandArgs::initTestCase()
{
    useUtf8Paths();
}

void TestCommandArgs::allIsShown()
{
    const Outcome outcome = args(everything);
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    const QByteArray expected = "run\n"
                                "  output:       a.pdf\n"
                                "  output:       b c.pdf\n"
                                "  root file:    root.pdf (may be missing)\n"
                                "  first page:   cover.pdf\n"
                                "  read-me:      notes.txt\n"
                                "  switches:     verbose, pretend, debug, help, version\n"
                                "step\n"
                                "  title:        T\n"
                                "  description:  D\n"
                                "  comment:      C\n"
                                "  command:      x y\n"
                                "  tool:         tool\n"
                                "  tool path:    /bin/tool\n"
                                "  user:         U\n"
                                "  host:         H\n"
                                "  attributes:\n"
                                "    k = v\n"
                                "PDF\n"
                                "  title:        PT\n"
                                "  author:       PA\n"
                                "  subject:      PS\n"
                                "  keywords:     PK\n"
                                "  producer:     PP\n"
                                "  creator:      PC\n"
                                "in  in/f.csv\n"
                                "  type:         text/csv\n"
                                "  description:  FD\n"
                                "  comment:      FC\n"
                                "  md5 file:     f.md5\n"
                                "  attributes:\n"
                                "    n = v w\n"
                                "out /out/g.png\n"
                                "  flags:        thumbnail\n"
                                "command line\n"
                                "  ";
    QCOMPARE(QString::fromUtf8(outcome.output),
             QString::fromUtf8(expected + everythingAsLine + "\n"));
}

void TestCommandArgs::allIsInTheJson()
{
    QJsonObject object = json(everything);
    QCOMPARE(object.take(text("file")), QJsonValue(text("some.args")));
    QCOMPARE(object.take(text("messages")), QJsonValue(QJsonArray()));
    QCOMPARE(object.take(text("commandLine")).toString(), text(everythingAsLine));
    QCOMPARE(object.take(text("outputs")),
             QJsonValue(QJsonArray({text("a.pdf"), text("b c.pdf")})));
    for (const char* flag : {"rootIsOptional", "pretend", "debug", "help", "version"})
        QCOMPARE(object.take(text(flag)), QJsonValue(true));

    QJsonObject step = strings("title description comment command tool toolPath user host",
                               "T|D|C|x y|tool|/bin/tool|U|H");
    step.insert(text("attributes"), QJsonArray({strings("name value", "k|v")}));
    QCOMPARE(object.take(text("step")).toObject(), step);
    QCOMPARE(object.take(text("pdf")).toObject(),
             strings("title author subject keywords producer creator", "PT|PA|PS|PK|PP|PC"));

    const QJsonArray files = object.take(text("files")).toArray();
    QCOMPARE(static_cast<int>(files.size()), 2);
    QJsonObject first = strings("purpose path type description comment md5File",
                                "in|in/f.csv|text/csv|FD|FC|f.md5");
    first.insert(text("attributes"), QJsonArray({strings("name value", "n|v w")}));
    for (const char* flag :
         {"optional", "compress", "preview", "previewWs", "thumbnail", "thumbnailOnly"})
        first.insert(text(flag), false);
    first.insert(text("embed"), true);
    first.insert(text("autoMd5"), true);
    QCOMPARE(files[0].toObject(), first);
    const QJsonObject second = files[1].toObject();
    QCOMPARE(second.value(text("purpose")).toString(), text("out"));
    QCOMPARE(second.value(text("path")).toString(), text("/out/g.png"));
    QCOMPARE(second.value(text("type")), QJsonValue(QJsonValue::Null));
    QCOMPARE(second.value(text("thumbnail")), QJsonValue(true));

    QCOMPARE(object,
             strings("rootFile firstPage readMe verbosity schema",
                     "root.pdf|cover.pdf|notes.txt|verbose|tresk-args/1"));
}

void TestCommandArgs::nothingIsShownAsNothing()
{
    for (const char* content : {"", " \n", "# only a comment"}) {
        const Outcome outcome = args(content);
        QCOMPARE(outcome.output, QByteArray("command line\n  -\n"));
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.exitCode, 0);
        const QJsonObject object = json(content);
        QCOMPARE(object.value(text("rootFile")), QJsonValue(QJsonValue::Null));
        QCOMPARE(object.value(text("commandLine")).toString(), QString());
        QCOMPARE(object.value(text("verbosity")).toString(), text("normal"));
        QCOMPARE(object.value(text("rootIsOptional")), QJsonValue(false));
        QVERIFY(object.value(text("files")).toArray().isEmpty());
    }
}

void TestCommandArgs::filesHaveTheirDefaults()
{
    // A line of files alone begins with a blank, which is left out for people.
    const Outcome outcome = args("-o a");
    QVERIFY(outcome.output.startsWith("out ./a\ncommand line\n  -o ./a -f no-optional "));
    QVERIFY(json("-o a").value(text("commandLine")).toString().startsWith(text(" -o ./a ")));
}

void TestCommandArgs::switchesAreNamed_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("shown");
    QTest::newRow("none") << QByteArray("-s title x") << QByteArray();
    QTest::newRow("quiet") << QByteArray("-v -q") << QByteArray("quiet");
    QTest::newRow("verbose") << QByteArray("-q --verbose") << QByteArray("verbose");
    QTest::newRow("pretend") << QByteArray("--pretend") << QByteArray("pretend");
    QTest::newRow("debug") << QByteArray("--debug") << QByteArray("debug");
    QTest::newRow("help") << QByteArray("--help") << QByteArray("help");
    QTest::newRow("version") << QByteArray("-V") << QByteArray("version");
}

void TestCommandArgs::switchesAreNamed()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, shown);
    const QByteArray output = args(content).output;
    QCOMPARE(output.contains("switches:"), !shown.isEmpty());
    QVERIFY(shown.isEmpty() || output.startsWith("run\n  switches:     " + shown + "\n"));
}

void TestCommandArgs::attributesKeepTheirOrder()
{
    const QByteArray content = "-U z 1 -U a 2 -U z 3 -U '' 4";
    const QByteArray expected = "step\n  attributes:\n    z = 3\n    a = 2\n    <no name> = 4\n";
    QVERIFY(args(content).output.startsWith(expected));
    const QJsonObject step = json(content).value(text("step")).toObject();
    QCOMPARE(step.value(text("attributes")).toArray(),
             QJsonArray({strings("name value", "z|3"), strings("name value", "a|2"),
                         strings("name value", "|4")}));
}

void TestCommandArgs::variablesAreReplaced_data()
{
    QTest::addColumn<QByteArray>("title");
    QTest::addColumn<QStringList>("definitions");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char* name, const char* title, const QStringList& definitions,
                        const char* expected) {
        QTest::newRow(name) << QByteArray(title) << definitions << text(expected);
    };
    const QStringList x = {text("-D"), text("X=1 2")};
    row("value", "$X", x, "1 2");
    row("braces", "${X}y", x, "1 2y");
    row("double quotes", "\"$X\"", x, "1 2");
    row("single quotes", "'$X'", x, "$$X");
    row("backslash", "\\$X", x, "$$X");
    row("hidden by the text in front", "abc$X", x, "abc$X");
    row("not hidden by it", "ab$X", x, "ab1 2");
    const QStringList xAndY = {text("-DX=1"), text("-DY=2")};
    row("behind a hidden one", "a$X-$Y", xAndY, "a$X-2");
    row("hidden by a hidden one", "abc$X$Y", xAndY, "abc$X$Y");
    row("backslashes in front count", "ab\\\\$X", x, "ab\\1 2");
    row("unknown", "\"$Y\"z", x, "z");
    row("no definition", "${X}y", {}, "${X}y");
    row("attached", "$X", {text("-DX=1")}, "1");
    row("long option", "$X", {text("--define=X=1")}, "1");
    row("equals sign in the value", "$X", {text("-D"), text("X=a=b")}, "a=b");
    row("empty value", "$X'y'", {text("-D"), text("X=")}, "y");
    row("the last one counts", "$X", {text("-DX=1"), text("-DX=2")}, "2");
    row("several", "$X\"\"$Y", {text("-DX=1"), text("-D"), text("Y=2")}, "12");
    row("quotes in the value", "$X", {text("-DX='\"#\\")}, "'\"#\\");
    row("dollar sign in the value", "$X", {text("-DX=5$")}, "5$$");
    row("not ASCII", "$X", {text("-DX=\xC3\xA4")}, "\xC3\xA4");
    row("digits", "$0a", {text("-D0a=1")}, "1");
}

void TestCommandArgs::variablesAreReplaced()
{
    QFETCH(QByteArray, title);
    QFETCH(QStringList, definitions);
    QFETCH(QString, expected);
    QCOMPARE(titleOf(json("-s title " + title, definitions)), expected);
}

void TestCommandArgs::valuesMustBeUtf8()
{
    m_dir.write(text("some.args"), "-s title $X");
    const Outcome outcome = Command({text("args"), text("some.args")})
                                .inDirectory(m_dir.path(QString()))
                                .inShell(text("exec \"$@\" -D \"X=$(printf 'a\\377')\""))
                                .run();
    QCOMPARE(outcome.errors,
             QByteArray("tresk: args: the value of X is not UTF-8; see 'tresk args --help'\n"));
    QCOMPARE(outcome.exitCode, 2);
}

void TestCommandArgs::jsonIsLaidOutAsEver_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("files");
    QTest::addColumn<int>("tokens");
    QTest::newRow("nothing") << QByteArray() << 0 << 0;
    QTest::newRow("one token") << QByteArray("-p") << 0 << 1;
    QTest::newRow("one file") << QByteArray("-i f") << 1 << 3;
    // Texts that look like what is looked for.
    QTest::newRow("several files")
        << QByteArray("-i 'f\n    \"files\": [' -u files '\\n    \"tokens\": [' -o g -i h") << 3
        << 17;
}

void TestCommandArgs::jsonIsLaidOutAsEver()
{
    QFETCH(QByteArray, content);
    QFETCH(int, files);
    QFETCH(int, tokens);
    const auto check = [&](const QStringList& options, const char* name, int count) {
        const QByteArray output = args(content, options).output;
        const QJsonDocument document = QJsonDocument::fromJson(output);
        QCOMPARE(output, document.toJson());
        QCOMPARE(static_cast<int>(document.object().value(text(name)).toArray().size()), count);
    };
    check({text("--json")}, "files", files);
    check({text("--json"), text("--highlight")}, "tokens", tokens);
}

void TestCommandArgs::tokensAreListed()
{
    const QByteArray content = "a 'b c'\"d\\\"\"\\$#x\n\t$X";
    const Outcome outcome = args(content, {text("--highlight")});
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.exitCode, 0);
    const char* const expected = "POSITION  LENGTH  KIND     TEXT\n"
                                 "       0       1  word     \"a\"\n"
                                 "       1       1  space    \" \"\n"
                                 "       2       5  string   \"'b c'\" = \"b c\"\n"
                                 "       7       5  string   \"\"d\\\"\"\" = \"d\"\"\n"
                                 "      12       2  word     \"\\$\" = \"$$\"\n"
                                 "      14       3  comment  \"#x\\n\"\n"
                                 "      17       1  space    \"\\t\"\n"
                                 "      18       2  word     \"$X\"\n";
    QCOMPARE(QString::fromUtf8(outcome.output), text(expected));
    // Options that do not exist are no matter of tokens.
    QCOMPARE(args("", {text("--highlight")}).output, QByteArray());
}

void TestCommandArgs::manyTokensAreAligned()
{
    const QByteArray content = QByteArray("a ").repeated(5999) + QByteArray(500, 'b') + "#c";
    const QList<QByteArray> lines = args(content, {text("--highlight")}).output.split('\n');
    QCOMPARE(static_cast<int>(lines.size()), 12002);
    QCOMPARE(lines.first(), QByteArray("POSITION  LENGTH  KIND     TEXT"));
    for (int i = 0; i < 11998; ++i) {
        const QByteArray kind = i % 2 == 0 ? "word     \"a\"" : "space    \" \"";
        QCOMPARE(lines[i + 1], QByteArray::number(i).rightJustified(8) + "       1  " + kind);
    }
    QVERIFY(lines[11999].startsWith("   11998 "));
    QVERIFY(lines[12000].endsWith("       2  comment  \"#c\""));
}

void TestCommandArgs::tokensCoverTheText()
{
    const QByteArray content = "-s 'a \xF0\x9D\x84\x9E' # \xC3\xA4\r\n \"x\" y\\ z";
    const QJsonObject object = json(content, {text("--highlight")});
    QCOMPARE(object.value(text("file")).toString(), text("some.args"));
    QString covered;
    QStringList kinds;
    QStringList values;
    for (const auto& value : object.value(text("tokens")).toArray()) {
        const QJsonObject token = value.toObject();
        QCOMPARE(token.value(text("position")).toInt(), static_cast<int>(covered.size()));
        const QString written = token.value(text("text")).toString();
        QCOMPARE(token.value(text("length")).toInt(), static_cast<int>(written.size()));
        covered += written;
        kinds += token.value(text("kind")).toString();
        values += token.value(text("value")).toString();
    }
    QCOMPARE(covered, QString::fromUtf8(content));
    QCOMPARE(kinds.join(QLatin1Char(' ')),
             text("word space string space comment space string space word"));
    QCOMPARE(values,
             QStringList({text("-s"), text(""), text("a \xF0\x9D\x84\x9E"), text(""), text(""),
                          text(""), text("x"), text(""), text("y z")}));
}

QTEST_GUILESS_MAIN(TestCommandArgs)
#include "tst_command_args.moc"
