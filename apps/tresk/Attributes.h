#ifndef TRESK_APPS_ATTRIBUTES_H
#define TRESK_APPS_ATTRIBUTES_H

#include <QList>
#include <QSet>
#include <QString>

namespace tresk::cli {

/// A user attribute of a step or a file.
struct Attribute {
    QString name;
    QString value;
    QString unit; ///< null without one
};

/// The user attributes of a step or a file in the order in which they were read, each name
/// once.
template <typename Record>
QList<Attribute> attributesOf(const Record& record)
{
    QList<Attribute> attributes;
    QSet<QString> seen;
    for (const QString& name : record.userAttributeNames) {
        if (seen.contains(name))
            continue;
        seen.insert(name);
        attributes += {name, record.userAttributes.value(name),
                       record.userAttributeUnits.value(name)};
    }
    return attributes;
}

} // namespace tresk::cli

#endif
