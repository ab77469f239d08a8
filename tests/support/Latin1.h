#ifndef TRESK_TESTS_LATIN1_H
#define TRESK_TESTS_LATIN1_H

#include <QString>
#include <QStringList>

#include <initializer_list>

namespace tresktest {

inline QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

inline QStringList latin1List(std::initializer_list<const char*> texts)
{
    QStringList list;
    for (const char* text : texts)
        list += latin1(text);
    return list;
}

} // namespace tresktest

#endif
