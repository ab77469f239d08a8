// Takes any text for the summary document of a step; the reader must take it as its model does.

#include "DebugLines.h"
#include "FuzzTarget.h"
#include "ReaderModel.h"
#include "SummaryText.h"

#include <tresk/SummaryReader.h>

#include <QLoggingCategory>
#include <QSet>

using tresk::FileSummary;
using tresk::Summary;
using tresktest::textOf;

namespace {

constexpr int longestText = 4096; // The model takes quadratic time.

/// What holds of the user attributes of a step and of a file.
template <typename Record>
void checkUserAttributes(const Record& record)
{
    const QStringList names = record.userAttributeNames;
    const QStringList keys = record.userAttributes.keys();
    TRESK_REQUIRE(QSet<QString>(names.begin(), names.end())
                  == QSet<QString>(keys.begin(), keys.end()));
    const QStringList withUnits = record.userAttributeUnits.keys();
    for (const QString& name : withUnits)
        TRESK_REQUIRE(record.userAttributes.contains(name)
                      && !record.userAttributeUnits.value(name).isNull());
}

void checkSummary(const Summary& summary)
{
    if (!summary.fromXml) {
        TRESK_REQUIRE(textOf(summary) == textOf(Summary()));
        return;
    }
    TRESK_REQUIRE(summary.tagId == -1 || (summary.tagId == 0 && summary.files.isEmpty()));
    checkUserAttributes(summary);
    for (const FileSummary& file : summary.files) {
        TRESK_REQUIRE(file.tagId == -1 && file.state == 1);
        TRESK_REQUIRE(file.filePurpose == QLatin1String("InFile")
                      || file.filePurpose == QLatin1String("OutFile"));
        checkUserAttributes(file);
    }
}

void runSummaryReader(const QByteArray& input)
{
    QLoggingCategory::setFilterRules(QStringLiteral("tresk.debug=true"));
    const QString text = QString::fromUtf8(input.constData(), int(input.size())).left(longestText);
    tresktest::ReaderModel model;
    const QStringList expected = textOf(model.readSummary(text));

    tresk::SummaryReader reader;
    const tresktest::MessageCapture capture;
    const Summary summary = reader.readSummary(text);
    TRESK_REQUIRE(textOf(summary) == expected);
    TRESK_REQUIRE(tresktest::debugLines(capture) == model.debugLines());
    checkSummary(summary);

    // A reader keeps nothing, and passes over what stands in front of an element.
    const QString passedOver = QStringLiteral("text > <!-- <a> --><?p <trxchange> ?> text");
    TRESK_REQUIRE(textOf(reader.readSummary(passedOver + text)) == expected);
}

const tresk_fuzz::Target target("summaryreader", runSummaryReader);

} // namespace
