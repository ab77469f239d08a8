#include "Command.h"

#include <TestFiles.h>

#include <tresk/TreskFindQuery.h>

#include <QFile>
#include <QRegularExpression>
#include <QtTest>

using namespace tresktest;

/// Whether what users read about the command is true.
class TestCommandManual : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void exampleIsReal_data();
    void exampleIsReal();
    void sampleIsShownAsItIs();
    void allAttributesAreListed();
    void attributeHasItsType_data();
    void attributeHasItsType();

private:
    TestDir m_dir;
};

namespace {

struct Example {
    QString command;
    QString output;
};

/// The commands of all console blocks of a Markdown text, each with what it prints.
QVector<Example> examplesIn(const QString& text)
{
    QVector<Example> examples;
    bool inBlock = false;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1String("```")))
            inBlock = line == QLatin1String("```console");
        else if (inBlock && line.startsWith(QLatin1String("$ ")))
            examples += {line.mid(2), QString()};
        else if (inBlock && !examples.isEmpty())
            examples.last().output += line + QLatin1Char('\n');
    }
    return examples;
}

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

void TestCommandManual::initTestCase()
{
    const QString samples = QStringLiteral(TRESK_SOURCE_DIR "/samples");
    QVERIFY(QFile::link(samples, m_dir.path(QStringLiteral("samples"))));
}

void TestCommandManual::exampleIsReal_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("output");

    for (const char* name : {"argument-files.md", "command-line.md", "format.md", "query.md"}) {
        const QString path = QStringLiteral(TRESK_SOURCE_DIR "/docs/") + text(name);
        const QVector<Example> examples = examplesIn(QString::fromUtf8(readFile(path)));
        QVERIFY(examples.size() >= 10);
        for (const Example& example : examples) {
            const QString row = text(name) + text(": ") + example.command;
            QTest::newRow(qPrintable(row)) << example.command << example.output;
        }
    }
}

void TestCommandManual::exampleIsReal()
{
    QFETCH(QString, command);
    QFETCH(QString, output);
    // The examples follow each other in one directory, as the reader sees them.
    const QString script = QStringLiteral("PATH=$(dirname \"$1\"):$PATH; exec 2>&1; ");
    const Outcome outcome =
        Command({}).inDirectory(m_dir.path(QString())).inShell(script + command).run();
    QCOMPARE(QString::fromUtf8(outcome.output), output);
}

void TestCommandManual::sampleIsShownAsItIs()
{
    const QByteArray page = readFile(QStringLiteral(TRESK_SOURCE_DIR "/docs/argument-files.md"));
    const QByteArray sample = readFile(QStringLiteral(TRESK_SOURCE_DIR "/samples/report.args"));
    QVERIFY(!sample.isEmpty());
    QVERIFY(page.contains("```\n" + sample + "```\n"));
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
