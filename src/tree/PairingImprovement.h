#ifndef TRESK_TREE_PAIRINGIMPROVEMENT_H
#define TRESK_TREE_PAIRINGIMPROVEMENT_H

#include "tree/PartialPairing.h"

#include <vector>

namespace tresk {

/// Changes the pairing of the rows with @p columns, one or two pairs at a time, as long as that
/// makes it cheaper, and gives up after a fixed number of decisions in all.
PartialPairing improvedPairing(const PairingProblem& problem, std::vector<int> columns);

} // namespace tresk

#endif
