#ifndef TRESK_TESTS_PARSEDSUMMARY_H
#define TRESK_TESTS_PARSEDSUMMARY_H

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

namespace tresktest {

/// A summary document as Qt's XML reader sees it: texts by the names of their elements.
struct ParsedSummary {
    QHash<QString, QString> step; ///< without files
    QList<QHash<QString, QString>> files; ///< those of InFile and OutFile, as they come
    QString signature;
    QString error; ///< empty if the document is well-formed and has the right elements on top
};

ParsedSummary parseSummary(const QByteArray& bytes);

} // namespace tresktest

#endif
