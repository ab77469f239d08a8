#ifndef TRESK_APPS_DIAGNOSIS_H
#define TRESK_APPS_DIAGNOSIS_H

#include "ItemStatus.h"

#include <tresk/TreskParser.h>

namespace tresk::cli {

class Document;

/// Why a step or an embedded file has been found to be invalid. Reads its bytes once more, in
/// pieces, so it is for items that have failed, not for finding out whether they do. Ends
/// early when a signal asks to end; the result is of no use then.
Fault diagnose(Document& document, const SectionTag& step);
Fault diagnose(Document& document, const FileTag& file);

} // namespace tresk::cli

#endif
