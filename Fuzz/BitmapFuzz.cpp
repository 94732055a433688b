#include "PictureFuzzTarget.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* inData, std::size_t inSize)
{
    if (const char* const fault = ORLFuzz::CheckBitmap(inData, inSize)) {
        std::fprintf(stderr, "%s\n", fault);
        std::abort();
    }
    return 0;
}
