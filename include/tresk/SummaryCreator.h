#ifndef TRESK_SUMMARYCREATOR_H
#define TRESK_SUMMARYCREATOR_H

#include <tresk/Summary.h>

#include <QList>
#include <QObject>

namespace tresk {

class TreskParser;

/// Makes the summaries of all steps of a document. Has no state.
class TRESK_EXPORT SummaryCreator : public QObject {
    Q_OBJECT

public:
    SummaryCreator();
    ~SummaryCreator() override;

    /// One summary per section of the document that @p parser has open, oldest first: the
    /// reverse order of TreskParser::getSections(). The `tagId` of each is its section's id.
    ///
    /// If the last embedded file of a section is named "ws_summary.xml" and can be read, it is
    /// the source (`fromXml` is false if it holds no summary all the same), and each file in it
    /// that is said to be embedded gets the id of the embedded file of the section that has its
    /// name, checksum and size, or keeps -1. Each embedded file is given away once; among
    /// several the one that agrees best in the other fields is taken. Otherwise the section's
    /// markers are the source. (A summary document without a step in it names no files; such a
    /// summary gets all embedded files of the newest section.)
    ///
    /// Files that belong to no section follow, where there are any, in one more summary titled
    /// "<unmatched files>", with `tagId` 0.
    ///
    /// What cannot be read is reported in debug lines of the logging category "tresk".
    QList<Summary> createSummaries(TreskParser& parser);
};

/// Writes all fields of @p s and of its files to the debug channel, logging category "tresk",
/// a line each; attributes in the order of their names.
TRESK_EXPORT void printSummary(const Summary& s);

/// Writes all fields of @p f to the debug channel, likewise.
TRESK_EXPORT void printFileSummary(const FileSummary& f);

} // namespace tresk

#endif
