#ifndef TRESK_TESTS_ARGFILETEXT_H
#define TRESK_TESTS_ARGFILETEXT_H

#include <tresk/ArgfileParser.h>

#include <QTest>

#include <initializer_list>

namespace tresktest {

using VariableTable = QHash<QString, QString>;

inline QString str(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

inline QStringList listOf(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const char* text : texts)
        list += str(text);
    return list;
}

/// Adds a row of a text and the list that belongs to it.
inline void row(const char* name, const char* text, std::initializer_list<const char*> list)
{
    QTest::newRow(name) << str(text) << listOf(list);
}

inline void addArgumentColumns()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("arguments");
}

inline QStringList parsed(const QString& text, const VariableTable* variables)
{
    return tresk::ArgfileParser().parseArgfile(text, variables);
}

} // namespace tresktest

#endif
