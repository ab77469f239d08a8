#ifndef TRESK_SAMPLES_SAMPLEDOCUMENT_H
#define TRESK_SAMPLES_SAMPLEDOCUMENT_H

#include "Step.h"

#include <DocumentWriter.h>

#include <QByteArray>
#include <QDir>
#include <QString>

namespace samples {

/// Where the base files are, and how hard to compress.
struct Workshop {
    QDir base;
    int level = 6;

    /// The content of a base file. Ends the program where there is none.
    QByteArray file(const QString& name) const;
    /// A base file as a file of a step, with its name and the type that its suffix stands for.
    StepFile stepFile(const QString& name, Purpose purpose, Storage storage) const;
};

/// A PDF to which steps are added one by one.
class SampleDocument {
public:
    /// Starts from the base file `NAME.pdf`, whose document information is in `NAME.info`.
    SampleDocument(const Workshop& workshop, const QString& name);

    /// Appends the section of a step: its embedded files, and its summary document last.
    tresktest::WrittenSection addStep(const Step& step);

    /// The document, complete with the end that readers of PDF look for.
    QByteArray finish() const;

private:
    int m_level;
    PdfInfo m_info;
    QByteArray m_tail;
    tresktest::DocumentWriter m_writer;
};

} // namespace samples

#endif
