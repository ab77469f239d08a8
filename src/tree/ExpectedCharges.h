#ifndef TRESK_TREE_EXPECTEDCHARGES_H
#define TRESK_TREE_EXPECTEDCHARGES_H

namespace tresk {

class OptionalMatching;
class PartialPairing;
struct PairingProblem;

/// Has costs that only follow from later decisions counted before, as far as that is certain not to
/// be too much. @p pairing, on @p problem, has no decisions, and @p matching is the one for it.
///
/// Leaving a row alone that has children costs a charge for each row that is looked up for them and
/// whose parent has changed then. A part of it is expected: it is added to what it costs to leave
/// that row alone, and given back where the charged row gets a partner that may have the right
/// parent. This never makes a complete pairing dearer: if the row is left alone, the charge is due
/// unless it is given back, and otherwise it can only be given back.
///
/// Where the charged row is itself a child of the row that is left alone, its right parent is the
/// partner of an ancestor of that one. If the matching pairs it with a column under another, it is
/// expected that this will be so: partners under that column get nothing back then, but pairing an
/// ancestor with that column does.
///
/// How large the part is makes no difference to that. It is what the matching has room for: no pair
/// gets so cheap that the matching would have to change.
void expectCharges(PairingProblem& problem, const PartialPairing& pairing,
                   const OptionalMatching& matching);

} // namespace tresk

#endif
