#ifndef TRESK_APPS_STEPTEXT_H
#define TRESK_APPS_STEPTEXT_H

#include <tresk/Summary.h>
#include <tresk/TreskParser.h>

#include <QString>

namespace tresk::cli {

class Fields;
class Output;
class Style;

/// The line above a step: "step 3  Title".
QString stepHeading(const SectionTag& step, const Summary& summary, const Style& style);

/// Writes what only the marker of a step says.
void writeMarkerFields(const Fields& fields, const SectionTag& step);

/// Writes all that is known of a step but its title and its files.
void writeSummaryFields(Output& output, const Style& style, const Summary& summary);

/// Writes all that is known of a file of a step.
void writeFileFields(Output& output, const Style& style, const FileSummary& file);

} // namespace tresk::cli

#endif
