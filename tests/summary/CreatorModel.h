#ifndef TRESK_TESTS_CREATORMODEL_H
#define TRESK_TESTS_CREATORMODEL_H

#include <tresk/Summary.h>
#include <tresk/TreskParser.h>

#include <QList>
#include <QString>
#include <QStringList>

namespace tresktest {

/// Makes the summaries of a document as plainly as it can be described: with one list of all
/// files of all sections, which is searched from end to end. The real creator is compared with
/// it.
class CreatorModel {
public:
    QList<tresk::Summary> createSummaries(tresk::TreskParser& parser);

    /// What was reported since the model was made.
    QStringList debugLines() const { return m_debugLines; }

private:
    struct Entry {
        QString key;
        tresk::FileTag tag;
        int sectionId;
    };

    tresk::Summary complete(const tresk::Summary& read, int sectionId);
    int nearest(const tresk::FileSummary& file, int sectionId) const;

    QList<Entry> m_entries;
    QStringList m_debugLines;
};

} // namespace tresktest

#endif
