#include "Comparisons.h"

#include "Records.h"

#include <QTest>

using tresk::FileSummary;
using tresk::Summary;

namespace tresktest {

QString yesIf(bool holds)
{
    return holds ? utf8("yes") : utf8("no");
}

void compareValues(const QString& left, const char* op, const QString& right, bool holds)
{
    FileSummary file = fileNamed(QString());
    file.lastModified = right;
    Summary step = stepTitled(QString(), {file});
    step.timestamp = left;
    const QString query = utf8("s:iswfs && f:isfile && %1(s:timestamp %2 f:lastmodified)");
    QCOMPARE(answer(query.arg(QString(), utf8(op)), {step}), yesIf(holds));
    QCOMPARE(answer(query.arg(utf8("!"), utf8(op)), {step}), yesIf(!holds));
}

QList<Summary> fileOfSize(int size)
{
    FileSummary file = fileNamed(QString());
    file.uncompressedSize = size;
    return {stepTitled(QString(), {file})};
}

} // namespace tresktest
