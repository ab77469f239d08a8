#ifndef TRESK_SAMPLES_SUMMARYXML_H
#define TRESK_SAMPLES_SUMMARYXML_H

#include "Step.h"

#include <QByteArray>
#include <QString>

namespace samples {

/// An embedded file as its marker describes it.
struct StoredFile {
    QString name; ///< as it is written in the marker, escapes included
    QByteArray stored;
    QByteArray md5Stored; ///< empty unless compressed
};

/// The summary document of @p step in UTF-8. @p stored describes the step's files that are
/// embedded, in their order. Its signature is the MD5 digest of the "Workflowstep" element.
QByteArray summaryXml(const Step& step, const QString& creator, const PdfInfo& info,
                      const QVector<StoredFile>& stored);

} // namespace samples

#endif
