#include "Command.h"

#include <TestFiles.h>

#include <Commands.h>

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

using namespace tresktest;
namespace cli = tresk::cli;

/// What bash, fish and zsh complete behind the command's name, tried in these shells.
class TestCompletion : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void bashOffers_data();
    void bashOffers();
    void fishOffers_data();
    void fishOffers();
    void allOptionsAreOffered_data();
    void allOptionsAreOffered();
    void keysComplete_data();
    void keysComplete();

private:
    void addRequests();
    QByteArray run(const QString& program, const QStringList& arguments,
                   const QByteArray& input = QByteArray()) const;
    QStringList bashReplies(const QString& line) const;
    QStringList fishReplies(const QString& line) const;
    /// What the shell, a person at which presses @p keys, hands to the command.
    QString typed(const QString& shell, const QByteArray& keys) const;

    TestDir m_dir;
};

namespace {

QString script(const char* name)
{
    return QStringLiteral(TRESK_MANUAL_DIR "/") + text(name);
}

QStringList linesOf(const QByteArray& output)
{
    return QString::fromUtf8(output).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QString sorted(QStringList words)
{
    words.sort();
    return words.join(QLatin1Char(' '));
}

QString commandNames()
{
    QStringList names;
    for (const cli::Command& command : cli::commands())
        names += text(command.name);
    return sorted(names);
}

} // namespace

void TestCompletion::initTestCase()
{
    useUtf8Paths();
    m_dir.write(text("report.pdf"), "x");
    m_dir.write(text("two words.pdf"), "x");
    m_dir.write(text("evil$(touch pwned).pdf"), "x");
    QVERIFY(QDir(m_dir.path(QString())).mkdir(text("folder")));
    QVERIFY(QDir(m_dir.path(QString())).mkdir(text("home")));
    m_dir.write(text("home/bash"),
                "PS1=; bind 'set enable-bracketed-paste off'\n. " + script("bash/tresk").toUtf8()
                    + "\ntresk() { printf '<%s>' ARGS \"$@\"; echo; }\n");
    m_dir.write(text("home/.zshrc"),
                "PS1=; unset zle_bracketed_paste\nfpath=(" TRESK_MANUAL_DIR
                "/zsh $fpath)\nautoload -Uz compinit; compinit -D -u\n"
                "tresk() { printf '<%s>' ARGS \"$@\"; echo; }\n");
}

QByteArray TestCompletion::run(const QString& program, const QStringList& arguments,
                               const QByteArray& input) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(text("TERM"), text("dumb"));
    for (const char* variable : {"HOME", "ZDOTDIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        environment.insert(text(variable), m_dir.path(text("home")));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_dir.path(QString()));
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return "the shell failed";
    return process.readAllStandardError() + process.readAllStandardOutput();
}

QStringList TestCompletion::bashReplies(const QString& line) const
{
    const QString request = text(". \"$1\"; COMP_LINE=$2; shift 2; COMP_WORDS=(\"$@\"); "
                                 "COMP_CWORD=$(($# - 1)); compopt() { echo \"<$*>\"; }; "
                                 "_tresk; printf '%s\\n' \"${COMPREPLY[@]}\"");
    const QStringList arguments = {text("--norc"), text("-c"),           request,
                                   text("bash"),   script("bash/tresk"), line};
    QStringList replies = linesOf(run(text("bash"), arguments + line.split(QLatin1Char(' '))));
    replies.replaceInStrings(text("<-o default>"), text("FILES"));
    replies.replaceInStrings(text("<-o dirnames>"), text("DIRECTORIES"));
    replies.removeAll(text("<-o nospace>"));
    return replies;
}

QStringList TestCompletion::fishReplies(const QString& line) const
{
    const QStringList arguments = {text("--no-config"), text("-c"),
                                   text("source $argv[1]; complete -C $argv[2]"),
                                   script("fish/tresk.fish"), line};
    QStringList replies = linesOf(run(text("fish"), arguments));
    for (QString& reply : replies)
        reply = reply.section(QLatin1Char('\t'), 0, 0);
    if (replies.contains(text("report.pdf")) && replies.contains(text("folder/")))
        return {text("FILES")};
    if (sorted(replies) == text("folder/ home/"))
        return {text("DIRECTORIES")};
    return replies;
}

QString TestCompletion::typed(const QString& shell, const QByteArray& keys) const
{
    const QString command = shell == text("bash")
        ? QStringLiteral("bash --noprofile --rcfile '%1' -i").arg(m_dir.path(text("home/bash")))
        : text("zsh -i");
    const QByteArray shown = run(text("script"), {text("-qec"), command, text("/dev/null")},
                                 keys + "\nexit\n");
    const QRegularExpression arguments(text("<ARGS>(.*)"));
    return arguments.match(QString::fromUtf8(shown).remove(QLatin1Char('\r'))).captured(1);
}

void TestCompletion::addRequests()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("replies");

    const auto row = [](const char* line, const QString& replies) {
        QTest::newRow(line) << text(line) << replies;
    };
    row("tresk ", commandNames());
    row("tresk ver", text("verify"));
    row("tresk -q --color never ver", text("verify"));
    row("tresk --color=never ver", text("verify"));
    row("tresk --color ", text("always auto never"));
    row("tresk log --color ", text("always auto never"));
    row("tresk help f", text("files find"));
    row("tresk help log ", QString());
    row("tresk unknown ", QString());
    row("tresk log ", text("FILES"));
    row("tresk log a.pdf b.pdf ", text("FILES"));
    row("tresk log -- ", text("FILES"));
    row("tresk log --oneline ", text("FILES"));
    row("tresk files a.pdf ", QString());
    row("tresk cat ", text("FILES"));
    row("tresk cat report.pdf ", QString());
    row("tresk extract report.pdf 1 2 ", QString());
    row("tresk extract report.pdf -C ", text("DIRECTORIES"));
    row("tresk extract -C x ", text("FILES"));
    row("tresk extract --directory x ", text("FILES"));
    row("tresk extract --directory ", text("DIRECTORIES"));
    row("tresk find ", QString());
    row("tresk find word ", text("FILES"));
    row("tresk find --max-unpacked ", QString());
    row("tresk find --max-unpacked 1MiB ", QString());
    row("tresk diff a.pdf ", text("FILES"));
    row("tresk diff a.pdf b.pdf ", QString());
    row("tresk args -D ", QString());
    row("tresk args -D x ", text("FILES"));
    row("tresk log -D ", text("FILES"));
    row("tresk undo --search-path ", text("DIRECTORIES"));
    row("tresk args --hi", text("--highlight"));
}

void TestCompletion::bashOffers_data()
{
    addRequests();
    QTest::newRow("bash: --") << text("tresk log -- --js") << text("FILES");
    QTest::newRow("bash: =") << text("tresk extract --direc") << text("--directory=");
}

void TestCompletion::bashOffers()
{
    QFETCH(QString, line);
    QFETCH(QString, replies);
    QCOMPARE(sorted(bashReplies(line)), replies);
}

void TestCompletion::fishOffers_data()
{
    addRequests();
    QTest::newRow("fish: =") << text("tresk log --color=al") << text("--color=always");
}

void TestCompletion::fishOffers()
{
    QFETCH(QString, line);
    QFETCH(QString, replies);
    QCOMPARE(sorted(fishReplies(line)), replies);
}

void TestCompletion::allOptionsAreOffered_data()
{
    QTest::addColumn<int>("index");
    for (size_t i = 0; i < cli::commands().size(); ++i)
        QTest::newRow(cli::commands()[i].name) << static_cast<int>(i);
}

void TestCompletion::allOptionsAreOffered()
{
    QFETCH(int, index);
    const cli::Command& command = cli::commands()[static_cast<size_t>(index)];
    const QString line = QStringLiteral("tresk %1 -").arg(text(command.name));
    const QStringList bash = bashReplies(line);
    const QStringList fish = fishReplies(line + QLatin1Char('-'));
    const QString zsh = QString::fromUtf8(readFile(script("zsh/_tresk")));
    const auto begin = zsh.indexOf(QStringLiteral("\n    %1)\n").arg(text(command.name)));
    const QString branch = zsh.mid(begin, zsh.indexOf(text(";;"), begin) - begin);

    int forms = 0;
    for (const auto& options : {cli::commonOptions(), command.options}) {
        for (const cli::Option& option : options) {
            const QString name = text("--") + text(option.name);
            QVERIFY2(bash.contains(option.value ? name + QLatin1Char('=') : name), option.name);
            QVERIFY2(fish.contains(name), option.name);
            ++forms;
            if (!option.letter)
                continue;
            QVERIFY2(bash.contains(QLatin1Char('-') + QString(QLatin1Char(option.letter))),
                     option.name);
            ++forms;
        }
    }
    QCOMPARE(static_cast<int>(bash.size()), forms);
    for (const cli::Option& option : command.options) {
        const QString entry = text("--") + text(option.name) + text(option.value ? "=[" : "[");
        QVERIFY2(branch.contains(entry), option.name);
        QVERIFY2(!option.letter
                     || branch.contains(QStringLiteral("-%1%2[")
                                            .arg(QLatin1Char(option.letter))
                                            .arg(text(option.value ? "+" : ""))),
                 option.name);
    }
}

void TestCompletion::keysComplete_data()
{
    QTest::addColumn<QString>("shell");
    QTest::addColumn<QByteArray>("keys");
    QTest::addColumn<QString>("arguments");

    for (const char* shell : {"bash", "zsh"}) {
        const auto row = [&](const char* keys, const char* arguments) {
            const QByteArray name = QByteArray(shell) + ": "
                + QByteArray(keys).replace('\t', "<TAB>");
            QTest::newRow(name.constData()) << text(shell) << QByteArray(keys) << text(arguments);
        };
        row("tresk fi\tx", "<fix>"); // it may be files or find
        row("tresk lo\trep\t", "<log><report.pdf>");
        row("tresk -q ca\t--qui\ttw\t", "<-q><cat><--quiet><two words.pdf>");
        row("tresk --col\tne\tsh\tev\t", "<--color=never><show><evil$(touch pwned).pdf>");
        row("tresk log --color=al\trep\t", "<log><--color=always><report.pdf>");
        row("tresk find f:a=b rep\t", "<find><f:a=b><report.pdf>");
        row("tresk cat report.pdf rep\t", "<cat><report.pdf><rep>");
        row("tresk tree --max-depth rep\t rep\t", "<tree><--max-depth><rep><report.pdf>");
        row("tresk help dif\t", "<help><diff>");
    }
    // Zsh takes the slash off.
    QTest::newRow("bash: directory")
        << text("bash") << QByteArray("tresk extract -C fol\t --directory=ho\t rep\t")
        << text("<extract><-C><folder/><--directory=home/><report.pdf>");
    QTest::newRow("zsh: directory")
        << text("zsh") << QByteArray("tresk extract -C fol\t --directory=ho\t rep\t")
        << text("<extract><-C><folder><--directory=home><report.pdf>");
}

void TestCompletion::keysComplete()
{
    QFETCH(QString, shell);
    QFETCH(QByteArray, keys);
    QFETCH(QString, arguments);
    QCOMPARE(typed(shell, keys), arguments);
    QVERIFY(!QFile::exists(m_dir.path(text("pwned"))));
}

QTEST_GUILESS_MAIN(TestCompletion)
#include "tst_completion.moc"
