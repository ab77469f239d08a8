#ifndef TRESK_TESTS_DOCS_JSONDOCUMENTS_H
#define TRESK_TESTS_DOCS_JSONDOCUMENTS_H

#include <TestFiles.h>

namespace tresktest {

/// Writes documents to the directory that have all in them that makes JSON output differ: texts
/// with and without escapes, values that are missing, damage of all kinds, other documents, and
/// pairs that have something in common.
void writeOddDocuments(const TestDir& dir);

/// A text of marker or summary with all that other programs might trip over: quotes, tabs, line
/// breaks, separators of columns and records, and characters outside of the basic plane.
const char* awkwardText();

} // namespace tresktest

#endif
