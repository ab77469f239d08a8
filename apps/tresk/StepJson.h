#ifndef TRESK_APPS_STEPJSON_H
#define TRESK_APPS_STEPJSON_H

#include <tresk/Summary.h>
#include <tresk/TreskParser.h>

#include <QJsonObject>

namespace tresk::cli {

class StepFiles;

/// One step for other programs:
///
///     id           0 for the newest step
///     title, creator, version    of its marker
///     index        the step's number as its writer counted it
///     size         bytes that the step takes in the document
///     md5          MD5 digest of these bytes, empty if the marker has none
///     previousMd5  that of the step before, as this step's marker has it
///     position     offset of the line with the marker
///     fileCount    number of embedded files in the step
///
/// and, null where the step has no summary or that does not say it:
///
///     time, tool, user, host
///     inFileCount, outFileCount    number of inputs and outputs, embedded or not
QJsonObject stepJson(const SectionTag& step, const Summary& summary, const StepFiles& stepFiles);

/// All that the summary of a step says but its files; null if the step has none. User
/// attributes are a list of "name", "value" and "unit", in the order of reading.
QJsonValue summaryJson(const Summary& summary);

/// What is known of a file of a step. "id" is that of the embedded file, or null.
QJsonObject fileSummaryJson(const FileSummary& file);

} // namespace tresk::cli

#endif
