#ifndef TRESK_TESTS_RANDOMSUMMARY_H
#define TRESK_TESTS_RANDOMSUMMARY_H

#include <QString>

class QRandomGenerator;

namespace tresktest {

/// A summary document put together at random: mostly right, with unknown, repeated, misplaced
/// and nested elements among the right ones.
QString randomSummary(QRandomGenerator& random);

/// Damages a text in one place or a few, mostly where a tag begins or ends.
void damage(QString& text, QRandomGenerator& random);

/// Tags, halves of tags, comments and text in any order.
QString randomTags(QRandomGenerator& random);

} // namespace tresktest

#endif
