#include "DocumentWriter.h"
#include "PdfHost.h"

#include <QTest>

using namespace tresktest;

namespace {

/// A PDF of two objects, put together by hand, with @p comment as its second line.
QByteArray pdf(const QByteArray& comment = "%\xe2\xe3\xcf\xd3\n",
               const QByteArray& entry = QByteArray())
{
    QByteArray bytes = "%PDF-1.4\n" + comment;
    const auto first = bytes.size();
    bytes += "1 0 obj\n<</Type/Catalog/Pages 2 0 R>>\nendobj\n";
    const auto second = bytes.size();
    bytes += "2 0 obj\n<</Type/Pages/Kids[]/Count 0>>\nendobj\n";
    const auto table = bytes.size();
    const auto offset = [](qsizetype value) {
        return QByteArray::number(qint64(value)).rightJustified(10, '0');
    };
    bytes += "xref\n0 1\n0000000000 65535 f \n1 2\n" + offset(first) + " 00000 n \n"
        + offset(second) + " 00000 n \n";
    bytes += "trailer\n<</Size 3/Root 1 0 R" + entry + ">>\nstartxref\n"
        + QByteArray::number(qint64(table)) + "\n%%EOF\n";
    return bytes;
}

/// Whether the table of @p bytes has the places of its objects and startxref that of the table.
bool isConsistent(const QByteArray& bytes)
{
    const auto table = bytes.indexOf("\nxref\n") + 1;
    const auto entries = bytes.indexOf("1 2\n", table) + 4;
    const auto offset = [&](int i) { return bytes.mid(entries + 20 * i, 10).toInt(); };
    return bytes.mid(entries - 24, 20) == "0000000000 65535 f \n"
        && bytes.mid(offset(0)).startsWith("1 0 obj") && bytes.mid(offset(1)).startsWith("2 0 obj")
        && bytes.contains("startxref\n" + QByteArray::number(qint64(table)) + "\n%%EOF\n");
}

} // namespace

class TestPdfHost : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void headerBehindComment();
    void headerBehindFirstLine();
    void headerBehindCarriageReturn();
    void unsuitable_data();
    void unsuitable();
    void tail();
};

void TestPdfHost::headerBehindComment()
{
    QVERIFY(isConsistent(pdf()));
    const std::optional<QByteArray> host = pdfWithHeader(pdf(), nullptr);
    QVERIFY(host);
    QVERIFY(host->startsWith("%PDF-1.4\n%\xe2\xe3\xcf\xd3\n" + headerLine() + "\n1 0 obj"));
    QVERIFY(isConsistent(*host));
}

void TestPdfHost::headerBehindFirstLine()
{
    const std::optional<QByteArray> host = pdfWithHeader(pdf(QByteArray()), nullptr);
    QVERIFY(host);
    QVERIFY(host->startsWith("%PDF-1.4\n" + headerLine() + "\n1 0 obj"));
    QVERIFY(isConsistent(*host));
}

void TestPdfHost::headerBehindCarriageReturn()
{
    // Without a line feed before it, the header would not begin a line.
    const std::optional<QByteArray> host = pdfWithHeader(pdf("%\xe2\xe3\r"), nullptr);
    QVERIFY(host);
    QVERIFY(host->startsWith("%PDF-1.4\n%\xe2\xe3\r\n" + headerLine() + "\n1 0 obj"));
    QVERIFY(isConsistent(*host));
}

void TestPdfHost::unsuitable_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("text") << QByteArray("text\n");
    QTest::newRow("no startxref") << pdf().replace("startxref", "startyref");
    QTest::newRow("no table") << pdf().replace("\nxref", "\nxxxx");
    QTest::newRow("older table") << pdf("%\xe2\n", "/Prev 10");
    QTest::newRow("hybrid table") << pdf("%\xe2\n", "/XRefStm 10");
    QTest::newRow("linearised") << pdf().replace("/Type/Catalog", "/Linearized 1/Type/Catalog");
    QTest::newRow("NUL byte") << pdf(QByteArray("%\0\n", 3));
}

void TestPdfHost::unsuitable()
{
    QFETCH(QByteArray, bytes);
    QString error;
    QVERIFY(!pdfWithHeader(bytes, &error));
    QVERIFY(!error.isEmpty());
}

void TestPdfHost::tail()
{
    const QByteArray table = QByteArray::number(qint64(pdf().indexOf("\nxref\n")) + 1);
    QCOMPARE(pdfTail(pdf()), QByteArray("startxref\n" + table + "\n%%EOF\n"));
    QCOMPARE(pdfTail(pdf() + "%a history\n" + pdfTail(pdf())), pdfTail(pdf()));
    QCOMPARE(pdfTail("text"), QByteArray());
}

QTEST_APPLESS_MAIN(TestPdfHost)

#include "tst_pdfhost.moc"
