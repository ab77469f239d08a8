#ifndef TRESK_TRESKFINDQUERY_H
#define TRESK_TRESKFINDQUERY_H

#include <tresk/ConjunctiveNormalForm.h>
#include <tresk/QueryError.h>
#include <tresk/Summary.h>

#include <QHash>
#include <QList>
#include <QString>

namespace tresk {

class TreskParser;

/// A question to the steps and files of documents, such as
/// `file:filename %contains report && file:filesize > 1mb`.
///
/// It is compiled once and asked of any number of documents. Each name in it (here `file`) stands
/// for one record, a step or a file of a step; different names stand for different records. An
/// attribute without a name (`:title`) is that of a record of its own, which may be any.
class TRESK_EXPORT TreskFindQuery {
public:
    /// Compiles @p query, as setQuery() does.
    explicit TreskFindQuery(const QString& query);

    /// Compiles @p query in place of the one before; whether there is nothing wrong with it.
    bool setQuery(const QString& query);
    /// Whether the query has been compiled. One that is not valid has an empty normal form, with
    /// which everything matches: ask this first.
    bool isValid() const;
    /// The text of the query.
    QString query() const { return m_query; }
    /// What is wrong with the query; empty if it is valid.
    QList<QueryError> getErrors() const;

    /// Whether the query holds for the document that @p parser has open. Its summaries take any
    /// amount of memory here; of a document from a stranger make them within a SummaryBudget and
    /// hand them to the other function.
    ///
    /// If it does and @p bindings is not null, it gets, for each name that the query gives, the key
    /// of the record with which the query was found to hold: "wfs:STEP" or "file:STEP:FILE" with
    /// the step's index in SummaryCreator::createSummaries() and the file's in Workflowstep::files.
    /// Of several answers it is the first: names in the order of their first appearance in the
    /// normal form of the query, records in that of the summaries, each step in front of its files.
    /// Otherwise @p bindings does not change.
    bool matches(TreskParser& parser, QHash<QString, QString>* bindings = nullptr) const;
    /// The same for @p summaries, those of a document.
    bool matches(const QList<Summary>& summaries,
                 QHash<QString, QString>* bindings = nullptr) const;

private:
    QString m_query;
    QList<QueryError> m_errors;
    ConjunctiveNormalForm m_normalForm;
};

} // namespace tresk

#endif
