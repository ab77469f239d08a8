#include "ManualPage.h"

#include "Roff.h"

#include <Commands.h>

#include <QStringList>

#include <algorithm>

namespace tresk::cli {

namespace {

/// What a page says of something that has a name, such as an environment variable.
struct Entry {
    const char* name;
    const char* text;
};

QString latin(const char* text)
{
    return QString::fromLatin1(text);
}

QString header(const QString& name, const QString& date)
{
    return QStringLiteral(".TH %1 1 \"%2\" \"tresk %3\" \"User Commands\"\n")
        .arg(roff::literal(name.toUpper()), date, QStringLiteral(TRESK_VERSION));
}

QString section(const char* title, const QString& text)
{
    return QStringLiteral(".SH %1\n%2").arg(latin(title), text);
}

QString tagged(const QString& tag, const QString& text)
{
    return QStringLiteral(".TP\n") + roff::line(tag) + roff::line(text);
}

QString nameSection(const QString& name, const QString& purpose)
{
    return section("NAME", QStringLiteral("%1 \\- %2\n").arg(roff::literal(name), purpose));
}

/// What the usage line says of arguments: words in capitals stand for something, and options and
/// signs for themselves.
QString argumentText(const QString& arguments)
{
    QString text;
    QString word;
    const auto endWord = [&] {
        if (!word.isEmpty())
            text += word.startsWith(QLatin1Char('-')) ? roff::bold(word) : roff::italic(word);
        word.clear();
    };
    for (const QChar c : arguments) {
        if (c.isLetter() || c == QLatin1Char('-')) {
            word += c;
            continue;
        }
        endWord();
        text += roff::literal(QString(c));
    }
    endWord();
    return text;
}

QString optionHeading(const Option& option)
{
    QString forms = roff::bold(QStringLiteral("--") + latin(option.name));
    if (option.letter != 0) {
        const QString letter = QStringLiteral("-") + QLatin1Char(option.letter);
        forms = roff::bold(letter) + QStringLiteral(", ") + forms;
    }
    return option.value ? forms + QLatin1Char('=') + roff::italic(latin(option.value)) : forms;
}

QString optionEntries(const std::vector<Option>& options)
{
    QString text;
    for (const Option& option : options)
        text += tagged(optionHeading(option), roff::prose(latin(option.purpose)));
    return text;
}

QString exitSection(const std::vector<ExitMeaning>& exits)
{
    QString text;
    for (const ExitMeaning& exit : exits)
        text += tagged(roff::bold(latin(exit.codes)), roff::prose(latin(exit.meaning)));
    return section("EXIT STATUS", text);
}

QString environmentSection(const std::vector<Entry>& entries)
{
    QString text;
    for (const Entry& entry : entries)
        text += tagged(roff::bold(latin(entry.name)), roff::prose(latin(entry.text)));
    return section("ENVIRONMENT", text);
}

std::vector<Entry> commonEnvironment()
{
    return {{"NO_COLOR",
             "Where it is set to something, output has no colours unless "
             "--color=always is given."},
            {"TERM", "Where it is dumb, there are neither colours nor progress."}};
}

bool followsEmbeddedDocuments(const Command& command)
{
    return std::any_of(command.options.begin(), command.options.end(), [](const Option& option) {
        return QLatin1String(option.name) == QLatin1String("max-depth");
    });
}

std::vector<Entry> environmentOf(const Command& command)
{
    std::vector<Entry> entries = commonEnvironment();
    if (followsEmbeddedDocuments(command))
        entries.push_back({"TMPDIR",
                           "The directory to which embedded documents are unpacked, "
                           "/tmp if it is not set."});
    const bool runsTool = command.wrongUsage != exitTrouble;
    if (runsTool)
        entries.push_back({"PATH",
                           "Where python3 is looked for with --script. The tools "
                           "themselves are not looked for there."});
    return entries;
}

QString pageReference(const QString& name)
{
    return roff::bold(name) + QStringLiteral("(1)");
}

QString pageName(const Command& command)
{
    return QStringLiteral("tresk-") + latin(command.name);
}

/// All pages but that called @p self.
QString seeAlso(const QString& self)
{
    QStringList references;
    if (self != QLatin1String("tresk"))
        references += pageReference(QStringLiteral("tresk"));
    for (const Command& command : commands()) {
        if (self != pageName(command))
            references += pageReference(pageName(command));
    }
    return section("SEE ALSO", references.join(QStringLiteral(",\n")) + QLatin1Char('\n'));
}

QString commandSection()
{
    QString text;
    for (const Command& command : commands()) {
        const QString form = roff::bold(latin(command.name)) + QLatin1Char(' ')
            + argumentText(latin(command.arguments));
        const QString purpose = roff::prose(latin(command.purpose));
        text += tagged(form,
                       QStringLiteral("%1; see %2").arg(purpose, pageReference(pageName(command))));
    }
    return section("COMMANDS", text);
}

std::vector<ExitMeaning> generalExits()
{
    return {{"0", "done, and what was asked is so"},
            {"1",
             "a checksum is wrong or missing, nothing was found, histories differ, or an "
             "argument file has errors"},
            {"2",
             "trouble: wrong usage, a document that cannot be read or is damaged, a file or "
             "output that could not be written"},
            {"129, 130, 143", "ended by the signal HUP, INT or TERM, after cleaning up"},
            {"141", "the reader of the output has gone away"},
            {"others", "those of add and undo are other ones; their pages list them"}};
}

const char* const whereOptionsStand =
    "All commands have these; they may also stand in front of the command. Behind -- everything "
    "is an argument.\n";

} // namespace

QString manualPage(const Command& command, const QString& date)
{
    const QString name = pageName(command);
    const QString synopsis = QStringLiteral("%1 [%2]... %3\n")
                                 .arg(roff::bold(QStringLiteral("tresk ") + latin(command.name)),
                                      roff::italic(QStringLiteral("OPTION")),
                                      argumentText(latin(command.arguments)));
    return header(name, date) + nameSection(name, roff::prose(latin(command.purpose)))
        + section("SYNOPSIS", synopsis)
        + section("DESCRIPTION", roff::paragraphs(latin(command.description)))
        + section("OPTIONS", optionEntries(command.options) + optionEntries(commonOptions()))
        + exitSection(exitMeanings(command)) + environmentSection(environmentOf(command))
        + section("EXAMPLES", roff::example(latin(command.example))) + seeAlso(name);
}

QString generalManualPage(const QString& date)
{
    const QString name = QStringLiteral("tresk");
    const QString synopsis = QStringLiteral("%1 %2 [%3]... [%4]...\n")
                                 .arg(roff::bold(name), roff::italic(QStringLiteral("COMMAND")),
                                      roff::italic(QStringLiteral("OPTION")),
                                      roff::italic(QStringLiteral("ARGUMENT")));
    return header(name, date)
        + nameSection(name, QStringLiteral("show the history that a document carries"))
        + section("SYNOPSIS", synopsis)
        + section("DESCRIPTION", roff::paragraphs(latin(introduction))) + commandSection()
        + section("OPTIONS",
                  roff::paragraphs(latin(whereOptionsStand)) + optionEntries(commonOptions()))
        + exitSection(generalExits()) + environmentSection(commonEnvironment())
        + section("EXAMPLES", roff::example(latin(generalExample))) + seeAlso(name);
}

} // namespace tresk::cli
