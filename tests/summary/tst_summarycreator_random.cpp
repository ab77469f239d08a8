#include "AlikeFiles.h"
#include "CreatorModel.h"
#include "DebugLines.h"
#include "OpenedDocument.h"
#include "SummaryText.h"
#include "SummaryXml.h"

#include <QRandomGenerator>
#include <QTest>

using tresk::Summary;
using tresktest::AlikeFiles;
using tresktest::CreatorModel;
using tresktest::DocumentWriter;
using tresktest::element;
using tresktest::FileElement;
using tresktest::FileSpec;
using tresktest::OpenedDocument;
using tresktest::SectionSpec;
using tresktest::textOf;

namespace {

class RandomChoices {
public:
    explicit RandomChoices(QRandomGenerator& random)
        : m_random(random)
    {
    }

    int below(int count) { return m_random.bounded(count); }

private:
    QRandomGenerator& m_random;
};

/// Puts documents together in which many files are alike.
class Maker {
public:
    explicit Maker(QRandomGenerator& random)
        : m_choices(random)
        , m_files(m_choices)
    {
    }

    DocumentWriter document()
    {
        DocumentWriter document = tresktest::newDocument();
        int lastStart = document.position();
        for (int i = m_choices.below(5); i > 0; --i) {
            if (m_files.oneIn(4))
                document.writeFile(m_files.oneIn(8) ? summaryOf({}) : m_files.file());
            SectionSpec section = tresktest::stepWith(filesOfStep());
            section.creator = QStringLiteral("creator %1").arg(i);
            if (m_files.oneIn(4))
                section.regionStart = lastStart;
            lastStart = document.position();
            document.writeSection(section);
        }
        if (m_files.oneIn(4))
            document.writeFile(m_files.file());
        return document;
    }

private:
    FileElement elementOf(const FileSpec& file)
    {
        FileElement element = m_files.descriptionOf(file);
        if (m_files.oneIn(8))
            element.with("Unknown", "x");
        if (file.raw.value("filename") == "a>-<b" && m_files.oneIn(2)) {
            // Another name and checksum with the same key.
            const QByteArray md5 = file.raw.value("md5file", tresktest::md5Hex(file.content));
            element.with("Filename", "a").with("UncompressedMD5", "b>-<" + md5);
        }
        return element;
    }

    FileSpec summaryOf(const QVector<FileSpec>& files)
    {
        QByteArray content = element("Title", "summary");
        for (int i = m_choices.below(9); i > 0; --i) {
            const int which = m_choices.below(static_cast<int>(files.size()) + 1);
            content += elementOf(which < files.size() ? files.at(which) : m_files.file()).xml();
        }
        QByteArray xml = tresktest::summaryXml(content);
        if (m_files.oneIn(5))
            xml = m_files.oneOf(
                {"", "<trxchange/>", "<trxchange><Workflowstep/></trxchange>", "<a>"});
        return m_files.summary(xml);
    }

    QVector<FileSpec> filesOfStep()
    {
        QVector<FileSpec> files = m_files.files(7);
        if (!m_files.oneIn(6))
            files += summaryOf(files);
        return files;
    }

    RandomChoices m_choices;
    AlikeFiles<RandomChoices> m_files;
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
