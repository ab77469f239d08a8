#ifndef TRESK_SUMMARYREADER_H
#define TRESK_SUMMARYREADER_H

#include <tresk/Summary.h>
#include <tresk/Tripple.h>

#include <QHash>
#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QStringView>

namespace tresk {

/// Reads the summary document of a step.
///
/// The format is a small part of XML: elements without attributes, whose content is taken as
/// it stands (entities are not decoded, white space is not trimmed); comments and processing
/// instructions between elements are passed over. Malformed text ends the reading of the
/// element in which it stands; what was read before is kept. Elements with other names are
/// reported in a debug line of the logging category "tresk" and left out. The time taken is
/// linear in the length of the text.
///
/// A reader has no state: every call works on its argument alone.
class TRESK_EXPORT SummaryReader : public QObject {
    Q_OBJECT

public:
    SummaryReader();
    ~SummaryReader() override;

    /// The summary in the first "trxchange" element at the top level of @p text, with `fromXml`
    /// true and the `tagId` of each file -1. That of the step is -1 if there is a "Workflowstep"
    /// element, else 0. A default Summary, `fromXml` false, if there is no whole "trxchange"
    /// element.
    Summary readSummary(const QString& text);

private:
    using Values = QHash<QString, QString>;

    static Summary parseSummary(QStringView content);
    static Workflowstep parseWorkflowstep(QStringView content);
    static FileSummary parseFile(QStringView content);
    static Tripple<Values, QStringList, Values> parseUserAttributes(QStringView content);
    static Tripple<QString, QString, QSharedPointer<QString>> parseAttribute(QStringView content);
};

} // namespace tresk

#endif
