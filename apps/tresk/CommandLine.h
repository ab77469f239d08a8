#ifndef TRESK_APPS_COMMANDLINE_H
#define TRESK_APPS_COMMANDLINE_H

#include <QStringList>

#include <vector>

class QCommandLineParser;

namespace tresk::cli {

struct Invocation;

/// Exit codes. A signal that ends a command adds its number to exitSignal. Of several the largest
/// counts.
enum ExitCode { exitDone = 0, exitFailed = 1, exitTrouble = 2, exitSignal = 128 };

/// For a command that takes as many arguments as there are.
constexpr int anyNumber = -1;

/// What an option or an argument takes, for completion. Values of options are checked: paths are
/// not empty, and a choice is one of the option's.
enum class ValueKind {
    Text, ///< something that cannot be guessed
    File,
    Directory,
    Choice, ///< one of the option's choices
    Command, ///< the name of one
};

/// An option of a command.
struct Option {
    char letter; ///< for `-x`; 0 for none
    const char* name; ///< for `--name`
    const char* value; ///< what its value is called; null if it has none
    const char* purpose; ///< for the help text
    ValueKind kind = ValueKind::Text;
    std::vector<const char*> choices = {};
};

/// What an exit code of a command means to its user.
struct ExitMeaning {
    const char* codes; ///< such as "2" or "124 to 127"
    const char* meaning;
};

/// A subcommand: what it takes, what it says of itself and what it does.
struct Command {
    const char* name;
    const char* purpose; ///< one line
    const char* arguments; ///< as in the usage line, such as "DOC FILE"
    const char* description; ///< for its own help text; lines end with line feeds
    const char* example; ///< one or two lines for a shell in a directory with the samples
    std::vector<Option> options; ///< besides those that all commands have
    std::vector<const char*> required; ///< what its arguments are, as messages call them
    int most; ///< number of arguments it takes, those that are not required included
    int (*run)(Invocation& invocation); ///< returns the exit code
    std::vector<ValueKind> argumentKinds = {}; ///< in their order; the last is that of the rest
    std::vector<ExitMeaning> exits = {}; ///< where they differ from those that most commands have
    int wrongUsage = exitTrouble; ///< exit code where it is used wrongly
};

/// The options that every command has.
const std::vector<Option>& commonOptions();

/// All exit codes of @p command, in their order.
std::vector<ExitMeaning> exitMeanings(const Command& command);

/// Finds where the command stands in @p arguments (the program's name first): behind the
/// common options. Its index, or the number of arguments if there is no command. Reports an
/// unknown or wrong option and returns -1.
int findCommand(const QStringList& arguments);

/// Parses @p arguments (the program's name first, without that of the command) with
/// @p parser; @p command is null where there is none. Reports what is wrong and returns false.
bool parseOptions(QCommandLineParser& parser, const Command* command, const QStringList& arguments);

/// Reports a missing command, a missing argument or one too many and returns false.
bool checkArguments(const Command* command, const QStringList& arguments);

/// Reports that @p command (null if there is none) was used wrongly, with a pointer to its
/// help text. Returns the exit code.
int reportUsage(const Command* command, const QString& problem);

} // namespace tresk::cli

#endif
