#ifndef TRESK_TESTS_EXPECTEDARGFILE_H
#define TRESK_TESTS_EXPECTEDARGFILE_H

#include <tresk/ArgFile.h>

#include <QStringList>

namespace tresktest {

/// What becomes of the dollar signs of all texts that are written and read: one that was written
/// with a backslash is read as two, which stand for a literal one.
enum class Dollars { Doubled, Kept };

// What is read of options that were written to a command line. It is what was written, but for
// what RandomArgFile.h leaves out, the dollar signs, and this:
//
// - Attributes without a value are not written. One that was added twice is written twice, with
//   its last value, so it is read as it was.
// - Directory and name of a file are written as one path and divided anew: the name is what stands
//   behind the last slash, and a pair of slashes there becomes one. An absolute name stands for
//   itself, and a directory that was never set is the current one. A directory without a name is
//   written without its last slash, so that its own name becomes the file's.
// - That the root file may be missing is written with the root file only.
tresk::WSFile expectedFile(const tresk::WSFile& written, Dollars dollars);
tresk::ArgFile expectedOptions(const tresk::ArgFile& written, Dollars dollars);

/// What the reader says to it: all flags of a file are written, and all but one are reported.
QStringList expectedMessages(const tresk::ArgFile& written);

} // namespace tresktest

#endif
