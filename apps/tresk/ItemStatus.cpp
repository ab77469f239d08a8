#include "ItemStatus.h"

namespace tresk::cli {

namespace {

struct Words {
    const char* name;
    const char* counted; ///< behind a number
    const char* countedOne; ///< behind a one
};

const Words& wordsFor(ItemStatus status)
{
    static const Words words[] = {
        {"right", "right", "right"},
        {"differs", "differ", "differs"},
        {"noChecksum", "without checksum", "without checksum"},
        {"brokenStream", "broken", "broken"},
        {"outsideDocument", "outside the document", "outside the document"},
        {"unknownCompression", "of unknown compression", "of unknown compression"},
        {"unreadable", "unreadable", "unreadable"},
    };
    static_assert(std::size(words) == allItemStatuses.size());
    return words[static_cast<int>(status)];
}

} // namespace

QString statusName(ItemStatus status)
{
    return QLatin1String(wordsFor(status).name);
}

QString countedStatus(int count, ItemStatus status)
{
    const Words& words = wordsFor(status);
    return QString::number(count) + QLatin1Char(' ')
        + QLatin1String(count == 1 ? words.countedOne : words.counted);
}

} // namespace tresk::cli
