#include "StepText.h"

#include "Attributes.h"
#include "Fields.h"
#include "StepFields.h"
#include "Summaries.h"

namespace tresk::cli {

namespace {

/// The attributes of a step or a file, each on a line of its own under a label.
template <typename Record>
void writeAttributes(Output& output, const Style& style, const Record& record, int indent)
{
    const QString blanks(indent, QLatin1Char(' '));
    const QList<Attribute> attributes = attributesOf(record);
    if (!attributes.isEmpty())
        output.write(blanks + style.label(QStringLiteral("attributes:")) + QLatin1Char('\n'));
    for (const Attribute& attribute : attributes) {
        output.write(blanks + QStringLiteral("  ") + nameText(attribute) + QStringLiteral(" = ")
                     + valueText(attribute) + QLatin1Char('\n'));
    }
}

void writeAll(const Fields& fields, const QList<NamedValue>& values)
{
    for (const NamedValue& value : values)
        fields.write(value.name, value.value);
}

} // namespace

QString stepHeading(const SectionTag& step, const Summary& summary, const Style& style)
{
    return style.id(QStringLiteral("step %1").arg(step.id)) + QStringLiteral("  ")
        + style.title(titleOf(step, summary)) + QLatin1Char('\n');
}

void writeMarkerFields(const Fields& fields, const SectionTag& step)
{
    writeAll(fields, markerFields(step));
}

void writeSummaryFields(Output& output, const Style& style, const Summary& summary)
{
    writeAll(Fields(output, style, 2, 13), summaryFields(summary));
    writeAttributes(output, style, summary, 2);
}

void writeFileFields(Output& output, const Style& style, const FileSummary& file)
{
    const char* const role = isInput(file) ? "in" : isOutput(file) ? "out" : "other";
    Fields(output, style, 2, 6).write(role, style.title(nameOf(file)));
    writeAll(Fields(output, style, 4, 12), fileFields(file));
    writeAttributes(output, style, file, 4);
}

} // namespace tresk::cli
