#include "QueryFindings.h"

#include "Messages.h"
#include "Output.h"
#include "Text.h"

#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <unistd.h>

namespace tresk::cli {

namespace {

constexpr int shownCharacters = 75; // of the query
constexpr int shownBefore = 50; // of these, where the query is longer, in front of the place

/// @p position, moved back where it lies between the two halves of a character.
int toCharacter(const QString& query, int position)
{
    const bool isInside = position > 0 && position < query.size()
        && query.at(position - 1).isHighSurrogate() && query.at(position).isLowSurrogate();
    return isInside ? position - 1 : position;
}

/// The part of @p query around @p position, and a caret under it.
QString markedQuery(const QString& query, int position)
{
    const int size = int(query.size());
    const int first = std::min(position - shownBefore, size - shownCharacters);
    const int start = toCharacter(query, std::max(0, first));
    const int end = toCharacter(query, std::min(size, std::max(0, first) + shownCharacters));
    const QString dots = QStringLiteral("...");
    const QString before = (start > 0 ? dots : QString())
        + printable(query.mid(start, position - start));
    const QString behind = printable(query.mid(position, end - position))
        + (end < size ? dots : QString());
    const QString indent = QStringLiteral("  ");
    return indent + before + behind + QLatin1Char('\n') + indent
        + QString(displayWidth(before), QLatin1Char(' ')) + QStringLiteral("^\n");
}

} // namespace

void reportFindings(const QString& query, const QList<QueryError>& findings)
{
    for (const QueryError& finding : findings) {
        // The lines of a message become one, as all messages are.
        QStringList lines = finding.errorMessage().split(QLatin1Char('\n'));
        for (QString& line : lines)
            line = line.trimmed();
        reportError(QStringLiteral("query"), lines.join(QLatin1Char(' ')));
        const QByteArray place = markedQuery(query, finding.position()).toUtf8();
        writeFully(STDERR_FILENO, place.constData(), place.size());
    }
}

QJsonArray findingsJson(const QList<QueryError>& findings)
{
    QJsonArray array;
    for (const QueryError& finding : findings) {
        array += QJsonObject{{QStringLiteral("message"), finding.errorMessage()},
                             {QStringLiteral("position"), finding.position()},
                             {QStringLiteral("length"), finding.length()},
                             {QStringLiteral("text"), finding.originalText()}};
    }
    return array;
}

} // namespace tresk::cli
