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
    owner.addUserAttribute(str("key"), str("value") + suffix);
    owner.addUserAttribute(str("other"), QString());
}

/// A file without a default value in it.
inline tresk::WSFile filledFile(const QString& suffix = QString())
{
    tresk::WSFile file;
    fill(fileTextFields, fileFlagFields, file, suffix);
    file.setFilePurpose(tresk::WSFile::Output);
    file.setFilepath(str("directory") + suffix);
    file.setFilename(str("name") + suffix);
    return file;
}

/// Likewise options, with one such file.
inline tresk::ArgFile filledOptions(const QString& suffix = QString())
{
    tresk::ArgFile options;
    fill(textFields, flagFields, options, suffix);
    options.setVerbosity(tresk::ArgFile::Verbose);
    options.addOutputTreskfile(str("out") + suffix);
    options.addFile(filledFile(suffix));
    return options;
}

template <typename Owner>
void checkUserAttributes()
{
    Owner owner;
    QCOMPARE(owner.userAttributeKeys(), QStringList());
    QCOMPARE(owner.userAttribute(str("b")), QString());
    owner.addUserAttribute(str("b"), str("1"));
    owner.addUserAttribute(str("a"), str("2"));
    owner.addUserAttribute(QString(), str("3"));
    owner.addUserAttribute(str("b"), str("4"));
    owner.addUserAttribute(str("c"), QString());
    QCOMPARE(owner.userAttributeKeys(),
             QStringList({str("b"), str("a"), QString(), str("b"), str("c")}));
    QCOMPARE(owner.userAttribute(str("b")), str("4"));
    QCOMPARE(owner.userAttribute(str("a")), str("2"));
    QCOMPARE(owner.userAttribute(QString()), str("3"));
    QCOMPARE(owner.userAttribute(str("c")), QString());
    QCOMPARE(owner.userAttribute(str("B")), QString());
    owner.clearUserAttributes();
    QCOMPARE(owner.userAttributeKeys(), QStringList());
    QCOMPARE(owner.userAttribute(str("b")), QString());
}

/// Sets each text in turn: nothing else changes with it.
template <typename Owner, typename Fields>
void checkTexts(const Fields& fields, const QStringList& otherLines)
{
    for (const auto& field : fields) {
        Owner owner;
        QVERIFY2((owner.*field.get)().isEmpty(), field.name);
        (owner.*field.set)(str("first"));
        (owner.*field.set)(str("a \"value\""));
        QCOMPARE((owner.*field.get)(), str("a \"value\""));
        QCOMPARE(textOf(owner).mid(otherLines.size()).join(str("|")).trimmed(),
                 QLatin1String(field.name) + str(": \"a \\\"value\\\"\""));
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
        QCOMPARE(textOf(owner).mid(otherLines.size()).join(str("|")).trimmed(),
                 QLatin1String(field.name) + str(byDefault ? ": false" : ": true"));
        (owner.*field.set)(byDefault);
        QCOMPARE(textOf(owner), otherLines);
    }
}

} // namespace tresktest

#endif
