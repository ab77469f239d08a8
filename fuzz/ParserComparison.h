#ifndef TRESK_FUZZ_PARSERCOMPARISON_H
#define TRESK_FUZZ_PARSERCOMPARISON_H

#include "FuzzTarget.h"
#include "ParserModel.h"
#include "RecordText.h"

#include <tresk/TreskParser.h>

#include <optional>

namespace tresk_fuzz {

/// The model that reads in @p mode, one for all runs: patterns take long to compile.
inline tresktest::ParserModel& modelOf(tresk::ParseMode mode)
{
    static tresktest::ParserModel models[] = {tresktest::ParserModel(tresk::ParseStrict),
                                              tresktest::ParserModel(tresk::ParseTolerant)};
    return models[mode == tresk::ParseTolerant];
}

/// Opens the file at @p path, which holds @p document, with @p parser and with the model that
/// reads in the same @p mode, and requires both to know the same sections and files. Returns
/// whether it is a document.
inline bool openBoth(tresk::TreskParser& parser, tresk::ParseMode mode, const QString& path,
                     const QByteArray& document)
{
    using tresktest::textOf;
    tresktest::ParserModel& model = modelOf(mode);
    const bool opened = parser.open(path);
    TRESK_REQUIRE(opened == model.open(document));
    TRESK_REQUIRE(textOf(parser.getSections()) == textOf(model.sections()));
    TRESK_REQUIRE(textOf(parser.getFiles()) == textOf(model.files()));
    const QList<tresk::SectionTag> sections = parser.getSections();
    for (const tresk::SectionTag& section : sections)
        TRESK_REQUIRE(textOf(parser.getFilesInSection(section.id))
                      == textOf(model.filesInSection(section)));
    TRESK_REQUIRE(textOf(parser.getSectionlessFiles()) == textOf(model.sectionlessFiles()));
    return opened;
}

/// Requires the content of @p file and its checksums to be those that the model of the same @p mode
/// makes out, unless the marker claims so large a size that the model would make room for it.
inline void requireSameContent(tresk::TreskParser& parser, tresk::ParseMode mode,
                               const tresk::FileTag& file)
{
    constexpr int mostClaimed = 20 * 1024 * 1024;
    if (file.filesize > mostClaimed)
        return;
    const tresktest::ParserModel& model = modelOf(mode);
    const QSharedPointer<QByteArray> content = parser.getFileContent(file.id);
    const std::optional<QByteArray> expected = model.content(file);
    TRESK_REQUIRE(bool(content) == expected.has_value());
    TRESK_REQUIRE(!content || *content == *expected);
    TRESK_REQUIRE(parser.calcChecksumsForFile(file.id) == model.checksums(file));
}

} // namespace tresk_fuzz

#endif
