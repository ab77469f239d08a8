#ifndef TRESK_TESTS_OPTIONMODEL_H
#define TRESK_TESTS_OPTIONMODEL_H

#include "ArgFileText.h"

#include <QStringList>

namespace tresktest {

/// What becomes of the arguments of an argument file, written as plainly as it can be described.
/// The real reader is compared with it.
ReadOptions modelOptions(const QStringList& arguments);

} // namespace tresktest

#endif
