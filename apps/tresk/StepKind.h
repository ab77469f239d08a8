#ifndef TRESK_APPS_STEPKIND_H
#define TRESK_APPS_STEPKIND_H

#include <QString>

namespace tresk::cli {

struct StepPair;

/// What has become of a step in the other history, as pages show it: not by its colour alone.
struct StepKind {
    const char* name; ///< a class of the style sheet
    QString sign;
    QString word;
};

StepKind sameKind();
StepKind changedKind();
StepKind movedKind();
StepKind onlyFirstKind();
StepKind onlySecondKind();

StepKind kindOf(const StepPair& pair);

} // namespace tresk::cli

#endif
