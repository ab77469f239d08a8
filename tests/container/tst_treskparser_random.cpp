#include "MessageCapture.h"
#include "ParserModel.h"
#include "RandomDocument.h"
#include "RecordText.h"
#include "TestFiles.h"
#include "Watched.h"

#include <tresk/TreskParser.h>

#include <QRandomGenerator>
#include <QTest>

using tresk::FileTag;
using tresk::SectionTag;
using tresk::TreskParser;
using tresktest::isWatched;
using tresktest::ParserModel;
using tresktest::TestDir;
using tresktest::textOf;

namespace {

/// Contents are compared up to this size: Qt makes room for as many bytes as a marker says.
const int largestContent = 100 * 1000;

QString textOfContent(bool exists, const QByteArray& content)
{
    return exists ? textOf(content) + QLatin1Char('\n') : QStringLiteral("(null)\n");
}

/// All that @p parser says about the document that it has open.
QString listing(TreskParser& parser)
{
    QString text = textOf(parser.getSections()) + textOf(parser.getFiles());
    for (int id = 0; id < parser.getNumSections(); ++id)
        text += QStringLiteral("in %1:\n").arg(id) + textOf(parser.getFilesInSection(id));
    text += QStringLiteral("sectionless:\n") + textOf(parser.getSectionlessFiles());
    const QList<FileTag> files = parser.getFiles();
    for (const FileTag& file : files) {
        if (file.filesize > largestContent)
            continue;
        const QSharedPointer<QByteArray> content = parser.getFileContent(file.id);
        text += textOfContent(!content.isNull(), content ? *content : QByteArray());
        const QPair<QString, QString> checksums = parser.calcChecksumsForFile(file.id);
        text += checksums.first + QLatin1Char(' ') + checksums.second + QLatin1Char('\n');
    }
    return text;
}

QString listing(const ParserModel& model)
{
    QString text = textOf(model.sections()) + textOf(model.files());
    const QList<SectionTag> sections = model.sections();
    for (const SectionTag& section : sections)
        text += QStringLiteral("in %1:\n").arg(section.id) + textOf(model.filesInSection(section));
    text += QStringLiteral("sectionless:\n") + textOf(model.sectionlessFiles());
    const QList<FileTag> files = model.files();
    for (const FileTag& file : files) {
        if (file.filesize > largestContent)
            continue;
        const std::optional<QByteArray> content = model.content(file);
        text += textOfContent(content.has_value(), content.value_or(QByteArray()));
        const QPair<QString, QString> checksums = model.checksums(file);
        text += checksums.first + QLatin1Char(' ') + checksums.second + QLatin1Char('\n');
    }
    return text;
}

} // namespace

/// The parser beside its model, on documents put together and damaged at random.
class TestTreskParserRandom : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void documents_data();
    void documents();
    void damagedDocuments_data() { documents_data(); }
    void damagedDocuments();

private:
    void compare(const QByteArray& document);

    TestDir m_dir;
    TreskParser m_strict{tresk::ParseStrict};
    TreskParser m_tolerant{tresk::ParseTolerant};
    ParserModel m_strictModel{tresk::ParseStrict};
    ParserModel m_tolerantModel{tresk::ParseTolerant};
};

void TestTreskParserRandom::compare(const QByteArray& document)
{
    // Qt reports broken streams as warnings, of which there are many here.
    const tresktest::MessageCapture quiet;
    const QString path = m_dir.write(QStringLiteral("document"), document);
    QCOMPARE(m_strict.open(path), m_strictModel.open(document));
    QCOMPARE(listing(m_strict), listing(m_strictModel));
    QCOMPARE(m_tolerant.open(path), m_tolerantModel.open(document));
    QCOMPARE(listing(m_tolerant), listing(m_tolerantModel));
}

void TestTreskParserRandom::documents_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 20; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void TestTreskParserRandom::documents()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    for (int i = 0; i < (isWatched() ? 20 : 50); ++i) {
        compare(tresktest::randomDocument(random));
        if (QTest::currentTestFailed())
            return;
    }
}

void TestTreskParserRandom::damagedDocuments()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(1000 + seed);
    for (int i = 0; i < (isWatched() ? 8 : 20); ++i) {
        const QByteArray document = tresktest::randomDocument(random);
        for (int j = 0; j < 8; ++j) {
            QByteArray damaged = document;
            tresktest::mutate(damaged, random);
            compare(damaged);
            if (QTest::currentTestFailed())
                return;
        }
    }
}

QTEST_GUILESS_MAIN(TestTreskParserRandom)

#include "tst_treskparser_random.moc"
