#ifndef TRESK_SAMPLES_SAMPLES_H
#define TRESK_SAMPLES_SAMPLES_H

#include "SampleDocument.h"

namespace samples {

/// A report with the four steps that led to it.
QByteArray makeReport(const Workshop& workshop);
/// A note whose inputs are documents with histories, one of which has such an input too.
QByteArray makeNested(const Workshop& workshop);
/// Files with names that are not ASCII, awkward, or no good as paths.
QByteArray makeNames(const Workshop& workshop);
/// A drawing with three steps that was damaged in three places afterwards.
QByteArray makeDamaged(const Workshop& workshop);
/// About the smallest document with a history that makes sense.
QByteArray makeMinimal(const Workshop& workshop);

} // namespace samples

#endif
