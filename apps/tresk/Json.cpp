#include "Json.h"

#include "Characters.h"
#include "Output.h"
#include "Text.h"

#include <QJsonDocument>

namespace tresk::cli {

namespace {

// Qt escapes what JSON demands. All else that is unprintable can only be inside of texts.
bool needsEscape(char32_t c)
{
    return c != '\n' && isUnprintable(c);
}

QString jsonEscape(char32_t c)
{
    QString result;
    const auto append = [&result](uint unit) {
        result += QStringLiteral("\\u%1").arg(unit, 4, 16, QLatin1Char('0'));
    };
    if (QChar::requiresSurrogates(c)) {
        append(QChar::highSurrogate(c));
        append(QChar::lowSurrogate(c));
    } else {
        append(c);
    }
    return result;
}

} // namespace

void insertText(QJsonObject& object, const QString& name, const QString& stored)
{
    object.insert(name, stored);
    const QString text = unescaped(stored);
    if (text != stored)
        object.insert(name + QStringLiteral("Unescaped"), text);
}

QJsonValue jsonNumber(int number)
{
    return number < 0 ? QJsonValue(QJsonValue::Null) : QJsonValue(number);
}

void writeJson(Output& output, const QJsonObject& object)
{
    const QString json = QString::fromUtf8(QJsonDocument(object).toJson());
    output.write(replaceCharacters(json, needsEscape, jsonEscape));
}

} // namespace tresk::cli
