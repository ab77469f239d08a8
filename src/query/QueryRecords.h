#ifndef TRESK_QUERY_QUERYRECORDS_H
#define TRESK_QUERY_QUERYRECORDS_H

#include <tresk/Summary.h>

#include <QList>
#include <QString>

#include <functional>
#include <vector>

namespace tresk {

/// What a name of a query can stand for: a step, or one of a step's files.
struct QueryRecord {
    const Summary* step;
    const FileSummary* file; ///< null for a step
    int stepIndex; ///< in the list of summaries
    int fileIndex; ///< in the step's list of files; -1 for a step

    /// "wfs:STEP" or "file:STEP:FILE", by the indices.
    QString key() const;
};

/// All steps of @p summaries, each followed by its files. The summaries have to outlive them.
std::vector<QueryRecord> recordsOf(const QList<Summary>& summaries);

/// An attribute that a query can read from every record.
class QueryAttribute {
public:
    /// The attribute called @p name in queries; one without a value if there is none.
    explicit QueryAttribute(const QString& name);

    /// Calls @p test with the values of the attribute in @p record until it returns true; whether
    /// it did. There is one value, which is empty where the record has no such field and "true" or
    /// "false" for a flag. Only "any" has as many as there are texts in the record.
    bool anyValue(const QueryRecord& record, const std::function<bool(const QString&)>& test) const;

private:
    using Test = std::function<bool(const QString&)>;

    static bool anyTextOf(const QueryRecord& record, const Test& test);

    std::function<QString(const QueryRecord&)> m_value; ///< empty for "any"
};

} // namespace tresk

#endif
