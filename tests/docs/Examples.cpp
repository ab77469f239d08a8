#include "Examples.h"

#include <utility>

namespace tresktest {

QVector<Block> blocksIn(const QString& page)
{
    const QString fence = QStringLiteral("```");
    QVector<Block> blocks;
    bool inBlock = false;
    int number = 0;
    for (const QString& line : page.split(QLatin1Char('\n'))) {
        ++number;
        const QString start = line.trimmed();
        if (inBlock && start == fence) {
            inBlock = false;
        } else if (inBlock) {
            blocks.last().lines += line;
        } else if (start.startsWith(fence)) {
            inBlock = true;
            blocks += {number, start.mid(fence.size()), {}};
        }
    }
    if (inBlock)
        blocks.last().kind = QStringLiteral("unclosed");
    return blocks;
}

QVector<Example> examplesIn(const Block& block)
{
    QVector<Example> examples;
    bool goesOn = false;
    int number = block.line;
    for (const QString& line : block.lines) {
        ++number;
        if (goesOn)
            examples.last().command += QLatin1Char('\n') + line;
        else if (line.startsWith(QLatin1String("$ ")))
            examples += {number, line.mid(2), QString()};
        else if (!examples.isEmpty())
            examples.last().output += line + QLatin1Char('\n');
        const bool isCommand = goesOn || line.startsWith(QLatin1String("$ "));
        goesOn = isCommand && line.endsWith(QLatin1Char('\\'));
    }
    return examples;
}

QString reasonNotToRun(const QString& command)
{
    const std::pair<const char*, const char*> reasons[] = {
        {"git clone ", "needs a network"},
        {"sudo ", "changes the system"},
        {"apt", "changes the system"},
        {"crontab ", "changes the system"},
        {"scripts/setup", "changes the system"},
        {"scripts/build ", "builds; continuous integration runs it"},
        {"scripts/test", "builds; continuous integration runs it"},
        {"scripts/package", "builds; continuous integration runs it"},
        {"cmake ", "builds; tests/install does the same"},
        {"g++ ", "builds; tests/install does the same"},
        {"c++ ", "builds; tests/install does the same"},
    };
    for (const auto& [start, reason] : reasons) {
        if (command.startsWith(QLatin1String(start)))
            return QLatin1String(reason);
    }
    return {};
}

} // namespace tresktest
