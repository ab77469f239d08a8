#ifndef TRESK_TESTS_RECORDS_H
#define TRESK_TESTS_RECORDS_H

#include <tresk/Summary.h>

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

/// Makes records for queries and asks queries of them.
namespace tresktest {

inline QString utf8(const char* text)
{
    return QString::fromUtf8(text);
}

tresk::FileSummary fileNamed(const QString& filename);
tresk::Summary stepTitled(const QString& title, const QList<tresk::FileSummary>& files = {});
/// Steps titled "0", "1", ... with so many files each, named "STEP.FILE" by their indices.
QList<tresk::Summary> stepsWithFiles(int steps, int filesOfEach);

/// @p text as it is written in a query.
QString quoted(const QString& text);

/// "no", "yes" or, with names, "yes f=file:0:1 s=wfs:0", sorted by name.
QString textOf(bool matches, const QHash<QString, QString>& bindings);

/// What @p query finds, in this form; "invalid: " and the findings if it is not valid. Says so if
/// the bindings are not as promised.
QString found(const QString& query, const QList<tresk::Summary>& summaries);
/// The same, "yes" without the bindings.
QString answer(const QString& query, const QList<tresk::Summary>& summaries = {});

/// Whether @p condition on the record x holds of @p step, and of a file of it: "yes no".
QString ofStepAndFile(const QString& condition, const tresk::Summary& step);

/// Makes everything that asks for local time do so in @p zone, until the end of the block.
class InTimeZone {
public:
    explicit InTimeZone(const QByteArray& zone);
    ~InTimeZone();
    InTimeZone(const InTimeZone&) = delete;
    InTimeZone& operator=(const InTimeZone&) = delete;

private:
    QByteArray m_before;
    bool m_wasSet;
};

} // namespace tresktest

#endif
