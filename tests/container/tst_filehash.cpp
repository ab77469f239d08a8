#include <tresk/FileHash.h>
#include <tresk/Summary.h>
#include <tresk/TreskParser.h>

#include <QTest>

using tresk::FileSummary;
using tresk::FileTag;
using tresk::makeFileHash;

class TestFileHash : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hash_data();
    void hash();
    void otherFieldsDoNotCount();
    void otherFieldsOfSummaryDoNotCount();
    void summaryOfTag();
    void defaultSummary();
    void namesAreNotEscaped();
};

void TestFileHash::hash_data()
{
    QTest::addColumn<QString>("filename");
    QTest::addColumn<QString>("md5file");
    QTest::addColumn<int>("filesize");
    QTest::addColumn<int>("section");
    QTest::addColumn<QString>("expected");
    const QString md5 = QStringLiteral("d41d8cd98f00b204e9800998ecf8427e");
    QTest::newRow("empty file") << QStringLiteral("a.txt") << md5 << 0 << 2
                                << QStringLiteral("file: <2>-<a.txt>-<%1>-<0>").arg(md5);
    QTest::newRow("nothing") << QString() << QString() << 0 << 0
                             << QStringLiteral("file: <0>-<>-<>-<0>");
    QTest::newRow("no size, no section")
        << QStringLiteral("a") << QString() << -1 << -1 << QStringLiteral("file: <-1>-<a>-<>-<-1>");
    QTest::newRow("largest numbers") << QStringLiteral("a") << QString() << 2147483647 << 2147483647
                                     << QStringLiteral("file: <2147483647>-<a>-<>-<2147483647>");
    QTest::newRow("placeholders in the name")
        << QStringLiteral("%1%2%3%4%L1") << md5 << 5 << 1
        << QStringLiteral("file: <1>-<%1%2%3%4%L1>-<") + md5 + QStringLiteral(">-<5>");
    QTest::newRow("escapes stay") << QStringLiteral("\u00e4\\]\\n") << QString() << 1 << 1
                                  << QStringLiteral("file: <1>-<\u00e4\\]\\n>-<>-<1>");
}

void TestFileHash::hash()
{
    QFETCH(QString, filename);
    QFETCH(QString, md5file);
    QFETCH(int, filesize);
    QFETCH(int, section);
    QFETCH(QString, expected);
    FileTag file;
    file.filename = filename;
    file.md5file = md5file;
    file.filesize = filesize;
    QCOMPARE(makeFileHash(file, section), expected);

    FileSummary summary;
    summary.filename = filename;
    summary.uncompressedMD5 = md5file;
    summary.uncompressedSize = filesize;
    QCOMPARE(makeFileHash(summary, section), expected);
}

void TestFileHash::otherFieldsDoNotCount()
{
    FileTag file;
    file.filename = QStringLiteral("a");
    file.filesize = 1;
    FileTag other = file;
    other.id = 7;
    other.pos = 100;
    other.cfilesize = 50;
    other.compression = QStringLiteral("flate");
    other.md5cfile = QStringLiteral("900150983cd24fb0d6963f7d28e17f72");
    QCOMPARE(makeFileHash(other, 3), makeFileHash(file, 3));
    QVERIFY(makeFileHash(file, 3) != makeFileHash(file, 4));
}

void TestFileHash::otherFieldsOfSummaryDoNotCount()
{
    FileSummary file;
    file.filename = QStringLiteral("a");
    file.uncompressedSize = 1;
    FileSummary other = file;
    other.tagId = 7;
    other.filepath = QStringLiteral("b");
    other.embedded = true;
    other.compressedSize = 50;
    other.compressedMD5 = QStringLiteral("900150983cd24fb0d6963f7d28e17f72");
    other.filePurpose = QStringLiteral("InFile");
    other.state = 2;
    QCOMPARE(makeFileHash(other, 3), makeFileHash(file, 3));
    QVERIFY(makeFileHash(file, 3) != makeFileHash(file, 4));
}

void TestFileHash::summaryOfTag()
{
    FileTag file;
    file.id = 5;
    file.filename = QStringLiteral("a\\]%1");
    file.filesize = 100;
    file.cfilesize = 50;
    file.md5file = QStringLiteral("d41d8cd98f00b204e9800998ecf8427e");
    file.md5cfile = QStringLiteral("900150983cd24fb0d6963f7d28e17f72");
    QCOMPARE(makeFileHash(tresk::makeFileSummaryFromFileTag(file), 12), makeFileHash(file, 12));
}

void TestFileHash::defaultSummary()
{
    QCOMPARE(makeFileHash(FileSummary(), 0), QStringLiteral("file: <0>-<>-<>-<-1>"));
}

void TestFileHash::namesAreNotEscaped()
{
    FileTag one;
    one.filename = QStringLiteral("a>-<b");
    one.md5file = QStringLiteral("c");
    FileTag other;
    other.filename = QStringLiteral("a");
    other.md5file = QStringLiteral("b>-<c");
    QCOMPARE(makeFileHash(one, 0), makeFileHash(other, 0));

    FileSummary summary;
    summary.filename = QStringLiteral("a");
    summary.uncompressedMD5 = QStringLiteral("b>-<c");
    summary.uncompressedSize = 0;
    QCOMPARE(makeFileHash(one, 0), makeFileHash(summary, 0));
}

QTEST_GUILESS_MAIN(TestFileHash)

#include "tst_filehash.moc"
