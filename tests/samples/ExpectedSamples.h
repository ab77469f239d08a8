#ifndef TRESK_TESTS_EXPECTEDSAMPLES_H
#define TRESK_TESTS_EXPECTEDSAMPLES_H

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

namespace tresktest {

/// What a sample document should be like.
struct ExpectedSample {
    QString name;
    QString producer; ///< the program that made the PDF
    int sizeLimit; ///< in bytes
    bool sound; ///< every checksum is right
    QStringList titles; ///< of the sections as they are marked, newest first
    QList<int> filesPerSection; ///< summary documents included
};

/// All samples.
const QVector<ExpectedSample>& expectedSamples();

/// The names of the files in names.pdf except the summary documents, in their order.
QStringList awkwardNames();

} // namespace tresktest

#endif
