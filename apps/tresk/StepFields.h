#ifndef TRESK_APPS_STEPFIELDS_H
#define TRESK_APPS_STEPFIELDS_H

#include "Attributes.h"

#include <tresk/Summary.h>
#include <tresk/TreskParser.h>

#include <QList>
#include <QString>

namespace tresk::cli {

/// Something that is known of a step or a file, for people.
struct NamedValue {
    const char* name;
    QString value; ///< printable
};

/// What only the marker of a step says. Values may be empty.
QList<NamedValue> markerFields(const SectionTag& step);
/// What is known of a step but its title, its user attributes and its files, without what is not
/// known.
QList<NamedValue> summaryFields(const Summary& summary);
/// What is known of a file of a step but its name, its purpose and its user attributes, likewise.
QList<NamedValue> fileFields(const FileSummary& file);

/// The name of a user attribute, and its value with its unit, printable.
QString nameText(const Attribute& attribute);
QString valueText(const Attribute& attribute);

} // namespace tresk::cli

#endif
