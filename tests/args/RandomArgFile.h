#ifndef TRESK_TESTS_RANDOMARGFILE_H
#define TRESK_TESTS_RANDOMARGFILE_H

#include <tresk/ArgFile.h>

#include <QString>

#include <functional>

namespace tresktest {

/// Whether @p word is quoted on a command line, since it holds white space.
bool isQuoted(const QString& word);

/// Options put together at random, with any text as their values. Not among them is what a
/// command line does not keep in such a way that it could be read again:
///
/// - first page and read-me file, whose long options are unknown to the reader;
/// - a word with a single quote or a number sign that is not quoted: there the one begins a
///   string and the other a comment;
/// - an empty word, which leaves nothing but a blank: the path of an output document, the name
///   of a user attribute that has a value.
///
/// Paths of files hold no colon, since Qt has a meaning of its own for those that begin with one.
///
/// Every choice is made by @p below, which returns a number from 0 to its argument minus 1.
tresk::ArgFile randomArgFile(const std::function<int(int)>& below);

} // namespace tresktest

#endif
