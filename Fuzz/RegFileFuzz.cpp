// Parses arbitrary bytes as a registry text file.
#include "RegFileFuzzTarget.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* inData, std::size_t inSize)
{
    if (const char* const fault = ORLFuzz::CheckRegFile(std::string(inData, inData + inSize))) {
        std::fprintf(stderr, "%s\n", fault);
        std::abort();
    }
    return 0;
}
