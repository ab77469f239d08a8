#include "Command.h"

#include <TestFiles.h>

#include <QFile>
#include <QtTest>

using namespace tresktest;

/// Whether the examples in the manual of the command are what it prints.
class TestCommandManual : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void exampleIsReal_data();
    void exampleIsReal();

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

    const QByteArray manual = readFile(QStringLiteral(TRESK_SOURCE_DIR "/docs/command-line.md"));
    const QVector<Example> examples = examplesIn(QString::fromUtf8(manual));
    QVERIFY(examples.size() >= 5);
    for (const Example& example : examples)
        QTest::newRow(qPrintable(example.command)) << example.command << example.output;
}

void TestCommandManual::exampleIsReal()
{
    QFETCH(QString, command);
    QFETCH(QString, output);
    // The examples follow each other in one directory, as the reader sees them.
    const QString script = QStringLiteral("bin=$1; tresk() { \"$bin\" \"$@\"; }; exec 2>&1; ");
    const Outcome outcome =
        Command({}).inDirectory(m_dir.path(QString())).inShell(script + command).run();
    QCOMPARE(QString::fromUtf8(outcome.output), output);
}

QTEST_GUILESS_MAIN(TestCommandManual)
#include "tst_command_manual.moc"
