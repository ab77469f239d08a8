#include "FuzzTarget.h"

#include <QLoggingCategory>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace tresk_fuzz {

namespace {

const Target* lastTarget = nullptr;

} // namespace

Target::Target(const char* name, Run function)
    : m_name(name)
    , m_run(function)
    , m_next(lastTarget)
{
    lastTarget = this;
}

const Target* Target::find(const char* name)
{
    const Target* target = lastTarget;
    while (target && name && std::strcmp(target->m_name, name) != 0)
        target = target->m_next;
    return target;
}

void fail(const char* condition, const char* file, int line)
{
    std::fprintf(stderr, "%s:%d: this does not hold: %s\n", file, line, condition);
    std::abort();
}

void prepareProcess()
{
    QLoggingCategory::setFilterRules(QStringLiteral("tresk.debug=false\ndefault.warning=false"));
}

} // namespace tresk_fuzz
