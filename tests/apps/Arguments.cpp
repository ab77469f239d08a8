#include "Arguments.h"

#include <QtTest>

namespace tresktest {

Outcome runArgs(const TestDir& dir, const QByteArray& content, const QStringList& options)
{
    dir.write(text("some.args"), content);
    return Command(QStringList{text("args"), text("some.args")} + options)
        .inDirectory(dir.path(QString()))
        .run();
}

QJsonObject argsJson(const TestDir& dir, const QByteArray& content, const QStringList& options,
                     int exitCode)
{
    const Outcome outcome = runArgs(dir, content, options + QStringList{text("--json")});
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
