#include "Records.h"

#include <QTest>

using tresk::FileSummary;
using tresk::Summary;
using tresktest::answer;
using tresktest::found;
using tresktest::ofStepAndFile;
using tresktest::quoted;
using tresktest::utf8;

/// What an attribute reads from a step and from a file.
class TestQueryAttributes : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void flagsAsConditions_data();
    void flagsAsConditions();
    void numbers();
    void compressionMethods_data();
    void compressionMethods();
    void purposes_data();
    void purposes();
    void recordsWithoutValues_data();
    void recordsWithoutValues();
    void anyIsEveryTextAndNumber_data();
    void anyIsEveryTextAndNumber();
    void anyIsNothingElse_data();
    void anyIsNothingElse();
    void anyLeavesOutEmptyValues();
    void comparisonsWithAny();
};

namespace {

FileSummary fullFile()
{
    FileSummary file;
    file.tagId = 21;
    file.filename = utf8("Report.pdf");
    file.filepath = utf8("C:\\in\\Report.pdf");
    file.filetype = utf8("PDF");
    file.description = utf8("description of file");
    file.comment = utf8("comment of file");
    file.lastModified = utf8("2019-02-01 08:00");
    file.generateMD5 = true;
    file.embedded = true;
    file.uncompressedSize = 2000;
    file.uncompressedMD5 = utf8("0123abc");
    file.compressedMethod = utf8("flate");
    file.compressedSize = 1500;
    file.compressedMD5 = utf8("0456def");
    file.userAttributes = {{utf8("client"), utf8("client of file")}};
    file.userAttributeUnits = {{utf8("client"), utf8("unit of file")}};
    file.userAttributeNames = QStringList(utf8("client"));
    file.filePurpose = utf8("InFile");
    return file;
}

Summary fullStep()
{
    Summary step;
    step.tagId = 11;
    step.treskRootFile = utf8("root.pdf");
    step.timestamp = utf8("2019-03-12 14:33");
    step.title = utf8("Title");
    step.description = utf8("description of step");
    step.comment = utf8("comment of step");
    step.command = utf8("convert \"a\"");
    step.tool = utf8("converter");
    step.toolPath = utf8("/opt/converter");
    step.host = utf8("host");
    step.user = utf8("someone");
    step.creator = utf8("writer 1.0");
    step.pdfTitle = utf8("pdf title");
    step.pdfAuthor = utf8("pdf author");
    step.pdfSubject = utf8("pdf subject");
    step.pdfKeywords = utf8("pdf keywords");
    step.pdfProducer = utf8("pdf producer");
    step.pdfCreator = utf8("pdf creator");
    step.userAttributes = {{utf8("project"), utf8("project of step")}};
    step.userAttributeUnits = {{utf8("project"), utf8("unit of step")}};
    step.userAttributeNames = QStringList(utf8("project"));
    step.md5Signature = utf8("fedcba98");
    step.fromXml = true;
    step.files = {fullFile()};
    return step;
}

struct Attribute {
    const char* name;
    const char* ofStep;
    const char* ofFile;
};

/// Of fullStep() and its file.
const Attribute texts[] = {
    {"hash", "fedcba98", "0123abc"},
    {"tagid", "11", "21"},
    {"treskrootfile", "root.pdf", ""},
    {"timestamp", "2019-03-12 14:33", ""},
    {"title", "Title", ""},
    {"description", "description of step", "description of file"},
    {"comment", "comment of step", "comment of file"},
    {"command", "convert \"a\"", ""},
    {"tool", "converter", ""},
    {"toolpath", "/opt/converter", ""},
    {"host", "host", ""},
    {"user", "someone", ""},
    {"creator", "writer 1.0", ""},
    {"filename", "", "Report.pdf"},
    {"filepath", "", "C:\\in\\Report.pdf"},
    {"filetype", "", "PDF"},
    {"lastmodified", "", "2019-02-01 08:00"},
    {"filepurpose", "", "InFile"},
    {"filesize", "", "2000"},
    {"cfilesize", "", "1500"},
    {"md5", "", "0123abc"},
    {"cmd5", "", "0456def"},
    {"parentid", "", "11"},
};

const Attribute userAttributeTexts[] = {
    {"userattrs", "project=project of step", "client=client of file"},
    {"user:project", "project of step", "project of step"},
    {"user:client", "", "client of file"},
    {"user:nosuch", "", ""},
};

const Attribute flags[] = {
    {"iswfs", "true", "false"},      {"isfile", "false", "true"},   {"embedded", "false", "true"},
    {"compressed", "false", "true"}, {"isinfile", "false", "true"}, {"isoutfile", "false", "false"},
};

template <typename Attributes>
void addRows(const Attributes& attributes)
{
    for (const Attribute& attribute : attributes)
        QTest::newRow(attribute.name)
            << utf8(attribute.name) << utf8(attribute.ofStep) << utf8(attribute.ofFile);
}

void addColumns()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("ofStep");
    QTest::addColumn<QString>("ofFile");
}

} // namespace

void TestQueryAttributes::values_data()
{
    addColumns();
    addRows(texts);
    addRows(userAttributeTexts);
    addRows(flags);
}

void TestQueryAttributes::values()
{
    QFETCH(const QString, name);
    QFETCH(const QString, ofStep);
    QFETCH(const QString, ofFile);
    const QString is = utf8("%1 && x:%2 == %3");
    const QString isNot = utf8("%1 && x:%2 != %3");
    const QList<Summary> records = {fullStep()};
    const QString step = utf8("x:iswfs");
    const QString file = utf8("x:isfile");
    QCOMPARE(found(is.arg(step, name, quoted(ofStep)), records), utf8("yes x=wfs:0"));
    QCOMPARE(found(isNot.arg(step, name, quoted(ofStep)), records), utf8("no"));
    QCOMPARE(found(is.arg(file, name, quoted(ofFile)), records), utf8("yes x=file:0:0"));
    QCOMPARE(found(isNot.arg(file, name, quoted(ofFile)), records), utf8("no"));
}

void TestQueryAttributes::flagsAsConditions_data()
{
    addColumns();
    addRows(flags);
}

void TestQueryAttributes::flagsAsConditions()
{
    QFETCH(const QString, name);
    QFETCH(const QString, ofStep);
    QFETCH(const QString, ofFile);
    const auto yesIf = [](const QString& value, const char* expected) {
        return value == utf8(expected) ? utf8("yes") : utf8("no");
    };
    QCOMPARE(ofStepAndFile(utf8("x:") + name, fullStep()),
             yesIf(ofStep, "true") + QLatin1Char(' ') + yesIf(ofFile, "true"));
    QCOMPARE(ofStepAndFile(utf8("!x:") + name, fullStep()),
             yesIf(ofStep, "false") + QLatin1Char(' ') + yesIf(ofFile, "false"));
}

void TestQueryAttributes::numbers()
{
    Summary step = fullStep();
    FileSummary& file = step.files[0];
    file.uncompressedSize = file.compressedSize = -1; // not known
    step.tagId = file.tagId = -1; // as it stands
    QCOMPARE(ofStepAndFile(utf8("x:filesize == '' && x:cfilesize == ''"), step), utf8("yes yes"));
    QCOMPARE(ofStepAndFile(utf8("x:tagid == '-1'"), step), utf8("yes yes"));
    QCOMPARE(ofStepAndFile(utf8("x:parentid == '-1'"), step), utf8("no yes"));
    file.uncompressedSize = 0;
    file.compressedSize = 2147483647;
    step.tagId = 0;
    QCOMPARE(ofStepAndFile(utf8("x:filesize == 0 && x:cfilesize == 2147483647"), step),
             utf8("no yes"));
    QCOMPARE(ofStepAndFile(utf8("x:tagid == 0"), step), utf8("yes no"));
    QCOMPARE(ofStepAndFile(utf8("x:parentid == 0"), step), utf8("no yes"));
}

void TestQueryAttributes::compressionMethods_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("answers");
    QTest::newRow("null") << QString() << utf8("no no");
    QTest::newRow("empty") << utf8("") << utf8("no no");
    QTest::newRow("none") << utf8("none") << utf8("no no");
    QTest::newRow("flate") << utf8("flate") << utf8("no yes");
    QTest::newRow("other") << utf8("lzma") << utf8("no yes");
}

void TestQueryAttributes::compressionMethods()
{
    QFETCH(const QString, method);
    QFETCH(const QString, answers);
    Summary step = fullStep();
    step.files[0].compressedMethod = method;
    QCOMPARE(ofStepAndFile(utf8("x:compressed"), step), answers);
}

void TestQueryAttributes::purposes_data()
{
    QTest::addColumn<QString>("purpose");
    QTest::addColumn<QString>("inAnswers");
    QTest::addColumn<QString>("outAnswers");
    QTest::newRow("in") << utf8("InFile") << utf8("no yes") << utf8("no no");
    QTest::newRow("out") << utf8("OutFile") << utf8("no no") << utf8("no yes");
    QTest::newRow("none") << utf8("Undefined") << utf8("no no") << utf8("no no");
    QTest::newRow("empty") << QString() << utf8("no no") << utf8("no no");
}

void TestQueryAttributes::purposes()
{
    QFETCH(const QString, purpose);
    QFETCH(const QString, inAnswers);
    QFETCH(const QString, outAnswers);
    Summary step = fullStep();
    step.files[0].filePurpose = purpose;
    QCOMPARE(ofStepAndFile(utf8("x:isinfile"), step), inAnswers);
    QCOMPARE(ofStepAndFile(utf8("x:isoutfile"), step), outAnswers);
    QCOMPARE(ofStepAndFile(utf8("x:filepurpose == ") + quoted(purpose), step),
             purpose.isEmpty() ? utf8("yes yes") : utf8("no yes"));
}

void TestQueryAttributes::recordsWithoutValues_data()
{
    addColumns();
    for (const Attribute& attribute : texts) {
        const QString name = utf8(attribute.name);
        if (name == utf8("tagid") || name == utf8("parentid") || name == utf8("filepurpose"))
            continue; // there is always one
        QTest::newRow(attribute.name) << name << QString() << QString();
    }
    addRows(std::initializer_list<Attribute>{{"userattrs", "", ""},
                                             {"user:key", "", ""},
                                             {"embedded", "false", "false"},
                                             {"compressed", "false", "false"},
                                             {"isinfile", "false", "false"},
                                             {"isoutfile", "false", "false"},
                                             {"tagid", "0", "-1"},
                                             {"parentid", "", "0"},
                                             {"filepurpose", "", "Undefined"}});
}

void TestQueryAttributes::recordsWithoutValues()
{
    QFETCH(const QString, name);
    QFETCH(const QString, ofStep);
    QFETCH(const QString, ofFile);
    const Summary step = tresktest::stepTitled(QString(), {tresktest::fileNamed(QString())});
    const QString is = utf8("x:%1 == %2");
    QCOMPARE(ofStepAndFile(is.arg(name, quoted(ofStep)), step).section(QLatin1Char(' '), 0, 0),
             utf8("yes"));
    QCOMPARE(ofStepAndFile(is.arg(name, quoted(ofFile)), step).section(QLatin1Char(' '), 1, 1),
             utf8("yes"));
}

void TestQueryAttributes::anyIsEveryTextAndNumber_data()
{
    addColumns();
    addRows(texts);
    addRows(std::initializer_list<Attribute>{{"user:project", "project of step", ""},
                                             {"user:client", "", "client of file"}});
}

void TestQueryAttributes::anyIsEveryTextAndNumber()
{
    QFETCH(const QString, name);
    QFETCH(const QString, ofStep);
    QFETCH(const QString, ofFile);
    const QList<Summary> records = {fullStep()};
    if (!ofStep.isEmpty())
        QCOMPARE(found(utf8("x:iswfs && x:any == ") + quoted(ofStep), records),
                 utf8("yes x=wfs:0"));
    if (!ofFile.isEmpty())
        QCOMPARE(found(utf8("x:isfile && x:any == ") + quoted(ofFile), records),
                 utf8("yes x=file:0:0"));
    QVERIFY(!ofStep.isEmpty() || !ofFile.isEmpty());
}

void TestQueryAttributes::anyIsNothingElse_data()
{
    QTest::addColumn<QString>("value");
    for (const char* value :
         {"", "true", "false", "project=project of step", "client=client of file", "project",
          "client", "unit of step", "unit of file", "pdf title", "pdf author", "pdf subject",
          "pdf keywords", "pdf producer", "pdf creator", "flate", "-1", "1", "wfs:0"})
        QTest::newRow(*value ? value : "empty") << utf8(value);
}

void TestQueryAttributes::anyIsNothingElse()
{
    QFETCH(const QString, value);
    QCOMPARE(found(utf8("x:any == ") + quoted(value), {fullStep()}), utf8("no"));
    QCOMPARE(found(utf8("x:any != ") + quoted(value), {fullStep()}), utf8("yes x=wfs:0"));
}

void TestQueryAttributes::anyLeavesOutEmptyValues()
{
    Summary step = fullStep();
    step.userAttributes.insert(utf8("empty"), QString());
    QCOMPARE(ofStepAndFile(utf8("x:any == ''"), step), utf8("no no"));
    QCOMPARE(ofStepAndFile(utf8("x:any %matches ''"), step), utf8("no no"));
    QCOMPARE(ofStepAndFile(utf8("x:any %contains ''"), step), utf8("yes yes"));
}

void TestQueryAttributes::comparisonsWithAny()
{
    // One value is enough, on either side.
    QCOMPARE(ofStepAndFile(utf8("x:any %contains 'NOTE'"), fullStep()), utf8("no no"));
    QCOMPARE(ofStepAndFile(utf8("x:any %contains 'OF STEP'"), fullStep()), utf8("yes no"));
    QCOMPARE(ofStepAndFile(utf8("x:any %matches '*.PDF'"), fullStep()), utf8("yes yes"));
    QCOMPARE(ofStepAndFile(utf8("x:any %matches 'report.pdf'"), fullStep()), utf8("no yes"));
    QCOMPARE(ofStepAndFile(utf8("'the title of it' %contains x:any"), fullStep()), utf8("yes no"));
    QCOMPARE(ofStepAndFile(utf8("x:any == x:any"), fullStep()), utf8("yes yes"));
    // "!=" is that no value is equal, and not that one is different.
    QCOMPARE(ofStepAndFile(utf8("x:any != 'title'"), fullStep()), utf8("no yes"));
    QCOMPARE(ofStepAndFile(utf8("!(x:any == 'title')"), fullStep()), utf8("no yes"));
    QCOMPARE(ofStepAndFile(utf8("!(x:any != 'title')"), fullStep()), utf8("yes no"));
    QCOMPARE(ofStepAndFile(utf8("x:any != x:any"), fullStep()), utf8("no no"));
    QCOMPARE(ofStepAndFile(utf8("!(x:any %contains 'of step')"), fullStep()), utf8("no yes"));
    // The words of a query are looked for in the same way.
    QCOMPARE(found(utf8("REPORT"), {fullStep()}), utf8("yes"));
    QCOMPARE(found(utf8("note"), {fullStep()}), utf8("no"));
    QCOMPARE(found(utf8("x:any"), {fullStep()}), utf8("no"));
    Summary step = fullStep();
    step.files[0].comment = utf8("true");
    QCOMPARE(found(utf8("x:any"), {step}), utf8("yes x=file:0:0"));
}

QTEST_APPLESS_MAIN(TestQueryAttributes)
#include "tst_queryattributes.moc"
