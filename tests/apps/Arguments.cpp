#include "Arguments.h"

#include <QtTest>

namespace tresktest {

Outcome ArgsRuns::args(const QByteArray& content, const QStringList& options) const
{
    m_dir.write(text("some.args"), content);
    return Command(QStringList{text("args"), text("some.args")} + options)
        .inDirectory(m_dir.path(QString()))
        .run();
}

QJsonObject ArgsRuns::json(const QByteArray& content, const QStringList& options,
                           int exitCode) const
{
    const Outcome outcome = args(content, options + QStringList{text("--json")});
    if (outcome.exitCode != exitCode)
        QTest::qFail(outcome.errors.constData(), __FILE__, __LINE__);
    return jsonObject(outcome.output);
}

QJsonObject strings(const char* names, const char* values)
{
    const QStringList keys = text(names).split(QLatin1Char(' '));
    const QStringList texts = text(values).split(QLatin1Char('|'));
    QJsonObject object;
    for (int i = 0; i < keys.size(); ++i)
        object.insert(keys[i], texts.value(i));
    return object;
}

QString titleOf(const QJsonObject& object)
{
    return object.value(text("step")).toObject().value(text("title")).toString();
}

} // namespace tresktest
