#ifndef TRESK_QUERYERROR_H
#define TRESK_QUERYERROR_H

#include <tresk/Export.h>

#include <QList>
#include <QString>

namespace tresk {

/// How grave a finding is. The library itself reports errors only.
enum QueryErrorType { QueryErrorTypeError = 0, QueryErrorTypeWarning = 1 };

/// A finding in the text of a query: what is wrong, and where.
class TRESK_EXPORT QueryError {
public:
    /// @p originalText is the part of the query concerned; it begins @p position UTF-16 code
    /// units behind the start of the query.
    QueryError(const QString& errorMessage, QueryErrorType type, int position,
               const QString& originalText);

    /// What is wrong, for people; may consist of several lines and end with a line feed.
    QString errorMessage() const { return m_errorMessage; }
    /// Where the part of the query concerned begins, in UTF-16 code units from 0.
    int position() const { return m_position; }
    /// Length of the part of the query concerned in UTF-16 code units; 0 where nothing is there.
    int length() const { return int(m_originalText.size()); }
    /// The part of the query concerned, as written; empty where nothing is there.
    QString originalText() const { return m_originalText; }
    /// Whether it makes the query invalid.
    bool isError() const { return m_type == QueryErrorTypeError; }
    /// Never true of what the library reports: also a finding whose message begins with
    /// "warning at pos" is an error, and makes its query invalid.
    bool isWarning() const { return m_type == QueryErrorTypeWarning; }

private:
    QueryErrorType m_type;
    QString m_errorMessage;
    int m_position;
    QString m_originalText;
};

/// Whether any of @p errors is an error.
TRESK_EXPORT bool containsErrors(const QList<QueryError>& errors);
/// Whether any of @p errors is a warning.
TRESK_EXPORT bool containsWarnings(const QList<QueryError>& errors);

} // namespace tresk

#endif
