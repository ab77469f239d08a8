#include "Command.h"

#include <TestFiles.h>

#include <Commands.h>
#include <manual/Roff.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

using namespace tresktest;
namespace cli = tresk::cli;

/// The manual pages, as they are installed, and as mandoc shows them.
class TestManualPages : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void commandsHaveTheirPages();
    void pageHasNoFaults_data();
    void pageHasNoFaults();
    void pageTellsOfItsCommand_data();
    void pageTellsOfItsCommand();
    void examplesCanBeTyped_data();
    void examplesCanBeTyped();
    void environmentIsTold_data();
    void environmentIsTold();
    void passageIsRendered();
    void generalPageListsCommands();
    void pagesReferToEachOther_data();
    void pagesReferToEachOther();
    void headerDoesNotDependOnTheDay();
    void textIsShownAsItIs_data();
    void textIsShownAsItIs();
};

namespace {

const QString directory = QStringLiteral(TRESK_MANUAL_DIR "/man1/");

/// What mandoc prints for the page in the file at @p path.
QByteArray mandoc(const QStringList& options, const QString& path)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(TRESK_MANDOC), options + QStringList(path));
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return "mandoc failed";
    return process.readAll();
}

/// The page as it is read: without the backspaces that make bold and underlined letters.
QString rendered(const QString& path)
{
    QString shown = QString::fromUtf8(
        mandoc({text("-T"), text("utf8"), text("-O"), text("width=200")}, path));
    for (auto i = shown.indexOf(QLatin1Char('\b')); i > 0;
         i = shown.indexOf(QLatin1Char('\b'), i - 1))
        shown.remove(i - 1, 2);
    return shown;
}

QString pagePath(const char* command)
{
    return directory + QStringLiteral("tresk-%1.1").arg(QLatin1String(command));
}

/// @p shown with single blanks in the place of line breaks and margins.
QString flowing(const QString& shown)
{
    return shown.simplified();
}

QStringList pageNames()
{
    QStringList names = {text("tresk.1")};
    for (const cli::Command& command : cli::commands())
        names += QStringLiteral("tresk-%1.1").arg(QLatin1String(command.name));
    names.sort();
    return names;
}

void addCommandRows()
{
    QTest::addColumn<int>("index");
    for (size_t i = 0; i < cli::commands().size(); ++i)
        QTest::newRow(cli::commands()[i].name) << static_cast<int>(i);
}

void addPageRows()
{
    QTest::addColumn<QString>("name");
    for (const QString& name : pageNames())
        QTest::newRow(qPrintable(name)) << name;
}

/// The option as a page shows it.
QString optionForm(const cli::Option& option)
{
    QString form = QStringLiteral("--") + QLatin1String(option.name);
    if (option.letter)
        form.prepend(QStringLiteral("-%1, ").arg(QLatin1Char(option.letter)));
    return option.value ? form + QLatin1Char('=') + QLatin1String(option.value) : form;
}

} // namespace

void TestManualPages::commandsHaveTheirPages()
{
    QCOMPARE(QDir(directory).entryList(QDir::Files, QDir::Name), pageNames());
}

void TestManualPages::pageHasNoFaults_data()
{
    addPageRows();
}

void TestManualPages::pageHasNoFaults()
{
    QFETCH(QString, name);
    QByteArray findings;
    for (const QByteArray& finding :
         mandoc({text("-T"), text("lint")}, directory + name).split('\n')) {
        // There is a day from the first release on.
        const bool isDay = finding.contains("missing date")
            && QByteArray(TRESK_RELEASE_DATE).isEmpty();
        if (!isDay && !finding.isEmpty())
            findings += finding + '\n';
    }
    QCOMPARE(findings, QByteArray());
}

void TestManualPages::pageTellsOfItsCommand_data()
{
    addCommandRows();
}

void TestManualPages::pageTellsOfItsCommand()
{
    QFETCH(int, index);
    const cli::Command& command = cli::commands()[static_cast<size_t>(index)];
    const QString page = rendered(pagePath(command.name));
    const QString words = flowing(page);
    const auto tells = [&](const QString& passage) {
        const bool found = words.contains(flowing(passage));
        if (!found)
            qWarning("missing: %s", qPrintable(passage));
        return found;
    };
    QVERIFY(tells(
        QStringLiteral("NAME tresk-%1 - %2 SYNOPSIS tresk %1 [OPTION]... %3 DESCRIPTION %4 OPTIONS")
            .arg(QLatin1String(command.name), QLatin1String(command.purpose),
                 QLatin1String(command.arguments), QLatin1String(command.description))));
    for (const auto& options : {command.options, cli::commonOptions()}) {
        for (const cli::Option& option : options)
            QVERIFY(tells(optionForm(option) + QLatin1Char(' ') + QLatin1String(option.purpose)));
    }
    for (const cli::ExitMeaning& exit : cli::exitMeanings(command))
        QVERIFY(tells(
            QStringLiteral("%1 %2").arg(QLatin1String(exit.codes), QLatin1String(exit.meaning))));
    for (const QByteArray& example : QByteArray(command.example).trimmed().split('\n'))
        QVERIFY(page.contains(QStringLiteral("\n           ") + QString::fromUtf8(example)
                              + QLatin1Char('\n')));
}

void TestManualPages::examplesCanBeTyped_data()
{
    addPageRows();
}

/// Some readers show bare hyphens and quotes as signs that no shell understands.
void TestManualPages::examplesCanBeTyped()
{
    QFETCH(QString, name);
    const QRegularExpression bare(text("(?<!\\\\)-|['`^~]"));
    bool inExample = false;
    int lines = 0;
    for (const QByteArray& line : readFile(directory + name).split('\n')) {
        inExample = (inExample && line != ".fi") || line == ".nf";
        if (!inExample && !line.startsWith("\\fB\\-"))
            continue;
        ++lines;
        QVERIFY2(!QString::fromUtf8(line).contains(bare), line.constData());
    }
    QVERIFY(lines > 5);
}

void TestManualPages::environmentIsTold_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("variables");
    for (const char* command : {"log", "extract", "find"})
        QTest::newRow(command) << text(command) << text("NO_COLOR TERM");
    for (const char* command : {"tree", "diff", "report"})
        QTest::newRow(command) << text(command) << text("NO_COLOR TERM TMPDIR");
    for (const char* command : {"add", "undo"})
        QTest::newRow(command) << text(command) << text("NO_COLOR TERM PATH");
}

void TestManualPages::environmentIsTold()
{
    QFETCH(QString, command);
    QFETCH(QString, variables);
    const QString page = rendered(pagePath(command.toLatin1().constData()));
    const QString section =
        page.section(text("ENVIRONMENT\n"), 1).section(text("EXAMPLES\n"), 0, 0);
    const QRegularExpression variable(text("^       ([A-Z_]+)"),
                                      QRegularExpression::MultilineOption);
    QStringList told;
    auto matches = variable.globalMatch(section);
    while (matches.hasNext())
        told += matches.next().captured(1);
    QCOMPARE(told.join(QLatin1Char(' ')), variables);
}

void TestManualPages::passageIsRendered()
{
    const QString page = rendered(pagePath("extract"));
    const QString expected = text(
        "OPTIONS\n"
        "       -C, --directory=DIR\n"
        "              where to write; has to be given\n"
        "\n"
        "       -f, --force\n"
        "              replace files that exist, and symbolic links themselves\n");
    QVERIFY2(page.contains(expected), qPrintable(page));
    QVERIFY(page.contains(text("unprintable characters become '_', and names")));
}

void TestManualPages::generalPageListsCommands()
{
    const QString words = flowing(rendered(directory + text("tresk.1")));
    for (const cli::Command& command : cli::commands()) {
        const QString entry = QStringLiteral("%1 %2 %3; see tresk-%1(1)")
                                  .arg(QLatin1String(command.name),
                                       QLatin1String(command.arguments),
                                       QLatin1String(command.purpose));
        QVERIFY2(words.contains(entry), qPrintable(entry));
    }
    for (const cli::Option& option : cli::commonOptions())
        QVERIFY2(words.contains(optionForm(option)), option.name);
    QVERIFY(words.contains(flowing(QString::fromUtf8(cli::introduction))));
}

void TestManualPages::pagesReferToEachOther_data()
{
    addPageRows();
}

void TestManualPages::pagesReferToEachOther()
{
    QFETCH(QString, name);
    const QString words = flowing(rendered(directory + name));
    const QString references = words.mid(words.indexOf(text("SEE ALSO")));
    for (const QString& other : pageNames()) {
        const QString reference = QLatin1Char(' ') + other.chopped(2) + text("(1)");
        QCOMPARE(references.contains(reference), other != name);
    }
}

void TestManualPages::headerDoesNotDependOnTheDay()
{
    const QByteArray page = readFile(directory + text("tresk-log.1"));
    QCOMPARE(page.left(page.indexOf('\n')),
             QByteArray(".TH TRESK\\-LOG 1 \"" TRESK_RELEASE_DATE "\" \"tresk " TRESK_VERSION
                        "\" \"User Commands\""));
}

void TestManualPages::textIsShownAsItIs_data()
{
    QTest::addColumn<QString>("words");
    for (const char* words :
         {".SH NAME", "'br", "a \\fBb\\n c \\", "--json, (-q) '--x-y=1'", "byte-order can't - -",
          "\"'`^~", "...", ".. '.. -.", "\\\" no comment", "a\\",
          "so long that the input takes more than a line of which the next one starts with .TH "
          "or a 'quote and \\(dq goes on and .on"})
        QTest::newRow(words) << text(words);
}

void TestManualPages::textIsShownAsItIs()
{
    QFETCH(QString, words);
    namespace roff = tresk::cli::roff;
    const TestDir dir;
    const QString page = text(".TH X 1\n.SH NAME\nx \\- y\n.SH A\n")
        + roff::paragraphs(words + text("\n")) + text(".SH B\n.TP\n")
        + roff::line(roff::bold(words)) + text("\\&\n.SH C\n") + roff::example(words + text("\n"))
        + text(".SH D\nend\n");
    const QString shown = flowing(rendered(dir.write(text("x.1"), page.toUtf8())));
    const QString same = flowing(words);
    const QString expected = QStringLiteral("A %1 B %1 C %1 D end").arg(same);
    QVERIFY2(shown.contains(expected), qPrintable(shown));
}

QTEST_GUILESS_MAIN(TestManualPages)
#include "tst_manual_pages.moc"
