#ifndef TRESK_TREEID_H
#define TRESK_TREEID_H

#include <QLinkedList>

namespace tresk {

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED
/// Ids of nodes, for taking out in the middle. (Qt 5.15 warns of the class where it is named.)
using LinkedNodeIds = QLinkedList<int>;
QT_WARNING_POP

/// The two trees that are compared.
///
/// Ids of nodes that are none, wherever trees are compared: -1 is the parent of a root, -2 stands
/// for no node or an undecided one, -3 for the partner of a node that is paired with nothing.
enum TreeId { FirstTree = 1, SecondTree = 2 };

} // namespace tresk

#endif
