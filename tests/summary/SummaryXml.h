#ifndef TRESK_TESTS_SUMMARYXML_H
#define TRESK_TESTS_SUMMARYXML_H

#include "DocumentWriter.h"

#include <QByteArray>
#include <QList>
#include <QPair>

namespace tresktest {

/// Writes summary documents. Texts stand in them as they are given.
QByteArray element(const QByteArray& name, const QByteArray& content);

/// A whole document whose step has @p content.
QByteArray summaryXml(const QByteArray& content);

/// A summary document as the embedded file that holds it.
FileSpec summaryFile(const QByteArray& xml);

/// What a summary says of one file.
class FileElement {
public:
    /// Describes an embedded file just as its marker will: all that both know agrees.
    explicit FileElement(const FileSpec& file, const QByteArray& name = "InFile");

    /// Sets the content of the element @p key, which takes the place of what is there.
    FileElement& with(const QByteArray& key, const QByteArray& value);
    QByteArray xml() const;

private:
    QByteArray m_name;
    QList<QPair<QByteArray, QByteArray>> m_values;
};

} // namespace tresktest

#endif
