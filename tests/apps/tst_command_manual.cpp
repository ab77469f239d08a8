#include "Command.h"

#include <TestFiles.h>

#include <tresk/TreskFindQuery.h>

#include <QRegularExpression>
#include <QtTest>

using namespace tresktest;

/// Whether what users read about the command is true.
class TestCommandManual : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sampleIsShownAsItIs();
    void allAttributesAreListed();
    void attributeHasItsType_data();
    void attributeHasItsType();
};

namespace {

/// The attributes in the table of the query language, each with its type.
QVector<QStringList> listedAttributes()
{
    const QByteArray manual = readFile(QStringLiteral(TRESK_SOURCE_DIR "/docs/query.md"));
    const QRegularExpression row(text("^\\| `([^`]+)` \\|[^|]*\\|[^|]*\\| (\\w[\\w ]*) \\|$"),
                                 QRegularExpression::MultilineOption);
    QVector<QStringList> attributes;
    auto rows = row.globalMatch(QString::fromUtf8(manual));
    while (rows.hasNext())
        attributes += rows.next().capturedTexts().mid(1);
    return attributes;
}

bool isValid(const QString& query, const QString& attribute)
{
    return tresk::TreskFindQuery(query.arg(attribute)).isValid();
}

} // namespace

void TestCommandManual::sampleIsShownAsItIs()
{
    const QByteArray page = readFile(QStringLiteral(TRESK_SOURCE_DIR "/docs/argument-files.md"));
    const QByteArray sample = readFile(QStringLiteral(TRESK_SOURCE_DIR "/samples/report.args"));
    QVERIFY(!sample.isEmpty());
    QVERIFY(page.contains("```text\n" + sample + "```\n"));
}

void TestCommandManual::allAttributesAreListed()
{
    QStringList names;
    for (const QStringList& attribute : listedAttributes())
        names += attribute.first();
    names.sort();
    const QString expected = text(
        "any cfilesize cmd5 command comment compressed creator description embedded filename "
        "filepath filepurpose filesize filetype hash host isfile isinfile isoutfile iswfs "
        "lastmodified md5 parentid tagid timestamp title tool toolpath treskrootfile user "
        "userattrs user{NAME}");
    QCOMPARE(names.join(QLatin1Char(' ')), expected);
}

void TestCommandManual::attributeHasItsType_data()
{
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<QString>("type");
    for (const QStringList& attribute : listedAttributes())
        QTest::newRow(qPrintable(attribute.first())) << attribute.first() << attribute.last();
}

void TestCommandManual::attributeHasItsType()
{
    QFETCH(QString, attribute);
    QFETCH(QString, type);
    QVERIFY(isValid(text(":%1 == x"), attribute));
    QCOMPARE(isValid(text("!:%1"), attribute), type == text("yes or no"));
    QCOMPARE(isValid(text(":%1 %contains x"), attribute), type != text("yes or no"));
    QCOMPARE(isValid(text(":%1 < :filesize"), attribute), type == text("number"));
    QCOMPARE(isValid(text(":%1 %isapprox 5"), attribute), type == text("number"));
    QCOMPARE(isValid(text(":%1 < :timestamp"), attribute), type == text("date"));
    QVERIFY(QStringList({text("yes or no"), text("text"), text("number"), text("date")})
                .contains(type));
}

QTEST_GUILESS_MAIN(TestCommandManual)
#include "tst_command_manual.moc"
