#ifndef TRESK_TESTS_READERMODEL_H
#define TRESK_TESTS_READERMODEL_H

#include <tresk/Summary.h>

#include <QString>
#include <QStringList>

namespace tresktest {

/// A reader of summary documents written as plainly as the behaviour can be described: it looks
/// for one tag after the other in a copy of the text that it cuts up. The real reader is
/// compared with it.
class ReaderModel {
public:
    tresk::Summary readSummary(const QString& text);

    /// What was reported since the model was made.
    QStringList debugLines() const { return m_debugLines; }

private:
    struct UserAttributes {
        QHash<QString, QString> values;
        QStringList names;
        QHash<QString, QString> units;
    };

    tresk::Summary parseSummary(const QString& content);
    tresk::Workflowstep parseWorkflowstep(const QString& content);
    tresk::FileSummary parseFile(const QString& content);
    UserAttributes parseUserAttributes(const QString& content);
    void parseAttribute(const QString& content, QString& key, QString& value, QString& unit);
    void unknown(const char* message, const QString& name, const QString& content);

    QStringList m_debugLines;
};

} // namespace tresktest

#endif
