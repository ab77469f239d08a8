#ifndef TRESK_TESTS_COMPARISONS_H
#define TRESK_TESTS_COMPARISONS_H

#include <tresk/Summary.h>

namespace tresktest {

/// "yes" or "no".
QString yesIf(bool holds);

/// Compares the texts as the timestamp of a step and the date of a file: a failure of the test
/// unless @p holds says whether that holds, and its opposite does not.
void compareValues(const QString& left, const char* op, const QString& right, bool holds);

/// A step with a file of @p size.
QList<tresk::Summary> fileOfSize(int size);

} // namespace tresktest

#endif
