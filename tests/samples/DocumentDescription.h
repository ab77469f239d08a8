#ifndef TRESK_TESTS_DOCUMENTDESCRIPTION_H
#define TRESK_TESTS_DOCUMENTDESCRIPTION_H

#include <QString>
#include <QStringList>

namespace tresktest {

/// Everything in the document at @p path that does not depend on how well its files were
/// compressed: host, layout, texts, contents, and which checksums are right. Embedded
/// documents are described in turn. Two documents with the same description were made from
/// the same input by the same rules, perhaps with different versions of zlib.
QStringList describeDocument(const QString& path);

} // namespace tresktest

#endif
