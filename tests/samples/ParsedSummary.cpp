#include "ParsedSummary.h"

#include <QXmlStreamReader>

namespace tresktest {

namespace {

QHash<QString, QString> readChildren(QXmlStreamReader& xml)
{
    QHash<QString, QString> children;
    while (xml.readNextStartElement()) {
        const QString name = xml.name().toString();
        children.insert(name, xml.readElementText(QXmlStreamReader::IncludeChildElements));
    }
    return children;
}

void readStep(QXmlStreamReader& xml, ParsedSummary& summary)
{
    while (xml.readNextStartElement()) {
        const QString name = xml.name().toString();
        if (name == QLatin1String("InFile") || name == QLatin1String("OutFile"))
            summary.files.append(readChildren(xml));
        else
            summary.step.insert(name, xml.readElementText(QXmlStreamReader::IncludeChildElements));
    }
}

} // namespace

ParsedSummary parseSummary(const QByteArray& bytes)
{
    ParsedSummary summary;
    QXmlStreamReader xml(bytes);
    xml.readNextStartElement();
    if (xml.name() != QLatin1String("trxchange"))
        xml.raiseError(QStringLiteral("no trxchange element"));
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("Workflowstep"))
            readStep(xml, summary);
        else if (xml.name() == QLatin1String("MD5Signature"))
            summary.signature = xml.readElementText();
        else
            xml.raiseError(QStringLiteral("unknown element"));
    }
    while (!xml.atEnd())
        xml.readNext();
    summary.error = xml.errorString();
    return summary;
}

} // namespace tresktest
