#ifndef TRESK_APPS_SUMMARIES_H
#define TRESK_APPS_SUMMARIES_H

#include <tresk/Summary.h>
#include <tresk/SummaryCreator.h>
#include <tresk/TreskParser.h>

#include <QList>
#include <QSet>
#include <QStringList>

namespace tresk::cli {

class Document;
class StepFiles;

/// What the steps of a document say of themselves. Made all at once, and left out where steps
/// share files, or summaries unpack, to an extent that only makes sense to use up memory.
class Summaries {
public:
    /// Both must outlive the object.
    Summaries(Document& document, const StepFiles& stepFiles,
              const SummaryBudget& budget = SummaryBudget());

    /// What the step says; what its marker says, `fromXml` false, if it has no summary.
    const Summary& of(const SectionTag& step) const;

    /// The files of the step: inputs and outputs as its summary lists them, and then the
    /// embedded ones that it does not name, such as the summary document.
    QList<FileSummary> filesOf(const SectionTag& step) const;
    /// The files that lie in no step.
    QList<FileSummary> filesWithoutStep() const;

    /// For every embedded file its purpose in the oldest step that names it: "InFile",
    /// "OutFile" or "Undefined".
    QStringList purposes() const;

    /// Whether the step has a summary that cannot be read, and not for its size.
    bool isUnreadable(const SectionTag& step) const;
    /// Warns of such summaries.
    void warnOfUnreadable() const;
    /// Warns of summaries that are there, but cannot be read. Reports those that were too large, or
    /// that the steps share too many files to make, and returns false if there were any.
    bool checkMissing() const;

private:
    const Document& m_document;
    const StepFiles& m_stepFiles;
    SummaryBudget m_budget;
    SummaryBudget m_left; ///< of that
    QSet<int> m_tooLarge; ///< ids of the steps whose summaries were too large
    QList<Summary> m_summaries; ///< oldest first; empty if they were left out
};

/// Reports what reading the document and its summaries has shown: warns of summaries that
/// cannot be read, and reports a document that has lost its end. Returns the exit code.
int checkRead(Document& document, const Summaries& summaries);

/// Whether the file is an input or an output of its step.
bool isInput(const FileSummary& file);
bool isOutput(const FileSummary& file);
/// How many of @p files are.
int countInputs(const QList<FileSummary>& files);
int countOutputs(const QList<FileSummary>& files);

/// A file's purpose for people: "in", "out", or "-".
QString purposeText(const QString& filePurpose);

// Texts of summaries are taken as they stand, those of markers without their escapes.

/// The title of the step, fit for people: that of its summary, else that of its marker.
QString titleOf(const SectionTag& step, const Summary& summary);
/// The name of the file, likewise. That of an embedded file is a marker's.
QString nameOf(const FileSummary& file);
/// Who did it, and where: "user@host", or what there is of it; empty if nothing is known.
QString userAndHost(const Workflowstep& step);

} // namespace tresk::cli

#endif
