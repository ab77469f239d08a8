#ifndef TRESK_TESTS_ARGFILECHECKS_H
#define TRESK_TESTS_ARGFILECHECKS_H

#include "ArgFileFields.h"
#include "ArgFileText.h"

#include <tresk/ArgFile.h>

#include <QTest>

namespace tresktest {

/// Sets every text to its name with @p suffix, and every flag to what it is not by default.
template <typename Texts, typename Flags, typename Owner>
void fill(const Texts& texts, const Flags& flags, Owner& owner, const QString& suffix)
{
    for (const auto& field : texts)
        (owner.*field.set)(QLatin1String(field.name) + suffix);
    for (const auto& field : flags)
        (owner.*field.set)(!(Owner().*field.get)());
    owner.addUserAttribute(text("key"), text("value") + suffix);
    owner.addUserAttribute(text("other"), QString());
}

/// A file without a default value in it.
inline tresk::WSFile filledFile(const QString& suffix = QString())
{
    tresk::WSFile file;
    fill(fileTextFields, fileFlagFields, file, suffix);
    file.setFilePurpose(tresk::WSFile::Output);
    file.setFilepath(text("directory") + suffix);
    file.setFilename(text("name") + suffix);
    return file;
}

/// Likewise options, with one such file.
inline tresk::ArgFile filledOptions(const QString& suffix = QString())
{
    tresk::ArgFile options;
    fill(textFields, flagFields, options, suffix);
    options.setVerbosity(tresk::ArgFile::Verbose);
    options.addOutputTreskfile(text("out") + suffix);
    options.addFile(filledFile(suffix));
    return options;
}

template <typename Owner>
void checkUserAttributes()
{
    Owner owner;
    QCOMPARE(owner.userAttributeKeys(), QStringList());
    QCOMPARE(owner.userAttribute(text("b")), QString());
    owner.addUserAttribute(text("b"), text("1"));
    owner.addUserAttribute(text("a"), text("2"));
    owner.addUserAttribute(QString(), text("3"));
    owner.addUserAttribute(text("b"), text("4"));
    owner.addUserAttribute(text("c"), QString());
    QCOMPARE(owner.userAttributeKeys(),
             QStringList({text("b"), text("a"), QString(), text("b"), text("c")}));
    QCOMPARE(owner.userAttribute(text("b")), text("4"));
    QCOMPARE(owner.userAttribute(text("a")), text("2"));
    QCOMPARE(owner.userAttribute(QString()), text("3"));
    QCOMPARE(owner.userAttribute(text("c")), QString());
    QCOMPARE(owner.userAttribute(text("B")), QString());
    owner.clearUserAttributes();
    QCOMPARE(owner.userAttributeKeys(), QStringList());
    QCOMPARE(owner.userAttribute(text("b")), QString());
}

/// Sets each text in turn: nothing else changes with it.
template <typename Owner, typename Fields>
void checkTexts(const Fields& fields, const QStringList& otherLines)
{
    for (const auto& field : fields) {
        Owner owner;
        QVERIFY2((owner.*field.get)().isEmpty(), field.name);
        (owner.*field.set)(text("first"));
        (owner.*field.set)(text("a \"value\""));
        QCOMPARE((owner.*field.get)(), text("a \"value\""));
        QCOMPARE(textOf(owner).mid(otherLines.size()).join(text("|")).trimmed(),
                 QLatin1String(field.name) + text(": \"a \\\"value\\\"\""));
        (owner.*field.set)(QString());
        QCOMPARE(textOf(owner), otherLines);
    }
}

template <typename Owner, typename Fields>
void checkFlags(const Fields& fields, const QStringList& otherLines)
{
    for (const auto& field : fields) {
        Owner owner;
        const bool byDefault = (owner.*field.get)();
        (owner.*field.set)(!byDefault);
        QCOMPARE(textOf(owner).mid(otherLines.size()).join(text("|")).trimmed(),
                 QLatin1String(field.name) + text(byDefault ? ": false" : ": true"));
        (owner.*field.set)(byDefault);
        QCOMPARE(textOf(owner), otherLines);
    }
}

} // namespace tresktest

#endif
