#include "Examples.h"

#include "Command.h"

#include <TestFiles.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QtTest>

using namespace tresktest;

/// Whether the examples in what users read are real: all are run as they stand, page by page.
class TestExamples : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void exampleIsReal_data();
    void exampleIsReal();
    void blocksAreOfKnownKinds_data();
    void blocksAreOfKnownKinds();
    void commandsAreInBlocks_data();
    void commandsAreInBlocks();
    void linksLeadSomewhere_data();
    void linksLeadSomewhere();
    void blocksAreFound();
    void commandsAreFound();

private:
    QStringList run(const QString& page, const QVector<Example>& examples);
    QString makeCheckout(const QString& page) const;

    TestDir m_dir;
};

namespace {

const QString sources = QStringLiteral(TRESK_SOURCE_DIR "/");

// Where the system has its programs, whatever else there may be.
const QString systemPath = QStringLiteral("/usr/bin:/bin");

/// The pages, by their paths in the sources.
QStringList pages()
{
    QStringList paths = {text("README.md"), text("SECURITY.md")};
    for (const QString& name : QDir(sources + text("docs")).entryList({text("*.md")}))
        paths += text("docs/") + name;
    return paths;
}

QString contentOf(const QString& page)
{
    return QString::fromUtf8(readFile(sources + page));
}

QVector<Example> examplesOf(const QString& page)
{
    QVector<Example> examples;
    for (const Block& block : blocksIn(contentOf(page))) {
        if (block.kind == text("console"))
            examples += examplesIn(block);
    }
    return examples;
}

/// A page without what stands in its fenced blocks.
QString withoutBlocks(QString page)
{
    for (const Block& block : blocksIn(page))
        page.remove(block.lines.join(QLatin1Char('\n')));
    return page;
}

void addPages()
{
    QTest::addColumn<QString>("page");
    for (const QString& page : pages())
        QTest::newRow(qPrintable(page)) << page;
}

/// The program that a command needs besides the usual ones, if it is not there.
QString missingProgramOf(const QString& command)
{
    for (const char* name : {"sqlite3", "jsonschema"}) {
        if (command.contains(text(name) + QLatin1Char(' '))
            && QStandardPaths::findExecutable(text(name), systemPath.split(QLatin1Char(':')))
                   .isEmpty())
            return text(name);
    }
    return {};
}

} // namespace

void TestExamples::initTestCase()
{
    useUtf8Paths();
}

/// A folder for the examples of a page with what they need of a checkout: the samples, which they
/// may write beside, the documents, and `scripts/run` without anything that it would have to
/// install or build.
QString TestExamples::makeCheckout(const QString& page) const
{
    const QString root = m_dir.path(QString(page).replace(QLatin1Char('/'), QLatin1Char('-')));
    const QString script = QStringLiteral(
        "set -e; mkdir -p '%1/scripts' '%1/build/release/bin'; cd '%1'; cp -R '%2samples' .; "
        "ln -s '%2docs' docs; cp '%2scripts/run' scripts; ln -s /bin/true scripts/setup; "
        "ln -s /bin/true scripts/build; ln -s \"$1\" build/release/bin/tresk");
    const Outcome outcome = Command({}).inShell(script.arg(root, sources)).run();
    if (outcome.exitCode != 0)
        QTest::qFail(outcome.errors.constData(), __FILE__, __LINE__);
    return root;
}

/// What each of the examples prints, errors among the rest, when one shell runs them one after the
/// other.
QStringList TestExamples::run(const QString& page, const QVector<Example>& examples)
{
    const QString root = makeCheckout(page);
    QString script = QStringLiteral("cd '%1'; HOME=$PWD; PATH=$PWD/build/release/bin:%2\n")
                         .arg(root, systemPath);
    const QString transcript = root + text(".transcript");
    for (int i = 0; i < examples.size(); ++i) {
        const QString file = transcript + QString::number(i);
        m_dir.write(QFileInfo(file).fileName() + text(".in"), examples[i].command.toUtf8() + '\n');
        script += QStringLiteral(". '%1.in' > '%1' 2>&1 < /dev/null\n").arg(file);
    }
    const QString path = m_dir.write(QFileInfo(transcript).fileName(), script.toUtf8());
    // The shell that users type into.
    const Outcome outcome = Command({})
                                .with(text("LC_ALL"), text("C.UTF-8"))
                                .inShell(QStringLiteral("exec bash '%1'").arg(path))
                                .run();
    QStringList outputs;
    for (int i = 0; i < examples.size(); ++i) {
        const QString file = transcript + QString::number(i);
        outputs += QFile::exists(file)
            ? QString::fromUtf8(readFile(file))
            : text("the shell ended before this: ") + QString::fromUtf8(outcome.errors);
    }
    return outputs;
}

void TestExamples::exampleIsReal_data()
{
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("printed");
    QTest::addColumn<QString>("missing");
    for (const QString& page : pages()) {
        QVector<Example> examples;
        for (const Example& example : examplesOf(page)) {
            if (reasonNotToRun(example.command).isEmpty())
                examples += example;
            // Names of packages depend on version and processor.
            else if (!example.output.isEmpty() && example.command != text("scripts/package"))
                QTest::qFail(qPrintable(example.command + text(": shows output, but is not run")),
                             __FILE__, __LINE__);
        }
        if (examples.isEmpty())
            continue;
        const QStringList outputs = run(page, examples);
        for (int i = 0; i < examples.size(); ++i) {
            const Example& example = examples[i];
            const QString row = QStringLiteral("%1:%2 %3")
                                    .arg(page, QString::number(example.line),
                                         example.command.simplified().left(60));
            QTest::newRow(qPrintable(row))
                << example.output << outputs[i] << missingProgramOf(example.command);
        }
    }
}

void TestExamples::exampleIsReal()
{
    QFETCH(QString, expected);
    QFETCH(QString, printed);
    QFETCH(QString, missing);
    if (!missing.isEmpty())
        QSKIP(qPrintable(text("there is no ") + missing));
    if (printed != expected)
        qWarning("It prints\n%s", qPrintable(printed));
    QCOMPARE(printed, expected);
}

void TestExamples::blocksAreOfKnownKinds_data()
{
    addPages();
}

/// Nobody may show what nobody looks at.
void TestExamples::blocksAreOfKnownKinds()
{
    QFETCH(QString, page);
    for (const Block& block : blocksIn(contentOf(page))) {
        const QByteArray place =
            QStringLiteral("%1:%2: %3").arg(page, QString::number(block.line), block.kind).toUtf8();
        if (block.kind == text("console")) {
            QVERIFY2(block.lines.value(0).startsWith(text("$ ")), place);
        } else if (block.kind == text("sh")) {
            // What is pasted as a whole, since it cannot be run here.
            for (const QString& line : block.lines)
                QVERIFY2(!reasonNotToRun(line).isEmpty(), place + ": " + line.toUtf8());
        } else if (block.kind == text("json")) {
            QVERIFY2(!jsonObject(block.lines.join(QLatin1Char('\n')).toUtf8()).isEmpty(), place);
        } else if (block.kind == text("cpp") || block.kind == text("cmake")) {
            // tests/install and tests/examples compare these with programs that they build.
            QVERIFY2(page == text("README.md") || page == text("docs/api.md"), place);
        } else if (block.kind == text("text")) {
            // No command, but on the page whose transcripts tests/examples runs.
            if (page != text("docs/api.md"))
                QVERIFY2(block.lines.filter(QRegularExpression(text("^\\s*\\$ "))).isEmpty(),
                         place);
        } else if (block.kind == text("xml")) {
            // The form of a summary document.
            QVERIFY2(page == text("docs/format.md"), place);
        } else {
            // For other systems, and the page says that it is not tested.
            QVERIFY2(block.kind == text("python") && page == text("docs/guide.md"), place);
        }
    }
}

void TestExamples::commandsAreInBlocks_data()
{
    addPages();
}

/// A command that is merely indented would not be run.
void TestExamples::commandsAreInBlocks()
{
    QFETCH(QString, page);
    const QString rest = withoutBlocks(contentOf(page));
    const QRegularExpression command(text("^ *(\\$ |    (tresk|scripts/|cmake |apt))"),
                                     QRegularExpression::MultilineOption);
    QVERIFY2(!rest.contains(command), qPrintable(command.match(rest).captured()));
}

void TestExamples::linksLeadSomewhere_data()
{
    addPages();
}

void TestExamples::linksLeadSomewhere()
{
    QFETCH(QString, page);
    const QRegularExpression link(text("\\]\\(([^)#]*)(#([^)]*))?\\)"));
    const QRegularExpression code(text("`[^`\n]*`"));
    auto links = link.globalMatch(withoutBlocks(contentOf(page)).replace(code, text("code")));
    while (links.hasNext()) {
        const QRegularExpressionMatch match = links.next();
        const QString path = match.captured(1);
        if (path.startsWith(text("https://")))
            continue;
        const QString target = path.isEmpty()
            ? page
            : QDir::cleanPath(QFileInfo(page).path() + QLatin1Char('/') + path);
        QVERIFY2(QFile::exists(sources + target), qPrintable(page + text(": ") + target));
        if (match.captured(3).isEmpty())
            continue;
        QStringList anchors;
        auto headings = QRegularExpression(text("^#+ (.*)$"), QRegularExpression::MultilineOption)
                            .globalMatch(contentOf(target));
        while (headings.hasNext())
            anchors += headings.next()
                           .captured(1)
                           .toLower()
                           .remove(QRegularExpression(text("[^a-z0-9 _-]")))
                           .replace(QLatin1Char(' '), QLatin1Char('-'));
        QVERIFY2(anchors.contains(match.captured(3)), qPrintable(page + match.captured()));
    }
}

void TestExamples::blocksAreFound()
{
    const QVector<Block> blocks = blocksIn(
        text("a\n```console\n$ b\nc\n```\n```\nd\n```\n- e\n  ```sh\n  f\n"));
    QCOMPARE(static_cast<int>(blocks.size()), 3);
    QCOMPARE(blocks[0].kind, text("console"));
    QCOMPARE(blocks[0].line, 2);
    QCOMPARE(blocks[0].lines, QStringList({text("$ b"), text("c")}));
    QCOMPARE(blocks[1].kind, QString());
    QCOMPARE(blocks[2].kind, text("unclosed"));
}

void TestExamples::commandsAreFound()
{
    const QVector<Example> examples = examplesIn(
        {10, text("console"), {text("$ a \\"), text("  b"), text("c\\"), QString(), text("$ d")}});
    QCOMPARE(static_cast<int>(examples.size()), 2);
    QCOMPARE(examples[0].command, text("a \\\n  b"));
    QCOMPARE(examples[0].output, text("c\\\n\n"));
    QCOMPARE(examples[1].command, text("d"));
    QCOMPARE(examples[1].output, QString());
    QCOMPARE(examples[1].line, 15);
}

QTEST_GUILESS_MAIN(TestExamples)
#include "tst_examples.moc"
