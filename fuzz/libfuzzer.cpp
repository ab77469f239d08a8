// What libFuzzer calls, in a program with one target.

#include "FuzzTarget.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    tresk_fuzz::prepareProcess();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const tresk_fuzz::Target* const target = tresk_fuzz::Target::find(nullptr);
    // A copy of its own, so that reading beyond its end is noticed.
    target->run()(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)));
    return 0;
}
