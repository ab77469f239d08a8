#include "SplitModel.h"

#include <QRegExp>

namespace tresktest {

namespace {

QStringList partsOf(const QString& text)
{
    const QRegExp lineBreak(QStringLiteral("(\\r\\n)|[\\n\\r]"));
    QStringList parts;
    int begin = 0;
    for (int at = 0; (at = lineBreak.indexIn(text, begin)) != -1;) {
        parts += text.mid(begin, at - begin);
        begin = at + lineBreak.matchedLength();
    }
    return parts << text.mid(begin);
}

} // namespace

void SplitModel::process(const QString& text, bool flush)
{
    rest += text;
    const QStringList parts = partsOf(rest);
    for (int i = 0; i + 1 < parts.size(); ++i)
        addLine(parts.at(i) + QLatin1Char('\n'));
    rest = parts.constLast();
    if (flush && !rest.isEmpty())
        addLine(rest + QLatin1Char('\n'));
}

void SplitModel::addLine(const QString& line)
{
    if (line.startsWith(QLatin1String("***ERROR")))
        lines += QStringLiteral("2 ") + line.mid(8);
    else if (line.startsWith(QLatin1String("***WARNING")))
        lines += QStringLiteral("1 ") + line.mid(10);
    else
        lines += QStringLiteral("0 ") + line;
}

} // namespace tresktest
