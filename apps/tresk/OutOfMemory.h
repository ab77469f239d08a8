#ifndef TRESK_APPS_OUTOFMEMORY_H
#define TRESK_APPS_OUTOFMEMORY_H

namespace tresk::cli {

/// From now on the program ends at once where memory runs out: it removes its unfinished files,
/// says so, which takes no memory, and exits. Nothing is unwound, since not all of the code that
/// would take part in that, in Qt above all, is fit for it.
void endWhenOutOfMemory();

/// The exit code with which it then ends; exitTrouble unless it is set.
void setOutOfMemoryCode(int exitCode);

} // namespace tresk::cli

#endif
