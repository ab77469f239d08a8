#include "Histories.h"

#include <tresk/TreskFileManager.h>
#include <tresk/TreskParser.h>

#include <QFile>
#include <QFileInfo>
#include <QTest>

using tresk::TempTreskfile;
using tresk::TreskFileManager;
using tresk::TreskParser;
using tresktest::history;
using tresktest::LogLines;
using tresktest::readFile;
using tresktest::step;
using tresktest::TestDir;

namespace {

class TextListener : public QObject {
    Q_OBJECT

public:
    QStringList texts;

public Q_SLOTS:
    void log(const QString& text) { texts.append(text); }
};

} // namespace

/// Which documents are kept open, and which files are deleted with them.
class TestTreskFileManager : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void metaObject();
    void opensADocument();
    void opensTolerantly();
    void knownPathGivesItsParser();
    void knownPathKeepsItsKind_data();
    void knownPathKeepsItsKind();
    void cannotBeOpened_data();
    void cannotBeOpened();
    void openedLater();
    void keepsAnOpenedParser();
    void openedParserTakesThePlaceOfAnother();
    void nullParser();
    void unknownPath();
    void temporaryFilesGo_data();
    void temporaryFilesGo();
    void temporaryFileThatIsGone();
    void parserOutlivesItsRecord();
    void releasedParserOutlivesItsRecord();
    void openedParserTakesThePlaceOfATemporaryFile();
    void parserUnderTwoPathsIsRelayedTwice();
    void clearForgets();
    void copiesShareDocuments();
    void copiesAreIndependent();
    void assignment();
    void relaysLogs();
    void relaysLogsOfOpenedParsers();
    void copiesRelayLogs();
    void clearedRelaysNothing();
    void listenersAreNotCopied();
    void recordOfADocument();

private:
    QString save(const char* name = "document", const QByteArray& title = "step")
    {
        return m_dir.write(QString::fromLatin1(name), history({step(title)}));
    }

    TestDir m_dir;
};

void TestTreskFileManager::metaObject()
{
    QCOMPARE(TreskFileManager::staticMetaObject.className(), "tresk::TreskFileManager");
    QCOMPARE(TreskFileManager::staticMetaObject.superClass()->className(), "tresk::LogSource");
}

void TestTreskFileManager::opensADocument()
{
    const QString path = save();
    TreskFileManager files;
    const QSharedPointer<TreskParser> parser = files.addTreskFile(path, false);
    QVERIFY(parser);
    QCOMPARE(parser->getNumSections(), 1);
    QVERIFY(files.parser(path) == parser);
}

void TestTreskFileManager::opensTolerantly()
{
    // The distance to the older marker is 5 bytes off, which only tolerant reading forgives.
    tresktest::SectionSpec newer = step("newer");
    newer.previousShift = 5;
    TreskFileManager files;
    const auto parser = files.addTreskFile(
        m_dir.write(QStringLiteral("shifted"), history({step("older"), newer})), false);
    QVERIFY(parser);
    QCOMPARE(parser->getNumSections(), 2);
}

void TestTreskFileManager::knownPathGivesItsParser()
{
    const QString path = save();
    TreskFileManager files;
    const QSharedPointer<TreskParser> parser = files.addTreskFile(path, false);
    save("document", "replaced"); // known paths are not opened again
    QVERIFY(files.addTreskFile(path, false) == parser);
    QVERIFY(QFile::remove(path));
    QVERIFY(files.addTreskFile(path, false) == parser);
    const QString other = save("other");
    QVERIFY(files.addTreskFile(other, false) != parser);
}

void TestTreskFileManager::knownPathKeepsItsKind_data()
{
    QTest::addColumn<bool>("temporary");
    QTest::newRow("temporary first") << true;
    QTest::newRow("temporary later") << false;
}

void TestTreskFileManager::knownPathKeepsItsKind()
{
    QFETCH(bool, temporary);
    const QString path = save();
    {
        TreskFileManager files;
        QVERIFY(files.addTreskFile(path, temporary));
        QVERIFY(files.addTreskFile(path, !temporary));
    }
    QCOMPARE(QFileInfo::exists(path), !temporary);
}

void TestTreskFileManager::cannotBeOpened_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << m_dir.path(QStringLiteral("missing"));
    QTest::newRow("folder") << m_dir.path(QStringLiteral("."));
    QTest::newRow("no path") << QString();
    QTest::newRow("no document") << m_dir.write(QStringLiteral("plain"), "%PDF-1.4\n%%EOF\n");
}

void TestTreskFileManager::cannotBeOpened()
{
    QFETCH(QString, path);
    const bool exists = QFileInfo::exists(path);
    {
        TreskFileManager files;
        QVERIFY(!files.addTreskFile(path, true));
        QVERIFY(!files.parser(path));
    }
    QCOMPARE(QFileInfo::exists(path), exists); // it is not recorded, so it stays
}

void TestTreskFileManager::openedLater()
{
    const QString path = m_dir.path(QStringLiteral("later"));
    TreskFileManager files;
    QVERIFY(!files.addTreskFile(path, false));
    save("later");
    QVERIFY(files.addTreskFile(path, false));
}

void TestTreskFileManager::keepsAnOpenedParser()
{
    const QString path = save();
    const auto parser = QSharedPointer<TreskParser>::create(tresk::ParseTolerant);
    QVERIFY(parser->open(path));
    {
        TreskFileManager files;
        QVERIFY(files.addTreskFile(parser, QStringLiteral("a name")) == parser);
        QVERIFY(files.parser(QStringLiteral("a name")) == parser);
        QVERIFY(!files.parser(path));
        QVERIFY(files.addTreskFile(QStringLiteral("a name"), true) == parser);
        QVERIFY(files.addTreskFile(parser, path) == parser);
    }
    QVERIFY(QFileInfo::exists(path));
    QVERIFY(!parser->getBytes(0, 1).isEmpty());
}

void TestTreskFileManager::openedParserTakesThePlaceOfAnother()
{
    const QString path = save();
    const auto parser = QSharedPointer<TreskParser>::create(tresk::ParseTolerant);
    TreskFileManager files;
    const QSharedPointer<TreskParser> before = files.addTreskFile(path, false);
    QVERIFY(files.addTreskFile(parser, path) == parser);
    QVERIFY(files.parser(path) == parser);
    QVERIFY(before != parser);
}

void TestTreskFileManager::nullParser()
{
    const QString path = save();
    TreskFileManager files;
    QVERIFY(!files.addTreskFile(QSharedPointer<TreskParser>(), path));
    QVERIFY(!files.parser(path));
    QVERIFY(files.addTreskFile(path, false)); // not kept as something that cannot be opened
}

void TestTreskFileManager::unknownPath()
{
    TreskFileManager files;
    QVERIFY(!files.parser(QStringLiteral("unknown")));
    QVERIFY(!files.parser(QString()));
    files.remove(QStringLiteral("unknown"));
}

void TestTreskFileManager::temporaryFilesGo_data()
{
    QTest::addColumn<bool>("temporary");
    QTest::newRow("temporary") << true;
    QTest::newRow("not temporary") << false;
}

void TestTreskFileManager::temporaryFilesGo()
{
    QFETCH(bool, temporary);
    const QString first = save("first");
    const QString second = save("second");
    {
        TreskFileManager files;
        QVERIFY(files.addTreskFile(first, temporary));
        QVERIFY(files.addTreskFile(second, temporary));
        QVERIFY(QFileInfo::exists(first));
        files.clear();
        QCOMPARE(QFileInfo::exists(first), !temporary);
        QCOMPARE(QFileInfo::exists(second), !temporary);
        save("second");
        QVERIFY(files.addTreskFile(second, temporary));
    }
    QCOMPARE(QFileInfo::exists(second), !temporary);
}

void TestTreskFileManager::temporaryFileThatIsGone()
{
    const QString path = save();
    TreskFileManager files;
    QVERIFY(files.addTreskFile(path, true));
    QVERIFY(QFile::remove(path));
    files.clear();
    QVERIFY(!files.parser(path));
}

void TestTreskFileManager::parserOutlivesItsRecord()
{
    const QString path = save();
    TreskFileManager files;
    const QSharedPointer<TreskParser> parser = files.addTreskFile(path, true);
    const QByteArray document = readFile(path);
    files.clear();
    QVERIFY(!QFileInfo::exists(path));
    QCOMPARE(parser->getNumSections(), 1);
    QVERIFY(parser->getBytes(0, int(document.size())) == document); // it has the file open still
}

void TestTreskFileManager::releasedParserOutlivesItsRecord()
{
    const QString path = save();
    TreskFileManager files;
    const QSharedPointer<TreskParser> parser = files.addTreskFile(path, true);
    const QByteArray document = readFile(path);
    parser->releaseFile();
    files.clear();
    QVERIFY(!QFileInfo::exists(path));
    QVERIFY(parser->getBytes(0, int(document.size())) == document);
}

/// The record that goes takes the file with it, which the new one names.
void TestTreskFileManager::openedParserTakesThePlaceOfATemporaryFile()
{
    const QString path = save();
    TreskFileManager files;
    QVERIFY(files.addTreskFile(path, true));
    const auto parser = QSharedPointer<TreskParser>::create(tresk::ParseTolerant);
    QVERIFY(parser->open(path));
    QVERIFY(files.addTreskFile(parser, path) == parser);
    QVERIFY(!QFileInfo::exists(path));
    QVERIFY(files.parser(path) == parser);
}

void TestTreskFileManager::parserUnderTwoPathsIsRelayedTwice()
{
    TreskFileManager files;
    const auto parser = QSharedPointer<TreskParser>::create(tresk::ParseTolerant);
    files.addTreskFile(parser, QStringLiteral("a"));
    files.addTreskFile(parser, QStringLiteral("b"));
    const LogLines lines(files);
    Q_EMIT parser->log(QStringLiteral("once"), 0);
    QCOMPARE(lines.lines.size(), 2);
}

void TestTreskFileManager::clearForgets()
{
    const QString path = save();
    TreskFileManager files;
    const QSharedPointer<TreskParser> parser = files.addTreskFile(path, false);
    files.clear();
    files.clear();
    QVERIFY(!files.parser(path));
    QVERIFY(files.addTreskFile(path, false) != parser);
}

void TestTreskFileManager::copiesShareDocuments()
{
    const QString path = save();
    auto files = std::make_unique<TreskFileManager>();
    const TreskParser* const parser = files->addTreskFile(path, true).data();
    auto copy = std::make_unique<TreskFileManager>(*files);
    QVERIFY(copy->parser(path).data() == parser);
    files.reset();
    QVERIFY(QFileInfo::exists(path));
    QVERIFY(!copy->parser(path)->getBytes(0, 1).isEmpty());
    copy.reset();
    QVERIFY(!QFileInfo::exists(path));
}

void TestTreskFileManager::copiesAreIndependent()
{
    const QString first = save("first");
    const QString second = save("second");
    TreskFileManager files;
    files.addTreskFile(first, true);
    TreskFileManager copy(files);
    copy.addTreskFile(second, true);
    QVERIFY(!files.parser(second));
    files.clear();
    QVERIFY(QFileInfo::exists(first));
    QVERIFY(copy.parser(first));
    copy.clear();
    QVERIFY(!QFileInfo::exists(first));
    QVERIFY(!QFileInfo::exists(second));
}

void TestTreskFileManager::assignment()
{
    const QString first = save("first");
    const QString second = save("second");
    TreskFileManager files;
    files.addTreskFile(first, true);
    TreskFileManager other;
    other.addTreskFile(second, true);
    other = files;
    QVERIFY(!QFileInfo::exists(second));
    QVERIFY(other.parser(first) == files.parser(first));
    const TreskFileManager& same = other;
    other = same;
    files.clear();
    QVERIFY(QFileInfo::exists(first));
    QVERIFY(other.parser(first));
    other = TreskFileManager();
    QVERIFY(!QFileInfo::exists(first));
}

void TestTreskFileManager::relaysLogs()
{
    TextListener listener;
    TreskFileManager files(&listener);
    const LogLines log(files);
    const QSharedPointer<TreskParser> parser = files.addTreskFile(save(), false);
    Q_EMIT parser->log(QStringLiteral("a message"), 2);
    QCOMPARE(listener.texts, QStringList(QStringLiteral("a message")));
    QCOMPARE(log.lines, QStringList(QStringLiteral("0 a message"))); // types are not relayed
    files.addTreskFile(save(), false);
    Q_EMIT parser->log(QStringLiteral("another"), 0);
    QCOMPARE(listener.texts.size(), 2); // known documents are not connected again
}

void TestTreskFileManager::relaysLogsOfOpenedParsers()
{
    const auto parser = QSharedPointer<TreskParser>::create(tresk::ParseTolerant);
    TreskFileManager files;
    const LogLines log(files);
    files.addTreskFile(parser, QStringLiteral("a name"));
    Q_EMIT parser->log(QStringLiteral("a message"), 1);
    QCOMPARE(log.lines, QStringList(QStringLiteral("0 a message")));
}

void TestTreskFileManager::copiesRelayLogs()
{
    TreskFileManager files;
    const QSharedPointer<TreskParser> parser = files.addTreskFile(save(), false);
    const TreskFileManager copy(files);
    TreskFileManager assigned;
    assigned = files;
    LogLines log(files);
    LogLines logOfCopy(const_cast<TreskFileManager&>(copy));
    LogLines logOfAssigned(assigned);
    Q_EMIT parser->log(QStringLiteral("a message"), 0);
    const QStringList expected(QStringLiteral("0 a message"));
    QCOMPARE(log.lines, expected);
    QCOMPARE(logOfCopy.lines, expected);
    QCOMPARE(logOfAssigned.lines, expected);
}

void TestTreskFileManager::clearedRelaysNothing()
{
    TreskFileManager files;
    const LogLines log(files);
    const QSharedPointer<TreskParser> parser = files.addTreskFile(save(), false);
    files.clear();
    Q_EMIT parser->log(QStringLiteral("a message"), 0);
    QCOMPARE(log.lines, QStringList());
}

void TestTreskFileManager::listenersAreNotCopied()
{
    TextListener listener;
    TreskFileManager files(&listener);
    TreskFileManager copy(files);
    Q_EMIT copy.log(QStringLiteral("of the copy"), 0);
    QCOMPARE(listener.texts, QStringList());
}

void TestTreskFileManager::recordOfADocument()
{
    const QString kept = save("kept");
    const QString temporary = save("temporary");
    const auto parser = QSharedPointer<TreskParser>::create(tresk::ParseTolerant);
    {
        const TempTreskfile first(parser, kept, false);
        const TempTreskfile second(parser, temporary, true);
        QVERIFY(first.parser() == parser);
        QCOMPARE(second.path(), temporary);
        QVERIFY(QFileInfo::exists(temporary));
    }
    QVERIFY(QFileInfo::exists(kept));
    QVERIFY(!QFileInfo::exists(temporary));
}

QTEST_GUILESS_MAIN(TestTreskFileManager)

#include "tst_treskfilemanager.moc"
