#include "DocumentWriter.h"
#include "EmbeddedFiles.h"
#include "QueueEvents.h"
#include "TestFiles.h"

#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <QFile>
#include <QTest>

#include <limits>

using tresk::SavedFile;
using tresk::TreskParser;
using tresk::ValidationQueue;
using tresktest::deflated;
using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::finish;
using tresktest::flate;
using tresktest::md5Hex;
using tresktest::plain;
using tresktest::QueueEvents;
using tresktest::storedAs;
using tresktest::TestDir;
using tresktest::twoLines;
using tresktest::verdicts;

namespace {

const int largest = std::numeric_limits<int>::max();

/// Bytes that do not compress.
QByteArray noise(int size)
{
    QByteArray bytes;
    for (int i = 0; bytes.size() < size; ++i)
        bytes += QByteArray::fromHex(md5Hex(QByteArray::number(i)));
    bytes.truncate(size);
    return bytes;
}

QByteArray number(qint64 value)
{
    return QByteArray::number(value);
}

} // namespace

Q_DECLARE_METATYPE(tresktest::FileSpec)

/// Which files, embedded and saved, are found to be valid, and which are not.
class TestValidationQueueContent : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void validFiles_data();
    void validFiles();
    void invalidFiles_data();
    void invalidFiles();
    void blocksBeforeTheEndOfTheDocument();
    void savedFiles_data();
    void savedFiles();
    void savedFilesThatAreNoFiles_data();
    void savedFilesThatAreNoFiles();

private:
    /// Checks the only file of a document that ends with it.
    QString check(const FileSpec& file, int blockSize)
    {
        DocumentWriter doc;
        doc.writeHeader();
        doc.writeFile(file);
        TreskParser parser;
        if (!parser.open(m_dir.write(QStringLiteral("document"), doc.bytes())))
            return QStringLiteral("not opened");
        ValidationQueue queue(&parser, blockSize);
        QueueEvents events(queue);
        queue.addValidatees({0}, {});
        return verdicts(finish(queue, events)).join(QStringLiteral(", "));
    }
    QString check(const SavedFile& file, int blockSize)
    {
        ValidationQueue queue(nullptr, blockSize);
        QueueEvents events(queue);
        queue.addValidatees({file});
        return verdicts(finish(queue, events)).join(QStringLiteral(", "));
    }

    TestDir m_dir;
};

void TestValidationQueueContent::validFiles_data()
{
    QTest::addColumn<FileSpec>("file");
    const QByteArray random = noise(1000);
    QTest::newRow("plain") << plain(twoLines);
    QTest::newRow("plain, binary") << plain(random);
    QTest::newRow("plain, empty") << plain("");
    QTest::newRow("flate") << flate(twoLines);
    QTest::newRow("flate, binary") << flate(random);
    QTest::newRow("flate, empty") << flate("");
    QTest::newRow("flate, 5 MB") << flate(QByteArray(5000000, 'x'));
    QTest::newRow("flate, bytes behind the stream")
        << storedAs(flate(twoLines), deflated(twoLines) + random);
    QTest::newRow("plain, other stored size") << plain(twoLines).with("cfilesize", "1");
    QTest::newRow("plain, digest of stored bytes")
        << plain(twoLines).with("md5cfile", QByteArray(32, 'a'));
    QTest::newRow("flate, other size") << flate(twoLines).with("filesize", "1");
    QTest::newRow("flate, no size") << flate(twoLines).with("filesize", "");
    QTest::newRow("unknown compression, stored as it is")
        << plain(twoLines).with("compression", "gzip");
    QTest::newRow("flate without digest of stored bytes counts as plain")
        << storedAs(plain(twoLines), deflated(twoLines))
               .with("compression", "flate")
               .with("md5file", md5Hex(deflated(twoLines)));
    FileSpec named = flate(twoLines);
    named.filename = QString(50, QChar(0x6587));
    QTest::newRow("name that is not ASCII") << named;
    // Nothing is what these read.
    QTest::newRow("no size, no content") << plain("").with("filesize", "");
    QTest::newRow("empty, start outside the document") << plain("").with("offset", "100000");
    QTest::newRow("empty, start beyond the range of int")
        << plain("").with("offset", number(largest));
}

void TestValidationQueueContent::validFiles()
{
    QFETCH(FileSpec, file);
    // Small blocks of a range that reaches beyond the document would find bytes.
    const bool large = file.content.size() > 100000 || !file.raw.isEmpty();
    const QList<int> blockSizes = large ? QList<int>{200000, 50000000}
                                        : QList<int>{1, 2, 7, 100, 100000};
    for (const int blockSize : blockSizes)
        QCOMPARE(check(file, blockSize), QStringLiteral("file 0 valid"));
}

void TestValidationQueueContent::invalidFiles_data()
{
    QTest::addColumn<FileSpec>("file");
    const QByteArray other(32, 'a');
    QByteArray wrongChecksum = deflated(twoLines);
    wrongChecksum[wrongChecksum.size() - 1] = static_cast<char>(
        wrongChecksum.at(wrongChecksum.size() - 1) ^ 1);
    const auto length = static_cast<int>(twoLines.size());
    QTest::newRow("plain, wrong digest") << plain(twoLines).with("md5file", other);
    QTest::newRow("plain, no digest") << plain(twoLines).with("md5file", "");
    QTest::newRow("plain, no digest, empty") << plain("").with("md5file", "");
    QTest::newRow("plain, other content") << storedAs(plain(twoLines), QByteArray(length, 'x'));
    QTest::newRow("plain, size one too small")
        << plain(twoLines).with("filesize", number(length - 1));
    QTest::newRow("plain, size one too large")
        << plain(twoLines).with("filesize", number(length + 1));
    QTest::newRow("plain, size 0") << plain(twoLines).with("filesize", "0");
    QTest::newRow("plain, no size") << plain(twoLines).with("filesize", "");
    QTest::newRow("plain, wrong offset") << plain(twoLines).with("offset", "2");
    QTest::newRow("plain, no offset") << plain(twoLines).with("offset", "");
    QTest::newRow("plain, start outside the document") << plain(twoLines).with("offset", "100000");
    QTest::newRow("plain, start beyond the range of int")
        << plain(twoLines).with("offset", number(largest));
    QTest::newRow("plain, size beyond the document") << plain(twoLines).with("filesize", "100000");
    QTest::newRow("plain, largest size") << plain(twoLines).with("filesize", number(largest));
    // Nothing can be read, but that is not what these are said to hold.
    QTest::newRow("size beyond the document, digest of nothing")
        << plain("").with("filesize", "100000");
    QTest::newRow("largest offset and size, digest of nothing")
        << plain("").with("offset", number(largest)).with("filesize", number(largest));
    QTest::newRow("flate, wrong digest") << flate(twoLines).with("md5file", other);
    QTest::newRow("flate, no digest") << flate(twoLines).with("md5file", "");
    QTest::newRow("flate, wrong digest of stored bytes") << flate(twoLines).with("md5cfile", other);
    QTest::newRow("flate, no digest of stored bytes") << flate(twoLines).with("md5cfile", "");
    QTest::newRow("flate, digests exchanged") << flate(twoLines)
                                                     .with("md5file", md5Hex(deflated(twoLines)))
                                                     .with("md5cfile", md5Hex(twoLines));
    QTest::newRow("flate, no stream") << storedAs(flate(twoLines), twoLines);
    QTest::newRow("flate, no stream, no content") << storedAs(flate(""), twoLines);
    QTest::newRow("flate, nothing stored") << storedAs(flate(""), "");
    QTest::newRow("flate, wrong checksum") << storedAs(flate(twoLines), wrongChecksum);
    QTest::newRow("flate, truncated") << storedAs(flate(twoLines), deflated(twoLines).chopped(1));
    QTest::newRow("flate, no checksum") << storedAs(flate(twoLines), deflated(twoLines).chopped(4));
    QTest::newRow("flate, raw deflate data")
        << storedAs(flate(twoLines), deflated(twoLines).mid(2).chopped(4));
    QTest::newRow("flate, stored size 0") << flate(twoLines).with("cfilesize", "0");
    QTest::newRow("flate, no stored size") << flate(twoLines).with("cfilesize", "");
    QTest::newRow("flate, largest stored size")
        << flate(twoLines).with("cfilesize", number(largest));
    QTest::newRow("unknown compression, compressed")
        << storedAs(plain(twoLines), deflated(twoLines)).with("compression", "Flate");
}

void TestValidationQueueContent::invalidFiles()
{
    QFETCH(FileSpec, file);
    const bool large = file.raw.values().contains(number(largest));
    const QList<int> blockSizes = large ? QList<int>{100000, largest}
                                        : QList<int>{1, 7, 100, 100000};
    for (const int blockSize : blockSizes)
        QCOMPARE(check(file, blockSize), QStringLiteral("file 0 invalid"));
}

void TestValidationQueueContent::blocksBeforeTheEndOfTheDocument()
{
    // A block that is not wholly inside reads as nothing; a checksum of those before it is none of
    // the file.
    FileSpec file = plain(noise(250)).with("filesize", "299");
    file.with("md5file", md5Hex(file.content.left(200)));
    file.trailing = QByteArray();
    QCOMPARE(check(file, 100), QStringLiteral("file 0 invalid"));
    QCOMPARE(check(file, 200), QStringLiteral("file 0 invalid"));
    QCOMPARE(check(file, 10), QStringLiteral("file 0 invalid"));
    QCOMPARE(check(file, 1000), QStringLiteral("file 0 invalid"));
}

void TestValidationQueueContent::savedFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("size");
    QTest::addColumn<QByteArray>("md5");
    QTest::addColumn<bool>("valid");
    const auto length = static_cast<int>(twoLines.size());
    const QByteArray md5 = md5Hex(twoLines);
    QTest::newRow("right") << twoLines << length << md5 << true;
    QTest::newRow("empty") << QByteArray() << 0 << md5Hex("") << true;
    QTest::newRow("wrong digest") << twoLines << length << QByteArray(32, 'a') << false;
    QTest::newRow("no digest") << twoLines << length << QByteArray() << false;
    QTest::newRow("digest in upper case") << twoLines << length << md5.toUpper() << false;
    QTest::newRow("zlib streams are not decoded") << deflated(twoLines) << length << md5 << false;
    QTest::newRow("more than the size") << twoLines + "rest" << length << md5 << true;
    QTest::newRow("less than the size") << twoLines.chopped(1) << length << md5 << false;
    QTest::newRow("less than the size, its digest") << twoLines << length + 50 << md5 << true;
    QTest::newRow("size 0") << twoLines << 0 << md5 << false;
    QTest::newRow("size 0, digest of nothing") << twoLines << 0 << md5Hex("") << true;
    QTest::newRow("size -1") << twoLines << -1 << md5 << false;
    QTest::newRow("size -1, digest of nothing") << twoLines << -1 << md5Hex("") << true;
    QTest::newRow("smallest size") << twoLines << std::numeric_limits<int>::min() << md5 << false;
}

void TestValidationQueueContent::savedFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(int, size);
    QFETCH(QByteArray, md5);
    QFETCH(bool, valid);
    const QString path = m_dir.write(QStringLiteral("saved"), content);
    const QString expected = valid
        ? QStringLiteral("saved %1 valid, log 0 Checksum of file %1 is correct")
        : QStringLiteral("saved %1 invalid, log 0 Checksum of file %1 is incorrect");
    for (const int blockSize : {1, 7, 100000, largest}) {
        const SavedFile file{path, QString::fromLatin1(md5), size};
        QCOMPARE(check(file, blockSize), QString(expected).replace(QStringLiteral("%1"), path));
    }
}

void TestValidationQueueContent::savedFilesThatAreNoFiles_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << m_dir.path(QStringLiteral("missing"));
    QTest::newRow("no name") << QString();
    QTest::newRow("folder") << m_dir.path(QStringLiteral("."));
    QTest::newRow("pipe") << m_dir.makePipe(QStringLiteral("pipe"));
    const QString link = m_dir.path(QStringLiteral("link to a pipe"));
    QVERIFY(QFile::link(m_dir.path(QStringLiteral("pipe")), link));
    QTest::newRow("link to a pipe") << link;
    const QString dangling = m_dir.path(QStringLiteral("link to nothing"));
    QVERIFY(QFile::link(m_dir.path(QStringLiteral("missing")), dangling));
    QTest::newRow("link to nothing") << dangling;
    if (QFile::exists(QStringLiteral("/dev/zero")))
        QTest::newRow("device") << QStringLiteral("/dev/zero");
}

void TestValidationQueueContent::savedFilesThatAreNoFiles()
{
    // They read as nothing, at once, and that is not what an empty file has.
    QFETCH(QString, path);
    const QString zeros = QString::fromLatin1(md5Hex(QByteArray(10, '\0')));
    const QString nothing = QString::fromLatin1(md5Hex(""));
    for (const int blockSize : {3, 100000}) {
        for (const SavedFile& file : {SavedFile{path, zeros, 10}, SavedFile{path, nothing, 10},
                                      SavedFile{path, nothing, 0}, SavedFile{path, nothing, -1}}) {
            const QString verdict = check(file, blockSize);
            QVERIFY2(
                verdict.startsWith(QStringLiteral("saved ") + path + QStringLiteral(" invalid")),
                qPrintable(verdict));
        }
    }
}

QTEST_GUILESS_MAIN(TestValidationQueueContent)

#include "tst_validationqueue_content.moc"
