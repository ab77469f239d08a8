#include "DocumentWriter.h"
#include "EmbeddedFiles.h"
#include "MessageCapture.h"
#include "TestFiles.h"

#include <tresk/TreskParser.h>

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <ctime>
#include <limits>

using tresk::TreskParser;
using tresktest::counted;
using tresktest::deflated;
using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::flate;
using tresktest::plain;
using tresktest::TestDir;
using tresktest::twoLines;

namespace {

const int piece = 4 * 1024 * 1024;
const QString totalPattern = QStringLiteral("^\\[writeFileToDisk\\] total: ([0-9.e-]+)s\\.$");

/// A zlib stream of @p content in blocks that are stored as they are, so that it is known which
/// bytes of the stream stand for which of the content. It has no checksum at its end.
QByteArray blocksOf(const QByteArray& content)
{
    const int blockSize = 65535;
    QByteArray stream("\x78\x01", 2);
    for (int from = 0; from < content.size(); from += blockSize) {
        const QByteArray block = content.mid(from, blockSize);
        const auto size = static_cast<quint16>(block.size());
        const auto inverse = static_cast<quint16>(~size);
        stream += '\0';
        for (const quint16 number : {size, inverse}) {
            stream += static_cast<char>(number & 0xff);
            stream += static_cast<char>(number >> 8);
        }
        stream += block;
    }
    return stream;
}

/// How many bytes of the content the first @p size bytes of such a stream hold.
int contentIn(int size)
{
    const int wholeBlocks = (size - 2) / 65540;
    return wholeBlocks * 65535 + qMax(0, (size - 2) % 65540 - 5);
}

} // namespace

Q_DECLARE_METATYPE(tresktest::FileSpec)

/// Content streamed to disk, with the messages on the way.
class TestWriteFileToDisk : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void written_data();
    void written();
    void messages();
    void sizesInMessages_data();
    void sizesInMessages();
    void messagesInOtherLocale();
    void pathWithPlaceholders();
    void fileNumbers();
    void targetIsReplaced();
    void targetCannotBeOpened_data();
    void targetCannotBeOpened();
    void unknownCompression_data();
    void unknownCompression();
    void fullDisk_data();
    void fullDisk();
    void nothingForAFullDisk();
    void rangeBeyondTheEnd_data();
    void rangeBeyondTheEnd();
    void piecesBeforeTheEnd();
    void plainFileIsWrittenByContentSize();
    void damagedStream_data();
    void damagedStream();
    void damageInSecondPiece();
    void soundBeginningOfDamagedPiece();
    void truncatedStream();
    void debugLine();
    void debugLineSwitchedOff();

private:
    bool open(const FileSpec& file)
    {
        DocumentWriter doc;
        doc.writeHeader();
        doc.writeFile(file);
        m_parser = std::make_unique<TreskParser>();
        m_log = std::make_unique<QSignalSpy>(m_parser.get(), SIGNAL(log(QString, int)));
        return m_parser->open(m_dir.write(QStringLiteral("document"), doc.bytes()))
            && m_parser->getNumFiles() == 1;
    }
    /// The messages so far, each with its type in front.
    QStringList log() const
    {
        QStringList list;
        for (const QVariantList& message : std::as_const(*m_log))
            list.append(message.at(1).toString() + QLatin1Char(' ') + message.at(0).toString());
        return list;
    }
    QString firstMessage(const QString& path) const
    {
        return QStringLiteral("0 [writeFileToDisk] file: ") + path;
    }
    QByteArray target() const { return tresktest::readFile(m_target); }

    TestDir m_dir;
    QString m_target = m_dir.path(QStringLiteral("target"));
    std::unique_ptr<TreskParser> m_parser;
    std::unique_ptr<QSignalSpy> m_log;
};

void TestWriteFileToDisk::init()
{
    QLoggingCategory::setFilterRules(QStringLiteral("tresk.debug=false"));
    QFile::remove(m_target);
}

void TestWriteFileToDisk::written_data()
{
    QTest::addColumn<bool>("compressed");
    QTest::addColumn<QByteArray>("content");
    for (const bool compressed : {false, true}) {
        const char* kind = compressed ? "flate" : "plain";
        QTest::addRow("%s, empty", kind) << compressed << QByteArray();
        QTest::addRow("%s, text", kind) << compressed << twoLines;
        QTest::addRow("%s, binary", kind) << compressed << QByteArray("\n\0\xff\r\n", 5);
        QTest::addRow("%s, 1 MiB", kind) << compressed << counted(1 << 20);
        QTest::addRow("%s, one piece", kind) << compressed << QByteArray(piece, 'x');
        QTest::addRow("%s, more than a piece", kind) << compressed << counted(piece + 1);
    }
}

void TestWriteFileToDisk::written()
{
    QFETCH(bool, compressed);
    QFETCH(QByteArray, content);
    FileSpec file = plain(content);
    if (compressed) {
        file.compression = "flate";
        file.stored = deflated(content, 1);
    }
    QVERIFY(open(file));
    QVERIFY(m_parser->writeFileToDisk(0, m_target));
    QVERIFY(target() == content);
}

void TestWriteFileToDisk::messages()
{
    QVERIFY(open(flate(QByteArray(3 * 1024 * 1024 / 2, 'x'))));
    const int stored = m_parser->getFile(0)->cfilesize;
    const std::clock_t before = std::clock();
    QVERIFY(m_parser->writeFileToDisk(0, m_target));
    const double outer = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;

    QCOMPARE(log().size(), 3);
    QCOMPARE(log().at(0), firstMessage(m_target));
    QCOMPARE(log().at(1),
             QStringLiteral("0 original/embedded file size: 1.50/0.00 MB "
                            "(1572864/%1 bytes)")
                 .arg(stored));
    QCOMPARE(m_log->at(2).at(1).toInt(), 0);
    const QRegularExpression total(totalPattern);
    const QRegularExpressionMatch match = total.match(m_log->at(2).at(0).toString());
    QVERIFY2(match.hasMatch(), qPrintable(log().at(2)));
    const double seconds = match.captured(1).toDouble();
    QCOMPARE(match.captured(1), QStringLiteral("%1").arg(seconds));
    QVERIFY(seconds >= 0);
    QVERIFY(seconds <= outer + 0.002);
}

void TestWriteFileToDisk::sizesInMessages_data()
{
    QTest::addColumn<QByteArray>("filesize");
    QTest::addColumn<QByteArray>("cfilesize");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* filesize, const char* cfilesize, const char* sizes) {
        QTest::addRow("%s, %s", filesize, cfilesize)
            << QByteArray(filesize) << QByteArray(cfilesize)
            << QStringLiteral("0 original/embedded file size: ") + QString::fromLatin1(sizes);
    };
    row("0", "0", "0.00/0.00 MB (0/0 bytes)");
    row("10", "7", "0.00/0.00 MB (10/7 bytes)");
    row("0", "1048576", "0.00/1.00 MB (0/1048576 bytes)");
    row("1", "1572864", "0.00/1.50 MB (1/1572864 bytes)");
    row("2", "2147483647", "0.00/2048.00 MB (2/2147483647 bytes)");
    row("3", "10485", "0.00/0.01 MB (3/10485 bytes)");
    row("4", "", "0.00/-0.00 MB (4/-1 bytes)");
}

void TestWriteFileToDisk::sizesInMessages()
{
    // Both sizes are shown whatever the compression.
    QFETCH(QByteArray, filesize);
    QFETCH(QByteArray, cfilesize);
    QFETCH(QString, message);
    QVERIFY(open(plain(twoLines).with("filesize", filesize).with("cfilesize", cfilesize)));
    QVERIFY(m_parser->writeFileToDisk(0, m_target));
    QCOMPARE(log().value(1), message);
}

void TestWriteFileToDisk::messagesInOtherLocale()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    const bool opened = open(plain(twoLines).with("cfilesize", "1234567"));
    const bool done = m_parser->writeFileToDisk(0, m_target);
    QLocale::setDefault(before);
    QVERIFY(opened && done);
    QCOMPARE(log().value(1),
             QStringLiteral("0 original/embedded file size: 0.00/1.18 MB "
                            "(40/1234567 bytes)"));
    const QRegularExpression total(totalPattern);
    QVERIFY2(total.match(m_log->at(2).at(0).toString()).hasMatch(), qPrintable(log().at(2)));
}

void TestWriteFileToDisk::pathWithPlaceholders()
{
    QVERIFY(open(plain(twoLines)));
    const QString path = m_dir.path(QStringLiteral("%1 %2 %L3 %%"));
    QVERIFY(m_parser->writeFileToDisk(0, path));
    QCOMPARE(log().at(0), firstMessage(path));
    QCOMPARE(tresktest::readFile(path), twoLines);
}

void TestWriteFileToDisk::fileNumbers()
{
    QVERIFY(open(plain(twoLines)));
    for (const int i : {-1, 1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        m_log->clear();
        QVERIFY(!m_parser->writeFileToDisk(i, m_target));
        QCOMPARE(log(), QStringList({firstMessage(m_target)}));
        QVERIFY(!QFile::exists(m_target));
    }
}

void TestWriteFileToDisk::targetIsReplaced()
{
    QVERIFY(open(plain(twoLines)));
    m_dir.write(QStringLiteral("target"), QByteArray(1000, 'x'));
    QVERIFY(m_parser->writeFileToDisk(0, m_target));
    QCOMPARE(target(), twoLines);
}

void TestWriteFileToDisk::targetCannotBeOpened_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("folder") << m_dir.path(QString());
    QTest::newRow("in a missing folder") << m_dir.path(QStringLiteral("missing/file"));
    QTest::newRow("in a file") << m_dir.path(QStringLiteral("document/file"));
    QTest::newRow("name too long") << m_dir.path(QString(300, QLatin1Char('x')));
}

void TestWriteFileToDisk::targetCannotBeOpened()
{
    QFETCH(QString, path);
    QVERIFY(open(plain(twoLines)));
    QVERIFY(!m_parser->writeFileToDisk(0, path));
    QCOMPARE(log(), QStringList({firstMessage(path)}));
}

void TestWriteFileToDisk::unknownCompression_data()
{
    QTest::addColumn<QByteArray>("word");
    for (const char* word : {"", "gzip", "Flate", "NONE", "none "})
        QTest::addRow("\"%s\"", word) << QByteArray(word);
}

void TestWriteFileToDisk::unknownCompression()
{
    QFETCH(QByteArray, word);
    QVERIFY(open(plain(twoLines).with("compression", word)));
    m_dir.write(QStringLiteral("target"), "what was there");
    QVERIFY(!m_parser->writeFileToDisk(0, m_target));
    QCOMPARE(log(),
             QStringList({firstMessage(m_target),
                          QStringLiteral("2 *** ERROR: invalid compression method.")}));
    QCOMPARE(target(), QByteArray());
}

void TestWriteFileToDisk::fullDisk_data()
{
    QTest::addColumn<bool>("compressed");
    QTest::newRow("plain") << false;
    QTest::newRow("flate") << true;
}

void TestWriteFileToDisk::fullDisk()
{
    QFETCH(bool, compressed);
    QVERIFY(open(compressed ? flate(twoLines) : plain(twoLines)));
    const QString full = QStringLiteral("/dev/full");
    QVERIFY(!m_parser->writeFileToDisk(0, full));
    QCOMPARE(log().size(), 3);
    QCOMPARE(log().at(0), firstMessage(full));
    QCOMPARE(log().at(2), QStringLiteral("2 *** ERROR: IO Error."));
}

void TestWriteFileToDisk::nothingForAFullDisk()
{
    QVERIFY(open(plain("")));
    QVERIFY(m_parser->writeFileToDisk(0, QStringLiteral("/dev/full")));
}

void TestWriteFileToDisk::rangeBeyondTheEnd_data()
{
    QTest::addColumn<FileSpec>("file");
    QTest::newRow("plain, partly beyond") << plain(twoLines).with("filesize", "1000");
    QTest::newRow("flate, partly beyond") << flate(twoLines).with("cfilesize", "1000");
    QTest::newRow("plain, wholly beyond") << plain(twoLines).with("offset", "1000");
    QTest::newRow("plain, farthest") << plain(twoLines).with("offset", "2147483647");
    QTest::newRow("plain, no size") << plain(twoLines).with("filesize", "");
    QTest::newRow("flate, no size") << flate(twoLines).with("cfilesize", "");
    QTest::newRow("plain, size that does not fit")
        << plain(twoLines).with("filesize", "2147483648");
}

void TestWriteFileToDisk::rangeBeyondTheEnd()
{
    QFETCH(FileSpec, file);
    QVERIFY(open(file));
    QVERIFY(m_parser->writeFileToDisk(0, m_target));
    QCOMPARE(log().size(), 3);
    QCOMPARE(target(), QByteArray());
}

void TestWriteFileToDisk::piecesBeforeTheEnd()
{
    // The second piece reaches beyond the end and reads as empty, the whole of it.
    const QByteArray content = counted(piece + 1000);
    QVERIFY(open(plain(content).with("filesize", QByteArray::number(piece + 5000))));
    QVERIFY(m_parser->writeFileToDisk(0, m_target));
    QVERIFY(target() == content.left(piece));
}

void TestWriteFileToDisk::plainFileIsWrittenByContentSize()
{
    QVERIFY(open(plain(twoLines).with("filesize", "11").with("cfilesize", "3")));
    QVERIFY(m_parser->writeFileToDisk(0, m_target));
    QCOMPARE(target(), twoLines.left(11));
}

void TestWriteFileToDisk::damagedStream_data()
{
    QTest::addColumn<QByteArray>("stored");
    QByteArray wrongChecksum = deflated(twoLines);
    wrongChecksum[wrongChecksum.size() - 1] = static_cast<char>(~wrongChecksum.back());
    QTest::newRow("no stream") << QByteArray(100, 'x');
    QTest::newRow("wrong checksum") << wrongChecksum;
    QTest::newRow("bad block") << QByteArray(blocksOf(twoLines) + QByteArray(20, '\xff'));
    QTest::newRow("bad block behind 3 MiB")
        << QByteArray(blocksOf(counted(3 << 20)) + QByteArray(20, '\xff'));
}

void TestWriteFileToDisk::damagedStream()
{
    // What the piece held before the fault is left out with it, and that is no error.
    QFETCH(QByteArray, stored);
    FileSpec file = flate(twoLines);
    file.stored = stored;
    QVERIFY(open(file));
    QVERIFY(m_parser->writeFileToDisk(0, m_target));
    QCOMPARE(log().size(), 3);
    QVERIFY(log().at(2).startsWith(QLatin1String("0 [writeFileToDisk] total: ")));
    QCOMPARE(target(), QByteArray());
}

void TestWriteFileToDisk::damageInSecondPiece()
{
    const QByteArray content = counted(9 << 20);
    QByteArray stored = blocksOf(content);
    const int damage = piece + (1 << 20);
    stored = stored.left(damage) + QByteArray(int(stored.size()) - damage, '\xff');
    FileSpec file = flate(content);
    file.stored = stored;
    QVERIFY(open(file));
    QVERIFY(m_parser->writeFileToDisk(0, m_target));
    QVERIFY(target() == content.left(contentIn(piece)));
}

void TestWriteFileToDisk::soundBeginningOfDamagedPiece()
{
    // The fault lies in the last bytes of the first piece, with nothing but sound pieces behind.
    const QByteArray content = counted(6 << 20);
    const QByteArray stored = blocksOf(content);
    const int badBlock = 2 + 63 * 65540;
    QVERIFY(badBlock < piece);
    FileSpec file = flate(content);
    file.stored = stored.left(badBlock) + '\xff' + stored.mid(badBlock + 1);
    QVERIFY(open(file));
    QVERIFY(m_parser->writeFileToDisk(0, m_target));
    QCOMPARE(target(), QByteArray());
}

void TestWriteFileToDisk::truncatedStream()
{
    // A stream that breaks off is written as far as it goes.
    const QByteArray content = counted(5 << 20);
    FileSpec file = flate(content);
    file.stored = blocksOf(content);
    QVERIFY(open(file));
    QVERIFY(m_parser->writeFileToDisk(0, m_target));
    QVERIFY(target() == content);
}

void TestWriteFileToDisk::debugLine()
{
    QLoggingCategory::setFilterRules(QString());
    QVERIFY(open(plain(twoLines)));
    const tresktest::MessageCapture messages;
    QVERIFY(m_parser->writeFileToDisk(0, m_target));
    QCOMPARE(messages.count(QtDebugMsg, "tresk"), 1);
    QCOMPARE(int(messages.messages().size()), 1);
    QVERIFY(messages.messages().at(0).text.contains(QLatin1String("unextract")));
    QCOMPARE(log().size(), 3);
}

void TestWriteFileToDisk::debugLineSwitchedOff()
{
    QLoggingCategory::setFilterRules(QStringLiteral("tresk.debug=false"));
    QVERIFY(open(plain(twoLines)));
    const tresktest::MessageCapture messages;
    QVERIFY(m_parser->writeFileToDisk(0, m_target));
    QCOMPARE(int(messages.messages().size()), 0);
    QCOMPARE(log().size(), 3);
}

QTEST_GUILESS_MAIN(TestWriteFileToDisk)

#include "tst_writefiletodisk.moc"
