#include "DebugLines.h"
#include "Latin1.h"

#include <tresk/SummaryReader.h>

#include <QTest>

using tresk::Summary;
using tresk::SummaryReader;
using tresktest::latin1;
using tresktest::latin1List;
using tresktest::MessageCapture;

namespace {

/// The elements that a reader finds side by side in @p text, as "name|content". None may have
/// a name that a step knows.
QStringList elementsOf(const QString& text)
{
    const MessageCapture capture;
    SummaryReader().readSummary(QStringLiteral("<trxchange><Workflowstep>") + text
                                + QStringLiteral("</Workflowstep></trxchange>"));
    QStringList elements;
    const QStringList lines = tresktest::debugLines(capture);
    for (QString line : lines) {
        const QString start = QStringLiteral("unknown tag (parseWorkflowstep): \"");
        if (!line.startsWith(start) || !line.endsWith(QLatin1Char('"')))
            return {QStringLiteral("unexpected line: ") + line};
        line = line.mid(start.size());
        line.chop(1);
        elements += line.replace(QLatin1String("\" : \""), QLatin1String("|"));
    }
    return elements;
}

/// The title of a step in which @p text is all there is.
QString titleIn(const QString& text)
{
    const MessageCapture quiet;
    return SummaryReader()
        .readSummary(QStringLiteral("<trxchange><Workflowstep>") + text
                     + QStringLiteral("</Workflowstep></trxchange>"))
        .title;
}

} // namespace

/// What counts as an element and where it ends, seen by what a reader makes of it.
class TestElementScanner : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void elements_data();
    void elements();
    void everyLevelIsScannedAlike_data();
    void everyLevelIsScannedAlike();
    void emptyIsNotNull_data();
    void emptyIsNotNull();
    void endlessNesting();
    void nulCharacters();
    void charactersBeyondLatin1();
    void argumentIsNotChanged();
    void argumentWithoutTerminator();

private:
    void addListRows();
    void addInstructionRows();
    void addNameRows();
    void addClosingRows();
    void addNestingRows();
};

namespace {

void addRow(const char* name, const char* text, const QStringList& elements)
{
    QTest::newRow(name) << latin1(text) << elements;
}

} // namespace

void TestElementScanner::elements_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("expected");
    addListRows();
    addInstructionRows();
    addNameRows();
    addClosingRows();
    addNestingRows();
}

void TestElementScanner::addListRows()
{
    addRow("nothing", "", {});
    addRow("text alone", "a > b", {});
    addRow("one", "<a>x</a>", latin1List({"a|x"}));
    addRow("several", "<a>x</a><b>y</b><a>z</a>", latin1List({"a|x", "b|y", "a|z"}));
    addRow("text between", "p > q<a>x</a>/> & \t<b>y</b>]]>", latin1List({"a|x", "b|y"}));
    addRow("bracket at the end", "<a>x</a><", latin1List({"a|x"}));
    addRow("no closing bracket", "<a>x</a><b", latin1List({"a|x"}));
    addRow("bracket after a fault", "<a>x</a><b <c>y</c>", latin1List({"a|x"}));
    addRow("content as it stands", "<a>  x &amp; > \t y\n</a>",
           latin1List({"a|  x &amp; > \\t y\\n"}));
    addRow("content with elements", "<a><b>x</b><c/></a>", latin1List({"a|<b>x</b><c/>"}));
    addRow("content with half tags", "<a>< <b </c> <a</a>", latin1List({"a|< <b </c> <a"}));
    addRow("content with comments", "<a><!--</a>--></a>", latin1List({"a|<!--"}));
    addRow("content with instructions", "<a><?</a>?></a><b/>", latin1List({"a|<?"}));
    addRow("content with raw data", "<a><![CDATA[x</a>]]></a>", latin1List({"a|<![CDATA[x"}));
}

void TestElementScanner::addInstructionRows()
{
    addRow("instruction", "<?xml version=\"1.0\"?><a>x</a>", latin1List({"a|x"}));
    addRow("instructions between", "<a>x</a><?p?>\n<?q <b>y</b> ?><c>z</c>",
           latin1List({"a|x", "c|z"}));
    addRow("instruction not closed", "<?p ><a>x</a>", {});
    addRow("instruction without bracket", "<a>x</a><?p", latin1List({"a|x"}));
    // The mark that opens an instruction does not close it, ...
    addRow("shortest instruction", "<?><a>x</a>", {});
    addRow("shortest instruction closed later", "<?><a>x</a><?p?><b>y</b>", latin1List({"b|y"}));
    addRow("instruction of two marks", "<?\?><a>x</a>", latin1List({"a|x"}));
    // ... but the dashes that open a comment may.
    addRow("comment", "<!-- <b>y</b> --><a>x</a>", latin1List({"a|x"}));
    addRow("comments between", "<a>x</a><!----><!-- - -- > --><b>y</b>",
           latin1List({"a|x", "b|y"}));
    addRow("shortest comment", "<!--><a>x</a>", latin1List({"a|x"}));
    addRow("comment of three dashes", "<!---><a>x</a>", latin1List({"a|x"}));
    addRow("comment not closed", "<!-- ><a>x</a>", {});
    addRow("bracket and dashes only", "<!-><a>x</a>", {});
    addRow("declaration", "<!DOCTYPE a><a>x</a>", {});
    addRow("declaration before a comment", "<!DOCTYPE a><a>x</a><!-- --><b>y</b>",
           latin1List({"b|y"}));
    addRow("declaration after elements", "<a>x</a><!DOCTYPE a><b>y</b>", latin1List({"a|x"}));
    addRow("raw data", "<a>x</a><![CDATA[ ]]><b>y</b>", latin1List({"a|x"}));
    // Any bracket will do for the tag, however far behind.
    addRow("comment within an instruction", "<?p <!-- ?><a>x</a>", latin1List({"a|x"}));
    addRow("instruction within a comment", "<!-- <? --><a>x</a>", latin1List({"a|x"}));
    addRow("blank before the mark", "< ?p?>x</ ?p?><a>y</a>", latin1List({" ?p?|x", "a|y"}));
}

void TestElementScanner::addNameRows()
{
    addRow("name with attribute", "<a b=\"c\">x</a b=\"c\">", latin1List({"a b=\\\"c\\\"|x"}));
    addRow("attribute on one side", "<a b=\"c\">x</a><d>y</d>", {});
    addRow("name with blanks", "< a >x</ a >", latin1List({" a |x"}));
    addRow("name with line break", "<a\nb>x</a\nb>", latin1List({"a\\nb|x"}));
    addRow("name with bracket", "<a<b>x</a<b>", latin1List({"a<b|x"}));
    addRow("name of brackets", "<<<>x</<<>", latin1List({"<<|x"}));
    addRow("empty name", "<>x</><a>y</a>", latin1List({"|x", "a|y"}));
    addRow("empty names nested", "<><>x</></>", latin1List({"|<>x</>"}));
    addRow("placeholder", "<%1>x<%2>y</%1>", latin1List({"%1|x<%2>y"}));
    addRow("placeholders nested", "<%1%L1>x<%1%L1/><%1%L1></%1%L1>y</%1%L1>",
           latin1List({"%1%L1|x<%1%L1/><%1%L1></%1%L1>y"}));
    addRow("case counts", "<a>x</A></a>", latin1List({"a|x</A>"}));
    addRow("exclamation mark inside", "<a!>x</a!>", latin1List({"a!|x"}));

    addRow("empty element", "<a/><b>y</b>", latin1List({"a|", "b|y"}));
    addRow("empty element with blank", "<a /><b>y</b>", latin1List({"a |", "b|y"}));
    addRow("empty element with attribute", "<a b='/'/><c/>", latin1List({"a b='/'|", "c|"}));
    addRow("one slash is dropped", "<a//>", latin1List({"a/|"}));
    addRow("slash inside", "<a/b>x</a/b>", latin1List({"a/b|x"}));
    addRow("blank behind the slash", "<a/ >x</a/ >", latin1List({"a/ |x"}));
    addRow("empty element is not closed", "<a/>x</a><b/>", latin1List({"a|"}));
}

void TestElementScanner::addClosingRows()
{
    addRow("closing tag first", "</a><b>y</b>", {});
    addRow("closing tag between", "<a>x</a></c><b>y</b>", latin1List({"a|x"}));
    addRow("slash alone", "<a>x</a></><b>y</b>", latin1List({"a|x"}));
    addRow("slashes alone", "<//><b>y</b>", {});
    addRow("closing tag with slash", "</a/><b>y</b>", {});
    addRow("not closed", "<a>x<b>y</b>", {});
    addRow("closed before", "</a><a>x", {});
    addRow("last one not closed", "<a>x</a><b>y</b><a>z", latin1List({"a|x", "b|y"}));
    addRow("closing tag with blank", "<a>x</a ><b/>", {});
    addRow("closing tag cut off", "<a>x</a", {});
    addRow("longer name closes nothing", "<a>x</ab></a>", latin1List({"a|x</ab>"}));
    addRow("half a closing tag", "<a>x/a> <//a> </ a> a></a>",
           latin1List({"a|x/a> <//a> </ a> a>"}));
    addRow("overlapping", "<a>x<b>y</a>z</b>", latin1List({"a|x<b>y"}));
    addRow("adjacent", "<a></a><b></b>", latin1List({"a|", "b|"}));
}

void TestElementScanner::addNestingRows()
{
    addRow("nested", "<a>1<a>2</a>3</a><b/>", latin1List({"a|1<a>2</a>3", "b|"}));
    addRow("nested deep", "<a><a><a></a></a><a></a></a><b/>",
           latin1List({"a|<a><a></a></a><a></a>", "b|"}));
    addRow("nested not closed", "<a>1<a>2</a>3<b/>", {});
    addRow("nested closed once too often", "<a>1<a>2</a>3</a>4</a><b/>",
           latin1List({"a|1<a>2</a>3"}));
    addRow("nested empty does not count", "<a>1<a/>2</a><b/>", latin1List({"a|1<a/>2", "b|"}));
    addRow("nested with attribute does not count", "<a>1<a b='c'>2</a>3</a><b/>",
           latin1List({"a|1<a b='c'>2"}));
    addRow("nested with blank does not count", "<a>1<a >2</a>3</a><b/>", latin1List({"a|1<a >2"}));
    addRow("nested in a comment counts", "<a>1<!-- <a> -->2</a><b/>", {});
    addRow("nested in another element counts", "<a>1<b><a></b>2</a>3</a><c/>",
           latin1List({"a|1<b><a></b>2</a>3", "c|"}));
    addRow("opened behind the end", "<a>1</a><a>2</a>", latin1List({"a|1", "a|2"}));
    addRow("opened behind the end, not closed", "<a>1</a><a>2", latin1List({"a|1"}));
    addRow("only openings left", "<a><a><a></a>", {});
}

void TestElementScanner::elements()
{
    QFETCH(QString, text);
    QFETCH(QStringList, expected);
    QCOMPARE(elementsOf(text), expected);
}

void TestElementScanner::everyLevelIsScannedAlike_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<bool>("found");
    QTest::newRow("nothing") << QString() << true;
    QTest::newRow("text") << latin1(" x > y ") << true;
    QTest::newRow("element") << latin1("<x>y</x><z/>") << true;
    QTest::newRow("instruction") << latin1("<?xml version=\"1.0\"?>") << true;
    QTest::newRow("comment") << latin1("<!-- x -->") << true;
    QTest::newRow("byte order mark") << QString(QChar(QChar::ByteOrderMark)) << true;
    QTest::newRow("declaration") << latin1("<!DOCTYPE x>") << false;
    QTest::newRow("closing tag") << latin1("</x>") << false;
    QTest::newRow("not closed") << latin1("<x>") << false;
    QTest::newRow("instruction not closed") << latin1("<?xml>") << false;
    QTest::newRow("empty name") << latin1("<>") << false;
}

void TestElementScanner::everyLevelIsScannedAlike()
{
    QFETCH(QString, before);
    QFETCH(bool, found);
    const auto wrapped = [](const char* name, const QString& content) {
        return QStringLiteral("<%1>%2</%1>").arg(latin1(name), content);
    };
    const auto readIn = [&](const std::initializer_list<const char*> names, const char* broken) {
        // The innermost element comes first.
        QString text = QStringLiteral("found");
        for (const char* name : names) {
            text = wrapped(name, text);
            if (qstrcmp(name, broken) == 0)
                text.prepend(before);
        }
        const MessageCapture quiet;
        return SummaryReader().readSummary(text);
    };

    for (const char* broken : {"Title", "Workflowstep", "trxchange"}) {
        const Summary summary = readIn({"Title", "Workflowstep", "trxchange"}, broken);
        QCOMPARE(summary.title == QLatin1String("found"), found);
    }
    for (const char* broken : {"Filename", "OutFile"}) {
        const Summary summary = readIn({"Filename", "OutFile", "Workflowstep", "trxchange"},
                                       broken);
        QCOMPARE(!summary.files.isEmpty() && !summary.files.at(0).filename.isNull(), found);
    }
    for (const char* broken : {"Key", "Attribute", "UserAttributes"}) {
        const Summary summary = readIn(
            {"Key", "Attribute", "UserAttributes", "Workflowstep", "trxchange"}, broken);
        QCOMPARE(summary.userAttributes.contains(latin1("found")), found);
    }
}

void TestElementScanner::emptyIsNotNull_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("null");
    QTest::newRow("slash form") << latin1("<Title/>") << false;
    QTest::newRow("no content") << latin1("<Title></Title>") << false;
    QTest::newRow("overwritten") << latin1("<Title>x</Title><Title/>") << false;
    QTest::newRow("not there") << latin1("<Comment>x</Comment>") << true;
    QTest::newRow("not closed") << latin1("<Title>") << true;
    QTest::newRow("blank before the slash") << latin1("<Title />") << true;
    QTest::newRow("attribute") << latin1("<Title a='b'></Title a='b'>") << true;
    QTest::newRow("other case") << latin1("<title/>") << true;
}

void TestElementScanner::emptyIsNotNull()
{
    QFETCH(QString, text);
    QFETCH(bool, null);
    const QString title = titleIn(text);
    QVERIFY(title.isEmpty());
    QCOMPARE(title.isNull(), null);
}

void TestElementScanner::endlessNesting()
{
    const int depth = 1000;
    const QString open = latin1("<a>").repeated(depth);
    const QString close = latin1("</a>").repeated(depth);
    QCOMPARE(elementsOf(open + close),
             QStringList{latin1("a|") + open.mid(3) + close.left(close.size() - 4)});
    QCOMPARE(elementsOf(open + close.mid(4)), QStringList());
    QCOMPARE(elementsOf(open + close + close).size(), 1);
}

void TestElementScanner::nulCharacters()
{
    // A character with the number 0 is one like any other.
    const QString nul(1, QChar(0));
    QCOMPARE(titleIn(nul + latin1("<Title>a") + nul + latin1("b</Title>")),
             latin1("a") + nul + latin1("b"));
    QCOMPARE(titleIn(latin1("<Title") + nul + latin1(">a</Title") + nul + latin1(">")), QString());
    QCOMPARE(titleIn(latin1("<!--") + nul + latin1("--><x") + nul + latin1("/><Title>a</Title>")),
             latin1("a"));
}

void TestElementScanner::charactersBeyondLatin1()
{
    const QString text = QStringLiteral("\u00e4\u20ac\U0001f600");
    QCOMPARE(titleIn(QStringLiteral("<Title>%1</Title>").arg(text)), text);
    QCOMPARE(titleIn(QStringLiteral("<%1><Title>no</Title></%1>%1<Title>a</Title>").arg(text)),
             latin1("a"));
    // Nor does half of a character disturb.
    const QString half(1, QChar(0xd83d));
    QCOMPARE(titleIn(latin1("<Title>") + half + latin1("</Title>")), half);
}

void TestElementScanner::argumentIsNotChanged()
{
    const QString text = latin1("<trxchange><MD5Signature>x</MD5Signature><a/></trxchange><b/>");
    const QString before = QString(text.constData(), text.size());
    QCOMPARE(SummaryReader().readSummary(text).md5Signature, latin1("x"));
    QCOMPARE(text, before);
}

void TestElementScanner::argumentWithoutTerminator()
{
    // The text ends where its length says, not where more of it follows in memory.
    const QString whole = latin1("<trxchange><MD5Signature>x</MD5Signature></trxchange>");
    for (int size = 0; size <= int(whole.size()); ++size) {
        const QString part = QString::fromRawData(whole.constData(), size);
        const Summary summary = SummaryReader().readSummary(part);
        QCOMPARE(summary.fromXml, size == whole.size());
        QCOMPARE(summary.md5Signature.isNull(), size < whole.size());
    }
}

QTEST_GUILESS_MAIN(TestElementScanner)

#include "tst_elementscanner.moc"
