#ifndef TRESK_APPS_FIELDS_H
#define TRESK_APPS_FIELDS_H

#include "Output.h"
#include "Style.h"

#include <QString>

namespace tresk::cli {

/// Writes lines of a label and a value, the values below each other.
class Fields {
public:
    /// Behind @p indent blanks come labels of up to @p width characters, colon included.
    Fields(Output& output, const Style& style, int indent, int width)
        : m_output(output)
        , m_style(style)
        , m_indent(indent)
        , m_width(width)
    {
    }

    /// Writes the printable @p value, a dash if it is empty.
    void write(const char* label, const QString& value) const
    {
        const QString name = QLatin1String(label) + QLatin1Char(':');
        m_output.write(QString(m_indent, QLatin1Char(' '))
                       + m_style.label(name.leftJustified(m_width)) + QLatin1Char(' ')
                       + (value.isEmpty() ? QStringLiteral("-") : value) + QLatin1Char('\n'));
    }

private:
    Output& m_output;
    const Style& m_style;
    int m_indent;
    int m_width;
};

} // namespace tresk::cli

#endif
