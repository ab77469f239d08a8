#include "DocumentWriter.h"
#include "MessageCapture.h"
#include "QueueEvents.h"
#include "QueueModel.h"
#include "RandomDocument.h"
#include "TestFiles.h"

#include <tresk/ExtractionQueue.h>
#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QDir>
#include <QRandomGenerator>
#include <QTest>

#include <limits>

using tresk::ExtractionQueue;
using tresk::SavedFile;
using tresk::TreskParser;
using tresk::ValidationQueue;
using tresktest::DocumentView;
using tresktest::DocumentWriter;
using tresktest::ExtractionModel;
using tresktest::FileSpec;
using tresktest::QueueEvents;
using tresktest::randomBytes;
using tresktest::SectionSpec;
using tresktest::TestDir;
using tresktest::ValidationModel;

namespace {

const int largest = std::numeric_limits<int>::max();

template <typename List>
typename List::value_type oneOf(QRandomGenerator& random, const List& list)
{
    return list.at(random.bounded(static_cast<int>(list.size())));
}

/// Ids from -1 through one behind the last.
QList<int> randomIds(QRandomGenerator& random, int count)
{
    QList<int> ids;
    for (int i = random.bounded(6); i > 0; --i)
        ids.append(random.bounded(-1, count + 1));
    return ids;
}

/// Appends a section whose region ends somewhere around its marker.
QByteArray withRegionAtMarker(const QByteArray& document, QRandomGenerator& random)
{
    static const QList<int> distances = {-1, 0, 0, 0, 1, 2, 100, 300};
    DocumentWriter doc(document);
    doc.endLine();
    SectionSpec section;
    section.regionStart = random.bounded(doc.position() + 1);
    section.regionSize = qMax(0,
                              doc.position() + 1 - *section.regionStart + oneOf(random, distances));
    doc.writeSection(section);
    return doc.bytes();
}

/// Calls process() of both so many times and adds what it returns to their events.
template <typename Queue, typename Model>
void processBoth(Queue& queue, QueueEvents& events, Model& model, int steps)
{
    for (; steps > 0; --steps) {
        events.add(QString::number(static_cast<int>(queue.process())));
        model.add(QString::number(static_cast<int>(model.process())));
    }
}

/// A document whose files take a few steps to extract, some of them damaged.
QByteArray largeDocument(QRandomGenerator& random)
{
    DocumentWriter doc;
    doc.writeHeader();
    for (int i = random.bounded(1, 5); i > 0; --i) {
        const int size = random.bounded(4) == 0 ? 100000 * random.bounded(3)
                                                : random.bounded(350000);
        const QByteArray content = randomBytes(random, 997).repeated(size / 997 + 1).left(size);
        FileSpec file = FileSpec::plain(QStringLiteral("file"), content);
        if (random.bounded(2) == 0) {
            file.compression = "flate";
            file.stored = tresktest::deflated(content, random.bounded(3) == 0 ? 6 : 0);
        }
        if (random.bounded(6) == 0)
            file.with(random.bounded(2) == 0 ? "filesize" : "cfilesize",
                      QByteArray::number(random.bounded(500000)));
        if (random.bounded(8) == 0)
            file.with("md5cfile", "");
        doc.writeFile(file);
    }
    QByteArray document = doc.bytes();
    for (int i = random.bounded(4); i > 0; --i) {
        const int position = random.bounded(static_cast<int>(document.size()));
        document[position] = static_cast<char>(random.bounded(256));
    }
    if (random.bounded(4) == 0)
        document.chop(random.bounded(static_cast<int>(document.size())));
    return document;
}

} // namespace

/// The queues beside their models, with operations at random on documents put together and
/// damaged at random.
class TestQueuesRandom : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void validation_data() { seeds(25); }
    void validation();
    void extraction_data() { seeds(10); }
    void extraction();
    void extractionInSeveralSteps_data() { seeds(12); }
    void extractionInSeveralSteps();

private:
    /// A document that is open, and its view; empty where it cannot be opened.
    struct Opened {
        TreskParser parser;
        DocumentView view;
    };

    static TreskParser* parserOf(Opened* opened) { return opened ? &opened->parser : nullptr; }
    static DocumentView* viewOf(Opened* opened) { return opened ? &opened->view : nullptr; }
    static void seeds(quint32 count)
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= count; ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }

    void open(Opened& opened, const QByteArray& document)
    {
        const QString name = QStringLiteral("document %1").arg(m_documents++);
        opened.parser.open(m_dir.write(name, document));
        opened.view = {document, opened.parser.getSections(), opened.parser.getFiles()};
    }
    void openRandom(Opened& opened, QRandomGenerator& random)
    {
        QByteArray document = tresktest::randomDocument(random);
        if (random.bounded(2) == 0)
            tresktest::mutate(document, random);
        if (random.bounded(3) == 0)
            document = withRegionAtMarker(document, random);
        open(opened, document);
    }
    QList<SavedFile> randomSavedFiles(QRandomGenerator& random) const;
    QHash<int, QString> randomTargets(QRandomGenerator& random, int count) const;
    void compareValidation(QRandomGenerator& random);
    void compareExtraction(QRandomGenerator& random, Opened& first, Opened& second);

    TestDir m_dir;
    QStringList m_savedPaths;
    QString m_targetFolder;
    int m_documents = 0;
    int m_targetFolders = 0;
};

void TestQueuesRandom::initTestCase()
{
    m_savedPaths = QStringList{m_dir.write(QStringLiteral("saved 0"), ""),
                               m_dir.write(QStringLiteral("saved 100"), QByteArray(100, 's')),
                               m_dir.path(QString()), m_dir.path(QStringLiteral("missing"))};
}

QList<SavedFile> TestQueuesRandom::randomSavedFiles(QRandomGenerator& random) const
{
    static const QList<int> sizes = {-200, -1, 0, 1, 50, 99, 100, 100, 100, 101, 300};
    QList<SavedFile> files;
    for (int i = random.bounded(4); i > 0; --i) {
        const int size = oneOf(random, sizes);
        const int digested = random.bounded(3) == 0 ? 0 : qBound(0, size, 100);
        const QByteArray md5 = tresktest::md5Hex(QByteArray(digested, 's'));
        files.append(SavedFile{oneOf(random, m_savedPaths), QString::fromLatin1(md5), size});
    }
    return files;
}

void TestQueuesRandom::compareValidation(QRandomGenerator& random)
{
    Opened first;
    Opened second;
    openRandom(first, random);
    openRandom(second, random);
    Opened* current = random.bounded(10) == 0 ? nullptr : &first;

    static const QList<int> blockSizes = {-3, 0, 1, 7, 20, 64, 99, 100, 1000, largest};
    const int blockSize = oneOf(random, blockSizes);
    ValidationQueue queue(parserOf(current), blockSize);
    QueueEvents events(queue);
    ValidationModel model(viewOf(current), blockSize);
    for (int i = 0; i < 60; ++i) {
        switch (random.bounded(16)) {
        case 0:
            queue.cancelValidation();
            model.cancelValidation();
            break;
        case 1:
            current = oneOf(random, QList<Opened*>{&first, &first, &second, nullptr});
            queue.reset(parserOf(current));
            model.reset(viewOf(current));
            break;
        case 2:
        case 3:
            current = oneOf(random, QList<Opened*>{&first, &second, nullptr});
            queue.repopulate(parserOf(current));
            model.repopulate(viewOf(current));
            break;
        case 4:
        case 5:
        case 6: {
            const QList<int> files = randomIds(random, current ? current->parser.getNumFiles() : 2);
            const QList<int> sections = randomIds(random,
                                                  current ? current->parser.getNumSections() : 2);
            queue.addValidatees(files, sections);
            model.addValidatees(files, sections);
            break;
        }
        case 7:
        case 8: {
            const QList<SavedFile> files = randomSavedFiles(random);
            queue.addValidatees(files);
            model.addValidatees(files);
            break;
        }
        default:
            processBoth(queue, events, model, random.bounded(1, 12));
            break;
        }
        QCOMPARE(events.take(), model.take());
    }
}

void TestQueuesRandom::validation()
{
    QFETCH(quint32, seed);
    const tresktest::MessageCapture quiet; // Qt says what it cannot open
    QRandomGenerator random(seed);
    for (int i = 0; i < 12; ++i) {
        compareValidation(random);
        if (QTest::currentTestFailed())
            return;
    }
}

QHash<int, QString> TestQueuesRandom::randomTargets(QRandomGenerator& random, int count) const
{
    QHash<int, QString> targets;
    const QList<int> ids = randomIds(random, count);
    for (const int id : ids) {
        const QString folder = random.bounded(6) == 0 ? QStringLiteral("missing") : m_targetFolder;
        targets.insert(id, m_dir.path(folder + QStringLiteral("/%1").arg(random.bounded(4))));
    }
    return targets;
}

void TestQueuesRandom::compareExtraction(QRandomGenerator& random, Opened& first, Opened& second)
{
    m_targetFolder = QStringLiteral("targets %1").arg(m_targetFolders++);
    QVERIFY(QDir(m_dir.path(QString())).mkdir(m_targetFolder));
    Opened* current = &first;
    ExtractionQueue queue(parserOf(current));
    QueueEvents events(queue);
    ExtractionModel model(viewOf(current));
    for (int i = 0; i < 30; ++i) {
        switch (random.bounded(16)) {
        case 0:
            queue.cancelExtraction();
            model.cancelExtraction();
            break;
        case 1:
            current = oneOf(random, QList<Opened*>{&first, &first, &second, nullptr});
            queue.reset(parserOf(current));
            model.reset(viewOf(current));
            break;
        case 2:
        case 3:
        case 4:
        case 5: {
            const int count = current ? current->parser.getNumFiles() : 2;
            const QHash<int, QString> targets = randomTargets(random, count);
            queue.addExtractees(targets);
            model.addExtractees(targets);
            break;
        }
        default:
            processBoth(queue, events, model, random.bounded(1, 6));
            break;
        }
        QCOMPARE(events.take(), model.take());
    }
    for (auto file = model.written().cbegin(); file != model.written().cend(); ++file)
        QVERIFY2(tresktest::readFile(file.key()) == file.value(), qPrintable(file.key()));
}

void TestQueuesRandom::extraction()
{
    QFETCH(quint32, seed);
    const tresktest::MessageCapture quiet;
    QRandomGenerator random(1000 + seed);
    for (int i = 0; i < 10; ++i) {
        Opened first;
        Opened second;
        openRandom(first, random);
        openRandom(second, random);
        compareExtraction(random, first, second);
        if (QTest::currentTestFailed())
            return;
    }
}

void TestQueuesRandom::extractionInSeveralSteps()
{
    QFETCH(quint32, seed);
    const tresktest::MessageCapture quiet;
    QRandomGenerator random(2000 + seed);
    for (int i = 0; i < 3; ++i) {
        Opened first;
        Opened second;
        open(first, largeDocument(random));
        open(second, largeDocument(random));
        compareExtraction(random, first, second);
        if (QTest::currentTestFailed())
            return;
    }
}

QTEST_GUILESS_MAIN(TestQueuesRandom)

#include "tst_queues_random.moc"
