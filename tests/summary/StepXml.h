#ifndef TRESK_TESTS_STEPXML_H
#define TRESK_TESTS_STEPXML_H

#include <tresk/Summary.h>

#include <QString>

namespace tresktest {

/// What the tests of the reader give it to read: texts, not the bytes of a file.
QString element(const char* name, const QString& content);
QString element(const char* name, const char* content);

/// A whole document whose step has @p content.
QString documentOf(const QString& content);

/// What the reader makes of a step with @p content; the signature is not part of it.
tresk::Summary readStep(const QString& content);
/// A step without content as it is read.
tresk::Summary emptyStep();

} // namespace tresktest

#endif
