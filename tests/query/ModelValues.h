#ifndef TRESK_TESTS_MODELVALUES_H
#define TRESK_TESTS_MODELVALUES_H

#include <QString>

namespace tresktest {

/// Whether @p left and @p right stand to each other as @p op says, other than "!=".
bool modelHolds(const QString& left, const QString& op, const QString& right);

} // namespace tresktest

#endif
