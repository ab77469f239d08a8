#include "ExpectedArgFile.h"

#include "ArgFileFields.h"
#include "ArgFileText.h"

#include <algorithm>

using tresk::ArgFile;
using tresk::WSFile;

namespace tresktest {

namespace {

QString read(QString text, Dollars dollars)
{
    return dollars == Dollars::Kept ? text : text.replace(QLatin1Char('$'), QLatin1String("$$"));
}

template <typename Owner>
void expectUserAttributes(const Owner& written, Dollars dollars, Owner& expected)
{
    const QStringList keys = written.userAttributeKeys();
    for (const QString& key : keys) {
        const QString value = written.userAttribute(key);
        if (!value.isEmpty())
            expected.addUserAttribute(read(key, dollars), read(value, dollars));
    }
}

QString withoutLastSlash(const QString& directory)
{
    return directory.size() > 1 && directory.endsWith(QLatin1Char('/'))
        ? directory.left(directory.size() - 1)
        : directory;
}

/// Directory and name as the one path that is written.
QString writtenPath(const WSFile& file)
{
    const QString name = file.filename().mid(file.filepath().size());
    if (name.startsWith(QLatin1Char('/')))
        return name;
    const QString directory = file.filepath().isEmpty() ? text(".")
                                                        : withoutLastSlash(file.filepath());
    if (name.isEmpty())
        return directory;
    return directory.endsWith(QLatin1Char('/')) ? directory + name
                                                : directory + QLatin1Char('/') + name;
}

/// Divides @p path as a reader does: at its last slash, of which a pair becomes one.
void expectPath(const QString& path, WSFile& expected)
{
    const int slash = int(path.lastIndexOf(QLatin1Char('/')));
    expected.setFilename(path.mid(slash + 1));
    if (slash == -1)
        expected.setFilepath(text("."));
    else
        expected.setFilepath(withoutLastSlash(path.left(std::max(slash, 1))));
}

} // namespace

WSFile expectedFile(const WSFile& written, Dollars dollars)
{
    WSFile expected;
    expected.setInputFile(written.inputFile());
    expectPath(read(writtenPath(written), dollars), expected);
    for (const auto& field : fileTextFields)
        (expected.*field.set)(read((written.*field.get)(), dollars));
    for (const auto& field : fileFlagFields)
        (expected.*field.set)((written.*field.get)());
    expectUserAttributes(written, dollars, expected);
    return expected;
}

ArgFile expectedOptions(const ArgFile& written, Dollars dollars)
{
    ArgFile expected;
    expected.setVerbosity(written.verbosity());
    for (const auto& field : textFields)
        (expected.*field.set)(read((written.*field.get)(), dollars));
    for (const auto& field : flagFields)
        (expected.*field.set)((written.*field.get)());
    if (written.rootfile().isEmpty())
        expected.setRootIsOptional(false);
    expectUserAttributes(written, dollars, expected);
    for (int i = 0; i < written.numOutputTreskfiles(); ++i)
        expected.addOutputTreskfile(read(written.outputTreskfile(i), dollars));
    for (int i = 0; i < written.numFiles(); ++i)
        expected.addFile(expectedFile(written.getConstFile(i), dollars));
    return expected;
}

QStringList expectedMessages(const ArgFile& written)
{
    QStringList messages;
    for (int i = 0; i < written.numFiles(); ++i) {
        const WSFile file = written.getConstFile(i);
        for (const auto& field : fileFlagFields) {
            if (QLatin1String(field.name) != QLatin1String("thumbnail"))
                messages += text("2 \"%1\" is no valid parameter for option -f")
                                .arg((file.*field.get)() ? 1 : 0);
        }
    }
    return messages;
}

} // namespace tresktest
