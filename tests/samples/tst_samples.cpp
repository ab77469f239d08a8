#include "DocumentChecks.h"
#include "DocumentDescription.h"
#include "ExpectedSamples.h"
#include "ParsedSummary.h"

#include <DocumentWriter.h>
#include <TestFiles.h>

#include <tresk/SummaryCreator.h>
#include <tresk/TreskParser.h>

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <numeric>

using tresk::FileTag;
using tresk::SectionTag;
using tresk::TreskParser;
using tresktest::ExpectedSample;

namespace {

QString samplePath(const QString& name)
{
    return QDir(QStringLiteral(TRESK_SAMPLES_DIR)).filePath(name);
}

enum class Which { All, Sound };

/// One row for each sample. Its name is in the column "sample".
void addRows(Which which = Which::All)
{
    QTest::addColumn<QString>("sample");
    for (const ExpectedSample& expected : tresktest::expectedSamples()) {
        if (expected.sound || which == Which::All)
            QTest::newRow(qPrintable(expected.name)) << expected.name;
    }
}

const ExpectedSample& expectationOf(const QString& sample)
{
    const auto& all = tresktest::expectedSamples();
    return *std::find_if(all.begin(), all.end(),
                         [&](const ExpectedSample& expected) { return expected.name == sample; });
}

/// What the value of one marker field stands for.
QString unescaped(const QString& value)
{
    QString text;
    for (auto c = value.cbegin(); c != value.cend(); ++c) {
        if (*c != QLatin1Char('\\'))
            text += *c;
        else
            text += *++c == QLatin1Char('n') ? QLatin1Char('\n') : *c;
    }
    return text;
}

/// What a summary says about an embedded file, to be compared with what its marker says.
QStringList textsOf(const QHash<QString, QString>& file)
{
    QStringList texts;
    for (const char* element :
         {"Filename", "Filetype", "Description", "Comment", "CompressedMethod", "UncompressedSize",
          "CompressedSize", "UncompressedMD5", "CompressedMD5"})
        texts.append(file.value(QLatin1String(element)));
    return texts;
}

QStringList textsOf(const FileTag& file)
{
    return {file.filename,
            file.filetype,
            file.desc,
            file.comment,
            file.compression,
            QString::number(file.filesize),
            QString::number(file.cfilesize),
            file.md5file,
            file.md5cfile};
}

/// The embedded documents below @p path, each with its number of sections, depth first.
QStringList embeddedDocuments(const QString& path, const QString& shownPath)
{
    QStringList documents;
    TreskParser parser;
    parser.open(path);
    const QList<FileTag> files = parser.getFiles();
    for (const FileTag& file : files) {
        if (!file.filename.endsWith(QLatin1String(".tresk")))
            continue;
        const auto content = parser.getFileContent(file.id);
        const tresktest::TestDir folder;
        const QString extracted = folder.write(QStringLiteral("embedded"),
                                               content ? *content : QByteArray());
        TreskParser inner;
        const bool sound = inner.open(extracted) && tresktest::unsoundFiles(inner).isEmpty()
            && tresktest::unsoundSections(inner).isEmpty();
        const QString shown = shownPath + QLatin1Char('/') + file.filename;
        documents.append(QStringLiteral("%1: %2 sections, %3 files, %4")
                             .arg(shown)
                             .arg(inner.getNumSections())
                             .arg(inner.getNumFiles())
                             .arg(sound ? QStringLiteral("sound") : QStringLiteral("unsound")));
        documents += embeddedDocuments(extracted, shown);
    }
    return documents;
}

} // namespace

class SamplesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void qpdfAccepts_data() { addRows(Which::Sound); }
    void qpdfAccepts();
    void pdfinfoAccepts_data() { addRows(); }
    void pdfinfoAccepts();
    void staysSmall_data() { addRows(); }
    void staysSmall();
    void hasItsSectionsAndFiles_data() { addRows(); }
    void hasItsSectionsAndFiles();
    void everyChecksumIsRight_data() { addRows(Which::Sound); }
    void everyChecksumIsRight();
    void everySectionEndsWithItsSummary_data() { addRows(); }
    void everySectionEndsWithItsSummary();
    void libraryReadsTheSummaries_data();
    void libraryReadsTheSummaries();
    void summariesAgreeWithTheMarkers_data();
    void summariesAgreeWithTheMarkers();
    void reportStoresFilesBothWays();
    void embeddedDocumentsOpenInTurn();
    void namesAreAsTheyWereGiven();
    void damagedShowsItsThreeDamages();
    void areMadeTheSameAgain_data();
    void areMadeTheSameAgain();
};

void SamplesTest::initTestCase()
{
    QStringList names;
    for (const ExpectedSample& expected : tresktest::expectedSamples())
        names.append(expected.name);
    names.sort();
    QCOMPARE(QDir(QStringLiteral(TRESK_SAMPLES_DIR))
                 .entryList({QStringLiteral("*.pdf")}, QDir::Files, QDir::Name),
             names);
}

void SamplesTest::qpdfAccepts()
{
    QFETCH(QString, sample);
    const auto result = tresktest::run(QStringLiteral("qpdf"),
                                       {QStringLiteral("--check"), samplePath(sample)});
    QVERIFY2(result.started, "qpdf is not installed");
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.errors, QString());
    QVERIFY2(!result.output.contains(QLatin1String("WARNING")), qPrintable(result.output));
}

void SamplesTest::pdfinfoAccepts()
{
    QFETCH(QString, sample);
    const auto result = tresktest::run(QStringLiteral("pdfinfo"), {samplePath(sample)});
    QVERIFY2(result.started, "pdfinfo is not installed");
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.errors, QString());
    QVERIFY2(!result.output.contains(QLatin1String("WARNING"), Qt::CaseInsensitive),
             qPrintable(result.output));
    const QRegularExpression line(QStringLiteral("^Producer: +") + expectationOf(sample).producer,
                                  QRegularExpression::MultilineOption);
    QVERIFY2(result.output.contains(line), qPrintable(result.output));
}

void SamplesTest::staysSmall()
{
    QFETCH(QString, sample);
    QVERIFY(QFileInfo(samplePath(sample)).size() < expectationOf(sample).sizeLimit);
}

void SamplesTest::hasItsSectionsAndFiles()
{
    QFETCH(QString, sample);
    TreskParser parser;
    QVERIFY(parser.open(samplePath(sample)));

    QStringList foundTitles;
    QList<int> foundFiles;
    const QList<SectionTag> sections = parser.getSections();
    for (const SectionTag& section : sections) {
        foundTitles.append(section.title);
        foundFiles.append(static_cast<int>(parser.getFilesInSection(section.id).size()));
    }
    QCOMPARE(foundTitles, expectationOf(sample).titles);
    QCOMPARE(foundFiles, expectationOf(sample).filesPerSection);
    QCOMPARE(parser.getNumFiles(), std::accumulate(foundFiles.begin(), foundFiles.end(), 0));
    QVERIFY(parser.getSectionlessFiles().isEmpty());
}

void SamplesTest::everyChecksumIsRight()
{
    QFETCH(QString, sample);
    TreskParser parser;
    QVERIFY(parser.open(samplePath(sample)));
    QVERIFY(parser.getNumFiles() > 0);
    QCOMPARE(tresktest::unsoundFiles(parser), QStringList());
    QCOMPARE(tresktest::unsoundSections(parser), QStringList());
}

void SamplesTest::everySectionEndsWithItsSummary()
{
    QFETCH(QString, sample);
    TreskParser parser;
    QVERIFY(parser.open(samplePath(sample)));
    for (int section = 0; section < parser.getNumSections(); ++section) {
        const QByteArray summary = tresktest::summaryOf(parser, section);
        const QString title = unescaped(parser.getSection(section)->title).toHtmlEscaped();
        QVERIFY(summary.contains("<Title>" + title.toUtf8() + "</Title>"));
    }
}

void SamplesTest::libraryReadsTheSummaries_data()
{
    summariesAgreeWithTheMarkers_data();
}

void SamplesTest::libraryReadsTheSummaries()
{
    QFETCH(QString, sample);
    TreskParser parser;
    QVERIFY(parser.open(samplePath(sample)));
    const QList<tresk::Summary> summaries = tresk::SummaryCreator().createSummaries(parser);
    QCOMPARE(static_cast<int>(summaries.size()), parser.getNumSections());
    for (const tresk::Summary& summary : summaries) {
        const auto expected = tresktest::parseSummary(tresktest::summaryOf(parser, summary.tagId));
        QVERIFY(summary.fromXml);
        QCOMPARE(summary.md5Signature, expected.signature);
        const auto compare = [&expected](const char* element, const QString& value) {
            QCOMPARE(value, expected.step.value(QLatin1String(element)));
        };
        compare("Timestamp", summary.timestamp);
        compare("Title", summary.title);
        compare("Description", summary.description);
        compare("Command", summary.command);
        compare("Tool", summary.tool);
        compare("Host", summary.host);
        compare("User", summary.user);
        compare("TreskRootFile", summary.treskRootFile);
        compare("PDFProducer", summary.pdfProducer);

        // Each file that is said to be embedded is found in the order of the document.
        QList<int> found;
        QCOMPARE(summary.files.size(), expected.files.size());
        for (int i = 0; i < summary.files.size(); ++i) {
            QCOMPARE(summary.files[i].filename,
                     expected.files[i].value(QStringLiteral("Filename")));
            if (summary.files[i].embedded)
                found.append(summary.files[i].tagId);
        }
        QList<int> ids;
        const QList<FileTag> files = parser.getFilesInSection(summary.tagId);
        for (const FileTag& file : files)
            ids.append(file.id);
        ids.removeLast();
        QCOMPARE(found, ids);
    }
}

void SamplesTest::summariesAgreeWithTheMarkers_data()
{
    QTest::addColumn<QString>("sample");
    for (const ExpectedSample& expected : tresktest::expectedSamples()) {
        // Its summaries hold control characters, which XML does not allow.
        if (expected.name != QLatin1String("names.pdf"))
            QTest::newRow(qPrintable(expected.name)) << expected.name;
    }
}

void SamplesTest::summariesAgreeWithTheMarkers()
{
    QFETCH(QString, sample);
    TreskParser parser;
    QVERIFY(parser.open(samplePath(sample)));
    for (int section = 0; section < parser.getNumSections(); ++section) {
        const QByteArray bytes = tresktest::summaryOf(parser, section);
        const auto summary = tresktest::parseSummary(bytes);
        QCOMPARE(summary.error, QString());
        for (const char* element : {"Timestamp", "Command", "Tool", "ToolPath", "Host", "User",
                                    "TreskRootFile", "Creator", "PDFProducer"})
            QVERIFY2(!summary.step.value(QLatin1String(element)).isEmpty(), element);

        QList<QStringList> described;
        for (const auto& file : summary.files) {
            if (file.value(QStringLiteral("Embedded")) == QLatin1String("1"))
                described.append(textsOf(file));
        }
        QList<QStringList> marked;
        const QList<FileTag> files = parser.getFilesInSection(section);
        for (const FileTag& file : files)
            marked.append(textsOf(file));
        marked.removeLast();
        QCOMPARE(described, marked);

        const auto start = bytes.indexOf(" <Workflowstep>");
        const QByteArray step = bytes.mid(start, bytes.indexOf(" <MD5Signature>") - start);
        QCOMPARE(summary.signature, QString::fromLatin1(tresktest::md5Hex(step)));
    }
}

void SamplesTest::reportStoresFilesBothWays()
{
    TreskParser parser;
    QVERIFY(parser.open(samplePath(QStringLiteral("report.pdf"))));
    QStringList plain;
    QStringList compressed;
    const QList<FileTag> files = parser.getFiles();
    for (const FileTag& file : files) {
        const bool flate = file.compression == QLatin1String("flate");
        (flate ? compressed : plain).append(file.filename);
    }
    QCOMPARE(plain,
             (QStringList{QStringLiteral("trial-017.ini"), QStringLiteral("findings-017.csv"),
                          QStringLiteral("plot.py"), QStringLiteral("vibration-plot.pdf"),
                          QStringLiteral("thumbnail.png"), QStringLiteral("preview.png")}));
    QCOMPARE(compressed.count(QStringLiteral("ws_summary.xml")), 4);
    QCOMPARE(compressed.size(), files.size() - plain.size());
}

void SamplesTest::embeddedDocumentsOpenInTurn()
{
    QCOMPARE(embeddedDocuments(samplePath(QStringLiteral("nested.pdf")), QString()),
             (QStringList{
                 QStringLiteral("/vibration-plot.pdf.tresk: 1 sections, 2 files, sound"),
                 QStringLiteral("/housing-drawing.pdf.tresk: 2 sections, 4 files, sound"),
                 QStringLiteral(
                     "/housing-drawing.pdf.tresk/label.pdf.tresk: 1 sections, 2 files, sound")}));
}

void SamplesTest::namesAreAsTheyWereGiven()
{
    TreskParser parser;
    QVERIFY(parser.open(samplePath(QStringLiteral("names.pdf"))));
    QStringList names;
    const QList<FileTag> files = parser.getFiles();
    for (const FileTag& file : files) {
        if (file.filename != QLatin1String("ws_summary.xml"))
            names.append(unescaped(file.filename));
    }
    QCOMPARE(names, tresktest::awkwardNames());
}

void SamplesTest::damagedShowsItsThreeDamages()
{
    const QString path = samplePath(QStringLiteral("damaged.pdf"));
    TreskParser parser;
    QVERIFY(parser.open(path));
    const QString settings = QStringLiteral("trial-017.ini");
    const QString drawing = QStringLiteral("housing-drawing.ps");
    QCOMPARE(tresktest::unsoundFiles(parser), (QStringList{settings, drawing}));

    // A changed byte: the content is there, but has another digest.
    QCOMPARE(parser.getFile(0)->filename, settings);
    QVERIFY(parser.getFileContent(0));
    QVERIFY(parser.calcChecksumsForFile(0).first != parser.getFile(0)->md5file);

    // A broken stream: there is no content.
    QCOMPARE(parser.getFile(2)->filename, drawing);
    QVERIFY(!parser.getFileContent(2));

    // A link that is off: only tolerant reading follows it.
    QCOMPARE(parser.getNumSections(), 3);
    TreskParser strict(tresk::ParseStrict);
    QVERIFY(strict.open(path));
    QCOMPARE(strict.getNumSections(), 1);
    QVERIFY(parser.getSection(0)->pos - parser.getSection(0)->previousmarker
            != parser.getSection(1)->pos);
    QCOMPARE(parser.getSection(1)->pos - parser.getSection(1)->previousmarker,
             parser.getSection(2)->pos);

    // The sections around the two damaged files show it too, and nothing else does.
    QCOMPARE(tresktest::unsoundSections(parser),
             (QStringList{QStringLiteral("Draw the housing"), QStringLiteral("Plan the trial")}));
}

void SamplesTest::areMadeTheSameAgain_data()
{
    QTest::addColumn<QString>("level");
    QTest::newRow("same compression") << QStringLiteral("6");
    // Stands for another version of zlib: other stored bytes, other positions.
    QTest::newRow("other compression") << QStringLiteral("1");
}

void SamplesTest::areMadeTheSameAgain()
{
    QFETCH(QString, level);
    const tresktest::TestDir folder;
    const auto result = tresktest::run(
        QStringLiteral(TRESK_MAKE_SAMPLES),
        {QStringLiteral("--level"), level,
         QDir(QStringLiteral(TRESK_SAMPLES_DIR)).filePath(QStringLiteral("base")),
         folder.path(QString())});
    QVERIFY2(result.exitCode == 0, qPrintable(result.errors));
    for (const ExpectedSample& expected : tresktest::expectedSamples()) {
        const QString made = folder.path(expected.name);
        const QString committed = samplePath(expected.name);
        if (level != QLatin1String("6"))
            QVERIFY(tresktest::readFile(made) != tresktest::readFile(committed));
        QCOMPARE(tresktest::describeDocument(made), tresktest::describeDocument(committed));
    }
}

QTEST_GUILESS_MAIN(SamplesTest)

#include "tst_samples.moc"
