#include "Commands.h"

#include "Messages.h"

#include <algorithm>
#include <numeric>

namespace tresk::cli {

namespace {

/// The number of characters to insert, remove, replace or swap with their neighbour that
/// makes @p a out of @p b.
int editDistance(const QString& a, const QString& b)
{
    const auto columns = static_cast<size_t>(b.size()) + 1;
    std::vector<int> beforeLast(columns);
    std::vector<int> last(columns);
    std::vector<int> row(columns);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (size_t j = 1; j < columns; ++j) {
            const int column = static_cast<int>(j);
            const bool same = a[i - 1] == b[column - 1];
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[column - 2] && a[i - 2] == b[column - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row.back();
}

/// The command that @p name may have been meant to be; empty if it is like none.
QString nearestCommand(const QString& name)
{
    const int longest = 20; // no typing error, and the time to compare grows with the length
    QString nearest;
    int least = 3;
    for (const Command& command : commands()) {
        const QString candidate = QLatin1String(command.name);
        if (name.size() > longest || name.size() < 2)
            break;
        const int distance = editDistance(name, candidate);
        if (distance < least && distance < candidate.size() - 1) {
            least = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

} // namespace

const std::vector<Command>& commands()
{
    static const std::vector<Command> all = {
        logCommand(),    showCommand(), filesCommand(), catCommand(),  extractCommand(),
        verifyCommand(), findCommand(), treeCommand(),  diffCommand(), reportCommand(),
        argsCommand(),   addCommand(),  undoCommand(),  helpCommand()};
    return all;
}

const Command* findCommandNamed(const QString& name)
{
    for (const Command& command : commands()) {
        if (name == QLatin1String(command.name))
            return &command;
    }
    const QString nearest = nearestCommand(name);
    const QString advice = nearest.isEmpty()
        ? QStringLiteral("see 'tresk --help'")
        : QStringLiteral("did you mean '%1'? See 'tresk --help'").arg(nearest);
    reportError(QStringLiteral("unknown command '%1'; %2").arg(name, advice));
    return nullptr;
}

} // namespace tresk::cli
