#include "Examples.h"
#include "JsonDocuments.h"

#include "Command.h"
#include "Documents.h"
#include "SummaryXml.h"

#include <TestFiles.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>
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
    void linesLoadIntoADatabase();

private:
    void print(const QString& form, const QStringList& arguments);
    void printOfDamagedReading();
    void keep(const QString& form, const QByteArray& output);
    Outcome checkSchemas(const QString& outputs) const;
    QByteArray answer(const char* query) const;

    TestDir m_dir;
    int m_printed = 0;
};

namespace {

/// A document with one step, whose texts and names are all the awkward one.
QByteArray awkwardDocument()
{
    const QString awkward = text(awkwardText());
    const FileSpec file = FileSpec::plain(awkward + text(".csv"), "1");
    FileSpec described = file;
    described.filename = QString::fromUtf8(escaped(file.filename)); // as the marker has it
    const QByteArray told = element("Title", awkward.toUtf8())
        + element("InFile", element("Filename", awkward.toUtf8()))
        + fileElement("OutFile", described);
    return documentWith({step(awkward, {file, summaryWith(told)})});
}

/// The commands with which the guide loads lines into a database.
QStringList loadingCommands()
{
    QStringList commands;
    const QString guide = QString::fromUtf8(readFile(text(TRESK_SOURCE_DIR "/docs/guide.md")));
    for (const Block& block : blocksIn(guide)) {
        for (const Example& example : examplesIn(block)) {
            const QString& command = example.command;
            if (command.contains(text(".jsonl")) || command.contains(text("CREATE VIEW")))
                commands += command;
        }
    }
    if (commands.size() != 6)
        QTest::qFail("the guide loads otherwise", __FILE__, __LINE__);
    return commands;
}

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

/// What the database says.
QByteArray TestJsonOutput::answer(const char* query) const
{
    return Command({text(query)})
        .inDirectory(m_dir.path(text("database")))
        .inShell(text("sqlite3 history.db \"$2\""))
        .run()
        .output;
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
        {"log", "log --json --files files.pdf"},
        {"log-line", "log --jsonl --files files.pdf"},
        {"show", "show --json files.pdf"},
        {"files", "files --json steps.pdf"},
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
        for (const auto& definition : definitions)
            members += definition.toObject().value(text("properties")).toObject().keys();
        for (const QString& member : qAsConst(members)) {
            const bool described = member.endsWith(unescapedOnes)
                || manual.contains(QStringLiteral("`%1`").arg(member));
            QVERIFY2(described, qPrintable(file + text(": ") + member));
        }
    }
}

/// The commands of the guide, as they stand, where names and texts have all in them that one might
/// trip over.
void TestJsonOutput::linesLoadIntoADatabase()
{
    if (QStandardPaths::findExecutable(text("sqlite3")).isEmpty())
        QSKIP("there is no sqlite3");
    QVERIFY(QDir().mkpath(m_dir.path(text("database/samples"))));
    const QString awkward = text(awkwardText());
    for (const QString& name : {awkward, text("\"|.pdf"), text("plain.pdf")})
        m_dir.write(text("database/samples/") + name, awkwardDocument());

    const QString script = QStringLiteral("PATH=$(dirname \"$1\"):$PATH; exec 2>&1\n");
    const Outcome outcome = Command({})
                                .inDirectory(m_dir.path(text("database")))
                                .inShell(script + loadingCommands().join(QLatin1Char('\n')))
                                .run();
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.exitCode, 0);

    // Each line is a row, in the same order, to the byte.
    const QByteArray steps = readFile(m_dir.path(text("database/steps.jsonl")));
    QCOMPARE(steps.count('\n'), 3);
    QCOMPARE(answer("SELECT line FROM log ORDER BY rowid"), steps);
    const QByteArray found = readFile(m_dir.path(text("database/found.jsonl")));
    QCOMPARE(found.count('\n'), 3);
    QCOMPARE(answer("SELECT line FROM find ORDER BY rowid"), found);

    // The texts come out as they went in.
    const QByteArray name = escaped(awkward + text(".csv")).toHex().toUpper() + '\n';
    QCOMPARE(answer("SELECT hex(document) FROM step WHERE document LIKE '%quoted%'"),
             ("samples/" + awkward.toUtf8()).toHex().toUpper() + '\n');
    QCOMPARE(answer("SELECT DISTINCT hex(title) FROM step"),
             escaped(awkward).toHex().toUpper() + '\n');
    QCOMPARE(answer("SELECT DISTINCT hex(name) FROM file WHERE purpose = 'OutFile'"), name);
    QCOMPARE(answer("SELECT DISTINCT hex(line->>'$.bindings.f.name') FROM find"), name);
}

QTEST_GUILESS_MAIN(TestJsonOutput)
#include "tst_json_output.moc"
