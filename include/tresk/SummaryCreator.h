#ifndef TRESK_SUMMARYCREATOR_H
#define TRESK_SUMMARYCREATOR_H

#include <tresk/Summary.h>

#include <QList>
#include <QObject>

namespace tresk {

class TreskParser;

/// What summaries may take still, of one document or of several in turn, and what came short of
/// that. Few bytes of a document may unpack to summaries of any size, and where steps reach back
/// over each other, each names all files again.
struct TRESK_EXPORT SummaryBudget {
    /// Of summary documents, stored or unpacked, whichever is more. One that cannot be read counts
    /// as what may have been unpacked before that was found.
    qint64 bytes = qint64(64) * 1024 * 1024;
    qint64 files = 1000000; ///< embedded in steps or named by their summaries, whichever is more
    QList<int> unread; ///< ids of the sections whose summary documents have more bytes than left
    QList<int> namingTooMany; ///< ids of those whose summary documents name more files than left
    /// Ids of those that have more files than left. Their summary documents were not read either.
    QList<int> withoutFiles;
};

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
    /// What cannot be read is reported in debug lines of the logging category "tresk". That holds
    /// also for a summary document of 1 GiB and more, which no text can hold.
    ///
    /// There is no bound on the memory that summaries take: each names all files of its step.
    /// For documents from strangers there is the other function.
    QList<Summary> createSummaries(TreskParser& parser);
    /// The same within @p budget, from which it takes what was needed, also in vain. A summary
    /// document for which it does not suffice counts as one that cannot be read, and a section for
    /// whose files it does not suffice has a summary without any, which its marker makes; all are
    /// added to the lists there, and smaller ones behind them are read all the same. The section's
    /// id in the lists is -1 for "<unmatched files>".
    QList<Summary> createSummaries(TreskParser& parser, SummaryBudget& budget);
};

/// Writes all fields of @p s and of its files to the debug channel, logging category "tresk",
/// a line each; attributes in the order of their names.
TRESK_EXPORT void printSummary(const Summary& s);

/// Writes all fields of @p f to the debug channel, likewise.
TRESK_EXPORT void printFileSummary(const FileSummary& f);

} // namespace tresk

#endif
