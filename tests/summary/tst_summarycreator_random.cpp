#include "CreatorModel.h"
#include "DebugLines.h"
#include "OpenedDocument.h"
#include "SummaryText.h"
#include "SummaryXml.h"

#include <QRandomGenerator>
#include <QTest>

using tresk::Summary;
using tresktest::CreatorModel;
using tresktest::DocumentWriter;
using tresktest::element;
using tresktest::FileElement;
using tresktest::FileSpec;
using tresktest::OpenedDocument;
using tresktest::SectionSpec;
using tresktest::textOf;

namespace {

/// Puts documents together in which many files are alike.
class Maker {
public:
    explicit Maker(QRandomGenerator& random)
        : m_random(random)
    {
    }

    DocumentWriter document()
    {
        DocumentWriter document = tresktest::newDocument();
        int lastStart = document.position();
        for (int i = number(0, 4); i > 0; --i) {
            if (oneIn(4))
                document.writeFile(oneIn(8) ? summaryOf({}) : file());
            SectionSpec section = tresktest::stepWith(filesOfStep());
            section.creator = QStringLiteral("creator %1").arg(i);
            if (oneIn(4))
                section.regionStart = lastStart;
            lastStart = document.position();
            document.writeSection(section);
        }
        if (oneIn(4))
            document.writeFile(file());
        return document;
    }

private:
    int number(int from, int to) { return m_random.bounded(from, to + 1); }
    bool oneIn(int count) { return m_random.bounded(count) == 0; }
    QByteArray oneOf(const QList<QByteArray>& list)
    {
        return list.at(m_random.bounded(static_cast<int>(list.size())));
    }

    QByteArray digest() { return oneOf({QByteArray(32, 'a'), QByteArray(32, 'b')}); }

    FileSpec file()
    {
        FileSpec file = FileSpec::plain(QStringLiteral("a"), oneOf({"", "x", "y"}));
        if (oneIn(3))
            file.compression = "flate";
        if (oneIn(3))
            file.desc = QStringLiteral("description");
        if (oneIn(3))
            file.comment = QStringLiteral("comment");
        if (oneIn(3))
            file.with("md5cfile", digest());
        if (oneIn(3))
            file.with("filename", oneOf({"a>-<b", "a>-<" + digest(), "ws_summary.xml"}));
        if (oneIn(3))
            file.with("md5file", oneIn(2) ? digest() : QByteArray());
        if (oneIn(8))
            file.with("filesize", QByteArray());
        return file;
    }

    FileElement elementOf(const FileSpec& file)
    {
        FileElement element(file, oneIn(2) ? "InFile" : "OutFile");
        if (oneIn(6))
            element.with("Embedded", "0");
        if (oneIn(6))
            element.with(oneOf({"Description", "Comment", "Filetype"}), "description");
        if (oneIn(6))
            element.with(oneOf({"CompressedSize", "CompressedMD5", "CompressedMethod"}), "1");
        if (oneIn(6))
            element.with("Filename", "a");
        if (oneIn(6))
            element.with("UncompressedMD5", oneOf({digest(), "b>-<" + digest(), digest() + ">-<"}));
        if (oneIn(8))
            element.with("Unknown", "x");
        if (file.raw.value("filename") == "a>-<b" && oneIn(2)) {
            // Another name and checksum with the same key.
            const QByteArray md5 = file.raw.value("md5file", tresktest::md5Hex(file.content));
            element.with("Filename", "a").with("UncompressedMD5", "b>-<" + md5);
        }
        return element;
    }

    FileSpec summaryOf(const QVector<FileSpec>& files)
    {
        QByteArray content = element("Title", "summary");
        for (int i = number(0, 8); i > 0; --i) {
            const int which = number(0, static_cast<int>(files.size()));
            content += elementOf(which < files.size() ? files.at(which) : file()).xml();
        }
        QByteArray xml = tresktest::summaryXml(content);
        if (oneIn(5))
            xml = oneOf({"", "<trxchange/>", "<trxchange><Workflowstep/></trxchange>", "<a>"});
        FileSpec summary = tresktest::summaryFile(xml);
        if (oneIn(3))
            summary.compression = oneIn(3) ? "lzma" : "flate";
        return summary;
    }

    QVector<FileSpec> filesOfStep()
    {
        QVector<FileSpec> files;
        for (int i = number(0, 6); i > 0; --i)
            files += files.isEmpty() || oneIn(2) ? file() : files.last();
        if (!oneIn(6))
            files += summaryOf(files);
        return files;
    }

    QRandomGenerator& m_random;
};

int tied(const QList<Summary>& summaries)
{
    int count = 0;
    for (const Summary& summary : summaries) {
        for (const tresk::FileSummary& file : summary.files)
            count += file.embedded && file.tagId >= 0 ? 1 : 0;
    }
    return count;
}

} // namespace

/// The creator beside its model, on documents put together at random.
class TestSummaryCreatorRandom : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void documents_data();
    void documents();
};

void TestSummaryCreatorRandom::documents_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 10; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void TestSummaryCreatorRandom::documents()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    int tiedFiles = 0;
    int lines = 0;
    for (int i = 0; i < 50; ++i) {
        OpenedDocument opened(Maker(random).document());
        CreatorModel model;
        const QList<Summary> expected = model.createSummaries(opened.parser);
        const tresktest::MessageCapture capture;
        const QList<Summary> actual = opened.summaries();
        QCOMPARE(textOf(actual), textOf(expected));
        QCOMPARE(tresktest::debugLines(capture), model.debugLines());
        tiedFiles += tied(actual);
        lines += static_cast<int>(model.debugLines().size());
    }
    // The documents are such that there is something to compare.
    QVERIFY(tiedFiles > 50);
    QVERIFY(lines > 50);
}

QTEST_GUILESS_MAIN(TestSummaryCreatorRandom)

#include "tst_summarycreator_random.moc"
