#ifndef TRESK_APPS_STEPFILES_H
#define TRESK_APPS_STEPFILES_H

#include <tresk/TreskParser.h>

#include <QList>
#include <QVector>

#include <utility>

namespace tresk::cli {

/// Which embedded files lie in which steps, for all of them at once: what
/// TreskParser::getFilesInSection() says, without looking at every file for every step.
class StepFiles {
public:
    explicit StepFiles(const TreskParser& parser);

    const QList<SectionTag>& steps() const { return m_steps; }
    const QList<FileTag>& files() const { return m_files; }

    /// Whether the steps reach back over each other so far that listing the files of each would
    /// take memory and time without bound: a million files in all, or more, counted in each step.
    bool areTooMany() const { return m_areTooMany; }
    /// How many files lie in the step.
    int countIn(const SectionTag& step) const { return m_counts[step.id]; }
    /// The ids of the files that lie in the step, ascending; none where they are too many.
    QVector<int> filesIn(const SectionTag& step) const;
    /// The ids of the files that lie in no step, ascending.
    QVector<int> filesWithoutStep() const;

private:
    std::pair<int, int> markersIn(const SectionTag& step) const;
    void countFiles();

    QList<SectionTag> m_steps;
    QList<FileTag> m_files;
    QVector<int> m_filesWithoutStep;
    QVector<int> m_counts; ///< by step
    bool m_areTooMany;
};

/// Ids in ascending order, held as runs of consecutive ones. A step may reach back over all
/// before it, so a file may lie in very many steps, but these follow each other then.
class IdRuns {
public:
    /// Adds an id that is above all others.
    void append(int id);

    bool isEmpty() const { return m_runs.isEmpty(); }
    QVector<int> ids() const;
    /// The ids as a text, such as "0,2-5"; "-" if there are none.
    QString text() const;

private:
    QVector<std::pair<int, int>> m_runs;
};

/// For every embedded file the steps in which it lies; none where they are too many.
QVector<IdRuns> stepsOfFiles(const StepFiles& stepFiles);

} // namespace tresk::cli

#endif
