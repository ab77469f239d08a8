#ifndef TRESK_TESTS_TOKENTEXT_H
#define TRESK_TESTS_TOKENTEXT_H

#include "Text.h"

#include <tresk/ArgfileParser.h>

#include <QTest>

#include <initializer_list>

namespace tresktest {

using VariableTable = QHash<QString, QString>;

inline QStringList listOf(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const char* each : texts)
        list += text(each);
    return list;
}

/// Adds a row of a text and the list that belongs to it.
inline void row(const char* name, const char* argfile, std::initializer_list<const char*> list)
{
    QTest::newRow(name) << text(argfile) << listOf(list);
}

inline void addArgumentColumns()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QStringList>("arguments");
}

inline QStringList parsed(const QString& content, const VariableTable* variables)
{
    return tresk::ArgfileParser().parseArgfile(content, variables);
}

} // namespace tresktest

#endif
