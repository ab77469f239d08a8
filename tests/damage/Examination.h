#ifndef TRESK_TESTS_EXAMINATION_H
#define TRESK_TESTS_EXAMINATION_H

#include "Expectation.h"
#include "MarkerText.h"
#include "Mutation.h"

#include <tresk/TreskFindQuery.h>
#include <tresk/TreskParser.h>
#include <tresk/WorkflowTree.h>

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

namespace tresktest {

/// Does with damaged documents all that the library offers, and compares what it says of them with
/// what their bytes say.
class Examination {
public:
    /// Of variants of @p sound, in the files of @p folder, which has to be there.
    Examination(const QByteArray& sound, const QString& folder);

    /// Everything that is not as it must be with the document as @p mutation makes it; empty if
    /// all is well. None if that is no document of its own, since nothing changes or nothing is
    /// to be repaired.
    std::optional<QStringList> examine(const Mutation& mutation);

    /// How many sections and files were found to be valid, and how many not.
    int numValid() const { return m_numValid; }
    int numInvalid() const { return m_numInvalid; }

private:
    std::optional<QByteArray> variant(const Mutation& mutation) const;
    void examineStrictly();
    void examineTolerantly();
    bool open(tresk::TreskParser& parser);
    void examineSections(tresk::TreskParser& parser);
    void examineFile(tresk::TreskParser& parser, const tresk::FileTag& file);
    void examineChecksums(tresk::TreskParser& parser, int blockSize);
    void examineExtraction(tresk::TreskParser& parser);
    void examineSteps(tresk::TreskParser& parser);
    void examineUnrepaired(const Mutation& mutation);
    void require(bool holds, const QString& what);
    QString target(int id) const;

    QByteArray m_sound;
    QByteArray m_soundHead; ///< through its header
    QVector<MarkerText> m_soundFiles;
    QString m_folder;
    QString m_path; ///< of the damaged document
    tresk::WorkflowTree m_soundTree;
    QVector<tresk::TreskFindQuery> m_queries;
    ExpectedDocument m_damaged;
    QStringList m_failures;
    QVector<int> m_validFiles; ///< places of the files that the library takes for right
    int m_numValid = 0;
    int m_numInvalid = 0;
};

} // namespace tresktest

#endif
