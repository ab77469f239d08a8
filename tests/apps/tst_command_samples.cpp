#include "Command.h"

#include <DocumentWriter.h>
#include <TestFiles.h>

#include <QDir>
#include <QJsonArray>
#include <QtTest>

using namespace tresktest;

/// All commands on the sample documents.
class TestCommandSamples : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everythingComesOut_data();
    void everythingComesOut();
    void damageIsContained();

private:
    QJsonObject json(const QStringList& arguments, int exitCode = 0) const;

    TestDir m_dir;
};

namespace {

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

QString sample(const QString& name)
{
    return QStringLiteral(TRESK_SOURCE_DIR "/samples/") + name;
}

} // namespace

void TestCommandSamples::initTestCase()
{
    useUtf8Paths();
}

/// What the command prints with --json when it ends with that exit code.
QJsonObject TestCommandSamples::json(const QStringList& arguments, int exitCode) const
{
    const Outcome outcome = runTresk(arguments + QStringList{text("--json")});
    if (outcome.exitCode != exitCode)
        QTest::qFail(outcome.errors.constData(), __FILE__, __LINE__);
    return jsonObject(outcome.output);
}

void TestCommandSamples::everythingComesOut_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("steps");
    QTest::newRow("minimal") << text("minimal.pdf") << 1;
    QTest::newRow("names") << text("names.pdf") << 3;
    QTest::newRow("nested") << text("nested.pdf") << 2;
    QTest::newRow("report") << text("report.pdf") << 4;
}

void TestCommandSamples::everythingComesOut()
{
    QFETCH(QString, name);
    QFETCH(int, steps);
    const QString document = sample(name);
    const QString target = m_dir.path(name);
    const QJsonArray listedSteps = json({text("log"), document}).value(text("steps")).toArray();
    QCOMPARE(static_cast<int>(listedSteps.size()), steps);

    const QJsonArray files = json({text("files"), document}).value(text("files")).toArray();
    const QJsonArray written =
        json({text("extract"), document, text("-C"), target}).value(text("files")).toArray();
    QVERIFY(!files.isEmpty());
    QCOMPARE(written.size(), files.size());
    for (int id = 0; id < files.size(); ++id) {
        const QJsonObject file = files[id].toObject();
        const QByteArray content = readFile(written[id].toObject().value(text("path")).toString());
        QCOMPARE(static_cast<int>(content.size()), file.value(text("size")).toInt());
        QCOMPARE(QString::fromLatin1(md5Hex(content)), file.value(text("md5")).toString());
        QVERIFY(runTresk({text("cat"), document, QString::number(id)}).output == content);
    }
    const int present = static_cast<int>(
        QDir(target).entryList(QDir::Files | QDir::Hidden | QDir::System).size());
    QCOMPARE(present, static_cast<int>(files.size()));
}

void TestCommandSamples::damageIsContained()
{
    const QString document = sample(text("damaged.pdf"));
    QCOMPARE(runTresk({text("log"), document}).exitCode, 0);
    const QJsonArray files = json({text("files"), document}).value(text("files")).toArray();
    const QString target = m_dir.path(text("damaged"));
    const QJsonArray written =
        json({text("extract"), document, text("-C"), target}, 2).value(text("files")).toArray();
    QCOMPARE(written.size(), files.size());
    int failed = 0;
    for (const auto& value : written) {
        const QJsonObject file = value.toObject();
        const bool exists = QFile::exists(file.value(text("path")).toString());
        QCOMPARE(file.value(text("status")).toString(), exists ? text("written") : text("failed"));
        failed += exists ? 0 : 1;
    }
    // The other two places are seen by their checksums alone.
    QCOMPARE(failed, 1);
}

QTEST_GUILESS_MAIN(TestCommandSamples)
#include "tst_command_samples.moc"
