#include "DocumentWriter.h"
#include "EmbeddedFiles.h"

#include <tresk/Inflater.h>

#include <QRandomGenerator>
#include <QTest>

using tresk::Inflater;
using tresktest::deflated;
using tresktest::withWrongChecksum;

namespace {

const QByteArray text = "The content of a file, the content of a file, and its end.\n";
const int bufferSize = 1024 * 1024;

QByteArray randomContent(int size)
{
    QRandomGenerator random(42);
    QByteArray content(size, '\0');
    for (char& byte : content)
        byte = static_cast<char>(random.bounded(256));
    return content;
}

/// Decodes @p stream in pieces of @p size bytes.
QByteArray inPieces(Inflater& inflater, const QByteArray& stream, int size)
{
    QByteArray content;
    for (int from = 0; from < stream.size(); from += size)
        content += inflater.inflateData(stream.mid(from, size));
    return content;
}

} // namespace

class TestInflater : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void newInflater();
    void wholeStream_data();
    void wholeStream();
    void pieces_data();
    void pieces();
    void pieceOfOneByte();
    void finishesWithTheLastByte();
    void emptyInputChangesNothing();
    void inputBehindTheEndIsIgnored();
    void garbage_data();
    void garbage();
    void errorDiscardsWhatTheCallDecoded();
    void earlierPiecesAreNotAffectedByAnError();
    void resetAfterError();
    void resetAfterEnd();
    void resetInTheMiddle();
    void fullBuffer_data();
    void fullBuffer();
};

void TestInflater::newInflater()
{
    const Inflater inflater;
    QVERIFY(inflater.isValid());
    QVERIFY(!inflater.hasFinished());
}

void TestInflater::wholeStream_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("level");
    for (const int level : {0, 1, 6, 9}) {
        QTest::addRow("empty, level %d", level) << QByteArray() << level;
        QTest::addRow("text, level %d", level) << text << level;
        QTest::addRow("NUL bytes, level %d", level) << QByteArray(100000, '\0') << level;
        QTest::addRow("random, level %d", level) << randomContent(300000) << level;
    }
    QTest::newRow("twenty buffers") << QByteArray(20 * bufferSize, 'x') << 9;
}

void TestInflater::wholeStream()
{
    QFETCH(QByteArray, content);
    QFETCH(int, level);
    Inflater inflater;
    QVERIFY(inflater.inflateData(deflated(content, level)) == content);
    QVERIFY(inflater.hasFinished());
    QVERIFY(inflater.isValid());
}

void TestInflater::pieces_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {1, 2, 3, 7, 100, 4096, 65536})
        QTest::addRow("%d", size) << size;
}

void TestInflater::pieces()
{
    QFETCH(int, size);
    const QByteArray content = text.repeated(300) + randomContent(20000);
    Inflater inflater;
    QVERIFY(inPieces(inflater, deflated(content), size) == content);
    QVERIFY(inflater.hasFinished());
    QVERIFY(inflater.isValid());
}

void TestInflater::pieceOfOneByte()
{
    const QByteArray stream = deflated(text);
    Inflater whole;
    Inflater bytewise;
    QCOMPARE(inPieces(bytewise, stream, 1), whole.inflateData(stream));
}

void TestInflater::finishesWithTheLastByte()
{
    const QByteArray stream = deflated(text);
    Inflater inflater;
    QByteArray content;
    for (int i = 0; i < stream.size(); ++i) {
        QVERIFY(!inflater.hasFinished());
        content += inflater.inflateData(stream.mid(i, 1));
        QVERIFY(inflater.isValid());
    }
    QVERIFY(inflater.hasFinished());
    QCOMPARE(content, text);
}

void TestInflater::emptyInputChangesNothing()
{
    const QByteArray stream = deflated(text);
    Inflater inflater;
    QCOMPARE(inflater.inflateData(QByteArray()), QByteArray());
    QVERIFY(inflater.isValid());
    QVERIFY(!inflater.hasFinished());
    QByteArray content = inflater.inflateData(stream.left(10));
    QCOMPARE(inflater.inflateData(QByteArray("")), QByteArray());
    content += inflater.inflateData(stream.mid(10));
    QCOMPARE(content, text);
    QCOMPARE(inflater.inflateData(QByteArray()), QByteArray());
    QVERIFY(inflater.hasFinished());
    QVERIFY(inflater.isValid());

    Inflater broken;
    broken.inflateData("garbage");
    QCOMPARE(broken.inflateData(QByteArray()), QByteArray());
    QVERIFY(!broken.isValid());
}

void TestInflater::inputBehindTheEndIsIgnored()
{
    Inflater inflater;
    QCOMPARE(inflater.inflateData(deflated(text) + "more"), text);
    QVERIFY(inflater.hasFinished());
    QVERIFY(inflater.isValid());
    QCOMPARE(inflater.inflateData("still more"), QByteArray());
    QCOMPARE(inflater.inflateData(deflated(text)), QByteArray());
    QVERIFY(inflater.hasFinished());
    QVERIFY(inflater.isValid());
}

void TestInflater::garbage_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::newRow("text") << QByteArray("this is no stream");
    QTest::newRow("NUL bytes") << QByteArray(100, '\0');
    QTest::newRow("gzip") << QByteArray("\x1f\x8b\x08\0\0\0\0\0\0\x03\x03\0\0\0\0\0\0\0\0\0", 20);
    QTest::newRow("needs a dictionary") << QByteArray("\x78\xbb\x01\x02\x03\x04\x01\x02\x03", 9);
    QTest::newRow("bad block") << QByteArray("\x78\x9c\xff\xff\xff\xff", 6);
    QTest::newRow("wrong checksum") << withWrongChecksum(text);
    QTest::newRow("wrong checksum of nothing") << withWrongChecksum("");
}

void TestInflater::garbage()
{
    QFETCH(QByteArray, input);
    Inflater inflater;
    QCOMPARE(inflater.inflateData(input), QByteArray());
    QVERIFY(!inflater.isValid());
    QVERIFY(!inflater.hasFinished());
    QCOMPARE(inflater.inflateData(deflated(text)), QByteArray());
    QCOMPARE(inflater.inflateData(deflated(text)), QByteArray());
    QVERIFY(!inflater.isValid());
    QVERIFY(!inflater.hasFinished());
}

void TestInflater::errorDiscardsWhatTheCallDecoded()
{
    Inflater inflater;
    QCOMPARE(inflater.inflateData(withWrongChecksum(QByteArray(3 * bufferSize, 'x'))),
             QByteArray());
    QVERIFY(!inflater.isValid());
}

void TestInflater::earlierPiecesAreNotAffectedByAnError()
{
    const QByteArray content = randomContent(100000);
    const QByteArray stream = withWrongChecksum(content);
    Inflater inflater;
    const QByteArray decoded = inflater.inflateData(stream.left(60000));
    QVERIFY(!decoded.isEmpty());
    QVERIFY(content.startsWith(decoded));
    QVERIFY(inflater.isValid());
    QCOMPARE(inflater.inflateData(stream.mid(60000)), QByteArray());
    QVERIFY(!inflater.isValid());
}

void TestInflater::resetAfterError()
{
    Inflater inflater;
    inflater.inflateData("garbage");
    inflater.reset();
    QVERIFY(inflater.isValid());
    QVERIFY(!inflater.hasFinished());
    QCOMPARE(inflater.inflateData(deflated(text)), text);
    QVERIFY(inflater.hasFinished());
}

void TestInflater::resetAfterEnd()
{
    Inflater inflater;
    inflater.inflateData(deflated(text) + "rest");
    inflater.reset();
    QVERIFY(!inflater.hasFinished());
    QCOMPARE(inflater.inflateData(deflated("another")), QByteArray("another"));
    QVERIFY(inflater.hasFinished());
}

void TestInflater::resetInTheMiddle()
{
    Inflater inflater;
    inflater.inflateData(deflated(text).left(20));
    inflater.reset();
    inflater.reset();
    QCOMPARE(inflater.inflateData(deflated(text)), text);
    QVERIFY(inflater.isValid());
}

void TestInflater::fullBuffer_data()
{
    QTest::addColumn<QByteArray>("content");
    for (const int size : {bufferSize - 1, bufferSize, bufferSize + 1, 2 * bufferSize}) {
        QTest::addRow("repeated, %d bytes", size) << QByteArray(size, 'x');
        QTest::addRow("random, %d bytes", size) << randomContent(size);
    }
}

void TestInflater::fullBuffer()
{
    // However a stream is cut, a buffer that is full just where a piece ends is no fault.
    QFETCH(QByteArray, content);
    const QByteArray stream = deflated(content, 1);
    const auto size = int(stream.size());
    for (int cut = qMax(0, size - 40); cut <= size; ++cut) {
        Inflater inflater;
        QByteArray decoded = inflater.inflateData(stream.left(cut));
        QVERIFY(inflater.isValid());
        decoded += inflater.inflateData(stream.mid(cut));
        QVERIFY(inflater.isValid());
        QVERIFY(inflater.hasFinished());
        QVERIFY(decoded == content);
    }
}

QTEST_GUILESS_MAIN(TestInflater)

#include "tst_inflater.moc"
