#include "../summary/OpenedDocument.h"
#include "../summary/SummaryXml.h"
#include "Records.h"

#include <tresk/TreskFindQuery.h>

#include <QTest>

using tresk::Summary;
using tresk::TreskFindQuery;
using tresktest::DocumentWriter;
using tresktest::element;
using tresktest::FileElement;
using tresktest::FileSpec;
using tresktest::found;
using tresktest::OpenedDocument;
using tresktest::stepsWithFiles;
using tresktest::stepTitled;
using tresktest::utf8;

using Bindings = QHash<QString, QString>;

/// The query object: what it is made of, and what it says of documents.
class TestFindQuery : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void compilesWhatItIsMadeFrom();
    void invalidQuery();
    void compilesAnew();
    void findingsThatAreOnlySuspicionsMakeItInvalid();
    void copiesAreIndependent();
    void invalidQueryMatchesEverything();
    void onlyAMatchChangesTheBindings();
    void unnamedRecordsHaveNoKeys();
    void doesNotDependOnWhatItMatchedBefore();
    void documents_data();
    void documents();
    void documentWithoutSteps();
    void severalDocuments();
};

namespace {

QString messages(const TreskFindQuery& query)
{
    QStringList list;
    for (const tresk::QueryError& error : query.getErrors())
        list += error.errorMessage();
    return list.join(QLatin1Char('|'));
}

/// A document whose first step has no summary of its own and whose second has one.
DocumentWriter twoSteps()
{
    DocumentWriter document = tresktest::newDocument();
    tresktest::SectionSpec first = tresktest::stepWith(
        {FileSpec::plain(utf8("draft.txt"), "draft of the report"),
         FileSpec::flate(utf8("data.csv"), QByteArray(3000, 'x'))});
    first.title = utf8("Collecting");
    first.creator = utf8("collector");
    document.writeSection(first);
    const FileSpec report = FileSpec::flate(utf8("Report.pdf"), QByteArray(20000, 'r'));
    const FileSpec preview = FileSpec::plain(utf8("Preview.png"), "preview");
    const QByteArray summary = tresktest::summaryXml(
        element("Title", "Annual Report") + element("Timestamp", "2019-03-12 14:33")
        + element("Tool", "publisher") + FileElement(preview).xml()
        + FileElement(report, "OutFile").with("LastModified", "2019-03-11").xml());
    document.writeSection(tresktest::stepWith({report, preview, tresktest::summaryFile(summary)}));
    return document;
}

QString foundIn(OpenedDocument& document, const QString& query)
{
    const QString result = found(query, document.summaries());
    const TreskFindQuery findQuery(query);
    Bindings bindings;
    const bool matches = findQuery.matches(document.parser, &bindings);
    Bindings same;
    if (matches != findQuery.matches(document.summaries(), &same) || bindings != same
        || matches != findQuery.matches(document.parser))
        return utf8("not what its summaries say");
    return result;
}

} // namespace

void TestFindQuery::compilesWhatItIsMadeFrom()
{
    TreskFindQuery query(utf8("f:filename %contains \"report\" || !w:iswfs"));
    QVERIFY(query.isValid());
    QVERIFY(query.getErrors().isEmpty());
    QCOMPARE(query.query(), utf8("f:filename %contains \"report\" || !w:iswfs"));
    QVERIFY(query.setQuery(utf8("a b")));
    QCOMPARE(query.query(), utf8("a b"));
}

void TestFindQuery::invalidQuery()
{
    const TreskFindQuery query(utf8("a)"));
    QVERIFY(!query.isValid());
    const QList<tresk::QueryError> errors = query.getErrors();
    QCOMPARE(int(errors.size()), 1);
    QCOMPARE(errors.at(0).errorMessage(),
             utf8("Error at position 1:\n found a closing  bracket ) but did not except one."));
    QCOMPARE(errors.at(0).position(), 1);
    QCOMPARE(errors.at(0).originalText(), utf8(")"));
    QVERIFY(errors.at(0).isError());
    QVERIFY(tresk::containsErrors(errors));
    QVERIFY(!tresk::containsWarnings(errors));
    QCOMPARE(messages(TreskFindQuery(QString())),
             utf8("Error after position 0:\n query is empty."));
}

void TestFindQuery::compilesAnew()
{
    const QList<Summary> records = {stepTitled(utf8("report"))};
    TreskFindQuery query(utf8("report"));
    QVERIFY(query.matches(records));
    QVERIFY(query.setQuery(utf8("letter")));
    QVERIFY(!query.matches(records));

    QVERIFY(!query.setQuery(utf8("(letter")));
    QVERIFY(!query.isValid());
    QCOMPARE(int(query.getErrors().size()), 1);
    QVERIFY(!query.setQuery(utf8("x:nosuch == 1")));
    QCOMPARE(int(query.getErrors().size()), 1); // nothing is left of the finding before
    QVERIFY(messages(query).contains(utf8("nosuch")));

    QVERIFY(query.setQuery(utf8("report")));
    QVERIFY(query.isValid());
    QVERIFY(query.getErrors().isEmpty());
    QVERIFY(query.matches(records));
}

void TestFindQuery::findingsThatAreOnlySuspicionsMakeItInvalid()
{
    TreskFindQuery query(utf8("f:title < 5"));
    QVERIFY(messages(query).startsWith(utf8("warning at pos")));
    QVERIFY(!query.isValid());
    QVERIFY(!tresk::containsWarnings(query.getErrors()));
    QVERIFY(!query.setQuery(utf8("f:title < 5")));
}

void TestFindQuery::copiesAreIndependent()
{
    const QList<Summary> records = {stepTitled(utf8("report"))};
    TreskFindQuery query(utf8("report"));
    TreskFindQuery copy(query);
    QVERIFY(copy.setQuery(utf8("letter")));
    QVERIFY(query.matches(records));
    QVERIFY(!copy.matches(records));
    copy = query;
    QVERIFY(!query.setQuery(utf8(")")));
    QVERIFY(copy.isValid());
    QCOMPARE(copy.query(), utf8("report"));
    QVERIFY(copy.matches(records));
    copy = query;
    QVERIFY(!copy.isValid());
    QCOMPARE(messages(copy), messages(query));
    const TreskFindQuery& itself = copy;
    copy = itself;
    QCOMPARE(messages(copy), messages(query));
}

/// Its normal form is empty, which asks for nothing.
void TestFindQuery::invalidQueryMatchesEverything()
{
    TreskFindQuery query(utf8("letter"));
    QVERIFY(!query.setQuery(utf8("letter && nothing)")));
    for (const QList<Summary>& records : {QList<Summary>(), stepsWithFiles(2, 2)}) {
        Bindings bindings = {{utf8("old"), utf8("wfs:0")}};
        QVERIFY(query.matches(records));
        QVERIFY(query.matches(records, &bindings));
        QCOMPARE(bindings, Bindings());
    }
}

void TestFindQuery::onlyAMatchChangesTheBindings()
{
    const QList<Summary> records = stepsWithFiles(2, 1);
    const Bindings before = {{utf8("old"), utf8("wfs:7")}, {utf8("f"), utf8("wfs:8")}};
    Bindings bindings = before;
    QVERIFY(!TreskFindQuery(utf8("f:isfile && f:title == 1")).matches(records, &bindings));
    QCOMPARE(bindings, before);
    QVERIFY(!TreskFindQuery(utf8("'a' == 'b'")).matches(records, &bindings));
    QCOMPARE(bindings, before);
    QVERIFY(TreskFindQuery(utf8("f:filename == 1.0")).matches(records, &bindings));
    QCOMPARE(bindings, (Bindings{{utf8("f"), utf8("file:1:0")}}));
    QVERIFY(TreskFindQuery(utf8("g:title == 1")).matches(records, &bindings));
    QCOMPARE(bindings, (Bindings{{utf8("g"), utf8("wfs:1")}}));
    QVERIFY(TreskFindQuery(utf8(":title == 1")).matches(records, &bindings));
    QCOMPARE(bindings, Bindings());
}

void TestFindQuery::unnamedRecordsHaveNoKeys()
{
    const QList<Summary> records = stepsWithFiles(2, 2);
    QCOMPARE(found(utf8(":iswfs"), records), utf8("yes"));
    QCOMPARE(found(utf8("1.1"), records), utf8("yes"));
    QCOMPARE(found(utf8(":title == 1 && f:isfile && :isfile"), records), utf8("yes f=file:0:0"));
}

void TestFindQuery::doesNotDependOnWhatItMatchedBefore()
{
    const TreskFindQuery query(utf8("f:filename == g:filename && f:isfile && g:isfile"));
    tresk::FileSummary file = tresktest::fileNamed(utf8("a"));
    const QList<Summary> two = {stepTitled(QString(), {file}), stepTitled(QString(), {file})};
    const QList<Summary> one = two.mid(1);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(query.matches(two));
        QVERIFY(!query.matches(one));
        QVERIFY(!query.matches(QList<Summary>()));
    }
}

void TestFindQuery::documents_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("result");
    const auto add = [](const char* query, const char* result) {
        QTest::newRow(query) << utf8(query) << utf8(result);
    };
    add("report", "yes");
    add("draft.txt", "yes");
    add("nothing", "no");
    add("s:any %contains collect", "yes s=wfs:0");
    add("s:creator == collector", "yes s=wfs:0");
    add("s:tool == publisher", "yes s=wfs:1");
    add("s:title == 'annual report'", "yes s=wfs:1");
    add("s:title == marker", "no"); // the summary has another
    add("s:timestamp > '2019-03-12' && s:timestamp < '2019-03-12 14:34'", "yes s=wfs:1");
    add("f:filename == data.csv", "yes f=file:0:1");
    add("f:filename %matches *.PDF", "yes f=file:1:1"); // as the summary lists them
    add("f:filename %matches *.png", "yes f=file:1:0");
    add("f:filename == ws_summary.xml", "no");
    add("f:filesize == 20000", "yes f=file:1:1");
    add("f:filesize > 10kb", "yes f=file:1:1");
    add("f:filesize < 10kb && f:compressed", "yes f=file:0:1");
    add("f:filesize > 1mb", "no");
    add("f:lastmodified <= 2019-03-11", "yes f=file:1:1");
    add("f:lastmodified < 2019-03-11", "no");
    add("f:embedded && f:isoutfile", "yes f=file:1:1");
    add("f:isinfile", "yes f=file:1:0");
    add("f:isfile && g:isfile", "yes f=file:0:0 g=file:0:1");
    add("f:parentid == s:tagid && f:filename == Report.pdf && s:iswfs", "yes f=file:1:1 s=wfs:1");
    add("f:parentid != s:tagid && f:isfile && s:iswfs && s:tool != ''", "yes f=file:0:0 s=wfs:1");
}

void TestFindQuery::documents()
{
    QFETCH(const QString, query);
    QFETCH(const QString, result);
    OpenedDocument document(twoSteps());
    QCOMPARE(foundIn(document, query), result);
}

void TestFindQuery::documentWithoutSteps()
{
    const DocumentWriter writer = tresktest::newDocument();
    OpenedDocument document(writer);
    QCOMPARE(foundIn(document, utf8("report")), utf8("no"));
    QCOMPARE(foundIn(document, utf8("!f:isfile")), utf8("no"));
    QCOMPARE(foundIn(document, utf8("a == a")), utf8("yes"));
}

void TestFindQuery::severalDocuments()
{
    DocumentWriter other = tresktest::newDocument();
    other.writeSection(tresktest::stepWith({FileSpec::plain(utf8("letter.txt"), "letter")}));
    OpenedDocument first(twoSteps());
    OpenedDocument second(other);
    const TreskFindQuery query(utf8("f:filename %contains letter"));
    for (int i = 0; i < 2; ++i) {
        Bindings bindings;
        QVERIFY(!query.matches(first.parser, &bindings));
        QCOMPARE(bindings, Bindings());
        QVERIFY(query.matches(second.parser, &bindings));
        QCOMPARE(bindings, (Bindings{{utf8("f"), utf8("file:0:0")}}));
    }
}

QTEST_APPLESS_MAIN(TestFindQuery)
#include "tst_findquery.moc"
