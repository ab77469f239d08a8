#include "Command.h"
#include "Documents.h"

#include <TestFiles.h>

#include <QDir>
#include <QJsonArray>
#include <QtTest>

using namespace tresktest;

/// The names under which `tresk extract` writes files.
class TestCommandExtractNames : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void namesAreMadeSafe_data();
    void namesAreMadeSafe();
    void namesAreToldApart_data();
    void namesAreToldApart();
    void namesDoNotDependOnTheSelection();
    void changedNamesAreShown();

private:
    QStringList extract(const QStringList& names, const QStringList& selected = {});

    TestDir m_dir;
};

namespace {

QString repeated(const char* utf8, int count)
{
    return text(utf8).repeated(count);
}

} // namespace

void TestCommandExtractNames::initTestCase()
{
    useUtf8Paths();
}

/// Extracts the files of these @p names, or those @p selected among them, checks that just
/// these are in the directory, each with its own content, and returns what they are called.
QStringList TestCommandExtractNames::extract(const QStringList& names, const QStringList& selected)
{
    QVector<FileSpec> files;
    for (const QString& name : names)
        files += FileSpec::plain(name, QByteArray::number(files.size()));
    const QString document = m_dir.write(text("names.pdf"), documentWith(files));
    const QString target = m_dir.path(text("out"));
    QDir(target).removeRecursively();
    const Outcome outcome = runTresk(
        QStringList{text("extract"), text("--json"), text("-C"), target, document} + selected);
    if (outcome.exitCode != 0 || !outcome.errors.isEmpty())
        QTest::qFail(outcome.errors.constData(), __FILE__, __LINE__);

    QStringList result;
    for (const auto& value : jsonObject(outcome.output).value(text("files")).toArray()) {
        const QJsonObject file = value.toObject();
        const QString path = file.value(text("path")).toString();
        const QString name = path.mid(target.size() + 1);
        if (readFile(path) != QByteArray::number(file.value(text("id")).toInt()))
            QTest::qFail("another file's content", __FILE__, __LINE__);
        result += name;
    }
    const auto everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    QStringList sorted = result;
    sorted.sort();
    QStringList present = QDir(target).entryList(everything);
    present.sort();
    if (present != sorted)
        QTest::qFail("other files than told", __FILE__, __LINE__);
    return result;
}

void TestCommandExtractNames::namesAreMadeSafe_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("target");

    const auto row = [](const char* tag, const QString& name, const QString& target) {
        QTest::newRow(tag) << name << target;
    };
    const auto same = [&row](const char* tag, const QString& name) { row(tag, name, name); };
    const QString file0 = text("file-0");

    same("plain", text("plot.svg"));
    same("several dots", text("a.tar.gz"));
    same("hidden", text(".profile"));
    same("dots inside", text("a..b"));
    same("two dots in front", text("..a"));
    same("blank inside", text("a b.txt"));
    same("blank in front", text(" a"));
    same("dash in front", text("-rf"));
    same("tilde", text("~"));
    same("shell characters", text("$(x)`y`;&|*?<>'\"!.txt"));
    same("placeholders", text("%1%2%s%n"));
    same("closing bracket", text("a]b"));
    same("non-ASCII", text("Gr\u00f6\u00dfe \u8ef8\u53d7 \U0001f529.txt"));
    same("decomposed", text("a\u0308.txt"));
    same("joiners", text("\u0646\u200c\u0645\u200d.txt"));

    row("folder", text("a/b.txt"), text("b.txt"));
    row("root", text("/etc/passwd"), text("passwd"));
    row("upwards", text("../../a.txt"), text("a.txt"));
    row("upwards on Windows", text("..\\..\\a.txt"), text("a.txt"));
    row("drive", text("C:\\x\\a.txt"), text("a.txt"));
    row("both separators", text("x\\y/z\\a.txt"), text("a.txt"));
    row("share", text(R"(\\host\share\a.txt)"), text("a.txt"));
    row("escaped n behind a separator", text("dir\\n"), text("n"));
    row("folder only", text("a/"), file0);
    row("separators only", text("///"), file0);
    row("nothing", QString(), file0);
    row("dot", text("."), file0);
    row("two dots", text(".."), file0);
    row("three dots", text("..."), file0);
    row("upwards only", text("a/.."), file0);
    row("blanks", text("   "), file0);
    row("blanks and dots", text(" . . "), file0);
    row("dot at the end", text("a.txt."), text("a.txt"));
    row("blank at the end", text("a.txt "), text("a.txt"));
    row("blanks and dots at the end", text("a.txt . . "), text("a.txt"));
    row("wide blank at the end", text("a\u3000"), text("a"));

    row("line break", text("a\nb"), text("a_b"));
    row("other controls", text("a\tb\rc\x1b[31md\x7f.txt"), text("a_b_c_[31md_.txt"));
    row("C1 control", text("a\u009b\u0085.txt"), text("a__.txt"));
    row("bidi override", text("exe\u202etxt.a"), text("exe_txt.a"));
    row("bidi isolates and marks", text("a\u2066\u2069\u200e\u200f\u061c.a"), text("a_____.a"));
    row("line separators", text("a\u2028\u2029.a"), text("a__.a"));
    row("invisible", text("a\u200b\ufeff\u2060.a"), text("a___.a"));
    row("tag", text("a\U000e0041.a"), text("a_.a"));
    row("controls only", text("\n"), text("_"));

    for (const char* device :
         {"CON",        "con",  "PRN",  "AUX",       "NUL",    "Nul",     "COM1",
          "com9",       "LPT1", "COM0", "COM\u00b9", "CONIN$", "conout$", "NUL.txt",
          "nul.tar.gz", "con.", "aux ", "aux .txt",  "x/PRN",  "lpt3.a.b"})
        row(device, text(device), file0);
    for (const char* harmless :
         {"CONSOLE", "COM", "COM10", "COMA", "a.CON", "NULL.txt", "_CON", "LPT.1"})
        same(harmless, text(harmless));

    same("255 bytes", repeated("a", 251) + text(".txt"));
    row("256 bytes", repeated("a", 252) + text(".txt"), repeated("a", 251) + text(".txt"));
    row("very long", repeated("a", 5000) + text(".txt"), repeated("a", 251) + text(".txt"));
    row("long without extension", repeated("a", 300), repeated("a", 255));
    row("two bytes each", repeated("\u00e4", 128), repeated("\u00e4", 127));
    row("three bytes each", repeated("\u8ef8", 90) + text(".txt"),
        repeated("\u8ef8", 83) + text(".txt"));
    row("four bytes each", repeated("\U0001f529", 70), repeated("\U0001f529", 63));
    row("long extension", text("a.") + repeated("b", 300), text("a.") + repeated("b", 253));
    row("cut at a blank", repeated("a", 254) + text(" bcd"), repeated("a", 254));
}

void TestCommandExtractNames::namesAreMadeSafe()
{
    QFETCH(QString, name);
    QFETCH(QString, target);
    QCOMPARE(extract({name}), QStringList{target});
}

void TestCommandExtractNames::namesAreToldApart_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("targets");

    const auto row = [](const char* tag, const QStringList& names, const QStringList& targets) {
        QTest::newRow(tag) << names << targets;
    };
    const auto words = [](const char* list) { return text(list).split(QLatin1Char(' ')); };

    row("equal", words("a.txt b.txt a.txt a.txt"), words("a-0.txt b.txt a-2.txt a-3.txt"));
    row("without extension", words("a a .b .b c.- c.-"), words("a-0 a-1 .b-2 .b-3 c.--4 c.--5"));
    row("several extensions", words("a.tar.gz a.tar.gz"), words("a.tar-0.gz a.tar-1.gz"));
    row("by case", words("Read.me READ.ME stra\u00dfe STRASSE"),
        words("Read-0.me READ-1.ME stra\u00dfe-2 STRASSE-3"));
    row("by normalisation", words("\u00e4.a a\u0308.a \u00c4.A"),
        words("\u00e4-0.a a\u0308-1.a \u00c4-2.A"));
    row("by folder", words("x/a y/a z\\a a"), words("a-0 a-1 a-2 a-3"));
    row("by what is replaced", {text("a\tb"), text("a\nb"), text("a_b")},
        words("a_b-0 a_b-1 a_b-2"));
    row("by what is dropped", {text("a"), text("a."), text("a ")}, words("a-0 a-1 a-2"));
    row("reserved", words("CON NUL . .."), words("file-0 file-1 file-2 file-3"));
    row("like the name of a reserved one", words("CON file-0"), words("file-0-0 file-0-1"));
    row("like a name with an id", words("a a a-1"), words("a-0 a-1 a-1-2"));
    row("like one in another case", words("a.b a.b A-0.B"), words("a-0.b a-1.b A-0-2.B"));
    row("chain", words("a a a-0 a-0-2 a-0-0"), words("a-0 a-1 a-0-2 a-0-2-3 a-0-0"));
    row("by ligature", words("\ufb01 fi"), words("\ufb01-0 fi-1"));
    row("compatibility is no equality", words("\u2460 1"), words("\u2460 1"));
    const QString longName = repeated("a", 251) + text(".txt");
    const QString longTarget = repeated("a", 249);
    row("equal and long", {longName, longName, text("x") + longName, longName + text(" ")},
        {longTarget + text("-0.txt"), longTarget + text("-1.txt"),
         text("x") + repeated("a", 250) + text(".txt"), longTarget + text("-3.txt")});
    row("equal once they are cut", {repeated("b", 256), repeated("b", 257)},
        {repeated("b", 253) + text("-0"), repeated("b", 253) + text("-1")});
}

void TestCommandExtractNames::namesAreToldApart()
{
    QFETCH(QStringList, names);
    QFETCH(QStringList, targets);
    QCOMPARE(extract(names), targets);
}

void TestCommandExtractNames::namesDoNotDependOnTheSelection()
{
    const QStringList names = {text("a"),   text("b"),   text("a"),
                               text("CON"), text("a-2"), text("B")};
    const QStringList all = extract(names);
    QCOMPARE(all.size(), 6);
    for (int id = 0; id < names.size(); ++id)
        QCOMPARE(extract(names, {QString::number(id)}), QStringList{all[id]});
    QCOMPARE(extract(names, {text("5"), text("CON"), text("1"), text("5")}),
             QStringList({all[1], all[3], all[5]}));
}

void TestCommandExtractNames::changedNamesAreShown()
{
    const QString document = m_dir.write(
        text("shown.pdf"),
        documentWith({FileSpec::plain(text("a"), "x"), FileSpec::plain(text("../b\x1b"), "x"),
                      FileSpec::plain(text("c]"), "x"), FileSpec::plain(text("x\nd"), "x")}));
    const QString target = m_dir.path(text("shown\n"));
    const Outcome outcome = runTresk({text("extract"), document, text("-C"), target});
    const QString shown = m_dir.path(text("shown\\n"));
    QCOMPARE(QString::fromUtf8(outcome.output),
             QStringLiteral("0  %1/a\n"
                            "1  %1/b_  (in the document: \"../b\\x1b\")\n"
                            "2  %1/c]\n"
                            "3  %1/x_d  (in the document: \"x\\nd\")\n")
                 .arg(shown));
}

QTEST_GUILESS_MAIN(TestCommandExtractNames)
#include "tst_command_extract_names.moc"
