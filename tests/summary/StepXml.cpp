#include "StepXml.h"

#include "Latin1.h"

#include <tresk/SummaryReader.h>

using tresk::Summary;
using tresk::SummaryReader;

namespace tresktest {

QString element(const char* name, const QString& content)
{
    return QStringLiteral("<%1>%2</%1>").arg(latin1(name), content);
}

QString element(const char* name, const char* content)
{
    return element(name, latin1(content));
}

QString documentOf(const QString& content)
{
    return element("trxchange", element("Workflowstep", content));
}

Summary readStep(const QString& content)
{
    return SummaryReader().readSummary(documentOf(content));
}

Summary emptyStep()
{
    Summary summary;
    summary.tagId = -1;
    summary.fromXml = true;
    return summary;
}

} // namespace tresktest
