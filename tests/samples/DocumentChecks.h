#ifndef TRESK_TESTS_DOCUMENTCHECKS_H
#define TRESK_TESTS_DOCUMENTCHECKS_H

#include <tresk/TreskParser.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace tresktest {

/// What a program that was run to its end said.
struct ProgramResult {
    bool started = false;
    int exitCode = -1; ///< -1 also if the program crashed
    QString output;
    QString errors;
};

/// Runs a program in the C locale.
ProgramResult run(const QString& program, const QStringList& arguments);

/// The summary document of a step: the last embedded file of its section.
QByteArray summaryOf(tresk::TreskParser& parser, int section);

/// Whether the content of file @p file can be read and it and the stored bytes have the
/// digests and sizes that the marker says.
bool isFileSound(tresk::TreskParser& parser, const tresk::FileTag& file);
/// Whether the region of @p section has the digest that the marker says.
bool isSectionSound(tresk::TreskParser& parser, const tresk::SectionTag& section);

/// The names of the files that are not sound.
QStringList unsoundFiles(tresk::TreskParser& parser);
/// The titles of the sections that are not sound, newest first.
QStringList unsoundSections(tresk::TreskParser& parser);

} // namespace tresktest

#endif
