#ifndef TRESK_FUZZ_FUZZTARGET_H
#define TRESK_FUZZ_FUZZTARGET_H

#include <QByteArray>

namespace tresk_fuzz {

/// Takes one input, which may hold anything, and aborts where what came of it is wrong.
using Run = void (*)(const QByteArray& input);

/// Makes a function known as the target @p name, once for each, at namespace scope:
///
///     const Target target("inflater", runInflater);
///
/// libFuzzer runs a target with inputs that it finds; the replay program with those in files.
class Target {
public:
    Target(const char* name, Run function);

    const char* name() const { return m_name; }
    Run run() const { return m_run; }

    /// The target @p name, or the only one for null; null if there is none.
    static const Target* find(const char* name);

private:
    const char* m_name;
    Run m_run;
    const Target* m_next; ///< made before it
};

/// Aborts unless @p condition holds, and says which and where.
#define TRESK_REQUIRE(condition)                                                                   \
    do {                                                                                           \
        if (!(condition))                                                                          \
            ::tresk_fuzz::fail(#condition, __FILE__, __LINE__);                                    \
    } while (false)

[[noreturn]] void fail(const char* condition, const char* file, int line);

/// What every process does first: debug lines and Qt's warnings are switched off.
void prepareProcess();

} // namespace tresk_fuzz

#endif
