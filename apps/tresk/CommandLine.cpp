#include "CommandLine.h"

#include "Messages.h"

#include <QCommandLineOption>
#include <QCommandLineParser>

#include <algorithm>
#include <cstdlib>

namespace tresk::cli {

namespace {

void addOptions(QCommandLineParser& parser, const std::vector<Option>& options)
{
    for (const Option& option : options) {
        QStringList names = {QLatin1String(option.name)};
        if (option.letter != 0)
            names.prepend(QString(QLatin1Char(option.letter)));
        QCommandLineOption parsed(names);
        if (option.value)
            parsed.setValueName(QLatin1String(option.value));
        parser.addOption(parsed);
    }
}

/// What is wrong with the options that @p parser has failed to parse.
QString parseError(const QCommandLineParser& parser)
{
    const QStringList unknown = parser.unknownOptionNames();
    if (!unknown.isEmpty()) {
        const QString& name = unknown.first();
        const QString dashes = name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--");
        return QStringLiteral("unknown option '%1%2'").arg(dashes, name);
    }
    QString text = parser.errorText();
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text.left(1).toLower() + text.mid(1);
}

/// The first of @p options whose value is none of its choices; null if there is none.
const Option* wrongChoice(const QCommandLineParser& parser, const std::vector<Option>& options)
{
    const auto isWrong = [&](const Option& option) {
        const QString name = QLatin1String(option.name);
        if (option.kind != ValueKind::Choice || !parser.isSet(name))
            return false;
        const QString value = parser.value(name);
        return std::none_of(option.choices.begin(), option.choices.end(),
                            [&](const char* choice) { return value == QLatin1String(choice); });
    };
    const auto found = std::find_if(options.begin(), options.end(), isWrong);
    return found == options.end() ? nullptr : &*found;
}

/// Such as "a, b and c".
QString listed(const std::vector<const char*>& words)
{
    QString text = QLatin1String(words.front());
    for (size_t i = 1; i < words.size(); ++i) {
        const bool isLast = i + 1 == words.size();
        text += isLast ? QStringLiteral(" and ") : QStringLiteral(", ");
        text += QLatin1String(words[i]);
    }
    return text;
}

} // namespace

const std::vector<Option>& commonOptions()
{
    static const std::vector<Option> options = {
        {'q', "quiet", nullptr, "say nothing but errors, show no progress"},
        {'v', "verbose", nullptr, "show more, and the library's log on standard error"},
        {0,
         "color",
         "WHEN",
         "colour the output: auto (the default), always, never",
         ValueKind::Choice,
         {"auto", "always", "never"}},
        {'h', "help", nullptr, "show this help"},
        {0, "version", nullptr, "show the version"},
    };
    return options;
}

std::vector<ExitMeaning> exitMeanings(const Command& command)
{
    // Those of a tool that is run leave no room for the usual ones.
    if (command.wrongUsage != exitTrouble)
        return command.exits;
    std::vector<ExitMeaning> all = {
        {"0", "done"},
        {"2", "trouble: wrong usage, a document that cannot be read or is damaged"},
        {"141", "the reader of the output has gone away"},
    };
    for (const ExitMeaning& exit : command.exits) {
        const int code = std::atoi(exit.codes);
        const auto place = std::find_if(all.begin(), all.end(), [&](const ExitMeaning& other) {
            return std::atoi(other.codes) >= code;
        });
        if (place != all.end() && std::atoi(place->codes) == code)
            *place = exit;
        else
            all.insert(place, exit);
    }
    return all;
}

int findCommand(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    addOptions(parser, commonOptions());
    if (!parser.parse(arguments)) {
        reportUsage(nullptr, parseError(parser));
        return -1;
    }
    return static_cast<int>(arguments.size() - parser.positionalArguments().size());
}

bool parseOptions(QCommandLineParser& parser, const Command* command, const QStringList& arguments)
{
    addOptions(parser, commonOptions());
    if (command)
        addOptions(parser, command->options);
    if (!parser.parse(arguments)) {
        reportUsage(command, parseError(parser));
        return false;
    }
    const Option* wrong = wrongChoice(parser, commonOptions());
    if (!wrong && command)
        wrong = wrongChoice(parser, command->options);
    if (!wrong)
        return true;
    reportUsage(command,
                QStringLiteral("'%1' is none of %2")
                    .arg(parser.value(QLatin1String(wrong->name)), listed(wrong->choices)));
    return false;
}

bool checkArguments(const Command* command, const QStringList& arguments)
{
    if (!command) {
        reportUsage(nullptr, QStringLiteral("no command given"));
        return false;
    }
    const auto needed = static_cast<int>(command->required.size());
    const auto given = static_cast<int>(arguments.size());
    if (given < needed) {
        const QString missing = QLatin1String(command->required[static_cast<size_t>(given)]);
        reportUsage(command, QStringLiteral("no %1 given").arg(missing));
        return false;
    }
    if (command->most != anyNumber && given > command->most) {
        const QString& first = arguments[command->most];
        reportUsage(command, QStringLiteral("unexpected argument '%1'").arg(first));
        return false;
    }
    return true;
}

int reportUsage(const Command* command, const QString& problem)
{
    if (command) {
        const QString name = QLatin1String(command->name);
        reportError(name, QStringLiteral("%1; see 'tresk %2 --help'").arg(problem, name));
        return command->wrongUsage;
    }
    reportError(QStringLiteral("%1; see 'tresk --help'").arg(problem));
    return exitTrouble;
}

} // namespace tresk::cli
