#include "OutOfMemory.h"

#include "CommandLine.h"
#include "Output.h"
#include "TargetDirectory.h"
#include "TemporaryFolder.h"

#include <cstdlib>
#include <exception>
#include <new>
#include <unistd.h>

namespace tresk::cli {

namespace {

int codeOfExit = exitTrouble;

[[noreturn]] void end()
{
    TargetFile::removeUnfinished();
    TemporaryFolder::removeCurrent();
    const char line[] = "tresk: out of memory\n";
    writeFully(STDERR_FILENO, line, sizeof line - 1);
    _exit(codeOfExit);
}

/// Comes to be called for exceptions that nobody catches, before anything is unwound.
[[noreturn]] void terminate()
{
    if (std::current_exception()) {
        try {
            throw;
        } catch (const std::bad_alloc&) {
            end();
        } catch (...) { // ends as it would without this function
        }
    }
    std::abort();
}

} // namespace

void endWhenOutOfMemory()
{
    // Cannot tell who could go on without, as std::stable_sort() could.
    std::set_new_handler(end);
    // Qt's containers do not come by the operator new.
    std::set_terminate(terminate);
}

void setOutOfMemoryCode(int exitCode)
{
    codeOfExit = exitCode;
}

} // namespace tresk::cli
