#include "DebugLines.h"
#include "Latin1.h"
#include "StepXml.h"
#include "SummaryText.h"

#include <tresk/SummaryReader.h>

#include <QTest>

using tresk::FileSummary;
using tresk::Summary;
using tresktest::element;
using tresktest::latin1;
using tresktest::latin1List;
using tresktest::MessageCapture;
using tresktest::readStep;
using tresktest::textOf;

namespace {

/// The lines that show the attributes of a step.
QStringList attributesIn(const QString& step)
{
    return textOf(readStep(step)).filter(QStringLiteral("userAttribute"));
}

/// The lines that show the attributes of a file.
QStringList attributesOfFile(const QString& content)
{
    const Summary summary = readStep(element("OutFile", content));
    QStringList lines;
    for (const FileSummary& file : summary.files)
        lines += textOf(file).filter(QStringLiteral("userAttribute"));
    return lines.replaceInStrings(QStringLiteral("  "), QString());
}

} // namespace

/// Attributes that users gave to steps and files, and what is said of elements that nobody
/// knows.
class TestUserAttributes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void attributes_data();
    void attributes();
    void laterListReplaces();
    void stepAndFileAreApart();
    void namesOfTheFirstReading();
    void unitsHaveValues();
    void unknownElements_data();
    void unknownElements();
    void debugLinesInOrder();
    void debugLinesAreQuoted();
    void knownNamesOutOfPlace_data();
    void knownNamesOutOfPlace();
};

void TestUserAttributes::attributes_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QStringList>("expected");
    const auto add = [](const char* name, const char* content, const QStringList& expected) {
        QTest::newRow(name) << latin1(content) << expected;
    };
    add("none", "", {});
    add("one", "<Attribute><Key>k</Key><Value>v</Value></Attribute>",
        latin1List({"userAttributes: \"k\" -> \"v\"", "userAttributeNames: \"k\""}));
    add("with unit", "<Attribute><Key>k</Key><Value>v</Value><Unit>mm</Unit></Attribute>",
        latin1List({"userAttributes: \"k\" -> \"v\"", "userAttributeUnits: \"k\" -> \"mm\"",
                    "userAttributeNames: \"k\""}));
    add("any order", "<Attribute><Unit>mm</Unit><Value>v</Value><Key>k</Key></Attribute>",
        latin1List({"userAttributes: \"k\" -> \"v\"", "userAttributeUnits: \"k\" -> \"mm\"",
                    "userAttributeNames: \"k\""}));
    add("empty unit", "<Attribute><Key>k</Key><Value>v</Value><Unit/></Attribute>",
        latin1List({"userAttributes: \"k\" -> \"v\"", "userAttributeUnits: \"k\" -> \"\"",
                    "userAttributeNames: \"k\""}));
    add("empty value", "<Attribute><Key>k</Key><Value/></Attribute>",
        latin1List({"userAttributes: \"k\" -> \"\"", "userAttributeNames: \"k\""}));
    add("no value", "<Attribute><Key>k</Key></Attribute>",
        latin1List({"userAttributes: \"k\" -> (null)", "userAttributeNames: \"k\""}));
    add("no key", "<Attribute><Value>v</Value><Unit>u</Unit></Attribute>",
        latin1List({"userAttributes: (null) -> \"v\"", "userAttributeUnits: (null) -> \"u\"",
                    "userAttributeNames: (null)"}));
    add("empty key", "<Attribute><Key/><Value>v</Value></Attribute>",
        latin1List({"userAttributes: \"\" -> \"v\"", "userAttributeNames: \"\""}));
    add("no content", "<Attribute/><Attribute></Attribute>",
        latin1List({"userAttributes: (null) -> (null)", "userAttributeNames: (null)",
                    "userAttributeNames: (null)"}));
    add("not trimmed", "<Attribute><Key> k </Key><Value> &amp; </Value></Attribute>",
        latin1List({"userAttributes: \" k \" -> \" &amp; \"", "userAttributeNames: \" k \""}));
    add("several of a kind",
        "<Attribute><Key>x</Key><Key>k</Key><Value>1</Value><Unit>m</Unit><Value>2</Value>"
        "<Unit>mm</Unit></Attribute>",
        latin1List({"userAttributes: \"k\" -> \"2\"", "userAttributeUnits: \"k\" -> \"mm\"",
                    "userAttributeNames: \"k\""}));
    add("names in reading order",
        "<Attribute><Key>b</Key></Attribute><Attribute><Key>c</Key></Attribute>"
        "<Attribute><Key>a</Key></Attribute>",
        latin1List({"userAttributes: \"a\" -> (null)", "userAttributes: \"b\" -> (null)",
                    "userAttributes: \"c\" -> (null)", "userAttributeNames: \"b\"",
                    "userAttributeNames: \"c\"", "userAttributeNames: \"a\""}));
    add("repeated key",
        "<Attribute><Key>k</Key><Value>1</Value></Attribute>"
        "<Attribute><Key>l</Key><Value>2</Value></Attribute>"
        "<Attribute><Key>k</Key><Value>3</Value></Attribute>",
        latin1List({"userAttributes: \"k\" -> \"3\"", "userAttributes: \"l\" -> \"2\"",
                    "userAttributeNames: \"k\"", "userAttributeNames: \"l\"",
                    "userAttributeNames: \"k\""}));
    add("unit outlives its value",
        "<Attribute><Key>k</Key><Value>1</Value><Unit>mm</Unit></Attribute>"
        "<Attribute><Key>k</Key><Value>2</Value></Attribute>",
        latin1List({"userAttributes: \"k\" -> \"2\"", "userAttributeUnits: \"k\" -> \"mm\"",
                    "userAttributeNames: \"k\"", "userAttributeNames: \"k\""}));
    add("repeated unit",
        "<Attribute><Key>k</Key><Unit>mm</Unit></Attribute>"
        "<Attribute><Key>k</Key><Unit>cm</Unit></Attribute>",
        latin1List({"userAttributes: \"k\" -> (null)", "userAttributeUnits: \"k\" -> \"cm\"",
                    "userAttributeNames: \"k\"", "userAttributeNames: \"k\""}));
    add("fault in the list",
        "<Attribute><Key>a</Key></Attribute></x><Attribute><Key>b</Key></Attribute>",
        latin1List({"userAttributes: \"a\" -> (null)", "userAttributeNames: \"a\""}));
    add("fault in an attribute",
        "<Attribute><Key>a</Key></x><Value>1</Value></Attribute>"
        "<Attribute><Key>b</Key></Attribute>",
        latin1List({"userAttributes: \"a\" -> (null)", "userAttributes: \"b\" -> (null)",
                    "userAttributeNames: \"a\"", "userAttributeNames: \"b\""}));
}

void TestUserAttributes::attributes()
{
    QFETCH(QString, content);
    QFETCH(QStringList, expected);
    const MessageCapture capture;
    QCOMPARE(attributesIn(element("UserAttributes", content)), expected);
    QCOMPARE(attributesOfFile(element("UserAttributes", content)), expected);
    QCOMPARE(tresktest::debugLines(capture), QStringList());
}

void TestUserAttributes::laterListReplaces()
{
    const QString first = latin1("<UserAttributes><Attribute><Key>a</Key><Value>1</Value>"
                                 "<Unit>m</Unit></Attribute></UserAttributes>");
    const QString second = latin1("<UserAttributes><Attribute><Key>b</Key><Value>2</Value>"
                                  "</Attribute></UserAttributes>");
    const QStringList expected = latin1List(
        {"userAttributes: \"b\" -> \"2\"", "userAttributeNames: \"b\""});
    QCOMPARE(attributesIn(first + second), expected);
    QCOMPARE(attributesOfFile(first + second), expected);
    QCOMPARE(attributesIn(first + latin1("<UserAttributes/>")), QStringList());
    QCOMPARE(attributesOfFile(first + latin1("<UserAttributes/>")), QStringList());
}

void TestUserAttributes::stepAndFileAreApart()
{
    const Summary summary = readStep(
        latin1("<UserAttributes><Attribute><Key>s</Key></Attribute></UserAttributes>"
               "<InFile><UserAttributes><Attribute><Key>f</Key></Attribute></UserAttributes>"
               "</InFile><InFile/>"));
    QCOMPARE(summary.userAttributeNames, latin1List({"s"}));
    QCOMPARE(summary.files.at(0).userAttributeNames, latin1List({"f"}));
    QVERIFY(summary.files.at(1).userAttributeNames.isEmpty());
}

void TestUserAttributes::namesOfTheFirstReading()
{
    // No name and an empty one are the same key; the list tells them apart.
    const Summary summary = readStep(
        latin1("<UserAttributes><Attribute><Value>1</Value></Attribute>"
               "<Attribute><Key/><Value>2</Value></Attribute></UserAttributes>"));
    QCOMPARE(summary.userAttributes.size(), 1);
    QCOMPARE(summary.userAttributes.value(QString()), latin1("2"));
    QCOMPARE(summary.userAttributeNames.size(), 2);
    QVERIFY(summary.userAttributeNames.at(0).isNull());
    QVERIFY(!summary.userAttributeNames.at(1).isNull());
}

void TestUserAttributes::unitsHaveValues()
{
    const Summary summary = readStep(
        latin1("<UserAttributes><Attribute><Unit>u</Unit></Attribute>"
               "<Attribute><Unit>v</Unit><Key>k</Key></x></Attribute></UserAttributes>"));
    QCOMPARE(summary.userAttributeUnits.size(), 2);
    for (auto unit = summary.userAttributeUnits.begin(); unit != summary.userAttributeUnits.end();
         ++unit) {
        QVERIFY(summary.userAttributes.contains(unit.key()));
        QVERIFY(summary.userAttributeNames.contains(unit.key()));
    }
}

void TestUserAttributes::unknownElements_data()
{
    QTest::addColumn<QString>("step");
    QTest::addColumn<QString>("line");
    const auto add = [](const char* name, const char* step, const char* line) {
        QTest::newRow(name) << latin1(step) << latin1(line);
    };
    add("step", "<Foo> x </Foo>", "unknown tag (parseWorkflowstep): \"Foo\" : \" x \"");
    add("step, no content", "<Foo/>", "unknown tag (parseWorkflowstep): \"Foo\" : \"\"");
    add("file", "<InFile><Foo>x</Foo></InFile>", "unknown tag (ParseFile): \"Foo\" : \"x\"");
    add("other file", "<OutFile><Foo/></OutFile>", "unknown tag (ParseFile): \"Foo\" : \"\"");
    add("list", "<UserAttributes><Foo>x</Foo></UserAttributes>",
        "unknown tag (parseUserAttributes): \"Foo\" : \"x\"");
    add("attribute", "<UserAttributes><Attribute><Foo>x</Foo></Attribute></UserAttributes>",
        "unknown tag (parseAttribute): \"Foo\" : \"x\"");
    add("list of a file", "<InFile><UserAttributes><Foo>x</Foo></UserAttributes></InFile>",
        "unknown tag (parseUserAttributes): \"Foo\" : \"x\"");
}

void TestUserAttributes::unknownElements()
{
    QFETCH(QString, step);
    QFETCH(QString, line);
    const MessageCapture capture;
    readStep(step);
    QCOMPARE(tresktest::debugLines(capture), QStringList{line});
    QCOMPARE(capture.count(QtDebugMsg, "tresk"), 1);
}

void TestUserAttributes::debugLinesInOrder()
{
    const MessageCapture capture;
    const Summary summary = readStep(
        latin1("<A/><UserAttributes><B/><Attribute><C/></Attribute></UserAttributes>"
               "<InFile><D/></InFile><Title>x</Title><E/>"));
    const QStringList expected = latin1List({
        "unknown tag (parseWorkflowstep): \"A\" : \"\"",
        "unknown tag (parseUserAttributes): \"B\" : \"\"",
        "unknown tag (parseAttribute): \"C\" : \"\"",
        "unknown tag (ParseFile): \"D\" : \"\"",
        "unknown tag (parseWorkflowstep): \"E\" : \"\"",
    });
    QCOMPARE(tresktest::debugLines(capture), expected);
    QCOMPARE(summary.title, latin1("x"));
    QCOMPARE(summary.files.size(), 1);
    QCOMPARE(summary.userAttributes.size(), 1);
}

void TestUserAttributes::debugLinesAreQuoted()
{
    const MessageCapture capture;
    readStep(QStringLiteral("<a \"b\">\\\n\u00e4%1</a \"b\">"));
    QCOMPARE(tresktest::debugLines(capture),
             QStringList{QStringLiteral("unknown tag (parseWorkflowstep): \"a \\\"b\\\"\" : "
                                        "\"\\\\\\n\u00e4%1\"")});
}

void TestUserAttributes::knownNamesOutOfPlace_data()
{
    QTest::addColumn<QString>("step");
    QTest::addColumn<QString>("line");
    const auto add = [](const char* step, const char* line) {
        QTest::newRow(step) << latin1(step) << latin1(line);
    };
    add("<Filename/>", "unknown tag (parseWorkflowstep): \"Filename\" : \"\"");
    add("<Attribute/>", "unknown tag (parseWorkflowstep): \"Attribute\" : \"\"");
    add("<title/>", "unknown tag (parseWorkflowstep): \"title\" : \"\"");
    add("<Title a='b'/>", "unknown tag (parseWorkflowstep): \"Title a='b'\" : \"\"");
    add("<InFile><Title/></InFile>", "unknown tag (ParseFile): \"Title\" : \"\"");
    add("<InFile><OutFile/></InFile>", "unknown tag (ParseFile): \"OutFile\" : \"\"");
    add("<InFile><Attribute/></InFile>", "unknown tag (ParseFile): \"Attribute\" : \"\"");
    add("<UserAttributes><Key/></UserAttributes>",
        "unknown tag (parseUserAttributes): \"Key\" : \"\"");
    add("<UserAttributes><attribute/></UserAttributes>",
        "unknown tag (parseUserAttributes): \"attribute\" : \"\"");
    add("<UserAttributes><Attribute><Attribute/></Attribute></UserAttributes>",
        "unknown tag (parseAttribute): \"Attribute\" : \"\"");
    add("<UserAttributes><Attribute><unit/></Attribute></UserAttributes>",
        "unknown tag (parseAttribute): \"unit\" : \"\"");
}

void TestUserAttributes::knownNamesOutOfPlace()
{
    QFETCH(QString, step);
    QFETCH(QString, line);
    const MessageCapture capture;
    readStep(step);
    QCOMPARE(tresktest::debugLines(capture), QStringList{line});
}

QTEST_GUILESS_MAIN(TestUserAttributes)

#include "tst_userattributes.moc"
