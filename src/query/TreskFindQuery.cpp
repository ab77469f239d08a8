#include <tresk/TreskFindQuery.h>

#include <tresk/SummaryCreator.h>

#include "query/QueryCompiler.h"
#include "query/QuerySearch.h"

namespace tresk {

TreskFindQuery::TreskFindQuery(const QString& query)
{
    setQuery(query);
}

bool TreskFindQuery::setQuery(const QString& query)
{
    m_query = query;
    m_errors.clear();
    m_normalForm.clear();
    const QueryTree tree = compileQuery(query, m_errors);
    if (!tree.nodes.empty())
        buildNormalForm(tree, m_normalForm, m_errors);
    return isValid();
}

bool TreskFindQuery::isValid() const
{
    return !containsErrors(m_errors);
}

QList<QueryError> TreskFindQuery::getErrors() const
{
    return m_errors;
}

bool TreskFindQuery::matches(TreskParser& parser, QHash<QString, QString>* bindings) const
{
    return matches(SummaryCreator().createSummaries(parser), bindings);
}

bool TreskFindQuery::matches(const QList<Summary>& summaries,
                             QHash<QString, QString>* bindings) const
{
    const std::optional<QueryBindings> found = searchBindings(m_normalForm, summaries);
    if (found && bindings)
        *bindings = *found;
    return found.has_value();
}

} // namespace tresk
