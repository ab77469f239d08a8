#include "DebugLines.h"
#include "Latin1.h"
#include "OpenedDocument.h"
#include "SummaryText.h"
#include "SummaryXml.h"

#include <QTest>

#include <algorithm>

using tresk::Summary;
using tresk::SummaryBudget;
using tresk::SummaryCreator;
using tresktest::DocumentWriter;
using tresktest::element;
using tresktest::FileElement;
using tresktest::fileNamed;
using tresktest::FileSpec;
using tresktest::fromMarkers;
using tresktest::latin1;
using tresktest::MessageCapture;
using tresktest::newDocument;
using tresktest::OpenedDocument;
using tresktest::SectionSpec;
using tresktest::stepWith;
using tresktest::summaryFile;
using tresktest::summaryXml;
using tresktest::textOf;
using tresktest::titledSummary;
using tresktest::titles;

namespace {

/// The summary of one step with @p files.
Summary summaryOf(const QVector<FileSpec>& files)
{
    DocumentWriter document = newDocument();
    document.writeSection(stepWith(files));
    const QList<Summary> summaries = OpenedDocument(document).summaries();
    return summaries.size() == 1 ? summaries.at(0) : Summary();
}

} // namespace

Q_DECLARE_METATYPE(tresktest::FileSpec)

/// Which file is the summary of its step, and what is made of its bytes.
class TestSummarySource : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nameOfTheSummary_data();
    void nameOfTheSummary();
    void summaryBeforeOtherFiles();
    void severalSummaries();
    void summaryBehindTheMarker();
    void storedSummary_data();
    void storedSummary();
    void unreadableSummary_data();
    void unreadableSummary();
    void unusableSummary_data();
    void unusableSummary();
    void encodings_data();
    void encodings();
    void effort_data();
    void effort();
    void effortForEachSection();
    void filesOfEachSection();
    void filesOfTheNewestSection();
    void filesOfNoSection();
};

void TestSummarySource::nameOfTheSummary_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isSummary");
    const auto add = [](const char* name, bool isSummary) {
        QTest::newRow(name) << latin1(name) << isSummary;
    };
    add("ws_summary.xml", true);
    add("ws_summary.XML", false);
    add("ws_summary.xml ", false);
    add("./ws_summary.xml", false);
    add("ws_summary.xm", false);
    add("ws_summary.xmls", false);
    add("", false);
}

void TestSummarySource::nameOfTheSummary()
{
    QFETCH(QString, name);
    QFETCH(bool, isSummary);
    FileSpec summary = titledSummary("summary");
    summary.filename = name;
    QCOMPARE(summaryOf({fileNamed("a"), summary}).fromXml, isSummary);
}

void TestSummarySource::summaryBeforeOtherFiles()
{
    const Summary summary = summaryOf({titledSummary("summary"), fileNamed("a")});
    QCOMPARE(summary.title, latin1("marker"));
    QVERIFY(!summary.fromXml);
    QCOMPARE(summary.files.size(), 2);
    QCOMPARE(summary.files.at(0).filename, latin1("ws_summary.xml"));
}

void TestSummarySource::severalSummaries()
{
    // The last one is the summary; the other is a file that it may name.
    const FileSpec first = titledSummary("first");
    const Summary summary = summaryOf(
        {fileNamed("a"), first,
         summaryFile(summaryXml(element("Title", "second") + FileElement(first).xml()))});
    QCOMPARE(summary.title, latin1("second"));
    QCOMPARE(summary.files.size(), 1);
    QCOMPARE(summary.files.at(0).tagId, 1);
}

void TestSummarySource::summaryBehindTheMarker()
{
    SectionSpec section = stepWith({titledSummary("before"), fileNamed("a")});
    section.filesBehind = {titledSummary("behind")};
    DocumentWriter document = newDocument();
    document.writeSection(section);
    QCOMPARE(titles(OpenedDocument(document).summaries()), QStringList{latin1("behind")});
}

void TestSummarySource::storedSummary_data()
{
    QTest::addColumn<QByteArray>("compression");
    QTest::newRow("plain") << QByteArray("none");
    QTest::newRow("compressed") << QByteArray("flate");
}

void TestSummarySource::storedSummary()
{
    QFETCH(QByteArray, compression);
    FileSpec summary = titledSummary("summary");
    summary.compression = compression;
    const Summary result = summaryOf({fileNamed("a"), summary});
    QCOMPARE(result.title, latin1("summary"));
    QVERIFY(result.fromXml);
    QVERIFY(result.files.isEmpty());
}

void TestSummarySource::unreadableSummary_data()
{
    QTest::addColumn<QByteArray>("compression");
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QByteArray>("filesize");
    const QByteArray xml = titledSummary("summary").content;
    const QByteArray size = QByteArray::number(xml.size());
    const QByteArray stream = tresktest::deflated(xml);
    QTest::newRow("unknown compression") << QByteArray("lzma") << xml << size;
    QTest::newRow("no compression given") << QByteArray() << xml << size;
    QTest::newRow("not compressed") << QByteArray("flate") << xml << size;
    QTest::newRow("cut off") << QByteArray("flate") << stream.left(20) << size;
    QTest::newRow("other size") << QByteArray("flate") << stream << QByteArray("5");
    QTest::newRow("no size") << QByteArray("flate") << stream << QByteArray();
}

void TestSummarySource::unreadableSummary()
{
    QFETCH(QByteArray, compression);
    QFETCH(QByteArray, stored);
    QFETCH(QByteArray, filesize);
    FileSpec summary = titledSummary("summary");
    summary.compression = compression;
    summary.stored = stored;
    summary.with("filesize", filesize);
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({titledSummary("readable")}));
    document.writeSection(stepWith({fileNamed("a"), fileNamed("b"), summary}));

    const MessageCapture capture;
    OpenedDocument opened(document);
    const QList<Summary> summaries = opened.summaries();
    QCOMPARE(summaries.size(), 2);
    QCOMPARE(summaries.at(0).title, latin1("readable"));
    QCOMPARE(textOf(summaries.at(1)), textOf(fromMarkers(opened.parser, 0)));
    QCOMPARE(summaries.at(1).files.size(), 3);
    QCOMPARE(tresktest::debugLines(capture).filter(latin1("summary")),
             QStringList{latin1("could not read summary 3")});
    QCOMPARE(capture.count(QtDebugMsg, "tresk"), 1);
}

void TestSummarySource::unusableSummary_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<bool>("fromXml");
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("no summary") << QByteArray("<a>x</a>") << false;
    QTest::newRow("not closed") << QByteArray("<trxchange><Workflowstep/>") << false;
    QTest::newRow("no step") << QByteArray("<trxchange/>") << true;
    QTest::newRow("empty step") << QByteArray("<trxchange><Workflowstep/></trxchange>") << true;
}

void TestSummarySource::unusableSummary()
{
    // It counts as read all the same: the markers are not the source.
    QFETCH(QByteArray, xml);
    QFETCH(bool, fromXml);
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({fileNamed("a"), summaryFile(xml)}));
    document.writeSection(stepWith({}));
    const MessageCapture capture;
    Summary expected;
    expected.tagId = 1;
    expected.fromXml = fromXml;
    QCOMPARE(textOf(OpenedDocument(document).summaries().at(0)), textOf(expected));
    QCOMPARE(tresktest::debugLines(capture), QStringList());
}

void TestSummarySource::encodings_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("title");
    QTest::addColumn<QString>("expected");
    const QByteArray none;
    QTest::newRow("ASCII") << none << QByteArray("a") << latin1("a");
    QTest::newRow("UTF-8") << none << QByteArray("\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80")
                           << QStringLiteral("\u00e4\u20ac\U0001f600");
    QTest::newRow("mark at the start")
        << QByteArray("\xef\xbb\xbf") << QByteArray("a") << latin1("a");
    QTest::newRow("not UTF-8") << none
                               << QByteArray("a\xff"
                                             "b")
                               << QStringLiteral("a\ufffdb");
    QTest::newRow("not UTF-8 before") << QByteArray("\xe4\xff") << QByteArray("a") << latin1("a");
    QTest::newRow("another encoding is named")
        << QByteArray("<?xml version='1.0' encoding='ISO-8859-1'?>") << QByteArray("\xc3\xa4")
        << QStringLiteral("\u00e4");
    QTest::newRow("NUL") << none << QByteArray("a\0b", 3)
                         << latin1("a") + QChar(0) + QLatin1Char('b');
    QTest::newRow("NUL before") << QByteArray("\0", 1) << QByteArray("a") << latin1("a");
}

void TestSummarySource::encodings()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, title);
    QFETCH(QString, expected);
    const QByteArray xml = before + summaryXml(element("Title", title));
    QCOMPARE(summaryOf({summaryFile(xml)}).title, expected);
    QCOMPARE(summaryOf({FileSpec::flate(latin1("ws_summary.xml"), xml)}).title, expected);
}

void TestSummarySource::effort_data()
{
    constexpr qint64 mebibyte = 1024 * 1024;
    QTest::addColumn<FileSpec>("summary");
    QTest::addColumn<qint64>("charge"); // of 2 MiB
    QTest::addColumn<bool>("isTooMuch");
    const QByteArray xml = titledSummary("summary").content;
    const auto flate = [](const QByteArray& stream, const QByteArray& filesize) {
        FileSpec spec = FileSpec::flate(latin1("ws_summary.xml"), "");
        spec.stored = stream;
        return spec.with("filesize", filesize);
    };
    const auto row = [](const char* name, const FileSpec& summary, qint64 charge, bool isTooMuch) {
        QTest::newRow(name) << summary << charge << isTooMuch;
    };
    FileSpec plain = titledSummary("summary");
    plain.compression = "none";
    const QByteArray stream = tresktest::deflated(xml);
    const QByteArray zeros = tresktest::deflated(QByteArray(4 * mebibyte, 0));
    const QByteArray unpressed = tresktest::deflated(xml, 0);
    const QByteArray size = QByteArray::number(xml.size());
    const qint64 most = stream.size() * 1032;
    row("plain", plain, xml.size(), false);
    row("compressed", flate(stream, size), xml.size(), false);
    row("stored in more bytes", flate(unpressed, size), unpressed.size(), false);
    row("stored in too many bytes", flate(stream + QByteArray(3 * mebibyte, 0), size), 0, true);
    row("damaged", flate(stream.chopped(1) + 'x', size), most, false);
    row("longer than it says", flate(stream, "5"), most, false);
    row("much longer than it says", flate(zeros, "10000"), 10000 + mebibyte, false);
    row("much longer, and little left", flate(zeros, "2000000"), 2 * mebibyte, false);
    row("of no bytes, but longer", flate(stream, "0"), most, false);
    row("of no bytes, but much longer", flate(zeros, "0"), 0, true);
    row("of no bytes, but damaged", flate(stream.chopped(1), "0"), most - 1032, false);
    row("too large", flate(zeros, QByteArray::number(4 * mebibyte)), 0, true);
    row("more than can be stored so", flate(stream, "2147483647"), 0, false);
    row("of no size", flate(stream, ""), 0, false);
    FileSpec unknown = flate(stream, "2147483647");
    unknown.compression = "lzma";
    row("unknown compression", unknown, 0, false);
    row("outside, plain", FileSpec(plain).with("cfilesize", "2147483647"), 0, false);
    row("outside", flate(stream, "2147483647").with("cfilesize", "2147483647"), 0, false);
    row("far outside", flate(stream, size).with("offset", "2147483647"), 0, false);
}

void TestSummarySource::effort()
{
    QFETCH(FileSpec, summary);
    QFETCH(qint64, charge);
    QFETCH(bool, isTooMuch);
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({summary}));
    OpenedDocument opened(document);
    const MessageCapture capture;
    SummaryBudget budget;
    budget.bytes = 2 * 1024 * 1024;
    const QList<Summary> within = SummaryCreator().createSummaries(opened.parser, budget);
    QCOMPARE(2 * 1024 * 1024 - budget.bytes, charge);
    QCOMPARE(budget.unread, isTooMuch ? QList<int>{0} : QList<int>());
    if (!isTooMuch)
        QCOMPARE(textOf(within.first()), textOf(opened.summaries().first()));
}

void TestSummarySource::effortForEachSection()
{
    // All reach back over the only summary, which is damaged.
    FileSpec summary = titledSummary("summary");
    summary.compression = "flate";
    summary.stored = tresktest::deflated(summary.content).chopped(1);
    const int charge = int(summary.stored->size()) * 1032;
    DocumentWriter document = newDocument();
    document.endLine();
    const int start = document.position();
    document.writeSection(stepWith({summary}));
    for (int i = 0; i < 9; ++i) {
        SectionSpec more = stepWith({});
        more.regionStart = start;
        document.writeSection(more);
    }
    const MessageCapture capture;
    OpenedDocument opened(document);
    SummaryBudget budget;
    const qint64 whole = budget.bytes;
    SummaryCreator().createSummaries(opened.parser, budget);
    QCOMPARE(whole - budget.bytes, qint64(10) * charge);
    budget.bytes = 3 * charge;
    SummaryCreator().createSummaries(opened.parser, budget);
    QCOMPARE(budget.bytes, qint64(0));
    QCOMPARE(budget.unread, QList<int>({6, 5, 4, 3, 2, 1, 0}));
}

void TestSummarySource::filesOfEachSection()
{
    // All have the same ten files, of which their summary names none, or some that are not there.
    for (const int named : {0, 12}) {
        DocumentWriter document = newDocument();
        document.endLine();
        const int start = document.position();
        const QByteArray names = QByteArray("<InFile/>").repeated(named);
        const FileSpec summary = summaryFile(summaryXml(element("Title", "summary") + names));
        document.writeSection(
            stepWith(QVector<FileSpec>(9, fileNamed("a")) + QVector<FileSpec>{summary}));
        for (int i = 0; i < 4; ++i) {
            SectionSpec more = stepWith({});
            more.regionStart = start;
            document.writeSection(more);
        }
        OpenedDocument opened(document);
        const int each = std::max(named, 10);
        SummaryBudget budget;
        budget.files = 5 * each;
        QList<Summary> summaries = SummaryCreator().createSummaries(opened.parser, budget);
        QCOMPARE(titles(summaries).count(latin1("summary")), 5);
        QCOMPARE(budget.files, qint64(0));
        QVERIFY(budget.withoutFiles.isEmpty() && budget.namingTooMany.isEmpty());

        budget.files = 2 * each + 9;
        summaries = SummaryCreator().createSummaries(opened.parser, budget);
        QCOMPARE(titles(summaries).count(latin1("summary")), 2);
        QVERIFY(summaries.last().files.isEmpty());
        QCOMPARE(budget.files, qint64(9));
        QCOMPARE(budget.withoutFiles, QList<int>({2, 1, 0}));
        QVERIFY(budget.unread.isEmpty() && budget.namingTooMany.isEmpty());

        budget = SummaryBudget();
        budget.files = 2 * each + 11;
        SummaryCreator().createSummaries(opened.parser, budget);
        QCOMPARE(budget.namingTooMany, named == 0 ? QList<int>() : QList<int>{2});
        QCOMPARE(budget.withoutFiles, QList<int>({1, 0}));
    }
}

void TestSummarySource::filesOfTheNewestSection()
{
    // The older summary has no step in it, and so gets the four files of the newest section.
    DocumentWriter document = newDocument();
    document.writeSection(stepWith({summaryFile("<trxchange/>")}));
    document.writeSection(stepWith(QVector<FileSpec>(4, fileNamed("a"))));
    OpenedDocument opened(document);
    for (const bool isEnough : {true, false}) {
        SummaryBudget budget;
        budget.files = isEnough ? 1 + 4 + 4 : 1 + 3;
        const QList<Summary> summaries = SummaryCreator().createSummaries(opened.parser, budget);
        QCOMPARE(summaries.size(), 2);
        QCOMPARE(summaries.at(0).files.size(), isEnough ? 4 : 0);
        QCOMPARE(summaries.at(1).files.size(), isEnough ? 4 : 0);
        QCOMPARE(budget.files, qint64(isEnough ? 0 : 3));
        QCOMPARE(budget.withoutFiles, isEnough ? QList<int>() : QList<int>({1, 0}));
    }
}

void TestSummarySource::filesOfNoSection()
{
    DocumentWriter document = newDocument();
    document.writeFile(fileNamed("stray"));
    document.writeFile(fileNamed("stray"));
    document.writeSection(stepWith({fileNamed("a")}));
    OpenedDocument opened(document);
    for (const bool isEnough : {true, false}) {
        SummaryBudget budget;
        budget.files = isEnough ? 3 : 2;
        const QList<Summary> summaries = SummaryCreator().createSummaries(opened.parser, budget);
        QCOMPARE(titles(summaries).last(), latin1("<unmatched files>"));
        QCOMPARE(summaries.at(0).files.size(), 1);
        QCOMPARE(summaries.last().files.size(), isEnough ? 2 : 0);
        QCOMPARE(budget.files, qint64(isEnough ? 0 : 1));
        QCOMPARE(budget.withoutFiles, isEnough ? QList<int>() : QList<int>{-1});
    }
}

QTEST_GUILESS_MAIN(TestSummarySource)

#include "tst_summarysource.moc"
