#ifndef TRESK_TREE_GREEDYPAIRING_H
#define TRESK_TREE_GREEDYPAIRING_H

#include "tree/PartialPairing.h"

namespace tresk {

/// A complete pairing that need not be the cheapest one.
struct GreedyPairing {
    PartialPairing pairing;
    double bound; ///< what any complete pairing costs at least
};

/// Takes the cheapest partner for each node in turn, for trees that are too large for assignments.
GreedyPairing greedyPairing(const PairingProblem& problem);

} // namespace tresk

#endif
