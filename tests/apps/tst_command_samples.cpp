#include "Command.h"

#include <DocumentWriter.h>
#include <TestFiles.h>

#include <QDir>
#include <QJsonArray>
#include <QSet>
#include <QtTest>

using namespace tresktest;

/// All commands on the sample documents.
class TestCommandSamples : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everythingComesOut_data();
    void everythingComesOut();
    void everyStepSpeaks_data();
    void everyStepSpeaks();
    void soundOnesAreAllRight_data();
    void soundOnesAreAllRight();
    void damageIsContained();
    void damageIsTold();

private:
    QJsonObject json(const QStringList& arguments, int exitCode = 0) const;

    TestDir m_dir;
};

namespace {

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

void TestCommandSamples::everyStepSpeaks_data()
{
    everythingComesOut_data();
    QTest::newRow("damaged") << text("damaged.pdf") << 3;
}

void TestCommandSamples::everyStepSpeaks()
{
    QFETCH(QString, name);
    QFETCH(int, steps);
    const QJsonArray shown = json({text("show"), sample(name)}).value(text("steps")).toArray();
    QCOMPARE(static_cast<int>(shown.size()), steps);
    int attributes = 0;
    for (const auto& value : shown) {
        const QJsonObject object = value.toObject();
        const QJsonObject summary = object.value(text("summary")).toObject();
        for (const char* field : {"time", "title", "tool", "user", "host", "command"})
            QVERIFY2(!summary.value(text(field)).toString().isEmpty(), field);
        attributes += static_cast<int>(summary.value(text("attributes")).toArray().size());
        // Everything embedded is shown, once, and what is said to be embedded is.
        QSet<int> ids;
        for (const auto& file : object.value(text("files")).toArray()) {
            const QJsonObject entry = file.toObject();
            const QJsonValue id = entry.value(text("id"));
            const QString path = entry.value(text("path")).toString();
            if (id.isNull())
                QVERIFY(!entry.value(text("embedded")).toBool() || path.contains(text("R&amp;D")));
            else
                ids.insert(id.toInt());
        }
        QCOMPARE(static_cast<int>(ids.size()), object.value(text("fileCount")).toInt());
    }
    if (name == text("report.pdf"))
        QCOMPARE(attributes, 8);
}

void TestCommandSamples::soundOnesAreAllRight_data()
{
    everythingComesOut_data();
}

void TestCommandSamples::soundOnesAreAllRight()
{
    QFETCH(QString, name);
    QFETCH(int, steps);
    const QJsonObject counts =
        json({text("verify"), sample(name)}).value(text("counts")).toObject();
    QCOMPARE(counts.value(text("steps")).toInt(), steps);
    QCOMPARE(counts.value(text("right")).toInt(), steps + counts.value(text("files")).toInt());
    // The inner documents of one are no different.
    if (name != text("nested.pdf"))
        return;
    const QString target = m_dir.path(text("inner"));
    QCOMPARE(runTresk({text("extract"), text("--verify"), sample(name), text("1"), text("3"),
                       text("-C"), target})
                 .exitCode,
             0);
    const QJsonObject inner = json({text("verify"), target + text("/vibration-plot.pdf.tresk"),
                                    target + text("/housing-drawing.pdf.tresk")});
    QCOMPARE(inner.value(text("counts")).toObject().value(text("steps")).toInt(), 3);
}

void TestCommandSamples::damageIsTold()
{
    const QJsonObject verified = json({text("verify"), sample(text("damaged.pdf"))}, 1);
    const QJsonObject only = verified.value(text("documents")).toArray()[0].toObject();
    const auto statusesOf = [&only](const char* items) {
        QStringList statuses;
        for (const auto& item : only.value(text(items)).toArray())
            statuses += item.toObject().value(text("status")).toString();
        return statuses;
    };
    const QString right = text("right");
    const QString differs = text("differs");
    QCOMPARE(statusesOf("steps"), QStringList({differs, differs, right}));
    QCOMPARE(statusesOf("files"),
             QStringList({differs, right, text("brokenStream"), right, right, right}));
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
