#ifndef TRESK_APPS_ITEMSTATUS_H
#define TRESK_APPS_ITEMSTATUS_H

#include <QString>

#include <array>

namespace tresk::cli {

/// What became of a step or an embedded file that was checked.
enum class ItemStatus {
    Right, ///< its checksums are those that its marker says
    Differs, ///< a checksum or a size is another one
    NoChecksum, ///< its marker lacks a checksum
    BrokenStream, ///< its compressed stream is damaged or breaks off
    OutsideDocument, ///< its marker names no place, or one that is not wholly in the document
    UnknownCompression, ///< how it is compressed is unknown
    Unreadable ///< its bytes could not be read
};

inline constexpr std::array allItemStatuses = {
    ItemStatus::Right,        ItemStatus::Differs,         ItemStatus::NoChecksum,
    ItemStatus::BrokenStream, ItemStatus::OutsideDocument, ItemStatus::UnknownCompression,
    ItemStatus::Unreadable};

/// The name of the status for other programs: "right", "differs", "noChecksum", ...
QString statusName(ItemStatus status);

/// So many items of the status, for people: "3 differ".
QString countedStatus(int count, ItemStatus status);

/// What is wrong with an item.
struct Fault {
    ItemStatus status = ItemStatus::Right;
    QString text; ///< for people, such as "its checksum differs"; empty if nothing is wrong

    bool isNone() const { return status == ItemStatus::Right; }
};

} // namespace tresk::cli

#endif
