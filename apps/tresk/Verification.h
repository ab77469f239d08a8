#ifndef TRESK_APPS_VERIFICATION_H
#define TRESK_APPS_VERIFICATION_H

#include "ItemStatus.h"

#include <tresk/ValidationQueue.h>

#include <QString>

#include <functional>
#include <vector>

namespace tresk::cli {

class Document;
class Progress;

/// Checks all steps of a document, oldest first, and then all its embedded files.
class Verification {
public:
    struct Item {
        bool isStep;
        int id;
        Fault fault;
    };

    /// @p tell is called for each item that has been checked. The document must outlive the
    /// object.
    Verification(Document& document, std::function<void(const Item&)> tell);

    /// Returns false if a signal has asked to end before everything was checked.
    bool run(Progress& progress);

    /// Number of bytes that there are to check.
    qint64 bytesToCheck() const;

private:
    void fill(ValidationQueue& queue);
    void tellOfRanges();
    qint64 bytesOf(const Item& item) const;
    Fault faultOf(const Item& item, bool valid) const;

    Document& m_document;
    std::function<void(const Item&)> m_tell;
    std::vector<Item> m_items; ///< in the order in which they are told of
    std::size_t m_next = 0; ///< the place of the one to be told of next
};

} // namespace tresk::cli

#endif
