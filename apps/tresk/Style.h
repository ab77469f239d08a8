#ifndef TRESK_APPS_STYLE_H
#define TRESK_APPS_STYLE_H

#include <QString>

namespace tresk::cli {

/// Colours for what is read on a terminal; leaves texts as they are where there shall be none.
class Style {
public:
    explicit Style(bool coloured = false)
        : m_coloured(coloured)
    {
    }

    /// What a thing is called by: the number of a step or file.
    QString id(const QString& text) const { return coloured("33", text); }
    /// What is read first.
    QString title(const QString& text) const { return coloured("1", text); }
    /// Words that say what a value is.
    QString label(const QString& text) const { return coloured("2", text); }

private:
    QString coloured(const char* code, const QString& text) const
    {
        if (!m_coloured)
            return text;
        return QStringLiteral("\x1b[%1m%2\x1b[0m").arg(QLatin1String(code), text);
    }

    bool m_coloured;
};

/// Whether output that goes to a terminal may be coloured, going by the environment
/// (NO_COLOR, TERM).
bool environmentAllowsColour();

} // namespace tresk::cli

#endif
