#include "Records.h"

#include <tresk/TreskFindQuery.h>

#include <QStringList>

#include <time.h> // NOLINT: tzset() is not in <ctime>

#include <algorithm>

namespace tresktest {

tresk::FileSummary fileNamed(const QString& filename)
{
    tresk::FileSummary file;
    file.tagId = -1;
    file.filename = filename;
    return file;
}

tresk::Summary stepTitled(const QString& title, const QList<tresk::FileSummary>& files)
{
    tresk::Summary step;
    step.title = title;
    step.files = files;
    return step;
}

QList<tresk::Summary> stepsWithFiles(int steps, int filesOfEach)
{
    QList<tresk::Summary> list;
    for (int i = 0; i < steps; ++i) {
        QList<tresk::FileSummary> files;
        for (int j = 0; j < filesOfEach; ++j)
            files += fileNamed(QStringLiteral("%1.%2").arg(i).arg(j));
        list += stepTitled(QString::number(i), files);
    }
    return list;
}

QString quoted(const QString& text)
{
    QString inside = text;
    inside.replace(QLatin1String("\\"), QLatin1String("\\\\"));
    inside.replace(QLatin1String("\""), QLatin1String("\\\""));
    return QLatin1Char('"') + inside + QLatin1Char('"');
}

QString textOf(bool matches, const QHash<QString, QString>& bindings)
{
    if (!matches)
        return QStringLiteral("no");
    QStringList entries;
    for (auto entry = bindings.cbegin(); entry != bindings.cend(); ++entry)
        entries += entry.key() + QLatin1Char('=') + entry.value();
    std::sort(entries.begin(), entries.end());
    entries.prepend(QStringLiteral("yes"));
    return entries.join(QLatin1Char(' '));
}

QString found(const QString& query, const QList<tresk::Summary>& summaries)
{
    const tresk::TreskFindQuery findQuery(query);
    if (!findQuery.isValid()) {
        QStringList messages;
        for (const tresk::QueryError& error : findQuery.getErrors())
            messages += error.errorMessage();
        return QStringLiteral("invalid: ") + messages.join(QLatin1Char('\n'));
    }
    const QHash<QString, QString> before = {{QStringLiteral("@"), QStringLiteral("before")}};
    QHash<QString, QString> bindings = before;
    const bool matches = findQuery.matches(summaries, &bindings);
    if (matches != findQuery.matches(summaries))
        return QStringLiteral("it depends on whether bindings are asked for");
    if (!matches)
        return bindings == before ? textOf(false, bindings) : QStringLiteral("no, but bindings");
    return textOf(true, bindings);
}

QString answer(const QString& query, const QList<tresk::Summary>& summaries)
{
    const QString result = found(query, summaries);
    return result.startsWith(QLatin1String("yes")) ? QStringLiteral("yes") : result;
}

QString ofStepAndFile(const QString& condition, const tresk::Summary& step)
{
    return answer(utf8("x:iswfs && ") + condition, {step}) + QLatin1Char(' ')
        + answer(utf8("x:isfile && ") + condition, {step});
}

InTimeZone::InTimeZone(const QByteArray& zone)
    : m_before(qgetenv("TZ"))
    , m_wasSet(qEnvironmentVariableIsSet("TZ"))
{
    qputenv("TZ", zone);
    tzset();
}

InTimeZone::~InTimeZone()
{
    if (m_wasSet)
        qputenv("TZ", m_before);
    else
        qunsetenv("TZ");
    tzset();
}

} // namespace tresktest
