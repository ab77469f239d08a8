#include "JsonDocuments.h"

#include "Command.h"
#include "Documents.h"

#include <TestFiles.h>

#include <QDir>
#include <QFile>
#include <QtTest>

#include <csignal>

using namespace tresktest;

/// What the command prints for other programs, as these take it: by the schemas in docs/schemas,
/// and in a database.
class TestJsonOutput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void outputIsAsTheSchemasSay();
    void wrongOutputIsRefused_data();
    void wrongOutputIsRefused();
    void everyNameIsDescribed();

private:
    void print(const QString& form, const QStringList& arguments);
    void printOfDamagedReading();
    void keep(const QString& form, const QByteArray& output);
    Outcome checkSchemas(const QString& outputs) const;

    TestDir m_dir;
    int m_printed = 0;
};

namespace {

QStringList words(const char* line)
{
    return text(line).split(QLatin1Char(' '));
}

} // namespace

void TestJsonOutput::initTestCase()
{
    useUtf8Paths();
    QVERIFY(QFile::link(text(TRESK_SOURCE_DIR "/samples"), m_dir.path(text("samples"))));
    QVERIFY(QDir().mkpath(m_dir.path(text("outputs"))));
    writeOddDocuments(m_dir);
}

void TestJsonOutput::keep(const QString& form, const QByteArray& output)
{
    QVERIFY2(output.startsWith('{') && output.endsWith("}\n"), qPrintable(form));
    const QString name = QStringLiteral("outputs/%1.%2.json%3")
                             .arg(form, QString::number(m_printed++),
                                  form.endsWith(text("line")) ? text("l") : QString());
    m_dir.write(name, output);
}

/// Runs the command and keeps what it prints, which ought to be of that form.
void TestJsonOutput::print(const QString& form, const QStringList& arguments)
{
    keep(form, Command(arguments).inDirectory(m_dir.path(QString())).run().output);
}

/// What is printed of documents that cannot be read to their end, or not in time.
void TestJsonOutput::printOfDamagedReading()
{
    const QString path = writeWithHole(m_dir, text("large.pdf"), 400 * 1024 * 1024);
    const QStringList verify = {text("verify"), text("--json"), path};
    const auto interrupt = [](qint64 process) {
        waitUntilRead(process, 5 * 1024 * 1024);
        kill(static_cast<pid_t>(process), SIGINT);
    };
    keep(text("verify"), Command(verify).runWhile(interrupt).output);
    const auto truncate = [&path](qint64 process) {
        waitUntilRead(process, 5 * 1024 * 1024);
        QVERIFY(QFile::resize(path, 4 * 1024 * 1024));
    };
    keep(text("verify"), Command(verify).runWhile(truncate).output);
}

Outcome TestJsonOutput::checkSchemas(const QString& outputs) const
{
    const QString script = QStringLiteral("exec '" TRESK_PYTHON "' '" TRESK_SOURCE_DIR
                                          "/tests/docs/check_schemas.py' '" TRESK_SOURCE_DIR
                                          "/docs/schemas' '%1'")
                               .arg(m_dir.path(outputs));
    return Command({}).inShell(script).run();
}

void TestJsonOutput::outputIsAsTheSchemasSay()
{
    const QStringList documents = words(
        "samples/minimal.pdf samples/report.pdf samples/nested.pdf samples/names.pdf "
        "samples/damaged.pdf odd.pdf failing.pdf incomplete.pdf");
    for (const QString& document : documents) {
        const QStringList rest = {text("--json"), document};
        print(text("log"), QStringList{text("log")} + rest);
        print(text("show"), QStringList{text("show")} + rest);
        print(text("files"), QStringList{text("files")} + rest);
        print(text("verify"), QStringList{text("verify")} + rest);
        print(text("tree"), QStringList{text("tree")} + rest);
        print(text("extract"), QStringList{text("extract")} + rest + words("-C target --force"));
        if (QTest::currentTestFailed())
            return;
    }
    const std::pair<const char*, const char*> others[] = {
        {"log", "log --json --files odd.pdf"},
        {"log", "log --json --files samples/report.pdf"},
        {"log-line", "log --jsonl --files samples/report.pdf odd.pdf"},
        {"log-line", "log --jsonl samples/nested.pdf odd.pdf"},
        {"show", "show --json odd.pdf 0"},
        {"extract", "extract --json --verify samples/report.pdf -C verified"},
        {"verify", "verify --json odd.pdf none.pdf missing.pdf samples/names.pdf"},
        {"find", "find --json a samples odd.pdf"},
        {"find", "find --json turbine samples"},
        {"find", "find --json s:iswfs bare.pdf odd.pdf"},
        {"find", "find --json f:isinfile odd.pdf samples"},
        {"find-line", "find --jsonl f:isoutfile&&s:iswfs odd.pdf samples"},
        {"find-line", "find --jsonl f:filename_%contains_stray odd.pdf"},
        {"find-errors", "find --json (:tool== samples"},
        {"find-errors", "find --json \U0001f600:titel<\U0001f600 samples"},
        {"tree", "tree --json bare.pdf"},
        {"diff", "diff --json samples/report.pdf samples/nested.pdf"},
        {"diff", "diff --json samples/report.pdf samples/report.pdf"},
        {"diff", "diff --json -n 5 before.pdf after.pdf"},
        {"diff", "diff --json bare.pdf barer.pdf"},
        {"args", "args --json samples/report.args"},
        {"args", "args --json all.args"},
        {"args", "args --json faulty.args"},
        {"args", "args --json doubtful.args"},
        {"args", "args --json none.args"},
        {"args-tokens", "args --highlight --json all.args"},
        {"args-tokens", "args --highlight --json faulty.args"},
    };
    for (const auto& [form, line] : others)
        print(text(form), words(line).replaceInStrings(text("_"), text(" ")));
    printOfDamagedReading();

    const Outcome outcome = checkSchemas(text("outputs"));
    QVERIFY2(outcome.exitCode == 0, outcome.output.left(3000) + outcome.errors.right(300));
    QVERIFY2(outcome.output.contains(" ways to spoil them\n"), outcome.output);
}

void TestJsonOutput::wrongOutputIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("output");
    const QByteArray right = R"({"schema":"tresk-find-line/1","document":"a","bindings":{}})";
    const auto row = [](const char* name, const char* file, const QByteArray& output) {
        QTest::newRow(name) << text(file) << output;
    };
    row("other version", "find-line.1.json", QByteArray(right).replace("/1", "/2"));
    row("other form", "find.1.json", right);
    row("more", "find-line.1.json", QByteArray(right).replace("{}", "{},\"more\":1"));
    row("second line", "find-line.1.jsonl", right + "\n{}\n");
}

void TestJsonOutput::wrongOutputIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, output);
    QVERIFY(QDir().mkpath(m_dir.path(text("wrong"))));
    const QString path = m_dir.write(text("wrong/") + name, output);
    const Outcome outcome = checkSchemas(text("wrong"));
    QVERIFY(QFile::remove(path));
    QCOMPARE(outcome.exitCode, 1);
    QVERIFY2(outcome.output.startsWith(name.toUtf8() + ": "), outcome.output.left(3000));
}

void TestJsonOutput::everyNameIsDescribed()
{
    const QString manual = QString::fromUtf8(readFile(text(TRESK_SOURCE_DIR "/docs/json.md")));
    const QDir schemas(text(TRESK_SOURCE_DIR "/docs/schemas"));
    const QStringList files = schemas.entryList({text("*.schema.json")});
    QCOMPARE(files.size(), 9);
    const QString unescapedOnes = text("Unescaped");
    for (const QString& file : files) {
        QVERIFY2(manual.contains(QStringLiteral("(schemas/%1)").arg(file)), qPrintable(file));
        const QJsonObject schema = jsonObject(readFile(schemas.filePath(file)));
        QStringList members = schema.value(text("properties")).toObject().keys();
        const QJsonObject definitions = schema.value(text("$defs")).toObject();
        for (const QJsonValue& definition : definitions)
            members += definition.toObject().value(text("properties")).toObject().keys();
        for (const QString& member : qAsConst(members)) {
            const bool described = member.endsWith(unescapedOnes)
                || manual.contains(QStringLiteral("`%1`").arg(member));
            QVERIFY2(described, qPrintable(file + text(": ") + member));
        }
    }
}

QTEST_GUILESS_MAIN(TestJsonOutput)
#include "tst_json_output.moc"
