#include "../container/QueueEvents.h"
#include "../summary/SummaryXml.h"
#include "Histories.h"
#include "Latin1.h"
#include "Watched.h"

#include <tresk/ArgfileReader.h>
#include <tresk/ExtractionQueue.h>
#include <tresk/SummaryCreator.h>
#include <tresk/TreskDiff.h>
#include <tresk/TreskFindQuery.h>
#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>
#include <tresk/WorkflowTree.h>
#include <tresk/WorkflowstepCosts.h>

#include <QDir>
#include <QTest>

#include <thread>

using tresk::ExtractionQueue;
using tresk::TreskParser;
using tresk::ValidationQueue;
using tresk::WorkflowTree;
using tresktest::embedded;
using tresktest::FileSpec;
using tresktest::history;
using tresktest::isWatched;
using tresktest::latin1;
using tresktest::nested;
using tresktest::QueueEvents;
using tresktest::step;
using tresktest::TestDir;

namespace {

QByteArray someBytes(int size)
{
    QByteArray bytes;
    for (int i = 0; bytes.size() < size; ++i)
        bytes += QByteArray::number(i * i) + ' ';
    return bytes;
}

/// One thread's work, with objects that no other thread uses, and what comes of it as text.
class Work {
public:
    Work(const QStringList& documents, const QString& folder)
        : m_documents(documents)
        , m_folder(folder)
    {
    }

    QStringList results() const { return m_results; }

    void run()
    {
        TreskParser first;
        TreskParser second;
        add(QString::number(first.open(m_documents.at(0))));
        add(QString::number(second.open(m_documents.at(1))));
        for (TreskParser* parser : {&first, &second, &first}) {
            readContent(*parser);
            askQueries(*parser);
        }
        validate(first, second);
        extract(first, second);
        compareTrees();
        readArguments();
    }

private:
    void add(const QString& result)
    {
        m_results += QString(result).replace(m_folder, latin1("FOLDER"));
    }

    void readContent(TreskParser& parser)
    {
        const auto sections = parser.getSections();
        for (const tresk::SectionTag& section : sections)
            add(section.title + latin1(" ") + section.md5section);
        for (int i = 0; i < parser.getNumFiles(); ++i) {
            const QSharedPointer<QByteArray> content = parser.getFileContent(i);
            add(content ? QString::number(qHash(*content, 1)) : latin1("no content"));
            const QPair<QString, QString> checksums = parser.calcChecksumsForFile(i);
            add(checksums.first + latin1(" ") + checksums.second);
            add(QString::number(parser.writeFileToDisk(i, m_folder + latin1("/written"))));
        }
    }

    void askQueries(TreskParser& parser)
    {
        const QList<tresk::Summary> summaries = tresk::SummaryCreator().createSummaries(parser);
        for (const tresk::Summary& summary : summaries) {
            add(summary.title + latin1(" ") + summary.md5Signature);
            for (const tresk::FileSummary& file : summary.files) {
                tresk::printFileSummary(file);
                add(file.filename + latin1(" ") + file.filePurpose);
            }
        }
        for (const char* text :
             {":title %contains e", "a:iswfs && b:iswfs && a:title != b:title",
              "s:iswfs && (f:isoutfile || f:filename == in.dat) && f:parentid == s:tagid",
              ":timestamp >= 2024-03-06", ":title ==", ":userattrs == 'v?lue'"}) {
            const tresk::TreskFindQuery query(latin1(text));
            for (const tresk::QueryError& error : query.getErrors())
                add(error.errorMessage());
            QHash<QString, QString> bindings;
            add(QString::number(query.matches(parser, &bindings)));
            add(QString::number(query.matches(summaries, &bindings)));
            QStringList names = bindings.keys();
            names.sort();
            add(names.join(QLatin1Char(' ')));
        }
    }

    void validate(TreskParser& first, TreskParser& second)
    {
        ValidationQueue firstQueue(&first, 1000);
        ValidationQueue secondQueue(&second, 700);
        QueueEvents firstEvents(firstQueue);
        QueueEvents secondEvents(secondQueue);
        runTogether(firstQueue, firstEvents, secondQueue, secondEvents);
    }

    void extract(TreskParser& first, TreskParser& second)
    {
        ExtractionQueue firstQueue(&first);
        ExtractionQueue secondQueue(&second);
        QueueEvents firstEvents(firstQueue);
        QueueEvents secondEvents(secondQueue);
        firstQueue.addExtractees(targets(first, latin1("first")));
        secondQueue.addExtractees(targets(second, latin1("second")));
        runTogether(firstQueue, firstEvents, secondQueue, secondEvents);
        const QDir folder(m_folder);
        const QStringList names = folder.entryList(QDir::Files, QDir::Name);
        for (const QString& name : names)
            add(name + latin1(" ")
                + QString::number(qHash(tresktest::readFile(folder.filePath(name)), 1)));
    }

    QHash<int, QString> targets(const TreskParser& parser, const QString& prefix) const
    {
        QHash<int, QString> targets;
        for (int i = 0; i < parser.getNumFiles(); ++i)
            targets.insert(i, m_folder + QLatin1Char('/') + prefix + QString::number(i));
        return targets;
    }

    template <typename Queue>
    void runTogether(Queue& first, QueueEvents& firstEvents, Queue& second,
                     QueueEvents& secondEvents)
    {
        bool more = true;
        while (more) {
            const bool firstGoesOn = first.process();
            more = second.process() || firstGoesOn;
            add(firstEvents.take());
            add(secondEvents.take());
        }
    }

    void compareTrees()
    {
        WorkflowTree first;
        WorkflowTree second;
        first.treeFromTreskFile(m_documents.at(0));
        second.treeFromTreskFile(m_documents.at(1));
        add(tresktest::textOf(first) + latin1(" | ") + tresktest::textOf(second));
        tresk::WorkflowstepCosts costs;
        const tresk::TreskDiff diff(first, second, &costs);
        const QList<tresk::TreskDiffResult> results = diff.findBestMatches(3);
        for (const tresk::TreskDiffResult& result : results) {
            const QList<int> ids = first.nodeIds();
            for (const int id : ids)
                add(QString::number(result.association(id, tresk::FirstTree)));
        }
    }

    void readArguments()
    {
        tresk::ArgfileReader reader;
        const QHash<QString, QString> variables = {{latin1("NAME"), latin1("some name")}};
        const tresk::ArgFile read = reader.readArgfile(
            latin1("-O 'some.pdf' --title \"of $NAME\" --unknown -i in.dat"), &variables);
        add(read.toCommandline(false));
    }

    QStringList m_documents;
    QString m_folder;
    QStringList m_results;
};

} // namespace

/// Two threads that use the library at the same time, each with objects of its own, get what one
/// alone gets. Run under helgrind it shows whether they share anything all the same.
class TestThreads : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void objectsOfTheirOwn();

private:
    QString folder(const QString& name) const;

    TestDir m_dir;
};

QString TestThreads::folder(const QString& name) const
{
    const QString path = m_dir.path(name);
    QDir().mkpath(path);
    return path;
}

void TestThreads::objectsOfTheirOwn()
{
    const FileSpec plain = FileSpec::plain(latin1("in.dat"), someBytes(3000));
    const FileSpec squeezed = FileSpec::flate(latin1("out.dat"), someBytes(300000));
    FileSpec damaged = squeezed;
    damaged.stored = "no stream";
    const QByteArray inner = nested(3);
    const QStringList documents = {
        m_dir.write(latin1("first"),
                    history({step("one", {plain}), step("two", {squeezed, damaged}, "OutFile"),
                             step("three", {embedded("inner.tresk", inner)})})),
        m_dir.write(latin1("second"),
                    history({step("two", {squeezed}, "OutFile"), step("other"),
                             step("three", {embedded("inner.tresk", inner), plain})}))};

    // Threads first: what is made when it is first needed has not been made by then.
    const QtMessageHandler handlerBefore = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString&) {});
    const int rounds = isWatched() ? 2 : 20;
    QList<QStringList> results;
    for (int round = 0; round < rounds; ++round) {
        Work works[] = {{documents, folder(latin1("A"))}, {documents, folder(latin1("B"))}};
        std::thread other([&works] { works[1].run(); });
        works[0].run();
        other.join();
        results << works[0].results() << works[1].results();
    }
    Work alone(documents, folder(latin1("C")));
    alone.run();
    qInstallMessageHandler(handlerBefore);
    const QStringList expected = alone.results();
    QVERIFY(expected.size() > 100);
    for (const QStringList& result : results)
        QCOMPARE(result, expected);
}

QTEST_GUILESS_MAIN(TestThreads)
#include "tst_threads.moc"
