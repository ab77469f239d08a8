#ifndef TRESK_TESTS_APPS_SUMMARYXML_H
#define TRESK_TESTS_APPS_SUMMARYXML_H

#include <DocumentWriter.h>

#include <QByteArray>
#include <QVector>

namespace tresktest {

/// An element with that content, as it stands.
QByteArray element(const char* name, const QByteArray& content);

/// An input ("InFile") or output ("OutFile") that describes @p file just as its marker does.
/// @p more stands behind that.
QByteArray fileElement(const char* purpose, const FileSpec& file, bool embedded = true,
                       const QByteArray& more = QByteArray());

/// A user attribute; without a unit if it is empty.
QByteArray attribute(const char* name, const char* value, const char* unit = "");

/// The summary document of a step whose "Workflowstep" element has that content.
FileSpec summaryWith(const QByteArray& step);
/// A summary document of just these bytes.
FileSpec summaryOf(const QByteArray& bytes);

/// A step that has these files, and a summary with that content.
SectionSpec toldStep(const QByteArray& content, const QVector<FileSpec>& files = {});
/// A step that has these files, and a summary that says its title and names them as inputs.
SectionSpec titledStep(const char* title, const QVector<FileSpec>& files = {});
/// The same with the tool, and with the title in the document itself too.
SectionSpec stepByTool(const char* title, const char* tool, const QVector<FileSpec>& files = {});

} // namespace tresktest

#endif
