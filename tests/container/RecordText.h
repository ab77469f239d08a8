#ifndef TRESK_TESTS_RECORDTEXT_H
#define TRESK_TESTS_RECORDTEXT_H

#include <tresk/TreskParser.h>

#include <QByteArray>
#include <QList>
#include <QString>

namespace tresktest {

/// All fields of a record on one line, so that records can be compared and seen.
QString textOf(const tresk::SectionTag& section);
QString textOf(const tresk::FileTag& file);

/// Bytes with all but printable ASCII as hexadecimal numbers.
QString textOf(const QByteArray& bytes);

/// All records of a list, a line each.
template <typename Record>
QString textOf(const QList<Record>& records)
{
    QString text;
    for (const Record& record : records)
        text += textOf(record) + QLatin1Char('\n');
    return text;
}

} // namespace tresktest

#endif
