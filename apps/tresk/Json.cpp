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

QJsonObject withSchema(QJsonObject object, const char* schema)
{
    object.insert(QStringLiteral("schema"), QLatin1String(schema));
    return object;
}

void write(Output& output, const QByteArray& json)
{
    // Some lines at a time, since a text takes a multiple of the memory of its UTF-8.
    const int piece = 64 * 1024;
    for (decltype(json.size()) start = 0, end = 0; start < json.size(); start = end) {
        end = json.indexOf('\n', start + piece) + 1;
        if (end == 0)
            end = json.size();
        const QString text = QString::fromUtf8(json.constData() + start, int(end - start));
        output.write(replaceCharacters(text, needsEscape, jsonEscape));
    }
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

QJsonValue jsonText(const QString& text)
{
    return text.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

void writeJson(Output& output, const char* schema, const QJsonObject& object)
{
    write(output, QJsonDocument(withSchema(object, schema)).toJson());
}

void writeJson(Output& output, const char* schema, const QJsonObject& object, const QString& name,
               int count, const std::function<QJsonObject(int index)>& element)
{
    QJsonObject rest = withSchema(object, schema);
    rest.insert(name, QJsonArray());
    const QByteArray json = QJsonDocument(rest).toJson();
    // No other line begins like this one, since texts have no line breaks and objects in this one
    // are indented further.
    const QByteArray begin = "\n    \"" + name.toUtf8() + "\": [";
    const auto end = json.indexOf(begin) + begin.size();
    write(output, json.left(end));
    for (int i = 0; i < count && output.error() == 0; ++i) {
        QByteArray lines = '\n' + QJsonDocument(element(i)).toJson().trimmed();
        lines.replace("\n", "\n        ");
        write(output, (i > 0 ? "," : "") + lines);
    }
    write(output, json.mid(end));
}

void writeJsonLine(Output& output, const char* schema, const QJsonObject& object)
{
    write(output, QJsonDocument(withSchema(object, schema)).toJson(QJsonDocument::Compact) + '\n');
}

} // namespace tresk::cli
