#ifndef TRESK_APPS_CHECKRESULTS_H
#define TRESK_APPS_CHECKRESULTS_H

#include "ItemStatus.h"

#include <QHash>
#include <QString>

#include <array>
#include <optional>

namespace tresk::cli {

class Document;

/// What has become of the checks of all steps and embedded files of a document.
class CheckResults {
public:
    /// Checks them. Nothing if a signal has ended it.
    static std::optional<CheckResults> of(Document& document);

    /// What is wrong with a step or a file.
    Fault ofStep(int id) const { return m_steps.value(id); }
    Fault ofFile(int id) const { return m_files.value(id); }

    int checked() const { return m_checked; }
    int failed() const { return m_checked - count(ItemStatus::Right); }
    int count(ItemStatus status) const { return m_counts[static_cast<size_t>(status)]; }
    /// How many failed and why, for people: "3 of 20 checks failed: 1 differs, 2 broken".
    QString failureText() const;

private:
    QHash<int, Fault> m_steps; ///< those that failed
    QHash<int, Fault> m_files;
    std::array<int, allItemStatuses.size()> m_counts = {};
    int m_checked = 0;
};

} // namespace tresk::cli

#endif
