#include "StepKind.h"

#include "StepPairs.h"

namespace tresk::cli {

StepKind sameKind()
{
    return {"same", QStringLiteral("="), QStringLiteral("the same")};
}

StepKind changedKind()
{
    return {"changed", QStringLiteral("\u2260"), QStringLiteral("changed")};
}

StepKind movedKind()
{
    return {"moved", QStringLiteral("\u21c5"), QStringLiteral("moved")};
}

StepKind onlyFirstKind()
{
    return {"only", QStringLiteral("\u2212"), QStringLiteral("only here")};
}

StepKind onlySecondKind()
{
    return {"only", QStringLiteral("+"), QStringLiteral("only here")};
}

StepKind kindOf(const StepPair& pair)
{
    if (!pair.moved)
        return pair.changes.isEmpty() ? sameKind() : changedKind();
    StepKind kind = movedKind();
    if (!pair.changes.isEmpty())
        kind.word = QStringLiteral("moved and changed");
    return kind;
}

} // namespace tresk::cli
