#include <tresk/Dijkstra.h>

#include "core/Logging.h"

#include <QDebug>

namespace tresk {

void reportGoal(int expanded)
{
    qCDebug(debugCategory) << "FINISHED";
    qCDebug(debugCategory) << expanded << "nodes expanded";
}

} // namespace tresk
