#include "Dot.h"

#include "Text.h"

#include <QStringList>

namespace tresk::cli {

QString dotText(const QString& text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString& line : lines) {
        line = printable(line);
        line.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
        line.replace(QLatin1Char('"'), QStringLiteral("\\\""));
    }
    return QLatin1Char('"') + lines.join(QStringLiteral("\\n")) + QLatin1Char('"');
}

} // namespace tresk::cli
