#include <tresk/MD5Generator.h>

#include <QTest>

using tresk::MD5Generator;

namespace {

const QString digestOfNothing = QStringLiteral("d41d8cd98f00b204e9800998ecf8427e");
const QString digestOfAbc = QStringLiteral("900150983cd24fb0d6963f7d28e17f72");

} // namespace

class TestMD5Generator : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void metaObject();
    void digest_data();
    void digest();
    void pieces();
    void dataInTheConstructor();
    void emptyUpdate();
    void digestTwice();
    void updateBehindDigest();
    void resetStartsOver();
    void resetInTheMiddle();
};

void TestMD5Generator::metaObject()
{
    const QMetaObject& meta = MD5Generator::staticMetaObject;
    QCOMPARE(meta.className(), "tresk::MD5Generator");
    QCOMPARE(meta.superClass()->className(), "QObject");
    QCOMPARE(meta.methodCount(), meta.superClass()->methodCount());
}

void TestMD5Generator::digest_data()
{
    // The test suite of RFC 1321, appendix A.5, and lengths around a block of 64 bytes.
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("expected");
    QTest::newRow("nothing") << QByteArray() << digestOfNothing;
    QTest::newRow("a") << QByteArray("a") << QStringLiteral("0cc175b9c0f1b6a831c399e269772661");
    QTest::newRow("abc") << QByteArray("abc") << digestOfAbc;
    QTest::newRow("message digest")
        << QByteArray("message digest") << QStringLiteral("f96b697d7cb7938d525a2f31aaf161d0");
    QTest::newRow("letters") << QByteArray("abcdefghijklmnopqrstuvwxyz")
                             << QStringLiteral("c3fcd3d76192e4007dfb496cca67e13b");
    QTest::newRow("letters and digits")
        << QByteArray("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789")
        << QStringLiteral("d174ab98d277d9f5a5611c2c9f419d9f");
    QTest::newRow("digits") << QByteArray("1234567890").repeated(8)
                            << QStringLiteral("57edf4a22be3c955ac49da2e2107b67a");
    QTest::newRow("NUL byte") << QByteArray(1, '\0')
                              << QStringLiteral("93b885adfe0da089cdf634904fd59f71");
    QTest::newRow("million") << QByteArray(1000000, 'a')
                             << QStringLiteral("7707d6ae4e027c70eea2a935c2296f21");
}

void TestMD5Generator::digest()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, expected);
    MD5Generator generator;
    generator.update(data);
    QCOMPARE(generator.getHexDigest(), expected);
}

void TestMD5Generator::pieces()
{
    const QByteArray data = QByteArray("0123456789").repeated(100);
    const QString expected = MD5Generator(data).getHexDigest();
    for (const int size : {1, 3, 55, 56, 63, 64, 65, 128, 999}) {
        MD5Generator generator;
        for (int from = 0; from < data.size(); from += size)
            generator.update(data.mid(from, size));
        QCOMPARE(generator.getHexDigest(), expected);
    }
}

void TestMD5Generator::dataInTheConstructor()
{
    MD5Generator whole(QByteArray("abc"));
    QCOMPARE(whole.getHexDigest(), digestOfAbc);
    MD5Generator continued(QByteArray("a"));
    continued.update("bc");
    QCOMPARE(continued.getHexDigest(), digestOfAbc);
    MD5Generator empty{QByteArray()};
    QCOMPARE(empty.getHexDigest(), digestOfNothing);
}

void TestMD5Generator::emptyUpdate()
{
    MD5Generator generator;
    generator.update(QByteArray());
    generator.update("abc");
    generator.update("");
    QCOMPARE(generator.getHexDigest(), digestOfAbc);
}

void TestMD5Generator::digestTwice()
{
    MD5Generator generator(QByteArray("abc"));
    QCOMPARE(generator.getHexDigest(), digestOfAbc);
    QCOMPARE(generator.getHexDigest(), digestOfAbc);
}

void TestMD5Generator::updateBehindDigest()
{
    MD5Generator generator(QByteArray("abc"));
    QCOMPARE(generator.getHexDigest(), digestOfAbc);
    generator.update("more");
    QCOMPARE(generator.getHexDigest(), digestOfAbc);
}

void TestMD5Generator::resetStartsOver()
{
    MD5Generator generator(QByteArray("abc"));
    generator.getHexDigest();
    generator.update("more");
    generator.reset();
    QCOMPARE(generator.getHexDigest(), digestOfNothing);
    generator.reset();
    generator.update("abc");
    QCOMPARE(generator.getHexDigest(), digestOfAbc);
}

void TestMD5Generator::resetInTheMiddle()
{
    MD5Generator generator(QByteArray("something else"));
    generator.reset();
    generator.update("abc");
    QCOMPARE(generator.getHexDigest(), digestOfAbc);
}

QTEST_GUILESS_MAIN(TestMD5Generator)

#include "tst_md5generator.moc"
