#include "ArgFileText.h"

#include "ArgFileFields.h"

#include <tresk/ArgfileReader.h>

#include <QSignalSpy>

#include <utility>

using tresk::ArgFile;
using tresk::WSFile;

namespace tresktest {

namespace {

QString line(const char* name, const QString& value)
{
    return QLatin1String(name) + QStringLiteral(": ") + value;
}

QString word(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

template <typename Fields, typename Owner>
QStringList changedTexts(const Fields& fields, const Owner& owner)
{
    QStringList lines;
    for (const auto& field : fields) {
        if (!(owner.*field.get)().isEmpty())
            lines += line(field.name, quotedAscii((owner.*field.get)()));
    }
    return lines;
}

template <typename Fields, typename Owner>
QStringList changedFlags(const Fields& fields, const Owner& owner)
{
    QStringList lines;
    for (const auto& field : fields) {
        if ((owner.*field.get)() != (Owner().*field.get)())
            lines += line(field.name, word((owner.*field.get)()));
    }
    return lines;
}

template <typename Owner>
QStringList userAttributes(const Owner& owner)
{
    QStringList lines;
    const QStringList keys = owner.userAttributeKeys();
    for (const QString& key : keys)
        lines += line("user attribute",
                      quotedAscii(key) + QStringLiteral(" = ")
                          + quotedAscii(owner.userAttribute(key)));
    return lines;
}

} // namespace

QString quotedAscii(const QString& text)
{
    QString result(QLatin1Char('"'));
    for (const QChar c : text) {
        if (c == QLatin1Char('"') || c == QLatin1Char('\\'))
            result += QLatin1Char('\\');
        if (c.unicode() >= 0x20 && c.unicode() < 0x7f)
            result += c;
        else
            result += QStringLiteral("\\u%1").arg(int(c.unicode()), 4, 16, QLatin1Char('0'));
    }
    return result + QLatin1Char('"');
}

QStringList textOf(const WSFile& file)
{
    QStringList lines = changedTexts(fileTextFields, file) + changedFlags(fileFlagFields, file)
        + userAttributes(file);
    for (QString& each : lines)
        each.prepend(QStringLiteral("  "));
    const QString path = quotedAscii(file.filepath()) + QLatin1Char(' ')
        + quotedAscii(file.filename().mid(file.filepath().size()));
    lines.prepend(line(file.inputFile() ? "input file" : "output file", path));
    return lines;
}

QStringList textOf(const ArgFile& options)
{
    QStringList lines;
    if (options.verbosity() != ArgFile::Normal)
        lines += line("verbosity", QString::number(options.verbosity()));
    lines += changedFlags(flagFields, options);
    lines += changedTexts(textFields, options);
    lines += userAttributes(options);
    for (int i = 0; i < options.numOutputTreskfiles(); ++i)
        lines += line("output document", quotedAscii(options.outputTreskfile(i)));
    for (int i = 0; i < options.numFiles(); ++i)
        lines += textOf(options.getConstFile(i));
    return lines;
}

ReadOptions readOptions(const QString& text, const QHash<QString, QString>* variables)
{
    tresk::ArgfileReader reader;
    QSignalSpy spy(&reader, SIGNAL(log(QString, int)));
    ReadOptions read;
    read.options = reader.readArgfile(text, variables);
    for (const QVariantList& message : std::as_const(spy))
        read.messages += message.at(1).toString() + QLatin1Char(' ') + message.at(0).toString();
    return read;
}

} // namespace tresktest
