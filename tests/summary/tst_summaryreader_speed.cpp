#include "Latin1.h"

#include <tresk/SummaryReader.h>

#include <QLoggingCategory>
#include <QTest>

using tresk::Summary;
using tresk::SummaryReader;
using tresktest::latin1;

namespace {

QString repeated(const char* text, int count)
{
    return latin1(text).repeated(count);
}

const int many = 300 * 1000;

} // namespace

/// Long texts are read right, in a time that grows with their length only, whatever stands in
/// them. Where it grew with the square of the length, the worst of these texts would take minutes,
/// and the test would not end in the time that it has.
class TestSummaryReaderSpeed : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void texts_data();
    void texts();
    void distinctElements();
};

void TestSummaryReaderSpeed::initTestCase()
{
    // Every unknown element would be a line.
    QLoggingCategory::setFilterRules(latin1("tresk.debug=false"));
}

void TestSummaryReaderSpeed::texts_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<bool>("found");
    const auto add = [](const char* name, const QString& before, bool found) {
        QTest::newRow(name) << before << found;
    };
    add("text", repeated("x", many), true);
    add("closing brackets", repeated(">", many), true);
    add("empty elements", repeated("<a/>", many), true);
    add("elements", repeated("<a>x</a>", many), true);
    add("nested elements", repeated("<a>", many) + repeated("</a>", many), true);
    add("nested, not closed", repeated("<a>", many), false);
    add("nested, one closed", repeated("<a>", many) + latin1("</a>"), false);
    add("nested in steps", repeated("<a></a><a><a></a></a>", many / 4), true);
    add("closed too far behind",
        latin1("<a>") + repeated("<b></b>", many) + latin1("</a>") + repeated("</a>", many), false);
    add("comments", repeated("<!-- x -->", many), true);
    add("shortest comments", repeated("<!-->", many), true);
    add("instructions", repeated("<?x?>", many), true);
    add("comments opened", repeated("<!--", many) + latin1("-->"), true);
    add("dashes", latin1("<!") + repeated("-", many) + latin1(">"), true);
    add("no bracket", repeated("<", many), false);
    add("name of brackets, not closed", repeated("<", many) + latin1(">") + repeated("<", many),
        false);
    const QString name = repeated("<", many);
    add("name of brackets", latin1("<%1>%1</%1>").replace(latin1("%1"), name), true);
    const QString slashes = latin1("a") + repeated("/", many) + latin1("a");
    add("name of slashes", latin1("<%1></%1></%1>").replace(latin1("%1"), slashes), false);
    const QString halves = latin1("a") + repeated("</a", many);
    add("name of half tags", latin1("<%1>%1%1</%1>").replace(latin1("%1"), halves), true);
}

void TestSummaryReaderSpeed::texts()
{
    QFETCH(QString, before);
    QFETCH(bool, found);
    const QString title = before + latin1("<Title>found</Title>");
    const QString step = QStringLiteral("<trxchange><Workflowstep>%1</Workflowstep></trxchange>");
    const Summary summary = SummaryReader().readSummary(step.arg(title));
    QCOMPARE(summary.title, found ? latin1("found") : QString());
}

void TestSummaryReaderSpeed::distinctElements()
{
    // No element has a successor of the same name.
    QString attributes;
    for (int i = 0; i < 50 * 1000; ++i)
        attributes += QStringLiteral("<Attribute><Key>%1</Key></Attribute><a%1></a%1>").arg(i);
    const Summary summary = SummaryReader().readSummary(
        latin1("<trxchange><Workflowstep><UserAttributes>") + attributes
        + latin1("</UserAttributes></Workflowstep></trxchange>"));
    QCOMPARE(summary.userAttributeNames.size(), 50 * 1000);
}

QTEST_GUILESS_MAIN(TestSummaryReaderSpeed)

#include "tst_summaryreader_speed.moc"
