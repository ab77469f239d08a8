#ifndef TRESK_FUZZ_QUEUECOMPARISON_H
#define TRESK_FUZZ_QUEUECOMPARISON_H

#include "ScratchFile.h"

#include "QueueEvents.h"
#include "QueueModel.h"
#include "TestFiles.h"

#include <tresk/ExtractionQueue.h>
#include <tresk/TreskParser.h>
#include <tresk/ValidationQueue.h>

#include <memory>

namespace tresk_fuzz {

/// A document in a file, what is read of it, and what the models take for that.
class OpenDocument {
public:
    void open(const QByteArray& document)
    {
        m_file.setContent(document);
        TRESK_REQUIRE(m_parser.open(m_file.path()));
        m_view = {document, m_parser.getSections(), m_parser.getFiles()};
    }

    tresk::TreskParser* parser() { return &m_parser; }
    const tresktest::DocumentView* view() const { return &m_view; }
    void requireUnchanged() const { TRESK_REQUIRE(m_file.content() == m_view.bytes); }

private:
    ScratchFile m_file;
    tresk::TreskParser m_parser;
    tresktest::DocumentView m_view;
};

/// Documents, files on disk and targets, which all runs share.
struct QueueSurroundings {
    QueueSurroundings()
        : savedPaths{folder.write(QStringLiteral("saved"), QByteArray(100, 's')),
                     folder.write(QStringLiteral("empty"), QByteArray()),
                     folder.path(QStringLiteral("missing")), folder.path(QString())}
        , targets{folder.path(QStringLiteral("target 0")), folder.path(QStringLiteral("target 1")),
                  folder.path(QStringLiteral("target 2")),
                  folder.path(QStringLiteral("missing/target"))}
    {
    }

    tresktest::TestDir folder;
    QStringList savedPaths;
    QStringList targets;
    OpenDocument documents[2];
};

/// Both queues and their models, which operations are performed on alike. An operation is a letter
/// and numbers:
///
///     b SIZE      new queues, the one that validates with that size of blocks
///     p COUNT     so many steps
///     z           steps until there is nothing left, or very many
///     c           cancels
///     r D         takes document D, 0 or 1, or none
///     R D         the same, and queues all of it
///     a ID...     appends sections and files of these ids
///     v ID...     appends files
///     d SIZE N    appends the saved file N, with SIZE bytes expected of it
///     x ID N ...  has file ID written to target N, and so on
///     i KIND      new queues over the whole document, with slots that change them; not compared
///                 with models, but they have to come to an end and to be of use afterwards
///
/// Aborts where events, results or files that were written differ.
class QueueComparison {
public:
    explicit QueueComparison(QueueSurroundings& surroundings)
        : m_surroundings(surroundings)
        , m_current(&surroundings.documents[0])
    {
        begin(0);
    }

    void perform(const QByteArray& line);
    void requireWritten() const;

private:
    void begin(int blockSize);
    void takeDocument(int number);
    void repopulate();
    void addIds(const QList<int>& files, const QList<int>& sections);
    void addSavedFile(int size, int number);
    void addTargets(const QList<int>& numbers);
    void interfere(int kind);
    void interfereWithValidation(int kind);
    void interfereWithExtraction(int kind);
    QHash<int, QString> targetsOf(const QList<int>& numbers) const;
    bool process();
    void requireSameEvents();

    tresk::TreskParser* parser() { return m_current ? m_current->parser() : nullptr; }
    const tresktest::DocumentView* view() const { return m_current ? m_current->view() : nullptr; }

    QueueSurroundings& m_surroundings;
    OpenDocument* m_current;
    std::unique_ptr<tresk::ValidationQueue> m_validation;
    std::unique_ptr<tresk::ExtractionQueue> m_extraction;
    std::unique_ptr<tresktest::QueueEvents> m_validationEvents;
    std::unique_ptr<tresktest::QueueEvents> m_extractionEvents;
    std::unique_ptr<tresktest::ValidationModel> m_validationModel;
    std::unique_ptr<tresktest::ExtractionModel> m_extractionModel;
};

} // namespace tresk_fuzz

#endif
