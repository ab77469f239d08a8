#include "CheckResults.h"

#include "Progress.h"
#include "Verification.h"

#include <QStringList>

namespace tresk::cli {

std::optional<CheckResults> CheckResults::of(Document& document)
{
    CheckResults results;
    Verification verification(document, [&](const Verification::Item& item) {
        ++results.m_checked;
        ++results.m_counts[static_cast<size_t>(item.fault.status)];
        if (!item.fault.isNone())
            (item.isStep ? results.m_steps : results.m_files).insert(item.id, item.fault);
    });
    Progress progress(verification.bytesToCheck());
    if (verification.run(progress))
        return results;
    return std::nullopt;
}

QString CheckResults::failureText() const
{
    QStringList reasons;
    for (const ItemStatus status : allItemStatuses) {
        if (status != ItemStatus::Right && count(status) > 0)
            reasons += countedStatus(count(status), status);
    }
    return QStringLiteral("%1 of %2 checks failed: %3")
        .arg(QString::number(failed()), QString::number(m_checked),
             reasons.join(QStringLiteral(", ")));
}

} // namespace tresk::cli
