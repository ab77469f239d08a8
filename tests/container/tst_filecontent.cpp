#include "DocumentWriter.h"
#include "EmbeddedFiles.h"
#include "MessageCapture.h"
#include "TestFiles.h"

#include <tresk/TreskParser.h>

#include <QTest>

#include <limits>

using tresk::TreskParser;
using tresktest::deflated;
using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::flate;
using tresktest::md5Hex;
using tresktest::plain;
using tresktest::squares;
using tresktest::storedAs;
using tresktest::TestDir;
using tresktest::twoLines;
using tresktest::withWrongChecksum;

Q_DECLARE_METATYPE(tresktest::FileSpec)

/// Content in memory, and its digests.
class TestFileContent : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void content_data();
    void content();
    void noContent_data();
    void noContent();
    void namesThatAreNotAscii_data();
    void namesThatAreNotAscii();
    void carriageReturns();
    void fileNumbers();
    void nothingIsReported();
    void plainFileIsReadByStoredSize();
    void checksums_data();
    void checksums();
    void checksumsOfDamagedStream_data();
    void checksumsOfDamagedStream();
    void checksumsOfLargeFile();

private:
    /// Opens a document that holds @p file and ends with its block.
    bool open(const FileSpec& file, const QByteArray& terminator = "\n")
    {
        DocumentWriter doc;
        doc.setTerminator(terminator);
        doc.writeHeader();
        doc.writeFile(file);
        return m_parser.open(m_dir.write(QStringLiteral("document"), doc.bytes()))
            && m_parser.getNumFiles() == 1;
    }

    TestDir m_dir;
    TreskParser m_parser;
};

void TestFileContent::content_data()
{
    QTest::addColumn<FileSpec>("file");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("plain") << plain(twoLines) << twoLines;
    QTest::newRow("plain, binary") << plain(squares(5000)) << squares(5000);
    QTest::newRow("plain, empty") << plain("") << QByteArray();
    QTest::newRow("flate") << flate(twoLines) << twoLines;
    QTest::newRow("flate, binary") << flate(squares(5000)) << squares(5000);
    QTest::newRow("flate, empty") << flate("") << QByteArray();
    QTest::newRow("flate, one byte") << flate("x") << QByteArray("x");
    QTest::newRow("flate, not compressed")
        << storedAs(flate(twoLines), deflated(twoLines, 0)) << twoLines;
    QTest::newRow("flate, 1 MiB") << flate(QByteArray(1 << 20, 'x')) << QByteArray(1 << 20, 'x');
    QTest::newRow("flate, bytes behind the stream")
        << storedAs(flate(twoLines), deflated(twoLines) + "rest") << twoLines;
    QTest::newRow("plain, digests that are wrong")
        << plain(twoLines).with("md5file", QByteArray(32, 'a')) << twoLines;
    QTest::newRow("flate, digests that are wrong") << flate(twoLines)
                                                          .with("md5file", QByteArray(32, 'a'))
                                                          .with("md5cfile", QByteArray(32, 'b'))
                                                   << twoLines;
    QTest::newRow("flate, no digests")
        << flate(twoLines).with("md5file", "").with("md5cfile", "") << twoLines;
    QTest::newRow("plain, range outside the document")
        << plain(twoLines).with("cfilesize", "1000") << QByteArray();
    QTest::newRow("plain, start outside the document")
        << plain(twoLines).with("offset", "2147483647") << QByteArray();
    QTest::newRow("plain, no stored size") << plain(twoLines).with("cfilesize", "") << QByteArray();
    // A damaged stream counts as no bytes, and none is what these should have.
    QTest::newRow("flate, empty and damaged")
        << storedAs(flate(""), "no zlib stream") << QByteArray();
    QTest::newRow("flate, empty and damaged behind some content")
        << storedAs(flate(""), withWrongChecksum(twoLines)) << QByteArray();
    QTest::newRow("flate, empty and cut short behind some content")
        << storedAs(flate(""), deflated(twoLines).chopped(1)) << QByteArray();
    QTest::newRow("flate, empty and cut short behind much content")
        << storedAs(flate(""), deflated(QByteArray(3 << 20, 'x')).chopped(1)) << QByteArray();
    QTest::newRow("flate, nothing at all") << storedAs(flate(""), "") << QByteArray();
}

void TestFileContent::content()
{
    QFETCH(FileSpec, file);
    QFETCH(QByteArray, expected);
    QVERIFY(open(file));
    const QSharedPointer<QByteArray> content = m_parser.getFileContent(0);
    QVERIFY(content);
    QVERIFY(*content == expected);
}

void TestFileContent::noContent_data()
{
    QTest::addColumn<FileSpec>("file");
    const auto size = [](int value) { return QByteArray::number(value); };
    const auto length = int(twoLines.size());
    QTest::newRow("size one too small") << flate(twoLines).with("filesize", size(length - 1));
    QTest::newRow("size one too large") << flate(twoLines).with("filesize", size(length + 1));
    QTest::newRow("size 0") << flate(twoLines).with("filesize", "0");
    QTest::newRow("no size") << flate(twoLines).with("filesize", "");
    QTest::newRow("largest size") << flate(twoLines).with("filesize", "2147483647");
    QTest::newRow("size that does not fit") << flate(twoLines).with("filesize", "2147483648");
    QTest::newRow("stored size one too small")
        << flate(twoLines).with("cfilesize", size(int(deflated(twoLines).size()) - 1));
    QTest::newRow("no stored size") << flate(twoLines).with("cfilesize", "");
    QTest::newRow("stored size 0") << flate(twoLines).with("cfilesize", "0");
    QTest::newRow("range outside the document") << flate(twoLines).with("cfilesize", "1000");
    QTest::newRow("wrong offset") << flate(twoLines).with("offset", "2");
    QTest::newRow("damaged stream") << storedAs(flate(twoLines), QByteArray(50, 'x'));
    QTest::newRow("wrong checksum") << storedAs(flate(twoLines), withWrongChecksum(twoLines));
    QTest::newRow("truncated stream") << storedAs(flate(twoLines), deflated(twoLines).chopped(1));
    QTest::newRow("raw deflate data")
        << storedAs(flate(twoLines), deflated(twoLines).mid(2).chopped(4));
    for (const char* word : {"", "gzip", "Flate", "FLATE", "None", "none ", "flate\\n"}) {
        QTest::addRow("compression \"%s\"", word)
            << storedAs(plain(twoLines), deflated(twoLines)).with("compression", word);
    }
}

void TestFileContent::noContent()
{
    QFETCH(FileSpec, file);
    QVERIFY(open(file));
    QVERIFY(!m_parser.getFileContent(0));
}

void TestFileContent::namesThatAreNotAscii_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("two bytes") << QString(50, QChar(0xe4));
    QTest::newRow("three bytes") << QString(50, QChar(0x6587));
    QTest::newRow("four bytes") << QStringLiteral("\U0001f600\U0001f680\U0001f4c4");
}

void TestFileContent::namesThatAreNotAscii()
{
    QFETCH(QString, name);
    for (FileSpec file : {plain(twoLines), flate(twoLines)}) {
        file.filename = name;
        file.desc = name;
        QVERIFY(open(file));
        QVERIFY(m_parser.getFileContent(0));
        QCOMPARE(*m_parser.getFileContent(0), twoLines);
    }
}

void TestFileContent::carriageReturns()
{
    for (const FileSpec& file : {plain(twoLines), flate(twoLines)}) {
        QVERIFY(open(file, "\r\n"));
        QCOMPARE(m_parser.getFile(0)->offset, 2);
        QVERIFY(m_parser.getFileContent(0));
        QCOMPARE(*m_parser.getFileContent(0), twoLines);
    }
}

void TestFileContent::fileNumbers()
{
    QVERIFY(open(plain(twoLines)));
    for (const int i : {-1, 1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        QVERIFY(!m_parser.getFileContent(i));
        const QPair<QString, QString> checksums = m_parser.calcChecksumsForFile(i);
        QCOMPARE(checksums.first, QString());
        QCOMPARE(checksums.second, QString());
    }
}

void TestFileContent::nothingIsReported()
{
    const tresktest::MessageCapture messages;
    QVERIFY(open(storedAs(flate(twoLines), QByteArray(50, 'x'))));
    m_parser.getFileContent(0);
    m_parser.calcChecksumsForFile(0);
    QCOMPARE(int(messages.messages().size()), 0);
}

void TestFileContent::plainFileIsReadByStoredSize()
{
    QVERIFY(open(plain(twoLines).with("filesize", "3").with("cfilesize", "11")));
    QVERIFY(m_parser.getFileContent(0));
    QCOMPARE(*m_parser.getFileContent(0), twoLines.left(11));
    QCOMPARE(m_parser.calcChecksumsForFile(0).first,
             QString::fromLatin1(md5Hex(twoLines.left(11))));
}

void TestFileContent::checksums_data()
{
    QTest::addColumn<FileSpec>("file");
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QByteArray>("content");
    const QByteArray unread = deflated(twoLines);
    const QByteArray none;
    QTest::newRow("plain") << plain(twoLines) << md5Hex(twoLines) << none;
    QTest::newRow("plain, empty") << plain("") << md5Hex("") << none;
    QTest::newRow("flate") << flate(twoLines) << md5Hex(deflated(twoLines)) << md5Hex(twoLines);
    QTest::newRow("flate, empty") << flate("") << md5Hex(deflated("")) << md5Hex("");
    QTest::newRow("unknown") << storedAs(plain(twoLines), unread).with("compression", "gzip")
                             << md5Hex(unread) << none;
    // The size that the marker says is not compared.
    QTest::newRow("flate, size too small")
        << flate(twoLines).with("filesize", "3") << md5Hex(deflated(twoLines)) << md5Hex(twoLines);
    QTest::newRow("flate, size too large") << flate(twoLines).with("filesize", "3000")
                                           << md5Hex(deflated(twoLines)) << md5Hex(twoLines);
    QTest::newRow("flate, no size")
        << flate(twoLines).with("filesize", "") << md5Hex(deflated(twoLines)) << md5Hex("");
    QTest::newRow("plain, range outside the document")
        << plain(twoLines).with("cfilesize", "1000") << md5Hex("") << none;
    QTest::newRow("flate, range outside the document")
        << flate(twoLines).with("cfilesize", "1000") << md5Hex("") << md5Hex("");
    const QByteArray large = squares(5000).repeated(200);
    QTest::newRow("plain, much of a range in the document")
        << plain(large).with("cfilesize", QByteArray::number(large.size() + 1000)) << md5Hex("")
        << none;
    QTest::newRow("flate, much of a range in the document")
        << storedAs(flate(large), deflated(large, 0) + large).with("cfilesize", "3000000")
        << md5Hex("") << md5Hex("");
    QTest::newRow("flate, nothing stored")
        << storedAs(flate(twoLines), "") << md5Hex("") << md5Hex("");
}

void TestFileContent::checksums()
{
    QFETCH(FileSpec, file);
    QFETCH(QByteArray, stored);
    QFETCH(QByteArray, content);
    QVERIFY(open(file));
    const QPair<QString, QString> checksums = m_parser.calcChecksumsForFile(0);
    QCOMPARE(checksums.first, QString::fromLatin1(stored));
    QCOMPARE(checksums.second, QString::fromLatin1(content));
}

void TestFileContent::checksumsOfDamagedStream_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("no stream") << QByteArray(50, 'x');
    QTest::newRow("truncated") << deflated(twoLines).chopped(1);
    QTest::newRow("wrong checksum") << withWrongChecksum(twoLines);
    QTest::newRow("late fault") << withWrongChecksum(QByteArray(3 << 20, 'x'));
}

void TestFileContent::checksumsOfDamagedStream()
{
    QFETCH(QByteArray, stored);
    QVERIFY(open(storedAs(flate(twoLines), stored)));
    const QPair<QString, QString> checksums = m_parser.calcChecksumsForFile(0);
    QCOMPARE(checksums.first, QString::fromLatin1(md5Hex(stored)));
    QCOMPARE(checksums.second, QString::fromLatin1(md5Hex("")));
}

void TestFileContent::checksumsOfLargeFile()
{
    const QByteArray content = squares(5000).repeated(500);
    QVERIFY(open(plain(content)));
    QCOMPARE(m_parser.calcChecksumsForFile(0).first, QString::fromLatin1(md5Hex(content)));
    const QByteArray stored = deflated(content, 0);
    QVERIFY(open(storedAs(flate(content), stored)));
    QCOMPARE(m_parser.calcChecksumsForFile(0).first, QString::fromLatin1(md5Hex(stored)));
    QCOMPARE(m_parser.calcChecksumsForFile(0).second, QString::fromLatin1(md5Hex(content)));
}

QTEST_GUILESS_MAIN(TestFileContent)

#include "tst_filecontent.moc"
