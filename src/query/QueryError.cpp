#include <tresk/QueryError.h>

#include <algorithm>

namespace tresk {

QueryError::QueryError(const QString& errorMessage, QueryErrorType type, int position,
                       const QString& originalText)
    : m_type(type)
    , m_errorMessage(errorMessage)
    , m_position(position)
    , m_originalText(originalText)
{
}

bool containsErrors(const QList<QueryError>& errors)
{
    return std::any_of(errors.begin(), errors.end(),
                       [](const QueryError& error) { return error.isError(); });
}

bool containsWarnings(const QList<QueryError>& errors)
{
    return std::any_of(errors.begin(), errors.end(),
                       [](const QueryError& error) { return error.isWarning(); });
}

} // namespace tresk
