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

bool isWrongValue(const Option& option, const QString& value)
{
    switch (option.kind) {
    case ValueKind::Choice:
        return std::none_of(option.choices.begin(), option.choices.end(),
                            [&](const char* choice) { return value == QLatin1String(choice); });
    case ValueKind::File:
    case ValueKind::Directory:
        return value.isEmpty();
    case ValueKind::Text:
    case ValueKind::Command:
        break;
    }
    return false;
}

/// Such as "a, b or c".
QString listed(const std::vector<const char*>& words)
{
    QString text = QLatin1String(words.front());
    for (size_t i = 1; i < words.size(); ++i) {
        const bool isLast = i + 1 == words.size();
        text += isLast ? QStringLiteral(" or ") : QStringLiteral(", ");
        text += QLatin1String(words[i]);
    }
    return text;
}

/// What @p option takes, where @p value is something else.
QString valueAdvice(const Option& option, const QString& value)
{
    const QString name = option.letter ? QLatin1Char('-') + QString(QLatin1Char(option.letter))
                                       : QStringLiteral("--") + QLatin1String(option.name);
    const QString advice = QStringLiteral("%1 takes %2");
    if (option.kind == ValueKind::Choice)
        return advice.arg(name, listed(option.choices)) + QStringLiteral(", not '%1'").arg(value);
    return advice.arg(name,
                      option.kind == ValueKind::File ? QStringLiteral("the path of a file")
                                                     : QStringLiteral("a directory"));
}

/// What is wrong with the first value of @p options that is; empty if all are right.
QString wrongValue(const QCommandLineParser& parser, const std::vector<Option>& options)
{
    for (const Option& option : options) {
        if (!option.value)
            continue;
        const QStringList values = parser.values(QLatin1String(option.name));
        const auto wrong = std::find_if(values.begin(), values.end(), [&](const QString& value) {
            return isWrongValue(option, value);
        });
        if (wrong != values.end())
            return valueAdvice(option, *wrong);
    }
    return {};
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
    QString problem = wrongValue(parser, commonOptions());
    if (problem.isEmpty() && command)
        problem = wrongValue(parser, command->options);
    if (!problem.isEmpty())
        reportUsage(command, problem);
    return problem.isEmpty();
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
