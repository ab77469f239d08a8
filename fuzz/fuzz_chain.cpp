// Documents of many sections that point anywhere, made from a script: which sections and files are
// found, and which file lies in which section, must be as the model finds them.

#include "DocumentScript.h"
#include "ParserComparison.h"
#include "ScratchFile.h"

#include <QSet>

using tresk_fuzz::ScratchFile;

namespace {

/// A chain ends: no place is in it twice, and there is no section without a line of its own.
void requireBounded(const tresk::TreskParser& parser, const QByteArray& document)
{
    QSet<int> places;
    const QList<tresk::SectionTag> sections = parser.getSections();
    for (const tresk::SectionTag& section : sections) {
        TRESK_REQUIRE(section.id == places.size());
        TRESK_REQUIRE(!places.contains(section.pos));
        TRESK_REQUIRE(section.pos > 0 && section.pos <= document.size());
        places.insert(section.pos);
    }
    TRESK_REQUIRE(places.size() <= document.count("%<--! $TRESK_SECTION"));
}

void runChain(const QByteArray& input)
{
    if (input.size() > 4000)
        return;
    static ScratchFile file;
    const QByteArray document = tresk_fuzz::scriptedDocument(input);
    file.setContent(document);
    for (const tresk::ParseMode mode : {tresk::ParseTolerant, tresk::ParseStrict}) {
        tresk::TreskParser parser(mode);
        TRESK_REQUIRE(tresk_fuzz::openBoth(parser, mode, file.path(), document));
        requireBounded(parser, document);
    }
}

const tresk_fuzz::Target target("chain", runChain);

} // namespace
