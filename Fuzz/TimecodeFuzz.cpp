#include "TimecodeFuzzTarget.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* inData, std::size_t inSize)
{
    static const bool silenced = (ORLFuzz::SilenceAssertions(), true);
    if (const char* const fault = silenced ? ORLFuzz::CheckTimecodeInput(inData, inSize) : nullptr) {
        std::fprintf(stderr, "%s\n", fault);
        std::abort();
    }
    return 0;
}
